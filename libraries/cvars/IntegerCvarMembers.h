#pragma once

// The members of IntegerCvar, for the sources of the classes that instantiate it.

#include <algorithm>
#include <cmath>
#include <limits>

#include "IntegerCvar.h"
#include "NumberScan.h"
#include "NumericCvarMembers.h"

namespace cvars {

template <class T, class Interface, class Integer>
void IntegerCvar<T, Interface, Integer>::Initialize(const wchar_t* name, Integer defaultValue,
                                                    Integer min, Integer max, Integer grain,
                                                    const wchar_t* unit, CVARFLAGS flags,
                                                    const wchar_t* guiHints,
                                                    unsigned int helpStringID,
                                                    CVARREPLICATIONFLAGS replicationFlags) {
  const SilentScope silence(*this);
  this->SetName(name);
  (void)SetRange(defaultValue, min, max, grain, unit, guiHints, helpStringID, true);
  this->FinishInitialize(defaultValue, flags, replicationFlags);
}

template <class T, class Interface, class Integer>
HRESULT IntegerCvar<T, Interface, Integer>::SetRange(Integer defaultValue, Integer min, Integer max,
                                                     Integer grain, const wchar_t* unit,
                                                     const wchar_t* guiHints,
                                                     unsigned int helpStringID, bool setDefault) {
  this->SetRangeAttributes(defaultValue, unit, guiHints, helpStringID, setDefault);
  min = std::min(min, max);
  grain = std::max(grain, Integer{1});
  if (grain != m_grain || min != m_min || max != m_max) {
    this->AddPending(NOTIFY_RANGE);
    m_grain = grain;
    m_min = min;
    m_max = max;
    RecomputeOrigin();
    if (this->UpdateAdaptedValue()) this->AddPending(NOTIFY_VALUE);
  }
  return this->NotifyClients(NOTIFY_ALL_CLIENTS, false);
}

template <class T, class Interface, class Integer>
HRESULT IntegerCvar<T, Interface, Integer>::get_NumberOfIncrement(double* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  if (m_grain <= 0) return E_FAIL;
  *count = Lattice().StepCount();
  return S_OK;
}

// Values ------------------------------------------------------------------------------------------

template <class T, class Interface, class Integer>
HRESULT IntegerCvar<T, Interface, Integer>::SetRequestedValue(Integer value, bool force) {
  if (!force && this->HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
  if (value == this->m_requested) return S_OK;
  this->m_requested = value;
  this->AddPending(NOTIFY_REQUESTED);
  return this->UpdateAdaptedValueAndNotify();
}

template <class T, class Interface, class Integer>
bool IntegerCvar<T, Interface, Integer>::UpdateAdaptedValue() {
  return SetAdapted(Lattice().Adapt(this->m_requested));
}

template <class T, class Interface, class Integer>
HRESULT IntegerCvar<T, Interface, Integer>::Increment(int steps) {
  return this->SetRequestedValue(
      Lattice().Stepped(this->GetAdaptedValue(), this->DirectedSteps(steps)));
}

template <class T, class Interface, class Integer>
HRESULT IntegerCvar<T, Interface, Integer>::GetAdaptedValueNorm(double* position) {
  return Base::GetAdaptedValueNorm(position, static_cast<double>(this->GetAdaptedValue()),
                                   static_cast<double>(m_min.Get()),
                                   static_cast<double>(m_max.Get()));
}

template <class T, class Interface, class Integer>
HRESULT IntegerCvar<T, Interface, Integer>::SetRequestedValueNorm(double position) {
  const auto min = static_cast<double>(m_min.Get());
  const auto max = static_cast<double>(m_max.Get());
  const double target = std::nearbyint(min + (max - min) * position);
  // The ends are taken as they are: a double need not hold them.
  if (target == max) return this->SetRequestedValue(m_max);
  if (target == min) return this->SetRequestedValue(m_min);
  const HRESULT requested = RequestCut(target);
  if (requested != DISP_E_OVERFLOW) return requested;
  using Limits = std::numeric_limits<Integer>;
  return this->SetRequestedValue(target < 0 ? Limits::min() : Limits::max());
}

template <class T, class Interface, class Integer>
HRESULT IntegerCvar<T, Interface, Integer>::RequestCut(double value) {
  Integer integer{};
  const HRESULT cut = CutToInteger(value, &integer);
  return FAILED(cut) ? cut : this->SetRequestedValue(integer);
}

template <class T, class Interface, class Integer>
HRESULT IntegerCvar<T, Interface, Integer>::put_Value(VARIANT value) {
  const VARTYPE type = value.vt & VT_TYPEMASK;
  if (type == VT_R8 || type == VT_R4) {
    CComVariant real;
    const HRESULT read = VariantChangeType(&real, &value, 0, VT_R8);
    if (SUCCEEDED(read) && !std::isfinite(real.dblVal)) return E_INVALIDARG;
  }
  return Base::put_Value(value);
}

template <class T, class Interface, class Integer>
HRESULT IntegerCvar<T, Interface, Integer>::RequestRead(const wchar_t* text, double value) {
  if constexpr (sizeof(Integer) == sizeof(std::int64_t)) {
    std::int64_t exact = 0;
    if (ScanExactInteger(text, value, &exact)) return this->SetRequestedValue(exact);
  }
  return RequestCut(value);
}

template <class T, class Interface, class Integer>
HRESULT IntegerCvar<T, Interface, Integer>::FormatAdapted(std::wstring_view unit, NumberStyle style,
                                                          BSTR* text) {
  if (text == nullptr) return E_POINTER;
  return FormatInteger(this->GetAdaptedValue(), unit, style, text);
}

// Range -------------------------------------------------------------------------------------------

template <class T, class Interface, class Integer>
void IntegerCvar<T, Interface, Integer>::SetGrain(Integer grain) {
  grain = std::max(grain, Integer{1});
  if (grain == m_grain) return;
  m_grain = grain;
  RecomputeOrigin();
  (void)this->UpdateAdaptedValueAndNotifyRange();  // the setters of a range return nothing
}

template <class T, class Interface, class Integer>
void IntegerCvar<T, Interface, Integer>::SetMax(Integer max) {
  const bool lowersMin = max < m_min;
  if (lowersMin) m_min = max;
  if (max == m_max && !lowersMin) return;
  m_max = max;
  (void)this->UpdateAdaptedValueAndNotifyRange();
}

template <class T, class Interface, class Integer>
void IntegerCvar<T, Interface, Integer>::SetMin(Integer min) {
  const bool raisesMax = min > m_max;
  if (raisesMax) m_max = min;
  if (min == m_min && !raisesMax) return;
  m_min = min;
  RecomputeOrigin();
  (void)this->UpdateAdaptedValueAndNotifyRange();
}

template <class T, class Interface, class Integer>
void IntegerCvar<T, Interface, Integer>::CopyRange(Interface& source) {
  Integer number{};
  if (SUCCEEDED(source.GetMinValue(&number))) this->SetMin(number);
  if (SUCCEEDED(source.GetMaxValue(&number))) this->SetMax(number);
  if (SUCCEEDED(source.GetGrainValue(&number))) this->SetGrain(number);
}

}  // namespace cvars
