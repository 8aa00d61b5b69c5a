#pragma once

#include <string>

#include "CvarImpl.h"
#include "GrainRounding.h"
#include "IVorCvarDouble.h"
#include "NumericText.h"
#include "NumericUnit.h"
#include "SignatureText.h"

/// What every cvar of a double shares: range, grain, unit, texts and replication of them.
///
/// The value fields are not locked: callers serialise their changes of one cvar. A new one has the
/// range 1e-300 to 1e300, so that before a range is set every request of 0 or below adapts to
/// 1e-300 first; that is meant.
///
/// @tparam T          CCvarDouble or CCvarDoubleLockstep.
/// @tparam Interface  IVorCvarDouble or an interface derived from it.
template <class T, class Interface>
class CVARS_API IVorCvarDoubleImpl : public IVorCvarImpl<T, Interface, double> {
  using Base = IVorCvarImpl<T, Interface, double>;

 public:
  using Base::GetAdaptedValue;
  using Base::GetAdaptedValueNorm;
  using Base::GetRequestedValue;

  void* FindInterface(REFIID iid) override {
    if (iid == IID_IVorCvarDouble) return static_cast<IVorCvarDouble*>(this);
    return Base::FindInterface(iid);
  }

  // IVorCvarDouble --------------------------------------------------------------------------------

  /// Runs a late update, then reads the adapted value.
  HRESULT GetAdaptedValue(double* value) override {
    if (value == nullptr) return E_POINTER;
    this->PerformLateUpdate();
    *value = this->GetAdaptedValue();
    return S_OK;
  }
  HRESULT GetDefaultValue(double* value) override { return Base::GetDefaultValue(value); }
  HRESULT GetRequestedValue(double* value) override { return Base::GetRequestedValue(value); }
  HRESULT GetGrainValue(double* value) override { return Read(GetGrain(), value); }
  HRESULT GetMaxValue(double* value) override { return Read(GetMax(), value); }
  HRESULT GetMinValue(double* value) override { return Read(GetMin(), value); }
  HRESULT GetUnitRemoteString(BSTR* unit) override { return cvars::CopyOut(m_unit.Remote(), unit); }
  HRESULT SetRequestedValue(double value) override { return SetRequestedValue(value, false); }
  /// Kept for the classes that step coarsely; the plain double only stores it.
  HRESULT get_CoarseGrain(double* grain) override { return Read(m_coarseGrain, grain); }
  HRESULT put_CoarseGrain(double grain) override {
    m_coarseGrain = grain;
    return S_OK;
  }
  /// @param[out] count  (max - min) / grain; 0 on failure.
  /// @retval E_FAIL  the grain is not above 0
  HRESULT get_NumberOfIncrement(double* count) override;

  // The common interface
  // ----------------------------------------------------------------------------

  HRESULT GetAdaptedValueNorm(double* position) override {
    return Base::GetAdaptedValueNorm(position, this->GetAdaptedValue(), m_min, m_max);
  }
  HRESULT SetRequestedValueNorm(double position) override {
    return this->SetRequestedValue(m_min + (m_max - m_min) * position);
  }
  HRESULT GetAdaptedValueStringScreen(BSTR* text) override;
  HRESULT GetAdaptedValueStringRemote(BSTR* text) override;
  HRESULT GetAdaptedValueStringRemoteNoUnit(BSTR* text) override;
  /// Reads a remote text.
  HRESULT SetRequestedValueFromString(const wchar_t* text) override {
    return this->SetRequestedValueFromStringRemote(text);
  }
  HRESULT SetRequestedValueFromStringScreen(const wchar_t* text) override;
  HRESULT SetRequestedValueFromStringRemote(const wchar_t* text) override;
  /// Requests adapted + steps x the effective step at the adapted value; CVARFLAG_REVERSEINCREMENT
  /// turns the direction.
  HRESULT Increment(int steps) override;
  /// Forgets the coarse grain and requests the default.
  HRESULT SetToDefault() override;
  HRESULT SetToMin() override;
  HRESULT SetToMax() override;
  /// VT_R8.
  HRESULT get_Value(VARIANT* value) override;
  /// Requests a number, or what a screen text says when the variant does not convert to one.
  HRESULT put_Value(VARIANT value) override;
  HRESULT get_Range(BSTR* text) override;
  HRESULT get_IsValueAdapted(int* adapted) override;
  HRESULT get_Signature(BSTR* text) override;
  HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) override;

  // Class side
  // -----------------------------------------------------------------------------------------

  HRESULT UpdateAdaptedValueAndNotify() override {
    if (UpdateAdaptedValue()) this->AddPending(NOTIFY_VALUE);
    return this->NotifyClients(NOTIFY_ALL_CLIENTS, false);
  }

  /// Stores a request and adapts it. Sets NOTIFY_REQUESTED, and NOTIFY_VALUE when the adapted value
  /// moves.
  ///
  /// @param force  writes a read-only cvar too.
  /// @retval E_INVALIDARG    not finite
  /// @retval E_ACCESSDENIED  read-only and not forced
  /// @retval S_OK            also for the request that is there already, which tells nobody
  /// @return otherwise what the listeners answered
  virtual HRESULT SetRequestedValue(double value, bool force) {
    if (!force && this->HasFlag(CVARFLAG_READONLY)) {
      return std::isfinite(value) ? E_ACCESSDENIED : E_INVALIDARG;
    }
    const double old = this->m_requested;  // always finite
    if (value == old) return S_OK;
    if (!std::isfinite(value)) return E_INVALIDARG;
    if (std::fabs(value - old) <= cvars::WriteTolerance(old)) return S_OK;
    this->m_requested = value;
    this->AddPending(NOTIFY_REQUESTED);
    return this->UpdateAdaptedValueAndNotify();
  }
  virtual double GetRequested() { return this->m_requested; }
  virtual double GetMax() { return m_max; }
  virtual double GetMin() { return m_min; }
  virtual double GetGrain() { return m_grain; }
  /// Sets NOTIFY_ATTRIBUTES. @retval E_INVALIDARG  not finite  @retval S_FALSE  no change
  virtual HRESULT SetDefaultValue(double value);
  /// Sets NOTIFY_RANGE, and NOTIFY_VALUE when the adapted value moves; the same for the next two.
  /// @retval E_INVALIDARG  not finite  @retval S_FALSE  no change
  virtual HRESULT SetGrainValue(double grain);
  /// Lowers the minimum with it when that lies above.
  virtual HRESULT SetMaxValue(double max);
  /// Raises the maximum with it when that lies below.
  virtual HRESULT SetMinValue(double min);
  /// Sets NOTIFY_UNIT when the unit changes.
  /// @retval E_INVALIDARG  not a valid unit, or nobody can tell
  virtual HRESULT SetUnitRemoteString(const wchar_t* unit);
  virtual std::wstring GetUnitStringRemote() { return std::wstring(m_unit.Remote()); }
  virtual std::wstring GetUnitStringScreen() { return std::wstring(m_unit.Screen()); }

  /// Fits the request to the range. @return whether the adapted value changed
  virtual bool UpdateAdaptedValue() = 0;
  /// As UpdateAdaptedValueAndNotify; sets NOTIFY_RANGE.
  virtual HRESULT UpdateAdaptedValueAndNotifyRange() {
    this->AddPending(NOTIFY_RANGE);
    return this->UpdateAdaptedValueAndNotify();
  }

 protected:
  IVorCvarDoubleImpl() = default;
  ~IVorCvarDoubleImpl() = default;

  /// Stores the adapted value in every case. @return whether it differs by more than rounding
  bool SetAdapted(double value) {
    const bool changed = !cvars::NearlyEqual(value, this->m_adapted, cvars::WriteTolerance(value));
    this->m_adapted = value;
    return changed;
  }
  HRESULT SetGrain(double grain);
  HRESULT SetMax(double max);
  HRESULT SetMin(double min);

  /// The steps of a range change that do not touch the range: unit, hints, help and default.
  void SetRangeAttributes(double defaultValue, const wchar_t* unit, const wchar_t* guiHints,
                          unsigned int helpStringID, bool setDefault);
  /// The common end of Initialize, after the range: request, replication flags, flags.
  void FinishInitialize(double defaultValue, CVARFLAGS flags,
                        CVARREPLICATIONFLAGS replicationFlags);

  HRESULT FillCvarPropertiesMap(cvars::PropertiesMap& map) override;

  cvars::Relaxed<double> m_grain{1.0};
  cvars::Relaxed<double> m_max{1e300};
  cvars::Relaxed<double> m_min{1e-300};
  cvars::NumericUnit m_unit;
  cvars::Relaxed<double> m_coarseGrain{0.0};

 private:
  static HRESULT Read(double field, double* value) {
    if (value == nullptr) return E_POINTER;
    *value = field;
    return S_OK;
  }
  HRESULT FormatAdapted(std::wstring_view unit, cvars::NumberStyle style, BSTR* text);
};
