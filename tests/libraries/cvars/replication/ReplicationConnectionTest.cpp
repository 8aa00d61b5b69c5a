#include <gtest/gtest.h>

#include <vector>

#include "BareCvar.h"
#include "CComVariant.h"
#include "CCvarInt.h"
#include "CCvarLongInt.h"
#include "KnownNotifier.h"
#include "RecordingListener.h"
#include "ReplicationFixture.h"

namespace cvars {
namespace {

using test::Adapted;
using test::BareCvar;
using test::Double;
using test::Flags;
using test::kEverything;
using test::KnownNotifier;
using test::Listeners;
using test::MakeDouble;
using test::NameOf;
using test::RecordingListener;
using test::Requested;

constexpr auto kNone = REPLICATIONCONNECTION_NONE;
constexpr auto kSync = REPLICATIONCONNECTION_SYNCHRONOUS;
constexpr auto kAsync = REPLICATIONCONNECTION_ASYNCHRONOUS;
constexpr auto kSame = REPLICATIONCONNECTION_UNCHANGED;
constexpr auto kFromOther = REPLICATIONCOPY_FROM_OTHER;
constexpr auto kToOther = REPLICATIONCOPY_TO_OTHER;

using ReplicationConnectionTest = test::ReplicationFixture;

TEST_F(ReplicationConnectionTest, AReplicaCopiesAtOnceAndFollows) {
  const Double source = MakeDouble(L"Source", 5);
  const Double replica = MakeDouble(L"Replica");
  EXPECT_EQ(replica->StartCvarReplication(source, kSync, kNone, kFromOther, kEverything), S_OK);
  EXPECT_EQ(Requested(replica), 5);
  EXPECT_EQ(source->SetRequestedValue(7), S_OK);
  EXPECT_EQ(Requested(replica), 7);
  EXPECT_EQ(replica->SetRequestedValue(9), S_OK);
  EXPECT_EQ(Requested(source), 7);
}

TEST_F(ReplicationConnectionTest, TheOtherCvarMayBeTheReplica) {
  const Double source = MakeDouble(L"Source", 5);
  const Double replica = MakeDouble(L"Replica");
  EXPECT_EQ(source->StartCvarReplication(replica, kNone, kSync, kToOther, kEverything), S_OK);
  EXPECT_EQ(Requested(replica), 5);
  EXPECT_EQ(source->SetRequestedValue(7), S_OK);
  EXPECT_EQ(Requested(replica), 7);
  EXPECT_EQ(Listeners(replica), 0);
}

TEST_F(ReplicationConnectionTest, OnlyTheGivenKindsAreCopiedAtOnce) {
  const Double source = MakeDouble(L"Source", 5);
  const Double replica = MakeDouble(L"Replica");
  EXPECT_EQ(replica->StartCvarReplication(source, kSync, kNone, kFromOther, NOTIFY_FLAGS), S_OK);
  EXPECT_EQ(Requested(replica), 0);
  EXPECT_EQ(source->SetRequestedValue(7), S_OK);
  EXPECT_EQ(Requested(replica), 7);
}

TEST_F(ReplicationConnectionTest, ANullCvarIsRefused) {
  const Double cvar = MakeDouble(L"Cvar");
  IVorCvar* const none = nullptr;
  IVorCvarImpl<CCvarDouble, IVorCvarDouble, double>* const noDouble = nullptr;
  EXPECT_EQ(cvar->StartCvarReplication(none, kSync, kSync, kFromOther, kEverything), E_INVALIDARG);
  EXPECT_EQ(cvar->StartCvarReplication(noDouble, kSync, kSync, kToOther, kEverything),
            E_INVALIDARG);
  EXPECT_EQ(cvar->StartCvarReplication(none, true, 0x11, kEverything), E_INVALIDARG);
  EXPECT_EQ(cvar->StartCvarReplication(noDouble, false, 0x11, kEverything), E_INVALIDARG);
  EXPECT_EQ(cvar->StopCvarReplication(none), E_INVALIDARG);
  EXPECT_EQ(cvar->StopCvarReplication(noDouble), E_INVALIDARG);
  // Nothing was started by all this.
  EXPECT_EQ(cvar->StopAllCvarReplication(), S_FALSE);
}

struct ShortFormCase {
  const char* name;
  bool copyFromOther;
  int directions;
  double own;  // after own 1 and other 2 were tied
  double other;
  long ownListeners;
  long otherListeners;
};

constexpr ShortFormCase kShortForms[] = {
    {"FromOtherBothWays", true, 0x11, 2, 2, 1, 1},
    {"ToOtherBothWays", false, 0x11, 1, 1, 1, 1},
    {"FromOtherOwnListens", true, 0x1, 2, 2, 0, 1},
    {"ToOtherOtherListens", false, 0x10, 1, 1, 1, 0},
    {"NobodyListens", true, 0, 2, 2, 0, 0},
    {"OtherBitsMeanNothing", false, 0xEE, 1, 1, 0, 0},
};

TEST_F(ReplicationConnectionTest, TheShortFormNamesCopyAndDirections) {
  for (const ShortFormCase& row : kShortForms) {
    SCOPED_TRACE(row.name);
    for (const bool sameClass : {false, true}) {
      const Double own = MakeDouble(L"Own", 1);
      const Double other = MakeDouble(L"Other", 2);
      if (sameClass) {
        EXPECT_EQ(own->StartCvarReplication(other, row.copyFromOther, row.directions, kEverything),
                  S_OK);
      } else {
        EXPECT_EQ(own->StartCvarReplication(other->GetIVorCvar(), row.copyFromOther, row.directions,
                                            kEverything),
                  S_OK);
      }
      EXPECT_EQ(Requested(own), row.own);
      EXPECT_EQ(Requested(other), row.other);
      EXPECT_EQ(Listeners(own), row.ownListeners);
      EXPECT_EQ(Listeners(other), row.otherListeners);
    }
  }
}

// Attributes

// Waits for what is queued, and for what its delivery queues.
void Settle() {
  for (int i = 0; i < 2; ++i) EXPECT_EQ(KnownNotifier()->Drain(20000), S_OK);
}

// Sets the source and says how the replica learned of it.
CVARREPLICATIONCONNECTIONATTRIBUTES HowItFollows(const Double& source, const Double& replica) {
  IVorAsynchronousCvarNotifier* const notifier = KnownNotifier();
  Settle();

  // The worker is kept busy meanwhile, so that nothing asynchronous can arrive early.
  struct Held final {
    std::atomic<bool> entered{false};
    std::atomic<bool> go{false};
  } held;
  const CComPtr<BareCvar> marker = [] {
    CComPtr<BareCvar> made;
    made.Attach(new BareCvar);
    return made;
  }();
  const CComPtr<RecordingListener> blocker = RecordingListener::Create();
  blocker->onNotify = [&held](IVorCvar*, NOTIFYTYPE) {
    held.entered = true;
    held.entered.notify_all();
    held.go.wait(false);
  };
  EXPECT_EQ(notifier->Post(marker, NOTIFY_VALUE, blocker), S_OK);
  held.entered.wait(false);

  const double before = Requested(replica);
  EXPECT_EQ(source->SetRequestedValue(Requested(source) + before + 10), S_OK);
  const bool atOnce = Requested(replica) == Requested(source);
  held.go = true;
  held.go.notify_all();
  Settle();
  if (atOnce) return kSync;
  return Requested(replica) == Requested(source) ? kAsync : kNone;
}

constexpr CVARREPLICATIONCONNECTIONATTRIBUTES kAttributes[] = {kNone, kSync, kAsync, kSame};

CVARREPLICATIONCONNECTIONATTRIBUTES Result(CVARREPLICATIONCONNECTIONATTRIBUTES wanted,
                                           CVARREPLICATIONCONNECTIONATTRIBUTES before) {
  return wanted == kSame ? before : wanted;
}

void ExpectWays(const Double& own, const Double& other,
                CVARREPLICATIONCONNECTIONATTRIBUTES ownListens,
                CVARREPLICATIONCONNECTIONATTRIBUTES otherListens) {
  EXPECT_EQ(Listeners(other), ownListens == kNone ? 0 : 1);
  EXPECT_EQ(Listeners(own), otherListens == kNone ? 0 : 1);
  EXPECT_EQ(HowItFollows(other, own), ownListens);
  EXPECT_EQ(HowItFollows(own, other), otherListens);
}

TEST_F(ReplicationConnectionTest, EveryPairOfAttributesMakesANewConnection) {
  ASSERT_NE(KnownNotifier(), nullptr);
  for (const auto ownListens : kAttributes) {
    for (const auto otherListens : kAttributes) {
      SCOPED_TRACE(testing::Message() << ownListens << " " << otherListens);
      const Double own = MakeDouble(L"Own", 1);
      const Double other = MakeDouble(L"Other", 2);
      EXPECT_EQ(own->StartCvarReplication(other, ownListens, otherListens, kFromOther, kEverything),
                S_OK);
      ExpectWays(own, other, Result(ownListens, kNone), Result(otherListens, kNone));
      EXPECT_EQ(own->StopCvarReplication(other), S_OK);
      ExpectWays(own, other, kNone, kNone);
    }
  }
}

TEST_F(ReplicationConnectionTest, EveryPairOfAttributesChangesAnExistingConnection) {
  ASSERT_NE(KnownNotifier(), nullptr);
  constexpr CVARREPLICATIONCONNECTIONATTRIBUTES kBefore[] = {kNone, kSync, kAsync};
  for (const auto ownBefore : kBefore) {
    for (const auto otherBefore : kBefore) {
      for (const auto ownListens : kAttributes) {
        for (const auto otherListens : kAttributes) {
          SCOPED_TRACE(testing::Message() << ownBefore << " " << otherBefore << " to " << ownListens
                                          << " " << otherListens);
          const Double own = MakeDouble(L"Own", 1);
          const Double other = MakeDouble(L"Other", 2);
          EXPECT_EQ(
              own->StartCvarReplication(other, ownBefore, otherBefore, kFromOther, kEverything),
              S_OK);
          EXPECT_EQ(
              own->StartCvarReplication(other, ownListens, otherListens, kToOther, kEverything),
              S_OK);
          ExpectWays(own, other, Result(ownListens, ownBefore), Result(otherListens, otherBefore));
          EXPECT_EQ(own->StopCvarReplication(other), S_OK);
          EXPECT_EQ(own->StopCvarReplication(other), S_FALSE);
        }
      }
    }
  }
}

TEST_F(ReplicationConnectionTest, ARestartAttachesAgainWhatSomebodyDetached) {
  const Double source = MakeDouble(L"Source", 5);
  const Double replica = MakeDouble(L"Replica");
  EXPECT_EQ(replica->StartCvarReplication(source, kSync, kNone, kFromOther, kEverything), S_OK);
  CComPtr<IUnknown> attached;
  ASSERT_EQ(source->get_EventSink(0, &attached), S_OK);
  ASSERT_EQ(source->DetachCvarEventSink(attached), S_OK);
  EXPECT_EQ(replica->StartCvarReplication(source, kSync, kSame, kFromOther, kEverything), S_OK);
  EXPECT_EQ(Listeners(source), 1);
  EXPECT_EQ(source->SetRequestedValue(8), S_OK);
  EXPECT_EQ(Requested(replica), 8);
}

// Two cvars that start the same connection each attach the same stand-in, which counts once.
TEST_F(ReplicationConnectionTest, BothMayStartTheSameConnection) {
  const Double first = MakeDouble(L"First", 1);
  const Double second = MakeDouble(L"Second", 2);
  EXPECT_EQ(first->StartCvarReplication(second, kSync, kSync, kFromOther, kEverything), S_OK);
  EXPECT_EQ(second->StartCvarReplication(first, kSync, kSync, kFromOther, kEverything), S_OK);
  EXPECT_EQ(Listeners(first), 1);
  EXPECT_EQ(Listeners(second), 1);
  EXPECT_EQ(first->StopAllCvarReplication(), S_OK);
  EXPECT_EQ(Listeners(first), 0);
  EXPECT_EQ(Listeners(second), 0);
  // The second finds nothing left to detach.
  EXPECT_EQ(second->StopAllCvarReplication(), E_INVALIDARG);
}

// Stopping

TEST_F(ReplicationConnectionTest, StopAllOfACvarThatNeverReplicatedDoesNothing) {
  const Double source = MakeDouble(L"Source");
  const Double replica = MakeDouble(L"Replica");
  EXPECT_EQ(replica->StopAllCvarReplication(), S_FALSE);
  EXPECT_EQ(replica->StartCvarReplication(source, kSync, kSync, kFromOther, kEverything), S_OK);
  EXPECT_EQ(source->StopAllCvarReplication(), S_FALSE);  // the connection is the replica's
  EXPECT_EQ(replica->StopAllCvarReplication(), S_OK);
  EXPECT_EQ(replica->StopAllCvarReplication(), S_OK);  // once there was a connection
  EXPECT_EQ(Listeners(source), 0);
  EXPECT_EQ(Listeners(replica), 0);
}

TEST_F(ReplicationConnectionTest, StoppingWithoutSuchAConnectionDoesNothing) {
  const Double source = MakeDouble(L"Source");
  const Double stranger = MakeDouble(L"Stranger");
  const Double replica = MakeDouble(L"Replica");
  EXPECT_EQ(replica->StopCvarReplication(stranger), S_FALSE);
  EXPECT_EQ(replica->StartCvarReplication(source, true, 0x1, kEverything), S_OK);
  EXPECT_EQ(replica->StopCvarReplication(stranger), S_FALSE);
  EXPECT_EQ(source->StopCvarReplication(replica), S_FALSE);
  EXPECT_EQ(replica->StopCvarReplication(source), S_OK);
  EXPECT_EQ(replica->StopCvarReplication(source), S_FALSE);
}

TEST_F(ReplicationConnectionTest, StoppingOneConnectionLeavesTheOthers) {
  const Double first = MakeDouble(L"First");
  const Double second = MakeDouble(L"Second");
  const Double replica = MakeDouble(L"Replica");
  EXPECT_EQ(replica->StartCvarReplication(first, true, 0x1, kEverything), S_OK);
  EXPECT_EQ(replica->StartCvarReplication(second, true, 0x1, kEverything), S_OK);
  EXPECT_EQ(replica->StopCvarReplication(first->GetIVorCvar()), S_OK);
  EXPECT_EQ(first->SetRequestedValue(3), S_OK);
  EXPECT_EQ(Requested(replica), 0);
  EXPECT_EQ(second->SetRequestedValue(4), S_OK);
  EXPECT_EQ(Requested(replica), 4);
}

TEST_F(ReplicationConnectionTest, ADetachingThatFailsIsReturnedAndEndsTheConnection) {
  const Double source = MakeDouble(L"Source");
  const Double replica = MakeDouble(L"Replica");
  EXPECT_EQ(replica->StartCvarReplication(source, true, 0x1, kEverything), S_OK);
  CComPtr<IUnknown> attached;
  ASSERT_EQ(source->get_EventSink(0, &attached), S_OK);
  ASSERT_EQ(source->DetachCvarEventSink(attached), S_OK);
  EXPECT_EQ(replica->StopCvarReplication(source), E_INVALIDARG);
  EXPECT_EQ(replica->StopCvarReplication(source), S_FALSE);
}

// A listener that stops the connection while the source is telling its listeners: the replica's
// turn had not come yet, so nothing is copied any more.
TEST_F(ReplicationConnectionTest, NothingIsCopiedOnceAnEarlierListenerStopped) {
  const Double source = MakeDouble(L"Source");
  const Double replica = MakeDouble(L"Replica");
  const CComPtr<RecordingListener> stopper = RecordingListener::Create();
  stopper->onNotify = [&](IVorCvar*, NOTIFYTYPE) {
    EXPECT_EQ(replica->StopCvarReplication(source), S_OK);
    stopper->onNotify = nullptr;
  };
  ASSERT_EQ(source->AttachCvarEventSink(stopper), S_OK);
  EXPECT_EQ(replica->StartCvarReplication(source, true, 0x1, kEverything), S_OK);
  EXPECT_EQ(source->SetRequestedValue(3), S_OK);
  EXPECT_EQ(Requested(replica), 0);
}

// Lifetimes

TEST_F(ReplicationConnectionTest, AReplicaThatDiesFirstIsForgotten) {
  const Double source = MakeDouble(L"Source");
  {
    const Double replica = MakeDouble(L"Replica");
    EXPECT_EQ(replica->StartCvarReplication(source, kSync, kSync, kFromOther, kEverything), S_OK);
    EXPECT_EQ(Listeners(source), 1);
  }
  EXPECT_EQ(Listeners(source), 0);
  EXPECT_EQ(source->SetRequestedValue(3), S_OK);
}

TEST_F(ReplicationConnectionTest, ASourceThatDiesFirstIsForgotten) {
  const Double replica = MakeDouble(L"Replica");
  {
    const Double source = MakeDouble(L"Source", 4);
    EXPECT_EQ(source->StartCvarReplication(replica, kSync, kSync, kToOther, kEverything), S_OK);
    EXPECT_EQ(Listeners(replica), 1);
  }
  EXPECT_EQ(Requested(replica), 4);
  EXPECT_EQ(Listeners(replica), 0);
  EXPECT_EQ(replica->SetRequestedValue(3), S_OK);
}

TEST_F(ReplicationConnectionTest, AConnectionKeepsTheOtherCvarAlive) {
  const Double replica = MakeDouble(L"Replica");
  CvarObject<CCvarDouble>* raw = nullptr;
  const int gone = CvarBaseCpp::NumCvarsDestructed();
  {
    const Double source = MakeDouble(L"Source");
    raw = source;
    EXPECT_EQ(replica->StartCvarReplication(source, true, 0x1, kEverything), S_OK);
  }
  EXPECT_EQ(CvarBaseCpp::NumCvarsDestructed(), gone);
  EXPECT_EQ(raw->SetRequestedValue(6), S_OK);
  EXPECT_EQ(Requested(replica), 6);
  EXPECT_EQ(replica->StopAllCvarReplication(), S_OK);
  EXPECT_EQ(CvarBaseCpp::NumCvarsDestructed(), gone + 1);
}

// A two-way pair that one of them started does not keep itself alive.
TEST_F(ReplicationConnectionTest, ATwoWayPairDoesNotKeepItselfAlive) {
  const int gone = CvarBaseCpp::NumCvarsDestructed();
  {
    const Double first = MakeDouble(L"First");
    const Double second = MakeDouble(L"Second");
    EXPECT_EQ(first->StartCvarReplication(second, true, 0x11, kEverything), S_OK);
  }
  EXPECT_EQ(CvarBaseCpp::NumCvarsDestructed(), gone + 2);
}

// Cvars that hold each other by connections of their own live until one of them stops.
TEST_F(ReplicationConnectionTest, ARingOfConnectionsLivesUntilItIsStopped) {
  const int gone = CvarBaseCpp::NumCvarsDestructed();
  CvarObject<CCvarDouble>* raw = nullptr;
  {
    const Double first = MakeDouble(L"First");
    const Double second = MakeDouble(L"Second");
    raw = first;
    EXPECT_EQ(first->StartCvarReplication(second, true, 0x1, kEverything), S_OK);
    EXPECT_EQ(second->StartCvarReplication(first, true, 0x1, kEverything), S_OK);
  }
  EXPECT_EQ(CvarBaseCpp::NumCvarsDestructed(), gone);
  const Double held(raw);
  EXPECT_EQ(held->StopAllCvarReplication(), S_OK);
  EXPECT_EQ(CvarBaseCpp::NumCvarsDestructed(), gone + 1);
}

TEST_F(ReplicationConnectionTest, TheReplicaMayGoInsideANotificationOfItsSource) {
  const Double source = MakeDouble(L"Source");
  Double replica = MakeDouble(L"Replica");
  const CComPtr<RecordingListener> owner = RecordingListener::Create();
  owner->onNotify = [&](IVorCvar*, NOTIFYTYPE) { replica.Release(); };
  ASSERT_EQ(replica->AttachCvarEventSink(owner), S_OK);
  EXPECT_EQ(replica->StartCvarReplication(source, true, 0x1, kEverything), S_OK);
  EXPECT_EQ(source->SetRequestedValue(3), S_OK);
  EXPECT_EQ(replica, nullptr);
  EXPECT_EQ(Listeners(source), 0);
}

// Loops

TEST_F(ReplicationConnectionTest, ATwoWayPairEndsAfterOneRound) {
  const Double first = MakeDouble(L"First");
  const Double second = MakeDouble(L"Second");
  EXPECT_EQ(first->StartCvarReplication(second, true, 0x11, kEverything), S_OK);
  const CComPtr<RecordingListener> atFirst = RecordingListener::Create();
  const CComPtr<RecordingListener> atSecond = RecordingListener::Create();
  ASSERT_EQ(first->AttachCvarEventSink(atFirst), S_OK);
  ASSERT_EQ(second->AttachCvarEventSink(atSecond), S_OK);
  EXPECT_EQ(first->SetRequestedValue(3), S_OK);
  EXPECT_EQ(Requested(second), 3);
  EXPECT_EQ(second->SetRequestedValue(4), S_OK);
  EXPECT_EQ(Requested(first), 4);
  const std::vector<NOTIFYTYPE> twice(2, NOTIFY_VALUE | NOTIFY_REQUESTED);
  EXPECT_EQ(atFirst->masks, twice);
  EXPECT_EQ(atSecond->masks, twice);
}

TEST_F(ReplicationConnectionTest, CyclesEndAndStayAlive) {
  for (const std::size_t length : {3u, 30u}) {
    SCOPED_TRACE(length);
    std::vector<Double> ring;
    for (std::size_t i = 0; i < length; ++i) ring.push_back(MakeDouble(L"Member"));
    for (std::size_t i = 0; i < length; ++i) {
      EXPECT_EQ(ring[i]->StartCvarReplication(ring[(i + 1) % length], true, 0x1, kEverything),
                S_OK);
    }
    std::vector<CComPtr<RecordingListener>> listeners;
    for (const Double& member : ring) {
      listeners.push_back(RecordingListener::Create());
      ASSERT_EQ(member->AttachCvarEventSink(listeners.back()), S_OK);
    }
    for (std::size_t i = 0; i < length; ++i) {
      const double value = 10.0 + static_cast<double>(i);
      EXPECT_EQ(ring[i]->SetRequestedValue(value), S_OK);
      for (const Double& member : ring) EXPECT_EQ(Adapted(member), value);
      for (const auto& listener : listeners) EXPECT_EQ(listener->TakeMasks().size(), 1u);
    }
    for (const Double& member : ring) EXPECT_EQ(member->StopAllCvarReplication(), S_OK);
  }
}

TEST_F(ReplicationConnectionTest, TwoWayCyclesEndToo) {
  constexpr std::size_t kLength = 30;
  std::vector<Double> ring;
  for (std::size_t i = 0; i < kLength; ++i) ring.push_back(MakeDouble(L"Member"));
  for (std::size_t i = 0; i < kLength; ++i) {
    EXPECT_EQ(ring[i]->StartCvarReplication(ring[(i + 1) % kLength], true, 0x11, kEverything),
              S_OK);
  }
  EXPECT_EQ(ring[0]->SetRequestedValue(3), S_OK);
  EXPECT_EQ(ring[17]->SetRequestedValue(4), S_OK);
  for (const Double& member : ring) EXPECT_EQ(Adapted(member), 4);
  for (const Double& member : ring) EXPECT_EQ(member->StopAllCvarReplication(), S_OK);
}

// Classes

TEST_F(ReplicationConnectionTest, CvarsOfDifferentClassesMayBeTied) {
  const Double source = MakeDouble(L"Source", 2.5);
  const auto count = CvarObject<CCvarInt>::Create();
  count->Initialize(L"Count", 0, -100, 100, 1, L"", CVARFLAGS(0), L"", 0,
                    REPLICATE_VALUE | REPLICATE_REQUESTED);
  const auto total = CvarObject<CCvarLongInt>::Create();
  total->Initialize(L"Total", 0, -100, 100, 1, L"", CVARFLAGS(0), L"", 0,
                    REPLICATE_VALUE | REPLICATE_REQUESTED);
  ASSERT_NE(KnownNotifier(), nullptr);
  EXPECT_EQ(count->StartCvarReplication(source, true, 0x1, kEverything), S_OK);
  EXPECT_EQ(total->StartCvarReplication(source, kAsync, kNone, kFromOther, kEverything), S_OK);
  EXPECT_EQ(source->SetRequestedValue(17), S_OK);
  Settle();
  int number = 0;
  EXPECT_EQ(count->GetRequestedValue(&number), S_OK);
  EXPECT_EQ(number, 17);
  std::int64_t longNumber = 0;
  EXPECT_EQ(total->GetRequestedValue(&longNumber), S_OK);
  EXPECT_EQ(longNumber, 17);
  EXPECT_EQ(count->StopCvarReplication(source), S_OK);
  EXPECT_EQ(total->StopCvarReplication(source), S_OK);
  EXPECT_EQ(Listeners(source), 0);
}

// Bags

class ReplicationInABagTest : public ReplicationConnectionTest {
 protected:
  CComPtr<CCvarBag> m_bag = CCvarBag::Create(L"Bag", nullptr);
  Double m_first = MakeDouble(L"First", 1);
  Double m_second = MakeDouble(L"Second Member|second", 2);
  Double m_replica = MakeDouble(L"Replica", 3);

  void SetUp() override {
    ASSERT_EQ(m_bag->Add(m_first), S_OK);
    ASSERT_EQ(m_bag->Add(m_second), S_OK);
  }
};

TEST_F(ReplicationInABagTest, TheSourceIsFoundByKey) {
  EXPECT_EQ(m_replica->StartCvarReplication(m_bag, CComVariant(1), true, 0x1, kEverything), S_OK);
  EXPECT_EQ(Requested(m_replica), 2);
  EXPECT_EQ(m_replica->StopCvarReplication(m_bag, CComVariant(L"second member")), S_OK);
  EXPECT_EQ(m_replica->StopCvarReplication(m_bag, CComVariant(1)), S_FALSE);
}

TEST_F(ReplicationInABagTest, TheSourceIsFoundByName) {
  EXPECT_EQ(m_replica->StartCvarReplication(m_bag, L"FIRST", kSync, kNone, kFromOther, kEverything),
            S_OK);
  EXPECT_EQ(m_first->SetRequestedValue(11), S_OK);
  EXPECT_EQ(Requested(m_replica), 11);
  EXPECT_EQ(m_replica->StopCvarReplication(m_bag, L"First"), S_OK);
  EXPECT_EQ(m_replica->StopCvarReplication(m_bag, L"First"), S_FALSE);
}

TEST_F(ReplicationInABagTest, WhatTheBagDoesNotFindIsItsAnswer) {
  EXPECT_EQ(m_replica->StartCvarReplication(m_bag, CComVariant(2), true, 0x1, kEverything),
            DISP_E_BADINDEX);
  EXPECT_EQ(m_replica->StartCvarReplication(m_bag, L"None", kSync, kSync, kFromOther, kEverything),
            DISP_E_BADINDEX);
  EXPECT_EQ(m_replica->StopCvarReplication(m_bag, L"None"), DISP_E_BADINDEX);
  EXPECT_EQ(m_replica->StopAllCvarReplication(), S_FALSE);
}

TEST_F(ReplicationInABagTest, OnlyABagIsLookedInto) {
  EXPECT_EQ(m_replica->StartCvarReplication(nullptr, CComVariant(0), true, 0x1, kEverything),
            E_INVALIDARG);
  EXPECT_EQ(m_replica->StopCvarReplication(nullptr, L"First"), E_INVALIDARG);
  const CComPtr<IUnknown> noBag = test::PlainObject::Create();
  EXPECT_EQ(m_replica->StartCvarReplication(noBag, L"First", kSync, kSync, kFromOther, kEverything),
            E_NOINTERFACE);
}

// InitializeReplicating

TEST_F(ReplicationInABagTest, InitializeReplicatingConfiguresAndTiesBothWays) {
  const CComPtr<RecordingListener> listener = RecordingListener::Create();
  ASSERT_EQ(m_replica->AttachCvarEventSink(listener), S_OK);
  m_replica->InitializeReplicating(m_first, REPLICATE_VALUE | REPLICATE_REQUESTED, L"Twin|the twin",
                                   CVARFLAG_HIDDEN, L"knob", 17);
  EXPECT_EQ(Requested(m_replica), 1);
  EXPECT_EQ(NameOf(m_replica), L"Twin");
  EXPECT_EQ(Flags(m_replica), CVARFLAG_HIDDEN);
  unsigned int help = 0;
  EXPECT_EQ(m_replica->get_HelpStringID(&help), S_OK);
  EXPECT_EQ(help, 17u);
  CComBSTR hints;
  EXPECT_EQ(m_replica->GetGuiHints(&hints), S_OK);
  EXPECT_STREQ(hints, L"knob");
  // Hints, then flags, then the copy; the help string is told to nobody.
  EXPECT_EQ(listener->masks, (std::vector<NOTIFYTYPE>{NOTIFY_GUIHINTS, NOTIFY_FLAGS,
                                                      NOTIFY_VALUE | NOTIFY_REQUESTED}));
  EXPECT_EQ(m_replica->SetRequestedValue(20), S_OK);
  EXPECT_EQ(Requested(m_first), 20);
  EXPECT_EQ(m_first->SetRequestedValue(21), S_OK);
  EXPECT_EQ(Requested(m_replica), 21);
}

TEST_F(ReplicationInABagTest, InitializeReplicatingTakesANullNameAsEmpty) {
  m_replica->InitializeReplicating(m_first, REPLICATE_REQUESTED, nullptr, CVARFLAGS(0), nullptr, 0);
  EXPECT_EQ(NameOf(m_replica), L"");
}

TEST_F(ReplicationInABagTest, InitializeReplicatingFindsItsSourceInABag) {
  m_replica->InitializeReplicating(m_bag, CComVariant(L"SECOND"), REPLICATE_REQUESTED, L"Twin",
                                   CVARFLAGS(0), L"", 0);
  EXPECT_EQ(Requested(m_replica), 2);
  EXPECT_EQ(Listeners(m_second), 1);
}

TEST_F(ReplicationInABagTest, InitializeReplicatingWithoutASourceStillConfigures) {
  m_replica->InitializeReplicating(m_bag, CComVariant(L"None"), REPLICATE_REQUESTED, L"Lonely",
                                   CVARFLAG_GRAYED, L"", 0);
  EXPECT_EQ(NameOf(m_replica), L"Lonely");
  EXPECT_EQ(Flags(m_replica), CVARFLAG_GRAYED);
  EXPECT_EQ(m_replica->StopAllCvarReplication(), S_FALSE);
}

// Cvars that are not of this library

TEST_F(ReplicationConnectionTest, AFailureOfAttachingIsReturned) {
  const Double replica = MakeDouble(L"Replica");
  CComPtr<BareCvar> foreign;  // answers E_NOTIMPL to everything
  foreign.Attach(new BareCvar);
  EXPECT_EQ(replica->StartCvarReplication(foreign, kSync, kNone, kFromOther, NOTIFYTYPE(0)),
            E_NOTIMPL);
}

TEST_F(ReplicationConnectionTest, AFailedCopyIsReturnedAndDoesNotStopTheConnecting) {
  const Double source = MakeDouble(L"Source", 5);
  const Double replica = MakeDouble(L"Replica");
  replica->SetReadOnly(1);
  EXPECT_EQ(replica->StartCvarReplication(source, kSync, kNone, kFromOther, kEverything),
            E_ACCESSDENIED);
  EXPECT_EQ(Requested(replica), 0);
  EXPECT_EQ(Listeners(source), 1);
  replica->SetReadOnly(0);
  EXPECT_EQ(source->SetRequestedValue(6), S_OK);
  EXPECT_EQ(Requested(replica), 6);
}

TEST_F(ReplicationConnectionTest, ACvarThatIsNoListenerCannotListen) {
  const Double source = MakeDouble(L"Source");
  CComPtr<BareCvar> foreign;
  foreign.Attach(new BareCvar);
  EXPECT_EQ(source->StartCvarReplication(foreign, kNone, kSync, kToOther, kEverything),
            E_INVALIDARG);
  EXPECT_EQ(Listeners(source), 0);
  EXPECT_GT(foreign->References(), 1u);  // the connection holds it
  EXPECT_EQ(source->StopCvarReplication(foreign), S_OK);
  EXPECT_EQ(foreign->References(), 1u);
}

}  // namespace
}  // namespace cvars
