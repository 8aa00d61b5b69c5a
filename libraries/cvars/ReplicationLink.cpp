#include "ReplicationLink.h"

namespace cvars {

CComPtr<ReplicationLink> ReplicationLink::Make(IVorCvarEventSink* listener) {
  CComPtr<ReplicationLink> link;
  link.Attach(new ReplicationLink(listener));
  return link;
}

HRESULT ReplicationLink::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  if (iid != IID_IVorCvarEventSink) return m_listener->QueryInterface(iid, object);
  *object = static_cast<IVorCvarEventSink*>(this);
  AddRef();
  return S_OK;
}

ULONG ReplicationLink::AddRef() { return m_references.fetch_add(1, std::memory_order_relaxed) + 1; }

ULONG ReplicationLink::Release() {
  const ULONG left = m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
  if (left == 0) delete this;
  return left;
}

HRESULT ReplicationLink::OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) {
  return m_cut.load() ? S_OK : m_listener->OnCvarNotify(source, what);
}

}  // namespace cvars
