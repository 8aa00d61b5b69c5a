#include <gtest/gtest.h>

#include <vector>

#include "BareCvar.h"
#include "Cvars.h"
#include "DeveloperEvents.h"
#include "RecordingListener.h"
#include "ReplicationFixture.h"

namespace cvars {
namespace {

using test::Adapted;
using test::BareCvar;
using test::Double;
using test::Flags;
using test::kEverything;
using test::MakeDouble;
using test::NameOf;
using test::RecordingListener;
using test::Requested;

constexpr CVARREPLICATIONFLAGS kNothing = CVARREPLICATIONFLAGS(0);
constexpr CVARREPLICATIONFLAGS kUsual = REPLICATE_VALUE | REPLICATE_REQUESTED;

class ReplicaReactionTest : public test::ReplicationFixture {
 protected:
  /// A replica that copies nothing at once and then listens.
  Double MakeReplica(CVARREPLICATIONFLAGS copies) {
    const Double replica = MakeDouble(L"Replica", 0, copies);
    EXPECT_EQ(replica->StartCvarReplication(
                  m_source->GetIVorCvar(), REPLICATIONCONNECTION_SYNCHRONOUS,
                  REPLICATIONCONNECTION_NONE, REPLICATIONCOPY_FROM_OTHER, NOTIFYTYPE(0)),
              S_OK);
    return replica;
  }

  Double m_source = MakeDouble(L"Source");
};

TEST_F(ReplicaReactionTest, ByDefaultTheRequestIsFollowedButNotFlagsOrName) {
  EXPECT_EQ(CvarObject<CCvarDouble>::Create()->ReplicationFlags(), 0x202u);
  const Double replica = MakeReplica(kUsual);
  EXPECT_EQ(m_source->SetRequestedValue(3.2), S_OK);
  EXPECT_EQ(Requested(replica), 3.2);
  EXPECT_EQ(Adapted(replica), 3.0);
  EXPECT_TRUE(m_source->SetFlags(CVARFLAG_HIDDEN, true));
  EXPECT_EQ(Flags(replica), 0);
  m_source->SetName(L"Renamed");
  EXPECT_EQ(m_source->ForceNotification(kEverything), S_OK);
  EXPECT_EQ(NameOf(replica), L"Replica");
}

TEST_F(ReplicaReactionTest, WithoutTheRequestTheAdaptedValueIsCopied) {
  const Double replica = MakeReplica(REPLICATE_VALUE);
  EXPECT_EQ(m_source->SetRequestedValue(3.2), S_OK);
  EXPECT_EQ(Requested(replica), 3.0);
}

TEST_F(ReplicaReactionTest, WithTheRequestAloneAnAdaptationIsNotCopied) {
  const Double replica = MakeReplica(REPLICATE_REQUESTED);
  EXPECT_EQ(m_source->SetRequestedValue(3.2), S_OK);
  EXPECT_EQ(Requested(replica), 3.2);
  EXPECT_EQ(m_source->SetMaxValue(2), S_OK);  // the source's value moves, its request does not
  EXPECT_EQ(Adapted(m_source), 2);
  EXPECT_EQ(Adapted(replica), 3);
}

TEST_F(ReplicaReactionTest, CopyingNothingCopiesNothing) {
  const Double replica = MakeReplica(kNothing);
  EXPECT_EQ(m_source->SetRequestedValue(3), S_OK);
  EXPECT_EQ(m_source->ForceNotification(kEverything), S_OK);
  EXPECT_EQ(Requested(replica), 0);
  EXPECT_EQ(NameOf(replica), L"Replica");
}

constexpr CVARREPLICATIONFLAGS kAll = CVARREPLICATIONFLAGS(0xFFFFFFFF);

template <class T>
class SourcelessReactionTest : public test::ReplicationFixture {};
using EveryKindOfClass =
    ::testing::Types<CCvarDouble, CCvarInt, CCvarLongInt, CCvarDoubleLockstep, CCvarDoubleSet,
                     CCvarDoubleIndirect, CCvarEnum, CCvarBool, CCvarColor, CCvarString,
                     CCvarObjectName, CCvarFileName, CCvarBitPattern, CCvarRegister, CCvarSafeArray,
                     CCvarImage, CCvarAction>;
TYPED_TEST_SUITE(SourcelessReactionTest, EveryKindOfClass);

TYPED_TEST(SourcelessReactionTest, ANotificationWithoutSourceIsRefused) {
  const auto cvar = CvarObject<TypeParam>::Create();
  cvar->SetReplicationFlags(kAll);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(S_OK, cvar->AttachCvarEventSink(listener));
  EXPECT_EQ(E_POINTER, cvar->OnCvarNotify(nullptr, kEverything));
  EXPECT_EQ(std::vector<NOTIFYTYPE>{}, listener->masks);
}

// Read-only replicas

TEST_F(ReplicaReactionTest, AReadOnlyReplicaRefusesAndTheWriterHearsOfIt) {
  const Double replica = MakeReplica(kUsual);
  replica->SetReadOnly(1);
  EXPECT_EQ(m_source->SetRequestedValue(3), E_ACCESSDENIED);
  EXPECT_EQ(Requested(m_source), 3);
  EXPECT_EQ(Requested(replica), 0);
  EXPECT_EQ(Flags(replica), CVARFLAG_READONLY);
}

TEST_F(ReplicaReactionTest, AReadOnlyReplicaWithOverrideTakesTheValueAndStaysReadOnly) {
  const Double replica = MakeReplica(kUsual | REPLICATE_OVERRIDE_READONLY);
  replica->SetReadOnly(1);
  const CComPtr<RecordingListener> listener = RecordingListener::Create();
  ASSERT_EQ(replica->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(m_source->SetRequestedValue(3), S_OK);
  EXPECT_EQ(Requested(replica), 3);
  EXPECT_EQ(Flags(replica), CVARFLAG_READONLY);
  EXPECT_EQ(replica->SetRequestedValue(4), E_ACCESSDENIED);
  // A double tells once, when its reaction is over; the flags changed there and back.
  EXPECT_EQ(listener->masks,
            (std::vector<NOTIFYTYPE>{NOTIFY_FLAGS | NOTIFY_VALUE | NOTIFY_REQUESTED}));
}

// The read-only flag goes and comes back even where the copy then finds nothing to do.
TEST_F(ReplicaReactionTest, ReadOnlyIsLiftedEvenWhenNothingIsCopied) {
  const Double replica = MakeReplica(kUsual | REPLICATE_OVERRIDE_READONLY);
  replica->SetReadOnly(1);
  const CComPtr<RecordingListener> listener = RecordingListener::Create();
  ASSERT_EQ(replica->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(replica->OnCvarNotify(m_source, NOTIFY_VALUE), S_OK);
  EXPECT_EQ(listener->masks, std::vector<NOTIFYTYPE>{NOTIFY_FLAGS});
  EXPECT_EQ(Flags(replica), CVARFLAG_READONLY);
}

// A cvar without a range of its own suspends nothing: each step is told as it happens.
TEST_F(ReplicaReactionTest, ATextTellsEveryStepOfAnOverride) {
  const auto make = [](const wchar_t* text, CVARREPLICATIONFLAGS copies) {
    auto cvar = CvarObject<CCvarString>::Create();
    cvar->Initialize(L"Label", text, 100, CVARFLAGS(0), L"", 0, copies);
    return cvar;
  };
  const auto source = make(L"new", kUsual);
  const auto replica = make(L"old", kUsual | REPLICATE_OVERRIDE_READONLY);
  replica->SetReadOnly(1);
  const CComPtr<RecordingListener> listener = RecordingListener::Create();
  ASSERT_EQ(replica->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(replica->OnCvarNotify(source, NOTIFY_VALUE | NOTIFY_REQUESTED), S_OK);
  EXPECT_EQ(listener->masks,
            (std::vector<NOTIFYTYPE>{NOTIFY_FLAGS, NOTIFY_VALUE | NOTIFY_REQUESTED, NOTIFY_FLAGS}));
  EXPECT_EQ(Flags(replica), CVARFLAG_READONLY);
}

// Flags come before the value, so a replica that becomes read-only by the flags refuses the value.
TEST_F(ReplicaReactionTest, FlagsAreCopiedBeforeTheValue) {
  const Double replica = MakeReplica(kUsual | REPLICATE_FLAGS);
  m_source->SuspendNotifications(1);
  EXPECT_EQ(m_source->SetRequestedValue(3), S_OK);
  m_source->SetReadOnly(1);
  m_source->SuspendNotifications(0);
  EXPECT_EQ(Flags(replica), CVARFLAG_READONLY);
  EXPECT_EQ(Requested(replica), 0);
}

// Flags

struct ForcedCase {
  const char* name;
  long source;
  long replica;
  long result;
};

constexpr ForcedCase kForcedCases[] = {
    {"PublicIsKept", 0x2, 0x4000, 0x4002},         {"PrivateIsKept", 0x402, 0x2000, 0x2402},
    {"BothAreKept", 0x0, 0x6000, 0x6000},          {"PublicIsNotTaken", 0x4002, 0x0, 0x2},
    {"PrivateIsNotTaken", 0x2002, 0x4000, 0x4002}, {"OtherBitsAreTaken", 0x10, 0x402, 0x10},
};

TEST_F(ReplicaReactionTest, AReplicaKeepsItsOwnForcedState) {
  for (const ForcedCase& row : kForcedCases) {
    SCOPED_TRACE(row.name);
    const Double replica = MakeReplica(REPLICATE_FLAGS);
    m_source->SetFlags(row.source);
    replica->SetFlags(row.replica);
    EXPECT_EQ(m_source->ForceNotification(NOTIFY_FLAGS), S_OK);
    EXPECT_EQ(Flags(replica), row.result);
  }
}

// Attributes

TEST_F(ReplicaReactionTest, TheNameGoesThroughTheNameRule) {
  const Double replica = MakeReplica(REPLICATE_NAME);
  m_source->SetName(L"Trigger Level|trig");
  EXPECT_EQ(m_source->ForceNotification(NOTIFY_ATTRIBUTES), S_OK);
  EXPECT_EQ(NameOf(replica), L"Trigger Level");
  CComBSTR remote;
  EXPECT_EQ(replica->get_NameRemote(&remote), S_OK);
  EXPECT_STREQ(remote, L"TRIGGER_LEVEL");  // the source's remote name is not asked for
}

TEST_F(ReplicaReactionTest, TheHelpIdIsTakenWithoutANotification) {
  const Double replica = MakeReplica(REPLICATE_HELPID);
  const CComPtr<RecordingListener> listener = RecordingListener::Create();
  ASSERT_EQ(replica->AttachCvarEventSink(listener), S_OK);
  m_source->SetHelpStringID(42);
  unsigned int id = 0;
  EXPECT_EQ(replica->get_HelpStringID(&id), S_OK);
  EXPECT_EQ(id, 42u);
  EXPECT_TRUE(listener->masks.empty());
}

// Hints come with the attributes; their own kind of change copies nothing.
TEST_F(ReplicaReactionTest, HintsAreTakenWithTheAttributesOnly) {
  const Double replica = MakeReplica(REPLICATE_GUIHINTS);
  const CComPtr<RecordingListener> listener = RecordingListener::Create();
  ASSERT_EQ(replica->AttachCvarEventSink(listener), S_OK);
  m_source->SetGuiHints(L"slider");
  CComBSTR hints;
  EXPECT_EQ(replica->GetGuiHints(&hints), S_OK);
  EXPECT_STREQ(hints, L"");
  EXPECT_EQ(m_source->ForceNotification(NOTIFY_ATTRIBUTES), S_OK);
  hints.Empty();
  EXPECT_EQ(replica->GetGuiHints(&hints), S_OK);
  EXPECT_STREQ(hints, L"slider");
  EXPECT_EQ(listener->masks, std::vector<NOTIFYTYPE>{NOTIFY_GUIHINTS});
}

// Failures

struct FailureCase {
  const char* name;
  CVARREPLICATIONFLAGS copies;
  NOTIFYTYPE what;
  bool reported;
};

constexpr FailureCase kFailureCases[] = {
    {"Flags", REPLICATE_FLAGS, NOTIFY_FLAGS, true},
    {"Value", REPLICATE_VALUE, NOTIFY_VALUE, false},
    {"Request", REPLICATE_REQUESTED, NOTIFY_REQUESTED, false},
    {"Name", REPLICATE_NAME, NOTIFY_ATTRIBUTES, true},
    {"HelpId", REPLICATE_HELPID, NOTIFY_ATTRIBUTES, true},
    {"GuiHints", REPLICATE_GUIHINTS, NOTIFY_ATTRIBUTES, true},
};

TEST_F(ReplicaReactionTest, AFailedReadIsReturnedAndReportedUnlessItIsTheValues) {
  CComPtr<BareCvar> silent;  // answers E_NOTIMPL to everything
  silent.Attach(new BareCvar);
  for (const FailureCase& row : kFailureCases) {
    SCOPED_TRACE(row.name);
    const Double replica = MakeDouble(L"Replica", 5, row.copies);
    std::vector<DeveloperEvent> events;
    SetDeveloperEventObserver(
        [](const DeveloperEvent& event, void* context) {
          static_cast<std::vector<DeveloperEvent>*>(context)->push_back(event);
        },
        &events);
    EXPECT_EQ(replica->OnCvarNotify(silent, row.what), E_NOTIMPL);
    SetDeveloperEventObserver(nullptr, nullptr);
    EXPECT_EQ(Requested(replica), 5);
    ASSERT_EQ(events.size(), row.reported ? 1u : 0u);
    if (!row.reported) continue;
    EXPECT_EQ(events[0].source, L"(CvarBag.Cvar) .Replica");
    EXPECT_EQ(events[0].message, L"80004001");
    EXPECT_EQ(events[0].severity, 4);
    EXPECT_EQ(events[0].category, L"system");
    EXPECT_EQ(events[0].value, L"Null value");
    const std::size_t lineBreak = events[0].detail.find(L'\n');
    ASSERT_NE(lineBreak, std::wstring::npos);
    EXPECT_GT(std::stoi(events[0].detail.substr(0, lineBreak)), 0);
    EXPECT_EQ(events[0].detail.substr(lineBreak + 1), L"shared/includes/CvarImpl");
  }
}

TEST_F(ReplicaReactionTest, ASuccessOfTheCopyIsPlainSuccess) {
  const Double replica = MakeReplica(kUsual);
  EXPECT_EQ(replica->OnCvarNotify(m_source, kEverything), S_OK);  // equal: nothing to do
}

// Range, unit and default of a double

struct DoubleState {
  double min;
  double max;
  double grain;
  double defaultValue;
  std::wstring unit;
  bool operator==(const DoubleState&) const = default;
};

DoubleState StateOf(const Double& cvar) {
  DoubleState state{};
  EXPECT_EQ(cvar->GetMinValue(&state.min), S_OK);
  EXPECT_EQ(cvar->GetMaxValue(&state.max), S_OK);
  EXPECT_EQ(cvar->GetGrainValue(&state.grain), S_OK);
  EXPECT_EQ(cvar->GetDefaultValue(&state.defaultValue), S_OK);
  CComBSTR unit;
  EXPECT_EQ(cvar->GetUnitRemoteString(&unit), S_OK);
  state.unit = unit.m_str;
  return state;
}

TEST_F(ReplicaReactionTest, ADoubleCopiesRangeUnitAndDefaultAsItsFlagsSay) {
  const Double source = CvarObject<CCvarDouble>::Create();
  source->Initialize(L"Source", 2, -8, 8, 0.25, L"S", CVARFLAGS(0), L"", 0, kUsual);
  const DoubleState before{-1000, 1000, 0.5, 0, L"V"};
  struct Case {
    const char* name;
    CVARREPLICATIONFLAGS copies;
    NOTIFYTYPE what;
    DoubleState after;
  };
  const Case cases[] = {
      {"Range", REPLICATE_RANGE, NOTIFY_RANGE, {-8, 8, 0.25, 0, L"V"}},
      {"Unit", REPLICATE_UNIT, NOTIFY_UNIT, {-1000, 1000, 0.5, 0, L"S"}},
      {"Default", REPLICATE_DEFAULT, NOTIFY_ATTRIBUTES, {-1000, 1000, 0.5, 2, L"V"}},
      {"All",
       REPLICATE_RANGE | REPLICATE_UNIT | REPLICATE_DEFAULT,
       kEverything,
       {-8, 8, 0.25, 2, L"S"}},
      {"OtherKinds", REPLICATE_RANGE | REPLICATE_UNIT | REPLICATE_DEFAULT,
       NOTIFY_VALUE | NOTIFY_REQUESTED | NOTIFY_FLAGS | NOTIFY_GUIHINTS, before},
      {"OtherFlags", kUsual, NOTIFY_RANGE | NOTIFY_UNIT | NOTIFY_ATTRIBUTES, before},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    const Double replica = MakeDouble(L"Replica", 0, row.copies);
    ASSERT_EQ(StateOf(replica), before);
    EXPECT_EQ(replica->OnCvarNotify(source, row.what), S_OK);
    EXPECT_EQ(StateOf(replica), row.after);
  }
}

// The range is there before the value is copied, and the listeners hear of it all at once.
TEST_F(ReplicaReactionTest, ADoubleTellsOnceWhatItCopied) {
  const Double replica = MakeReplica(kUsual | REPLICATE_RANGE);
  const CComPtr<RecordingListener> listener = RecordingListener::Create();
  ASSERT_EQ(replica->AttachCvarEventSink(listener), S_OK);
  m_source->SuspendNotifications(1);
  EXPECT_EQ(m_source->SetMaxValue(5000), S_OK);
  EXPECT_EQ(m_source->SetRequestedValue(4000), S_OK);
  m_source->SuspendNotifications(0);
  EXPECT_EQ(Adapted(replica), 4000);
  EXPECT_EQ(listener->masks,
            (std::vector<NOTIFYTYPE>{NOTIFY_RANGE | NOTIFY_VALUE | NOTIFY_REQUESTED}));
}

}  // namespace
}  // namespace cvars
