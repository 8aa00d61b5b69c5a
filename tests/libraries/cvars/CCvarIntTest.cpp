#include "CCvarInt.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "IntegerCvarTest.h"
#include "ReadProperties.h"
#include "ReadText.h"
#include "RecordingListener.h"
#include "SafeArray.h"

namespace {

using cvars::test::RecordingListener;
using cvars::test::TextOf;
using Masks = std::vector<NOTIFYTYPE>;

constexpr CVARREPLICATIONFLAGS kDefaultReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;
constexpr NOTIFYTYPE kRequestedAndValue = NOTIFY_REQUESTED | NOTIFY_VALUE;

using cvars::test::IntegerCvarTest;
TYPED_TEST_SUITE(IntegerCvarTest, cvars::test::IntegerWidths);

TYPED_TEST(IntegerCvarTest, NewCvarAdaptsAnyRequestToPlusMinus999) {
  const auto cvar = CvarObject<TypeParam>::Create();

  const std::pair<typename TestFixture::Number, typename TestFixture::Number> rows[] = {
      {std::numeric_limits<typename TestFixture::Number>::max(), 999},
      {std::numeric_limits<typename TestFixture::Number>::min(), -999},
      {1000, 999},
      {-1000, -999},
      {17, 17}};
  for (const auto& [request, adapted] : rows) {
    EXPECT_EQ(cvar->SetRequestedValue(request), S_OK);
    EXPECT_EQ(this->Adapted(cvar), adapted);
    EXPECT_EQ(this->Requested(cvar), request);
  }
  typename TestFixture::Number grain = 0;
  EXPECT_EQ(cvar->GetGrainValue(&grain), S_OK);
  EXPECT_EQ(grain, 1);
}

TYPED_TEST(IntegerCvarTest, GrainBelowOneIsStoredAsOne) {
  for (const int given : {0, -1, -7}) {
    const auto cvar = this->Make(0, 100, 5);
    cvar->SetGrain(given);
    EXPECT_EQ(cvar->GetGrain(), 1);
    const auto other = this->Make(0, 100, 5);
    EXPECT_EQ(other->SetRange(0, 0, 100, given, nullptr, nullptr, 0, false), S_OK);
    EXPECT_EQ(other->GetGrain(), 1);
  }
}

struct AdaptRow {
  const char* name;
  int min, max, grain, request, adapted;
};
constexpr AdaptRow kAdaptRows[] = {
    {"TieAwayFromZero", 0, 1000, 10, 15, 20},
    {"ClampComesFirst", 0, 1000, 10, -15, 0},
    {"NegativeTieAwayFromZero", -1000, 1000, 10, -15, -20},
    {"BelowTheTie", 0, 1000, 10, 14, 10},
    {"OddGrainRoundsUpJustBelowItsHalf", 0, 1000, 5, 2, 5},
    {"OddGrainBelowThat", 0, 1000, 5, 1, 0},
    {"OriginIsAddedAfterRounding", 1, 999, 5, 7, 11},  // 7 -> 10, origin 1 - 0
    {"OriginIsAddedToAMultipleToo", 1, 999, 5, 6, 6},
    {"BeyondMaxAfterRounding", 1, 999, 5, 998, 999},                           // 998 -> 1000, + 1
    {"DefaultMinWithGrainThousandShiftsTheLattice", -999, 999, 1000, 400, 1},  // 0 + 1
    {"DefaultMinWithGrainThousandAtTheTop", -999, 999, 1000, 600, 999},        // 1001
    {"BelowMinAfterRounding", -1, 9, 10, -1, -1},
};

TYPED_TEST(IntegerCvarTest, ClampsRoundsShiftsAndClampsAgain) {
  for (const AdaptRow& row : kAdaptRows) {
    SCOPED_TRACE(row.name);
    const auto cvar = this->Make(row.min, row.max, row.grain, row.min);
    EXPECT_EQ(cvar->SetRequestedValue(row.request), S_OK);
    EXPECT_EQ(this->Adapted(cvar), row.adapted);
  }
}

TYPED_TEST(IntegerCvarTest, ARequestNotifiesRequestedAndValueOnce) {
  const auto cvar = this->Make(0, 100, 10);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(21), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(22), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(22), S_OK);
  EXPECT_EQ(listener->TakeMasks(), (Masks{kRequestedAndValue, NOTIFY_REQUESTED}));
  listener->answer = S_FALSE;
  EXPECT_EQ(cvar->SetRequestedValue(50), S_FALSE);
}

TYPED_TEST(IntegerCvarTest, AReadOnlyCvarRefusesRequestsThatAreNotForced) {
  const auto cvar = this->Make(0, 100, 1, 5, nullptr, CVARFLAG_READONLY);
  EXPECT_EQ(this->Adapted(cvar), 5);
  EXPECT_EQ(cvar->SetRequestedValue(9), E_ACCESSDENIED);
  EXPECT_EQ(cvar->put_Value(CComVariant(9)), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetRequestedValueFromStringRemote(L"9"), E_ACCESSDENIED);
  EXPECT_EQ(cvar->Increment(1), E_ACCESSDENIED);
  EXPECT_EQ(this->Requested(cvar), 5);
  EXPECT_EQ(cvar->SetRequestedValue(9, true), S_OK);
  EXPECT_EQ(this->Adapted(cvar), 9);
}

TYPED_TEST(IntegerCvarTest, SetMaxBelowMinLowersMinAndKeepsTheOrigin) {
  const auto cvar = this->Make(11, 100, 10, 11);  // origin 11 - 10 = 1
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  cvar->SetMax(4);
  EXPECT_EQ(cvar->GetMin(), 4);
  EXPECT_EQ(cvar->GetMax(), 4);
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_RANGE | NOTIFY_VALUE}));
  cvar->SetMax(4);
  EXPECT_TRUE(listener->TakeMasks().empty());
  cvar->SetMax(100);
  cvar->SetRequestedValue(38);
  EXPECT_EQ(this->Adapted(cvar), 41);  // 40 + the old origin
}

TYPED_TEST(IntegerCvarTest, SetMinAboveMaxRaisesMaxAndRecomputesTheOrigin) {
  const auto cvar = this->Make(0, 10, 10);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  cvar->SetMin(23);
  EXPECT_EQ(cvar->GetMin(), 23);
  EXPECT_EQ(cvar->GetMax(), 23);
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_RANGE | NOTIFY_VALUE}));
  cvar->SetMin(23);
  EXPECT_TRUE(listener->TakeMasks().empty());
  cvar->SetMax(100);
  cvar->SetRequestedValue(41);
  EXPECT_EQ(this->Adapted(cvar), 43);  // 40, origin 23 - 20
}

TYPED_TEST(IntegerCvarTest, SetGrainRecomputesTheOriginAndNotifiesTheRange) {
  const auto cvar = this->Make(3, 100, 1, 24);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  cvar->SetGrain(10);
  EXPECT_EQ(this->Adapted(cvar), 23);  // 20, origin 3 - 0
  cvar->SetGrain(10);
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_RANGE | NOTIFY_VALUE}));
}

TYPED_TEST(IntegerCvarTest, SetRangeNotifiesWhatChanged) {
  const auto cvar = this->Make(0, 100, 1, 50);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetRange(50, 0, 100, 1, nullptr, nullptr, 0, true), S_OK);
  EXPECT_TRUE(listener->TakeMasks().empty());
  EXPECT_EQ(cvar->SetRange(7, 0, 100, 1, nullptr, nullptr, 0, true), S_OK);
  EXPECT_EQ(cvar->SetRange(8, 0, 100, 1, nullptr, nullptr, 0, false), S_OK);
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_ATTRIBUTES}));
  EXPECT_EQ(cvar->SetRange(7, 0, 40, 1, nullptr, L"knob", 12, true), S_OK);
  EXPECT_EQ(listener->TakeMasks(),
            (Masks{NOTIFY_GUIHINTS, NOTIFY_ATTRIBUTES | NOTIFY_RANGE | NOTIFY_VALUE}));
  EXPECT_EQ(this->Adapted(cvar), 40);
  EXPECT_EQ(cvar->SetRange(7, 30, 20, 1, nullptr, nullptr, 0, true), S_OK);
  EXPECT_EQ(cvar->GetMin(), 20);
  EXPECT_EQ(cvar->GetMax(), 20);
}

TYPED_TEST(IntegerCvarTest, InitializeTellsNobodyAndRequestsTheDefault) {
  const auto cvar = CvarObject<TypeParam>::Create();
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  cvar->Initialize(L"Averages|averages count", 16, 1, 1024, 1, L"SWEEP",
                   CVARFLAG_READONLY | CVARFLAG_NONVOLATILE, L"spin", 77, kDefaultReplication);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Name), L"Averages");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetGuiHints), L"spin");
  EXPECT_EQ(this->Adapted(cvar), 16);
  EXPECT_EQ(this->Requested(cvar), 16);
  typename TypeParam::Value_t number = 0;
  EXPECT_EQ(cvar->GetDefaultValue(&number), S_OK);
  EXPECT_EQ(number, 16);
  int yes = 0;
  EXPECT_EQ(cvar->IsDefault(&yes), S_OK);
  EXPECT_EQ(yes, 1);
  EXPECT_EQ(cvar->IsReadOnly(&yes), S_OK);
  EXPECT_EQ(yes, 1);
}

TYPED_TEST(IntegerCvarTest, IncrementMovesByGrainsAndStopsAtTheEnds) {
  const auto cvar = this->Make(0, 100, 10, 50);
  EXPECT_EQ(cvar->Increment(2), S_OK);
  EXPECT_EQ(this->Adapted(cvar), 70);
  EXPECT_EQ(cvar->Increment(-3), S_OK);
  EXPECT_EQ(this->Adapted(cvar), 40);
  EXPECT_EQ(cvar->Increment(100), S_OK);
  EXPECT_EQ(this->Requested(cvar), 100);
  EXPECT_EQ(cvar->Increment(-100), S_OK);
  EXPECT_EQ(this->Requested(cvar), 0);
  EXPECT_EQ(cvar->Increment(0), S_OK);
  EXPECT_EQ(this->Adapted(cvar), 0);
}

TYPED_TEST(IntegerCvarTest, TheReverseFlagTurnsIncrements) {
  const auto cvar = this->Make(0, 100, 10, 50, nullptr, CVARFLAG_REVERSEINCREMENT);
  EXPECT_EQ(cvar->Increment(1), S_OK);
  EXPECT_EQ(this->Adapted(cvar), 40);
  cvar->SetGrain(1);
  EXPECT_EQ(cvar->Increment(std::numeric_limits<int>::min()), S_OK);  // turns to the largest int
  EXPECT_EQ(this->Adapted(cvar), 100);
}

TYPED_TEST(IntegerCvarTest, IncrementNeverLeavesTheWidth) {
  using Limits = std::numeric_limits<typename TypeParam::Value_t>;
  const auto cvar = this->Make(Limits::min(), Limits::max(), 1, Limits::max() - 3);
  EXPECT_EQ(cvar->Increment(10), S_OK);
  EXPECT_EQ(this->Adapted(cvar), Limits::max());
  cvar->SetRequestedValue(Limits::min() + 2);
  EXPECT_EQ(cvar->Increment(-10), S_OK);
  EXPECT_EQ(this->Adapted(cvar), Limits::min());
}

TYPED_TEST(IntegerCvarTest, NumberOfIncrementIsARealQuotient) {
  double count = -1;
  EXPECT_EQ(this->Make(0, 25, 10)->get_NumberOfIncrement(&count), S_OK);
  EXPECT_EQ(count, 2.5);
  EXPECT_EQ(this->Make(0, 0, 10)->get_NumberOfIncrement(&count), S_OK);
  EXPECT_EQ(count, 0);
  using Limits = std::numeric_limits<typename TypeParam::Value_t>;
  EXPECT_EQ(this->Make(Limits::min(), Limits::max(), 1)->get_NumberOfIncrement(&count), S_OK);
  EXPECT_EQ(count, this->kWide ? 0x1p64 : 4294967295.0);
}

TYPED_TEST(IntegerCvarTest, SetToMinMaxAndDefaultRequestThem) {
  const auto cvar = this->Make(-20, 100, 10, 40);
  EXPECT_EQ(cvar->SetToMin(), S_OK);
  EXPECT_EQ(this->Requested(cvar), -20);
  EXPECT_EQ(cvar->SetToMax(), S_OK);
  EXPECT_EQ(this->Requested(cvar), 100);
  EXPECT_EQ(cvar->put_CoarseGrain(2.5), S_OK);
  double coarse = 0;
  EXPECT_EQ(cvar->get_CoarseGrain(&coarse), S_OK);
  EXPECT_EQ(coarse, 2.5);
  EXPECT_EQ(cvar->SetToDefault(), S_OK);
  EXPECT_EQ(this->Requested(cvar), 40);
  EXPECT_EQ(cvar->get_CoarseGrain(&coarse), S_OK);
  EXPECT_EQ(coarse, 0);
}

TYPED_TEST(IntegerCvarTest, SetDefaultValueNotifiesAttributesOnAChange) {
  const auto cvar = this->Make(0, 100, 1, 5);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetDefaultValue(5), S_FALSE);
  EXPECT_EQ(cvar->SetDefaultValue(6), S_OK);
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_ATTRIBUTES}));
  EXPECT_EQ(this->Adapted(cvar), 5);
}

TYPED_TEST(IntegerCvarTest, PositionsRunFromMinToMax) {
  const auto cvar = this->Make(-10, 30, 1, 0);
  double position = -1;
  EXPECT_EQ(cvar->GetAdaptedValueNorm(&position), S_OK);
  EXPECT_EQ(position, 0.25);
  EXPECT_EQ(cvar->SetRequestedValueNorm(0.5), S_OK);
  EXPECT_EQ(this->Requested(cvar), 10);
  EXPECT_EQ(cvar->SetRequestedValueNorm(2), S_OK);
  EXPECT_EQ(this->Requested(cvar), 70);
  EXPECT_EQ(this->Adapted(cvar), 30);
  EXPECT_EQ(cvar->SetRequestedValueNorm(std::nan("")), E_INVALIDARG);
  EXPECT_EQ(cvar->SetRequestedValueNorm(HUGE_VAL), E_INVALIDARG);
  EXPECT_EQ(this->Requested(cvar), 70);
  using Limits = std::numeric_limits<typename TypeParam::Value_t>;
  EXPECT_EQ(cvar->SetRequestedValueNorm(1e200), S_OK);
  EXPECT_EQ(this->Requested(cvar), Limits::max());
  EXPECT_EQ(cvar->SetRequestedValueNorm(-1e200), S_OK);
  EXPECT_EQ(this->Requested(cvar), Limits::min());
}

TYPED_TEST(IntegerCvarTest, APositionReadAndWrittenGivesTheSameValue) {
  const auto cvar = this->Make(0, 300, 1);
  for (int value = 0; value <= 300; ++value) {
    cvar->SetRequestedValue(value);
    double position = 0;
    ASSERT_EQ(cvar->GetAdaptedValueNorm(&position), S_OK);
    cvar->SetRequestedValue(-1);
    ASSERT_EQ(cvar->SetRequestedValueNorm(position), S_OK);
    ASSERT_EQ(this->Adapted(cvar), value);
  }
}

TYPED_TEST(IntegerCvarTest, TheEndsOfTheWidthAreExactPositions) {
  using Limits = std::numeric_limits<typename TypeParam::Value_t>;
  const auto cvar = this->Make(Limits::min(), Limits::max(), 1);
  EXPECT_EQ(cvar->SetRequestedValueNorm(1), S_OK);
  EXPECT_EQ(this->Adapted(cvar), Limits::max());
  EXPECT_EQ(cvar->SetRequestedValueNorm(0), S_OK);
  EXPECT_EQ(this->Adapted(cvar), Limits::min());
}

TYPED_TEST(IntegerCvarTest, RangeAndSignatureTexts) {
  const auto cvar = this->Make(-7, 100, 3, 5, L"SWEEP", CVARFLAG_REVERSEINCREMENT);
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Range), L"From -7 to 100 step 3");
  cvar->SetRequestedValue(8);  // 9, origin -7 - -9 = 2
  const std::wstring type = this->kWide ? L"Long Integer" : L"Integer";
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Type), type);
  EXPECT_EQ(
      TextOf(*cvar, &IVorCvar::get_Signature),
      L"Type," + type + L",Request,8,Adapt,11,Default,5,Min,-7,Max,100,Grain,3,Unit,SWEEP,Flags,B");
}

struct ValueTextRow {
  int value;
  const wchar_t* unit;
  const wchar_t* screen;
  const wchar_t* remote;
  const wchar_t* remoteNoUnit;
};
constexpr ValueTextRow kValueTextRows[] = {
    {0, L"SWEEP", L"0 sweeps", L"0 SWEEP", L"0"},     {1, L"SWEEP", L"1 sweep", L"1 SWEEP", L"1"},
    {-1, L"SWEEP", L"-1 sweeps", L"-1 SWEEP", L"-1"}, {12, L"V", L"12 V", L"12 V", L"12"},
    {1500, L"", L"1500", L"1500", L"1500"},
};

TYPED_TEST(IntegerCvarTest, ValueTextsCarryTheUnit) {
  for (const ValueTextRow& row : kValueTextRows) {
    SCOPED_TRACE(row.screen);
    const auto cvar = this->Make(-2000, 2000, 1, row.value, row.unit);
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen), row.screen);
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemote), row.remote);
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemoteNoUnit), row.remoteNoUnit);
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringAutomation), row.remoteNoUnit);
  }
}

TYPED_TEST(IntegerCvarTest, EveryCountingUnitHasAPlural) {
  const std::pair<const wchar_t*, const wchar_t*> units[] = {
      {L"SWEEP", L"2 sweeps"}, {L"DECADE", L"2 decades"}, {L"HOUR", L"2 hours"},
      {L"DAY", L"2 days"},     {L"WK", L"2 wks"},         {L"BIT", L"2 bits"},
      {L"BYTE", L"2 bytes"}};
  for (const auto& [unit, text] : units) {
    const auto cvar = this->Make(0, 10, 1, 2, unit);
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen), text);
  }
}

enum class Audience { kScreen, kRemote };
struct ParseRow {
  Audience audience;
  const wchar_t* text;
  HRESULT result;
  int request;  ///< untouched 7 on failure
};
constexpr HRESULT kNoNumber = static_cast<HRESULT>(0x80040512);
constexpr HRESULT kUnknownSuffix = static_cast<HRESULT>(0x80040513);
constexpr ParseRow kParseRows[] = {
    {Audience::kScreen, L"2.9", S_OK, 2},
    {Audience::kScreen, L"-2.9 V", S_OK, -2},
    {Audience::kScreen, L"1.5kV", S_OK, 1500},
    {Audience::kScreen, L"1.5KV", kUnknownSuffix, 7},
    {Audience::kScreen, L"2 Vs", S_OK, 2},
    {Audience::kRemote, L"1.5KV", S_OK, 1500},
    {Audience::kRemote, L"1.5kV", kUnknownSuffix, 7},
    {Audience::kRemote, L"12", S_OK, 12},
    {Audience::kRemote, L"2500 MV", S_OK, 2},
    {Audience::kRemote, L"", kNoNumber, 7},
    {Audience::kRemote, L"V", kNoNumber, 7},
    {Audience::kScreen, L"7 volts", kUnknownSuffix, 7},
    {Audience::kRemote, nullptr, kNoNumber, 7},
    {Audience::kScreen, nullptr, kNoNumber, 7},
    {Audience::kRemote, L"1e30", DISP_E_OVERFLOW, 7},
    {Audience::kScreen, L"-1e30 V", DISP_E_OVERFLOW, 7},
    {Audience::kRemote, L"nan", E_INVALIDARG, 7},
    {Audience::kScreen, L"inf", E_INVALIDARG, 7},
    {Audience::kRemote, L"-inf V", E_INVALIDARG, 7},
    {Audience::kRemote, L"1e999", E_INVALIDARG, 7},
};

TYPED_TEST(IntegerCvarTest, TextsAreReadLikeADoubleAndCut) {
  for (const ParseRow& row : kParseRows) {
    SCOPED_TRACE(row.text == nullptr ? L"(null)" : row.text);
    const auto cvar = this->Make(-2000, 2000, 1, 7, L"V");
    EXPECT_EQ(row.audience == Audience::kScreen ? cvar->SetRequestedValueFromStringScreen(row.text)
                                                : cvar->SetRequestedValueFromStringRemote(row.text),
              row.result);
    EXPECT_EQ(this->Requested(cvar), row.request);
  }
}

TYPED_TEST(IntegerCvarTest, WithoutUnitTheWholeSuffixIsThePrefix) {
  const auto cvar = this->Make(0, 2000, 1);
  EXPECT_EQ(cvar->SetRequestedValueFromStringScreen(L"1.5k"), S_OK);
  EXPECT_EQ(this->Adapted(cvar), 1500);
  EXPECT_EQ(cvar->SetRequestedValueFromString(L"1.2K"), S_OK);
  EXPECT_EQ(this->Adapted(cvar), 1200);
}

TYPED_TEST(IntegerCvarTest, ParsedTextsGoThroughGrainAndRange) {
  const auto cvar = this->Make(0, 100, 10);
  EXPECT_EQ(cvar->SetRequestedValueFromStringRemote(L"46"), S_OK);
  EXPECT_EQ(this->Requested(cvar), 46);
  EXPECT_EQ(this->Adapted(cvar), 50);
}

TYPED_TEST(IntegerCvarTest, ValuesTravelAsVariantsOfTheWidth) {
  const auto cvar = this->Make(-100, 100, 10, 40);
  cvar->SetRequestedValue(42);
  CComVariant value(L"overwritten");
  EXPECT_EQ(cvar->get_Value(&value), S_OK);
  EXPECT_EQ(value.vt, this->kWide ? VT_I8 : VT_I4);
  EXPECT_EQ(this->kWide ? value.llVal : value.lVal, 40);
  EXPECT_EQ(cvar->GetRequestedVariantValue(&value), S_OK);
  EXPECT_EQ(value.vt, this->kWide ? VT_I8 : VT_I4);
  EXPECT_EQ(this->kWide ? value.llVal : value.lVal, 42);
}

TYPED_TEST(IntegerCvarTest, VariantsConvertOrAreReadAsScreenTexts) {
  struct Row {
    const char* name;
    CComVariant given;
    HRESULT result;
    int request;
  };
  const Row rows[] = {
      {"I4", CComVariant(12), S_OK, 12},
      {"I8", CComVariant(-12LL), S_OK, -12},
      {"TieOfARealGoesToEven", CComVariant(2.5), S_OK, 2},
      {"True", CComVariant(true), S_OK, -1},
      {"Text", CComVariant(L"33"), S_OK, 33},
      {"TextWithUnit", CComVariant(L"0.02 kV"), S_OK, 20},
      {"BadText", CComVariant(L"many"), kNoNumber, 7},
      {"TooLargeReal", CComVariant(1e30), DISP_E_OVERFLOW, 7},
      {"TooLargeText", CComVariant(L"1e30"), DISP_E_OVERFLOW, 7},
      {"NotANumber", CComVariant(std::nan("")), E_INVALIDARG, 7},
      {"Infinite", CComVariant(-HUGE_VAL), E_INVALIDARG, 7},
      {"InfiniteFloat", CComVariant(HUGE_VALF), E_INVALIDARG, 7},
      {"Object", CComVariant(static_cast<IUnknown*>(nullptr)), DISP_E_TYPEMISMATCH, 7},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const auto cvar = this->Make(-100, 100, 1, 7, L"V");
    EXPECT_EQ(cvar->put_Value(row.given), row.result);
    EXPECT_EQ(this->Requested(cvar), row.request);
  }
}

TYPED_TEST(IntegerCvarTest, PropertiesShowRangeAndUnit) {
  const auto cvar = this->Make(0, 100, 10, 42, L"SWEEP");
  const VARTYPE number = this->kWide ? VT_I8 : VT_I4;
  EXPECT_EQ(cvars::test::OwnPropertiesOf(*cvar),
            (cvars::test::Properties{{L"AdaptedValue", number, L"40"},
                                     {L"AdaptedValueStringScreen", VT_BSTR, L"40 sweeps"},
                                     {L"Default", number, L"42"},
                                     {L"Grain", number, L"10"},
                                     {L"Max", number, L"100"},
                                     {L"Min", number, L"0"},
                                     {L"RequestedValue", number, L"42"},
                                     {L"Unit", VT_BSTR, L"SWEEP"}}));
}

TYPED_TEST(IntegerCvarTest, ATypedReadSendsTheLateUpdateFirst) {
  const auto cvar = this->Make(0, 100, 1, 5, nullptr, CVARFLAG_LATEUPDATE);
  const auto first = RecordingListener::Create();
  const auto second = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(first), S_OK);
  ASSERT_EQ(cvar->AttachCvarEventSink(second), S_OK);
  bool once = true;
  first->onNotify = [&](IVorCvar*, NOTIFYTYPE what) {
    if (what == NOTIFY_LATEUPDATE && std::exchange(once, false)) cvar->SetRequestedValue(9);
  };
  EXPECT_EQ(this->Adapted(cvar), 9);
  EXPECT_EQ(first->masks, (Masks{NOTIFY_LATEUPDATE, kRequestedAndValue}));
  EXPECT_EQ(second->masks, (Masks{kRequestedAndValue}));
  CComVariant value;
  EXPECT_EQ(cvar->get_Value(&value), S_OK);
  EXPECT_EQ(first->masks.size(), 2u);
}

TYPED_TEST(IntegerCvarTest, NullOutPointersAreRefused) {
  const auto cvar = this->Make(0, 100, 1);

  typename TestFixture::Number* const none = nullptr;
  EXPECT_EQ(cvar->GetAdaptedValue(none), E_POINTER);
  EXPECT_EQ(cvar->GetDefaultValue(none), E_POINTER);
  EXPECT_EQ(cvar->GetGrainValue(none), E_POINTER);
  EXPECT_EQ(cvar->GetMaxValue(none), E_POINTER);
  EXPECT_EQ(cvar->GetMinValue(none), E_POINTER);
  EXPECT_EQ(cvar->GetRequestedValue(none), E_POINTER);
  EXPECT_EQ(cvar->GetUnitRemoteString(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_CoarseGrain(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_NumberOfIncrement(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetAdaptedValueNorm(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetAdaptedValueStringScreen(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetAdaptedValueStringRemote(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetAdaptedValueStringRemoteNoUnit(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_Value(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_Range(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_Signature(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_IsValueAdapted(nullptr), E_POINTER);
}

TYPED_TEST(IntegerCvarTest, IsValueAdaptedComparesExactly) {
  const auto cvar = this->Make(0, 100, 10, 40);
  int adapted = -1;
  EXPECT_EQ(cvar->get_IsValueAdapted(&adapted), S_OK);
  EXPECT_EQ(adapted, 0);
  cvar->SetRequestedValue(41);
  EXPECT_EQ(cvar->get_IsValueAdapted(&adapted), S_OK);
  EXPECT_EQ(adapted, 1);
}

TYPED_TEST(IntegerCvarTest, AReplicaCopiesRangeUnitAndDefaultAsItsFlagsSay) {
  const auto source = this->Make(3, 50, 7, 10, L"SWEEP");
  const auto replica = this->Make(0, 1000, 1, 500, L"V");
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(replica->AttachCvarEventSink(listener), S_OK);
  replica->SetReplicationFlags(CVARREPLICATIONFLAGS(0));
  constexpr NOTIFYTYPE kAll = NOTIFY_RANGE | NOTIFY_UNIT | NOTIFY_ATTRIBUTES;
  EXPECT_EQ(replica->OnCvarNotify(source, kAll), S_OK);
  EXPECT_TRUE(listener->TakeMasks().empty());

  replica->SetReplicationFlags(REPLICATE_RANGE | REPLICATE_UNIT | REPLICATE_DEFAULT);
  EXPECT_EQ(replica->OnCvarNotify(source, kAll), S_OK);
  EXPECT_EQ(TextOf(*replica, &IVorCvar::get_Range), L"From 3 to 50 step 7");
  EXPECT_EQ(replica->GetUnitStringRemote(), L"SWEEP");
  typename TypeParam::Value_t number = 0;
  EXPECT_EQ(replica->GetDefaultValue(&number), S_OK);
  EXPECT_EQ(number, 10);
  EXPECT_EQ(this->Adapted(replica), 45);  // 500 -> 50 -> 49, origin 3 - 7
  EXPECT_EQ(listener->TakeMasks(), (Masks{kAll | NOTIFY_VALUE}));
}

TYPED_TEST(IntegerCvarTest, ScriptsReachTheTypedMembers) {
  const auto cvar = this->Make(2, 50, 7, 10, L"SWEEP");
  const std::pair<const wchar_t*, double> numbers[] = {
      {L"default", 10}, {L"Min", 2}, {L"Max", 50}, {L"Grain", 7}, {L"CoarseGrain", 0}};
  for (const auto& [name, expected] : numbers) {
    wchar_t* member = const_cast<wchar_t*>(name);
    DISPID id = DISPID_UNKNOWN;
    ASSERT_EQ(cvar->GetIDsOfNames({}, &member, 1, LOCALE_USER_DEFAULT, &id), S_OK) << name;
    DISPPARAMS none{};
    CComVariant value;
    ASSERT_EQ(cvar->Invoke(id, {}, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &value,
                           nullptr, nullptr),
              S_OK);
    ASSERT_EQ(value.ChangeType(VT_R8), S_OK);
    EXPECT_EQ(value.dblVal, expected) << name;
  }
}

TEST(IntCvar, TheIncrementProductWrapsAs32Bits) {
  const auto cvar = CvarObject<CCvarInt>::Create();
  constexpr int kGrain = 0x40000000;
  cvar->SetRange(0, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), kGrain,
                 nullptr, nullptr, 0, false);
  EXPECT_EQ(cvar->Increment(4), S_OK);  // 4 x 2^30 is 0 in 32 bits
  EXPECT_EQ(cvar->GetRequested(), 0);
  EXPECT_EQ(cvar->Increment(3), S_OK);  // 3 x 2^30 is -2^30 in 32 bits
  EXPECT_EQ(cvar->GetRequested(), -kGrain);
}

struct EdgeRow {
  const wchar_t* text;
  HRESULT result;
  int request;
};
constexpr EdgeRow kEdgeRows[] = {
    {L"2147483647", S_OK, 2147483647},         {L"2147483647.9", S_OK, 2147483647},
    {L"2147483648", DISP_E_OVERFLOW, 0},       {L"-2147483648", S_OK, -2147483647 - 1},
    {L"-2147483648.9", S_OK, -2147483647 - 1}, {L"-2147483649", DISP_E_OVERFLOW, 0},
    {L"5000000000", DISP_E_OVERFLOW, 0},
};

TEST(IntCvar, TextsAndVariantsReachTheEndsOf32Bits) {
  for (const EdgeRow& row : kEdgeRows) {
    SCOPED_TRACE(row.text);
    const auto cvar = CvarObject<CCvarInt>::Create();
    EXPECT_EQ(cvar->SetRequestedValueFromStringRemote(row.text), row.result);
    EXPECT_EQ(cvar->GetRequested(), row.request);
  }
  const auto cvar = CvarObject<CCvarInt>::Create();
  EXPECT_EQ(cvar->put_Value(CComVariant(5000000000LL)), DISP_E_OVERFLOW);
  EXPECT_EQ(cvar->put_Value(CComVariant(L"5000000000")), DISP_E_OVERFLOW);
  EXPECT_EQ(cvar->GetRequested(), 0);
}

}  // namespace
