#include <gtest/gtest.h>
#include <pthread.h>
#include <stdlib.h>

#include <atomic>
#include <thread>
#include <vector>

#include "BareCvar.h"
#include "CComPtr.h"
#include "FunctionListener.h"
#include "IVorAsynchronousCvarNotifier.h"
#include "IsolatedHome.h"
#include "platform/Components.h"

namespace cvars {
namespace {

using test::BareCvar;
using test::FunctionListener;
using test::Gate;
using test::kDeadlineMs;

HRESULT Create(CComPtr<IVorAsynchronousCvarNotifier>& notifier) {
  return platform::CreateComponent(L"Vortana.AsynchronousCvarNotifier",
                                   IID_IVorAsynchronousCvarNotifier,
                                   reinterpret_cast<void**>(&notifier));
}

CComPtr<BareCvar> MakeCvar() {
  CComPtr<BareCvar> cvar;
  cvar.Attach(new BareCvar);
  return cvar;
}

class AsynchronousCvarNotifierTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(Create(m_notifier), S_OK); }
  void TearDown() override {
    m_notifier.Release();
    EXPECT_EQ(BareCvar::Live(), 0);
    EXPECT_EQ(FunctionListener::Live(), 0);
  }

  test::IsolatedHome m_home;
  CComPtr<IVorAsynchronousCvarNotifier> m_notifier;
};

TEST_F(AsynchronousCvarNotifierTest, IsKnownByItsClassIdentifier) {
  CLSID clsid = GUID_NULL;
  EXPECT_EQ(CLSIDFromProgID(L"Vortana.AsynchronousCvarNotifier", &clsid), S_OK);
  EXPECT_TRUE(clsid == CLSID_AsynchronousCvarNotifier);
}

TEST_F(AsynchronousCvarNotifierTest, AForwarderChecksItsArguments) {
  const CComPtr<FunctionListener> listener =
      FunctionListener::Make([](IVorCvar*, NOTIFYTYPE) { return S_OK; });
  EXPECT_EQ(m_notifier->CreateForwarder(listener, nullptr), E_POINTER);
  EXPECT_EQ(m_notifier->CreateForwarder(nullptr, nullptr), E_POINTER);

  const CComPtr<BareCvar> noListener = MakeCvar();
  for (IUnknown* const wrong :
       {static_cast<IUnknown*>(nullptr), static_cast<IUnknown*>(noListener.p)}) {
    auto* forwarder = reinterpret_cast<IVorCvarEventSink*>(this);
    EXPECT_EQ(m_notifier->CreateForwarder(wrong, &forwarder), E_INVALIDARG);
    EXPECT_EQ(forwarder, nullptr);
  }
}

TEST_F(AsynchronousCvarNotifierTest, APostChecksItsArguments) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  const CComPtr<FunctionListener> listener =
      FunctionListener::Make([](IVorCvar*, NOTIFYTYPE) { return S_OK; });
  EXPECT_EQ(m_notifier->Post(nullptr, NOTIFY_VALUE, listener), E_INVALIDARG);
  EXPECT_EQ(m_notifier->Post(cvar, NOTIFY_VALUE, nullptr), E_INVALIDARG);
}

TEST_F(AsynchronousCvarNotifierTest, AForwarderPostsToItsListener) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  std::thread::id thread;
  NOTIFYTYPE kinds{};
  CComPtr<IVorCvarEventSink> forwarder;
  {
    const CComPtr<FunctionListener> listener =
        FunctionListener::Make([&](IVorCvar* source, NOTIFYTYPE what) {
          EXPECT_EQ(source, cvar);
          thread = std::this_thread::get_id();
          kinds = what;
          return E_FAIL;
        });
    ASSERT_EQ(m_notifier->CreateForwarder(listener, &forwarder), S_OK);
  }
  EXPECT_EQ(FunctionListener::Live(), 1);  // the forwarder holds it
  EXPECT_EQ(forwarder->OnCvarNotify(cvar, NOTIFY_RANGE), S_OK);
  EXPECT_EQ(m_notifier->Drain(kDeadlineMs), S_OK);
  EXPECT_NE(thread, std::thread::id());
  EXPECT_NE(thread, std::this_thread::get_id());
  EXPECT_EQ(kinds, NOTIFY_RANGE);
}

TEST_F(AsynchronousCvarNotifierTest, AForwarderAnswersForItselfAlone) {
  const CComPtr<FunctionListener> listener =
      FunctionListener::Make([](IVorCvar*, NOTIFYTYPE) { return S_OK; });
  CComPtr<IVorCvarEventSink> first;
  CComPtr<IVorCvarEventSink> second;
  ASSERT_EQ(m_notifier->CreateForwarder(listener, &first), S_OK);
  ASSERT_EQ(m_notifier->CreateForwarder(listener, &second), S_OK);
  EXPECT_NE(first, second);
  CComPtr<IUnknown> identity;
  ASSERT_EQ(first->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&identity)), S_OK);
  EXPECT_NE(identity, listener);
}

TEST_F(AsynchronousCvarNotifierTest, AForwarderKeepsTheNotifierAlive) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  Gate told;
  CComPtr<IVorCvarEventSink> forwarder;
  {
    const CComPtr<FunctionListener> listener = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
      told.Open();
      return S_OK;
    });
    ASSERT_EQ(m_notifier->CreateForwarder(listener, &forwarder), S_OK);
  }
  m_notifier.Release();
  EXPECT_EQ(forwarder->OnCvarNotify(cvar, NOTIFY_VALUE), S_OK);
  EXPECT_TRUE(told.Wait());
  forwarder.Release();
  // The last reference went with it, so the worker has ended and holds nothing.
  EXPECT_EQ(cvar->References(), 1u);
}

TEST_F(AsynchronousCvarNotifierTest, AForwarderOfAStoppedNotifierSaysSo) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  const CComPtr<FunctionListener> listener =
      FunctionListener::Make([](IVorCvar*, NOTIFYTYPE) { return S_OK; });
  CComPtr<IVorCvarEventSink> forwarder;
  ASSERT_EQ(m_notifier->CreateForwarder(listener, &forwarder), S_OK);
  EXPECT_EQ(m_notifier->Stop(), S_OK);
  EXPECT_EQ(m_notifier->Stop(), S_FALSE);
  EXPECT_EQ(forwarder->OnCvarNotify(cvar, NOTIFY_VALUE), E_UNEXPECTED);
  EXPECT_EQ(m_notifier->Post(cvar, NOTIFY_VALUE, listener), E_UNEXPECTED);
}

TEST_F(AsynchronousCvarNotifierTest, TheLastReferenceMayGoOnTheWorkerThread) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  Gate mayGo;
  Gate gone;
  {
    const CComPtr<FunctionListener> listener = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
      EXPECT_TRUE(mayGo.Wait());
      m_notifier.Release();
      gone.Open();
      return S_OK;
    });
    ASSERT_EQ(m_notifier->Post(cvar, NOTIFY_VALUE, listener), S_OK);
  }
  mayGo.Open();
  EXPECT_TRUE(gone.Wait());
  while (FunctionListener::Live() != 0 || cvar->References() != 1) std::this_thread::yield();
}

TEST_F(AsynchronousCvarNotifierTest, EachOneHasItsOwnThread) {
  const CComPtr<BareCvar> cvar = MakeCvar();
  CComPtr<IVorAsynchronousCvarNotifier> other;
  ASSERT_EQ(Create(other), S_OK);
  Gate entered;
  Gate go;
  const CComPtr<FunctionListener> blocked = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
    entered.Open();
    EXPECT_TRUE(go.Wait());
    return S_OK;
  });
  Gate told;
  const CComPtr<FunctionListener> listener = FunctionListener::Make([&](IVorCvar*, NOTIFYTYPE) {
    told.Open();
    return S_OK;
  });
  ASSERT_EQ(m_notifier->Post(cvar, NOTIFY_VALUE, blocked), S_OK);
  EXPECT_TRUE(entered.Wait());
  ASSERT_EQ(other->Post(cvar, NOTIFY_VALUE, listener), S_OK);
  EXPECT_TRUE(told.Wait());
  go.Open();
  EXPECT_EQ(m_notifier->Drain(kDeadlineMs), S_OK);
  EXPECT_EQ(other->Drain(kDeadlineMs), S_OK);
}

#if !defined(__SANITIZE_THREAD__) && !defined(__SANITIZE_ADDRESS__)
// The sanitizers make the stacks of threads themselves.
TEST_F(AsynchronousCvarNotifierTest, IsNotMadeWithoutAThread) {
  pthread_attr_t usual;
  ASSERT_EQ(pthread_getattr_default_np(&usual), 0);
  pthread_attr_t impossible;
  ASSERT_EQ(pthread_attr_init(&impossible), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&impossible, std::size_t{1} << 46), 0);
  ASSERT_EQ(pthread_setattr_default_np(&impossible), 0);
  CComPtr<IVorAsynchronousCvarNotifier> none;
  EXPECT_EQ(Create(none), E_FAIL);
  EXPECT_EQ(none, nullptr);
  ASSERT_EQ(pthread_setattr_default_np(&usual), 0);
}
#endif

// What runs in a child process: leaves the process while deliveries are queued and in progress.
[[noreturn]] void LeaveDuringDeliveries() {
  static CComPtr<IVorAsynchronousCvarNotifier> notifier;
  if (FAILED(Create(notifier))) _Exit(3);
  static std::atomic<bool> entered{false};
  static std::atomic<int> sum{0};
  const CComPtr<FunctionListener> listener = FunctionListener::Make([](IVorCvar*, NOTIFYTYPE) {
    entered = true;
    for (int i = 0; i < 100000; ++i) sum += i & 1;
    return S_OK;
  });
  std::vector<CComPtr<BareCvar>> sources(500);
  for (auto& source : sources) {
    source.Attach(new BareCvar);
    (void)notifier->Post(source, NOTIFY_VALUE, listener);
  }
  while (!entered) std::this_thread::yield();
  exit(0);
}

using AsynchronousCvarNotifierDeathTest = AsynchronousCvarNotifierTest;

TEST_F(AsynchronousCvarNotifierDeathTest, TheProcessEndsCleanlyDuringDeliveries) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(LeaveDuringDeliveries(), testing::ExitedWithCode(0), "");
}

// A listener that ends the process from the worker thread.
[[noreturn]] void LeaveFromAListener() {
  static CComPtr<IVorAsynchronousCvarNotifier> notifier;
  if (FAILED(Create(notifier))) _Exit(3);
  const CComPtr<BareCvar> cvar = MakeCvar();
  const CComPtr<FunctionListener> listener =
      FunctionListener::Make([](IVorCvar*, NOTIFYTYPE) -> HRESULT { exit(7); });
  (void)notifier->Post(cvar, NOTIFY_VALUE, listener);
  for (;;) std::this_thread::yield();
}

TEST_F(AsynchronousCvarNotifierDeathTest, AListenerMayEndTheProcess) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(LeaveFromAListener(), testing::ExitedWithCode(7), "");
}

}  // namespace
}  // namespace cvars
