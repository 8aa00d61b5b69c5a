#include <new>
#include <utility>

#include "CComPtr.h"
#include "CComVariant.h"
#include "CvarBag.h"
#include "CvarCore.h"
#include "CvarExtras.h"
#include "ListenerProxy.h"
#include "ReplicationManager.h"

namespace cvars {

namespace {

constexpr NOTIFYTYPE kEverything = static_cast<NOTIFYTYPE>(0xFFFFFFFFu);

bool Listens(CVARREPLICATIONCONNECTIONATTRIBUTES attribute) noexcept {
  return attribute != REPLICATIONCONNECTION_NONE && attribute != REPLICATIONCONNECTION_UNCHANGED;
}

CComPtr<IVorCvarEventSink> ListenerOf(IUnknown* object) {
  CComPtr<IVorCvarEventSink> listener;
  (void)object->QueryInterface(IID_IVorCvarEventSink, reinterpret_cast<void**>(&listener));
  return listener;
}

// The bits of `directions` in the short forms of a connection.
CVARREPLICATIONCONNECTIONATTRIBUTES ThisListens(int directions) noexcept {
  return (directions & 0x1) != 0 ? REPLICATIONCONNECTION_SYNCHRONOUS
                                 : REPLICATIONCONNECTION_UNCHANGED;
}
CVARREPLICATIONCONNECTIONATTRIBUTES OtherListens(int directions) noexcept {
  return (directions & 0x10) != 0 ? REPLICATIONCONNECTION_SYNCHRONOUS
                                  : REPLICATIONCONNECTION_UNCHANGED;
}
CVARREPLICATIONINITIALCOPYDIRECTION Direction(bool copyFromOther) noexcept {
  return copyFromOther ? REPLICATIONCOPY_FROM_OTHER : REPLICATIONCOPY_TO_OTHER;
}

HRESULT FindInBag(IUnknown* bag, const VARIANT& key, CComPtr<IVorCvar>& cvar) {
  if (bag == nullptr) return E_INVALIDARG;
  CComPtr<CvarBag> cvars;
  const HRESULT isBag = bag->QueryInterface(IID_CvarBag, reinterpret_cast<void**>(&cvars));
  return FAILED(isBag) ? isBag : cvars->get_Item(key, &cvar);
}

HRESULT FindInBag(IUnknown* bag, const wchar_t* name, CComPtr<IVorCvar>& cvar) {
  return FindInBag(bag, CComVariant(name), cvar);
}

}  // namespace

CvarExtras::CvarExtras() noexcept = default;

CvarExtras::~CvarExtras() { delete replication.load(std::memory_order_relaxed); }

// The proxy and the manager are made once, by whichever thread needs them first.
CComPtr<ListenerProxy> CvarCore::Proxy() {
  CvarExtras& extras = Extras();
  const platform::ScopedLock guard(m_lock);
  if (extras.proxy == nullptr) {
    // Not held: the proxy must not keep the cvar alive.
    extras.proxy = ListenerProxy::Make(*this, ListenerOf(GetIVorCvar()));
  }
  return extras.proxy;
}

ReplicationManager* CvarCore::Replication() {
  CvarExtras& extras = Extras();
  ReplicationManager* manager = extras.replication.load(std::memory_order_acquire);
  if (manager != nullptr) return manager;
  auto* const made = new (std::nothrow) ReplicationManager(GetIVorCvar());
  if (extras.replication.compare_exchange_strong(manager, made, std::memory_order_acq_rel)) {
    return made;
  }
  delete made;
  return manager;
}

ReplicationManager* CvarCore::ReplicationIfAny() const noexcept {
  const CvarExtras* const extras = ExtrasIfAny();
  return extras == nullptr ? nullptr : extras->replication.load(std::memory_order_acquire);
}

CvarCore* CvarCore::CoreOf(IUnknown* cvar) {
  void* core = nullptr;
  if (cvar == nullptr || FAILED(cvar->QueryInterface(IID_CvarCore, &core))) return nullptr;
  auto* const found = static_cast<CvarCore*>(core);
  found->ReleaseReference();  // the caller holds the cvar
  return found;
}

HRESULT CvarCore::StartReplication(IVorCvar* other, CvarCore* otherCore,
                                   CVARREPLICATIONCONNECTIONATTRIBUTES thisListens,
                                   CVARREPLICATIONCONNECTIONATTRIBUTES otherListens,
                                   CVARREPLICATIONINITIALCOPYDIRECTION direction, NOTIFYTYPE what) {
  if (other == nullptr) return E_INVALIDARG;
  IVorCvar* const self = GetIVorCvar();

  HRESULT copied = S_OK;
  const bool fromOther = direction == REPLICATIONCOPY_FROM_OTHER;
  if (const CComPtr<IVorCvarEventSink> replica = ListenerOf(fromOther ? self : other)) {
    copied = replica->OnCvarNotify(fromOther ? other : self, what);
  }

  ReplicationManager* const manager = Replication();
  if (manager == nullptr) return E_FAIL;
  ReplicationWay ownWay{thisListens, nullptr};
  if (Listens(thisListens)) ownWay.listener = Proxy().p;
  ReplicationWay otherWay{otherListens, nullptr};
  if (Listens(otherListens)) {
    if (otherCore != nullptr) {
      otherWay.listener = otherCore->Proxy().p;
    } else {
      otherWay.listener = ListenerOf(other);
    }
  }
  // A failed copy does not keep the two from being connected.
  const HRESULT connected = manager->Connect(other, ownWay, otherWay);
  return FAILED(copied) ? copied : connected;
}

HRESULT CvarCore::StartCvarReplication(IVorCvar* other,
                                       CVARREPLICATIONCONNECTIONATTRIBUTES thisListens,
                                       CVARREPLICATIONCONNECTIONATTRIBUTES otherListens,
                                       CVARREPLICATIONINITIALCOPYDIRECTION direction,
                                       NOTIFYTYPE what) {
  return StartReplication(other, CoreOf(other), thisListens, otherListens, direction, what);
}

HRESULT CvarCore::StartCvarReplication(IVorCvar* other, bool copyFromOther, int directions,
                                       NOTIFYTYPE what) {
  return StartCvarReplication(other, ThisListens(directions), OtherListens(directions),
                              Direction(copyFromOther), what);
}

HRESULT CvarCore::StartReplication(IVorCvar* other, CvarCore* otherCore, bool copyFromOther,
                                   int directions, NOTIFYTYPE what) {
  return StartReplication(other, otherCore, ThisListens(directions), OtherListens(directions),
                          Direction(copyFromOther), what);
}

HRESULT CvarCore::StartCvarReplication(IUnknown* bag, VARIANT cvarKey, bool copyFromOther,
                                       int directions, NOTIFYTYPE what) {
  CComPtr<IVorCvar> other;
  const HRESULT found = FindInBag(bag, cvarKey, other);
  return FAILED(found) ? found : StartCvarReplication(other, copyFromOther, directions, what);
}

HRESULT CvarCore::StartCvarReplication(IUnknown* bag, const wchar_t* name,
                                       CVARREPLICATIONCONNECTIONATTRIBUTES thisListens,
                                       CVARREPLICATIONCONNECTIONATTRIBUTES otherListens,
                                       CVARREPLICATIONINITIALCOPYDIRECTION direction,
                                       NOTIFYTYPE what) {
  CComPtr<IVorCvar> other;
  const HRESULT found = FindInBag(bag, name, other);
  if (FAILED(found)) return found;
  return StartCvarReplication(other, thisListens, otherListens, direction, what);
}

HRESULT CvarCore::StopCvarReplication(IUnknown* other) {
  if (other == nullptr) return E_INVALIDARG;
  ReplicationManager* const manager = ReplicationIfAny();
  return manager == nullptr ? S_FALSE : manager->Disconnect(other);
}

HRESULT CvarCore::StopCvarReplication(IUnknown* bag, VARIANT cvarKey) {
  CComPtr<IVorCvar> other;
  const HRESULT found = FindInBag(bag, cvarKey, other);
  return FAILED(found) ? found : StopCvarReplication(other);
}

HRESULT CvarCore::StopCvarReplication(IUnknown* bag, const wchar_t* name) {
  CComPtr<IVorCvar> other;
  const HRESULT found = FindInBag(bag, name, other);
  return FAILED(found) ? found : StopCvarReplication(other);
}

HRESULT CvarCore::StopAllCvarReplication() {
  ReplicationManager* const manager = ReplicationIfAny();
  return manager == nullptr ? S_FALSE : manager->DisconnectAll();
}

void CvarCore::InitializeReplicating(IVorCvar* source, CVARREPLICATIONFLAGS flags,
                                     const wchar_t* name, CVARFLAGS cvarFlags,
                                     const wchar_t* guiHints, unsigned int helpStringID) {
  SetGuiHints(guiHints);
  SetName(name);
  m_helpStringId = helpStringID;  // told to nobody
  SetFlags(static_cast<long>(cvarFlags));
  SetReplicationFlags(flags);
  (void)StartCvarReplication(source, true, 0x11, kEverything);  // the operation has no result
}

void CvarCore::InitializeReplicating(IUnknown* bag, VARIANT key, CVARREPLICATIONFLAGS flags,
                                     const wchar_t* name, CVARFLAGS cvarFlags,
                                     const wchar_t* guiHints, unsigned int helpStringID) {
  CComPtr<IVorCvar> source;
  (void)FindInBag(bag, key, source);  // without a source the cvar is configured all the same
  InitializeReplicating(source, flags, name, cvarFlags, guiHints, helpStringID);
}

void CvarCore::EndReplication() {
  (void)StopAllCvarReplication();  // a cvar that goes has nobody to tell
  CvarExtras* const extras = ExtrasIfAny();
  if (extras == nullptr) return;
  CComPtr<ListenerProxy> proxy;
  {
    const platform::ScopedLock guard(m_lock);
    std::swap(proxy, extras->proxy);
  }
  if (proxy != nullptr) proxy->Sever();
}

}  // namespace cvars
