#pragma once

#include <atomic>

#include "CComPtr.h"
#include "IVorCvarEventSink.h"
#include "platform/RecursiveLock.h"

namespace cvars {

class CvarCore;

/// Stands for a cvar among the listeners of other cvars without keeping it alive.
///
/// The cvar severs it before it goes: a call that comes later, from whatever thread, finds nothing
/// and answers S_OK; one that found the cvar keeps it alive until it returns.
class ListenerProxy final : public IVorCvarEventSink {
 public:
  /// @param cvar      weak; severs the proxy before it goes.
  /// @param listener  weak; the cvar's listener interface.
  static CComPtr<ListenerProxy> Make(CvarCore& cvar, IVorCvarEventSink* listener);

  /// From now on nobody is told.
  void Sever() noexcept;

  HRESULT QueryInterface(REFIID iid, void** object) override;
  ULONG AddRef() override;
  ULONG Release() override;
  HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) override;

 private:
  ListenerProxy(CvarCore& cvar, IVorCvarEventSink* listener) noexcept
      : m_cvar(&cvar), m_listener(listener) {}
  ~ListenerProxy() = default;

  platform::RecursiveLock m_lock;
  CvarCore* m_cvar CVARS_GUARDED_BY(m_lock);
  IVorCvarEventSink* const m_listener;
  std::atomic<ULONG> m_references{1};
};

}  // namespace cvars
