// Who is told what, when and in which order.

#include <gtest/gtest.h>

#include <thread>

#include "CCvarBag.h"
#include "DeveloperEvents.h"
#include "LiveCvars.h"
#include "RecordingListener.h"
#include "SampleCvars.h"
#include "ScopedSuspension.h"

namespace {

using cvars::test::PlainCvar;
using cvars::test::PlainObject;
using cvars::test::RecordingListener;
using cvars::test::SampleCvar;

using Sample = CComPtr<CvarObject<SampleCvar>>;
using Listener = CComPtr<RecordingListener>;
using Masks = std::vector<NOTIFYTYPE>;

constexpr NOTIFYTYPE kValueAndRange = NOTIFY_VALUE | NOTIFY_RANGE;

class CvarNotification : public cvars::test::CvarTest {
 protected:
  CvarNotification() {
    for (const Listener& listener : {a, b, c}) {
      EXPECT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
    }
  }
  void TearDown() override {
    cvar = nullptr;
    for (const Listener* listener : {&a, &b, &c}) {
      (*listener)->onNotify = nullptr;
      EXPECT_EQ((*listener)->References(), 1u) << "a listener is still held";
    }
    CvarTest::TearDown();
  }

  long Count() {
    long count = -1;
    EXPECT_EQ(cvar->get_EventSinkCount(&count), S_OK);
    return count;
  }

  Sample cvar = CvarObject<SampleCvar>::Create();
  const Listener a = RecordingListener::Create();
  const Listener b = RecordingListener::Create();
  const Listener c = RecordingListener::Create();
};

// Attaching ---------------------------------------------------------------------------------------

TEST_F(CvarNotification, AttachingTwiceLeavesOneEntry) {
  EXPECT_EQ(cvar->AttachCvarEventSink(b), S_OK);
  EXPECT_EQ(Count(), 3);
  EXPECT_EQ(b->References(), 2u);
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_EQ(b->masks, Masks{NOTIFY_VALUE});
}

TEST_F(CvarNotification, DetachingSomebodyUnknownIsInvalid) {
  const Listener stranger = RecordingListener::Create();
  EXPECT_EQ(cvar->DetachCvarEventSink(stranger), E_INVALIDARG);
  EXPECT_EQ(cvar->DetachCvarEventSink(b), S_OK);
  EXPECT_EQ(cvar->DetachCvarEventSink(b), E_INVALIDARG);
  EXPECT_EQ(b->References(), 1u);
  EXPECT_EQ(Count(), 2);
}

TEST_F(CvarNotification, DetachingFromACvarWithoutListenersIsInvalid) {
  const Sample other = CvarObject<SampleCvar>::Create();
  EXPECT_EQ(other->DetachCvarEventSink(a), E_INVALIDARG);
}

TEST_F(CvarNotification, AnObjectThatIsNoListenerCannotBeAttached) {
  const auto object = PlainObject::Create();
  EXPECT_EQ(cvar->AttachCvarEventSink(object), E_INVALIDARG);
  EXPECT_EQ(Count(), 3);
  EXPECT_EQ(object->AddRef(), 2u);
  EXPECT_EQ(object->Release(), 1u);
}

TEST_F(CvarNotification, AListenerIsKnownByItsIdentity) {
  const Sample other = CvarObject<SampleCvar>::Create();
  CComPtr<IVorCvarEventSink> sink;
  ASSERT_EQ(other->QueryInterface(IID_IVorCvarEventSink, reinterpret_cast<void**>(&sink)), S_OK);
  EXPECT_EQ(cvar->AttachCvarEventSink(other->GetIVorCvar()), S_OK);
  EXPECT_EQ(cvar->AttachCvarEventSink(sink), S_OK);
  EXPECT_EQ(Count(), 4);
  CComPtr<IUnknown> last;
  EXPECT_EQ(cvar->get_EventSink(3, &last), S_OK);
  EXPECT_EQ(last.p, static_cast<IUnknown*>(other->GetIVorCvar()));
  EXPECT_EQ(cvar->DetachCvarEventSink(sink), S_OK);
  EXPECT_EQ(Count(), 3);
}

TEST_F(CvarNotification, ListenersAreListedInTheOrderOfAttachment) {
  ASSERT_EQ(cvar->DetachCvarEventSink(a), S_OK);
  ASSERT_EQ(cvar->AttachCvarEventSink(a), S_OK);
  const RecordingListener* const expected[] = {b, c, a};
  for (long i = 0; i < 3; ++i) {
    CComPtr<IUnknown> sink;
    EXPECT_EQ(cvar->get_EventSink(i, &sink), S_OK);
    EXPECT_EQ(sink.p, expected[i]);
  }
}

TEST_F(CvarNotification, AListenerBeyondTheListIsInvalidAndLeavesTheOutput) {
  for (const long index : {-1L, 3L, 0x7fffffffL, -0x7fffffffL - 1}) {
    IUnknown* sink = a;
    EXPECT_EQ(cvar->get_EventSink(index, &sink), E_INVALIDARG) << index;
    EXPECT_EQ(sink, a.p);
  }
}

TEST_F(CvarNotification, TenListenersGrowAndShrinkInAnyOrder) {
  std::vector<Listener> more(10);
  for (Listener& listener : more) {
    listener = RecordingListener::Create();
    ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  }
  for (const std::size_t i : {0u, 9u, 5u, 4u, 8u}) {
    ASSERT_EQ(cvar->DetachCvarEventSink(more[i]), S_OK);
    EXPECT_EQ(more[i]->References(), 1u);
  }
  EXPECT_EQ(Count(), 8);
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_UNIT), S_OK);
  for (std::size_t i = 0; i < more.size(); ++i) {
    const bool attached = more[i]->References() == 2;
    EXPECT_EQ(more[i]->masks, attached ? Masks{NOTIFY_UNIT} : Masks{}) << i;
  }
}

// Sending -----------------------------------------------------------------------------------------

TEST_F(CvarNotification, AnEmptyMaskCallsNobodyEvenWhenForced) {
  EXPECT_EQ(cvar->NotifyClients(NOTIFY_ALL_CLIENTS, false), S_OK);
  EXPECT_EQ(cvar->NotifyClients(NOTIFY_ALL_CLIENTS, true), S_OK);
  EXPECT_EQ(cvar->ForceNotification(NOTIFYTYPE(0)), S_OK);
  EXPECT_TRUE(a->masks.empty());
}

TEST_F(CvarNotification, AnyMaskIsSentWhole) {
  EXPECT_EQ(cvar->ForceNotification(NOTIFYTYPE(0xFFFFFFFF)), S_OK);
  EXPECT_EQ(a->masks, Masks{NOTIFYTYPE(0xFFFFFFFF)});
}

TEST_F(CvarNotification, ListenersAreCalledInTheOrderOfAttachmentWithTheCvar) {
  std::vector<std::pair<int, IVorCvar*>> calls;
  int number = 0;
  for (const Listener& listener : {a, b, c}) {
    listener->onNotify = [&calls, i = number++](IVorCvar* source, NOTIFYTYPE) {
      calls.emplace_back(i, source);
    };
  }
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
  IVorCvar* const source = cvar->GetIVorCvar();
  EXPECT_EQ(calls, (std::vector<std::pair<int, IVorCvar*>>{{0, source}, {1, source}, {2, source}}));
}

TEST_F(CvarNotification, OnlyTheValueTwoStopsAfterTheFirstListener) {
  struct {
    NOTIFYCLIENTS which;
    std::size_t reached;
  } constexpr kRows[] = {{NOTIFYCLIENTS(0), 3},
                         {NOTIFY_ALL_CLIENTS, 3},
                         {NOTIFY_FIRST_CLIENT_ONLY, 1},
                         {NOTIFYCLIENTS(3), 3},
                         {NOTIFYCLIENTS(0xFFFFFFFF), 3}};
  for (const auto& row : kRows) {
    cvar->SuspendNotifications(1);
    EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
    EXPECT_EQ(cvar->NotifyClients(row.which, true), S_OK);
    cvar->SuspendNotifications(0);
    EXPECT_EQ(a->TakeMasks().size() + b->TakeMasks().size() + c->TakeMasks().size(), row.reached)
        << row.which;
  }
}

TEST_F(CvarNotification, TheLastFailureWinsElseTheLastOtherSuccessCode) {
  struct {
    const char* name;
    HRESULT first, second, third, result;
  } constexpr kRows[] = {{"AllGood", S_OK, S_OK, S_OK, S_OK},
                         {"FailureBeatsSuccess", S_FALSE, E_FAIL, S_OK, E_FAIL},
                         {"FailureIsNotUndone", E_FAIL, S_OK, S_FALSE, E_FAIL},
                         {"LastFailure", E_FAIL, E_ABORT, S_OK, E_ABORT},
                         {"SuccessCodeStays", S_FALSE, S_OK, S_OK, S_FALSE},
                         {"LastSuccessCode", S_FALSE, 5, S_OK, 5}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    a->answer = row.first;
    b->answer = row.second;
    c->answer = row.third;
    EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), row.result);
    EXPECT_EQ(a->TakeMasks().size() + b->TakeMasks().size() + c->TakeMasks().size(), 3u);
  }
}

TEST_F(CvarNotification, WithoutListenersPendingKindsAreForgotten) {
  const Sample lonely = CvarObject<SampleCvar>::Create();
  EXPECT_EQ(lonely->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_EQ(lonely->AttachCvarEventSink(a), S_OK);
  EXPECT_EQ(lonely->ForceNotification(NOTIFY_RANGE), S_OK);
  EXPECT_EQ(a->masks, Masks{NOTIFY_RANGE});
}

TEST_F(CvarNotification, TheCvarAndItsParentOutliveTheNotification) {
  CComPtr<CCvarBag> bag = CCvarBag::Create(L"Bag", nullptr);
  ASSERT_EQ(bag->Add(cvar), S_OK);
  CvarObject<SampleCvar>* const raw = cvar.p;
  a->onNotify = [&](IVorCvar* source, NOTIFYTYPE) {
    bag = nullptr;
    cvar = nullptr;
    EXPECT_EQ(raw->GetIVorCvar(), source);
    EXPECT_EQ(cvars::BagName(raw->GetParent()), L"Bag");
    a->onNotify = nullptr;
  };
  EXPECT_EQ(raw->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_EQ(c->masks, Masks{NOTIFY_VALUE});
}

// Changing the list meanwhile ---------------------------------------------------------------------

TEST_F(CvarNotification, AListenerMayDetachItself) {
  b->onNotify = [&](IVorCvar*, NOTIFYTYPE) { EXPECT_EQ(cvar->DetachCvarEventSink(b), S_OK); };
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_EQ(c->TakeMasks(), Masks{NOTIFY_VALUE});
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_RANGE), S_OK);
  EXPECT_EQ(b->masks, Masks{NOTIFY_VALUE});
  EXPECT_EQ(c->masks, Masks{NOTIFY_RANGE});
}

TEST_F(CvarNotification, TheLastListenerMayDetachItself) {
  c->onNotify = [&](IVorCvar*, NOTIFYTYPE) { EXPECT_EQ(cvar->DetachCvarEventSink(c), S_OK); };
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_RANGE), S_OK);
  EXPECT_EQ(c->masks, Masks{NOTIFY_VALUE});
  EXPECT_EQ(c->References(), 1u);
}

TEST_F(CvarNotification, AListenerThatIsDetachedMeanwhileIsStillCalled) {
  a->onNotify = [&](IVorCvar*, NOTIFYTYPE) { (void)cvar->DetachCvarEventSink(c); };
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_EQ(c->masks, Masks{NOTIFY_VALUE});
  EXPECT_EQ(c->References(), 1u);
}

TEST_F(CvarNotification, AListenerThatIsAttachedMeanwhileIsCalledTheNextTime) {
  const Listener late = RecordingListener::Create();
  a->onNotify = [&](IVorCvar*, NOTIFYTYPE) {
    EXPECT_EQ(cvar->AttachCvarEventSink(late), S_OK);
    EXPECT_EQ(Count(), 4);
  };
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_TRUE(late->masks.empty());
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_RANGE), S_OK);
  EXPECT_EQ(late->masks, Masks{NOTIFY_RANGE});
}

TEST_F(CvarNotification, KindsThatAListenerAddsStartANewMask) {
  a->onNotify = [&](IVorCvar*, NOTIFYTYPE what) {
    if (what == NOTIFY_VALUE) {
      EXPECT_EQ(cvar->ForceNotification(NOTIFY_RANGE), S_OK);
    }
  };
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_EQ(a->masks, (Masks{NOTIFY_VALUE, NOTIFY_RANGE}));
  EXPECT_EQ(b->masks, (Masks{NOTIFY_RANGE, NOTIFY_VALUE}));  // the inner one comes first here
}

TEST_F(CvarNotification, AnotherThreadUsesTheCvarWhileAListenerRuns) {
  const Listener late = RecordingListener::Create();
  a->onNotify = [&](IVorCvar* source, NOTIFYTYPE) {
    std::thread other([&] {
      EXPECT_EQ(source->AttachCvarEventSink(late), S_OK);
      EXPECT_EQ(source->DetachCvarEventSink(b), S_OK);
      EXPECT_EQ(Count(), 3);
      CComVariant properties;
      EXPECT_EQ(source->GetSignature(&properties), S_OK);
    });
    other.join();
  };
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_EQ(b->masks, Masks{NOTIFY_VALUE});
  EXPECT_TRUE(late->masks.empty());
  a->onNotify = nullptr;
  EXPECT_EQ(cvar->DetachCvarEventSink(late), S_OK);
}

// Suspending --------------------------------------------------------------------------------------

TEST_F(CvarNotification, TwoSuspensionsEndWithOneNotificationOfAllKinds) {
  EXPECT_EQ(cvar->SuspendNotifications(1), 0);
  EXPECT_EQ(cvar->SuspendNotifications(-7), 0);
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_RANGE), S_OK);
  EXPECT_EQ(cvar->SuspendNotifications(0), 0);
  EXPECT_TRUE(a->masks.empty());
  a->answer = E_FAIL;
  EXPECT_EQ(cvar->SuspendNotifications(0), 0);
  EXPECT_EQ(a->TakeMasks(), Masks{kValueAndRange});
  EXPECT_EQ(c->TakeMasks(), Masks{kValueAndRange});
  EXPECT_EQ(cvar->SuspendNotifications(0), 0);  // one too many does nothing
  EXPECT_TRUE(a->masks.empty());
  cvar->SuspendNotifications(1);
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_UNIT), S_OK);
  EXPECT_TRUE(a->masks.empty());  // and leaves the count at none
  cvar->SuspendNotifications(0);
  EXPECT_EQ(a->TakeMasks(), Masks{NOTIFY_UNIT});
}

TEST_F(CvarNotification, OneResumeTooManySendsNothing) {
  EXPECT_EQ(cvar->SuspendNotifications(0), 0);
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_EQ(a->masks, Masks{NOTIFY_VALUE});
}

TEST_F(CvarNotification, ASuspensionWithoutChangesSendsNothing) {
  { const cvars::ScopedSuspension suspension(*cvar); }
  EXPECT_TRUE(a->masks.empty());
}

TEST_F(CvarNotification, ASilentScopeForgetsWhatGathered) {
  {
    const cvars::SilentScope silence(*cvar);
    EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
  }
  EXPECT_TRUE(a->masks.empty());
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_RANGE), S_OK);
  EXPECT_EQ(a->masks, Masks{NOTIFY_RANGE});
}

TEST_F(CvarNotification, AListenerMaySuspendForTheOnesAfterIt) {
  a->onNotify = [&](IVorCvar*, NOTIFYTYPE) { cvar->SuspendNotifications(1); };
  b->onNotify = [&](IVorCvar*, NOTIFYTYPE) {
    EXPECT_EQ(cvar->ForceNotification(NOTIFY_RANGE), S_OK);
  };
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), S_OK);
  EXPECT_EQ(c->masks, Masks{NOTIFY_VALUE});
  a->onNotify = nullptr;
  b->onNotify = nullptr;
  cvar->SuspendNotifications(0);
  EXPECT_EQ(c->masks, (Masks{NOTIFY_VALUE, NOTIFY_RANGE}));
}

// Late updates ------------------------------------------------------------------------------------

TEST_F(CvarNotification, ALateUpdateNeedsItsFlag) {
  cvar->PerformLateUpdate();
  EXPECT_TRUE(a->masks.empty());
}

TEST_F(CvarNotification, ALateUpdateReachesTheFirstListenerOnly) {
  (void)cvar->SetFlags(CVARFLAG_LATEUPDATE, true);
  for (const Listener& listener : {a, b, c}) (void)listener->TakeMasks();
  cvar->PerformLateUpdate();
  EXPECT_EQ(a->TakeMasks(), Masks{NOTIFY_LATEUPDATE});
  EXPECT_TRUE(b->masks.empty());
  EXPECT_TRUE(c->masks.empty());
}

TEST_F(CvarNotification, ASuspendedLateUpdateReachesAllAtTheEnd) {
  (void)cvar->SetFlags(CVARFLAG_LATEUPDATE, true);
  for (const Listener& listener : {a, b, c}) (void)listener->TakeMasks();
  cvar->SuspendNotifications(1);
  cvar->PerformLateUpdate();
  EXPECT_TRUE(a->masks.empty());
  cvar->SuspendNotifications(0);
  EXPECT_EQ(a->TakeMasks(), Masks{NOTIFY_LATEUPDATE});
  EXPECT_EQ(c->TakeMasks(), Masks{NOTIFY_LATEUPDATE});
}

}  // namespace
