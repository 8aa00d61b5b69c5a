#include "CCvarBitPattern.h"

#include "SignatureText.h"
#include "TextCase.h"

template class IVorCvarImpl<CCvarBitPattern, IVorCvarBitPattern, CComBSTR>;

using cvars::BitPatternRange;
using cvars::platform::ScopedLock;

void CCvarBitPattern::Initialize(const wchar_t* name, const wchar_t* defaultValue, int maxBits,
                                 int numBits, CVARBITPATTERNFORMAT format,
                                 const wchar_t* allowedBitValues, unsigned int paddingChar,
                                 CVARBITPATTERNPADALIGN padAlign, CVARBITPATTERNSIZEALIGN sizeAlign,
                                 CVARFLAGS flags, const wchar_t* guiHints,
                                 unsigned int helpStringID, CVARREPLICATIONFLAGS replicationFlags) {
  const cvars::SilentScope silence(*this);
  SetName(name);
  (void)SetRange(defaultValue, maxBits, numBits, format, allowedBitValues, paddingChar, padAlign,
                 sizeAlign, guiHints, helpStringID);
  (void)SetDefaultValue(defaultValue);
  (void)SetRequestedValue(defaultValue, false);  // a refused default leaves the request
  SetReplicationFlags(replicationFlags);
  SetFlags(static_cast<long>(flags));
  (void)UpdateAdaptedValueAndNotify();
}

// Range
// --------------------------------------------------------------------------------------------

HRESULT CCvarBitPattern::SetRange(const wchar_t* defaultValue, int maxBits, int numBits,
                                  CVARBITPATTERNFORMAT format, const wchar_t* allowedBitValues,
                                  unsigned int paddingChar, CVARBITPATTERNPADALIGN padAlign,
                                  CVARBITPATTERNSIZEALIGN sizeAlign, const wchar_t* guiHints,
                                  unsigned int helpStringID) {
  if (guiHints != nullptr) SetGuiHints(guiHints);
  {
    const ScopedLock guard(m_lock);
    if (helpStringID != 0) StoreHelpStringID(helpStringID);
    bool changed = !(m_default == defaultValue);
    if (changed) m_default = defaultValue;
    const auto apply = [&changed](HRESULT set) { changed = changed || set == S_OK; };
    apply(m_range.SetMaxBits(maxBits));
    apply(m_range.SetNumBits(numBits));
    apply(m_range.SetFormat(format));
    apply(m_range.SetAllowed(cvars::TextOrEmpty(allowedBitValues)));
    apply(m_range.SetPadding(paddingChar));
    apply(m_range.SetPadAlign(padAlign));
    apply(m_range.SetSizeAlign(sizeAlign));
    if (changed) AddPending(NOTIFY_RANGE);
  }
  return UpdateAdaptedValueAndNotify();
}

template <class Change>
HRESULT CCvarBitPattern::ChangeRange(Change change) {
  {
    const ScopedLock guard(m_lock);
    const HRESULT changed = change(m_range);
    if (changed != S_OK) return changed;
    AddPending(NOTIFY_RANGE);
  }
  return UpdateAdaptedValueAndNotify();
}

HRESULT CCvarBitPattern::put_MaxNumBits(int count) {
  return ChangeRange([count](BitPatternRange& range) { return range.SetMaxBits(count); });
}
HRESULT CCvarBitPattern::put_NumBits(int count) {
  return ChangeRange([count](BitPatternRange& range) { return range.SetNumBits(count); });
}
HRESULT CCvarBitPattern::put_NumBytes(int count) {
  return ChangeRange([count](BitPatternRange& range) { return range.SetNumBytes(count); });
}
HRESULT CCvarBitPattern::put_Format(CVARBITPATTERNFORMAT format) {
  return ChangeRange([format](BitPatternRange& range) { return range.SetFormat(format); });
}
HRESULT CCvarBitPattern::put_AllowedBitValues(const wchar_t* characters) {
  return ChangeRange([characters](BitPatternRange& range) {
    return range.SetAllowed(cvars::TextOrEmpty(characters));
  });
}
HRESULT CCvarBitPattern::put_PaddingChar(unsigned int character) {
  return ChangeRange([character](BitPatternRange& range) { return range.SetPadding(character); });
}
HRESULT CCvarBitPattern::put_PadAlign(CVARBITPATTERNPADALIGN align) {
  return ChangeRange([align](BitPatternRange& range) { return range.SetPadAlign(align); });
}
HRESULT CCvarBitPattern::put_SizeAlign(CVARBITPATTERNSIZEALIGN align) {
  return ChangeRange([align](BitPatternRange& range) { return range.SetSizeAlign(align); });
}

template <class Read, class Value>
HRESULT CCvarBitPattern::ReadRange(Read read, Value* value) const {
  if (value == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  *value = static_cast<Value>((m_range.*read)());
  return S_OK;
}

HRESULT CCvarBitPattern::get_NumBits(int* count) {
  return ReadRange(&BitPatternRange::NumBits, count);
}
HRESULT CCvarBitPattern::get_NumBytes(int* count) {
  return ReadRange(&BitPatternRange::NumBytes, count);
}
HRESULT CCvarBitPattern::get_MaxNumBits(int* count) {
  return ReadRange(&BitPatternRange::MaxBits, count);
}
HRESULT CCvarBitPattern::get_Format(CVARBITPATTERNFORMAT* format) {
  return ReadRange(&BitPatternRange::Format, format);
}
HRESULT CCvarBitPattern::get_PaddingChar(unsigned int* character) {
  return ReadRange(&BitPatternRange::Padding, character);
}
HRESULT CCvarBitPattern::get_PadAlign(CVARBITPATTERNPADALIGN* align) {
  return ReadRange(&BitPatternRange::PadAlign, align);
}
HRESULT CCvarBitPattern::get_SizeAlign(CVARBITPATTERNSIZEALIGN* align) {
  return ReadRange(&BitPatternRange::SizeAlign, align);
}

HRESULT CCvarBitPattern::get_AllowedBitValues(BSTR* characters) {
  if (characters == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  return cvars::CopyOut(m_range.Allowed(), characters);
}

HRESULT CCvarBitPattern::get_Range(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  return cvars::CopyOut(m_range.Text(), text);
}

// Values ------------------------------------------------------------------------------------------

HRESULT CCvarBitPattern::SetDefaultValue(const wchar_t* value) {
  {
    const ScopedLock guard(m_lock);
    if (m_default == value) return S_FALSE;
    m_default = value;
    AddPending(NOTIFY_ATTRIBUTES);
  }
  return NotifyClients(NOTIFY_ALL_CLIENTS, false);
}

HRESULT CCvarBitPattern::SetRequestedValue(const wchar_t* value, bool force) {
  if (!force && HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
  {
    const ScopedLock guard(m_lock);
    std::wstring bits;
    const HRESULT normal =
        cvars::NormalizeBits(cvars::TextOrEmpty(value), m_range.Allowed(), &bits);
    if (FAILED(normal)) return normal;
    if (bits != m_requested.View()) {
      m_requested = CComBSTR(bits);
      AddPending(NOTIFY_REQUESTED);
      const HRESULT followed = m_range.FollowRequest(bits.size());
      if (FAILED(followed)) return followed;
      if (followed == S_OK) AddPending(NOTIFY_RANGE);
    }
  }
  return UpdateAdaptedValueAndNotify();
}

HRESULT CCvarBitPattern::UpdateAdaptedValueAndNotify() {
  {
    const ScopedLock guard(m_lock);
    const std::wstring bits = m_range.Adapted(m_requested.View());
    if (bits != m_adapted.View()) {
      m_adapted = CComBSTR(bits);
      AddPending(NOTIFY_VALUE);
    }
  }
  return NotifyClients(NOTIFY_ALL_CLIENTS, false);
}

CComBSTR CCvarBitPattern::GetAdaptedValue() {
  const ScopedLock guard(m_lock);
  return m_adapted;
}

HRESULT CCvarBitPattern::CopyText(const CComBSTR& field, BSTR* value) const {
  if (value == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  return cvars::CopyOut(field.View(), value);
}

HRESULT CCvarBitPattern::GetAdaptedValue(BSTR* value) {
  if (value == nullptr) return E_POINTER;
  PerformLateUpdate();
  return CopyText(m_adapted, value);
}
HRESULT CCvarBitPattern::GetDefaultValue(BSTR* value) { return CopyText(m_default, value); }
HRESULT CCvarBitPattern::GetRequestedValue(BSTR* value) { return CopyText(m_requested, value); }

HRESULT CCvarBitPattern::GetRequestedValue(VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  (void)VariantClear(value);
  CComVariant requested;
  {
    const ScopedLock guard(m_lock);
    requested = CComVariant(CComBSTR(m_requested.View()));
  }
  return requested.Detach(value);
}

HRESULT CCvarBitPattern::IsDefault(int* isDefault) {
  const ScopedLock guard(m_lock);
  return Base::IsDefault(isDefault);
}

HRESULT CCvarBitPattern::get_IsValueAdapted(int* adapted) {
  const ScopedLock guard(m_lock);
  return Base::get_IsValueAdapted(adapted);
}

HRESULT CCvarBitPattern::get_Value(VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  if (value->vt == VT_I4) {
    std::uint32_t number = 0;
    const HRESULT read = ReadNumber(&number, nullptr);
    if (SUCCEEDED(read)) value->lVal = static_cast<LONG>(number);
    return read;
  }
  (void)VariantClear(value);
  CComVariant text((CComBSTR(GetAdaptedValue())));
  return text.Detach(value);
}

HRESULT CCvarBitPattern::put_Value(VARIANT value) {
  return value.vt == VT_BSTR ? SetRequestedValue(value.bstrVal) : E_INVALIDARG;
}

HRESULT CCvarBitPattern::SetToDefault() {
  CComBSTR value;
  const HRESULT read = GetDefaultValue(&value);
  return FAILED(read) ? read : SetRequestedValue(value);
}

HRESULT CCvarBitPattern::SetToMin() {
  CComBSTR value;
  const HRESULT read = get_MinValue(&value);
  return FAILED(read) ? read : SetRequestedValue(value);
}

HRESULT CCvarBitPattern::SetToMax() {
  CComBSTR value;
  const HRESULT read = get_MaxValue(&value);
  return FAILED(read) ? read : SetRequestedValue(value);
}

HRESULT CCvarBitPattern::Extreme(wchar_t bit, BSTR* value) const {
  if (value == nullptr) return E_INVALIDARG;
  const ScopedLock guard(m_lock);
  const bool isBinary = m_range.Allowed() == L"01";
  const auto length = static_cast<std::size_t>(isBinary ? m_range.NumBits() : 0);
  return cvars::CopyOut(std::wstring(length, bit), value);
}

HRESULT CCvarBitPattern::GetAdaptedValueNorm(double* position) {
  if (position == nullptr) return E_POINTER;
  *position = 0.0;
  return S_OK;
}

// Numbers -----------------------------------------------------------------------------------------

HRESULT CCvarBitPattern::ReadNumber(std::uint32_t* number, std::uint32_t* width) {
  CComBSTR bits;
  {
    const ScopedLock guard(m_lock);
    bits = m_adapted;
    if (width != nullptr) *width = static_cast<std::uint32_t>(m_range.NumBits());
  }
  if (bits.Length() > cvars::kNumberBits) return E_INVALIDARG;
  if (m_matcher.Matches(L"[^01]", bits)) return E_INVALIDARG;
  *number = cvars::BitsToNumber(bits.View());
  return S_OK;
}

HRESULT CCvarBitPattern::get_DecimalValue(int* value) {
  if (value == nullptr) return E_POINTER;
  CComVariant number(0);
  const HRESULT read = get_Value(&number);
  if (SUCCEEDED(read)) *value = number.lVal;
  return read;
}

HRESULT CCvarBitPattern::GetSignedDecimalValue(int* value) {
  if (value == nullptr) return E_POINTER;
  std::uint32_t number = 0;
  std::uint32_t width = 0;
  const HRESULT read = ReadNumber(&number, &width);
  if (SUCCEEDED(read)) *value = cvars::SignExtended(number, width);
  return read;
}

HRESULT CCvarBitPattern::put_DecimalValue(int value) {
  const std::wstring bits =
      cvars::NumberToBits(static_cast<std::uint32_t>(value), cvars::kNumberBits);
  return SetRequestedValue(bits.c_str());
}

HRESULT CCvarBitPattern::put_HexadecimalValue(const wchar_t* value) {
  bool allowsDontCare = false;
  {
    const ScopedLock guard(m_lock);
    allowsDontCare = m_range.AllowsDontCare();
  }
  const wchar_t* const foreign = allowsDontCare ? L"[^0-9A-Fa-fXx]" : L"[^0-9A-Fa-f]";
  const std::wstring text(cvars::TextOrEmpty(value));
  if (m_matcher.Matches(foreign, text.c_str())) return E_INVALIDARG;
  std::wstring bits;
  const HRESULT written = cvars::HexadecimalToBits(text, &bits);
  return FAILED(written) ? written : SetRequestedValue(bits.c_str());
}

HRESULT CCvarBitPattern::get_HexadecimalValue(BSTR* value) {
  if (value == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  std::wstring bits;
  const HRESULT normal = cvars::NormalizeBits(m_adapted.View(), m_range.Allowed(), &bits);
  if (FAILED(normal)) return normal;
  return cvars::CopyOut(cvars::BitsToHexadecimal(bits, m_range.Padding(), m_range.PaddedEnd()),
                        value);
}

// Texts -------------------------------------------------------------------------------------------

HRESULT CCvarBitPattern::GetAdaptedValueStringScreen(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  if (m_range.Format() == BITPATTERN_FORMAT_HEX) return get_HexadecimalValue(text);
  return cvars::CopyOut(cvars::GroupedBits(m_adapted.View()), text);
}

HRESULT CCvarBitPattern::GetAdaptedValueStringRemote(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  CComBSTR value;
  const HRESULT read = GetAdaptedValue(&value);
  return FAILED(read) ? read : cvars::CopyOut(cvars::UpperCased(value.View()), text);
}

HRESULT CCvarBitPattern::get_Signature(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  return cvars::CopyOut(cvars::SignatureText(kTypeName)
                            .Add(L"Request", m_requested.View())
                            .Add(L"Adapt", m_adapted.View())
                            .Add(L"Default", m_default.View())
                            .AddInteger(L"MaxLen", m_range.MaxBits())
                            .Add(L"Flags", GetFlagsString())
                            .Text(),
                        text);
}

HRESULT CCvarBitPattern::FillCvarPropertiesMap(cvars::PropertiesMap& map) {
  const HRESULT filled = Base::FillCvarPropertiesMap(map);
  if (FAILED(filled)) return filled;
  const ScopedLock guard(m_lock);
  map.SetText(L"RequestedValue", m_requested.View());
  map.SetText(L"AdaptedValue", m_adapted.View());
  const HRESULT screen = map.SetTextFrom(L"AdaptedValueStringScreen", [this](BSTR* text) {
    return GetAdaptedValueStringScreen(text);
  });
  if (FAILED(screen)) return screen;
  map.SetText(L"Default", m_default.View());
  map.Set(L"MaxBits", CComVariant(m_range.MaxBits()));
  return S_OK;
}
