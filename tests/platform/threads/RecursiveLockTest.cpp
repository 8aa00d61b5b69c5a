#include "platform/RecursiveLock.h"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>
#include <vector>

namespace {

using cvars::platform::RecursiveLock;
using cvars::platform::ScopedLock;

bool TryFromAnotherThread(RecursiveLock& lock) {
  bool taken = false;
  std::jthread([&] {
    const std::unique_lock attempt(lock, std::try_to_lock);
    taken = attempt.owns_lock();
  }).join();
  return taken;
}

TEST(RecursiveLockTest, ItsOwnerMayTakeItAgain) {
  // The holders of the standard library: the analysis of locks knows none that are taken again.
  RecursiveLock lock;
  std::vector<std::unique_lock<RecursiveLock>> holders;
  holders.emplace_back(lock);
  holders.emplace_back(lock);
  EXPECT_TRUE(holders.emplace_back(lock, std::try_to_lock).owns_lock());
  for (; !holders.empty(); holders.pop_back()) {
    EXPECT_FALSE(TryFromAnotherThread(lock)) << holders.size();
  }
  EXPECT_TRUE(TryFromAnotherThread(lock));
}

TEST(RecursiveLockTest, IsEightBytesAndAStandardLockable) {
  static_assert(sizeof(RecursiveLock) == 8);
  RecursiveLock lock;
  const std::lock_guard guard(lock);
  EXPECT_FALSE(TryFromAnotherThread(lock));
}

TEST(RecursiveLockTest, ExcludesEightThreadsFromOneAnother) {
  constexpr int kRounds = 5000;
  RecursiveLock lock;
  long first = 0;
  long second = 0;
  int differences = 0;
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 8; ++i) {
      threads.emplace_back([&] {
        for (int round = 0; round < kRounds; ++round) {
          const ScopedLock outer(lock);
          ++first;
          const std::lock_guard inner(lock);
          if (++second != first) ++differences;
        }
      });
    }
  }
  EXPECT_EQ(first, 8 * kRounds);
  EXPECT_EQ(second, first);
  EXPECT_EQ(differences, 0);
}

TEST(RecursiveLockTest, WaitersAllGetTheirTurn) {
  RecursiveLock lock;
  int turns = 0;
  lock.lock();
  std::vector<std::jthread> waiters;
  for (int i = 0; i < 6; ++i) {
    waiters.emplace_back([&] {
      const ScopedLock guard(lock);
      ++turns;
    });
  }
  EXPECT_EQ(turns, 0);
  lock.unlock();
  waiters.clear();
  EXPECT_EQ(turns, 6);
}

}  // namespace
