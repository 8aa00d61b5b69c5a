#include "components/asynchronous_notifier/DeliveryWorker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "BareCvar.h"
#include "FunctionListener.h"

namespace cvars {
namespace {

using test::BareCvar;
using test::FunctionListener;
using test::Gate;
using test::kDeadlineMs;

CComPtr<BareCvar> MakeCvar() {
  CComPtr<BareCvar> cvar;
  cvar.Attach(new BareCvar);
  return cvar;
}

CComPtr<FunctionListener> Silent() {
  return FunctionListener::Make([](IVorCvar*, NOTIFYTYPE) { return S_OK; });
}

class DeliveryWorkerTest : public ::testing::Test {
 protected:
  ~DeliveryWorkerTest() override {
    EXPECT_EQ(BareCvar::Live(), 0);
    EXPECT_EQ(FunctionListener::Live(), 0);
  }
};

/// Keeps the worker inside one delivery until it is told to go on.
class Blocker {
 public:
  explicit Blocker(DeliveryWorker& worker)
      : m_listener(FunctionListener::Make([this](IVorCvar*, NOTIFYTYPE) {
          m_entered.Open();
          EXPECT_TRUE(m_go.Wait());
          return S_OK;
        })) {
    EXPECT_EQ(worker.Post(m_cvar, NOTIFY_VALUE, m_listener), S_OK);
    EXPECT_TRUE(m_entered.Wait());
  }
  ~Blocker() { m_go.Open(); }
  void Go() { m_go.Open(); }

 private:
  Gate m_entered;
  Gate m_go;
  CComPtr<BareCvar> m_cvar = MakeCvar();
  CComPtr<FunctionListener> m_listener;
};

TEST_F(DeliveryWorkerTest, DeliversSourceAndKindsOnAnotherThread) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  IVorCvar* seen = nullptr;
  NOTIFYTYPE kinds{};
  std::thread::id thread;
  const CComPtr<FunctionListener> listener =
      FunctionListener::Make([&](IVorCvar* source, NOTIFYTYPE what) {
        seen = source;
        kinds = what;
        thread = std::this_thread::get_id();
        return S_OK;
      });
  DeliveryWorker worker;
  EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE | NOTIFY_UNIT, listener), S_OK);
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
  EXPECT_EQ(seen, cvar);
  EXPECT_EQ(kinds, NOTIFY_VALUE | NOTIFY_UNIT);
  EXPECT_NE(thread, std::this_thread::get_id());
}

TEST_F(DeliveryWorkerTest, DeliversInTheOrderOfPosting) {
  std::vector<CComPtr<BareCvar>> sources;
  for (int i = 0; i < 100; ++i) sources.push_back(MakeCvar());
  std::vector<IVorCvar*> order;
  const CComPtr<FunctionListener> listener =
      FunctionListener::Make([&](IVorCvar* source, NOTIFYTYPE) {
        order.push_back(source);
        return S_OK;
      });
  DeliveryWorker worker;
  for (const auto& cvar : sources) EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, listener), S_OK);
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
  ASSERT_EQ(order.size(), sources.size());
  for (std::size_t i = 0; i < order.size(); ++i) EXPECT_EQ(order[i], sources[i]) << i;
}

TEST_F(DeliveryWorkerTest, MergesAPairThatIsStillQueued) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  std::vector<NOTIFYTYPE> kinds;
  const CComPtr<FunctionListener> listener =
      FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE what) {
        kinds.push_back(what);
        return S_OK;
      });
  DeliveryWorker worker;
  {
    Blocker blocker(worker);
    EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, listener), S_OK);
    EXPECT_EQ(worker.Post(cvar, NOTIFY_FLAGS, listener), S_FALSE);
    EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, listener), S_FALSE);
    blocker.Go();
    EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
  }
  EXPECT_EQ(kinds, (std::vector<NOTIFYTYPE>{NOTIFY_VALUE | NOTIFY_FLAGS}));
}

// Waits behind another delivery, with which it was queued.
TEST_F(DeliveryWorkerTest, MergesAPairWhileTheOneBeforeItIsInDelivery) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  Gate entered;
  Gate go;
  const CComPtr<FunctionListener> before = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
    entered.Open();
    EXPECT_TRUE(go.Wait());
    return S_OK;
  });
  std::vector<NOTIFYTYPE> kinds;
  const CComPtr<FunctionListener> listener =
      FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE what) {
        kinds.push_back(what);
        return S_OK;
      });
  DeliveryWorker worker;
  Blocker blocker(worker);
  EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, before), S_OK);
  EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, listener), S_OK);
  blocker.Go();
  EXPECT_TRUE(entered.Wait());
  EXPECT_EQ(worker.Post(cvar, NOTIFY_FLAGS, listener), S_FALSE);
  go.Open();
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
  EXPECT_EQ(kinds, (std::vector<NOTIFYTYPE>{NOTIFY_VALUE | NOTIFY_FLAGS}));
}

TEST_F(DeliveryWorkerTest, APairInDeliveryIsQueuedAnew) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  DeliveryWorker worker;
  HRESULT posted = E_FAIL;
  int calls = 0;
  CComPtr<FunctionListener> listener;
  listener = FunctionListener::Make([&](IVorCvar* source, NOTIFYTYPE) {
    if (++calls == 1) posted = worker.Post(source, NOTIFY_FLAGS, listener);
    return S_OK;
  });
  EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, listener), S_OK);
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);  // the first
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);  // what the first one posted
  EXPECT_EQ(posted, S_OK);
  EXPECT_EQ(calls, 2);
}

TEST_F(DeliveryWorkerTest, HoldsBothEndsUntilDeliveredAndNoLonger) {
  DeliveryWorker worker;
  {
    Blocker blocker(worker);
    EXPECT_EQ(worker.Post(MakeCvar(), NOTIFY_VALUE, Silent()), S_OK);
    EXPECT_EQ(BareCvar::Live(), 2);
    EXPECT_EQ(FunctionListener::Live(), 2);
    blocker.Go();
    EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
  }
  EXPECT_EQ(worker.Stop(), S_OK);
  EXPECT_EQ(BareCvar::Live(), 0);
  EXPECT_EQ(FunctionListener::Live(), 0);
}

TEST_F(DeliveryWorkerTest, AThrowingListenerEndsItsOwnDeliveryOnly) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  const CComPtr<FunctionListener> thrower = FunctionListener::Make(
      [](IVorCvar*, NOTIFYTYPE) -> HRESULT { throw std::runtime_error(""); });
  const CComPtr<FunctionListener> odd =
      FunctionListener::Make([](IVorCvar*, NOTIFYTYPE) -> HRESULT { throw 1; });
  bool told = false;
  const CComPtr<FunctionListener> last = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
    told = true;
    return E_FAIL;
  });
  DeliveryWorker worker;
  EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, thrower), S_OK);
  EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, odd), S_OK);
  EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, last), S_OK);
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
  EXPECT_TRUE(told);
}

TEST_F(DeliveryWorkerTest, DrainOfAnIdleWorkerReturnsAtOnce) {
  DeliveryWorker worker;
  EXPECT_EQ(worker.Drain(0), S_OK);
  EXPECT_EQ(worker.Drain(0xFFFFFFFFu), S_OK);
}

TEST_F(DeliveryWorkerTest, DrainTellsWhenTheTimeRanOut) {
  DeliveryWorker worker;
  Blocker blocker(worker);
  EXPECT_EQ(worker.Drain(0), S_FALSE);
  EXPECT_EQ(worker.Drain(1), S_FALSE);
  blocker.Go();
  EXPECT_EQ(worker.Drain(0xFFFFFFFFu), S_OK);
}

// A listener that posts itself again and again: a drain that waited for later posts would not end.
TEST_F(DeliveryWorkerTest, DrainDoesNotWaitForWhatIsPostedLater) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  DeliveryWorker worker;
  std::atomic<bool> enough{false};
  CComPtr<FunctionListener> listener;
  listener = FunctionListener::Make([&](IVorCvar* source, NOTIFYTYPE) {
    if (!enough) {
      EXPECT_EQ(worker.Post(source, NOTIFY_VALUE, listener), S_OK);
    }
    return S_OK;
  });
  EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, listener), S_OK);
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
  enough = true;
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
  EXPECT_EQ(worker.Stop(), S_OK);
}

TEST_F(DeliveryWorkerTest, DrainOnTheWorkerThreadIsRefused) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  DeliveryWorker worker;
  HRESULT drained = S_OK;
  const CComPtr<FunctionListener> listener = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
    drained = worker.Drain(0xFFFFFFFFu);
    return S_OK;
  });
  EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, listener), S_OK);
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
  EXPECT_EQ(drained, E_UNEXPECTED);
}

TEST_F(DeliveryWorkerTest, StopDropsTheQueueAndRefusesPosts) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  std::atomic<bool> told{false};
  const CComPtr<FunctionListener> listener = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
    told = true;
    return S_OK;
  });
  DeliveryWorker worker;
  Blocker blocker(worker);
  EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, listener), S_OK);
  std::thread stopper([&] { EXPECT_EQ(worker.Stop(), S_OK); });
  while (worker.Post(cvar, NOTIFY_VALUE, listener) != E_UNEXPECTED) std::this_thread::yield();
  EXPECT_EQ(worker.Stop(), S_FALSE);
  blocker.Go();
  stopper.join();
  EXPECT_FALSE(told);
  EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, listener), E_UNEXPECTED);
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_FALSE);
  EXPECT_EQ(worker.Stop(), S_FALSE);
}

// The first of several that were queued together stops the worker.
TEST_F(DeliveryWorkerTest, StopDropsWhatWaitsBehindTheDeliveryInProgress) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  const CComPtr<BareCvar> last = MakeCvar();
  std::atomic<bool> told{false};
  const CComPtr<FunctionListener> listener = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
    told = true;
    return S_OK;
  });
  DeliveryWorker worker;
  ULONG held = 0;
  Gate done;
  const CComPtr<FunctionListener> stopper = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
    EXPECT_EQ(worker.Stop(), S_OK);
    held = last->References();
    done.Open();
    return S_OK;
  });
  Blocker blocker(worker);
  EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, stopper), S_OK);
  EXPECT_EQ(worker.Post(last, NOTIFY_VALUE, listener), S_OK);
  EXPECT_EQ(last->References(), 2u);
  blocker.Go();
  EXPECT_TRUE(done.Wait());
  EXPECT_EQ(held, 1u);
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_FALSE);
  EXPECT_FALSE(told);
}

TEST_F(DeliveryWorkerTest, StopWaitsForTheDeliveryInProgress) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  DeliveryWorker worker;
  Gate entered;
  std::atomic<bool> left{false};
  Gate go;
  const CComPtr<FunctionListener> listener = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
    entered.Open();
    EXPECT_TRUE(go.Wait());
    left = true;
    return S_OK;
  });
  EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, listener), S_OK);
  EXPECT_TRUE(entered.Wait());
  std::thread opener([&] { go.Open(); });
  EXPECT_EQ(worker.Stop(), S_OK);
  EXPECT_TRUE(left);
  opener.join();
}

TEST_F(DeliveryWorkerTest, StopOnTheWorkerThreadDoesNotWait) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  DeliveryWorker worker;
  HRESULT stopped = E_FAIL;
  Gate done;
  const CComPtr<FunctionListener> listener = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
    stopped = worker.Stop();
    done.Open();
    return S_OK;
  });
  EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, listener), S_OK);
  EXPECT_TRUE(done.Wait());
  EXPECT_EQ(stopped, S_OK);
  EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, listener), E_UNEXPECTED);
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
}

TEST_F(DeliveryWorkerTest, MayBeDestroyedByItsOwnDelivery) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  auto worker = std::make_unique<DeliveryWorker>();
  DeliveryWorker* const raw = worker.get();
  Gate done;
  const CComPtr<FunctionListener> listener = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
    worker.reset();
    done.Open();
    return S_OK;
  });
  EXPECT_EQ(raw->Post(cvar, NOTIFY_VALUE, listener), S_OK);
  EXPECT_TRUE(done.Wait());
  // The thread lets its delivery go after the listener has returned.
  while (cvar->References() != 1) std::this_thread::yield();
}

TEST_F(DeliveryWorkerTest, DestructionWithDeliveriesQueuedLetsThemGo) {
  for (int round = 0; round < 50; ++round) {
    const CComPtr<FunctionListener> listener = Silent();
    DeliveryWorker worker;
    for (int i = 0; i < 20; ++i) EXPECT_EQ(worker.Post(MakeCvar(), NOTIFY_VALUE, listener), S_OK);
  }
}

TEST_F(DeliveryWorkerTest, APostBeyondTheBoundWaitsForRoom) {
  const CComPtr<FunctionListener> listener = Silent();
  const CComPtr<BareCvar> first = MakeCvar();
  const CComPtr<BareCvar> second = MakeCvar();
  const CComPtr<BareCvar> third = MakeCvar();
  DeliveryWorker worker(2);
  Blocker blocker(worker);
  EXPECT_EQ(worker.Post(first, NOTIFY_VALUE, listener), S_OK);
  EXPECT_EQ(worker.Post(second, NOTIFY_VALUE, listener), S_OK);
  EXPECT_EQ(worker.Post(second, NOTIFY_FLAGS, listener), S_FALSE);  // merges in a full queue too
  std::atomic<bool> accepted{false};
  std::thread poster([&] {
    EXPECT_EQ(worker.Post(third, NOTIFY_VALUE, listener), S_OK);
    accepted = true;
  });
  // The poster's reference shows that it has entered; with the worker held it cannot come out.
  while (third->References() < 2) std::this_thread::yield();
  EXPECT_FALSE(accepted);
  blocker.Go();
  poster.join();
  EXPECT_TRUE(accepted);
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
}

// Two are queued together, and the second waits for the post that the first makes room for.
TEST_F(DeliveryWorkerTest, APostThatWaitsGetsTheRoomOfTheNextDelivery) {
  const CComPtr<BareCvar> first = MakeCvar();
  const CComPtr<BareCvar> second = MakeCvar();
  const CComPtr<BareCvar> third = MakeCvar();
  Gate accepted;
  const CComPtr<FunctionListener> silent = Silent();
  const CComPtr<FunctionListener> waits = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
    EXPECT_TRUE(accepted.Wait());
    return S_OK;
  });
  DeliveryWorker worker(2);
  Blocker blocker(worker);
  EXPECT_EQ(worker.Post(first, NOTIFY_VALUE, silent), S_OK);
  EXPECT_EQ(worker.Post(second, NOTIFY_VALUE, waits), S_OK);
  std::thread poster([&] {
    EXPECT_EQ(worker.Post(third, NOTIFY_VALUE, silent), S_OK);
    accepted.Open();
  });
  while (third->References() < 2) std::this_thread::yield();
  blocker.Go();
  poster.join();
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
}

TEST_F(DeliveryWorkerTest, StopFreesAPostThatWaitsForRoom) {
  const CComPtr<FunctionListener> listener = Silent();
  const CComPtr<BareCvar> first = MakeCvar();
  const CComPtr<BareCvar> second = MakeCvar();
  DeliveryWorker worker(1);
  Blocker blocker(worker);
  EXPECT_EQ(worker.Post(first, NOTIFY_VALUE, listener), S_OK);
  std::thread poster([&] { EXPECT_EQ(worker.Post(second, NOTIFY_VALUE, listener), E_UNEXPECTED); });
  while (second->References() < 2) std::this_thread::yield();
  std::thread stopper([&] { EXPECT_EQ(worker.Stop(), S_OK); });
  poster.join();
  blocker.Go();
  stopper.join();
}

TEST_F(DeliveryWorkerTest, PostsOfTheWorkerThreadPassTheBound) {
  std::vector<CComPtr<BareCvar>> sources;
  for (int i = 0; i < 10; ++i) sources.push_back(MakeCvar());
  DeliveryWorker worker(1);
  int told = 0;
  const CComPtr<FunctionListener> counter = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
    ++told;
    return S_OK;
  });
  const CComPtr<FunctionListener> poster = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
    for (const auto& cvar : sources) EXPECT_EQ(worker.Post(cvar, NOTIFY_VALUE, counter), S_OK);
    return S_OK;
  });
  EXPECT_EQ(worker.Post(sources[0], NOTIFY_VALUE, poster), S_OK);
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
  EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
  EXPECT_EQ(told, 10);
}

// Each thread counts its own source up; a listener must never see a source go back, and must have
// seen the last number after the drain.
TEST_F(DeliveryWorkerTest, LosesNothingWithManyThreads) {
  constexpr int kThreads = 8;
  static constexpr int kPosts = 5000;
  struct Pair {
    CComPtr<BareCvar> source = MakeCvar();
    std::atomic<int> posted{0};
    int seen = 0;
    CComPtr<FunctionListener> listener;
  };
  std::vector<std::unique_ptr<Pair>> pairs;
  std::atomic<int> backwards{0};
  for (int i = 0; i < kThreads; ++i) {
    pairs.push_back(std::make_unique<Pair>());
    Pair* const pair = pairs.back().get();
    pair->listener = FunctionListener::Make([pair, &backwards](IVorCvar*, NOTIFYTYPE) {
      const int now = pair->posted.load();
      if (now < pair->seen) ++backwards;
      pair->seen = now;
      return S_OK;
    });
  }
  DeliveryWorker worker;
  std::vector<std::thread> threads;
  for (auto& pair : pairs) {
    threads.emplace_back([&worker, one = pair.get()] {
      for (int i = 1; i <= kPosts; ++i) {
        one->posted.store(i);
        const HRESULT result = worker.Post(one->source, NOTIFY_VALUE, one->listener);
        if (result != S_OK && result != S_FALSE) ADD_FAILURE() << result;
      }
      EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
      EXPECT_EQ(one->seen, kPosts);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(backwards, 0);
}

// Nothing can be merged, and posts of a small queue wait for room again and again.
TEST_F(DeliveryWorkerTest, DeliversEachOfManyPairsOnceAndInOrder) {
  constexpr int kThreads = 4;
  static constexpr std::size_t kPosts = 1000;
  struct Sender {
    std::vector<CComPtr<BareCvar>> sources;
    std::vector<IVorCvar*> seen;
    CComPtr<FunctionListener> listener;
  };
  for (const std::size_t bound : {DeliveryWorker::kQueueBound, std::size_t{100}, std::size_t{1}}) {
    std::vector<Sender> senders(kThreads);
    DeliveryWorker worker(bound);
    std::vector<std::thread> threads;
    for (Sender& sender : senders) {
      for (std::size_t i = 0; i < kPosts; ++i) sender.sources.push_back(MakeCvar());
      sender.listener = FunctionListener::Make([&sender](IVorCvar* source, NOTIFYTYPE) {
        sender.seen.push_back(source);
        return S_OK;
      });
      threads.emplace_back([&worker, &sender] {
        for (const auto& source : sender.sources) {
          EXPECT_EQ(worker.Post(source, NOTIFY_VALUE, sender.listener), S_OK);
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(worker.Drain(kDeadlineMs), S_OK);
    for (const Sender& sender : senders) {
      ASSERT_EQ(sender.seen.size(), kPosts);
      for (std::size_t i = 0; i < kPosts; ++i) ASSERT_EQ(sender.seen[i], sender.sources[i]) << i;
    }
  }
}

}  // namespace
}  // namespace cvars
