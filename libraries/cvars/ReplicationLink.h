#pragma once

#include <atomic>

#include "CComPtr.h"
#include "IVorCvarEventSink.h"

namespace cvars {

/// A listener as one connection attaches it: passes notifications on until it is cut.
///
/// For everybody else it is the listener behind it: it gives that one's identity and interfaces, so
/// that attaching both counts as attaching one. Once cut, no notification passes that had not
/// passed before, not even one that was queued or taken from a listener list earlier.
class ReplicationLink final : public IVorCvarEventSink {
 public:
  /// @param listener  held by reference.
  static CComPtr<ReplicationLink> Make(IVorCvarEventSink* listener);

  /// From now on nothing passes.
  void Cut() noexcept { m_cut.store(true); }

  HRESULT QueryInterface(REFIID iid, void** object) override;
  ULONG AddRef() override;
  ULONG Release() override;
  HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) override;

 private:
  explicit ReplicationLink(IVorCvarEventSink* listener) : m_listener(listener) {}
  ~ReplicationLink() = default;

  const CComPtr<IVorCvarEventSink> m_listener;
  std::atomic<bool> m_cut{false};
  std::atomic<ULONG> m_references{1};
};

}  // namespace cvars
