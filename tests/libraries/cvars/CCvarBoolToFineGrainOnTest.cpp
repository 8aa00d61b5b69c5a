#include "CCvarBoolToFineGrainOn.h"

#include <gtest/gtest.h>

#include "CCvarDoubleLockstep.h"
#include "CvarObject.h"
#include "LiveCvars.h"
#include "ReadText.h"
#include "RecordingListener.h"

namespace {

using cvars::test::RecordingListener;
using cvars::test::TextOf;
using Masks = std::vector<NOTIFYTYPE>;

constexpr CVARREPLICATIONFLAGS kReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;

class FineGrainSwitchTest : public cvars::test::CvarTest {
 protected:
  FineGrainSwitchTest() {
    scale->Initialize(L"Scale", 0.1, 0.001, 10.0, LOCKSTEP_1_2_5, nullptr, 1, CVARFLAGS(0), nullptr,
                      0, kReplication);
  }
  void TearDown() override {
    fine->CleanUp();
    fine = nullptr;
    scale = nullptr;
    CvarTest::TearDown();
  }

  void Bind(int defaultValue, CCvarDoubleLockstep* target, CVARFLAGS flags = CVARFLAGS(0)) {
    fine->Initialize(L"Fine", target, L"Off,On", defaultValue, flags, CComBSTR(), 0, kReplication);
  }
  int IsFine() {
    int on = -1;
    EXPECT_EQ(S_OK, scale->get_FineGrainOn(&on));
    return on;
  }
  int Adapted() {
    int value = -1;
    EXPECT_EQ(S_OK, fine->GetAdaptedValue(&value));
    return value;
  }
  int Requested() {
    int value = -1;
    EXPECT_EQ(S_OK, fine->GetRequestedValue(&value));
    return value;
  }

  CComPtr<CvarObject<CCvarDoubleLockstep>> scale = CvarObject<CCvarDoubleLockstep>::Create();
  CComPtr<CvarObject<CCvarBoolToFineGrainOn>> fine = CvarObject<CCvarBoolToFineGrainOn>::Create();
};

TEST_F(FineGrainSwitchTest, WithoutTargetReadsZeroAndOnlyStoresRequests) {
  Bind(0, nullptr);
  EXPECT_EQ(S_OK, fine->SetRequestedValue(1));
  EXPECT_EQ(1, Requested());
  EXPECT_EQ(0, Adapted());
  EXPECT_EQ(L"Off", TextOf(*fine, &IVorCvar::GetAdaptedValueStringScreen));
}

TEST_F(FineGrainSwitchTest, TheDefaultReachesTheTargetAtInitialize) {
  Bind(1, scale);
  EXPECT_EQ(1, IsFine());
  EXPECT_EQ(1, Adapted());
}

TEST_F(FineGrainSwitchTest, ARequestSwitchesTheTarget) {
  Bind(0, scale);
  EXPECT_EQ(S_OK, fine->SetRequestedValue(7));
  EXPECT_EQ(1, IsFine());
  EXPECT_EQ(1, Adapted());
  EXPECT_EQ(S_OK, fine->SetRequestedValueFromString(L"off"));
  EXPECT_EQ(0, IsFine());
  EXPECT_EQ(S_OK, fine->Increment(1));
  EXPECT_EQ(1, IsFine());
  EXPECT_EQ(S_OK, fine->SetToDefault());
  EXPECT_EQ(0, IsFine());
}

TEST_F(FineGrainSwitchTest, EveryGetterReadsTheTarget) {
  Bind(0, scale);
  EXPECT_EQ(S_OK, scale->put_FineGrainOn(1));
  int value = 0;
  EXPECT_EQ(S_OK, fine->Get(&value));
  EXPECT_EQ(1, value);
  EXPECT_EQ(1, fine->GetAdaptedValue());
  CComVariant variant;
  EXPECT_EQ(S_OK, fine->get_Value(&variant));
  EXPECT_EQ(VT_I4, variant.vt);
  EXPECT_EQ(1, variant.lVal);
  double position = 0;
  EXPECT_EQ(S_OK, fine->GetAdaptedValueNorm(&position));
  EXPECT_EQ(1.0, position);
  EXPECT_EQ(L"On", TextOf(*fine, &IVorCvar::GetAdaptedValueStringScreen));
  EXPECT_EQ(L"ON", TextOf(*fine, &IVorCvar::GetAdaptedValueStringRemote));
  EXPECT_EQ(L"True", TextOf(*fine, &IVorCvar::GetAdaptedValueStringAutomation));
  EXPECT_EQ(S_OK, fine->IsDefault(&value));
  EXPECT_EQ(0, value);
  EXPECT_EQ(S_OK, fine->get_IsValueAdapted(&value));
  EXPECT_EQ(1, value);
}

TEST_F(FineGrainSwitchTest, ReadOnlyLeavesTheTarget) {
  Bind(0, scale, CVARFLAG_READONLY);
  EXPECT_EQ(E_ACCESSDENIED, fine->SetRequestedValue(1));
  EXPECT_EQ(0, IsFine());
}

TEST_F(FineGrainSwitchTest, AChangeOfTheTargetsRangeIsToldAsRangeAndValue) {
  Bind(0, scale);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(S_OK, fine->AttachCvarEventSink(listener));
  EXPECT_EQ(S_OK, scale->ForceNotification(NOTIFY_RANGE | NOTIFY_FLAGS));
  EXPECT_EQ(Masks{NOTIFY_RANGE | NOTIFY_FLAGS | NOTIFY_VALUE}, listener->TakeMasks());
  EXPECT_EQ(S_OK, scale->ForceNotification(NOTIFY_VALUE | NOTIFY_REQUESTED));
  EXPECT_TRUE(listener->TakeMasks().empty());
  EXPECT_EQ(S_OK, fine->SetRequestedValue(1));
  EXPECT_EQ(1u, listener->TakeMasks().size());
}

TEST_F(FineGrainSwitchTest, GivesTheTargetTheAnswerOfItsListeners) {
  Bind(0, scale);
  const auto listener = RecordingListener::Create(E_UNEXPECTED);
  ASSERT_EQ(S_OK, fine->AttachCvarEventSink(listener));
  EXPECT_EQ(E_UNEXPECTED, scale->ForceNotification(NOTIFY_RANGE));
}

TEST_F(FineGrainSwitchTest, AnotherSenderIsTheSourceOfAReplica) {
  Bind(0, scale);
  const auto source = CvarObject<CCvarBool>::Create();
  source->Initialize(L"Source", L"No,Yes", 1, CVARFLAGS(0), nullptr, 0, kReplication);
  EXPECT_EQ(S_OK, fine->OnCvarNotify(source, NOTIFY_REQUESTED));
  EXPECT_EQ(1, IsFine());
}

TEST_F(FineGrainSwitchTest, AfterCleanUpItIsOnItsOwn) {
  Bind(1, scale);
  fine->CleanUp();
  fine->CleanUp();
  long count = -1;
  EXPECT_EQ(S_OK, scale->get_EventSinkCount(&count));
  EXPECT_EQ(0, count);
  EXPECT_EQ(0, Adapted());
  EXPECT_EQ(S_OK, fine->SetRequestedValue(0));
  EXPECT_EQ(1, IsFine());
  EXPECT_EQ(S_OK, fine->OnCvarNotify(scale, NOTIFY_RANGE));
}

TEST_F(FineGrainSwitchTest, ASecondInitializeLeavesTheFirstTarget) {
  const auto other = CvarObject<CCvarDoubleLockstep>::Create();
  Bind(0, scale);
  Bind(1, other);
  long count = -1;
  EXPECT_EQ(S_OK, scale->get_EventSinkCount(&count));
  EXPECT_EQ(0, count);
  EXPECT_EQ(0, IsFine());
  EXPECT_EQ(1, Adapted());
  fine->CleanUp();
}

}  // namespace
