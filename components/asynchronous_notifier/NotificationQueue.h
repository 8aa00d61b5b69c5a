#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "CComPtr.h"
#include "IVorCvar.h"
#include "IVorCvarEventSink.h"

namespace cvars {

/// One delivery to come: who changed, what, and who is to be told. Holds both ends.
struct Notification {
  CComPtr<IVorCvar> source;
  CComPtr<IVorCvarEventSink> listener;
  NOTIFYTYPE what{};
};

/// Deliveries in the order of their appending, each (source, listener) pair at most once.
///
/// A pair is found through a hash index, in constant time. Pairs are told apart by their interface
/// pointers. Not thread-safe. Once grown, it allocates nothing.
class NotificationQueue {
 public:
  /// Adds kinds of change to a pair that is queued; it keeps its place.
  /// @return false when the pair is not queued; nothing changed then.
  bool Merge(IVorCvar* source, IVorCvarEventSink* listener, NOTIFYTYPE what) noexcept;

  /// Appends a pair that is not queued. When memory is short it throws and the queue is unchanged.
  void Append(Notification&& notification);

  /// Takes the oldest out; the queue must not be empty.
  Notification TakeFirst() noexcept;

  std::size_t Size() const noexcept { return static_cast<std::size_t>(m_next - m_first); }
  bool Empty() const noexcept { return m_next == m_first; }

 private:
  std::size_t Home(IVorCvar* source, IVorCvarEventSink* listener) const noexcept;
  std::size_t Home(const Notification& notification) const noexcept {
    return Home(notification.source, notification.listener);
  }
  Notification& At(std::uint64_t ticket) noexcept {
    return m_ring[static_cast<std::size_t>(ticket) & (m_ring.size() - 1)];
  }
  void Index(std::uint64_t ticket) noexcept;
  void Unindex(std::uint64_t ticket) noexcept;
  void Grow();

  // A ring of tickets m_first .. m_next - 1, and an open-addressed table of those tickets by pair,
  // at least twice as large; 0 is a free place. Both sizes are powers of two.
  std::vector<Notification> m_ring;
  std::vector<std::uint64_t> m_index;
  std::uint64_t m_first = 1;
  std::uint64_t m_next = 1;
};

}  // namespace cvars
