#pragma once

#include "Cvars.h"

namespace cvars::model {

/// The voltage of one division at the tip of a channel's probe: the channel's scale times the
/// attenuation of the probe.
class ProbeScale {
 public:
  /// Adds "Probe Scale" to the bag whose "Scale" and "Probe Attenuation" it puts together.
  explicit ProbeScale(CCvarBag& channel);
  ~ProbeScale();
  ProbeScale(const ProbeScale&) = delete;
  ProbeScale& operator=(const ProbeScale&) = delete;

 private:
  class Tip;

  static void Tie(CvarObject<Tip>& tip, IVorCvarDouble* scale, double factor);

  CComPtr<CvarObject<Tip>> m_tip;
  CComPtr<IVorCvar> m_attenuation;
  CComPtr<IVorCvarEventSink> m_follower;
};

}  // namespace cvars::model
