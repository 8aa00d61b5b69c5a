#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
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
/// pointers. Once grown, it allocates nothing.
///
/// Not thread-safe, but for Place::Take: what Oldest gave stays where it is, and gathers kinds,
/// while another thread takes one after the other.
class NotificationQueue {
 public:
  /// Where a delivery waits.
  class Place {
   public:
    /// Takes the delivery out, which no longer gathers kinds then. Thread-safe.
    /// @return empty when it was taken before
    Notification Take() noexcept;

   private:
    friend class NotificationQueue;
    static constexpr std::uint64_t kWaiting = std::uint64_t{1} << 32;

    bool Waits() const noexcept { return (m_kinds.load() & kWaiting) != 0; }

    IVorCvar* m_source = nullptr;  // counted while it waits, as the listener
    IVorCvarEventSink* m_listener = nullptr;
    std::atomic<std::uint64_t> m_kinds{0};  // the kinds of change, and kWaiting until it is taken
    Place* m_nextOfBucket = nullptr;
  };

  NotificationQueue() = default;
  ~NotificationQueue() { LetGo(); }
  NotificationQueue(const NotificationQueue&) = delete;
  NotificationQueue& operator=(const NotificationQueue&) = delete;

  /// Adds kinds of change to a pair that waits; it keeps its place.
  /// @return false when the pair does not wait; nothing changed then.
  bool Merge(IVorCvar* source, IVorCvarEventSink* listener, NOTIFYTYPE what) noexcept;

  /// Appends a pair that does not wait. When memory is short it throws and the queue is unchanged.
  void Append(Notification&& notification);

  /// The oldest ones, as many as stand beside each other. The queue must not be empty.
  std::span<Place> Oldest() noexcept;

  /// Removes the oldest ones up to the first that waits.
  void RemoveTaken() noexcept;

  /// Takes and lets go of all that wait. Places may be taken meanwhile, but nothing else is done.
  void LetGo() noexcept;

  /// How many are left, taken ones included.
  std::uint64_t Size() const noexcept { return m_next - m_first; }
  bool Empty() const noexcept { return m_next == m_first; }

 private:
  static constexpr std::size_t kSegmentSize = 256;
  using Segment = std::array<Place, kSegmentSize>;

  Place*& Bucket(IVorCvar* source, IVorCvarEventSink* listener) noexcept;
  std::unique_ptr<Segment>& SegmentOf(std::uint64_t ticket) noexcept {
    return m_segments[static_cast<std::size_t>(ticket / kSegmentSize) & (m_segments.size() - 1)];
  }
  Place& At(std::uint64_t ticket) noexcept {
    return (*SegmentOf(ticket))[static_cast<std::size_t>(ticket % kSegmentSize)];
  }
  void Index(Place& place) noexcept;
  void Unindex(Place& place) noexcept;
  void Grow();

  // A ring of segments, which never move, with the tickets m_first .. m_next - 1, and a list of the
  // places of each hash. The numbers of segments and lists are powers of two.
  std::vector<std::unique_ptr<Segment>> m_segments;
  std::vector<Place*> m_buckets;
  std::uint64_t m_first = 0;
  std::uint64_t m_next = 0;
};

}  // namespace cvars
