#include "platform/RecursiveLock.h"

#include <unistd.h>

namespace cvars::platform {

constinit thread_local std::uint32_t RecursiveLock::t_token = 0;

std::uint32_t RecursiveLock::MakeThreadToken() noexcept {
  t_token = static_cast<std::uint32_t>(::gettid());
  return t_token;
}

void RecursiveLock::LockContended() noexcept {
  // Taken with the waiters mark: whoever unlocks then wakes the next one, which may be nobody.
  const std::uint32_t self = ThreadToken() | kWaiters;
  std::uint32_t owner = m_owner.load(std::memory_order_relaxed);
  for (;;) {
    if (owner == 0) {
      if (m_owner.compare_exchange_weak(owner, self, std::memory_order_acquire,
                                        std::memory_order_relaxed)) {
        return;
      }
      continue;
    }
    if ((owner & kWaiters) == 0) {
      if (!m_owner.compare_exchange_weak(owner, owner | kWaiters, std::memory_order_relaxed)) {
        continue;
      }
      owner |= kWaiters;
    }
    m_owner.wait(owner, std::memory_order_relaxed);
    owner = m_owner.load(std::memory_order_relaxed);
  }
}

}  // namespace cvars::platform
