#pragma once

// The members of IVorCvarDoubleImpl, for the sources of the classes that instantiate it.

#include "CComPtr.h"
#include "CvarDoubleImpl.h"
#include "ScopedSuspension.h"

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::get_NumberOfIncrement(double* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  if (!(m_grain > 0)) return E_FAIL;
  *count = (m_max - m_min) / m_grain;
  return S_OK;
}

// Texts
// --------------------------------------------------------------------------------------------

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::FormatAdapted(std::wstring_view unit,
                                                        cvars::NumberStyle style, BSTR* text) {
  if (text == nullptr) return E_POINTER;
  return cvars::FormatNumber(this->GetAdaptedValue(), m_grain, unit, style, cvars::kNumberWidth,
                             text);
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::GetAdaptedValueStringScreen(BSTR* text) {
  return FormatAdapted(m_unit.Screen(),
                       this->HasFlag(CVARFLAG_COMPACT) ? cvars::NumberStyle::kScreenCompact
                                                       : cvars::NumberStyle::kScreen,
                       text);
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::GetAdaptedValueStringRemote(BSTR* text) {
  return FormatAdapted(m_unit.Remote(), cvars::NumberStyle::kRemote, text);
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::GetAdaptedValueStringRemoteNoUnit(BSTR* text) {
  return FormatAdapted({}, cvars::NumberStyle::kRemoteNoUnit, text);
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::SetRequestedValueFromStringScreen(const wchar_t* text) {
  double value = 0;
  const HRESULT parsed = cvars::ParseScreenNumber(text, m_unit.Screen(), &value);
  return FAILED(parsed) ? parsed : this->SetRequestedValue(value);
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::SetRequestedValueFromStringRemote(const wchar_t* text) {
  double value = 0;
  const HRESULT parsed = cvars::ParseNumber(text, m_unit.Remote(), cvars::kRemotePrefixes, &value);
  return FAILED(parsed) ? parsed : this->SetRequestedValue(value);
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::get_Range(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  const double grain = m_grain;
  std::wstring range = L"From ";
  cvars::AppendGeneral(range, m_min);
  range += L" to ";
  cvars::AppendGeneral(range, m_max);
  range += L" step ";
  if (grain < 0) {
    range += L'(';
    cvars::AppendDecimal(range, cvars::SignificantDigits(grain));
    range += L" digits)";
  } else {
    cvars::AppendGeneral(range, grain);
  }
  return cvars::CopyOut(range, text);
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::get_Signature(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  return cvars::CopyOut(cvars::SignatureText(T::kTypeName)
                            .AddGeneral(L"Request", this->m_requested)
                            .AddGeneral(L"Adapt", this->GetAdaptedValue())
                            .AddGeneral(L"Default", this->m_default)
                            .AddGeneral(L"Min", m_min)
                            .AddGeneral(L"Max", m_max)
                            .AddGeneral(L"Grain", m_grain)
                            .Add(L"Unit", GetUnitStringRemote())
                            .Add(L"Flags", this->GetFlagsString())
                            .Text(),
                        text);
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::FillCvarPropertiesMap(cvars::PropertiesMap& map) {
  const HRESULT filled = Base::FillCvarPropertiesMap(map);
  if (FAILED(filled)) return filled;
  map.Set(L"RequestedValue", CComVariant(this->m_requested.Get()));
  map.Set(L"AdaptedValue", CComVariant(this->GetAdaptedValue()));
  const HRESULT screen = map.SetTextFrom(L"AdaptedValueStringScreen", [this](BSTR* text) {
    return this->GetAdaptedValueStringScreen(text);
  });
  if (FAILED(screen)) return screen;
  map.Set(L"Default", CComVariant(this->m_default.Get()));
  map.Set(L"Min", CComVariant(m_min.Get()));
  map.Set(L"Max", CComVariant(m_max.Get()));
  map.Set(L"Grain", CComVariant(m_grain.Get()));
  map.SetText(L"Unit", m_unit.Remote());
  return S_OK;
}

// Values ------------------------------------------------------------------------------------------

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::Increment(int steps) {
  const double count = this->HasFlag(CVARFLAG_REVERSEINCREMENT) ? -static_cast<double>(steps)
                                                                : static_cast<double>(steps);
  const double adapted = this->GetAdaptedValue();
  return this->SetRequestedValue(adapted + count * cvars::EffectiveStep(adapted, m_grain));
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::SetToDefault() {
  m_coarseGrain = 0;
  return this->SetRequestedValue(this->m_default);
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::SetToMin() {
  double min = 0;
  const HRESULT read = this->GetMinValue(&min);
  return FAILED(read) ? read : this->SetRequestedValue(min);
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::SetToMax() {
  double max = 0;
  const HRESULT read = this->GetMaxValue(&max);
  return FAILED(read) ? read : this->SetRequestedValue(max);
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::get_Value(VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  (void)VariantClear(value);
  value->vt = VT_R8;
  value->dblVal = this->GetAdaptedValue();
  return S_OK;
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::put_Value(VARIANT value) {
  if (value.vt == VT_R8) return this->SetRequestedValue(value.dblVal);
  CComVariant copy;
  HRESULT result = VariantChangeType(&copy, &value, 0, VT_R8);
  if (SUCCEEDED(result)) return this->SetRequestedValue(copy.dblVal);
  result = VariantChangeType(&copy, &value, 0, VT_BSTR);
  return FAILED(result) ? result : this->SetRequestedValueFromStringScreen(copy.bstrVal);
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::get_IsValueAdapted(int* adapted) {
  if (adapted == nullptr) return E_POINTER;
  const double requested = this->m_requested;
  *adapted =
      cvars::NearlyEqual(this->GetAdaptedValue(), requested, std::fabs(requested) * 2e-14) ? 0 : 1;
  return S_OK;
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::SetDefaultValue(double value) {
  if (!std::isfinite(value)) return E_INVALIDARG;
  if (value == this->m_default) return S_FALSE;
  this->m_default = value;
  return this->Notify(NOTIFY_ATTRIBUTES);
}

// Range
// --------------------------------------------------------------------------------------------

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::SetGrain(double grain) {
  if (!std::isfinite(grain)) return E_INVALIDARG;
  if (grain == m_grain) return S_FALSE;
  m_grain = grain;
  return S_OK;
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::SetMax(double max) {
  if (!std::isfinite(max)) return E_INVALIDARG;
  const bool lowersMin = max < m_min;
  if (lowersMin) m_min = max;
  if (max == m_max && !lowersMin) return S_FALSE;
  m_max = max;
  return S_OK;
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::SetMin(double min) {
  if (!std::isfinite(min)) return E_INVALIDARG;
  const bool raisesMax = min > m_max;
  if (raisesMax) m_max = min;
  if (min == m_min && !raisesMax) return S_FALSE;
  m_min = min;
  return S_OK;
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::SetGrainValue(double grain) {
  const HRESULT set = SetGrain(grain);
  return set == S_OK ? UpdateAdaptedValueAndNotifyRange() : set;
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::SetMaxValue(double max) {
  const HRESULT set = SetMax(max);
  return set == S_OK ? UpdateAdaptedValueAndNotifyRange() : set;
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::SetMinValue(double min) {
  const HRESULT set = SetMin(min);
  return set == S_OK ? UpdateAdaptedValueAndNotifyRange() : set;
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::SetUnitRemoteString(const wchar_t* unit) {
  bool changed = false;
  const HRESULT set = m_unit.Set(unit, &changed);
  return changed ? this->ForceNotification(NOTIFY_UNIT) : set;
}

template <class T, class Interface>
void IVorCvarDoubleImpl<T, Interface>::SetRangeAttributes(double defaultValue, const wchar_t* unit,
                                                          const wchar_t* guiHints,
                                                          unsigned int helpStringID,
                                                          bool setDefault) {
  if (unit != nullptr) (void)SetUnitRemoteString(unit);  // a refused unit leaves the old one
  if (guiHints != nullptr) this->SetGuiHints(guiHints);
  if (helpStringID != 0) this->StoreHelpStringID(helpStringID);
  if (setDefault && defaultValue != this->m_default) {
    this->m_default = defaultValue;
    this->AddPending(NOTIFY_ATTRIBUTES);
  }
}

template <class T, class Interface>
void IVorCvarDoubleImpl<T, Interface>::FinishInitialize(double defaultValue, CVARFLAGS flags,
                                                        CVARREPLICATIONFLAGS replicationFlags) {
  (void)this->SetRequestedValue(defaultValue);  // a default that is not finite leaves the request
  this->SetReplicationFlags(replicationFlags);
  this->SetFlags(static_cast<long>(flags));
}

// Replication
// ---------------------------------------------------------------------------------------

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) {
  const cvars::ScopedSuspension suspension(*this);
  CComPtr<IVorCvarDouble> theirs;
  if (source != nullptr) {
    (void)source->QueryInterface(IID_IVorCvarDouble, reinterpret_cast<void**>(&theirs));
  }
  if (theirs != nullptr) {
    // What cannot be read or taken stays as it is; the result is that of the value's copy.
    const CVARREPLICATIONFLAGS copies = this->ReplicationFlags();
    double number = 0;
    if ((copies & REPLICATE_RANGE) != 0 && (what & NOTIFY_RANGE) != 0) {
      if (SUCCEEDED(theirs->GetMinValue(&number))) (void)this->SetMinValue(number);
      if (SUCCEEDED(theirs->GetMaxValue(&number))) (void)this->SetMaxValue(number);
      if (SUCCEEDED(theirs->GetGrainValue(&number))) (void)this->SetGrainValue(number);
    }
    if ((copies & REPLICATE_UNIT) != 0 && (what & NOTIFY_UNIT) != 0) {
      CComBSTR unit;
      if (SUCCEEDED(theirs->GetUnitRemoteString(&unit))) (void)this->SetUnitRemoteString(unit);
    }
    if ((copies & REPLICATE_DEFAULT) != 0 && (what & NOTIFY_ATTRIBUTES) != 0) {
      if (SUCCEEDED(theirs->GetDefaultValue(&number))) (void)this->SetDefaultValue(number);
    }
  }
  return Base::OnCvarNotify(source, what);
}
