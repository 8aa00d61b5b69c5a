#include "ScriptMembersStructured.h"

namespace cvars {
namespace {

constexpr ScriptMember kActionMembers[] = {
    ScriptMethod<&IVorCvarAction::ActNow>(L"ActNow"),
};

constexpr ScriptMember kBitPatternMembers[] = {
    ScriptGet<&IVorCvarBitPattern::GetDefaultValue>(L"Default"),
    ScriptGet<&IVorCvarBitPattern::get_DecimalValue>(L"DecimalValue"),
    ScriptPut<&IVorCvarBitPattern::put_DecimalValue>(L"DecimalValue"),
    ScriptGet<&IVorCvarBitPattern::GetSignedDecimalValue>(L"SignedDecimalValue"),
    ScriptGet<&IVorCvarBitPattern::get_HexadecimalValue>(L"HexadecimalValue"),
    ScriptPut<&IVorCvarBitPattern::put_HexadecimalValue>(L"HexadecimalValue"),
    ScriptGet<&IVorCvarBitPattern::get_MinValue>(L"Min"),
    ScriptGet<&IVorCvarBitPattern::get_MaxValue>(L"Max"),
    ScriptGet<&IVorCvarBitPattern::get_NumBits>(L"NumBits"),
    ScriptPut<&IVorCvarBitPattern::put_NumBits>(L"NumBits"),
    ScriptGet<&IVorCvarBitPattern::get_NumBytes>(L"NumBytes"),
    ScriptPut<&IVorCvarBitPattern::put_NumBytes>(L"NumBytes"),
    ScriptGet<&IVorCvarBitPattern::get_MaxNumBits>(L"MaxNumBits"),
    ScriptPut<&IVorCvarBitPattern::put_MaxNumBits>(L"MaxNumBits"),
    ScriptGet<&IVorCvarBitPattern::get_Format>(L"Format"),
    ScriptPut<&IVorCvarBitPattern::put_Format>(L"Format"),
    ScriptGet<&IVorCvarBitPattern::get_AllowedBitValues>(L"AllowedBitValues"),
    ScriptPut<&IVorCvarBitPattern::put_AllowedBitValues>(L"AllowedBitValues"),
    ScriptGet<&IVorCvarBitPattern::get_PaddingChar>(L"PaddingChar"),
    ScriptPut<&IVorCvarBitPattern::put_PaddingChar>(L"PaddingChar"),
    ScriptGet<&IVorCvarBitPattern::get_PadAlign>(L"PadAlign"),
    ScriptPut<&IVorCvarBitPattern::put_PadAlign>(L"PadAlign"),
    ScriptGet<&IVorCvarBitPattern::get_SizeAlign>(L"SizeAlign"),
    ScriptPut<&IVorCvarBitPattern::put_SizeAlign>(L"SizeAlign"),
};

// Handles mean nothing to a script.
constexpr ScriptMember kImageMembers[] = {
    ScriptMethod<&IVorCvarImage::LoadFromBitmapResource>(L"LoadFromBitmapResource"),
    ScriptMethod<&IVorCvarImage::LoadFromFile>(L"LoadFromFile"),
};

constexpr ScriptMember kRegisterMembers[] = {
    ScriptGet<&IVorCvarRegister::GetDefaultValue>(L"Default"),
    ScriptPut<&IVorCvarRegister::SetDefaultValue>(L"Default"),
    ScriptGet<&IVorCvarRegister::GetMask>(L"Mask"),
    ScriptPut<&IVorCvarRegister::SetMask>(L"Mask"),
    ScriptGet<&IVorCvarRegister::GetNbOfBits>(L"NbOfBits"),
    ScriptPut<&IVorCvarRegister::SetNbOfBits>(L"NbOfBits"),
    ScriptGet<&IVorCvarRegister::GetHardwareAddress>(L"HardwareAddress"),
    ScriptPut<&IVorCvarRegister::SetHardwareAddress>(L"HardwareAddress"),
    ScriptGet<&IVorCvarRegister::GetAccessStyle>(L"AccessStyle"),
    ScriptPut<&IVorCvarRegister::SetAccessStyle>(L"AccessStyle"),
    ScriptMethod<&IVorCvarRegister::UpdateFromHardware>(L"UpdateFromHardware"),
    ScriptMethod<&IVorCvarRegister::SetFieldDescription>(L"SetFieldDescription"),
    ScriptGet<&IVorCvarRegister::GetFieldDescriptionFirstBit>(L"FieldDescriptionFirstBit"),
    ScriptGet<&IVorCvarRegister::GetFieldDescriptionLastBit>(L"FieldDescriptionLastBit"),
    ScriptGet<&IVorCvarRegister::GetFieldDescriptionString>(L"FieldDescriptionString"),
};

}  // namespace

template <>
std::span<const ScriptMember> TypedScriptMembers<IVorCvarAction>() noexcept {
  return kActionMembers;
}

template <>
std::span<const ScriptMember> TypedScriptMembers<IVorCvarBitPattern>() noexcept {
  return kBitPatternMembers;
}

template <>
std::span<const ScriptMember> TypedScriptMembers<IVorCvarImage>() noexcept {
  return kImageMembers;
}

template <>
std::span<const ScriptMember> TypedScriptMembers<IVorCvarRegister>() noexcept {
  return kRegisterMembers;
}

}  // namespace cvars
