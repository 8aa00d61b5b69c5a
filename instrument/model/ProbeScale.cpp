#include "instrument/model/ProbeScale.h"

#include <stdexcept>

namespace cvars::model {

/// The scale as it is at the tip. It steps as the channel's scale does, whose points lie further
/// apart than any grain.
class ProbeScale::Tip : public CCvarDoubleIndirect {
 public:
  void StepWith(IVorCvarDouble* scale) { m_scale = scale; }
  HRESULT Increment(int steps) override { return m_scale->Increment(steps); }

 protected:
  Tip() = default;
  ~Tip() = default;

 private:
  CComPtr<IVorCvarDouble> m_scale;
};

// Shows the scale multiplied by another factor.
void ProbeScale::Tie(CvarObject<Tip>& tip, IVorCvarDouble* scale, double factor) {
  double defaultValue = 0;
  double min = 0;
  double max = 0;
  (void)scale->GetDefaultValue(&defaultValue);  // a number of its own cannot fail
  (void)scale->GetMinValue(&min);
  (void)scale->GetMaxValue(&max);
  tip.CleanUp();
  tip.Initialize(CComBSTR(L"Probe Scale"), nullptr, scale, factor, 0, factor * defaultValue,
                 factor * min, factor * max, -4, CComBSTR(L"V"), CVARFLAG_COMPACT, CComBSTR());
}

ProbeScale::ProbeScale(CCvarBag& channel)
    : m_tip(CvarObject<Tip>::Create()), m_attenuation(channel.Find(L"Probe Attenuation")) {
  const CComPtr<IVorCvar> found = channel.Find(L"Scale");
  CComPtr<IVorCvarDouble> scale;
  if (m_attenuation == nullptr || found == nullptr || found.QueryInterface(&scale) != S_OK) {
    throw std::logic_error("a channel lacks what its probe needs");
  }
  m_tip->StepWith(scale);
  Tie(*m_tip, scale, 1);
  m_follower = FunctionListener::Create(
      [tip = m_tip, scale](IVorCvar* attenuation, NOTIFYTYPE what) -> HRESULT {
        if ((what & NOTIFY_VALUE) == 0) return S_OK;
        CComVariant factor;
        if (const HRESULT read = attenuation->get_Value(&factor); read != S_OK) return read;
        Tie(*tip, scale, factor.dblVal);
        return tip->ForceNotification(NOTIFY_VALUE | NOTIFY_RANGE);
      });
  (void)m_attenuation->AttachCvarEventSink(m_follower);
  if (channel.Add(m_tip) != S_OK) throw std::logic_error("a cvar does not fit into its bag");
}

ProbeScale::~ProbeScale() {
  (void)m_attenuation->DetachCvarEventSink(m_follower);  // nobody else takes it off
  m_tip->CleanUp();
}

}  // namespace cvars::model
