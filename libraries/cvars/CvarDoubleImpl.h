#pragma once

#include <cmath>

#include "GrainRounding.h"
#include "IVorCvarDouble.h"
#include "NumericCvar.h"

/// What every cvar of a double shares: its range, and requests rounded to a grain.
///
/// A new one has the range 1e-300 to 1e300, so that before a range is set every request of 0 or
/// below adapts to 1e-300 first; that is meant.
///
/// @tparam T          CCvarDouble or CCvarDoubleLockstep.
/// @tparam Interface  IVorCvarDouble or an interface derived from it.
template <class T, class Interface>
class CVARS_API IVorCvarDoubleImpl
    : public cvars::NumericCvar<T, Interface, IVorCvarDouble, double> {
  using Base = cvars::NumericCvar<T, Interface, IVorCvarDouble, double>;

 public:
  using Base::GetAdaptedValueNorm;
  using Base::SetRequestedValue;

  /// @param[out] count  (max - min) / grain; 0 on failure.
  /// @retval E_FAIL  the grain is not above 0
  HRESULT get_NumberOfIncrement(double* count) override;

  HRESULT GetAdaptedValueNorm(double* position) override {
    return Base::GetAdaptedValueNorm(position, this->GetAdaptedValue(), m_min, m_max);
  }
  HRESULT SetRequestedValueNorm(double position) override {
    return this->SetRequestedValue(m_min + (m_max - m_min) * position);
  }
  /// Requests adapted + steps x the effective step at the adapted value; CVARFLAG_REVERSEINCREMENT
  /// turns the direction.
  HRESULT Increment(int steps) override;
  /// Ends in "(n digits)" when the grain is a number of significant digits.
  HRESULT get_Range(BSTR* text) override;
  HRESULT get_IsValueAdapted(int* adapted) override;

  HRESULT SetRequestedValue(double value, bool force) override {
    if (!force && this->HasFlag(CVARFLAG_READONLY)) {
      return std::isfinite(value) ? E_ACCESSDENIED : E_INVALIDARG;
    }
    const double old = this->m_requested;  // always finite
    if (value == old) [[likely]] {
      return S_OK;
    }
    const double difference = std::fabs(value - old);
    const bool differs = difference > cvars::WriteTolerance(old);
    if (!differs || !std::isfinite(difference)) [[unlikely]] {
      if (!std::isfinite(value)) return E_INVALIDARG;
      if (!differs) return S_OK;
    }
    this->m_requested = value;
    this->AddPending(NOTIFY_REQUESTED);
    return this->UpdateAdaptedValueAndNotify();
  }
  /// Clamps the request and rounds it to the grain. The result is not clamped again, so it may lie
  /// outside the range by up to half a grain; that is meant.
  bool UpdateAdaptedValue() override {
    const double clamped = cvars::ClampToRange(this->m_requested, m_min, m_max);
    const double grain = m_grain;
    double rounded;
    if (cvars::RoundQuickly(clamped, grain, rounded) &&
        std::fabs(rounded - this->m_adapted) > cvars::WriteTolerance(rounded)) [[likely]] {
      this->m_adapted = rounded;
      return true;
    }
    return RoundAndSetAdapted(clamped, grain);
  }
  /// Sets NOTIFY_RANGE, and NOTIFY_VALUE when the adapted value moves; the same for the next two.
  /// @retval E_INVALIDARG  not finite  @retval S_FALSE  no change
  virtual HRESULT SetGrainValue(double grain);
  /// Lowers the minimum with it when that lies above.
  virtual HRESULT SetMaxValue(double max);
  /// Raises the maximum with it when that lies below.
  virtual HRESULT SetMinValue(double min);

 protected:
  using Base::m_grain;
  using Base::m_max;
  using Base::m_min;

  IVorCvarDoubleImpl() : Base(1e-300, 1e300) {}
  ~IVorCvarDoubleImpl() = default;

  /// Stores the adapted value in every case. @return whether it differs by more than rounding
  bool SetAdapted(double value) {
    const bool changed = !cvars::NearlyEqual(value, this->m_adapted, cvars::WriteTolerance(value));
    this->m_adapted = value;
    return changed;
  }
  bool RoundAndSetAdapted(double value, double grain);
  /// What the setters of the range store; they adapt and notify after S_OK only. The same for the
  /// next two. A derived class may limit or refuse what it is given.
  /// @retval E_INVALIDARG  not finite  @retval S_FALSE  no change
  virtual HRESULT SetGrain(double grain);
  virtual HRESULT SetMax(double max);
  virtual HRESULT SetMin(double min);

  HRESULT RequestRead(const wchar_t* text, double value) override;
  HRESULT FormatAdapted(std::wstring_view unit, cvars::NumberStyle style, BSTR* text) override;
  void CopyRange(IVorCvarDouble& source) override;
};
