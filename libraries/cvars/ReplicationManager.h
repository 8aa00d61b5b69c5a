#pragma once

#include <memory>
#include <vector>

#include "CComPtr.h"
#include "IVorCvar.h"
#include "ReplicationLink.h"
#include "platform/RecursiveLock.h"

namespace cvars {

/// One way of a connection that is to be made or changed.
struct ReplicationWay {
  CVARREPLICATIONCONNECTIONATTRIBUTES attribute = REPLICATIONCONNECTION_UNCHANGED;
  CComPtr<IVorCvarEventSink> listener;  ///< Who listens, when the attribute asks for it.
};

/// The connections of one cvar to others.
///
/// Each connection holds the other cvar by reference. The lock orders the changes of connections;
/// it is held while listeners are attached to and detached from the two cvars, never while one of
/// them is called, nor while a notifier is made or a reference given up.
class ReplicationManager {
 public:
  /// @param owner  weak; the cvar that owns the manager.
  explicit ReplicationManager(IVorCvar* owner) noexcept : m_owner(owner) {}
  ReplicationManager(const ReplicationManager&) = delete;
  ReplicationManager& operator=(const ReplicationManager&) = delete;

  /// Makes the connection with another cvar, or changes the one there is.
  ///
  /// @param ownerListens  the owner's listening to the other cvar.
  /// @param otherListens  the other's listening to the owner.
  /// @return the failure of the asynchronous notifier, which leaves the ways that were to change
  ///         without listening; else the first failure of attaching; else S_OK
  HRESULT Connect(IVorCvar* other, const ReplicationWay& ownerListens,
                  const ReplicationWay& otherListens);

  /// Ends the connection with a cvar. No delivery starts afterwards, queued ones included.
  /// @retval S_FALSE  there is none
  /// @return otherwise the last failure of detaching, or S_OK
  HRESULT Disconnect(IUnknown* other);

  /// Ends every connection, in the order of their making.
  /// @return the last failure of detaching, or S_OK
  HRESULT DisconnectAll();

 private:
  struct Way;
  struct Connection;
  using Connections = std::vector<std::shared_ptr<Connection>>;

  Connections::iterator Find(IUnknown* identity) CVARS_REQUIRES(m_lock);
  HRESULT End(Connection& connection) CVARS_REQUIRES(m_lock);

  IVorCvar* const m_owner;
  platform::RecursiveLock m_lock;
  Connections m_connections CVARS_GUARDED_BY(m_lock);
};

}  // namespace cvars
