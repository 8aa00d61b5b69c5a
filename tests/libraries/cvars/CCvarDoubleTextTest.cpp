// The double cvar as text and variant, its unit, its description, and what it copies of a source.

#include <gtest/gtest.h>

#include <cmath>

#include "CComSafeArray.h"
#include "CCvarDouble.h"
#include "CvarObject.h"
#include "LiveCvars.h"
#include "ReadProperties.h"
#include "ReadText.h"
#include "RecordingListener.h"
#include "SampleCvars.h"

namespace {

using cvars::test::RecordingListener;
using cvars::test::TextOf;

using Double = CComPtr<CvarObject<CCvarDouble>>;
using Masks = std::vector<NOTIFYTYPE>;

constexpr HRESULT kNoNumber = static_cast<HRESULT>(0x80040512);
constexpr HRESULT kUnknownSuffix = static_cast<HRESULT>(0x80040513);
constexpr double kUntouched = 3;

Double MakeDouble(const wchar_t* unit, double grain = 1e-4, CVARFLAGS flags = CVARFLAGS(0)) {
  Double cvar = CvarObject<CCvarDouble>::Create();
  cvar->Initialize(L"Level", kUntouched, -1e18, 1e18, grain, unit, flags, nullptr, 0,
                   REPLICATE_VALUE);
  return cvar;
}

using DoubleText = cvars::test::CvarTest;

struct ShowCase {
  const char* name;
  const wchar_t* unit;
  double grain, value;
  const wchar_t* screen;
  const wchar_t* compact;
  const wchar_t* remote;
  const wchar_t* noUnit;
};
constexpr ShowCase kShowCases[] = {
    {"Milli", L"V", 1e-4, 0.0015, L"1.5 mV", L"1.5 mV", L"1.5E-3 V", L"1.5E-3"},
    {"NoUnit", L"", 1e-4, 0.0015, L"1.5e-3", L"1.5e-3", L"1.5E-3", L"1.5E-3"},
    {"Zero", L"V", 1e-3, 0, L"0 mV", L"0 mV", L"0E-3 V", L"0E-3"},
    {"TrailingZeros", L"V", 1e-3, 2, L"2.000 V", L"2 V", L"2 V", L"2"},
    {"Plural", L"SWEEP", 1, 2, L"2 sweeps", L"2 sweeps", L"2 SWEEP", L"2"},
    {"Singular", L"SWEEP", 1, 1, L"1 sweep", L"1 sweep", L"1 SWEEP", L"1"},
    {"CarryToTheNextPrefix", L"HZ", 0.1, 999.96, L"1.0000 kHz", L"1 kHz", L"1E+3 HZ", L"1E+3"},
    {"NoNegativeZero", L"V", 1, -0.0004, L"0 V", L"0 V", L"0 V", L"0"},
    {"BeyondThePrefixes", L"HZ", 1e15, 5e15, L"5e+15 Hz", L"5e+15 Hz", L"5E+15 HZ", L"5E+15"},
};

TEST_F(DoubleText, ValueReadsForEachAudience) {
  for (const ShowCase& row : kShowCases) {
    SCOPED_TRACE(row.name);
    const Double cvar = MakeDouble(row.unit, row.grain);
    ASSERT_EQ(cvar->SetRequestedValue(row.value), S_OK);
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen), row.screen);
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemote), row.remote);
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemoteNoUnit), row.noUnit);
    (void)cvar->SetFlags(CVARFLAG_COMPACT, true);
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen), row.compact);
  }
}

TEST_F(DoubleText, AnInfiniteValueIsUndefined) {
  const Double cvar = MakeDouble(L"V");
  ASSERT_EQ(cvar->SetRange(3, INFINITY, INFINITY, 0, nullptr, nullptr, 0, false), S_OK);
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen), L"- - -");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemote), L"UNDEF");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemoteNoUnit), L"UNDEF");
}

struct ReadCase {
  const char* name;
  const wchar_t* unit;
  const wchar_t* text;
  HRESULT screenResult;
  double screen;
  HRESULT remoteResult;
  double remote;
};
constexpr ReadCase kReadCases[] = {
    {"Milli", L"V", L"1.5 mV", S_OK, 0.0015, kUnknownSuffix, kUntouched},
    {"MilliWithoutBlank", L"V", L"1.5mV", S_OK, 0.0015, kUnknownSuffix, kUntouched},
    {"MegaOrMilli", L"V", L"1.5 MV", S_OK, 1.5e6, S_OK, 0.0015},
    {"RemoteMega", L"V", L"1.5 MAV", kUnknownSuffix, kUntouched, S_OK, 1.5e6},
    {"NumberAlone", L"V", L" 7 ", S_OK, 7, S_OK, 7},
    {"WordIsNoUnit", L"V", L"7 volts", kUnknownSuffix, kUntouched, kUnknownSuffix, kUntouched},
    {"PrefixWithoutUnit", L"", L"5m", S_OK, 0.005, kUnknownSuffix, kUntouched},
    {"NoNumber", L"V", L"V", kNoNumber, kUntouched, kNoNumber, kUntouched},
    {"Empty", L"V", L"", kNoNumber, kUntouched, kNoNumber, kUntouched},
    {"Null", L"V", nullptr, kNoNumber, kUntouched, kNoNumber, kUntouched},
    {"MegaHertzEverywhere", L"HZ", L"100 MHZ", kUnknownSuffix, kUntouched, S_OK, 1e8},
    {"MegaHertzOnScreen", L"HZ", L"100 MHz", S_OK, 1e8, kUnknownSuffix, kUntouched},
    {"Plural", L"SWEEP", L"2 sweeps", S_OK, 2, kUnknownSuffix, kUntouched},
    {"Infinite", L"V", L"inf", E_INVALIDARG, kUntouched, E_INVALIDARG, kUntouched},
};

TEST_F(DoubleText, TextsAreReadAsTheirAudienceWritesThem) {
  for (const ReadCase& row : kReadCases) {
    SCOPED_TRACE(row.name);
    const Double screen = MakeDouble(row.unit);
    EXPECT_EQ(screen->SetRequestedValueFromStringScreen(row.text), row.screenResult);
    EXPECT_DOUBLE_EQ(screen->GetRequested(), row.screen);
    const Double remote = MakeDouble(row.unit);
    EXPECT_EQ(remote->SetRequestedValueFromStringRemote(row.text), row.remoteResult);
    EXPECT_DOUBLE_EQ(remote->GetRequested(), row.remote);
    const Double common = MakeDouble(row.unit);
    EXPECT_EQ(common->SetRequestedValueFromString(row.text), row.remoteResult);
    EXPECT_DOUBLE_EQ(common->GetRequested(), row.remote);
  }
}

// Unit --------------------------------------------------------------------------------------------

TEST_F(DoubleText, AUnitIsValidatedAndTold) {
  const Double cvar = MakeDouble(nullptr);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetUnitRemoteString(L"HZ"), S_OK);
  EXPECT_EQ(cvar->SetUnitRemoteString(L"HZ"), S_OK);
  EXPECT_EQ(cvar->SetUnitRemoteString(L"NO_SUCH_UNIT"), E_INVALIDARG);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_UNIT});
  EXPECT_EQ(cvar->GetUnitStringRemote(), L"HZ");
  EXPECT_EQ(cvar->GetUnitStringScreen(), L"Hz");
  EXPECT_EQ(TextOf(*cvar, &IVorCvarDouble::GetUnitRemoteString), L"HZ");
  EXPECT_EQ(cvar->SetUnitRemoteString(nullptr), S_OK);
  EXPECT_EQ(cvar->GetUnitStringRemote(), L"");
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_UNIT});
  listener->answer = E_ABORT;
  EXPECT_EQ(cvar->SetUnitRemoteString(L"V"), E_ABORT);
  listener->answer = S_OK;
  (void)listener->TakeMasks();
  EXPECT_EQ(cvar->SetRange(4, 0, 10, 1, L"S", L"Knob", 0, true), S_OK);
  EXPECT_EQ(listener->TakeMasks(),
            (Masks{NOTIFY_UNIT, NOTIFY_GUIHINTS, NOTIFY_ATTRIBUTES | NOTIFY_RANGE}));
}

// Variants ----------------------------------------------------------------------------------------

TEST_F(DoubleText, VariantsAreConvertedElseReadAsScreenText) {
  VARIANT nothing{};
  nothing.vt = VT_NULL;
  double referred = 8.5;
  VARIANT reference{};
  reference.vt = VT_R8 | VT_BYREF;
  reference.pdblVal = &referred;
  struct {
    const char* name;
    CComVariant value;
    HRESULT result;
    double request;
  } const rows[] = {{"Double", CComVariant(6.5), S_OK, 6.5},
                    {"Integer", CComVariant(7), S_OK, 7},
                    {"True", CComVariant(true), S_OK, -1},
                    {"Number", CComVariant(L" 2.5 "), S_OK, 2.5},
                    {"ScreenText", CComVariant(L"1.5 mV"), S_OK, 0.0015},
                    {"Nothing", CComVariant(), S_OK, 0},
                    {"Reference", CComVariant(reference), S_OK, 8.5},
                    {"Null", CComVariant(nothing), DISP_E_TYPEMISMATCH, kUntouched},
                    {"NoNumber", CComVariant(L"high"), kNoNumber, kUntouched},
                    {"NotFinite", CComVariant(std::nan("")), E_INVALIDARG, kUntouched}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const Double cvar = MakeDouble(L"V");
    EXPECT_EQ(cvar->put_Value(row.value), row.result);
    EXPECT_DOUBLE_EQ(cvar->GetRequested(), row.request);
  }
}

TEST_F(DoubleText, ValuesAreGivenAsDoublesInAClearedVariant) {
  const Double cvar = MakeDouble(L"V", 0.1);
  ASSERT_EQ(cvar->SetRequestedValue(12.34), S_OK);
  CComVariant value(L"old text");
  EXPECT_EQ(cvar->get_Value(&value), S_OK);
  EXPECT_EQ(value.vt, VT_R8);
  EXPECT_DOUBLE_EQ(value.dblVal, 12.3);
  EXPECT_EQ(cvar->GetRequestedVariantValue(&value), S_OK);
  EXPECT_EQ(value.vt, VT_R8);
  EXPECT_EQ(value.dblVal, 12.34);
  int adapted = 0;
  EXPECT_EQ(cvar->get_IsValueAdapted(&adapted), S_OK);
  EXPECT_EQ(adapted, 1);
  EXPECT_DOUBLE_EQ(static_cast<double>(*cvar), 12.3);
}

// Description -------------------------------------------------------------------------------------

TEST_F(DoubleText, SignatureNamesEveryNumber) {
  const Double cvar = CvarObject<CCvarDouble>::Create();
  cvar->Initialize(L"Level", 0.5, -10, 1e6, 0.25, L"V", CVARFLAG_HIDDEN, nullptr, 0,
                   REPLICATE_VALUE);
  ASSERT_EQ(cvar->SetRequestedValue(1.0 / 3.0), S_OK);
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Signature),
            L"Type,Double,Request,0.333333,Adapt,0.25,Default,0.5,Min,-10,Max,1e+06,Grain,0.25,"
            L"Unit,V,Flags,H");
}

TEST_F(DoubleText, PropertiesAddTheNumbers) {
  const Double cvar = CvarObject<CCvarDouble>::Create();
  cvar->Initialize(L"Level", 0.5, -10, 10, 0.25, L"V", CVARFLAGS(0), nullptr, 0, REPLICATE_VALUE);
  ASSERT_EQ(cvar->SetRequestedValue(1.4), S_OK);
  EXPECT_EQ(cvars::test::OwnPropertiesOf(*cvar),
            (cvars::test::Properties{{L"AdaptedValue", VT_R8, L"1.5"},
                                     {L"AdaptedValueStringScreen", VT_BSTR, L"1.5 V"},
                                     {L"Default", VT_R8, L"0.5"},
                                     {L"Grain", VT_R8, L"0.25"},
                                     {L"Max", VT_R8, L"10"},
                                     {L"Min", VT_R8, L"-10"},
                                     {L"RequestedValue", VT_R8, L"1.4"},
                                     {L"Unit", VT_BSTR, L"V"}}));
}

// A source ----------------------------------------------------------------------------------------

TEST_F(DoubleText, ASourceGivesRangeUnitAndDefaultForTheFlagsThatAskForThem) {
  const Double source = MakeDouble(L"HZ");
  ASSERT_EQ(source->SetRange(8, 1, 9, 0.5, nullptr, nullptr, 0, true), S_OK);
  struct {
    CVARREPLICATIONFLAGS copies;
    NOTIFYTYPE what;
    Masks told;
  } const rows[] = {{REPLICATE_RANGE, NOTIFY_RANGE, {NOTIFY_RANGE}},
                    {REPLICATE_RANGE, NOTIFY_UNIT, {}},
                    {REPLICATE_UNIT, NOTIFY_UNIT, {NOTIFY_UNIT}},
                    {REPLICATE_UNIT, NOTIFY_RANGE, {}},
                    {REPLICATE_DEFAULT, NOTIFY_ATTRIBUTES, {NOTIFY_ATTRIBUTES}},
                    {REPLICATE_DEFAULT, NOTIFY_RANGE | NOTIFY_UNIT, {}},
                    {REPLICATE_RANGE | REPLICATE_UNIT | REPLICATE_DEFAULT,
                     NOTIFY_RANGE | NOTIFY_UNIT | NOTIFY_ATTRIBUTES,
                     {NOTIFY_RANGE | NOTIFY_UNIT | NOTIFY_ATTRIBUTES}}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.copies);
    const Double replica = CvarObject<CCvarDouble>::Create();
    replica->Initialize(L"Replica", 3, 0, 10, 1, L"V", CVARFLAGS(0), nullptr, 0, row.copies);
    const auto listener = RecordingListener::Create();
    ASSERT_EQ(replica->AttachCvarEventSink(listener), S_OK);
    EXPECT_EQ(replica->OnCvarNotify(source->GetIVorCvar(), row.what), S_OK);
    EXPECT_EQ(listener->TakeMasks(), row.told);
    const NOTIFYTYPE told = row.told.empty() ? NOTIFYTYPE(0) : row.told.front();
    EXPECT_EQ(replica->GetMin(), (told & NOTIFY_RANGE) != 0 ? 1.0 : 0.0);
    EXPECT_EQ(replica->GetMax(), (told & NOTIFY_RANGE) != 0 ? 9.0 : 10.0);
    EXPECT_EQ(replica->GetGrain(), (told & NOTIFY_RANGE) != 0 ? 0.5 : 1.0);
    EXPECT_EQ(replica->GetUnitStringRemote(), (told & NOTIFY_UNIT) != 0 ? L"HZ" : L"V");
    double defaultValue = 0;
    EXPECT_EQ(replica->GetDefaultValue(&defaultValue), S_OK);
    EXPECT_EQ(defaultValue, (told & NOTIFY_ATTRIBUTES) != 0 ? 8.0 : 3.0);
  }
}

TEST_F(DoubleText, ASourceThatIsNoDoubleGivesNoRange) {
  const CComPtr<CvarObject<cvars::test::SampleCvar>> source =
      CvarObject<cvars::test::SampleCvar>::Create();
  const Double replica = MakeDouble(L"V");
  replica->SetReplicationFlags(REPLICATE_RANGE | REPLICATE_UNIT | REPLICATE_DEFAULT);
  EXPECT_EQ(replica->OnCvarNotify(source->GetIVorCvar(), NOTIFY_RANGE | NOTIFY_UNIT), S_OK);
  EXPECT_EQ(replica->GetUnitStringRemote(), L"V");
  EXPECT_EQ(replica->GetMax(), 1e18);
}

}  // namespace
