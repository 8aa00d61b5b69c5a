#include "CCvarColor.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>

#include "IndexRequest.h"
#include "NumberScan.h"
#include "SignatureText.h"

template class IVorCvarImpl<CCvarColor, IVorCvarColor, int>;

namespace {

// As "%06x" prints it.
std::wstring SixDigits(int value) {
  constexpr std::size_t kLeastDigits = 6;
  std::wstring text;
  for (auto rest = static_cast<std::uint32_t>(value); rest != 0 || text.size() < kLeastDigits;
       rest >>= 4) {
    text += L"0123456789abcdef"[rest & 0xF];
  }
  std::reverse(text.begin(), text.end());
  return text;
}

}  // namespace

void CCvarColor::Initialize(const wchar_t* name, int defaultValue, CVARFLAGS flags,
                            const wchar_t* guiHints, unsigned int helpStringID,
                            CVARREPLICATIONFLAGS replicationFlags) {
  const cvars::SilentScope silence(*this);
  SetName(name);
  if (guiHints != nullptr) SetGuiHints(guiHints);
  StoreHelpStringID(helpStringID);
  m_default = defaultValue;
  (void)SetRequestedValue(defaultValue);  // a read-only cvar keeps its request
  SetReplicationFlags(replicationFlags);
  SetFlags(static_cast<long>(flags));
}

HRESULT CCvarColor::SetRequestedValue(int value) {
  if (HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
  if (m_requested != value) {
    m_requested = value;
    AddPending(NOTIFY_REQUESTED);
  }
  return UpdateAdaptedValueAndNotify();
}

HRESULT CCvarColor::UpdateAdaptedValueAndNotify() {
  const int requested = m_requested;
  const int adapted = requested < m_lowest ? m_lowest.Get() : std::min<int>(requested, m_highest);
  if (m_adapted != adapted) {
    m_adapted = adapted;
    AddPending(NOTIFY_VALUE);
  }
  return NotifyClients(NOTIFY_ALL_CLIENTS, false);
}

HRESULT CCvarColor::SetDefaultValue(int value) {
  if (m_default == value) return S_FALSE;
  m_default = value;
  return Notify(NOTIFY_ATTRIBUTES);
}

HRESULT CCvarColor::GetMin(int* value) {
  if (value == nullptr) return E_POINTER;
  *value = m_lowest;
  return S_OK;
}

HRESULT CCvarColor::GetMax(int* value) {
  if (value == nullptr) return E_POINTER;
  *value = m_highest;
  return S_OK;
}

// Texts

HRESULT CCvarColor::GetAdaptedValueStringScreen(BSTR* text) {
  return GetAdaptedValueStringRemote(text);
}

HRESULT CCvarColor::GetAdaptedValueStringRemote(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  return cvars::CopyOut(SixDigits(m_adapted), text);
}

HRESULT CCvarColor::GetAdaptedValueStringAutomation(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  CComVariant value;
  HRESULT result = get_Value(&value);
  if (SUCCEEDED(result)) result = value.ChangeType(VT_I4);
  if (FAILED(result)) {
    (void)cvars::CopyOut({}, text);  // the first failure is the answer
    return result;
  }
  std::wstring colour = L"RGB(";
  cvars::AppendDecimal(colour, value.lVal & 255);
  colour += L',';
  cvars::AppendDecimal(colour, value.lVal >> 8 & 255);
  colour += L',';
  cvars::AppendDecimal(colour, value.lVal >> 16 & 255);
  colour += L')';
  return cvars::CopyOut(colour, text);
}

HRESULT CCvarColor::SetRequestedValueFromString(const wchar_t* text) {
  const std::wstring_view view = cvars::TextOrEmpty(text);
  const wchar_t* const first = view.data();
  std::uint32_t number = 0;
  if (cvars::ScanHexadecimal(first, first + view.size(), &number) == first) return E_INVALIDARG;
  return SetRequestedValue(static_cast<int>(number));
}

HRESULT CCvarColor::get_Range(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  std::wstring range = L"From ";
  cvars::AppendDecimal(range, m_lowest);
  range += L" to ";
  cvars::AppendDecimal(range, m_highest);
  return cvars::CopyOut(range, text);
}

HRESULT CCvarColor::GetRangeStringRemote(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  return cvars::CopyOut(SixDigits(m_lowest) + L".." + SixDigits(m_highest), text);
}

HRESULT CCvarColor::get_Signature(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  std::wstring signature = cvars::SignatureText(kTypeName)
                               .Add(L"Adapt", SixDigits(m_adapted))
                               .Add(L"Default", SixDigits(m_default))
                               .Add(L"Flags", GetFlagsString())
                               .AddInteger(L"Range", m_lowest)
                               .Text();
  signature += L',';
  cvars::AppendDecimal(signature, m_highest);
  return cvars::CopyOut(signature, text);
}

HRESULT CCvarColor::FillCvarPropertiesMap(cvars::PropertiesMap& map) {
  const HRESULT filled = Base::FillCvarPropertiesMap(map);
  if (FAILED(filled)) return filled;
  map.Set(L"RequestedValue", CComVariant(m_requested.Get()));
  map.Set(L"AdaptedValue", CComVariant(m_adapted.Get()));
  map.Set(L"Default", CComVariant(m_default.Get()));
  return S_OK;
}

// Values

HRESULT CCvarColor::SetRequestedValueNorm(double position) {
  int value = 0;
  const HRESULT rounded = cvars::IndexAt(position, m_lowest, m_highest, &value);
  return FAILED(rounded) ? rounded : SetRequestedValue(value);
}

HRESULT CCvarColor::Increment(int steps) {
  const std::int64_t count = HasFlag(CVARFLAG_REVERSEINCREMENT) ? -std::int64_t{steps} : steps;
  constexpr std::int64_t kSmallest = std::numeric_limits<int>::min();
  constexpr std::int64_t kLargest = std::numeric_limits<int>::max();
  return SetRequestedValue(
      static_cast<int>(std::clamp(m_adapted.Get() + count, kSmallest, kLargest)));
}

HRESULT CCvarColor::get_Value(VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  return CComVariant(m_adapted.Get()).Detach(value);
}

HRESULT CCvarColor::put_Value(VARIANT value) {
  CComVariant number;
  const HRESULT converted = VariantChangeType(&number, &value, 0, VT_I4);
  return FAILED(converted) ? converted : SetRequestedValue(number.lVal);
}
