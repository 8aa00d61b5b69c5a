#include "components/asynchronous_notifier/NotificationQueue.h"

#include <gtest/gtest.h>

#include <deque>
#include <random>
#include <tuple>
#include <vector>

#include "BareCvar.h"
#include "FunctionListener.h"

namespace cvars {
namespace {

using test::BareCvar;
using test::FunctionListener;

Notification TakeFirst(NotificationQueue& queue) {
  Notification first = queue.Oldest().front().Take();
  queue.RemoveTaken();
  return first;
}

class NotificationQueueTest : public ::testing::Test {
 protected:
  ~NotificationQueueTest() override {
    m_cvars.clear();
    m_listeners.clear();
    EXPECT_EQ(BareCvar::Live(), 0);
    EXPECT_EQ(FunctionListener::Live(), 0);
  }

  BareCvar* Cvar(std::size_t index) {
    while (m_cvars.size() <= index) {
      m_cvars.emplace_back();
      m_cvars.back().Attach(new BareCvar);
    }
    return m_cvars[index];
  }
  FunctionListener* Listener(std::size_t index) {
    while (m_listeners.size() <= index) {
      m_listeners.push_back(FunctionListener::Make([](IVorCvar*, NOTIFYTYPE) { return S_OK; }));
    }
    return m_listeners[index];
  }
  Notification Of(std::size_t cvar, std::size_t listener, NOTIFYTYPE what = NOTIFY_VALUE) {
    return Notification{CComPtr<IVorCvar>(Cvar(cvar)),
                        CComPtr<IVorCvarEventSink>(Listener(listener)), what};
  }

 private:
  std::vector<CComPtr<BareCvar>> m_cvars;
  std::vector<CComPtr<FunctionListener>> m_listeners;
};

TEST_F(NotificationQueueTest, AnEmptyQueueMergesNothing) {
  NotificationQueue queue;
  EXPECT_TRUE(queue.Empty());
  EXPECT_FALSE(queue.Merge(Cvar(0), Listener(0), NOTIFY_VALUE));
  EXPECT_EQ(queue.Size(), 0u);
}

TEST_F(NotificationQueueTest, GivesInTheOrderOfAppending) {
  NotificationQueue queue;
  queue.Append(Of(2, 0));
  queue.Append(Of(0, 1));
  queue.Append(Of(1, 0));
  ASSERT_EQ(queue.Size(), 3u);
  EXPECT_EQ(TakeFirst(queue).source, Cvar(2));
  EXPECT_EQ(TakeFirst(queue).source, Cvar(0));
  EXPECT_EQ(TakeFirst(queue).source, Cvar(1));
  EXPECT_TRUE(queue.Empty());
}

TEST_F(NotificationQueueTest, AMergedPairKeepsItsPlaceAndGathersKinds) {
  NotificationQueue queue;
  queue.Append(Of(0, 0, NOTIFY_VALUE));
  queue.Append(Of(1, 0, NOTIFY_VALUE));
  EXPECT_TRUE(queue.Merge(Cvar(0), Listener(0), NOTIFY_FLAGS));
  EXPECT_EQ(queue.Size(), 2u);
  const Notification first = TakeFirst(queue);
  EXPECT_EQ(first.source, Cvar(0));
  EXPECT_EQ(first.what, NOTIFY_VALUE | NOTIFY_FLAGS);
  EXPECT_EQ(TakeFirst(queue).what, NOTIFY_VALUE);
}

TEST_F(NotificationQueueTest, BothEndsMakeThePair) {
  NotificationQueue queue;
  queue.Append(Of(0, 0));
  EXPECT_FALSE(queue.Merge(Cvar(0), Listener(1), NOTIFY_FLAGS));
  EXPECT_FALSE(queue.Merge(Cvar(1), Listener(0), NOTIFY_FLAGS));
  EXPECT_TRUE(queue.Merge(Cvar(0), Listener(0), NOTIFY_FLAGS));
}

TEST_F(NotificationQueueTest, ATakenPairIsNotQueuedAnyMore) {
  NotificationQueue queue;
  queue.Append(Of(0, 0));
  (void)TakeFirst(queue);
  EXPECT_FALSE(queue.Merge(Cvar(0), Listener(0), NOTIFY_FLAGS));
  queue.Append(Of(0, 0, NOTIFY_FLAGS));
  EXPECT_EQ(TakeFirst(queue).what, NOTIFY_FLAGS);
}

TEST_F(NotificationQueueTest, AGivenPlaceGathersKindsUntilItIsTaken) {
  NotificationQueue queue;
  queue.Append(Of(0, 0, NOTIFY_VALUE));
  queue.Append(Of(1, 0, NOTIFY_VALUE));
  const auto places = queue.Oldest();
  ASSERT_EQ(places.size(), 2u);
  EXPECT_TRUE(queue.Merge(Cvar(1), Listener(0), NOTIFY_FLAGS));
  const Notification second = places[1].Take();
  EXPECT_EQ(second.source, Cvar(1));
  EXPECT_EQ(second.what, NOTIFY_VALUE | NOTIFY_FLAGS);
  EXPECT_FALSE(queue.Merge(Cvar(1), Listener(0), NOTIFY_RANGE));
}

TEST_F(NotificationQueueTest, APlaceIsTakenOnce) {
  NotificationQueue queue;
  queue.Append(Of(0, 0));
  auto& place = queue.Oldest().front();
  EXPECT_EQ(place.Take().source, Cvar(0));
  const Notification again = place.Take();
  EXPECT_EQ(again.source, nullptr);
  EXPECT_EQ(again.listener, nullptr);
}

TEST_F(NotificationQueueTest, GivenPlacesStayWhereTheyAreWhileItGrows) {
  constexpr std::size_t kMany = 1000;
  NotificationQueue queue;
  queue.Append(Of(0, 0));
  queue.Append(Of(1, 0));
  const auto places = queue.Oldest();
  for (std::size_t i = 2; i < kMany; ++i) queue.Append(Of(i, 0));
  EXPECT_TRUE(queue.Merge(Cvar(1), Listener(0), NOTIFY_FLAGS));
  EXPECT_EQ(places[0].Take().source, Cvar(0));
  const Notification second = places[1].Take();
  EXPECT_EQ(second.source, Cvar(1));
  EXPECT_EQ(second.what, NOTIFY_VALUE | NOTIFY_FLAGS);
  queue.RemoveTaken();
  EXPECT_EQ(queue.Size(), kMany - 2);
  for (std::size_t i = 2; i < kMany; ++i) ASSERT_EQ(TakeFirst(queue).source, Cvar(i));
  EXPECT_TRUE(queue.Empty());
}

TEST_F(NotificationQueueTest, OneThatWaitsKeepsTheTakenOnesBehindIt) {
  NotificationQueue queue;
  queue.Append(Of(0, 0));
  queue.Append(Of(1, 0));
  (void)queue.Oldest()[1].Take();
  queue.RemoveTaken();
  EXPECT_EQ(queue.Size(), 2u);
  (void)queue.Oldest()[0].Take();
  queue.RemoveTaken();
  EXPECT_TRUE(queue.Empty());
}

TEST_F(NotificationQueueTest, HoldsBothEndsWhileQueued) {
  NotificationQueue queue;
  BareCvar* const cvar = Cvar(0);
  const ULONG before = cvar->References();
  queue.Append(Of(0, 0));
  EXPECT_EQ(cvar->References(), before + 1);
  (void)TakeFirst(queue);
  EXPECT_EQ(cvar->References(), before);
}

TEST_F(NotificationQueueTest, LetsGoOfWhatIsLeftInIt) {
  BareCvar* const cvar = Cvar(0);
  const ULONG before = cvar->References();
  {
    NotificationQueue queue;
    queue.Append(Of(0, 0));
    queue.Append(Of(0, 1));
  }
  EXPECT_EQ(cvar->References(), before);
}

TEST_F(NotificationQueueTest, LetsGoOfAllThatWait) {
  NotificationQueue queue;
  BareCvar* const cvar = Cvar(0);
  const ULONG before = cvar->References();
  queue.Append(Of(0, 0));
  queue.Append(Of(0, 1));
  const auto places = queue.Oldest();
  queue.LetGo();
  EXPECT_EQ(cvar->References(), before);
  EXPECT_EQ(places[0].Take().source, nullptr);
  EXPECT_EQ(places[1].Take().source, nullptr);
}

// A plain list searched from the front says what the queue must hold after each step.
TEST_F(NotificationQueueTest, AgreesWithAPlainListOverManySteps) {
  NotificationQueue queue;
  std::deque<std::tuple<std::size_t, std::size_t, std::uint32_t>> model;
  std::mt19937 random(12345);
  constexpr std::size_t kCvars = 23;
  constexpr std::size_t kListeners = 17;
  for (int step = 0; step < 60000; ++step) {
    // Longer runs of one kind of step let the queue grow to many hundreds and empty again.
    const bool take = (step / 1500) % 2 == 1 ? random() % 10 < 8 : random() % 10 < 2;
    if (take) {
      ASSERT_EQ(queue.Empty(), model.empty());
      if (model.empty()) continue;
      const auto [cvar, listener, what] = model.front();
      model.pop_front();
      const Notification first = TakeFirst(queue);
      ASSERT_EQ(first.source, Cvar(cvar));
      ASSERT_EQ(first.listener, Listener(listener));
      ASSERT_EQ(first.what, what);
      continue;
    }
    const std::size_t cvar = random() % kCvars;
    const std::size_t listener = random() % kListeners;
    const std::uint32_t what = 1u << (random() % 10);
    bool merged = false;
    for (auto& [c, l, w] : model) {
      if (c == cvar && l == listener) {
        w |= what;
        merged = true;
      }
    }
    ASSERT_EQ(queue.Merge(Cvar(cvar), Listener(listener), static_cast<NOTIFYTYPE>(what)), merged);
    if (!merged) {
      queue.Append(Of(cvar, listener, static_cast<NOTIFYTYPE>(what)));
      model.emplace_back(cvar, listener, what);
    }
    ASSERT_EQ(queue.Size(), model.size());
  }
}

}  // namespace
}  // namespace cvars
