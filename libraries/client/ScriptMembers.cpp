#include "ScriptMembers.h"

#include <vector>

#include "CvarText.h"

namespace cvars {
namespace {

constexpr ScriptMember kCommonMembers[] = {
    ScriptGet<&IVorCvar::get_Value>(L"Value"),
    ScriptPut<&IVorCvar::put_Value>(L"Value"),
    ScriptGet<&IVorCvar::get_Name>(L"Name"),
    ScriptGet<&IVorCvar::get_NameRemote>(L"NameRemote"),
    ScriptGet<&IVorCvar::get_Type>(L"Type"),
    ScriptGet<&IVorCvar::get_Flags>(L"Flags"),
    ScriptGet<&IVorCvar::GetFlagsString>(L"FlagsString"),
    ScriptGet<&IVorCvar::IsReadOnly>(L"IsReadOnly"),
    ScriptGet<&IVorCvar::IsHidden>(L"IsHidden"),
    ScriptGet<&IVorCvar::IsGuiOnly>(L"IsGuiOnly"),
    ScriptGet<&IVorCvar::IsNonvolatile>(L"IsNonvolatile"),
    ScriptGet<&IVorCvar::get_HelpString>(L"HelpString"),
    ScriptGet<&IVorCvar::get_HelpStringID>(L"HelpStringID"),
    ScriptGet<&IVorCvar::GetGuiHints>(L"GuiHints"),
    ScriptGet<&IVorCvar::get_Range>(L"Range"),
    ScriptGet<&IVorCvar::get_RangeStringScreen>(L"RangeStringScreen"),
    ScriptGet<&IVorCvar::get_RangeStringRemote>(L"RangeStringRemote"),
    ScriptGet<&IVorCvar::get_RangeStringAutomation>(L"RangeStringAutomation"),
    ScriptGet<&IVorCvar::get_IsValueAdapted>(L"IsValueAdapted"),
    ScriptGet<&IVorCvar::IsDefault>(L"IsDefault"),
    ScriptGet<&IVorCvar::get_Parent>(L"Parent"),
    ScriptGet<&IVorCvar::get_EventSinkCount>(L"EventSinkCount"),
    ScriptGet<&IVorCvar::get_EventSink>(L"EventSink"),
    ScriptGet<&IVorCvar::GetRequestedVariantValue>(L"RequestedValue"),
    ScriptGet<&IVorCvar::get_Signature>(L"Signature"),
    ScriptGet<&IVorCvar::GetSignature>(L"Properties"),
    ScriptGet<&IVorCvar::GetAdaptedValueStringScreen>(L"StringScreen"),
    ScriptGet<&IVorCvar::GetAdaptedValueStringRemote>(L"StringRemote"),
    ScriptGet<&IVorCvar::GetAdaptedValueStringRemoteNoUnit>(L"StringRemoteNoUnit"),
    ScriptGet<&IVorCvar::GetAdaptedValueStringAutomation>(L"StringAutomation"),
    ScriptGet<&IVorCvar::GetAdaptedValueNorm>(L"ValueNorm"),
    ScriptPut<&IVorCvar::SetRequestedValueNorm>(L"ValueNorm"),
    ScriptMethod<&IVorCvar::SetRequestedValueFromString>(L"SetFromString"),
    ScriptMethod<&IVorCvar::SetRequestedValueFromStringScreen>(L"SetFromStringScreen"),
    ScriptMethod<&IVorCvar::SetRequestedValueFromStringRemote>(L"SetFromStringRemote"),
    ScriptMethod<&IVorCvar::SetToDefault>(L"SetToDefault"),
    ScriptMethod<&IVorCvar::SetToMin>(L"SetToMin"),
    ScriptMethod<&IVorCvar::SetToMax>(L"SetToMax"),
    ScriptMethod<&IVorCvar::Increment>(L"Increment"),
    ScriptMethod<&IVorCvar::ForceNotification>(L"ForceNotification"),
};

bool SameName(std::wstring_view a, std::wstring_view b) noexcept {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (UpperCase(a[i]) != UpperCase(b[i])) return false;
  }
  return true;
}

// The identifier of a name is one more than the row that first has it, counted through both tables;
// "Value" is what an object without a member name stands for.
DISPID FindName(std::span<const ScriptMember> typed, std::wstring_view name) noexcept {
  if (SameName(name, L"Value")) return DISPID_VALUE;
  DISPID id = 1;
  for (const std::span<const ScriptMember> table : {typed, CommonScriptMembers()}) {
    for (const ScriptMember& member : table) {
      if (SameName(member.name, name)) return id;
      ++id;
    }
  }
  return DISPID_UNKNOWN;
}

const wchar_t* NameOf(std::span<const ScriptMember> typed, DISPID id) noexcept {
  if (id == DISPID_VALUE) return L"Value";
  if (id < 0) return nullptr;
  std::size_t row = static_cast<std::size_t>(id) - 1;
  if (row < typed.size()) return typed[row].name;
  row -= typed.size();
  return row < CommonScriptMembers().size() ? CommonScriptMembers()[row].name : nullptr;
}

}  // namespace

std::span<const ScriptMember> CommonScriptMembers() noexcept { return kCommonMembers; }

HRESULT FindScriptMembers(std::span<const ScriptMember> typed, wchar_t** names, UINT nameCount,
                          DISPID* ids) noexcept {
  if (names == nullptr || ids == nullptr) return E_POINTER;
  if (nameCount == 0) return E_INVALIDARG;
  ids[0] = FindName(typed, TextOrEmpty(names[0]));
  for (UINT i = 1; i < nameCount; ++i) ids[i] = DISPID_UNKNOWN;  // arguments have no names
  return ids[0] == DISPID_UNKNOWN || nameCount > 1 ? DISP_E_UNKNOWNNAME : S_OK;
}

HRESULT InvokeScriptMember(std::span<const ScriptMember> typed, IVorCvar* cvar, DISPID id,
                           WORD flags, DISPPARAMS* parameters, VARIANT* result,
                           EXCEPINFO* exception, UINT* argumentError) {
  if (exception != nullptr) *exception = {};
  if (argumentError != nullptr) *argumentError = 0;
  if (result != nullptr) VariantInit(result);
  if (parameters == nullptr) return E_POINTER;
  const bool writes = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  const bool namesTheValue = writes && parameters->cNamedArgs == 1 &&
                             parameters->rgdispidNamedArgs != nullptr &&
                             parameters->rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
  if (parameters->cNamedArgs != 0 && !namesTheValue) return DISP_E_NONAMEDARGS;
  const wchar_t* const name = NameOf(typed, id);
  if (name == nullptr) return DISP_E_MEMBERNOTFOUND;

  const ScriptMember* wrongCount = nullptr;
  for (const std::span<const ScriptMember> table : {typed, CommonScriptMembers()}) {
    for (const ScriptMember& member : table) {
      const bool wanted =
          writes ? member.kind == DISPATCH_PROPERTYPUT : member.kind != DISPATCH_PROPERTYPUT;
      if (!wanted || !SameName(member.name, name)) continue;
      if (member.arguments != parameters->cArgs) {
        wrongCount = &member;
        continue;
      }
      std::vector<VARIANT> arguments(parameters->rgvarg, parameters->rgvarg + parameters->cArgs);
      std::vector<VARIANT> firstFirst(arguments.rbegin(), arguments.rend());
      CComVariant given;
      const HRESULT called = member.call(cvar, firstFirst.data(), &given);
      if (result != nullptr && SUCCEEDED(called)) (void)given.Detach(result);
      return called;
    }
  }
  return wrongCount != nullptr ? DISP_E_BADPARAMCOUNT : DISP_E_MEMBERNOTFOUND;
}

}  // namespace cvars
