#include <utility>

#include "DeliveryWorker.h"
#include "IVorAsynchronousCvarNotifier.h"
#include "platform/ComponentModule.h"

namespace cvars {
namespace {

using platform::Component;
using platform::Offers;

/// Posts what it is told to the listener behind it.
class Forwarder final : public Component<Offers<IVorCvarEventSink, IID_IVorCvarEventSink>> {
 public:
  Forwarder(IVorAsynchronousCvarNotifier* notifier, CComPtr<IVorCvarEventSink> listener)
      : m_notifier(notifier), m_listener(std::move(listener)) {}

  HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) override {
    const HRESULT posted = m_notifier->Post(source, what, m_listener);
    return FAILED(posted) ? posted : S_OK;
  }

 private:
  const CComPtr<IVorAsynchronousCvarNotifier> m_notifier;
  const CComPtr<IVorCvarEventSink> m_listener;
};

/// The component "Vortana.AsynchronousCvarNotifier": a worker behind its interface.
///
/// Pairs are told apart by their interface pointers. At most DeliveryWorker::kQueueBound pairs
/// wait; the post of one more waits until there is room.
class AsynchronousCvarNotifier final
    : public Component<Offers<IVorAsynchronousCvarNotifier, IID_IVorAsynchronousCvarNotifier>> {
 public:
  HRESULT CreateForwarder(IUnknown* listener, IVorCvarEventSink** forwarder) override {
    if (forwarder == nullptr) return E_POINTER;
    *forwarder = nullptr;
    if (listener == nullptr) return E_INVALIDARG;
    CComPtr<IVorCvarEventSink> sink;
    if (FAILED(listener->QueryInterface(IID_IVorCvarEventSink, reinterpret_cast<void**>(&sink)))) {
      return E_INVALIDARG;
    }
    *forwarder = new Forwarder(this, std::move(sink));
    return S_OK;
  }

  HRESULT Post(IVorCvar* source, NOTIFYTYPE what, IVorCvarEventSink* listener) override {
    if (source == nullptr || listener == nullptr) return E_INVALIDARG;
    return m_worker.Post(source, what, listener);
  }

  HRESULT Drain(ULONG timeoutMs) override { return m_worker.Drain(timeoutMs); }

  HRESULT Stop() override { return m_worker.Stop(); }

 private:
  DeliveryWorker m_worker;
};

}  // namespace
}  // namespace cvars

HRESULT DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  return cvars::platform::ClassObject<cvars::AsynchronousCvarNotifier>(
      CLSID_AsynchronousCvarNotifier, clsid, iid, object);
}
