#include "CCvarSafeArray.h"

#include <new>

#include "SignatureText.h"
#include "TableText.h"
#include "VariantEquality.h"

template class IVorCvarImpl<CCvarSafeArray, IVorCvar, CComSafeArray<VARIANT>>;

using cvars::TableElements;
using cvars::VariantTable;
using cvars::platform::ScopedLock;

namespace {

HRESULT CopyOutArray(const VariantTable& array, SAFEARRAY** copy) {
  *copy = nullptr;
  return array.CopyTo(copy);
}

HRESULT GiveBounds(ULONG type, bool known, double* min, double* max) {
  if (min == nullptr || max == nullptr) return E_POINTER;
  const cvars::TypeBounds bounds = known ? cvars::BoundsOfType(type) : cvars::TypeBounds{};
  *min = bounds.min;
  *max = bounds.max;
  return known ? S_OK : E_INVALIDARG;
}

}  // namespace

// Class functions
// ----------------------------------------------------------------------------------

bool CCvarSafeArray::IsFloatingPointVarType(ULONG type) { return cvars::IsFloatingPointType(type); }
bool CCvarSafeArray::IsSignedIntegerVarType(ULONG type) { return cvars::IsSignedIntegerType(type); }
bool CCvarSafeArray::IsUnsignedIntegerVarType(ULONG type) {
  return cvars::IsUnsignedIntegerType(type);
}
bool CCvarSafeArray::IsNumericVarType(ULONG type) {
  return IsFloatingPointVarType(type) || IsSignedIntegerVarType(type) ||
         IsUnsignedIntegerVarType(type);
}

// Callers must not take the answer for a failure.
HRESULT CCvarSafeArray::GetMinMaxForFloatingPointVarType(ULONG type, double* min, double* max) {
  if (min == nullptr || max == nullptr) return E_POINTER;
  if (IsFloatingPointVarType(type)) (void)GiveBounds(type, true, min, max);
  return E_INVALIDARG;
}
HRESULT CCvarSafeArray::GetMinMaxForSignedIntegerVarType(ULONG type, double* min, double* max) {
  return GiveBounds(type, IsSignedIntegerVarType(type), min, max);
}
HRESULT CCvarSafeArray::GetMinMaxForUnsignedIntegerVarType(ULONG type, double* min, double* max) {
  return GiveBounds(type, IsUnsignedIntegerVarType(type), min, max);
}

HRESULT CCvarSafeArray::AdaptToMinMaxForVarType(const VARIANT& value, ULONG type, VARIANT* result) {
  return result == nullptr ? E_POINTER : cvars::AdaptToType(value, type, result);
}
HRESULT CCvarSafeArray::AdaptToRange(const VARIANT& value, const SColRangeDesc& range,
                                     VARIANT* result) {
  return result == nullptr ? E_POINTER : cvars::AdaptToColumn(value, range, result);
}
bool CCvarSafeArray::AreCComSafeArraysEqual(const VariantTable& a, const VariantTable& b) {
  return cvars::SameValue(a, b);
}

HRESULT CCvarSafeArray::ConvertStrToSafeArray(const wchar_t* text, VariantTable* array) {
  if (array == nullptr) return E_POINTER;
  *array = cvars::TableFromText(cvars::TextOrEmpty(text));
  return S_OK;
}
HRESULT CCvarSafeArray::ConvertSafeArrayToStr(const VariantTable& array,
                                              const std::vector<SColRangeDesc>& ranges,
                                              BSTR* text) {
  return text == nullptr ? E_POINTER : cvars::CopyOut(cvars::TextFromTable(array, ranges), text);
}
HRESULT CCvarSafeArray::ConvertRangeStrToRangeDescVector(const wchar_t* text,
                                                         std::vector<SColRangeDesc>* ranges) {
  if (ranges == nullptr) return E_POINTER;
  *ranges = cvars::RangesFromText(cvars::TextOrEmpty(text));
  return S_OK;
}
HRESULT CCvarSafeArray::ConvertRangeDescVectorToRangeStr(const std::vector<SColRangeDesc>& ranges,
                                                         BSTR* text) {
  return text == nullptr ? E_POINTER : cvars::CopyOut(cvars::TextFromRanges(ranges), text);
}

// Configuration
// ------------------------------------------------------------------------------------

CCvarSafeArray::CCvarSafeArray() {
  m_adapted = cvars::EmptyTable();
  m_default = cvars::EmptyTable();
  m_requested = cvars::EmptyTable();
}

void CCvarSafeArray::Initialize(const wchar_t* name, const SAFEARRAY* defaultValue,
                                const std::vector<SColRangeDesc>& ranges, CVARFLAGS flags) {
  const cvars::SilentScope silence(*this);
  SetName(name);
  (void)SetRange(ranges);          // suspended: nobody answers
  (void)SetDefault(defaultValue);  // an array that no variant can hold leaves the default
  (void)Request(ReadField(m_default));
  SetFlags(static_cast<long>(flags));
}

void CCvarSafeArray::Initialize(const wchar_t* name, const SAFEARRAY* defaultValue,
                                const wchar_t* ranges, CVARFLAGS flags) {
  Initialize(name, defaultValue, cvars::RangesFromText(cvars::TextOrEmpty(ranges)), flags);
}

void CCvarSafeArray::Initialize(const wchar_t* name, const wchar_t* defaultValue,
                                const wchar_t* ranges, CVARFLAGS flags) {
  const VariantTable table = cvars::TableFromText(cvars::TextOrEmpty(defaultValue));
  Initialize(name, static_cast<const SAFEARRAY*>(table), ranges, flags);
}

HRESULT CCvarSafeArray::SetRange(const std::vector<SColRangeDesc>& ranges) {
  {
    const ScopedLock guard(m_lock);
    if (ranges == m_ranges) return S_FALSE;
    m_ranges = ranges;
  }
  AddPending(NOTIFY_RANGE);
  return UpdateAdaptedValueAndNotify();
}

HRESULT CCvarSafeArray::SetRange(const wchar_t* ranges) {
  return SetRange(cvars::RangesFromText(cvars::TextOrEmpty(ranges)));
}

HRESULT CCvarSafeArray::SetDefault(const SAFEARRAY* value) {
  VariantTable table;
  const HRESULT copied = cvars::CopyToTable(value, &table);
  if (FAILED(copied)) return copied;
  {
    const ScopedLock guard(m_lock);
    if (cvars::SameValue(table, m_default)) return S_FALSE;
    m_default.Swap(table);
  }
  return Notify(NOTIFY_ATTRIBUTES);
}

HRESULT CCvarSafeArray::SetDefault(const wchar_t* value) {
  const VariantTable table = cvars::TableFromText(cvars::TextOrEmpty(value));
  return SetDefault(static_cast<const SAFEARRAY*>(table));
}

HRESULT CCvarSafeArray::GetDefault(SAFEARRAY** array) {
  if (array == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  return CopyOutArray(m_default, array);
}

HRESULT CCvarSafeArray::GetAdaptedValue(SAFEARRAY** array) {
  if (array == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  return CopyOutArray(m_adapted, array);
}

// Value
// ----------------------------------------------------------------------------------------------

HRESULT CCvarSafeArray::get_Value(VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  (void)VariantClear(value);
  SAFEARRAY* copy = nullptr;
  const HRESULT copied = GetAdaptedValue(&copy);
  if (FAILED(copied)) return copied;
  value->vt = VT_ARRAY | VT_VARIANT;
  value->parray = copy;
  return S_OK;
}

HRESULT CCvarSafeArray::put_Value(VARIANT value, bool force) {
  if (!force && HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
  CComVariant read;
  if (value.vt == (VT_BYREF | VT_VARIANT)) {
    const HRESULT followed = VariantCopyInd(&read, &value);
    if (FAILED(followed)) return E_INVALIDARG;
    value = read;
  }
  if ((value.vt & VT_ARRAY) != 0) {
    const SAFEARRAY* const array = (value.vt & VT_BYREF) == 0 ? value.parray
                                   : value.pparray == nullptr ? nullptr
                                                              : *value.pparray;
    VariantTable table;
    const HRESULT copied = cvars::CopyToTable(array, &table);
    return FAILED(copied) ? copied : Request(std::move(table));
  }
  if (value.vt == VT_EMPTY) return Request(cvars::EmptyTable());
  if (value.vt == VT_BSTR) return Request(cvars::TableFromText(cvars::BstrView(value.bstrVal)));
  if (value.vt == (VT_BSTR | VT_BYREF)) {
    const BSTR text = value.pbstrVal == nullptr ? nullptr : *value.pbstrVal;
    return Request(cvars::TableFromText(cvars::BstrView(text)));
  }
  return E_INVALIDARG;
}

HRESULT CCvarSafeArray::SetRequestedValueFromString(const wchar_t* text) {
  if (HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
  return Request(cvars::TableFromText(cvars::TextOrEmpty(text)));
}

HRESULT CCvarSafeArray::SetToDefault() {
  if (HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
  return Request(ReadField(m_default));
}

HRESULT CCvarSafeArray::Request(VariantTable array) {
  {
    const ScopedLock guard(m_lock);
    if (cvars::SameValue(array, m_requested)) return S_OK;
    m_requested.Swap(array);
    AddPending(NOTIFY_REQUESTED);
  }
  return UpdateAdaptedValueAndNotify();
}

HRESULT CCvarSafeArray::UpdateAdaptedValueAndNotify() {
  if (UpdateAdaptedValue()) AddPending(NOTIFY_VALUE);
  return NotifyClients(NOTIFY_ALL_CLIENTS, false);
}

bool CCvarSafeArray::UpdateAdaptedValue() {
  VariantTable replaced;  // goes after the lock is left
  const ScopedLock guard(m_lock);
  bool changed = false;
  if (!cvars::SameShape(m_requested, m_adapted)) {
    VariantTable shaped = cvars::TableLike(m_requested);
    m_adapted.Swap(shaped);
    replaced.Swap(shaped);
    changed = true;
  }
  const TableElements requested(m_requested);
  const TableElements adapted(m_adapted);
  std::size_t column = 0;
  for (std::size_t i = 0; i < requested.All().size(); ++i) {
    const VARIANT& request = requested.All()[i];
    CComVariant element;
    HRESULT fitted = E_FAIL;
    if (column < m_ranges.size()) {
      const SColRangeDesc& range = m_ranges[column];
      fitted =
          IsNumericVarType(range.elementType)
              ? cvars::AdaptToColumn(request, range, &element)
              : VariantChangeType(&element, &request, 0, static_cast<VARTYPE>(range.elementType));
    }
    // What has no range, or does not fit it, stays as it was requested.
    if (FAILED(fitted) && FAILED(VariantCopy(&element, &request))) throw std::bad_alloc();
    if (!cvars::SameVariant(element, adapted.All()[i])) {
      std::swap(static_cast<VARIANT&>(element), adapted.All()[i]);
      changed = true;
    }
    if (++column == requested.Columns()) column = 0;
  }
  return changed;
}

// Texts
// ----------------------------------------------------------------------------------------------

std::wstring CCvarSafeArray::TextOf(const VariantTable& array) const {
  const ScopedLock guard(m_lock);
  return cvars::TextFromTable(array, m_ranges);
}

HRESULT CCvarSafeArray::GetAdaptedValueStringRemote(BSTR* text) {
  return text == nullptr ? E_POINTER : cvars::CopyOut(TextOf(m_adapted), text);
}
HRESULT CCvarSafeArray::GetAdaptedValueStringScreen(BSTR* text) {
  return GetAdaptedValueStringRemote(text);
}
HRESULT CCvarSafeArray::GetAdaptedValueStringAutomation(BSTR* text) {
  return GetAdaptedValueStringRemote(text);
}

HRESULT CCvarSafeArray::GetAdaptedValueNorm(double* position) {
  return position == nullptr ? E_POINTER : E_NOTIMPL;
}

HRESULT CCvarSafeArray::get_Range(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  return cvars::CopyOut(cvars::TextFromRanges(m_ranges), text);
}

HRESULT CCvarSafeArray::get_Signature(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  CComBSTR range;
  const HRESULT ranged = get_Range(&range);
  if (FAILED(ranged)) return ranged;
  return cvars::CopyOut(cvars::SignatureText(kTypeName)
                            .Add(L"Request", TextOf(m_requested))
                            .Add(L"Adapt", TextOf(m_adapted))
                            .Add(L"Default", TextOf(m_default))
                            .Add(L"Range", range.View())
                            .Add(L"Flags", GetFlagsString())
                            .Text(),
                        text);
}

HRESULT CCvarSafeArray::FillCvarPropertiesMap(cvars::PropertiesMap& map) {
  const HRESULT filled = IVorCvarImpl::FillCvarPropertiesMap(map);
  if (FAILED(filled)) return filled;
  map.Set(L"RequestedValue", cvars::ToVariant(ReadField(m_requested)));
  map.Set(L"AdaptedValue", cvars::ToVariant(ReadField(m_adapted)));
  return map.SetTextFrom(L"Range", [this](BSTR* text) { return get_Range(text); });
}
