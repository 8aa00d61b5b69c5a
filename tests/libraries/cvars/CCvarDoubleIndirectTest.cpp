#include "CCvarDoubleIndirect.h"

#include <gtest/gtest.h>

#include "CvarObject.h"
#include "LiveCvars.h"
#include "ReadText.h"
#include "RecordingListener.h"

namespace {

using cvars::test::RecordingListener;
using cvars::test::TextOf;
using Double = CComPtr<CvarObject<CCvarDouble>>;
using Indirect = CComPtr<CvarObject<CCvarDoubleIndirect>>;
using Masks = std::vector<NOTIFYTYPE>;

constexpr NOTIFYTYPE kRequestedAndValue = NOTIFY_REQUESTED | NOTIFY_VALUE;

class IndirectCvarTest : public cvars::test::CvarTest {
 protected:
  static Double MakeTarget() {
    Double target = CvarObject<CCvarDouble>::Create();
    target->Initialize(L"Volts", 2, -100, 100, 0.5, L"V", CVARFLAGS(0), L"", 0,
                       REPLICATE_VALUE | REPLICATE_REQUESTED);
    return target;
  }
  /// Shows 10 x target + 3.
  static Indirect Make(CCvarDouble* native, IVorCvarDouble* target) {
    Indirect cvar = CvarObject<CCvarDoubleIndirect>::Create();
    cvar->Initialize(CComBSTR(L"Probe"), native, target, 10, 3, 23, -1000, 1000, 1, CComBSTR(L"V"),
                     CVARFLAGS(0), CComBSTR(L"knob"));
    return cvar;
  }
};

TEST_F(IndirectCvarTest, EveryReaderShowsTheMappedTarget) {
  const auto target = MakeTarget();
  for (const bool native : {true, false}) {
    const auto cvar = native ? Make(target, nullptr) : Make(nullptr, target);
    target->SetRequestedValue(4.5);
    double value = 0;
    EXPECT_EQ(cvar->GetAdaptedValue(&value), S_OK);
    EXPECT_EQ(value, 48);
    EXPECT_EQ(cvar->GetAdaptedValue(), 48);
    CComVariant variant;
    EXPECT_EQ(cvar->get_Value(&variant), S_OK);
    EXPECT_EQ(variant.dblVal, 48);
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen), L"48 V");
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemote), L"48 V");
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringAutomation), L"48");
    EXPECT_EQ(cvar->GetAdaptedValueNorm(&value), S_OK);
    EXPECT_EQ(value, 0.524);
    EXPECT_NE(TextOf(*cvar, &IVorCvar::get_Signature).find(L",Adapt,48,"), std::wstring::npos);
    int isDefault = -1;
    EXPECT_EQ(cvar->IsDefault(&isDefault), S_OK);
    EXPECT_EQ(isDefault, 0);
    target->SetRequestedValue(2);
    EXPECT_EQ(cvar->IsDefault(&isDefault), S_OK);
    EXPECT_EQ(isDefault, 1);
    EXPECT_EQ(cvar->IsDefault(nullptr), E_POINTER);
    cvar->CleanUp();
  }
}

TEST_F(IndirectCvarTest, InitializeNeverWritesToTheTarget) {
  const auto target = MakeTarget();
  target->SetRequestedValue(7);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(target->AttachCvarEventSink(listener), S_OK);
  const auto cvar = Make(target, target);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(target->GetRequested(), 7);
  EXPECT_EQ(cvar->ReplicationFlags(), REPLICATE_VALUE | REPLICATE_REQUESTED);
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetGuiHints), L"knob");
  cvar->CleanUp();
}

TEST_F(IndirectCvarTest, EveryWriterWritesTheMappedTarget) {
  const auto target = MakeTarget();
  const auto cvar = Make(nullptr, target);
  EXPECT_EQ(cvar->SetRequestedValue(53), S_OK);
  EXPECT_EQ(target->GetRequested(), 5);
  EXPECT_EQ(cvar->put_Value(CComVariant(33)), S_OK);
  EXPECT_EQ(target->GetRequested(), 3);
  EXPECT_EQ(cvar->SetRequestedValueFromStringRemote(L"43"), S_OK);
  EXPECT_EQ(target->GetRequested(), 4);
  EXPECT_EQ(cvar->Increment(10), S_OK);  // 43 + 10 x 1
  EXPECT_EQ(target->GetRequested(), 5);
  EXPECT_EQ(cvar->SetToMin(), S_OK);
  EXPECT_EQ(target->GetRequested(), -100.3);
  EXPECT_EQ(cvar->SetToDefault(), S_OK);
  EXPECT_EQ(target->GetRequested(), 2);
  EXPECT_EQ(cvar->GetRequested(), 23) << "its own request stays that of Initialize";
  cvar->CleanUp();
}

TEST_F(IndirectCvarTest, TheResultIsThatOfTheTarget) {
  const auto target = MakeTarget();
  const auto cvar = Make(target, nullptr);
  target->SetReadOnly(1);
  EXPECT_EQ(cvar->SetRequestedValue(53), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetRequestedValue(53, true), S_OK);
  EXPECT_EQ(target->GetRequested(), 5);
  EXPECT_EQ(cvar->SetRequestedValue(HUGE_VAL), E_INVALIDARG);
  cvar->CleanUp();
}

TEST_F(IndirectCvarTest, TheNativeTargetGoesBeforeTheInterface) {
  const auto native = MakeTarget();
  const auto other = MakeTarget();
  const auto cvar = Make(native, other);
  native->SetRequestedValue(6);
  EXPECT_EQ(cvar->GetAdaptedValue(), 63);
  EXPECT_EQ(cvar->SetRequestedValue(83), S_OK);
  EXPECT_EQ(native->GetRequested(), 8);
  EXPECT_EQ(other->GetRequested(), 2);
  cvar->CleanUp();
}

TEST_F(IndirectCvarTest, ChangesOfEitherTargetArePassedOn) {
  const auto native = MakeTarget();
  const auto other = MakeTarget();
  const auto cvar = Make(native, other);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  native->SetRequestedValue(6);
  other->SetMaxValue(50);
  EXPECT_EQ(cvar->SetRequestedValue(13), S_OK);
  EXPECT_EQ(listener->TakeMasks(), (Masks{kRequestedAndValue, NOTIFY_RANGE, kRequestedAndValue}));
  cvar->CleanUp();
}

TEST_F(IndirectCvarTest, OneCvarAsBothTargetsIsHeardOnce) {
  const auto target = MakeTarget();
  const auto cvar = Make(target, target);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  target->SetRequestedValue(6);
  EXPECT_EQ(listener->TakeMasks(), (Masks{kRequestedAndValue}));
  cvar->CleanUp();
  long sinks = -1;
  EXPECT_EQ(target->get_EventSinkCount(&sinks), S_OK);
  EXPECT_EQ(sinks, 0);
}

TEST_F(IndirectCvarTest, AnotherSourceIsReplicatedAsADoubleDoes) {
  const auto target = MakeTarget();
  const auto source = MakeTarget();
  const auto cvar = Make(target, nullptr);
  source->SetRequestedValue(43);
  EXPECT_EQ(cvar->OnCvarNotify(source, NOTIFY_REQUESTED), S_OK);
  EXPECT_EQ(target->GetRequested(), 4);
  cvar->CleanUp();
}

TEST_F(IndirectCvarTest, WithoutTargetItShowsTheOffsetAndTakesEveryRequest) {
  const auto cvar = Make(nullptr, nullptr);
  EXPECT_EQ(cvar->GetAdaptedValue(), 3);
  EXPECT_EQ(cvar->SetRequestedValue(53), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 3);
}

TEST_F(IndirectCvarTest, CleanUpForgetsAndReleasesTheTargets) {
  const auto target = MakeTarget();
  const auto cvar = Make(target, target);
  cvar->CleanUp();
  EXPECT_EQ(cvar->GetAdaptedValue(), 3);
  EXPECT_EQ(cvar->SetRequestedValue(53), S_OK);
  EXPECT_EQ(target->GetRequested(), 2);
  cvar->CleanUp();
}

TEST_F(IndirectCvarTest, AScaleOfZeroCannotBeWritten) {
  const auto target = MakeTarget();
  const auto cvar = CvarObject<CCvarDoubleIndirect>::Create();
  cvar->Initialize(CComBSTR(L"Flat"), target, nullptr, 0, 3, 3, 0, 10, 1, CComBSTR(), CVARFLAGS(0),
                   CComBSTR());
  EXPECT_EQ(cvar->GetAdaptedValue(), 3);
  EXPECT_EQ(cvar->SetRequestedValue(5), E_INVALIDARG);  // the target refuses an infinity
  EXPECT_EQ(target->GetRequested(), 2);
  cvar->CleanUp();
}

}  // namespace
