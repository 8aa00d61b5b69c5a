#pragma once

#include "CCvarDouble.h"
#include "ValueSetCvar.h"

/// A double that takes one of a set of values; its grain can follow the value.
class CVARS_API CCvarDoubleSet : public cvars::ValueSetCvar<CCvarDouble> {
 public:
  /// Names and configures the cvar and requests its default; tells nobody.
  ///
  /// The range stays as it is; it bounds the value while fine grain is enabled.
  /// @param values            copied; in base units of `unit`.
  /// @param divisor           above 0 the grain is kept at the value divided by it.
  /// @param fineGrainEnabled  adapts as a plain double does, whatever the members.
  /// @param minimumGrain      smallest grain that the divisor gives.
  void Initialize(const wchar_t* name, double defaultValue, const std::set<double>& values,
                  AdaptPolicy policy, double divisor, bool fineGrainEnabled, double minimumGrain,
                  const wchar_t* unit, CVARFLAGS flags, const wchar_t* guiHints,
                  unsigned int helpStringID, CVARREPLICATIONFLAGS replicationFlags);

  /// Replaces what describes the set; tells nobody and does not adapt the value again.
  void SetRangeNoNotify(const std::set<double>& values, AdaptPolicy policy, double divisor,
                        bool fineGrainEnabled, double minimumGrain);
  /// Replaces what describes the set; does not adapt the value again. Sets NOTIFY_RANGE on a
  /// change.
  HRESULT SetRange(const std::set<double>& values, AdaptPolicy policy, double divisor,
                   bool fineGrainEnabled, double minimumGrain);
  /// The same, with the attributes that CCvarDouble::SetRange has.
  HRESULT SetRange(double defaultValue, const std::set<double>& values, AdaptPolicy policy,
                   double divisor, bool fineGrainEnabled, double minimumGrain, const wchar_t* unit,
                   const wchar_t* guiHints, unsigned int helpStringID, bool setDefault);

  /// Takes a member, and then the grain that belongs to it. A grain that moves is told by a
  /// notification of its own, before that of the value.
  bool UpdateAdaptedValue() override;

 protected:
  CCvarDoubleSet() = default;
  ~CCvarDoubleSet() = default;

 private:
  using Base = cvars::ValueSetCvar<CCvarDouble>;

  bool StoreWithDivisor(const std::set<double>& values, AdaptPolicy policy, double divisor,
                        bool fineGrainEnabled, double minimumGrain);

  cvars::Relaxed<double> m_divisor{0.0};
};

extern template class cvars::ValueSetCvar<CCvarDouble>;
