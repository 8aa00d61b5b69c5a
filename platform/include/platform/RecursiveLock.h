#pragma once

#include <atomic>
#include <cstdint>

#include "Export.h"
#include "platform/ThreadSafety.h"

namespace cvars::platform {

/// Mutual exclusion that its owner may take again; eight bytes, no system call while uncontended.
///
/// Meets the standard's Lockable requirements, so that std::lock_guard takes it.
class CVARS_CAPABILITY("lock") RecursiveLock {
 public:
  constexpr RecursiveLock() noexcept = default;
  RecursiveLock(const RecursiveLock&) = delete;
  RecursiveLock& operator=(const RecursiveLock&) = delete;

  void lock() noexcept CVARS_ACQUIRE() CVARS_NO_THREAD_SAFETY_ANALYSIS {
    if (!try_lock()) LockContended();
  }

  bool try_lock() noexcept CVARS_TRY_ACQUIRE(true) CVARS_NO_THREAD_SAFETY_ANALYSIS {
    const std::uint32_t self = ThreadToken();
    std::uint32_t owner = 0;
    if (m_owner.compare_exchange_strong(owner, self, std::memory_order_acquire,
                                        std::memory_order_relaxed)) {
      return true;
    }
    if ((owner & ~kWaiters) != self) return false;
    ++m_repeats;
    return true;
  }

  void unlock() noexcept CVARS_RELEASE() CVARS_NO_THREAD_SAFETY_ANALYSIS {
    if (m_repeats != 0) {
      --m_repeats;
      return;
    }
    if ((m_owner.exchange(0, std::memory_order_release) & kWaiters) != 0) m_owner.notify_one();
  }

 private:
  static constexpr std::uint32_t kWaiters = 0x80000000u;

  /// A number that no other live thread has; never 0.
  static std::uint32_t ThreadToken() noexcept { return t_token != 0 ? t_token : MakeThreadToken(); }
  CVARS_API static std::uint32_t MakeThreadToken() noexcept;
  CVARS_API void LockContended() noexcept;

  [[gnu::tls_model("initial-exec")]] CVARS_API static constinit thread_local std::uint32_t t_token;

  std::atomic<std::uint32_t> m_owner{0};  // thread token of the owner and kWaiters
  std::uint32_t m_repeats = 0;            // touched by the owner only
};

/// Holds a RecursiveLock for a scope.
class CVARS_SCOPED_CAPABILITY ScopedLock {
 public:
  explicit ScopedLock(RecursiveLock& lock) noexcept CVARS_ACQUIRE(lock) : m_lock(lock) {
    m_lock.lock();
  }
  ~ScopedLock() CVARS_RELEASE() { m_lock.unlock(); }
  ScopedLock(const ScopedLock&) = delete;
  ScopedLock& operator=(const ScopedLock&) = delete;

 private:
  RecursiveLock& m_lock;
};

}  // namespace cvars::platform
