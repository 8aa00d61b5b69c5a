#include "ListenerProxy.h"

#include "CvarCore.h"

namespace cvars {

namespace {

/// A reference to a cvar that is not on its way out.
class CvarInUse {
 public:
  explicit CvarInUse(CvarCore* cvar) noexcept
      : m_cvar(cvar != nullptr && cvar->TryAddReference() ? cvar : nullptr) {}
  ~CvarInUse() {
    if (m_cvar != nullptr) m_cvar->ReleaseReference();
  }
  CvarInUse(const CvarInUse&) = delete;
  CvarInUse& operator=(const CvarInUse&) = delete;

  explicit operator bool() const noexcept { return m_cvar != nullptr; }

 private:
  CvarCore* const m_cvar;
};

}  // namespace

CComPtr<ListenerProxy> ListenerProxy::Make(CvarCore& cvar, IVorCvarEventSink* listener) {
  CComPtr<ListenerProxy> proxy;
  proxy.Attach(new ListenerProxy(cvar, listener));
  return proxy;
}

void ListenerProxy::Sever() noexcept {
  const platform::ScopedLock guard(m_lock);
  m_cvar = nullptr;
}

HRESULT ListenerProxy::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (iid != IID_IUnknown && iid != IID_IVorCvarEventSink) return E_NOINTERFACE;
  *object = static_cast<IVorCvarEventSink*>(this);
  AddRef();
  return S_OK;
}

ULONG ListenerProxy::AddRef() { return m_references.fetch_add(1, std::memory_order_relaxed) + 1; }

ULONG ListenerProxy::Release() {
  const ULONG left = m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
  if (left == 0) delete this;
  return left;
}

HRESULT ListenerProxy::OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) {
  m_lock.lock();
  const CvarInUse cvar(m_cvar);  // its memory is there as long as the lock is held
  m_lock.unlock();
  return cvar ? m_listener->OnCvarNotify(source, what) : S_OK;
}

}  // namespace cvars
