#include "EnumCvarTest.h"
#include "ReadProperties.h"

namespace {

using namespace cvars::test;

TEST(EnumRequestTest, TellsRequestAndValueAndNothingTheSecondTime) {
  const Enum cvar = MakeEnum(L"A,B,C");
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(2));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(2));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(9));
  EXPECT_EQ((Masks{kRequestedAndValue, NOTIFY_REQUESTED}), listener->TakeMasks());
  EXPECT_EQ(9, Requested(cvar));
  EXPECT_EQ(2, Adapted(cvar));
  int adapted = 0;
  EXPECT_EQ(S_OK, cvar->get_IsValueAdapted(&adapted));
  EXPECT_EQ(1, adapted);
}

TEST(EnumRequestTest, BelowTheListIsNoEntry) {
  const Enum cvar = MakeEnum(L"A,B");
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(-7));
  EXPECT_EQ(-1, Adapted(cvar));
}

TEST(EnumRequestTest, ReadOnlyRefusesUnlessForced) {
  const Enum cvar = MakeEnum(L"A,B", 0, CVARFLAG_READONLY);
  const auto listener = Listen(cvar);
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetRequestedValue(1));
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetRequestedValue(1, false));
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetRequestedValueFromString(L"B"));
  EXPECT_EQ(E_ACCESSDENIED, cvar->put_Value(CComVariant(L"B")));
  EXPECT_EQ(E_ACCESSDENIED, cvar->put_Value(CComVariant(1)));
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetRequestedValueNorm(1.0));
  EXPECT_EQ(E_ACCESSDENIED, cvar->Increment(1));
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetToDefault());
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(1, true));
  EXPECT_EQ(1, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(L"A", true));
  EXPECT_EQ(0, Adapted(cvar));
}

TEST(EnumRequestTest, WithTheKeepFlagADisabledEntryLeavesTheValue) {
  const Enum cvar = MakeEnum(L"A,B,C", 0, CVARFLAG_D);
  EXPECT_EQ(S_OK, cvar->Disable(2));
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(2));
  EXPECT_EQ(2, Requested(cvar));
  EXPECT_EQ(0, Adapted(cvar));
  EXPECT_EQ(Masks{NOTIFY_REQUESTED}, listener->TakeMasks());
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(99));
  EXPECT_EQ(0, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(1));
  EXPECT_EQ(1, Adapted(cvar));
}

TEST(EnumRequestTest, TextsMatchAnySpelling) {
  const Enum cvar = MakeEnum(L"Off,DC 50|Dc50|D50");
  for (const wchar_t* text : {L"dc 50", L"dC50", L"d50"}) {
    EXPECT_EQ(S_OK, cvar->SetRequestedValue(0));
    EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(text));
    EXPECT_EQ(1, Adapted(cvar));
  }
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromStringScreen(L"off"));
  EXPECT_EQ(0, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromStringRemote(L"D50"));
  EXPECT_EQ(1, Adapted(cvar));
}

TEST(EnumRequestTest, AnUnknownTextIsRefused) {
  const Enum cvar = MakeEnum(L"A");
  EXPECT_EQ(E_INVALIDARG, cvar->SetRequestedValueFromString(L"Q"));
  EXPECT_EQ(E_INVALIDARG, cvar->SetRequestedValueFromString(nullptr));
  EXPECT_EQ(E_INVALIDARG, cvar->SetRequestedValueFromString(L"undef"));
  EXPECT_EQ(0, Requested(cvar));
}

TEST(EnumPendingTextTest, TakesEffectWhenTheEntryComes) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(L"AC"));
  EXPECT_EQ(S_OK, cvar->AddValue(L"DC", 0, -1));
  EXPECT_EQ(-1, Adapted(cvar));
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->AddValue(L"ac", 0, -1));
  EXPECT_EQ(1, Adapted(cvar));
  EXPECT_EQ(1, Requested(cvar));
  EXPECT_EQ(Masks{kRangeAndValue}, listener->TakeMasks());
}

TEST(EnumPendingTextTest, IsTakenOnce) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(L"AC"));
  EXPECT_EQ(S_OK, cvar->AddValue(L"AC,DC", 0, -1));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(1));
  EXPECT_EQ(S_OK, cvar->AddValue(L"GND", 0, -1));
  EXPECT_EQ(1, Adapted(cvar));
}

TEST(EnumPendingTextTest, UndefIsNotKept) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(L"uNdEf"));
  EXPECT_EQ(S_OK, cvar->AddValue(L"undef", 0, -1));
  EXPECT_EQ(-4, Requested(cvar));
  EXPECT_EQ(-1, Adapted(cvar));
}

TEST(EnumPendingTextTest, ARequestedIndexForgetsIt) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(L"AC"));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(0));
  EXPECT_EQ(S_OK, cvar->AddValue(L"DC,AC", 0, -1));
  EXPECT_EQ(0, Adapted(cvar));
}

TEST(EnumValueTest, ReadsAsTheAutomationText) {
  const Enum cvar = MakeEnum(L"Off,DC 50|Dc50|D50", 1);
  CComVariant value(5);
  EXPECT_EQ(S_OK, cvar->get_Value(&value));
  ASSERT_EQ(VT_BSTR, value.vt);
  EXPECT_STREQ(L"Dc50", value.bstrVal);
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(-1));
  EXPECT_EQ(S_OK, cvar->get_Value(&value));
  ASSERT_EQ(VT_BSTR, value.vt);
  EXPECT_STREQ(L"", value.bstrVal);
}

TEST(EnumValueTest, IsWrittenAsTextOrIndex) {
  const Enum cvar = MakeEnum(L"A,B,7");
  EXPECT_EQ(S_OK, cvar->put_Value(CComVariant(L"b")));
  EXPECT_EQ(1, Requested(cvar));
  EXPECT_EQ(S_OK, cvar->put_Value(CComVariant(L"7")));
  EXPECT_EQ(2, Requested(cvar));
  EXPECT_EQ(S_OK, cvar->put_Value(CComVariant(0.6)));
  EXPECT_EQ(1, Requested(cvar));
  EXPECT_EQ(S_OK, cvar->put_Value(CComVariant(static_cast<unsigned char>(2))));
  EXPECT_EQ(2, Requested(cvar));
  EXPECT_EQ(E_INVALIDARG, cvar->put_Value(CComVariant(L"Q")));
  EXPECT_EQ(DISP_E_OVERFLOW, cvar->put_Value(CComVariant(5e10)));
  EXPECT_EQ(2, Requested(cvar));
}

TEST(EnumValueTest, ATextByReferenceIsAText) {
  const Enum cvar = MakeEnum(L"A,B");
  CComBSTR text(L"B");
  VARIANT reference{};
  reference.vt = VT_BYREF | VT_BSTR;
  reference.pbstrVal = &text.m_str;
  EXPECT_EQ(S_OK, cvar->put_Value(reference));
  EXPECT_EQ(1, Requested(cvar));
}

TEST(EnumValueTest, TheRequestIsAnIndex) {
  const Enum cvar = MakeEnum(L"A");
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(9));
  CComVariant value;
  EXPECT_EQ(S_OK, cvar->GetRequestedVariantValue(&value));
  EXPECT_EQ(VT_I4, value.vt);
  EXPECT_EQ(9, value.lVal);
}

TEST(EnumValueTest, TheDefaultIsRequestedAgain) {
  const Enum cvar = MakeEnum(L"A,B,C", 1);
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_FALSE, cvar->SetDefaultValue(1));
  EXPECT_EQ(S_OK, cvar->SetDefaultValue(2));
  EXPECT_EQ(Masks{NOTIFY_ATTRIBUTES}, listener->TakeMasks());
  int isDefault = kUntouched;
  EXPECT_EQ(S_OK, cvar->IsDefault(&isDefault));
  EXPECT_EQ(0, isDefault);
  EXPECT_EQ(S_OK, cvar->SetToDefault());
  EXPECT_EQ(2, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->IsDefault(&isDefault));
  EXPECT_EQ(1, isDefault);
}

TEST(EnumValueTest, HasNoEndsToGoTo) {
  const Enum cvar = MakeEnum(L"A");
  EXPECT_EQ(E_NOTIMPL, cvar->SetToMin());
  EXPECT_EQ(E_NOTIMPL, cvar->SetToMax());
}

TEST(EnumNormTest, IsTheIndexPartOfTheLast) {
  const Enum cvar = MakeEnum(L"A,B,C,D,E", 1);
  double position = 0;
  EXPECT_EQ(S_OK, cvar->GetAdaptedValueNorm(&position));
  EXPECT_EQ(0.25, position);
}

TEST(EnumNormTest, AnEmptyListDividesByOne) {
  const Enum cvar = MakeEnum(L"");
  double position = 0;
  EXPECT_EQ(S_OK, cvar->GetAdaptedValueNorm(&position));
  EXPECT_EQ(-1.0, position);
}

TEST(EnumNormTest, ASingleEntryGivesNotANumberWhichIsMeant) {
  const Enum cvar = MakeEnum(L"A");
  double position = 0;
  EXPECT_EQ(S_OK, cvar->GetAdaptedValueNorm(&position));
  EXPECT_TRUE(std::isnan(position));
}

struct NormCase {
  const char* name;
  double position;
  HRESULT result;
  int requested;
};

class EnumSetNormTest : public testing::TestWithParam<NormCase> {};

TEST_P(EnumSetNormTest, RequestsAnIndex) {
  const Enum cvar = MakeEnum(L"A,B,C,D,E", 3);
  EXPECT_EQ(GetParam().result, cvar->SetRequestedValueNorm(GetParam().position));
  EXPECT_EQ(GetParam().requested, Requested(cvar));
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr NormCase kNormCases[] = {
    {"First", 0.0, S_OK, 0},
    {"Last", 1.0, S_OK, 4},
    {"TieGoesUp", 0.125, S_OK, 1},
    {"BelowTheTie", 0.12, S_OK, 0},
    {"Above", 2.0, S_OK, 8},
    {"Below", -1.0, S_OK, -4},
    {"FarAboveIsTheLargestInteger", 1e300, S_OK, std::numeric_limits<int>::max()},
    {"FarBelowIsTheSmallestInteger", -1e300, S_OK, std::numeric_limits<int>::min()},
    {"Infinity", kInfinity, E_INVALIDARG, 3},
    {"NotANumber", std::numeric_limits<double>::quiet_NaN(), E_INVALIDARG, 3},
};
INSTANTIATE_TEST_SUITE_P(Table, EnumSetNormTest, testing::ValuesIn(kNormCases),
                         [](const auto& row) { return std::string(row.param.name); });

// Stepping

TEST(EnumIncrementTest, TheLastStaysWithoutWrapping) {
  const Enum cvar = MakeEnum(L"A,B,C", 2);
  EXPECT_EQ(S_OK, cvar->Increment(1));
  EXPECT_EQ(2, Adapted(cvar));
  EXPECT_TRUE(cvar->SetWrapModeOn(1));
  EXPECT_EQ(S_OK, cvar->Increment(1));
  EXPECT_EQ(0, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->Increment(-1));
  EXPECT_EQ(2, Adapted(cvar));
}

TEST(EnumIncrementTest, DisabledEntriesDoNotCount) {
  const Enum cvar = MakeEnum(L"A,B,C,D");
  EXPECT_EQ(S_OK, cvar->Disable(1));
  EXPECT_EQ(S_OK, cvar->Increment(2));
  EXPECT_EQ(3, Requested(cvar));
}

TEST(EnumIncrementTest, StartsFromTheAdaptedEntry) {
  const Enum cvar = MakeEnum(L"A,B,C");
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(9));
  EXPECT_EQ(S_OK, cvar->Increment(-1));
  EXPECT_EQ(1, Requested(cvar));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(9));
  EXPECT_EQ(S_OK, cvar->Increment(0));
  EXPECT_EQ(2, Requested(cvar));
}

TEST(EnumIncrementTest, TheReverseFlagTurnsTheDirection) {
  const Enum cvar = MakeEnum(L"A,B,C", 1, CVARFLAG_REVERSEINCREMENT);
  EXPECT_EQ(S_OK, cvar->Increment(1));
  EXPECT_EQ(0, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->Increment(std::numeric_limits<int>::min()));
  EXPECT_EQ(2, Adapted(cvar));
}

TEST(EnumIncrementTest, AnEmptyListKeepsTheRequest) {
  const Enum cvar = MakeEnum(L"", 3);
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->Increment(1));
  EXPECT_EQ(3, Requested(cvar));
  EXPECT_TRUE(listener->masks.empty());
}

// Texts about the list

TEST(EnumRangeTextTest, ListsTheEnabledEntries) {
  const Enum cvar = MakeEnum(L"Off,DC 50|Dc50|D50,G N D");
  EXPECT_EQ(S_OK, cvar->Disable(0));
  EXPECT_EQ(L"DC 50|Dc50|D50,G N D|GND|GND", Text(cvar, &CCvarEnum::get_Range));
  EXPECT_EQ(L"DC 50|Dc50|D50,G N D|GND|GND", Text(cvar, &CCvarEnum::GetFullRangeString, 0));
  EXPECT_EQ(L"Off|Off|OFF,DC 50|Dc50|D50,G N D|GND|GND",
            Text(cvar, &CCvarEnum::GetFullRangeString, 1));
  EXPECT_EQ(L"DC 50,G N D", Text(cvar, &CCvarEnum::get_RangeStringScreen));
  EXPECT_EQ(L"Dc50,GND", Text(cvar, &CCvarEnum::get_RangeStringAutomation));
  EXPECT_EQ(L"D50,GND", Text(cvar, &CCvarEnum::get_RangeStringRemote));
  EXPECT_EQ(L"DC 50,G N D", Text(cvar, &CCvarEnum::GetRangeStringScreen));
  EXPECT_EQ(L"D50,GND", Text(cvar, &CCvarEnum::GetRangeStringRemote));
}

TEST(EnumSignatureTest, ShowsTheTripleAndEveryEntry) {
  const Enum cvar = MakeEnum(L"A,B b,C", 1, CVARFLAG_WRAPPING);
  EXPECT_EQ(S_OK, cvar->Disable(2));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(2));
  EXPECT_EQ(
      L"Type,Enum,Request,C|C|C,Adapt,A|A|A,Default,B b|Bb|BB,Flags,W,Range,"
      L"A|A|A,B b|Bb|BB,(C|C|C)",
      Text(cvar, &CCvarEnum::get_Signature));
}

TEST(EnumSignatureTest, AnIndexWithoutEntryIsEmpty) {
  EXPECT_EQ(L"Type,Enum,Request,,Adapt,,Default,,Flags,-,Range,",
            Text(CvarObject<CCvarEnum>::Create(), &CCvarEnum::get_Signature));
}

TEST(EnumPropertiesTest, AddsItsOwnToTheCommonOnes) {
  const Enum cvar = MakeEnum(L"A,B b", 1);
  EXPECT_EQ(cvars::test::OwnPropertiesOf(*cvar),
            (cvars::test::Properties{{L"AdaptedValue", VT_I4, L"1"},
                                     {L"AdaptedValueStringScreen", VT_BSTR, L"B b"},
                                     {L"Default", VT_I4, L"1"},
                                     {L"Range", VT_BSTR, L"A|A|A,B b|Bb|BB"},
                                     {L"RequestedValue", VT_I4, L"1"}}));
}

// Pointers

TEST(EnumNullPointerTest, IsRefusedBeforeAnythingElse) {
  const Enum cvar = MakeEnum(L"A");
  constexpr int kNoEntry = 5;
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValue(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetDefaultValue(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetRequestedValue(static_cast<int*>(nullptr)));
  EXPECT_EQ(E_POINTER, cvar->GetNumberOfValueStates(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetMin(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetMax(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetValueStringScreen(kNoEntry, nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetValueStringAutomation(kNoEntry, nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetValueStringRemote(kNoEntry, nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetIndexOfStringName(L"A", nullptr));
  EXPECT_EQ(E_POINTER, cvar->IsEnabled(kNoEntry, nullptr));
  EXPECT_EQ(E_POINTER, cvar->IsEnabled(CComVariant(L"Q"), nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetVariant(kNoEntry, nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetEnumIUnknown(kNoEntry, nullptr));
  unsigned long number = 0;
  EXPECT_EQ(E_POINTER, cvar->GetEnumValueIconInfo(kNoEntry, nullptr, &number));
  EXPECT_EQ(E_POINTER, cvar->GetEnumValueIconInfo(kNoEntry, &number, nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetExtraEnumData(kNoEntry, EXTRAENUMDATA_VARIANT, nullptr));
  EXPECT_EQ(E_POINTER, cvar->IsWrapModeOn(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetRangeStringScreen(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetRangeStringRemote(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetFullRangeString(0, nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_Range(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_RangeStringScreen(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_RangeStringRemote(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_RangeStringAutomation(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_Signature(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_Value(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValueNorm(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValueStringScreen(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValueStringRemote(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetRequestedVariantValue(nullptr));
}

TEST(EnumEntryTextTest, NoSuchEntryLeavesTheOutputAlone) {
  const Enum cvar = MakeEnum(L"A");
  wchar_t mark[] = L"mark";
  for (const int index : {-1, 1}) {
    BSTR text = mark;
    EXPECT_EQ(E_INVALIDARG, cvar->GetValueStringScreen(index, &text));
    EXPECT_EQ(E_INVALIDARG, cvar->GetValueStringAutomation(index, &text));
    EXPECT_EQ(E_INVALIDARG, cvar->GetValueStringRemote(index, &text));
    EXPECT_EQ(mark, text);
  }
}

// Scripts

CComVariant Invoke(const Enum& cvar, const wchar_t* name, WORD kind,
                   std::vector<CComVariant> lastFirst, HRESULT expected = S_OK) {
  std::wstring copy = name;
  wchar_t* names[] = {copy.data()};
  DISPID id = DISPID_UNKNOWN;
  EXPECT_EQ(S_OK, cvar->GetIDsOfNames(IID_NULL, names, 1, LOCALE_ENGLISH_US, &id));
  std::vector<VARIANT> arguments(lastFirst.begin(), lastFirst.end());
  DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
  CComVariant result;
  EXPECT_EQ(expected, cvar->Invoke(id, IID_NULL, LOCALE_ENGLISH_US, kind, &parameters, &result,
                                   nullptr, nullptr));
  return result;
}

TEST(EnumScriptTest, MembersAreCalledByName) {
  const Enum cvar = MakeEnum(L"Off,DC 50|Dc50|D50", 1);
  EXPECT_STREQ(L"Dc50", Invoke(cvar, L"value", DISPATCH_PROPERTYGET, {}).bstrVal);
  EXPECT_EQ(1, Invoke(cvar, L"Index", DISPATCH_PROPERTYGET, {}).lVal);
  EXPECT_EQ(1, Invoke(cvar, L"Default", DISPATCH_PROPERTYGET, {}).lVal);
  EXPECT_EQ(2, Invoke(cvar, L"Count", DISPATCH_PROPERTYGET, {}).lVal);
  EXPECT_EQ(0, Invoke(cvar, L"Min", DISPATCH_PROPERTYGET, {}).lVal);
  EXPECT_EQ(1, Invoke(cvar, L"Max", DISPATCH_PROPERTYGET, {}).lVal);
  EXPECT_EQ(0, Invoke(cvar, L"IsWrapModeOn", DISPATCH_PROPERTYGET, {}).lVal);
  EXPECT_STREQ(L"Off", Invoke(cvar, L"ValueStringScreen", DISPATCH_METHOD, {0}).bstrVal);
  EXPECT_STREQ(L"Dc50", Invoke(cvar, L"ValueStringAutomation", DISPATCH_METHOD, {1}).bstrVal);
  EXPECT_STREQ(L"D50", Invoke(cvar, L"ValueStringRemote", DISPATCH_METHOD, {1}).bstrVal);
  EXPECT_EQ(1, Invoke(cvar, L"IndexOf", DISPATCH_METHOD, {L"d50"}).lVal);
  EXPECT_STREQ(L"Off|Off|OFF,DC 50|Dc50|D50",
               Invoke(cvar, L"FullRange", DISPATCH_METHOD, {1}).bstrVal);
  Invoke(cvar, L"Disable", DISPATCH_METHOD, {L"D50"});
  EXPECT_EQ(0, Invoke(cvar, L"IsEnabled", DISPATCH_METHOD, {1}).lVal);
  EXPECT_EQ(0, Adapted(cvar));
  Invoke(cvar, L"Enable", DISPATCH_METHOD, {1});
  EXPECT_EQ(1, Adapted(cvar));
  Invoke(cvar, L"Index", DISPATCH_PROPERTYPUT, {0});
  EXPECT_EQ(0, Adapted(cvar));
  Invoke(cvar, L"SetVariant", DISPATCH_METHOD, {L"x", 0});
  EXPECT_STREQ(L"x", Invoke(cvar, L"Variant", DISPATCH_METHOD, {0}).bstrVal);
  Invoke(cvar, L"SetExtraData", DISPATCH_METHOD, {L"page", 5, 0});
  EXPECT_STREQ(L"page", Invoke(cvar, L"ExtraData", DISPATCH_METHOD, {5, 0}).bstrVal);
  EXPECT_EQ(nullptr, Invoke(cvar, L"Object", DISPATCH_METHOD, {0}).punkVal);
}

// Replicas

TEST(EnumReplicaTest, FollowsTheIndexOfTheRequest) {
  const Enum source = MakeEnum(L"A,B,C");
  const Enum replica = MakeEnum(L"X,Y,Z");
  EXPECT_EQ(S_OK, source->SetRequestedValue(2));
  EXPECT_EQ(S_OK, replica->OnCvarNotify(source, kRequestedAndValue));
  EXPECT_EQ(2, Adapted(replica));
}

TEST(EnumReplicaTest, OfTheValueAloneFollowsTheText) {
  const Enum source = MakeEnum(L"A,B,C");
  const Enum replica = MakeEnum(L"C,B,A");
  replica->SetReplicationFlags(REPLICATE_VALUE);
  EXPECT_EQ(S_OK, source->SetRequestedValue(2));
  EXPECT_EQ(S_OK, replica->OnCvarNotify(source, NOTIFY_VALUE));
  EXPECT_EQ(0, Adapted(replica));
}

// Listeners

TEST(EnumListenerTest, MayChangeTheListFromInsideItsCall) {
  const Enum cvar = MakeEnum(L"A,B,C");
  const auto listener = Listen(cvar);
  listener->onNotify = [&](IVorCvar*, NOTIFYTYPE what) {
    if ((what & NOTIFY_REQUESTED) != 0) {
      EXPECT_EQ(1, cvar->DeleteValue(L"A"));
    }
  };
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(2));
  EXPECT_EQ(L"B,C", Screens(cvar));
  EXPECT_EQ(1, Adapted(cvar));
  EXPECT_EQ((Masks{kRequestedAndValue, kRangeAndValue}), listener->TakeMasks());
}

}  // namespace
