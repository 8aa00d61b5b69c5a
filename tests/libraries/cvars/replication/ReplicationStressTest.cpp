#include <gtest/gtest.h>

#include <mutex>
#include <random>
#include <thread>
#include <vector>

#include "KnownNotifier.h"
#include "ReplicationFixture.h"

namespace cvars {
namespace {

using test::Double;
using test::kEverything;
using test::KnownNotifier;
using test::MakeDouble;
using test::Requested;

constexpr std::size_t kCvars = 64;
constexpr unsigned kThreads = 8;
constexpr unsigned kSteps = 4000;
constexpr unsigned kDeadlineMs = 60000;

// Whoever writes a cvar serialises it with its other writers. The cvars stand in groups of a source
// and those that may follow it: a source has one writer at a time, and so have its followers, which
// are written by nobody but the source's changes. Tying and untying takes no such care.
constexpr std::size_t kGroups = 8;
constexpr std::size_t kMembers = kCvars / kGroups;

class ReplicationStressTest : public test::ReplicationFixture {
 protected:
  void SetUp() override {
    ASSERT_NE(KnownNotifier(), nullptr);
    for (std::size_t i = 0; i < kCvars; ++i) m_cvars.push_back(MakeDouble(L"Member"));
  }

  /// The cvar of a group that the others follow.
  const Double& Source(std::size_t group) const { return m_cvars[group * kMembers]; }
  /// One of its followers, numbered from 1.
  const Double& Follower(std::size_t group, std::size_t number) const {
    return m_cvars[group * kMembers + number];
  }
  void Settle() {
    for (int i = 0; i < 3; ++i) EXPECT_EQ(KnownNotifier()->Drain(kDeadlineMs), S_OK);
  }

  std::vector<Double> m_cvars;
};

// Synchronous copies run on the changer's thread and asynchronous ones on the notifier's, so a
// follower is tied in one manner at a time: even ones asynchronously, odd ones synchronously.
CVARREPLICATIONCONNECTIONATTRIBUTES Manner(std::size_t number) {
  return number % 2 == 0 ? REPLICATIONCONNECTION_ASYNCHRONOUS : REPLICATIONCONNECTION_SYNCHRONOUS;
}

TEST_F(ReplicationStressTest, ThreadsMayChangeTieAndUntieAtWill) {
  std::vector<std::mutex> writers(kGroups);
  std::vector<std::thread> threads;
  for (unsigned t = 0; t < kThreads; ++t) {
    threads.emplace_back([this, t, &writers] {
      std::mt19937 random(1000 + t);
      for (unsigned step = 0; step < kSteps; ++step) {
        const std::size_t group = random() % kGroups;
        const std::size_t number = 1 + random() % (kMembers - 1);
        const Double& follower = Follower(group, number);
        switch (random() % 8) {
          case 0:  // no copy at once, which would write the follower beside its other writers
            (void)follower->StartCvarReplication(Source(group), Manner(number),
                                                 REPLICATIONCONNECTION_NONE,
                                                 REPLICATIONCOPY_FROM_OTHER, NOTIFYTYPE(0));
            break;
          case 1:
            (void)follower->StopCvarReplication(Source(group));
            break;
          case 2:
            (void)follower->StopAllCvarReplication();
            break;
          default: {
            const std::lock_guard guard(writers[group]);
            (void)Source(group)->SetRequestedValue(static_cast<double>(random() % 1000));
          }
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();

  // Now that nobody ties or unties, one more change reaches whoever is tied, and nobody else.
  Settle();
  std::vector<double> before;
  for (const Double& cvar : m_cvars) before.push_back(Requested(cvar));
  constexpr double kLast = -7;  // none of the values above
  for (std::size_t group = 0; group < kGroups; ++group) {
    EXPECT_EQ(Source(group)->SetRequestedValue(kLast), S_OK);
  }
  Settle();
  for (std::size_t group = 0; group < kGroups; ++group) {
    for (std::size_t number = 1; number < kMembers; ++number) {
      const Double& follower = Follower(group, number);
      // Restarting an existing way says nothing about itself; stopping does.
      const bool tied = follower->StopCvarReplication(Source(group)) == S_OK;
      EXPECT_EQ(Requested(follower), tied ? kLast : before[group * kMembers + number])
          << group << " " << number;
    }
    EXPECT_EQ(test::Listeners(Source(group)), 0);
  }
}

// The cvars themselves come and go: each thread replaces followers of its own group, while all
// threads change sources.
TEST_F(ReplicationStressTest, CvarsMayGoAtAnyMoment) {
  std::vector<std::mutex> writers(kGroups);
  std::vector<std::thread> threads;
  for (unsigned t = 0; t < kThreads; ++t) {
    threads.emplace_back([this, t, &writers] {
      std::mt19937 random(2000 + t);
      const std::size_t own = t % kGroups;
      for (unsigned step = 0; step < kSteps / 2; ++step) {
        const std::size_t number = 1 + random() % (kMembers - 1);
        Double& follower = m_cvars[own * kMembers + number];
        if (random() % 4 == 0) {
          follower = MakeDouble(L"Member");
          (void)follower->StartCvarReplication(Source(own), Manner(number),
                                               REPLICATIONCONNECTION_NONE,
                                               REPLICATIONCOPY_FROM_OTHER, NOTIFYTYPE(0));
        } else {
          const std::size_t group = random() % kGroups;
          const std::lock_guard guard(writers[group]);
          (void)Source(group)->SetRequestedValue(static_cast<double>(random() % 1000));
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  Settle();
  constexpr double kLast = -7;
  for (std::size_t group = 0; group < kGroups; ++group) {
    EXPECT_EQ(Source(group)->SetRequestedValue(kLast), S_OK);
  }
  Settle();
  for (std::size_t group = 0; group < kGroups; ++group) {
    for (std::size_t number = 1; number < kMembers; ++number) {
      const Double& follower = Follower(group, number);
      if (follower->StopCvarReplication(Source(group)) == S_OK) {
        EXPECT_EQ(Requested(follower), kLast) << group << " " << number;
      }
    }
    EXPECT_EQ(test::Listeners(Source(group)), 0);
  }
}

// Every owner lets its cvars go while changes are queued: nothing dangles, and all of them go.
TEST_F(ReplicationStressTest, AllMayGoWithDeliveriesQueued) {
  for (std::size_t group = 0; group < kGroups; ++group) {
    for (std::size_t number = 1; number < kMembers; ++number) {
      EXPECT_EQ(Follower(group, number)
                    ->StartCvarReplication(Source(group), REPLICATIONCONNECTION_ASYNCHRONOUS,
                                           REPLICATIONCONNECTION_ASYNCHRONOUS,
                                           REPLICATIONCOPY_FROM_OTHER, NOTIFYTYPE(0)),
                S_OK);
    }
    EXPECT_EQ(Source(group)->SetRequestedValue(5), S_OK);
  }
  std::vector<std::vector<Double>> owned(kThreads);
  for (std::size_t i = 0; i < kCvars; ++i) {
    owned[i % kThreads].push_back(std::move(m_cvars[i]));
  }
  m_cvars.clear();
  std::vector<std::thread> threads;
  for (auto& mine : owned) {
    threads.emplace_back([&mine] { mine.clear(); });
  }
  for (std::thread& thread : threads) thread.join();
  Settle();
}

}  // namespace
}  // namespace cvars
