#include "CCvarColor.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "CvarObject.h"
#include "LiveCvars.h"
#include "ReadProperties.h"
#include "ReadText.h"
#include "RecordingListener.h"

namespace {

using cvars::test::RecordingListener;
using cvars::test::TextOf;
using Masks = std::vector<NOTIFYTYPE>;
using Color = CComPtr<CvarObject<CCvarColor>>;

constexpr CVARREPLICATIONFLAGS kDefaultReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;
constexpr NOTIFYTYPE kRequestedAndValue = NOTIFY_REQUESTED | NOTIFY_VALUE;
constexpr int kUntouched = 77;
constexpr int kWhite = 0xFFFFFF;

Color MakeColor(int defaultValue = 0, CVARFLAGS flags = CVARFLAGS(0)) {
  Color cvar = CvarObject<CCvarColor>::Create();
  cvar->Initialize(L"Trace Color", defaultValue, flags, nullptr, 0, kDefaultReplication);
  return cvar;
}

CComPtr<RecordingListener> Listen(const Color& cvar) {
  auto listener = RecordingListener::Create();
  EXPECT_EQ(S_OK, cvar->AttachCvarEventSink(listener));
  return listener;
}

int Adapted(const Color& cvar) {
  int value = kUntouched;
  EXPECT_EQ(S_OK, cvar->GetAdaptedValue(&value));
  return value;
}
int Requested(const Color& cvar) {
  int value = kUntouched;
  EXPECT_EQ(S_OK, cvar->GetRequestedValue(&value));
  return value;
}

using ColorTest = cvars::test::CvarTest;

TEST_F(ColorTest, ANewOneTakesEvery24BitColor) {
  const Color cvar = CvarObject<CCvarColor>::Create();
  int bound = kUntouched;
  EXPECT_EQ(S_OK, cvar->GetMin(&bound));
  EXPECT_EQ(0, bound);
  EXPECT_EQ(S_OK, cvar->GetMax(&bound));
  EXPECT_EQ(kWhite, bound);
  EXPECT_EQ(L"From 0 to 16777215", TextOf(*cvar, &IVorCvar::get_Range));
  EXPECT_EQ(L"From 0 to 16777215", TextOf(*cvar, &IVorCvar::get_RangeStringRemote));
  EXPECT_EQ(L"000000..ffffff", TextOf(*cvar, &IVorCvarColor::GetRangeStringRemote));
  EXPECT_EQ(0, Adapted(cvar));
}

TEST_F(ColorTest, InitializeSetsEverythingAndTellsNobody) {
  const Color cvar = CvarObject<CCvarColor>::Create();
  const auto listener = Listen(cvar);
  cvar->Initialize(L"Color|trace color", 0x123456, CVARFLAG_READONLY, L"picker", 4,
                   REPLICATE_FLAGS);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(L"Color", TextOf(*cvar, &IVorCvar::get_Type));
  EXPECT_EQ(L"TRACE_COLOR", TextOf(*cvar, &IVorCvar::get_NameRemote));
  EXPECT_EQ(L"picker", TextOf(*cvar, &IVorCvar::GetGuiHints));
  EXPECT_EQ(CVARFLAG_READONLY, cvar->Flags());
  EXPECT_EQ(REPLICATE_FLAGS, cvar->ReplicationFlags());
  unsigned int helpId = 0;
  EXPECT_EQ(S_OK, cvar->get_HelpStringID(&helpId));
  EXPECT_EQ(4u, helpId);
  int value = 0;
  EXPECT_EQ(S_OK, cvar->GetDefaultValue(&value));
  EXPECT_EQ(0x123456, value);
  EXPECT_EQ(0x123456, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->ForceNotification(NOTIFY_FLAGS));
  EXPECT_EQ(Masks{NOTIFY_FLAGS}, listener->TakeMasks());
}

TEST_F(ColorTest, RequestsAreClampedAndToldOnce) {
  const Color cvar = MakeColor();
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(0x1000000));
  EXPECT_EQ(kWhite, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(0x1000000));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(kWhite));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(-1));
  EXPECT_EQ(0, Adapted(cvar));
  EXPECT_EQ(-1, Requested(cvar));
  EXPECT_EQ((Masks{kRequestedAndValue, NOTIFY_REQUESTED, kRequestedAndValue}),
            listener->TakeMasks());
}

TEST_F(ColorTest, ReadOnlyRefusesEveryRequest) {
  const Color cvar = MakeColor(5, CVARFLAG_READONLY);
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetRequestedValue(1));
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetRequestedValueFromString(L"ff"));
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetRequestedValueNorm(1.0));
  EXPECT_EQ(E_ACCESSDENIED, cvar->put_Value(CComVariant(1)));
  EXPECT_EQ(E_ACCESSDENIED, cvar->Increment(1));
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetToDefault());
  EXPECT_EQ(5, Requested(cvar));
}

TEST_F(ColorTest, HexadecimalTextIsBlueGreenRed) {
  const Color cvar = MakeColor();
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(L"ff0000"));
  EXPECT_EQ(0xFF0000, Requested(cvar));
  EXPECT_EQ(L"RGB(0,0,255)", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringAutomation));
  EXPECT_EQ(L"ff0000", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemote));
  EXPECT_EQ(L"ff0000", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen));
}

TEST_F(ColorTest, TextsHaveSixDigitsAndDecimalParts) {
  const Color cvar = MakeColor(0x00AB10);
  EXPECT_EQ(L"00ab10", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemote));
  EXPECT_EQ(L"RGB(16,171,0)", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringAutomation));
}

struct TextCase {
  const char* name;
  const wchar_t* text;
  HRESULT result;
  int requested;
};

class ColorTextTest : public testing::TestWithParam<TextCase> {};

TEST_P(ColorTextTest, Requests) {
  const Color cvar = MakeColor(7);
  EXPECT_EQ(GetParam().result, cvar->SetRequestedValueFromString(GetParam().text));
  EXPECT_EQ(GetParam().requested, Requested(cvar));
}

constexpr TextCase kTextCases[] = {
    {"AnyCase", L"00FfaA", S_OK, 0x00FFAA},
    {"Prefix", L"0x10", S_OK, 16},
    {"Blanks", L"  1f rest", S_OK, 31},
    {"Negative", L"-1", S_OK, -1},
    {"LongRunsKeepTheLowBits", L"100000002", S_OK, 2},
    {"NoDigit", L"green", E_INVALIDARG, 7},
    {"PrefixAlone", L"0x", E_INVALIDARG, 7},
    {"Empty", L"", E_INVALIDARG, 7},
    {"Null", nullptr, E_INVALIDARG, 7},
};
INSTANTIATE_TEST_SUITE_P(Table, ColorTextTest, testing::ValuesIn(kTextCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(ColorTest, TheValueIsAnInteger) {
  const Color cvar = MakeColor(3);
  CComVariant value(L"old");
  EXPECT_EQ(S_OK, cvar->get_Value(&value));
  EXPECT_EQ(VT_I4, value.vt);
  EXPECT_EQ(3, value.lVal);
  EXPECT_EQ(S_OK, cvar->put_Value(CComVariant(L"255")));
  EXPECT_EQ(255, Requested(cvar));
  EXPECT_EQ(S_OK, cvar->put_Value(CComVariant(16.4)));
  EXPECT_EQ(16, Requested(cvar));
  EXPECT_EQ(DISP_E_TYPEMISMATCH, cvar->put_Value(CComVariant(L"ff")));
  EXPECT_EQ(DISP_E_OVERFLOW, cvar->put_Value(CComVariant(1e10)));
  EXPECT_EQ(16, Requested(cvar));
  EXPECT_EQ(S_OK, cvar->GetRequestedVariantValue(&value));
  EXPECT_EQ(16, value.lVal);
}

TEST_F(ColorTest, TheNormIsThePositionInTheRange) {
  const Color cvar = MakeColor(kWhite);
  double position = 5;
  EXPECT_EQ(S_OK, cvar->GetAdaptedValueNorm(&position));
  EXPECT_EQ(1.0, position);
  EXPECT_EQ(S_OK, cvar->SetRequestedValueNorm(0.5));
  EXPECT_EQ(8388608, Requested(cvar));  // floor(8388607.5 + 0.5)
  EXPECT_EQ(S_OK, cvar->SetRequestedValueNorm(1e300));
  EXPECT_EQ(std::numeric_limits<int>::max(), Requested(cvar));
  EXPECT_EQ(E_INVALIDARG, cvar->SetRequestedValueNorm(std::numeric_limits<double>::infinity()));
  EXPECT_EQ(E_INVALIDARG, cvar->SetRequestedValueNorm(std::numeric_limits<double>::quiet_NaN()));
}

TEST_F(ColorTest, IncrementAddsToThePackedNumberWhichIsMeant) {
  const Color cvar = MakeColor(0x0000FF);
  EXPECT_EQ(S_OK, cvar->Increment(1));
  EXPECT_EQ(0x000100, Requested(cvar));
  EXPECT_EQ(S_OK, cvar->SetFlags(CVARFLAG_REVERSEINCREMENT, true) ? S_OK : S_FALSE);
  EXPECT_EQ(S_OK, cvar->Increment(2));
  EXPECT_EQ(0x0000FE, Requested(cvar));
}

TEST_F(ColorTest, IncrementStartsAtTheAdaptedValueAndIsClamped) {
  const Color cvar = MakeColor();
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(0x2000000));
  EXPECT_EQ(S_OK, cvar->Increment(-1));
  EXPECT_EQ(kWhite - 1, Requested(cvar));
  EXPECT_EQ(S_OK, cvar->Increment(std::numeric_limits<int>::max()));
  EXPECT_EQ(std::numeric_limits<int>::max(), Requested(cvar));
  EXPECT_EQ(kWhite, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->Increment(std::numeric_limits<int>::min()));
  EXPECT_EQ(0, Adapted(cvar));
}

TEST_F(ColorTest, SetToDefaultRequestsTheDefault) {
  const Color cvar = MakeColor(9);
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_FALSE, cvar->SetDefaultValue(9));
  EXPECT_EQ(S_OK, cvar->SetDefaultValue(10));
  EXPECT_EQ(Masks{NOTIFY_ATTRIBUTES}, listener->TakeMasks());
  EXPECT_EQ(S_OK, cvar->SetToDefault());
  EXPECT_EQ(10, Adapted(cvar));
}

TEST_F(ColorTest, TheSignatureHasNoRequestWhichIsMeant) {
  const Color cvar = MakeColor(0xAB);
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(0xCD));
  EXPECT_EQ(L"Type,Color,Adapt,0000cd,Default,0000ab,Flags,-,Range,0,16777215",
            TextOf(*cvar, &IVorCvar::get_Signature));
}

TEST_F(ColorTest, ANegativeDefaultHasEightDigits) {
  EXPECT_EQ(L"Type,Color,Adapt,000000,Default,ffffffff,Flags,-,Range,0,16777215",
            TextOf(*MakeColor(-1), &IVorCvar::get_Signature));
}

TEST_F(ColorTest, PropertiesAddTheTriple) {
  const Color cvar = MakeColor(3);
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(-4));
  EXPECT_EQ(cvars::test::OwnPropertiesOf(*cvar),
            (cvars::test::Properties{{L"AdaptedValue", VT_I4, L"0"},
                                     {L"Default", VT_I4, L"3"},
                                     {L"RequestedValue", VT_I4, L"-4"}}));
}

TEST_F(ColorTest, NullPointersAreRefused) {
  const Color cvar = MakeColor();
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValue(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetDefaultValue(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetRequestedValue(static_cast<int*>(nullptr)));
  EXPECT_EQ(E_POINTER, cvar->GetMin(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetMax(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetRangeStringRemote(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_Range(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValueStringScreen(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValueStringRemote(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValueStringAutomation(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValueNorm(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_Signature(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_Value(nullptr));
}

TEST_F(ColorTest, AReplicaFollows) {
  const Color source = MakeColor();
  const Color replica = MakeColor();
  EXPECT_EQ(S_OK, source->SetRequestedValue(0x445566));
  EXPECT_EQ(S_OK, replica->OnCvarNotify(source, kRequestedAndValue));
  EXPECT_EQ(0x445566, Adapted(replica));
}

}  // namespace
