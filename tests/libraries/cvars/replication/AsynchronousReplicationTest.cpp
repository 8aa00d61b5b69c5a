#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "BareCvar.h"
#include "KnownNotifier.h"
#include "RecordingListener.h"
#include "ReplicationFixture.h"

namespace cvars {
namespace {

using test::Adapted;
using test::BareCvar;
using test::Double;
using test::kEverything;
using test::KnownNotifier;
using test::Listeners;
using test::MakeDouble;
using test::RecordingListener;
using test::Requested;

constexpr auto kNone = REPLICATIONCONNECTION_NONE;
constexpr auto kAsync = REPLICATIONCONNECTION_ASYNCHRONOUS;
constexpr auto kFromOther = REPLICATIONCOPY_FROM_OTHER;
constexpr unsigned kDeadlineMs = 20000;

/// Keeps the worker of the notifier inside one delivery.
class Hold {
 public:
  Hold() {
    m_source.Attach(new BareCvar);
    m_listener->onNotify = [this](IVorCvar*, NOTIFYTYPE) {
      m_entered = true;
      m_entered.notify_all();
      m_go.wait(false);
    };
    EXPECT_EQ(KnownNotifier()->Post(m_source, NOTIFY_VALUE, m_listener), S_OK);
    m_entered.wait(false);
  }
  /// Lets the worker go on and waits until the queue is empty.
  void End() {
    m_go = true;
    m_go.notify_all();
    for (int i = 0; i < 2; ++i) EXPECT_EQ(KnownNotifier()->Drain(kDeadlineMs), S_OK);
  }

 private:
  std::atomic<bool> m_entered{false};
  std::atomic<bool> m_go{false};
  CComPtr<BareCvar> m_source;
  CComPtr<RecordingListener> m_listener = RecordingListener::Create();
};

class AsynchronousReplicationTest : public test::ReplicationFixture {
 protected:
  void SetUp() override { ASSERT_NE(KnownNotifier(), nullptr); }

  Double MakeReplica(const Double& source) {
    const Double replica = MakeDouble(L"Replica");
    EXPECT_EQ(replica->StartCvarReplication(source, kAsync, kNone, kFromOther, kEverything), S_OK);
    return replica;
  }
};

TEST_F(AsynchronousReplicationTest, TheReplicaFollowsOnTheNotifiersThread) {
  const Double source = MakeDouble(L"Source", 2);
  const Double replica = MakeReplica(source);
  EXPECT_EQ(Requested(replica), 2);  // the first copy does not wait
  std::thread::id thread;
  const CComPtr<RecordingListener> listener = RecordingListener::Create();
  listener->onNotify = [&](IVorCvar*, NOTIFYTYPE) { thread = std::this_thread::get_id(); };
  ASSERT_EQ(replica->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(source->SetRequestedValue(3), S_OK);
  EXPECT_EQ(KnownNotifier()->Drain(kDeadlineMs), S_OK);
  EXPECT_EQ(Requested(replica), 3);
  EXPECT_NE(thread, std::thread::id());
  EXPECT_NE(thread, std::this_thread::get_id());
}

TEST_F(AsynchronousReplicationTest, ABurstReachesTheReplicaAsOneChange) {
  const Double source = MakeDouble(L"Source");
  const Double replica = MakeReplica(source);
  const CComPtr<RecordingListener> listener = RecordingListener::Create();
  ASSERT_EQ(replica->AttachCvarEventSink(listener), S_OK);
  Hold hold;
  for (int i = 1; i <= 100; ++i) EXPECT_EQ(source->SetRequestedValue(i), S_OK);
  EXPECT_EQ(Requested(replica), 0);
  hold.End();
  EXPECT_EQ(Requested(replica), 100);
  EXPECT_EQ(listener->masks, std::vector<NOTIFYTYPE>{NOTIFY_VALUE | NOTIFY_REQUESTED});
}

// A refusal of the replica does not reach the writer.
TEST_F(AsynchronousReplicationTest, TheWriterDoesNotHearOfARefusal) {
  const Double source = MakeDouble(L"Source");
  const Double replica = MakeReplica(source);
  replica->SetReadOnly(1);
  EXPECT_EQ(source->SetRequestedValue(3), S_OK);
  EXPECT_EQ(KnownNotifier()->Drain(kDeadlineMs), S_OK);
  EXPECT_EQ(Requested(replica), 0);
}

TEST_F(AsynchronousReplicationTest, ATwoWayPairSettles) {
  const Double first = MakeDouble(L"First");
  const Double second = MakeDouble(L"Second");
  EXPECT_EQ(first->StartCvarReplication(second, kAsync, kAsync, kFromOther, kEverything), S_OK);
  EXPECT_EQ(first->SetRequestedValue(3), S_OK);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(KnownNotifier()->Drain(kDeadlineMs), S_OK);
  EXPECT_EQ(Requested(second), 3);
  EXPECT_EQ(second->SetRequestedValue(4), S_OK);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(KnownNotifier()->Drain(kDeadlineMs), S_OK);
  EXPECT_EQ(Requested(first), 4);
  EXPECT_EQ(Requested(second), 4);
}

TEST_F(AsynchronousReplicationTest, NothingQueuedIsDeliveredAfterAStop) {
  const Double source = MakeDouble(L"Source");
  const Double replica = MakeReplica(source);
  Hold hold;
  EXPECT_EQ(source->SetRequestedValue(3), S_OK);
  EXPECT_EQ(replica->StopCvarReplication(source), S_OK);
  hold.End();
  EXPECT_EQ(Requested(replica), 0);
  EXPECT_EQ(Listeners(source), 0);
}

TEST_F(AsynchronousReplicationTest, NothingQueuedIsDeliveredAfterStopAll) {
  const Double source = MakeDouble(L"Source");
  const Double replica = MakeReplica(source);
  Hold hold;
  EXPECT_EQ(source->SetRequestedValue(3), S_OK);
  EXPECT_EQ(replica->StopAllCvarReplication(), S_OK);
  hold.End();
  EXPECT_EQ(Requested(replica), 0);
}

// What was queued by a connection that ended is not delivered by the one that came after it.
TEST_F(AsynchronousReplicationTest, ARestartDoesNotDeliverWhatTheOldConnectionQueued) {
  const Double source = MakeDouble(L"Source");
  const Double replica = MakeReplica(source);
  Hold hold;
  EXPECT_EQ(source->SetRequestedValue(3), S_OK);
  EXPECT_EQ(replica->StopCvarReplication(source), S_OK);
  EXPECT_EQ(replica->StartCvarReplication(source, kAsync, kNone, kFromOther, NOTIFYTYPE(0)), S_OK);
  hold.End();
  EXPECT_EQ(Requested(replica), 0);
  EXPECT_EQ(source->SetRequestedValue(4), S_OK);
  EXPECT_EQ(KnownNotifier()->Drain(kDeadlineMs), S_OK);
  EXPECT_EQ(Requested(replica), 4);
}

TEST_F(AsynchronousReplicationTest, AReplicaMayGoWhileItsCopyIsQueued) {
  const Double source = MakeDouble(L"Source");
  Hold hold;
  const int gone = CvarBaseCpp::NumCvarsDestructed();
  {
    const Double replica = MakeReplica(source);
    EXPECT_EQ(source->SetRequestedValue(3), S_OK);
  }
  EXPECT_EQ(CvarBaseCpp::NumCvarsDestructed(), gone + 1);  // the queue does not hold it
  EXPECT_EQ(Listeners(source), 0);
  hold.End();
}

// A source that its owner let go lives on in the queue, and its last change arrives.
TEST_F(AsynchronousReplicationTest, ASourceMayGoWhileItsCopyIsQueued) {
  const Double replica = MakeDouble(L"Replica");
  Hold hold;
  const int gone = CvarBaseCpp::NumCvarsDestructed();
  {
    const Double source = MakeDouble(L"Source");
    EXPECT_EQ(replica->StartCvarReplication(source, kAsync, kNone, kFromOther, kEverything), S_OK);
    EXPECT_EQ(source->SetRequestedValue(3), S_OK);
  }
  EXPECT_EQ(CvarBaseCpp::NumCvarsDestructed(), gone);
  hold.End();
  EXPECT_EQ(Requested(replica), 3);
  EXPECT_EQ(replica->StopAllCvarReplication(), S_OK);
  EXPECT_EQ(CvarBaseCpp::NumCvarsDestructed(), gone + 1);
}

// The replica's last reference goes on another thread while the worker is inside its copy: the copy
// ends on a living cvar.
TEST_F(AsynchronousReplicationTest, AReplicaMayGoWhileItsCopyRuns) {
  const Double source = MakeDouble(L"Source");
  Double replica = MakeReplica(source);
  std::atomic<bool> entered{false};
  std::atomic<bool> go{false};
  const CComPtr<RecordingListener> listener = RecordingListener::Create();
  listener->onNotify = [&](IVorCvar*, NOTIFYTYPE) {
    entered = true;
    entered.notify_all();
    go.wait(false);
  };
  ASSERT_EQ(replica->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(source->SetRequestedValue(3), S_OK);
  entered.wait(false);
  const int gone = CvarBaseCpp::NumCvarsDestructed();
  replica.Release();
  EXPECT_EQ(CvarBaseCpp::NumCvarsDestructed(), gone);
  go = true;
  go.notify_all();
  EXPECT_EQ(KnownNotifier()->Drain(kDeadlineMs), S_OK);
  EXPECT_EQ(CvarBaseCpp::NumCvarsDestructed(), gone + 1);
  EXPECT_EQ(Listeners(source), 0);
}

// Names, hints and units are read on the notifier's thread while their owner changes them.
TEST_F(AsynchronousReplicationTest, TextsMayChangeWhileTheyAreCopied) {
  const Double source = MakeDouble(L"Source");
  const Double replica = MakeDouble(
      L"Replica", 0, REPLICATE_NAME | REPLICATE_GUIHINTS | REPLICATE_UNIT | REPLICATE_HELPID);
  EXPECT_EQ(replica->StartCvarReplication(source, kAsync, kNone, kFromOther, NOTIFYTYPE(0)), S_OK);
  for (unsigned i = 1; i <= 500; ++i) {
    source->SetName((i & 1) != 0 ? L"Odd Name|odd" : L"An even longer name|even");
    source->SetGuiHints((i & 1) != 0 ? L"slider" : L"a knob with a scale around it");
    EXPECT_EQ(source->SetUnitRemoteString((i & 1) != 0 ? L"S" : L"V"), S_OK);
    source->SetHelpStringID(i);
  }
  EXPECT_EQ(KnownNotifier()->Drain(kDeadlineMs), S_OK);
  EXPECT_EQ(test::NameOf(replica), L"An even longer name");
  CComBSTR hints;
  EXPECT_EQ(replica->GetGuiHints(&hints), S_OK);
  EXPECT_STREQ(hints, L"a knob with a scale around it");
  CComBSTR unit;
  EXPECT_EQ(replica->GetUnitRemoteString(&unit), S_OK);
  EXPECT_STREQ(unit, L"V");
}

// What runs in a child process: leaves it while copies between static cvars are queued and running.
[[noreturn]] void LeaveDuringCopies() {
  static std::vector<Double> sources;
  static std::vector<Double> replicas;
  for (int i = 0; i < 200; ++i) {
    sources.push_back(MakeDouble(L"Source"));
    replicas.push_back(MakeDouble(L"Replica"));
    if (FAILED(replicas.back()->StartCvarReplication(sources.back(), kAsync, kNone, kFromOther,
                                                     kEverything))) {
      _Exit(3);
    }
  }
  for (int value = 1; Requested(replicas[0]) == 0; ++value) {
    for (const Double& source : sources) (void)source->SetRequestedValue(value);
  }
  exit(0);
}

using AsynchronousReplicationDeathTest = AsynchronousReplicationTest;

TEST_F(AsynchronousReplicationDeathTest, TheProcessMayEndDuringCopies) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(LeaveDuringCopies(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace cvars
