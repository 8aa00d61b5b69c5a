#include "instrument/model/ProbeScale.h"

#include <atomic>
#include <stdexcept>

namespace cvars::model {

/// Ties the scale at the tip anew when the attenuation changes.
class ProbeScale::Follower final : public IVorCvarEventSink {
 public:
  Follower(CvarObject<CCvarDoubleIndirect>* tip, IVorCvarDouble* scale)
      : m_tip(tip), m_scale(scale) {}

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IVorCvarEventSink) return E_NOINTERFACE;
    *object = static_cast<IVorCvarEventSink*>(this);
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++m_references; }
  ULONG Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }
  HRESULT OnCvarNotify(IVorCvar* attenuation, NOTIFYTYPE what) override {
    if ((what & NOTIFY_VALUE) == 0) return S_OK;
    CComVariant factor;
    if (const HRESULT read = attenuation->get_Value(&factor); read != S_OK) return read;
    Tie(factor.dblVal);
    return m_tip->ForceNotification(NOTIFY_VALUE | NOTIFY_RANGE);
  }

  void Tie(double factor) {
    double defaultValue = 0;
    double min = 0;
    double max = 0;
    (void)m_scale->GetDefaultValue(&defaultValue);  // a number of its own cannot fail
    (void)m_scale->GetMinValue(&min);
    (void)m_scale->GetMaxValue(&max);
    m_tip->CleanUp();
    m_tip->Initialize(CComBSTR(L"Probe Scale"), nullptr, m_scale, factor, 0, factor * defaultValue,
                      factor * min, factor * max, -4, CComBSTR(L"V"), CVARFLAG_COMPACT, CComBSTR());
  }

 private:
  ~Follower() = default;

  std::atomic<ULONG> m_references{1};
  CComPtr<CvarObject<CCvarDoubleIndirect>> m_tip;
  CComPtr<IVorCvarDouble> m_scale;
};

ProbeScale::ProbeScale(CCvarBag& channel)
    : m_tip(CvarObject<CCvarDoubleIndirect>::Create()),
      m_attenuation(channel.Find(L"Probe Attenuation")) {
  const CComPtr<IVorCvar> found = channel.Find(L"Scale");
  CComPtr<IVorCvarDouble> scale;
  if (m_attenuation == nullptr || found == nullptr ||
      found->QueryInterface(IID_IVorCvarDouble, reinterpret_cast<void**>(&scale)) != S_OK) {
    throw std::logic_error("a channel lacks what its probe needs");
  }
  CComPtr<Follower> follower;
  follower.Attach(new Follower(m_tip, scale));
  follower->Tie(1);
  m_follower = follower.p;
  (void)m_attenuation->AttachCvarEventSink(m_follower);
  if (channel.Add(m_tip) != S_OK) throw std::logic_error("a cvar does not fit into its bag");
}

ProbeScale::~ProbeScale() {
  (void)m_attenuation->DetachCvarEventSink(m_follower);  // nobody else takes it off
  m_tip->CleanUp();
}

}  // namespace cvars::model
