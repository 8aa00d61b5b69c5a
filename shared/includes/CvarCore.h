#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

#include "CComPtr.h"
#include "CvarBaseCpp.h"
#include "CvarListeners.h"
#include "CvarNames.h"
#include "Export.h"
#include "IVorCvar.h"
#include "PropertiesMap.h"
#include "Relaxed.h"
#include "Variant.h"
#include "platform/RecursiveLock.h"

/// {5B1F0C52-7C34-4E0B-8A5E-2E7B51D8C6A4}: the native side of a cvar of this library.
inline constexpr IID IID_CvarCore = {
    0x5B1F0C52, 0x7C34, 0x4E0B, {0x8A, 0x5E, 0x2E, 0x7B, 0x51, 0xD8, 0xC6, 0xA4}};

namespace cvars {

class CvarExtras;
class ListenerProxy;
class ReplicationManager;

/// What all cvars share whatever their value: identity, names, flags, help, icon, hints, parent,
/// listeners and notifications. Compiled once; IVorCvarImpl adds what depends on the value.
///
/// Names, flags, help, icon and hints are state that the owner's thread writes. Replicas read them
/// on other threads, so numbers are relaxed atomics, and texts are under the object lock as the
/// listeners are; it is never held while a listener, a parent or a component runs, but while the
/// properties are gathered, which may ask the parent for its module.
class CVARS_API CvarCore : public CvarBaseCpp {
 public:
  // Reference count -------------------------------------------------------------------------

  // References together hold the cvar once, and so does every notification under way, which counts
  // as a reference to whoever asks.

  ULONG AddReference() noexcept {
    const std::uint32_t before = m_references.fetch_add(1, std::memory_order_relaxed);
    if (before == 0) [[unlikely]] {
      m_listeners.Hold();
    }
    return before + m_listeners.Holders();
  }
  /// Gives a reference back; the last one runs FinalRelease and destroys the cvar.
  ULONG ReleaseReference() {
    const std::uint32_t notifications = m_listeners.Holders() - 1;
    const std::uint32_t left = m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) [[unlikely]] {
      return ReleaseHold();
    }
    return (left & ~kGoing) + notifications;
  }
  /// Adds a reference unless the last one is already gone.
  bool TryAddReference() noexcept;

  // Native-side table -----------------------------------------------------------------------

  int SuspendNotifications(int suspend) override;
  bool SetFlags(CVARFLAGS bits, bool on) override;
  bool ForcePublic(bool on) override;
  bool ForcePrivate(bool on) override;

  // Identity and metadata ----------------------------------------------------------------------

  /// Replaces the whole flags word. Sets NOTIFY_FLAGS when it changes.
  /// @return whether the word changed
  bool SetFlags(long word);
  bool SetFlags(CVARFLAGS bits) =
      delete;  // say whether bits are set, cleared, or are the whole word
  bool SetReadOnly(int on) { return SetFlags(CVARFLAG_READONLY, on != 0); }
  bool SetHidden(int on) { return SetFlags(CVARFLAG_HIDDEN, on != 0); }
  bool SetWrapping(int on) { return SetFlags(CVARFLAG_WRAPPING, on != 0); }
  bool SetGrayed(int on) { return SetFlags(CVARFLAG_GRAYED, on != 0); }
  /// One letter for each set flag, "-" for none.
  std::wstring GetFlagsString() const;
  CVARFLAGS Flags() const noexcept { return static_cast<CVARFLAGS>(m_flags.Get()); }
  bool HasFlag(CVARFLAGS bits) const noexcept { return (m_flags.Get() & bits) != 0; }

  /// Names the cvar by the name rule when its name is empty: "m_cvTimebase" gives "Timebase".
  void InitializeName(const BSTR& memberName);
  /// Sets both names by the name rule. @param text  copied; null reads as empty.
  void SetName(const wchar_t* text);
  /// "%s.%s" of the parent's name and the cvar's name.
  HRESULT get_BagAndCvarName(BSTR* name);

  /// Sets NOTIFY_ATTRIBUTES on a change.
  void SetHelpStringID(unsigned int id);
  /// Sets NOTIFY_GUIHINTS on a change. @param hints  copied; null reads as empty.
  void SetGuiHints(const wchar_t* hints);
  /// Sets the icon from the parent's module. Sets NOTIFY_ATTRIBUTES when the icon ID changes.
  /// @param id  its lower 32 bits count.
  void SetIcon(unsigned long id);
  /// Sets the icon from a module. Sets NOTIFY_ATTRIBUTES on a change.
  void SetIcon(unsigned long id, unsigned long module);

  /// The container that holds the cvar. @return borrowed; null when there is none.
  virtual IUnknown* GetParent();
  /// Tells the cvar its container; the base keeps none. @param parent  weak
  virtual void SetParent(IUnknown* parent);
  /// Module that made the parent. @retval OLE_E_BLANK  no parent, or one that is no bag
  HRESULT GetParentModuleInstanceHandle(HINSTANCE* module);

  CVARREPLICATIONFLAGS ReplicationFlags() const noexcept {
    return static_cast<CVARREPLICATIONFLAGS>(m_replicationFlags.Get());
  }
  /// Says what the cvar copies from a source; tells nobody.
  void SetReplicationFlags(CVARREPLICATIONFLAGS flags) noexcept { m_replicationFlags = flags; }

  // Replication --------------------------------------------------------------------------------
  //
  // Two cvars are tied by a connection, which the cvar that starts it owns and which holds the
  // other cvar by reference; cvars that hold each other this way live until one of them stops.
  // Starting and stopping are thread-safe.

  /// Makes the connection with another cvar, or changes the one there is.
  ///
  /// First one of the two copies from the other. A failed copy does not keep them from being
  /// connected. REPLICATIONCONNECTION_UNCHANGED leaves a way of an existing connection as it is,
  /// and counts as REPLICATIONCONNECTION_NONE for a new one.
  /// @param thisListens   how this cvar follows the other
  /// @param otherListens  how the other follows this one
  /// @param direction     who copies at once: this cvar from the other, or the other from this one
  /// @param what          the kinds of change that are copied at once; usually all
  /// @retval E_INVALIDARG  other is null, or is no listener and is to listen
  /// @retval E_FAIL        no memory for the connections
  /// @return otherwise the first failure of the copy, of the asynchronous notifier or of attaching;
  ///         S_OK. After a failure of the notifier the ways that were to change do not listen.
  virtual HRESULT StartCvarReplication(IVorCvar* other,
                                       CVARREPLICATIONCONNECTIONATTRIBUTES thisListens,
                                       CVARREPLICATIONCONNECTIONATTRIBUTES otherListens,
                                       CVARREPLICATIONINITIALCOPYDIRECTION direction,
                                       NOTIFYTYPE what);
  /// The same, synchronous.
  /// @param directions  0x1 this cvar listens, 0x10 the other listens; a missing bit leaves its way
  ///                    unchanged
  virtual HRESULT StartCvarReplication(IVorCvar* other, bool copyFromOther, int directions,
                                       NOTIFYTYPE what);
  /// The same with a cvar that a bag finds by key: a text is a name, a number a position from 0.
  /// @return E_INVALIDARG for a null bag, what the bag answered, or as above
  virtual HRESULT StartCvarReplication(IUnknown* bag, VARIANT cvarKey, bool copyFromOther,
                                       int directions, NOTIFYTYPE what);
  virtual HRESULT StartCvarReplication(IUnknown* bag, const wchar_t* name,
                                       CVARREPLICATIONCONNECTIONATTRIBUTES thisListens,
                                       CVARREPLICATIONCONNECTIONATTRIBUTES otherListens,
                                       CVARREPLICATIONINITIALCOPYDIRECTION direction,
                                       NOTIFYTYPE what);

  /// Ends the connection with another cvar. No copy starts afterwards, whatever is queued or under
  /// way on other threads.
  /// @retval E_INVALIDARG  other is null
  /// @retval S_FALSE       this cvar has no connection with it
  /// @return otherwise the last failure of detaching, or S_OK
  virtual HRESULT StopCvarReplication(IUnknown* other);
  HRESULT StopCvarReplication(IVorCvar* other) {
    return StopCvarReplication(static_cast<IUnknown*>(other));
  }
  virtual HRESULT StopCvarReplication(IUnknown* bag, VARIANT cvarKey);
  virtual HRESULT StopCvarReplication(IUnknown* bag, const wchar_t* name);
  /// Ends every connection of this cvar, in the order of their making.
  /// @retval S_FALSE  this cvar never started one
  /// @return otherwise the last failure of detaching, or S_OK
  virtual HRESULT StopAllCvarReplication();

  /// Configures this cvar and makes it a synchronous two-way replica of another, from which it
  /// copies everything first. Sets NOTIFY_GUIHINTS and NOTIFY_FLAGS when they change, and what the
  /// copy changes.
  virtual void InitializeReplicating(IVorCvar* source, CVARREPLICATIONFLAGS flags,
                                     const wchar_t* name, CVARFLAGS cvarFlags,
                                     const wchar_t* guiHints, unsigned int helpStringID);
  /// The same with a source that a bag finds by key; without one the cvar is configured only.
  virtual void InitializeReplicating(IUnknown* bag, VARIANT key, CVARREPLICATIONFLAGS flags,
                                     const wchar_t* name, CVARFLAGS cvarFlags,
                                     const wchar_t* guiHints, unsigned int helpStringID);

  // Notification -------------------------------------------------------------------------------

  /// Sends what is pending to the listeners, in the order of their attachment.
  ///
  /// Nothing happens while nothing is pending, or while notifications are suspended and
  /// `evenIfSuspended` is false. The pending kinds are taken before the first listener is called; a
  /// listener attached meanwhile is not called this time. A listener that throws, or that faults
  /// while the host has a fault filter, counts as E_FAIL. Twenty nested notifications are reported
  /// once and mute the cvar for good.
  /// @return the last failure, else the last success code that is not S_OK, else S_OK
  HRESULT NotifyClients(NOTIFYCLIENTS which, bool evenIfSuspended) {
    if (!evenIfSuspended && m_suspensions.load(std::memory_order_relaxed) != 0) return 0;
    if (m_listeners.Empty()) {
      m_pending.Clear();
      return 0;
    }
    return m_pending.Empty() ? 0 : SendPending(which);
  }

  /// Forgets every kind of change that waits to be sent.
  void ForgetPending() noexcept { m_pending.Clear(); }

  /// What runs when the last reference goes: ends replication, releases the listeners.
  void FinalRelease();

 protected:
  CvarCore() noexcept;
  ~CvarCore();

  /// Destroys the object, after FinalRelease.
  virtual void Destroy() = 0;

  /// Marks kinds of change as pending.
  void AddPending(NOTIFYTYPE what) noexcept { m_pending.Add(what); }
  /// Marks kinds of change as pending and sends them.
  HRESULT Notify(NOTIFYTYPE what) {
    m_pending.Add(what);
    return NotifyClients(NOTIFY_ALL_CLIENTS, false);
  }
  /// Sends NOTIFY_LATEUPDATE to the first listener when the cvar asks for late updates.
  ///
  /// A first listener that reads the value from inside its own call starts the next one.
  void SendLateUpdate();

  /// Stores the help string ID and marks NOTIFY_ATTRIBUTES pending when it differs; tells nobody.
  void StoreHelpStringID(unsigned int id) noexcept {
    if (id == m_helpStringId) return;
    m_helpStringId = id;
    m_pending.Add(NOTIFY_ATTRIBUTES);
  }

  /// The steps of an increment in the direction that the flags say.
  int DirectedSteps(int steps) const noexcept {
    if (!HasFlag(CVARFLAG_REVERSEINCREMENT)) return steps;
    return steps == INT32_MIN ? INT32_MAX : -steps;
  }

  bool NotificationsSuspended() const noexcept {
    return m_suspensions.load(std::memory_order_relaxed) != 0;
  }

  // What the interface operations of the same names do.
  HRESULT CoreGetName(BSTR* name) const;
  HRESULT CoreGetNameRemote(BSTR* name) const;
  HRESULT CoreGetFlags(long* flags) const;
  HRESULT CoreIsFlagSet(CVARFLAGS bit, int* set) const;
  HRESULT CoreGetHelpStringID(unsigned int* id) const;
  HRESULT CoreGetHelpString(BSTR* text);
  HRESULT CoreGetGuiHints(BSTR* hints) const;
  HRESULT CoreGetParent(IUnknown** parent);
  HRESULT CoreGetIconInfo(unsigned long* id, unsigned long* module);
  HRESULT CoreGetFlagsString(BSTR* text) const;
  HRESULT CoreAttach(IUnknown* sink) { return m_listeners.Attach(sink, m_lock); }
  HRESULT CoreDetach(IUnknown* sink) { return m_listeners.Detach(sink, m_lock); }
  HRESULT CoreGetEventSinkCount(long* count) const;
  HRESULT CoreGetEventSink(long index, IUnknown** sink) const;
  /// Adds "Type", "Name", "Flags", "FlagsString", "HelpString", "GuiHints", "IconID" and
  /// "IconModuleInstance", under the object lock.
  void CoreFillProperties(PropertiesMap& map, const wchar_t* typeName);
  /// The automation text of a cvar: the conversion of its get_Value to text.
  HRESULT CoreAutomationText(BSTR* text);

  /// Starts a replication with a cvar whose native side is known, or null when it has none.
  HRESULT StartReplication(IVorCvar* other, CvarCore* otherCore,
                           CVARREPLICATIONCONNECTIONATTRIBUTES thisListens,
                           CVARREPLICATIONCONNECTIONATTRIBUTES otherListens,
                           CVARREPLICATIONINITIALCOPYDIRECTION direction, NOTIFYTYPE what);
  HRESULT StartReplication(IVorCvar* other, CvarCore* otherCore, bool copyFromOther, int directions,
                           NOTIFYTYPE what);

  /// The replica's reaction to a change of its source: copies what the replication flags ask for.
  /// @retval E_POINTER  source is null; nothing is copied
  HRESULT CoreReactToSource(IVorCvar* source, NOTIFYTYPE what);
  /// Fits the request to the range again and sends what is pending.
  virtual HRESULT UpdateAdaptedValueAndNotify() = 0;

  mutable platform::RecursiveLock m_lock;

 private:
  // Set in the count of references while the cvar goes: references taken and given back by then no
  // longer bring it to zero.
  static constexpr std::uint32_t kGoing = 0x80000000u;

  class Notification;

  HRESULT SendPending(NOTIFYCLIENTS which);
  ULONG ReleaseHold();
  void Go();
  void ReportRecursion();
  HRESULT ReportReplicaFailure(HRESULT result, int line);
  bool ChangeFlags(std::uint32_t word);
  /// What stands for this cvar among the listeners of others.
  CComPtr<ListenerProxy> Proxy();
  ReplicationManager* Replication();
  ReplicationManager* ReplicationIfAny() const noexcept;
  /// Ends what this cvar replicates, and what it is told as a replica.
  void EndReplication();
  static CvarCore* CoreOf(IUnknown* cvar);
  CvarExtras& Extras();
  CvarExtras* ExtrasIfAny() const noexcept { return m_extras.load(std::memory_order_acquire); }

  std::atomic<std::uint32_t> m_references{0};
  std::atomic<std::int32_t> m_suspensions{0};
  CvarNames m_names;
  CvarListeners m_listeners;
  Relaxed<std::uint32_t> m_flags{0};
  Relaxed<std::uint32_t> m_helpStringId{0};
  Relaxed<std::uint32_t> m_replicationFlags{REPLICATE_VALUE | REPLICATE_REQUESTED};
  std::atomic<bool> m_recursionReported{false};
  std::atomic<CvarExtras*> m_extras{nullptr};  // owned; made when first needed
};

/// What an Initialize runs in: suspends notifications, and forgets at its end what gathered, so
/// that configuring a cvar tells nobody.
class SilentScope {
 public:
  explicit SilentScope(CvarCore& cvar) : m_cvar(cvar) { m_cvar.SuspendNotifications(1); }
  ~SilentScope() {
    m_cvar.ForgetPending();
    m_cvar.SuspendNotifications(0);
  }
  SilentScope(const SilentScope&) = delete;
  SilentScope& operator=(const SilentScope&) = delete;

 private:
  CvarCore& m_cvar;
};

}  // namespace cvars
