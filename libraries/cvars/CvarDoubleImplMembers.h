#pragma once

// The members of IVorCvarDoubleImpl, for the sources of the classes that instantiate it.

#include "CvarDoubleImpl.h"
#include "NumericCvarMembers.h"

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::get_NumberOfIncrement(double* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  if (!(m_grain > 0)) return E_FAIL;
  *count = (m_max - m_min) / m_grain;
  return S_OK;
}

// Texts -------------------------------------------------------------------------------------------

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::FormatAdapted(std::wstring_view unit,
                                                        cvars::NumberStyle style, BSTR* text) {
  if (text == nullptr) return E_POINTER;
  return cvars::FormatNumber(this->GetAdaptedValue(), m_grain, unit, style, cvars::kNumberWidth,
                             text);
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::RequestRead(const wchar_t*, double value) {
  return this->SetRequestedValue(value);
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::get_Range(BSTR* text) {
  const double grain = m_grain;
  if (text == nullptr || !(grain < 0)) return Base::get_Range(text);
  std::wstring range = L"From ";
  cvars::AppendGeneral(range, m_min);
  range += L" to ";
  cvars::AppendGeneral(range, m_max);
  range += L" step (";
  cvars::AppendDecimal(range, cvars::SignificantDigits(grain));
  range += L" digits)";
  return cvars::CopyOut(range, text);
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
bool IVorCvarDoubleImpl<T, Interface>::RoundAndSetAdapted(double value, double grain) {
  return SetAdapted(cvars::RoundToStep(value, cvars::EffectiveStep(value, grain)));
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::get_IsValueAdapted(int* adapted) {
  if (adapted == nullptr) return E_POINTER;
  const double requested = this->m_requested;
  *adapted =
      cvars::NearlyEqual(this->GetAdaptedValue(), requested, std::fabs(requested) * 2e-14) ? 0 : 1;
  return S_OK;
}

// Range -------------------------------------------------------------------------------------------

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
  return set == S_OK ? this->UpdateAdaptedValueAndNotifyRange() : set;
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::SetMaxValue(double max) {
  const HRESULT set = SetMax(max);
  return set == S_OK ? this->UpdateAdaptedValueAndNotifyRange() : set;
}

template <class T, class Interface>
HRESULT IVorCvarDoubleImpl<T, Interface>::SetMinValue(double min) {
  const HRESULT set = SetMin(min);
  return set == S_OK ? this->UpdateAdaptedValueAndNotifyRange() : set;
}

template <class T, class Interface>
void IVorCvarDoubleImpl<T, Interface>::CopyRange(IVorCvarDouble& source) {
  double number = 0;
  if (SUCCEEDED(source.GetMinValue(&number))) (void)this->SetMinValue(number);
  if (SUCCEEDED(source.GetMaxValue(&number))) (void)this->SetMaxValue(number);
  if (SUCCEEDED(source.GetGrainValue(&number))) (void)this->SetGrainValue(number);
}
