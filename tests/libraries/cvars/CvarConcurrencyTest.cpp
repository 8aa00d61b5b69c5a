// One cvar in the hands of many threads.

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <functional>
#include <thread>
#include <vector>

#include "CCvarBag.h"
#include "CCvarDouble.h"
#include "CvarListeners.h"
#include "LiveCvars.h"
#include "SampleCvars.h"
#include "platform/ComponentModule.h"

namespace {

using cvars::test::SampleCvar;
using Sample = CComPtr<CvarObject<SampleCvar>>;

constexpr int kRounds = 2000;

/// A listener that threads may call at once: counts its calls and gathers the masks.
class CountingListener final
    : public cvars::platform::Component<
          cvars::platform::Offers<IVorCvarEventSink, IID_IVorCvarEventSink>> {
 public:
  static CComPtr<CountingListener> Create() {
    CComPtr<CountingListener> listener;
    listener.Attach(new CountingListener);
    return listener;
  }
  HRESULT OnCvarNotify(IVorCvar*, NOTIFYTYPE what) override {
    calls.fetch_add(1, std::memory_order_relaxed);
    seen.fetch_or(what, std::memory_order_relaxed);
    return S_OK;
  }

  ULONG References() {
    AddRef();
    return Release();
  }

  std::atomic<int> calls{0};
  std::atomic<std::uint32_t> seen{0};
};
using Listener = CComPtr<CountingListener>;

/// A listener that a test owns; its references are counted only.
struct StackListener : IVorCvarEventSink {
  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (iid != IID_IUnknown && iid != IID_IVorCvarEventSink) return E_NOINTERFACE;
    *object = static_cast<IVorCvarEventSink*>(this);
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++references; }
  ULONG Release() override { return --references; }

  std::atomic<ULONG> references{1};

 protected:
  ~StackListener() = default;
};

// Runs each piece of work on a thread of its own, all starting at once.
void RunTogether(const std::vector<std::function<void()>>& work) {
  std::barrier start(static_cast<std::ptrdiff_t>(work.size()));
  std::vector<std::jthread> threads;
  for (const auto& piece : work) {
    threads.emplace_back([&] {
      start.arrive_and_wait();
      piece();
    });
  }
}

using CvarConcurrency = cvars::test::CvarTest;

TEST_F(CvarConcurrency, ListenersComeAndGoUnderNotifications) {
  const Sample cvar = CvarObject<SampleCvar>::Create();
  const Listener stays = CountingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(stays), S_OK);
  std::vector<Listener> visitors(4);
  std::vector<std::function<void()>> work;
  for (Listener& visitor : visitors) {
    visitor = CountingListener::Create();
    work.emplace_back([&cvar, &visitor] {
      for (int i = 0; i < kRounds; ++i) {
        ASSERT_EQ(cvar->AttachCvarEventSink(visitor), S_OK);
        ASSERT_EQ(cvar->DetachCvarEventSink(visitor), S_OK);
      }
    });
  }
  for (const NOTIFYTYPE what : {NOTIFY_VALUE, NOTIFY_RANGE}) {
    work.emplace_back([&cvar, what] {
      for (int i = 0; i < kRounds; ++i) ASSERT_EQ(cvar->ForceNotification(what), S_OK);
    });
  }
  work.emplace_back([&cvar] {
    for (int i = 0; i < kRounds; ++i) {
      long count = 0;
      ASSERT_EQ(cvar->get_EventSinkCount(&count), S_OK);
      ASSERT_GE(count, 1);
      ASSERT_LE(count, 5);
      CComPtr<IUnknown> sink;
      const HRESULT got = cvar->get_EventSink(count - 1, &sink);
      ASSERT_TRUE(got == S_OK || got == E_INVALIDARG);
    }
  });
  RunTogether(work);

  EXPECT_EQ(stays->seen.load(), static_cast<std::uint32_t>(NOTIFY_VALUE | NOTIFY_RANGE));
  EXPECT_EQ(stays->References(), 2u);
  for (const Listener& visitor : visitors) EXPECT_EQ(visitor->References(), 1u);
  long count = 0;
  EXPECT_EQ(cvar->get_EventSinkCount(&count), S_OK);
  EXPECT_EQ(count, 1);
  ASSERT_EQ(cvar->DetachCvarEventSink(stays), S_OK);
}

TEST_F(CvarConcurrency, ListenersDetachThemselvesWhileOthersNotify) {
  struct Leaver final : StackListener {
    explicit Leaver(IVorCvar& source) : cvar(source) {}
    HRESULT OnCvarNotify(IVorCvar*, NOTIFYTYPE) override {
      (void)cvar.DetachCvarEventSink(this);  // the first of several calls finds it
      return S_OK;
    }
    IVorCvar& cvar;
  };
  const Sample cvar = CvarObject<SampleCvar>::Create();
  std::vector<std::unique_ptr<Leaver>> leavers(4);
  std::vector<std::function<void()>> work;
  for (auto& leaver : leavers) {
    leaver = std::make_unique<Leaver>(*cvar->GetIVorCvar());
    work.emplace_back([&cvar, &leaver] {
      for (int i = 0; i < kRounds / 4; ++i) {
        ASSERT_EQ(cvar->AttachCvarEventSink(leaver.get()), S_OK);
        ASSERT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
      }
    });
  }
  RunTogether(work);
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
  long count = 9;
  EXPECT_EQ(cvar->get_EventSinkCount(&count), S_OK);
  EXPECT_EQ(count, 0);
  for (const auto& leaver : leavers) EXPECT_EQ(leaver->references.load(), 1u);
}

TEST_F(CvarConcurrency, NoKindOfChangeIsLostAndNoneStaysBehind) {
  const Sample cvar = CvarObject<SampleCvar>::Create();
  const Listener listener = CountingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  std::vector<std::function<void()>> work;
  std::uint32_t all = 0;
  for (const NOTIFYTYPE what : {NOTIFY_VALUE, NOTIFY_RANGE, NOTIFY_UNIT, NOTIFY_ATTRIBUTES,
                                NOTIFY_REQUESTED, NOTIFYTYPE(0x40000000)}) {
    all |= what;
    work.emplace_back([&cvar, what] {
      for (int i = 0; i < kRounds; ++i) ASSERT_EQ(cvar->ForceNotification(what), S_OK);
    });
  }
  RunTogether(work);
  EXPECT_EQ(listener->seen.load(), all);
  EXPECT_LE(listener->calls.load(), 6 * kRounds);
  const int calls = listener->calls;
  EXPECT_EQ(cvar->NotifyClients(NOTIFY_ALL_CLIENTS, true), S_OK);
  EXPECT_EQ(listener->calls.load(), calls);
}

TEST_F(CvarConcurrency, SuspensionsOfManyThreadsEndBalanced) {
  const Sample cvar = CvarObject<SampleCvar>::Create();
  const Listener listener = CountingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  std::vector<std::function<void()>> work(4, [&cvar] {
    for (int i = 0; i < kRounds; ++i) {
      cvar->SuspendNotifications(1);
      ASSERT_EQ(cvar->ForceNotification(NOTIFY_RANGE), S_OK);
      cvar->SuspendNotifications(0);
    }
  });
  RunTogether(work);
  EXPECT_GE(listener->calls.load(), 1);
  const int calls = listener->calls;
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_UNIT), S_OK);
  EXPECT_EQ(listener->calls.load(), calls + 1);
}

TEST_F(CvarConcurrency, AnyThreadMayGiveTheLastReferenceBack) {
  const Listener listener = CountingListener::Create();
  for (int round = 0; round < 200; ++round) {
    Sample cvar = CvarObject<SampleCvar>::Create();
    ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
    std::vector<std::function<void()>> work;
    for (int thread = 0; thread < 4; ++thread) {
      work.emplace_back([held = cvar]() mutable {
        (void)held->ForceNotification(NOTIFY_VALUE);
        held = nullptr;
      });
    }
    cvar = nullptr;
    RunTogether(std::exchange(work, {}));
  }
  EXPECT_EQ(listener->References(), 1u);
}

TEST_F(CvarConcurrency, TheLastReferenceMayGoWhileAListenerIsCalled) {
  struct Doorbell final : StackListener {
    HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE) override {
      called.store(true);
      called.notify_one();
      // References that come and go inside the call leave the cvar alone.
      EXPECT_GE(source->AddRef(), 2u);
      EXPECT_GE(source->Release(), 1u);
      return S_OK;
    }
    std::atomic<bool> called{false};
  };
  for (int i = 0; i < kRounds; ++i) {
    Doorbell listener;
    Sample cvar = CvarObject<SampleCvar>::Create();
    ASSERT_EQ(cvar->AttachCvarEventSink(&listener), S_OK);
    SampleCvar* const borrowed = cvar;
    std::jthread owner([&] {
      listener.called.wait(false);
      cvar = nullptr;
    });
    ASSERT_EQ(borrowed->ForceNotification(NOTIFY_VALUE), S_OK);
    owner.join();
    ASSERT_EQ(listener.references.load(), 1u);
  }
}

TEST_F(CvarConcurrency, FourThreadsSetFourCvarsWithOneListener) {
  const Listener listener = CountingListener::Create();
  std::vector<CComPtr<CvarObject<CCvarDouble>>> cvars(4);
  std::vector<std::function<void()>> work;
  for (auto& cvar : cvars) {
    cvar = CvarObject<CCvarDouble>::Create();
    cvar->Initialize(L"Level", 0, 0, 1e9, 1, nullptr, CVARFLAGS(0), nullptr, 0, REPLICATE_VALUE);
    ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
    work.emplace_back([&cvar] {
      for (int i = 1; i <= kRounds; ++i) ASSERT_EQ(cvar->SetRequestedValue(i), S_OK);
    });
  }
  RunTogether(work);
  EXPECT_EQ(listener->calls.load(), 4 * kRounds);
  for (auto& cvar : cvars) EXPECT_EQ(cvar->GetAdaptedValue(), kRounds);
}

TEST_F(CvarConcurrency, AValueIsReadWhileAnotherThreadSetsIt) {
  const CComPtr<CvarObject<CCvarDouble>> cvar = CvarObject<CCvarDouble>::Create();
  cvar->Initialize(L"Level", 0, 0, 1e9, 1, nullptr, CVARFLAGS(0), nullptr, 0, REPLICATE_VALUE);
  const auto read = [&cvar] {
    double last = 0;
    for (int i = 0; i < kRounds; ++i) {
      double value = -1;
      ASSERT_EQ(cvar->GetAdaptedValue(&value), S_OK);
      ASSERT_GE(value, last);  // it only ever grows
      last = value;
    }
  };
  RunTogether({read, read, [&cvar] {
                 for (int i = 1; i <= kRounds; ++i) ASSERT_EQ(cvar->SetRequestedValue(i), S_OK);
               }});
}

TEST_F(CvarConcurrency, ABagIsFilledAndSearchedByManyThreads) {
  CComPtr<CCvarBag> bag = CCvarBag::Create(L"Bag", nullptr);
  std::vector<std::function<void()>> work;
  for (int thread = 0; thread < 4; ++thread) {
    work.emplace_back([&bag] {
      for (int i = 0; i < 200; ++i) {
        const Sample cvar = CvarObject<SampleCvar>::Create();
        cvar->SetName(L"Level");
        ASSERT_EQ(bag->Add(cvar), S_OK);
        ASSERT_NE(bag->Find(L"level"), nullptr);
        ASSERT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
        ASSERT_EQ(bag->Remove(cvar), S_OK);
      }
    });
  }
  RunTogether(work);
  EXPECT_EQ(bag->Count(), 0u);
  bag = nullptr;
}

// The list itself ---------------------------------------------------------------------------------

TEST_F(CvarConcurrency, SnapshotsStayWholeWhileTheListIsReplaced) {
  cvars::CvarListeners listeners;
  listeners.Hold();
  cvars::platform::RecursiveLock lock;
  std::vector<Listener> all(6);
  for (Listener& listener : all) listener = CountingListener::Create();
  ASSERT_EQ(listeners.Attach(all[0], lock), S_OK);
  std::vector<std::function<void()>> work;
  for (int thread = 0; thread < 3; ++thread) {
    work.emplace_back([&listeners] {
      for (int i = 0; i < kRounds; ++i) {
        cvars::CvarListeners::Snapshot snapshot(listeners);
        ASSERT_GE(snapshot.Holders(), 2u);
        ASSERT_LE(snapshot.Holders(), 4u);
        for (IVorCvarEventSink* const sink : snapshot)
          (void)sink->OnCvarNotify(nullptr, NOTIFY_VALUE);
        ASSERT_FALSE(snapshot.GiveBack());
      }
    });
  }
  for (std::size_t first : {1u, 3u}) {
    work.emplace_back([&, first] {
      for (int i = 0; i < kRounds; ++i) {
        ASSERT_EQ(listeners.Attach(all[first], lock), S_OK);
        ASSERT_EQ(listeners.Attach(all[first + 1], lock), S_OK);
        const std::size_t sooner = i % 2 == 0 ? first : first + 1;
        const std::size_t later = i % 2 == 0 ? first + 1 : first;
        ASSERT_EQ(listeners.Detach(all[sooner], lock), S_OK);
        ASSERT_EQ(listeners.Detach(all[later], lock), S_OK);
      }
    });
  }
  RunTogether(work);
  EXPECT_EQ(listeners.Count(lock), 1u);
  EXPECT_EQ(all[0]->calls.load(), 3 * kRounds);
  EXPECT_EQ(all[0]->References(), 2u);
  for (std::size_t i = 1; i < all.size(); ++i) EXPECT_EQ(all[i]->References(), 1u);
  cvars::CvarListeners::Snapshot last(listeners);
  EXPECT_EQ(last.Holders(), 2u);
  EXPECT_EQ(last.end() - last.begin(), 1);
  EXPECT_EQ(listeners.LetGo(), 1u);
  EXPECT_TRUE(last.GiveBack());
}

}  // namespace
