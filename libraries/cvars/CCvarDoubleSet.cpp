#include "CCvarDoubleSet.h"

#include <algorithm>

template class cvars::ValueSetCvar<CCvarDouble>;

bool CCvarDoubleSet::StoreWithDivisor(const std::set<double>& values, AdaptPolicy policy,
                                      double divisor, bool fineGrainEnabled, double minimumGrain) {
  const std::lock_guard guard(m_lock);
  const bool changed = m_divisor != divisor;
  m_divisor = divisor;
  return StoreSet(values, policy, fineGrainEnabled, minimumGrain) || changed;
}

void CCvarDoubleSet::SetRangeNoNotify(const std::set<double>& values, AdaptPolicy policy,
                                      double divisor, bool fineGrainEnabled, double minimumGrain) {
  (void)StoreWithDivisor(values, policy, divisor, fineGrainEnabled, minimumGrain);
}

void CCvarDoubleSet::Initialize(const wchar_t* name, double defaultValue,
                                const std::set<double>& values, AdaptPolicy policy, double divisor,
                                bool fineGrainEnabled, double minimumGrain, const wchar_t* unit,
                                CVARFLAGS flags, const wchar_t* guiHints, unsigned int helpStringID,
                                CVARREPLICATIONFLAGS replicationFlags) {
  SetRangeNoNotify(values, policy, divisor, fineGrainEnabled, minimumGrain);
  Base::Initialize(name, defaultValue, m_min, m_max, m_grain, unit, flags, guiHints, helpStringID,
                   replicationFlags);
}

HRESULT CCvarDoubleSet::SetRange(const std::set<double>& values, AdaptPolicy policy, double divisor,
                                 bool fineGrainEnabled, double minimumGrain) {
  return NotifySet(StoreWithDivisor(values, policy, divisor, fineGrainEnabled, minimumGrain));
}

HRESULT CCvarDoubleSet::SetRange(double defaultValue, const std::set<double>& values,
                                 AdaptPolicy policy, double divisor, bool fineGrainEnabled,
                                 double minimumGrain, const wchar_t* unit, const wchar_t* guiHints,
                                 unsigned int helpStringID, bool setDefault) {
  SetRangeAttributes(defaultValue, unit, guiHints, helpStringID, setDefault);
  return SetRange(values, policy, divisor, fineGrainEnabled, minimumGrain);
}

bool CCvarDoubleSet::UpdateAdaptedValue() {
  const bool changed = Base::UpdateAdaptedValue();
  const double divisor = m_divisor;
  if (divisor > 0 && !FineGrainEnabled()) {
    (void)SetGrainValue(std::max(GetAdaptedValue() / divisor, MinimumGrain()));
  }
  return changed;
}
