#include "ScriptMembersText.h"

namespace cvars {
namespace {

constexpr ScriptMember kStringMembers[] = {
    ScriptGet<&IVorCvarString::GetDefaultValue>(L"Default"),
    ScriptGet<&IVorCvarString::GetMaxLength>(L"MaxLength"),
};

constexpr ScriptMember kObjectNameMembers[] = {
    ScriptGet<&IVorCvarObjectName::GetDefaultValue>(L"Default"),
    ScriptGet<&IVorCvarObjectName::GetMaxLength>(L"MaxLength"),
    ScriptGet<&IVorCvarObjectName::GetAdaptedValueNamesJoined>(L"NamesJoined"),
    ScriptMethod<&IVorCvarObjectName::SetRequestedValueStringScreen>(L"SetNameScreen"),
    ScriptMethod<&IVorCvarObjectName::SetRequestedValueStringAutomation>(L"SetNameAutomation"),
    ScriptMethod<&IVorCvarObjectName::SetRequestedValueStringRemote>(L"SetNameRemote"),
};

constexpr ScriptMember kFileNameMembers[] = {
    ScriptGet<&IVorCvarFileName::GetDefaultValue>(L"Default"),
    ScriptGet<&IVorCvarFileName::get_RootValue>(L"Root"),
    ScriptPut<&IVorCvarFileName::put_RootValue>(L"Root"),
    ScriptGet<&IVorCvarFileName::get_PathValue>(L"Path"),
    ScriptPut<&IVorCvarFileName::put_PathValue>(L"Path"),
    ScriptGet<&IVorCvarFileName::get_FileNameValue>(L"FileName"),
    ScriptPut<&IVorCvarFileName::put_FileNameValue>(L"FileName"),
    ScriptGet<&IVorCvarFileName::get_FiltersValue>(L"Filters"),
    ScriptPut<&IVorCvarFileName::put_FiltersValue>(L"Filters"),
    ScriptGet<&IVorCvarFileName::get_AdaptedValueFormat>(L"AdaptedValueFormat"),
    ScriptPut<&IVorCvarFileName::put_AdaptedValueFormat>(L"AdaptedValueFormat"),
    ScriptGet<&IVorCvarFileName::get_DirectoryOnly>(L"DirectoryOnly"),
    ScriptPut<&IVorCvarFileName::put_DirectoryOnly>(L"DirectoryOnly"),
    ScriptGet<&IVorCvarFileName::get_FileMustExist>(L"FileMustExist"),
    ScriptPut<&IVorCvarFileName::put_FileMustExist>(L"FileMustExist"),
    ScriptGet<&IVorCvarFileName::get_FullFileNameValue>(L"FullFileName"),
    ScriptGet<&IVorCvarFileName::GetExtension>(L"Extension"),
};

}  // namespace

template <>
std::span<const ScriptMember> TypedScriptMembers<IVorCvarString>() noexcept {
  return kStringMembers;
}

template <>
std::span<const ScriptMember> TypedScriptMembers<IVorCvarObjectName>() noexcept {
  return kObjectNameMembers;
}

template <>
std::span<const ScriptMember> TypedScriptMembers<IVorCvarFileName>() noexcept {
  return kFileNameMembers;
}

}  // namespace cvars
