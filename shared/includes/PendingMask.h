#pragma once

#include <atomic>
#include <cstdint>

#include "CvarEnums.h"

namespace cvars {

/// The kinds of change that wait to be sent.
///
/// The two kinds that every set of a value adds have a byte of their own, so that adding them is a
/// plain store which no other thread's addition can undo; the others share one atomic word.
class PendingMask {
 public:
  void Add(NOTIFYTYPE what) noexcept {
    if ((what & NOTIFY_VALUE) != 0) m_value.store(1, std::memory_order_relaxed);
    if ((what & NOTIFY_REQUESTED) != 0) m_requested.store(1, std::memory_order_relaxed);
    const std::uint32_t rest = what & ~kOwnByte;
    if (rest != 0) m_rest.fetch_or(rest, std::memory_order_relaxed);
  }

  bool Empty() const noexcept {
    return (m_value.load(std::memory_order_relaxed) | m_requested.load(std::memory_order_relaxed) |
            m_rest.load(std::memory_order_relaxed)) == 0;
  }

  /// Gives all kinds and leaves none.
  NOTIFYTYPE Take() noexcept {
    std::uint32_t what = 0;
    if (m_value.load(std::memory_order_relaxed) != 0) {
      m_value.store(0, std::memory_order_relaxed);
      what |= NOTIFY_VALUE;
    }
    if (m_requested.load(std::memory_order_relaxed) != 0) {
      m_requested.store(0, std::memory_order_relaxed);
      what |= NOTIFY_REQUESTED;
    }
    if (m_rest.load(std::memory_order_relaxed) != 0) {
      what |= m_rest.exchange(0, std::memory_order_relaxed);
    }
    return static_cast<NOTIFYTYPE>(what);
  }

  /// Forgets kinds that are pending; used where an unchanged attribute must not be reported.
  void Remove(NOTIFYTYPE what) noexcept {
    if ((what & NOTIFY_VALUE) != 0) m_value.store(0, std::memory_order_relaxed);
    if ((what & NOTIFY_REQUESTED) != 0) m_requested.store(0, std::memory_order_relaxed);
    m_rest.fetch_and(~static_cast<std::uint32_t>(what), std::memory_order_relaxed);
  }

  void Clear() noexcept {
    m_value.store(0, std::memory_order_relaxed);
    m_requested.store(0, std::memory_order_relaxed);
    if (m_rest.load(std::memory_order_relaxed) != 0) m_rest.store(0, std::memory_order_relaxed);
  }

 private:
  static constexpr std::uint32_t kOwnByte = NOTIFY_VALUE | NOTIFY_REQUESTED;

  std::atomic<std::uint32_t> m_rest{0};
  std::atomic<std::uint8_t> m_value{0};
  std::atomic<std::uint8_t> m_requested{0};
};

}  // namespace cvars
