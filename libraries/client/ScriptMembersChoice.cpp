#include "ScriptMembersChoice.h"

namespace cvars {
namespace {

// Names one of several operations of the same name.
template <class Interface, class... A>
using Operation = HRESULT (Interface::*)(A...);

constexpr ScriptMember kEnumMembers[] = {
    ScriptGet<&IVorCvarEnum::GetDefaultValue>(L"Default"),
    ScriptGet<&IVorCvarEnum::GetAdaptedValue>(L"Index"),
    ScriptPut<static_cast<Operation<IVorCvarEnum, int>>(&IVorCvarEnum::SetRequestedValue)>(
        L"Index"),
    ScriptGet<&IVorCvarEnum::GetNumberOfValueStates>(L"Count"),
    ScriptGet<&IVorCvarEnum::GetMin>(L"Min"),
    ScriptGet<&IVorCvarEnum::GetMax>(L"Max"),
    ScriptMethod<&IVorCvarEnum::GetValueStringScreen>(L"ValueStringScreen"),
    ScriptMethod<&IVorCvarEnum::GetValueStringAutomation>(L"ValueStringAutomation"),
    ScriptMethod<&IVorCvarEnum::GetValueStringRemote>(L"ValueStringRemote"),
    ScriptMethod<&IVorCvarEnum::GetIndexOfStringName>(L"IndexOf"),
    ScriptMethod<static_cast<Operation<IVorCvarEnum, VARIANT>>(&IVorCvarEnum::Enable)>(L"Enable"),
    ScriptMethod<static_cast<Operation<IVorCvarEnum, VARIANT>>(&IVorCvarEnum::Disable)>(L"Disable"),
    ScriptMethod<static_cast<Operation<IVorCvarEnum, VARIANT, int*>>(&IVorCvarEnum::IsEnabled)>(
        L"IsEnabled"),
    ScriptMethod<&IVorCvarEnum::GetVariant>(L"Variant"),
    ScriptMethod<&IVorCvarEnum::SetVariant>(L"SetVariant"),
    ScriptMethod<&IVorCvarEnum::GetEnumIUnknown>(L"Object"),
    ScriptMethod<&IVorCvarEnum::GetExtraEnumData>(L"ExtraData"),
    ScriptMethod<&IVorCvarEnum::SetExtraEnumData>(L"SetExtraData"),
    ScriptGet<&IVorCvarEnum::IsWrapModeOn>(L"IsWrapModeOn"),
    ScriptMethod<&IVorCvarEnum::GetFullRangeString>(L"FullRange"),
};

constexpr ScriptMember kBoolMembers[] = {
    ScriptGet<&IVorCvarBool::GetDefaultValue>(L"Default"),
    ScriptMethod<&IVorCvarBool::Set>(L"Set"),
    ScriptMethod<&IVorCvarBool::Clear>(L"Clear"),
    ScriptMethod<&IVorCvarBool::Enable>(L"Enable"),
    ScriptMethod<&IVorCvarBool::Disable>(L"Disable"),
    ScriptMethod<static_cast<Operation<IVorCvarBool, VARIANT, int*>>(&IVorCvarBool::IsEnabled)>(
        L"IsEnabled"),
};

constexpr ScriptMember kColorMembers[] = {
    ScriptGet<&IVorCvarColor::GetDefaultValue>(L"Default"),
    ScriptGet<&IVorCvarColor::GetMin>(L"Min"),
    ScriptGet<&IVorCvarColor::GetMax>(L"Max"),
};

}  // namespace

template <>
std::span<const ScriptMember> TypedScriptMembers<IVorCvarEnum>() noexcept {
  return kEnumMembers;
}
template <>
std::span<const ScriptMember> TypedScriptMembers<IVorCvarBool>() noexcept {
  return kBoolMembers;
}
template <>
std::span<const ScriptMember> TypedScriptMembers<IVorCvarColor>() noexcept {
  return kColorMembers;
}

}  // namespace cvars
