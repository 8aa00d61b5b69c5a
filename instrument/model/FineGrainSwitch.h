#pragma once

#include "Cvars.h"

namespace cvars::model {

/// Adds a switch "Fine Grain" to a bag, which lets the bag's "Scale" take finer values.
class FineGrainSwitch {
 public:
  /// @param bag  has a lockstep cvar "Scale", which outlives this.
  explicit FineGrainSwitch(CCvarBag& bag);
  ~FineGrainSwitch();
  FineGrainSwitch(const FineGrainSwitch&) = delete;
  FineGrainSwitch& operator=(const FineGrainSwitch&) = delete;

 private:
  const CComPtr<IVorCvar> m_scale;  // keeps what the switch is bound to
  const CComPtr<CvarObject<CCvarBoolToFineGrainOn>> m_switch;
};

}  // namespace cvars::model
