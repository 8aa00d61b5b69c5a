#include "CCvarBool.h"

#include <algorithm>

#include "IndexRequest.h"
#include "SignatureText.h"
#include "TextCase.h"
#include "TextPieces.h"

template class IVorCvarImpl<CCvarBool, IVorCvarBool, int>;

namespace {

constexpr int kFalse = 0;
constexpr int kTrue = 1;
constexpr int kNoState = -1;

bool IsState(int state) { return state == kFalse || state == kTrue; }

std::vector<std::wstring> SplitCopies(std::wstring_view values) {
  const std::vector<std::wstring_view> pieces = cvars::SplitText(values, L',');
  return {pieces.begin(), pieces.end()};
}

}  // namespace

void CCvarBool::Initialize(const wchar_t* name, const wchar_t* values, int defaultValue,
                           CVARFLAGS flags, const wchar_t* guiHints, unsigned int helpStringID,
                           CVARREPLICATIONFLAGS replicationFlags) {
  const cvars::SilentScope silence(*this);
  SetName(name);
  m_screenTexts = SplitCopies(cvars::TextOrEmpty(values));
  m_remoteTexts = SplitCopies(cvars::UpperCased(cvars::TextOrEmpty(values)));
  (void)SetDefaultValue(defaultValue);    // nobody listens
  (void)SetRequestedValue(defaultValue);  // a read-only cvar keeps its request
  SetFlags(static_cast<long>(flags));
  if (guiHints != nullptr) SetGuiHints(guiHints);
  StoreHelpStringID(helpStringID);
  SetReplicationFlags(replicationFlags);
}

// States

std::wstring_view CCvarBool::TextOf(const Texts& texts, int state) noexcept {
  const auto index = static_cast<std::size_t>(state);
  return IsState(state) && index < texts.size() ? texts[index] : std::wstring_view();
}

bool CCvarBool::HasText(int state, std::wstring_view text) const noexcept {
  return cvars::SameTextAnyCase(TextOf(m_screenTexts, state), text) ||
         cvars::SameTextAnyCase(TextOf(m_remoteTexts, state), text);
}

int CCvarBool::StateOf(const VARIANT& state) const {
  CComVariant value;
  if (FAILED(VariantCopyInd(&value, &state))) return kNoState;
  if (value.vt == VT_BOOL) return value.boolVal != VARIANT_FALSE ? kTrue : kFalse;
  if (value.vt != VT_BSTR) return FAILED(value.ChangeType(VT_I4)) ? kNoState : value.lVal;
  for (const int candidate : {kFalse, kTrue}) {
    if (HasText(candidate, cvars::TextOrEmpty(value.bstrVal))) return candidate;
  }
  return kNoState;
}

HRESULT CCvarBool::Enable(int state, bool enable) {
  if (!IsState(state)) return E_INVALIDARG;
  int lowest = m_lowest;
  int highest = m_highest;
  if (!enable) {
    lowest = highest = state == kFalse ? kTrue : kFalse;
  } else if (state == kFalse) {
    lowest = kFalse;
  } else {
    highest = kTrue;
  }
  if (lowest == m_lowest && highest == m_highest) return S_FALSE;
  m_lowest = lowest;
  m_highest = highest;
  AddPending(NOTIFY_RANGE);
  return UpdateAdaptedValueAndNotify();
}

HRESULT CCvarBool::IsEnabled(int state, int* enabled) {
  if (enabled == nullptr || !IsState(state)) return E_INVALIDARG;
  *enabled = state == kFalse ? m_lowest == kFalse : m_highest == kTrue;
  return S_OK;
}

HRESULT CCvarBool::IsEnabled(VARIANT state, int* enabled) {
  return enabled == nullptr ? E_POINTER : IsEnabled(StateOf(state), enabled);
}

// Values

HRESULT CCvarBool::SetDefaultValue(int value) {
  const int state = value != 0 ? kTrue : kFalse;
  if (m_default == state) return S_FALSE;
  m_default = state;
  return Notify(NOTIFY_ATTRIBUTES);
}

HRESULT CCvarBool::SetRequestedValue(int value) {
  if (HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
  const int state = value != 0 ? kTrue : kFalse;
  if (m_requested != state) {
    m_requested = state;
    AddPending(NOTIFY_REQUESTED);
  }
  return UpdateAdaptedValueAndNotify();
}

HRESULT CCvarBool::UpdateAdaptedValueAndNotify() {
  const int adapted = std::clamp<int>(m_requested, m_lowest, m_highest);
  if (m_adapted != adapted) {
    m_adapted = adapted;
    AddPending(NOTIFY_VALUE);
  }
  return NotifyClients(NOTIFY_ALL_CLIENTS, false);
}

HRESULT CCvarBool::Get(int* value) {
  if (value == nullptr) return E_POINTER;
  *value = GetAdaptedValue();
  return S_OK;
}

HRESULT CCvarBool::GetAdaptedValueNorm(double* position) {
  if (position == nullptr) return E_POINTER;
  *position = GetAdaptedValue() == kFalse ? 0.0 : 1.0;
  return S_OK;
}

HRESULT CCvarBool::SetRequestedValueNorm(double position) {
  int value = 0;
  const HRESULT rounded = cvars::IndexAt(position, m_lowest, m_highest, &value);
  return FAILED(rounded) ? rounded : SetRequestedValue(value);
}

HRESULT CCvarBool::Increment(int steps) {
  if (steps == 0) return S_OK;
  return SetRequestedValue(GetAdaptedValue() == kFalse ? kTrue : kFalse);
}

HRESULT CCvarBool::IsDefault(int* isDefault) {
  if (isDefault == nullptr) return E_POINTER;
  *isDefault = GetAdaptedValue() == m_default ? 1 : 0;
  return S_OK;
}

HRESULT CCvarBool::get_IsValueAdapted(int* adapted) {
  if (adapted == nullptr) return E_POINTER;
  *adapted = GetAdaptedValue() == m_requested ? 0 : 1;
  return S_OK;
}

HRESULT CCvarBool::get_Value(VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  return CComVariant(GetAdaptedValue()).Detach(value);
}

HRESULT CCvarBool::put_Value(VARIANT value) {
  CComVariant copy;
  HRESULT result = VariantCopyInd(&copy, &value);
  if (FAILED(result)) return result;
  if (copy.vt == VT_BSTR) return SetRequestedValueFromString(copy.bstrVal);
  result = copy.ChangeType(VT_BOOL);
  return FAILED(result) ? result
                        : SetRequestedValue(copy.boolVal != VARIANT_FALSE ? kTrue : kFalse);
}

// Texts

HRESULT CCvarBool::GetAdaptedValueStringScreen(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  return cvars::CopyOut(TextOf(m_screenTexts, GetAdaptedValue()), text);
}

HRESULT CCvarBool::GetAdaptedValueStringRemote(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  return cvars::CopyOut(TextOf(m_remoteTexts, GetAdaptedValue()), text);
}

HRESULT CCvarBool::GetAdaptedValueStringAutomation(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  CComVariant value;
  HRESULT result = get_Value(&value);
  if (SUCCEEDED(result)) result = value.ChangeType(VT_BOOL);
  if (FAILED(result)) {
    (void)cvars::CopyOut({}, text);  // the first failure is the answer
    return result;
  }
  return cvars::CopyOut(value.boolVal != VARIANT_FALSE ? L"True" : L"False", text);
}

HRESULT CCvarBool::SetRequestedValueFromString(const wchar_t* text) {
  const std::wstring_view wanted = cvars::TextOrEmpty(text);
  for (int state = kFalse; state <= m_highest; ++state) {
    if (HasText(state, wanted)) (void)SetRequestedValue(state);  // a refusal is no news here
  }
  return S_OK;
}

HRESULT CCvarBool::get_Range(BSTR* text) { return cvars::CopyOut(L"0,-1 or false,true", text); }

HRESULT CCvarBool::get_Signature(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  std::wstring signature = cvars::SignatureText(kTypeName)
                               .Add(L"Request", TextOf(m_remoteTexts, m_requested))
                               .Add(L"Adapt", TextOf(m_remoteTexts, GetAdaptedValue()))
                               .Add(L"Default", TextOf(m_remoteTexts, m_default))
                               .Add(L"Flags", GetFlagsString())
                               .Add(L"Range", TextOf(m_remoteTexts, m_lowest))
                               .Text();
  signature += L',';
  signature += TextOf(m_remoteTexts, m_highest);
  return cvars::CopyOut(signature, text);
}

HRESULT CCvarBool::FillCvarPropertiesMap(cvars::PropertiesMap& map) {
  const HRESULT filled = Base::FillCvarPropertiesMap(map);
  if (FAILED(filled)) return filled;
  map.Set(L"RequestedValue", CComVariant(m_requested.Get()));
  map.Set(L"AdaptedValue", CComVariant(GetAdaptedValue()));
  map.Set(L"Default", CComVariant(m_default.Get()));
  return S_OK;
}
