#include "NotificationQueue.h"

#include <utility>

namespace cvars {

namespace {

constexpr std::size_t kFirstRingSize = 64;

std::uint64_t Bits(const void* pointer) noexcept {
  return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pointer));
}

}  // namespace

std::size_t NotificationQueue::Home(IVorCvar* source, IVorCvarEventSink* listener) const noexcept {
  // Objects of one kind lie at regular distances; the multiplications spread them over all bits.
  std::uint64_t hash = Bits(source) * 0x9E3779B97F4A7C15u;
  hash = (hash ^ (hash >> 32) ^ Bits(listener)) * 0xD6E8FEB86659FD93u;
  return static_cast<std::size_t>(hash ^ (hash >> 32)) & (m_index.size() - 1);
}

bool NotificationQueue::Merge(IVorCvar* source, IVorCvarEventSink* listener,
                              NOTIFYTYPE what) noexcept {
  if (Empty()) return false;
  for (std::size_t place = Home(source, listener); m_index[place] != 0;
       place = (place + 1) & (m_index.size() - 1)) {
    Notification& queued = At(m_index[place]);
    if (queued.source == source && queued.listener == listener) {
      queued.what |= what;
      return true;
    }
  }
  return false;
}

void NotificationQueue::Append(Notification&& notification) {
  if (Size() == m_ring.size()) Grow();
  At(m_next) = std::move(notification);
  Index(m_next);
  ++m_next;
}

Notification NotificationQueue::TakeFirst() noexcept {
  Unindex(m_first);
  Notification first = std::move(At(m_first));
  ++m_first;
  return first;
}

void NotificationQueue::Index(std::uint64_t ticket) noexcept {
  std::size_t place = Home(At(ticket));
  while (m_index[place] != 0) place = (place + 1) & (m_index.size() - 1);
  m_index[place] = ticket;
}

void NotificationQueue::Unindex(std::uint64_t ticket) noexcept {
  const std::size_t mask = m_index.size() - 1;
  std::size_t hole = Home(At(ticket));
  while (m_index[hole] != ticket) hole = (hole + 1) & mask;
  // Tickets behind the hole move up where that brings them no further from home than their home,
  // so that a look-up never meets a gap before what it looks for.
  for (std::size_t place = (hole + 1) & mask; m_index[place] != 0; place = (place + 1) & mask) {
    const std::size_t home = Home(At(m_index[place]));
    if (((place - home) & mask) >= ((place - hole) & mask)) {
      m_index[hole] = m_index[place];
      hole = place;
    }
  }
  m_index[hole] = 0;
}

void NotificationQueue::Grow() {
  const std::size_t size = m_ring.empty() ? kFirstRingSize : m_ring.size() * 2;
  std::vector<Notification> ring(size);
  std::vector<std::uint64_t> index(size * 2);
  for (std::uint64_t ticket = m_first; ticket != m_next; ++ticket) {
    ring[static_cast<std::size_t>(ticket) & (size - 1)] = std::move(At(ticket));
  }
  m_ring.swap(ring);
  m_index.swap(index);
  for (std::uint64_t ticket = m_first; ticket != m_next; ++ticket) Index(ticket);
}

}  // namespace cvars
