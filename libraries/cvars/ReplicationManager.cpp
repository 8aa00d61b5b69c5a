#include "ReplicationManager.h"

#include <algorithm>
#include <utility>

#include "AsynchronousNotifier.h"

namespace cvars {

using platform::ScopedLock;

namespace {

CComPtr<IUnknown> IdentityOf(IUnknown* object) {
  CComPtr<IUnknown> identity;
  (void)object->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&identity));  // never fails
  return identity;
}

void KeepFirst(HRESULT& failure, HRESULT result) {
  if (SUCCEEDED(failure) && FAILED(result)) failure = result;
}

void KeepLast(HRESULT& failure, HRESULT result) {
  if (FAILED(result)) failure = result;
}

}  // namespace

/// How one side of a connection listens to the other.
struct ReplicationManager::Way {
  CVARREPLICATIONCONNECTIONATTRIBUTES attribute = REPLICATIONCONNECTION_NONE;
  CComPtr<ReplicationLink> link;    // the listener, for as long as the way exists
  CComPtr<IVorCvarEventSink> sink;  // what is attached: the link, or a forwarder to it

  // What a new way takes, its place in a listener list apart.
  static HRESULT Prepare(const ReplicationWay& wanted, Way& way) {
    if (wanted.attribute == REPLICATIONCONNECTION_NONE ||
        wanted.attribute == REPLICATIONCONNECTION_UNCHANGED) {
      return S_OK;
    }
    way.attribute = wanted.attribute;
    if (wanted.listener == nullptr) return S_OK;  // attaching nothing fails later
    way.link = ReplicationLink::Make(wanted.listener);
    if (wanted.attribute != REPLICATIONCONNECTION_ASYNCHRONOUS) {
      way.sink = way.link.p;
      return S_OK;
    }
    CComPtr<IVorAsynchronousCvarNotifier> notifier;
    const HRESULT got = AsynchronousNotifier::OfProcess().Get(&notifier);
    return FAILED(got) ? got : notifier->CreateForwarder(way.link, &way.sink);
  }

  HRESULT Attach(IVorCvar* source) const {
    if (attribute == REPLICATIONCONNECTION_NONE) return S_OK;
    return sink == nullptr ? E_INVALIDARG : source->AttachCvarEventSink(sink);
  }

  HRESULT Detach(IVorCvar* source) const {
    if (link != nullptr) link->Cut();
    return sink == nullptr ? S_OK : source->DetachCvarEventSink(sink);
  }
};

struct ReplicationManager::Connection {
  CComPtr<IVorCvar> other;
  CComPtr<IUnknown> identity;
  Way ownerListens;
  Way otherListens;
};

ReplicationManager::Connections::iterator ReplicationManager::Find(IUnknown* identity) {
  return std::find_if(m_connections.begin(), m_connections.end(),
                      [identity](const auto& one) { return one->identity == identity; });
}

HRESULT ReplicationManager::Connect(IVorCvar* other, const ReplicationWay& ownerListens,
                                    const ReplicationWay& otherListens) {
  const CComPtr<IUnknown> identity = IdentityOf(other);
  Way newOwnerListens;
  Way newOtherListens;
  HRESULT prepared = Way::Prepare(ownerListens, newOwnerListens);
  KeepFirst(prepared, Way::Prepare(otherListens, newOtherListens));

  // What is replaced here goes when the lock is left.
  const auto change = [](Way& way, const ReplicationWay& wanted, Way& replacement,
                         IVorCvar* source) {
    if (wanted.attribute == REPLICATIONCONNECTION_UNCHANGED || wanted.attribute == way.attribute) {
      return;
    }
    (void)way.Detach(source);  // somebody else may have detached it: then it is gone as wanted
    std::swap(way, replacement);
  };

  std::shared_ptr<Connection> connection;
  const ScopedLock guard(m_lock);
  const auto found = Find(identity);
  if (found != m_connections.end()) {
    connection = *found;
  } else {
    connection = std::make_shared<Connection>();
    connection->other = other;
    connection->identity = identity;
  }
  if (FAILED(prepared)) {
    newOwnerListens = Way();
    newOtherListens = Way();
  } else if (found == m_connections.end()) {
    m_connections.push_back(connection);
  }
  change(connection->ownerListens, ownerListens, newOwnerListens, other);
  change(connection->otherListens, otherListens, newOtherListens, m_owner);
  if (FAILED(prepared)) return prepared;

  // A way that stays as it is is attached too, which does nothing unless somebody detached it.
  HRESULT attached = connection->ownerListens.Attach(other);
  KeepFirst(attached, connection->otherListens.Attach(m_owner));
  return FAILED(attached) ? attached : S_OK;
}

HRESULT ReplicationManager::End(Connection& connection) {
  HRESULT ended = connection.ownerListens.Detach(connection.other);
  KeepLast(ended, connection.otherListens.Detach(m_owner));
  return FAILED(ended) ? ended : S_OK;
}

HRESULT ReplicationManager::Disconnect(IUnknown* other) {
  const CComPtr<IUnknown> identity = IdentityOf(other);
  std::shared_ptr<Connection> connection;  // goes when the lock is left
  const ScopedLock guard(m_lock);
  const auto found = Find(identity);
  if (found == m_connections.end()) return S_FALSE;
  connection = std::move(*found);
  m_connections.erase(found);
  return End(*connection);
}

HRESULT ReplicationManager::DisconnectAll() {
  Connections connections;  // go when the lock is left
  const ScopedLock guard(m_lock);
  connections.swap(m_connections);
  HRESULT ended = S_OK;
  for (const auto& connection : connections) KeepLast(ended, End(*connection));
  return ended;
}

}  // namespace cvars
