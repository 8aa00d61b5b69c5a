#include "CCvarBool.h"

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
using Bool = CComPtr<CvarObject<CCvarBool>>;

constexpr CVARREPLICATIONFLAGS kDefaultReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;
constexpr NOTIFYTYPE kRequestedAndValue = NOTIFY_REQUESTED | NOTIFY_VALUE;
constexpr NOTIFYTYPE kRangeAndValue = NOTIFY_RANGE | NOTIFY_VALUE;
constexpr int kUntouched = 77;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Bool MakeBool(const wchar_t* values = L"Off,On", int defaultValue = 0,
              CVARFLAGS flags = CVARFLAGS(0)) {
  Bool cvar = CvarObject<CCvarBool>::Create();
  cvar->Initialize(L"Average", values, defaultValue, flags, nullptr, 0, kDefaultReplication);
  return cvar;
}

CComPtr<RecordingListener> Listen(const Bool& cvar) {
  auto listener = RecordingListener::Create();
  EXPECT_EQ(S_OK, cvar->AttachCvarEventSink(listener));
  return listener;
}

int Adapted(const Bool& cvar) {
  int value = kUntouched;
  EXPECT_EQ(S_OK, cvar->GetAdaptedValue(&value));
  return value;
}
int Requested(const Bool& cvar) {
  int value = kUntouched;
  EXPECT_EQ(S_OK, cvar->GetRequestedValue(&value));
  return value;
}

using BoolTest = cvars::test::CvarTest;

TEST_F(BoolTest, InitializeSetsEverythingAndTellsNobody) {
  const Bool cvar = CvarObject<CCvarBool>::Create();
  const auto listener = Listen(cvar);
  cvar->Initialize(L"Average|avg on", L"Off,On", 1, CVARFLAG_GRAYED, L"check", 9, REPLICATE_FLAGS);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(L"Bool", TextOf(*cvar, &IVorCvar::get_Type));
  EXPECT_EQ(L"AVG_ON", TextOf(*cvar, &IVorCvar::get_NameRemote));
  EXPECT_EQ(L"check", TextOf(*cvar, &IVorCvar::GetGuiHints));
  EXPECT_EQ(CVARFLAG_GRAYED, cvar->Flags());
  EXPECT_EQ(REPLICATE_FLAGS, cvar->ReplicationFlags());
  unsigned int helpId = 0;
  EXPECT_EQ(S_OK, cvar->get_HelpStringID(&helpId));
  EXPECT_EQ(9u, helpId);
  EXPECT_EQ(1, Adapted(cvar));
  EXPECT_EQ(1, Requested(cvar));
  int value = 0;
  EXPECT_EQ(S_OK, cvar->GetDefaultValue(&value));
  EXPECT_EQ(1, value);
  EXPECT_EQ(S_OK, cvar->ForceNotification(NOTIFY_FLAGS));
  EXPECT_EQ(Masks{NOTIFY_FLAGS}, listener->TakeMasks());
}

TEST_F(BoolTest, AReadOnlyOneHasItsDefault) {
  EXPECT_EQ(1, Adapted(MakeBool(L"Off,On", 1, CVARFLAG_READONLY)));
}

TEST_F(BoolTest, ScreenTextsAreAsGivenAndRemoteTextsUpperCased) {
  const Bool cvar = MakeBool();
  EXPECT_EQ(L"Off", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen));
  EXPECT_EQ(L"OFF", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemote));
  EXPECT_EQ(L"False", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringAutomation));
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(L"on"));
  EXPECT_EQ(L"On", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen));
  EXPECT_EQ(L"ON", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemote));
  EXPECT_EQ(L"ON", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemoteNoUnit));
  EXPECT_EQ(L"True", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringAutomation));
}

TEST_F(BoolTest, MissingTextsReadAsEmpty) {
  const Bool cvar = MakeBool(nullptr, 1);
  EXPECT_EQ(L"", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen));
  EXPECT_EQ(L"", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemote));
  const Bool one = MakeBool(L"Off", 1);
  EXPECT_EQ(L"", TextOf(*one, &IVorCvar::GetAdaptedValueStringScreen));
}

TEST_F(BoolTest, RequestsTellRequestAndValueOnce) {
  const Bool cvar = MakeBool();
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(1));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(1));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(-5));
  EXPECT_EQ(Masks{kRequestedAndValue}, listener->TakeMasks());
  EXPECT_EQ(1, Requested(cvar));
  EXPECT_EQ(S_OK, cvar->Clear());
  EXPECT_EQ(0, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->Set());
  int value = 0;
  EXPECT_EQ(S_OK, cvar->Get(&value));
  EXPECT_EQ(1, value);
}

TEST_F(BoolTest, ReadOnlyRefusesButUnknownAndKnownTextsAreNoError) {
  const Bool cvar = MakeBool(L"Off,On", 0, CVARFLAG_READONLY);
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetRequestedValue(1));
  EXPECT_EQ(E_ACCESSDENIED, cvar->Set());
  EXPECT_EQ(E_ACCESSDENIED, cvar->Clear());
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetToDefault());
  EXPECT_EQ(E_ACCESSDENIED, cvar->Increment(1));
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetRequestedValueNorm(1.0));
  EXPECT_EQ(E_ACCESSDENIED, cvar->put_Value(CComVariant(true)));
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(L"On"));
  EXPECT_EQ(0, Requested(cvar));
}

struct TextCase {
  const char* name;
  const wchar_t* values;
  const wchar_t* text;
  int before;
  int requested;
};

class BoolTextTest : public testing::TestWithParam<TextCase> {};

TEST_P(BoolTextTest, Requests) {
  const Bool cvar = MakeBool(GetParam().values, GetParam().before);
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(GetParam().text));
  EXPECT_EQ(GetParam().requested, Requested(cvar));
}

constexpr TextCase kTextCases[] = {
    {"OnInAnyCase", L"Off,On", L"oN", 0, 1},
    {"Off", L"Off,On", L"OFF", 1, 0},
    {"UnknownChangesNothing", L"Off,On", L"yes", 1, 1},
    {"PartChangesNothing", L"Off,On", L"O", 1, 1},
    {"NumberIsNoText", L"Off,On", L"1", 0, 0},
    {"NullIsNoText", L"Off,On", nullptr, 1, 1},
    {"BothStatesWithOneTextEndAtTrue", L"Same,Same", L"same", 0, 1},
    {"CaseBeyondAscii", L"aus,\u00e4n", L"\u00c4N", 0, 1},
};
INSTANTIATE_TEST_SUITE_P(Table, BoolTextTest, testing::ValuesIn(kTextCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(BoolTest, TheTextOfADisabledTrueIsNotLookedAt) {
  const Bool cvar = MakeBool(L"Off,On", 0);
  EXPECT_EQ(S_OK, cvar->Enable(1, false));
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(L"On"));
  EXPECT_EQ(0, Requested(cvar));
}

TEST_F(BoolTest, TheTextOfADisabledFalseIsRequestedAndAdapted) {
  const Bool cvar = MakeBool(L"Off,On", 1);
  EXPECT_EQ(S_OK, cvar->Enable(0, false));
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(L"Off"));
  EXPECT_EQ(0, Requested(cvar));
  EXPECT_EQ(1, Adapted(cvar));
  int adapted = 0;
  EXPECT_EQ(S_OK, cvar->get_IsValueAdapted(&adapted));
  EXPECT_EQ(1, adapted);
}

struct PutCase {
  const char* name;
  CComVariant value;
  HRESULT result;
  int before;
  int requested;
};

class BoolPutTest : public testing::TestWithParam<PutCase> {};

TEST_P(BoolPutTest, Requests) {
  const Bool cvar = MakeBool(L"Off,On", GetParam().before);
  EXPECT_EQ(GetParam().result, cvar->put_Value(GetParam().value));
  EXPECT_EQ(GetParam().requested, Requested(cvar));
}

const PutCase kPutCases[] = {
    {"True", CComVariant(true), S_OK, 0, 1},
    {"False", CComVariant(false), S_OK, 1, 0},
    {"Number", CComVariant(12), S_OK, 0, 1},
    {"RealNumber", CComVariant(0.25), S_OK, 0, 1},
    {"Zero", CComVariant(0), S_OK, 1, 0},
    {"Text", CComVariant(L"on"), S_OK, 0, 1},
    {"UnknownTextIsNoError", CComVariant(L"true"), S_OK, 0, 0},
    {"NullObject", CComVariant(static_cast<IUnknown*>(nullptr)), DISP_E_TYPEMISMATCH, 1, 1},
};
INSTANTIATE_TEST_SUITE_P(Table, BoolPutTest, testing::ValuesIn(kPutCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(BoolTest, ReadsAsAnInteger) {
  const Bool cvar = MakeBool(L"Off,On", 1);
  CComVariant value(L"old");
  EXPECT_EQ(S_OK, cvar->get_Value(&value));
  EXPECT_EQ(VT_I4, value.vt);
  EXPECT_EQ(1, value.lVal);
  EXPECT_EQ(S_OK, cvar->GetRequestedVariantValue(&value));
  EXPECT_EQ(VT_I4, value.vt);
  EXPECT_EQ(1, value.lVal);
}

TEST_F(BoolTest, TheRangeTextIsTheSameWhateverTheTexts) {
  for (const wchar_t* values : {L"Off,On", L"a,b", L""}) {
    const Bool cvar = MakeBool(values);
    EXPECT_EQ(L"0,-1 or false,true", TextOf(*cvar, &IVorCvar::get_Range));
    EXPECT_EQ(L"0,-1 or false,true", TextOf(*cvar, &IVorCvar::get_RangeStringScreen));
  }
}

TEST_F(BoolTest, TheNormIsZeroOrOne) {
  const Bool cvar = MakeBool();
  double position = 5;
  EXPECT_EQ(S_OK, cvar->GetAdaptedValueNorm(&position));
  EXPECT_EQ(0.0, position);
  EXPECT_EQ(S_OK, cvar->SetRequestedValueNorm(0.5));
  EXPECT_EQ(S_OK, cvar->GetAdaptedValueNorm(&position));
  EXPECT_EQ(1.0, position);
  EXPECT_EQ(S_OK, cvar->SetRequestedValueNorm(0.49));
  EXPECT_EQ(0, Adapted(cvar));
  EXPECT_EQ(E_INVALIDARG, cvar->SetRequestedValueNorm(kInfinity));
  EXPECT_EQ(E_INVALIDARG, cvar->SetRequestedValueNorm(std::numeric_limits<double>::quiet_NaN()));
}

TEST_F(BoolTest, TheNormOfANarrowRangeIsItsOneState) {
  const Bool cvar = MakeBool(L"Off,On", 0);
  EXPECT_EQ(S_OK, cvar->Enable(0, false));
  EXPECT_EQ(S_OK, cvar->SetRequestedValueNorm(0.0));
  EXPECT_EQ(1, Requested(cvar));
}

TEST_F(BoolTest, IncrementTogglesForEveryNumberButZero) {
  const Bool cvar = MakeBool(L"Off,On", 0, CVARFLAG_REVERSEINCREMENT);
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->Increment(0));
  EXPECT_TRUE(listener->masks.empty());
  for (const int steps : {1, -1, 2, std::numeric_limits<int>::min()}) {
    const int before = Adapted(cvar);
    EXPECT_EQ(S_OK, cvar->Increment(steps));
    EXPECT_EQ(1 - before, Adapted(cvar));
  }
}

TEST_F(BoolTest, SetToDefaultRequestsTheDefault) {
  const Bool cvar = MakeBool(L"Off,On", 0);
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_FALSE, cvar->SetDefaultValue(0));
  EXPECT_EQ(S_OK, cvar->SetDefaultValue(1));
  EXPECT_EQ(Masks{NOTIFY_ATTRIBUTES}, listener->TakeMasks());
  int isDefault = kUntouched;
  EXPECT_EQ(S_OK, cvar->IsDefault(&isDefault));
  EXPECT_EQ(0, isDefault);
  EXPECT_EQ(S_OK, cvar->SetToDefault());
  EXPECT_EQ(1, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->IsDefault(&isDefault));
  EXPECT_EQ(1, isDefault);
}

// Enabling

TEST_F(BoolTest, DisablingAStateLeavesTheOther) {
  const Bool cvar = MakeBool(L"Off,On", 0);
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->Enable(0, false));
  EXPECT_EQ(Masks{kRangeAndValue}, listener->TakeMasks());
  EXPECT_EQ(1, Adapted(cvar));
  EXPECT_EQ(0, Requested(cvar));
  EXPECT_EQ(S_FALSE, cvar->Enable(0, false));
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(S_OK, cvar->Enable(1, false));
  EXPECT_EQ(0, Adapted(cvar));
  int enabled = kUntouched;
  EXPECT_EQ(S_OK, cvar->IsEnabled(0, &enabled));
  EXPECT_EQ(1, enabled);
  EXPECT_EQ(S_OK, cvar->IsEnabled(1, &enabled));
  EXPECT_EQ(0, enabled);
  EXPECT_EQ(S_OK, cvar->Enable(1, true));
  EXPECT_EQ(S_FALSE, cvar->Enable(0, true));
  EXPECT_EQ(S_FALSE, cvar->Enable(1, true));
}

TEST_F(BoolTest, AStateIsNamedByNumberBooleanOrText) {
  int enabled = kUntouched;
  for (const CComVariant& state : {CComVariant(1), CComVariant(true), CComVariant(L"on"),
                                   CComVariant(1.0), CComVariant(static_cast<short>(1))}) {
    const Bool cvar = MakeBool(L"Off,On", 1);
    EXPECT_EQ(S_OK, cvar->Disable(state));
    EXPECT_EQ(0, Adapted(cvar));
    EXPECT_EQ(S_OK, cvar->IsEnabled(state, &enabled));
    EXPECT_EQ(0, enabled);
    EXPECT_EQ(S_OK, cvar->Enable(state));
    EXPECT_EQ(S_OK, cvar->IsEnabled(state, &enabled));
    EXPECT_EQ(1, enabled);
    EXPECT_EQ(1, Adapted(cvar));
  }
}

TEST_F(BoolTest, OtherStatesAreRefused) {
  const Bool cvar = MakeBool();
  int enabled = kUntouched;
  for (const int state : {-1, 2}) {
    EXPECT_EQ(E_INVALIDARG, cvar->Enable(state, true));
    EXPECT_EQ(E_INVALIDARG, cvar->Enable(state, false));
    EXPECT_EQ(E_INVALIDARG, cvar->IsEnabled(state, &enabled));
  }
  for (const CComVariant& state : {CComVariant(2), CComVariant(L"yes"), CComVariant(-1.0)}) {
    EXPECT_EQ(E_INVALIDARG, cvar->Enable(state));
    EXPECT_EQ(E_INVALIDARG, cvar->Disable(state));
    EXPECT_EQ(E_INVALIDARG, cvar->IsEnabled(state, &enabled));
  }
  EXPECT_EQ(kUntouched, enabled);
}

TEST_F(BoolTest, SteppingForwardFromTheTopWrapsToFalseEvenWhenThatIsDisabledWhichIsMeant) {
  const Bool cvar = MakeBool();
  EXPECT_EQ(1, cvar->NextValue(0));
  EXPECT_EQ(0, cvar->NextValue(1));
  EXPECT_EQ(1, cvar->PrevValue(0));
  EXPECT_EQ(0, cvar->PrevValue(1));
  EXPECT_EQ(S_OK, cvar->Enable(0, false));
  EXPECT_EQ(0, cvar->NextValue(1));
  EXPECT_EQ(1, cvar->PrevValue(1));
}

// Descriptions

TEST_F(BoolTest, TheSignatureShowsRemoteTexts) {
  const Bool cvar = MakeBool(L"Off,On", 1, CVARFLAG_HIDDEN);
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(0));
  EXPECT_EQ(L"Type,Bool,Request,OFF,Adapt,OFF,Default,ON,Flags,H,Range,OFF,ON",
            TextOf(*cvar, &IVorCvar::get_Signature));
  EXPECT_EQ(S_OK, cvar->Enable(0, false));
  EXPECT_EQ(L"Type,Bool,Request,OFF,Adapt,ON,Default,ON,Flags,H,Range,ON,ON",
            TextOf(*cvar, &IVorCvar::get_Signature));
}

TEST_F(BoolTest, PropertiesAddTheTriple) {
  const Bool cvar = MakeBool(L"Off,On", 1);
  EXPECT_EQ(S_OK, cvar->Enable(1, false));
  EXPECT_EQ(cvars::test::OwnPropertiesOf(*cvar),
            (cvars::test::Properties{{L"AdaptedValue", VT_I4, L"0"},
                                     {L"Default", VT_I4, L"1"},
                                     {L"RequestedValue", VT_I4, L"1"}}));
}

TEST_F(BoolTest, NullPointersAreRefused) {
  const Bool cvar = MakeBool();
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValue(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetDefaultValue(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetRequestedValue(static_cast<int*>(nullptr)));
  EXPECT_EQ(E_POINTER, cvar->Get(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValueStringScreen(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValueStringRemote(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValueStringAutomation(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValueNorm(nullptr));
  EXPECT_EQ(E_POINTER, cvar->IsDefault(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_IsValueAdapted(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_Range(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_Signature(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_Value(nullptr));
  EXPECT_EQ(E_POINTER, cvar->IsEnabled(CComVariant(5), nullptr));
  EXPECT_EQ(E_INVALIDARG, cvar->IsEnabled(0, nullptr));
}

TEST_F(BoolTest, AReplicaFollows) {
  const Bool source = MakeBool();
  const Bool replica = MakeBool(L"No,Yes");
  EXPECT_EQ(S_OK, source->Set());
  EXPECT_EQ(S_OK, replica->OnCvarNotify(source, kRequestedAndValue));
  EXPECT_EQ(L"Yes", TextOf(*replica, &IVorCvar::GetAdaptedValueStringScreen));
}

}  // namespace
