#pragma once

#include <cstddef>
#include <memory>

#include "IVorAsynchronousCvarNotifier.h"
#include "IVorCvar.h"

namespace cvars {

/// One thread that delivers queued notifications in the order of their posting.
///
/// Thread-safe. No lock is held while a listener runs or a reference is given up. The process may
/// end, and the module may be unloaded, while deliveries are queued or in progress: what is queued
/// then is dropped, and the delivery in progress is awaited, for kExitGraceMs at the longest.
class DeliveryWorker {
 public:
  /// Pairs that may wait in the queue. Whoever posts one more waits until there is room; posts of
  /// the worker thread itself, which would wait for themselves, and merged ones never wait.
  static constexpr std::size_t kQueueBound = 65536;

  /// Longest wait, in milliseconds, for a delivery in progress when the process ends.
  static constexpr unsigned kExitGraceMs = 2000;

  /// Starts the thread; throws std::system_error when the system gives none.
  explicit DeliveryWorker(std::size_t queueBound = kQueueBound);
  /// Stops.
  ~DeliveryWorker();
  DeliveryWorker(const DeliveryWorker&) = delete;
  DeliveryWorker& operator=(const DeliveryWorker&) = delete;

  /// Queues one delivery; source and listener are borrowed and must not be null.
  /// @retval S_FALSE       merged into a queued entry
  /// @retval S_OK          queued as a new entry
  /// @retval E_UNEXPECTED  stopped; nothing is queued
  HRESULT Post(IVorCvar* source, NOTIFYTYPE what, IVorCvarEventSink* listener);

  /// Waits until everything that was queued before the call has been delivered.
  /// @param timeoutMs  longest wait in milliseconds; 0xFFFFFFFF waits without limit.
  /// @retval S_OK          all delivered
  /// @retval S_FALSE       the time ran out first, or a stop dropped some
  /// @retval E_UNEXPECTED  called on the worker thread
  HRESULT Drain(ULONG timeoutMs);

  /// Drops what is queued, waits for the delivery in progress and ends the thread. On the worker
  /// thread it does not wait: the thread ends once that delivery is over.
  /// @retval S_FALSE  it was stopped before
  /// @retval S_OK
  HRESULT Stop();

 private:
  class State;
  class LiveStates;
  static LiveStates& Live();

  // Shared with the thread, which may outlive this object when its last delivery lets it go.
  std::shared_ptr<State> m_state;
};

}  // namespace cvars
