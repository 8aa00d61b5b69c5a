#pragma once

#include "CLockstep.h"
#include "CvarDoubleImpl.h"
#include "IVorCvarDoubleLockstep.h"

/// A positive setting that moves in fixed steps per decade (1, 2, 5, 10 and the like).
///
/// With fine grain it takes every 1 % of the step around it. It counts as on only while it is
/// allowed too. Bounds are limited to 1e-301..1e301.
class CVARS_API CCvarDoubleLockstep
    : public IVorCvarDoubleImpl<CCvarDoubleLockstep, IVorCvarDoubleLockstep> {
  using Base = IVorCvarDoubleImpl<CCvarDoubleLockstep, IVorCvarDoubleLockstep>;

 public:
  static constexpr const wchar_t* kTypeName = L"DoubleLockstep";

  /// Names and configures the cvar and requests its default; tells nobody. Fine grain is off.
  ///
  /// @param name              copied; "name" or "name|remote name"; null reads as empty.
  /// @param defaultValue      in base units of `unit`, as min and max.
  /// @param lockstep          limited to the known sequences.
  /// @param unit              copied; remote spelling ("V"); null keeps the unit, one that is not
  ///                          valid too.
  /// @param fineGrainAllowed  whether fine grain can be switched on.
  /// @param guiHints          copied; null keeps the hints.
  void Initialize(const wchar_t* name, double defaultValue, double min, double max,
                  LOCKSTEP lockstep, const wchar_t* unit, int fineGrainAllowed, CVARFLAGS flags,
                  const wchar_t* guiHints, unsigned int helpStringID,
                  CVARREPLICATIONFLAGS replicationFlags);

  /// Changes several attributes at once. Sets NOTIFY_UNIT, NOTIFY_GUIHINTS, NOTIFY_ATTRIBUTES,
  /// NOTIFY_RANGE and NOTIFY_VALUE for what changed.
  ///
  /// The grain becomes 1 % of the step at the adapted value. A maximum below the minimum lowers the
  /// minimum.
  HRESULT SetRange(double defaultValue, double min, double max, const wchar_t* unit,
                   const wchar_t* guiHints, unsigned int helpStringID, bool setDefault);

  HRESULT get_Lockstep(LOCKSTEP* lockstep) override;
  HRESULT get_LockStep(LOCKSTEP* lockstep) override { return get_Lockstep(lockstep); }
  /// Sets NOTIFY_RANGE, and NOTIFY_VALUE when the adapted value moves.
  /// @param lockstep  limited to the known sequences. @retval S_FALSE  no change
  HRESULT put_Lockstep(LOCKSTEP lockstep) override;
  /// Moves by fine steps. Sets NOTIFY_RANGE when the grain changes. @retval S_FALSE  fine grain off
  HRESULT IncrementFine(int steps) override;
  HRESULT get_FineGrainAllowed(int* allowed) override {
    return Read(m_fineGrainAllowed.Get(), allowed);
  }
  /// When fine grain goes on or off by it: sets NOTIFY_RANGE, and NOTIFY_VALUE when the adapted
  /// value moves; the same for put_FineGrainOn.
  HRESULT put_FineGrainAllowed(int allowed) override;
  HRESULT get_FineGrainOn(int* on) override { return Read(m_fineGrainOn.Get(), on); }
  HRESULT put_FineGrainOn(int on) override;
  /// Always 0: the sequence is the coarse grain.
  HRESULT get_CoarseGrain(double* grain) override { return Read(0.0, grain); }
  /// Number of coarse steps from min to max.
  HRESULT get_NumberOfIncrement(double* count) override;

  using Base::GetAdaptedValueNorm;
  /// Positions are logarithmic: equal ratios of the value are equal distances.
  HRESULT GetAdaptedValueNorm(double* position) override;
  HRESULT SetRequestedValueNorm(double position) override;
  /// Moves by points of the sequence, or by fine steps while fine grain is on;
  /// CVARFLAG_REVERSEINCREMENT turns the direction.
  HRESULT Increment(int steps) override;
  /// The range of the double, the sequence and the state of fine grain.
  HRESULT get_Range(BSTR* text) override;

  /// Limits the bound to 1e-301..1e301 and raises the maximum with it when that lies below.
  /// @retval E_INVALIDARG  not a number
  /// @return otherwise the first failure of the two bounds, else the first code that is not S_OK
  HRESULT SetMinValue(double min) override;
  /// As SetMinValue; lowers the minimum with it when that lies above.
  HRESULT SetMaxValue(double max) override;

  /// Fits the request to the nearest point, or with fine grain to the fine steps.
  bool UpdateAdaptedValue() override;

 protected:
  CCvarDoubleLockstep() = default;
  ~CCvarDoubleLockstep() = default;

  bool FineGrainOn() const noexcept { return m_fineGrainAllowed != 0 && m_fineGrainOn != 0; }
  /// Sets the grain to the fine step at the adapted value.
  /// @param direction  on a point the step below 1 is that of the decade part under it.
  /// @retval S_FALSE  no change
  HRESULT UpdateGrain(int direction);

  /// Takes over sequence and fine grain too when the source has them.
  void CopyRange(IVorCvarDouble& source) override;

 private:
  HRESULT SwitchFineGrain(cvars::Relaxed<int>& field, int value);

  CLockstep m_lockstep{LOCKSTEP_1_2_25_5};
  cvars::Relaxed<int> m_fineGrainAllowed{0};
  cvars::Relaxed<int> m_fineGrainOn{0};
};

extern template class IVorCvarImpl<CCvarDoubleLockstep, IVorCvarDoubleLockstep, double>;
extern template class cvars::NumericCvar<CCvarDoubleLockstep, IVorCvarDoubleLockstep,
                                         IVorCvarDouble, double>;
extern template class IVorCvarDoubleImpl<CCvarDoubleLockstep, IVorCvarDoubleLockstep>;
