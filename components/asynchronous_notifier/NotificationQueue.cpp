#include "NotificationQueue.h"

#include <algorithm>
#include <utility>

namespace cvars {

namespace {

std::uint64_t Bits(const void* pointer) noexcept {
  return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pointer));
}

}  // namespace

Notification NotificationQueue::Place::Take() noexcept {
  Notification taken;
  const std::uint64_t kinds = m_kinds.exchange(0);
  if ((kinds & kWaiting) == 0) return taken;
  taken.source.Attach(m_source);
  taken.listener.Attach(m_listener);
  taken.what = static_cast<NOTIFYTYPE>(static_cast<std::uint32_t>(kinds));
  return taken;
}

NotificationQueue::Place*& NotificationQueue::Bucket(IVorCvar* source,
                                                     IVorCvarEventSink* listener) noexcept {
  // Objects of one kind lie at regular distances; the multiplications spread them over all bits.
  std::uint64_t hash = Bits(source) * 0x9E3779B97F4A7C15u;
  hash = (hash ^ (hash >> 32) ^ Bits(listener)) * 0xD6E8FEB86659FD93u;
  return m_buckets[static_cast<std::size_t>(hash ^ (hash >> 32)) & (m_buckets.size() - 1)];
}

bool NotificationQueue::Merge(IVorCvar* source, IVorCvarEventSink* listener,
                              NOTIFYTYPE what) noexcept {
  if (Empty()) return false;
  for (Place* place = Bucket(source, listener); place != nullptr; place = place->m_nextOfBucket) {
    if (place->m_source == source && place->m_listener == listener) {
      // Of one pair only the youngest may wait, which comes first.
      return (place->m_kinds.fetch_or(what) & Place::kWaiting) != 0;
    }
  }
  return false;
}

void NotificationQueue::Append(Notification&& notification) {
  const std::uint64_t segments = m_next / kSegmentSize - m_first / kSegmentSize;
  if (m_next % kSegmentSize == 0 && segments == m_segments.size()) Grow();
  Place& place = At(m_next);
  place.m_source = notification.source.Detach();
  place.m_listener = notification.listener.Detach();
  place.m_kinds.store(notification.what | Place::kWaiting, std::memory_order_relaxed);
  Index(place);
  ++m_next;
}

std::span<NotificationQueue::Place> NotificationQueue::Oldest() noexcept {
  const std::uint64_t endOfSegment = (m_first / kSegmentSize + 1) * kSegmentSize;
  return {&At(m_first), static_cast<std::size_t>(std::min(m_next, endOfSegment) - m_first)};
}

void NotificationQueue::RemoveTaken() noexcept {
  for (; m_first != m_next && !At(m_first).Waits(); ++m_first) Unindex(At(m_first));
}

void NotificationQueue::LetGo() noexcept {
  for (std::uint64_t ticket = m_first; ticket != m_next; ++ticket) (void)At(ticket).Take();
}

void NotificationQueue::Index(Place& place) noexcept {
  Place*& bucket = Bucket(place.m_source, place.m_listener);
  place.m_nextOfBucket = bucket;
  bucket = &place;
}

void NotificationQueue::Unindex(Place& place) noexcept {
  Place** link = &Bucket(place.m_source, place.m_listener);
  while (*link != &place) link = &(*link)->m_nextOfBucket;
  *link = place.m_nextOfBucket;
}

void NotificationQueue::Grow() {
  const std::size_t size = std::max<std::size_t>(1, m_segments.size() * 2);
  std::vector<std::unique_ptr<Segment>> added(size - m_segments.size());
  for (auto& segment : added) segment = std::make_unique<Segment>();
  std::vector<std::unique_ptr<Segment>> segments(size);
  std::vector<Place*> buckets(size * kSegmentSize);
  for (std::uint64_t ticket = m_first; ticket < m_next; ticket += kSegmentSize) {
    segments[static_cast<std::size_t>(ticket / kSegmentSize) & (size - 1)] =
        std::move(SegmentOf(ticket));
  }
  for (auto& segment : segments) {
    if (segment != nullptr) continue;
    segment = std::move(added.back());
    added.pop_back();
  }
  m_segments.swap(segments);
  m_buckets.swap(buckets);
  for (std::uint64_t ticket = m_first; ticket != m_next; ++ticket) Index(At(ticket));
}

}  // namespace cvars
