// A listener that fails badly, and cvars that change each other without end.

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "CCvarBag.h"
#include "DeveloperEvents.h"
#include "LiveCvars.h"
#include "RecordingListener.h"
#include "SampleCvars.h"
#include "platform/FaultGuard.h"

namespace {

using cvars::test::RecordingListener;
using cvars::test::SampleCvar;

using Sample = CComPtr<CvarObject<SampleCvar>>;
using Listener = CComPtr<RecordingListener>;
using Masks = std::vector<NOTIFYTYPE>;

LONG ContainFault(EXCEPTION_POINTERS*) { return EXCEPTION_EXECUTE_HANDLER; }
LONG PassFaultOn(EXCEPTION_POINTERS*) { return EXCEPTION_CONTINUE_SEARCH; }
LONG ContinueAtFault(EXCEPTION_POINTERS*) { return EXCEPTION_CONTINUE_EXECUTION; }

// Writes through a null pointer; the sanitizer's own check of it is off, so that the fault happens.
[[gnu::noinline]] __attribute__((no_sanitize("undefined"))) void WriteThroughNull() {
  int* volatile nowhere = nullptr;
  *static_cast<volatile int*>(nowhere) = 1;
}

// A fault ends a process by its signal, or by the report of the sanitizer that handles the signal.
bool EndedByFault(int status) {
  return WIFSIGNALED(status) || (WIFEXITED(status) && WEXITSTATUS(status) != 0);
}

class CvarNotificationGuard : public cvars::test::CvarTest {
 protected:
  CvarNotificationGuard() {
    EXPECT_EQ(cvar->AttachCvarEventSink(bad), S_OK);
    EXPECT_EQ(cvar->AttachCvarEventSink(good), S_OK);
  }
  void TearDown() override {
    SetUnhandledExceptionFilter(nullptr);
    cvar = nullptr;
    EXPECT_EQ(bad->References(), 1u);
    EXPECT_EQ(good->References(), 1u);
    CvarTest::TearDown();
  }

  Sample cvar = CvarObject<SampleCvar>::Create();
  const Listener bad = RecordingListener::Create();
  const Listener good = RecordingListener::Create();
};
using CvarNotificationGuardDeathTest = CvarNotificationGuard;

TEST_F(CvarNotificationGuard, AListenerThatThrowsCountsAsAFailureAndTheNextIsCalled) {
  for (const auto filter : {LPTOP_LEVEL_EXCEPTION_FILTER{nullptr}, &ContainFault}) {
    SetUnhandledExceptionFilter(filter);
    bad->onNotify = [](IVorCvar*, NOTIFYTYPE) { throw std::runtime_error("broken"); };
    EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), E_FAIL);
    bad->onNotify = [](IVorCvar*, NOTIFYTYPE) { throw 7; };
    EXPECT_EQ(cvar->ForceNotification(NOTIFY_RANGE), E_FAIL);
    EXPECT_EQ(good->TakeMasks(), (Masks{NOTIFY_VALUE, NOTIFY_RANGE}));
  }
}

TEST_F(CvarNotificationGuard, ALaterFailureWinsOverAnException) {
  bad->onNotify = [](IVorCvar*, NOTIFYTYPE) { throw 7; };
  good->answer = E_ABORT;
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), E_ABORT);
}

TEST_F(CvarNotificationGuard, ExceptionsDoNotCountAsNesting) {
  bad->onNotify = [](IVorCvar*, NOTIFYTYPE) { throw 7; };
  for (int i = 0; i < 50; ++i) EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), E_FAIL);
  EXPECT_EQ(good->masks.size(), 50u);
}

TEST_F(CvarNotificationGuard, AnExceptionAtTheEndOfASuspensionIsContained) {
  bad->onNotify = [](IVorCvar*, NOTIFYTYPE) { throw 7; };
  cvar->SuspendNotifications(1);
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_EQ(cvar->SuspendNotifications(0), 0);
  EXPECT_EQ(good->masks, Masks{NOTIFY_VALUE});
}

TEST_F(CvarNotificationGuard, AFaultIsAFailureWhenTheHostsFilterContainsIt) {
  bad->onNotify = [](IVorCvar*, NOTIFYTYPE) { WriteThroughNull(); };
  for (const auto filter : {&ContainFault, &ContinueAtFault}) {
    SetUnhandledExceptionFilter(filter);
    EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), E_FAIL);
    EXPECT_EQ(good->TakeMasks(), Masks{NOTIFY_VALUE});
  }
}

TEST_F(CvarNotificationGuardDeathTest, AFaultEndsTheProcessWithoutAFilter) {
  bad->onNotify = [](IVorCvar*, NOTIFYTYPE) { WriteThroughNull(); };
  EXPECT_EXIT((void)cvar->ForceNotification(NOTIFY_VALUE), EndedByFault, "");
}

TEST_F(CvarNotificationGuardDeathTest, AFaultEndsTheProcessWhenTheFilterPassesItOn) {
  bad->onNotify = [](IVorCvar*, NOTIFYTYPE) { WriteThroughNull(); };
  EXPECT_EXIT(
      {
        SetUnhandledExceptionFilter(&PassFaultOn);
        (void)cvar->ForceNotification(NOTIFY_VALUE);
      },
      EndedByFault, "");
}

// Recursion ---------------------------------------------------------------------------------------

// Keeps the developer events of a scope.
class EventRecorder {
 public:
  EventRecorder() { cvars::SetDeveloperEventObserver(&Record, this); }
  ~EventRecorder() { cvars::SetDeveloperEventObserver(nullptr, nullptr); }

  std::vector<cvars::DeveloperEvent> events;

 private:
  static void Record(const cvars::DeveloperEvent& event, void* self) {
    static_cast<EventRecorder*>(self)->events.push_back(event);
  }
};

class CvarRecursion : public cvars::test::CvarTest {
 protected:
  CvarRecursion() {
    first->SetName(L"First");
    second->SetName(L"Second");
    EXPECT_EQ(bag->Add(first), S_OK);
    EXPECT_EQ(first->AttachCvarEventSink(changesSecond), S_OK);
    EXPECT_EQ(first->AttachCvarEventSink(watchesFirst), S_OK);
    EXPECT_EQ(second->AttachCvarEventSink(changesFirst), S_OK);
    EXPECT_EQ(second->AttachCvarEventSink(watchesSecond), S_OK);
    changesSecond->onNotify = [this](IVorCvar*, NOTIFYTYPE what) {
      (void)second->ForceNotification(what);
    };
    changesFirst->onNotify = [this](IVorCvar*, NOTIFYTYPE what) {
      (void)first->ForceNotification(what);
    };
  }
  void TearDown() override {
    bag = nullptr;
    first = nullptr;
    second = nullptr;
    CvarTest::TearDown();
  }

  EventRecorder recorder;
  CComPtr<CCvarBag> bag = CCvarBag::Create(L"Bag", nullptr);
  Sample first = CvarObject<SampleCvar>::Create();
  Sample second = CvarObject<SampleCvar>::Create();
  const Listener changesFirst = RecordingListener::Create();
  const Listener changesSecond = RecordingListener::Create();
  const Listener watchesFirst = RecordingListener::Create();
  const Listener watchesSecond = RecordingListener::Create();
};

TEST_F(CvarRecursion, StopsAtDepthTwentyWithOneReport) {
  EXPECT_EQ(first->ForceNotification(NOTIFY_VALUE), E_FAIL);
  EXPECT_EQ(changesSecond->masks.size(), 19u);
  EXPECT_EQ(changesFirst->masks.size(), 19u);
  EXPECT_EQ(watchesSecond->masks.size(), 19u);
  EXPECT_EQ(watchesFirst->masks.size(), 0u);  // its turn would have come after the report

  ASSERT_EQ(recorder.events.size(), 1u);
  const cvars::DeveloperEvent& event = recorder.events.front();
  EXPECT_EQ(event.source, L"(CvarBag.Cvar) Bag.First");
  EXPECT_EQ(event.message, L"Recursive Notification");
  EXPECT_EQ(event.severity, 4);
  EXPECT_EQ(event.category, L"system");
  EXPECT_EQ(event.detail, L"");
  EXPECT_EQ(event.cvar, first->GetIVorCvar());
}

TEST_F(CvarRecursion, TheReportedCvarIsMutedForGood) {
  (void)first->ForceNotification(NOTIFY_VALUE);
  for (const Listener& listener : {changesFirst, changesSecond, watchesFirst, watchesSecond}) {
    listener->onNotify = nullptr;
    (void)listener->TakeMasks();
  }
  EXPECT_EQ(first->ForceNotification(NOTIFY_VALUE), E_FAIL);
  EXPECT_TRUE(first->SetHidden(1));  // the change itself is stored
  EXPECT_EQ(first->Flags(), CVARFLAG_HIDDEN);
  EXPECT_TRUE(changesSecond->masks.empty());
  EXPECT_TRUE(watchesFirst->masks.empty());
  EXPECT_EQ(first->NotifyClients(NOTIFY_ALL_CLIENTS, false), S_OK);  // nothing waits
  EXPECT_EQ(second->ForceNotification(NOTIFY_VALUE), S_OK);  // the other one is not concerned
  EXPECT_EQ(watchesSecond->masks, Masks{NOTIFY_VALUE});
  EXPECT_EQ(recorder.events.size(), 1u);
}

TEST_F(CvarRecursion, NineteenLevelsAreNoRecursion) {
  int nested = 0;
  changesSecond->onNotify = [&](IVorCvar* source, NOTIFYTYPE what) {
    if (++nested < 19) {
      EXPECT_EQ(source->ForceNotification(what), S_OK);
    }
  };
  EXPECT_EQ(first->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_EQ(changesSecond->masks.size(), 19u);
  EXPECT_EQ(watchesFirst->masks.size(), 19u);
  EXPECT_TRUE(recorder.events.empty());
  nested = 0;  // and the depth is back at none
  EXPECT_EQ(first->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_TRUE(recorder.events.empty());
}

TEST_F(CvarRecursion, ACvarWithoutParentIsReportedWithoutBag) {
  ASSERT_EQ(bag->Remove(first), S_OK);
  (void)first->ForceNotification(NOTIFY_VALUE);
  ASSERT_EQ(recorder.events.size(), 1u);
  EXPECT_EQ(recorder.events.front().source, L"(CvarBag.Cvar) .First");
}

// Texts of events ---------------------------------------------------------------------------------

TEST_F(CvarRecursion, AMessageNamesItsTarget) {
  const auto object = cvars::test::PlainObject::Create();
  EXPECT_EQ(cvars::DeveloperEventMessage(L"text", nullptr), L"text");
  EXPECT_EQ(cvars::DeveloperEventMessage(L"text", bag), L"text (target CvarBag: Bag)");
  EXPECT_EQ(cvars::DeveloperEventMessage(L"text", first->GetIVorCvar()),
            L"text (target Cvar: First)");
  EXPECT_EQ(cvars::DeveloperEventMessage(L"text", object),
            L"text (target client unknown, possibly a widget)");
}

TEST_F(CvarRecursion, ADetailJoinsLineAndText) {
  EXPECT_EQ(cvars::DeveloperEventDetail(12, L"shared/includes/CvarImpl"),
            L"12\nshared/includes/CvarImpl");
}

}  // namespace
