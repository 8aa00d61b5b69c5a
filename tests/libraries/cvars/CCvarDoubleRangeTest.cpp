// Range, default, increments and configuration of the double cvar, and what it tells of them.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "CCvarDouble.h"
#include "CvarObject.h"
#include "LiveCvars.h"
#include "ReadText.h"
#include "RecordingListener.h"

namespace {

using cvars::test::RecordingListener;
using cvars::test::TextOf;

using Double = CComPtr<CvarObject<CCvarDouble>>;
using Masks = std::vector<NOTIFYTYPE>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kNotFinite[] = {kNotANumber, kInfinity, -kInfinity};

constexpr NOTIFYTYPE kRequestedAndValue = NOTIFY_REQUESTED | NOTIFY_VALUE;
constexpr NOTIFYTYPE kRangeAndValue = NOTIFY_RANGE | NOTIFY_VALUE;

class DoubleRange : public cvars::test::CvarTest {
 protected:
  DoubleRange() {
    Configure(4, 0, 10, 2);
    EXPECT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  }
  void TearDown() override {
    cvar = nullptr;
    EXPECT_EQ(listener->References(), 1u);
    CvarTest::TearDown();
  }

  void Configure(double defaultValue, double min, double max, double grain,
                 CVARFLAGS flags = CVARFLAGS(0)) {
    cvar->Initialize(L"Level", defaultValue, min, max, grain, nullptr, flags, nullptr, 0,
                     REPLICATE_VALUE);
  }

  Double cvar = CvarObject<CCvarDouble>::Create();
  const CComPtr<RecordingListener> listener = RecordingListener::Create();
};

// Construction and Initialize -----------------------------------------------------------------

TEST_F(DoubleRange, ANewCvarHasTheNumbersOfTheConstructor) {
  const Double fresh = CvarObject<CCvarDouble>::Create();
  EXPECT_EQ(fresh->GetMin(), 1e-300);
  EXPECT_EQ(fresh->GetMax(), 1e300);
  EXPECT_EQ(fresh->GetGrain(), 1.0);
  EXPECT_EQ(fresh->GetRequested(), 0.0);
  EXPECT_EQ(fresh->GetAdaptedValue(), 0.0);
  double coarse = 9;
  EXPECT_EQ(fresh->get_CoarseGrain(&coarse), S_OK);
  EXPECT_EQ(coarse, 0.0);
  EXPECT_EQ(fresh->GetUnitStringRemote(), L"");
  EXPECT_EQ(fresh->ReplicationFlags(), REPLICATE_VALUE | REPLICATE_REQUESTED);
}

TEST_F(DoubleRange, InitializeConfiguresAndTellsNobody) {
  EXPECT_TRUE(listener->masks.empty());
  cvar->Initialize(L"Other|OTH", 3.0, -5.0, 5.0, 0.5, nullptr, CVARFLAG_READONLY, L"Knob", 12,
                   REPLICATE_RANGE);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Name), L"Other");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_NameRemote), L"OTH");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetGuiHints), L"Knob");
  unsigned int help = 0;
  EXPECT_EQ(cvar->get_HelpStringID(&help), S_OK);
  EXPECT_EQ(help, 12u);
  EXPECT_EQ(cvar->Flags(), CVARFLAG_READONLY);
  EXPECT_EQ(cvar->ReplicationFlags(), REPLICATE_RANGE);
  EXPECT_EQ(cvar->GetRequested(), 3.0);  // also of a cvar that is read-only from now on
  EXPECT_EQ(cvar->GetAdaptedValue(), 3.0);
  EXPECT_EQ(cvar->SetGrainValue(1.0), S_OK);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_RANGE});
}

TEST_F(DoubleRange, InitializeWithoutNameHasAnEmptyOne) {
  cvar->Initialize(nullptr, 0, 0, 1, 1, nullptr, CVARFLAGS(0), nullptr, 0, REPLICATE_VALUE);
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Name), L"");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_NameRemote), L"");
}

TEST_F(DoubleRange, ASecondInitializeOfAReadOnlyCvarKeepsTheRequest) {
  Configure(4, 0, 10, 2, CVARFLAG_READONLY);
  Configure(8, 0, 10, 2);
  EXPECT_EQ(cvar->GetRequested(), 4.0);
  EXPECT_EQ(cvar->GetAdaptedValue(), 4.0);
  double defaultValue = 0;
  EXPECT_EQ(cvar->GetDefaultValue(&defaultValue), S_OK);
  EXPECT_EQ(defaultValue, 8.0);
  EXPECT_EQ(cvar->Flags(), CVARFLAGS(0));
}

TEST_F(DoubleRange, InitializeWithTheNumbersOfTheConstructorAdaptsNothing) {
  const Double fresh = CvarObject<CCvarDouble>::Create();
  fresh->Initialize(L"Level", 0.0, 1e-300, 1e300, 1.0, nullptr, CVARFLAGS(0), nullptr, 0,
                    REPLICATE_VALUE);
  EXPECT_EQ(fresh->GetAdaptedValue(), 0.0);
  int adapted = 9;
  EXPECT_EQ(fresh->get_IsValueAdapted(&adapted), S_OK);
  EXPECT_EQ(adapted, 0);
}

TEST_F(DoubleRange, ADefaultThatIsNotFiniteLeavesTheRequest) {
  Configure(kInfinity, 0, 10, 2);
  EXPECT_EQ(cvar->GetRequested(), 4.0);
}

// Requests ----------------------------------------------------------------------------------------

TEST_F(DoubleRange, ARequestWithinTheToleranceSendsNothing) {
  EXPECT_EQ(cvar->SetRequestedValue(6.0), S_OK);
  (void)listener->TakeMasks();
  EXPECT_EQ(cvar->SetRequestedValue(6.0 + 3e-15), S_OK);  // tolerance 6e-15
  EXPECT_EQ(cvar->GetRequested(), 6.0);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(cvar->SetRequestedValue(6.0 + 2e-14), S_OK);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_REQUESTED});
}

TEST_F(DoubleRange, TheToleranceAroundZeroIsNone) {
  EXPECT_EQ(cvar->SetRequestedValue(0.0), S_OK);
  (void)listener->TakeMasks();
  EXPECT_EQ(cvar->SetRequestedValue(std::numeric_limits<double>::denorm_min()), S_OK);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_REQUESTED});
}

TEST_F(DoubleRange, NotFiniteIsRefusedBeforeReadOnly) {
  for (const double value : kNotFinite) {
    EXPECT_EQ(cvar->SetRequestedValue(value), E_INVALIDARG);
    EXPECT_EQ(cvar->SetRequestedValue(value, true), E_INVALIDARG);
  }
  cvar->SetReadOnly(1);
  (void)listener->TakeMasks();
  for (const double value : kNotFinite) {
    EXPECT_EQ(cvar->SetRequestedValue(value), E_INVALIDARG);
  }
  EXPECT_EQ(cvar->SetRequestedValue(6.0), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetRequestedValue(4.0), E_ACCESSDENIED);  // also what it is already
  EXPECT_EQ(cvar->SetRequestedValue(4.0, true), S_OK);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(cvar->SetRequestedValue(6.0, true), S_OK);
  EXPECT_EQ(listener->TakeMasks(), Masks{kRequestedAndValue});
}

TEST_F(DoubleRange, ARequestFromTheOneEndToTheOtherDoesNotOverflow) {
  Configure(-1.7e308, -1.7e308, 1.7e308, 0);
  EXPECT_EQ(cvar->SetRequestedValue(1.7e308), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 1.7e308);
}

TEST_F(DoubleRange, TheAnswerOfAListenerIsTheResult) {
  listener->answer = E_ABORT;
  EXPECT_EQ(cvar->SetRequestedValue(6.0), E_ABORT);
  EXPECT_EQ(cvar->GetAdaptedValue(), 6.0);
  EXPECT_EQ(cvar->SetDefaultValue(1.0), E_ABORT);
  EXPECT_EQ(cvar->SetMaxValue(20.0), E_ABORT);
}

TEST_F(DoubleRange, AReadOnlyCvarRefusesEveryWriter) {
  cvar->SetReadOnly(1);
  (void)listener->TakeMasks();
  EXPECT_EQ(cvar->put_Value(CComVariant(6.0)), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetRequestedValueFromString(L"6"), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetRequestedValueFromStringScreen(L"6"), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetRequestedValueFromStringRemote(L"6"), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetRequestedValueNorm(0.1), E_ACCESSDENIED);
  EXPECT_EQ(cvar->Increment(1), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetToMin(), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetToMax(), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetToDefault(), E_ACCESSDENIED);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(cvar->GetAdaptedValue(), 4.0);
}

TEST_F(DoubleRange, AdaptedIsToldApartWithinTwoInTenToTheFourteenth) {
  Configure(0, 0, 100, 0);
  struct {
    double request;
    int adapted;
  } constexpr kRows[] = {{50, 0}, {101, 1}, {100 * (1 + 1e-14), 0}, {100 * (1 + 4e-14), 1}, {0, 0}};
  for (const auto& row : kRows) {
    EXPECT_EQ(cvar->SetRequestedValue(row.request), S_OK);
    int adapted = 9;
    EXPECT_EQ(cvar->get_IsValueAdapted(&adapted), S_OK);
    EXPECT_EQ(adapted, row.adapted) << row.request;
  }
}

TEST_F(DoubleRange, TheRequestIsKeptSoThatAWiderRangeBringsItBack) {
  EXPECT_EQ(cvar->SetRequestedValue(50.0), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 10.0);
  EXPECT_EQ(cvar->SetMaxValue(100.0), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 50.0);
  EXPECT_EQ(cvar->GetRequested(), 50.0);
}

// Default -----------------------------------------------------------------------------------------

TEST_F(DoubleRange, DefaultIsAnAttribute) {
  for (const double value : kNotFinite) EXPECT_EQ(cvar->SetDefaultValue(value), E_INVALIDARG);
  EXPECT_EQ(cvar->SetDefaultValue(4.0), S_FALSE);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(cvar->SetDefaultValue(std::nextafter(4.0, 5.0)), S_OK);  // compared exactly
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_ATTRIBUTES});
  EXPECT_EQ(cvar->GetRequested(), 4.0);
}

TEST_F(DoubleRange, SetToDefaultForgetsTheCoarseGrainFirst) {
  EXPECT_EQ(cvar->put_CoarseGrain(5.0), S_OK);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(cvar->SetRequestedValue(8.0), S_OK);
  cvar->SetReadOnly(1);
  EXPECT_EQ(cvar->SetToDefault(), E_ACCESSDENIED);
  double coarse = 9;
  EXPECT_EQ(cvar->get_CoarseGrain(&coarse), S_OK);
  EXPECT_EQ(coarse, 0.0);
  cvar->SetReadOnly(0);
  EXPECT_EQ(cvar->SetToDefault(), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 4.0);
}

// Range setters -----------------------------------------------------------------------------------

using NumberSetter = HRESULT (CCvarDouble::*)(double);
constexpr NumberSetter kRangeSetters[] = {&CCvarDouble::SetMinValue, &CCvarDouble::SetMaxValue,
                                          &CCvarDouble::SetGrainValue};

TEST_F(DoubleRange, NumbersThatAreNotFiniteAreNoRange) {
  for (const NumberSetter set : kRangeSetters) {
    for (const double value : kNotFinite) EXPECT_EQ((*cvar.*set)(value), E_INVALIDARG);
  }
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Range), L"From 0 to 10 step 2");
}

TEST_F(DoubleRange, TheSameRangeIsNoChange) {
  EXPECT_EQ(cvar->SetMinValue(0.0), S_FALSE);
  EXPECT_EQ(cvar->SetMaxValue(10.0), S_FALSE);
  EXPECT_EQ(cvar->SetGrainValue(2.0), S_FALSE);
  EXPECT_TRUE(listener->masks.empty());
}

TEST_F(DoubleRange, AChangeTellsTheRangeAndTheValueWhenItMoved) {
  EXPECT_EQ(cvar->SetMaxValue(8.0), S_OK);
  EXPECT_EQ(cvar->SetMaxValue(2.0), S_OK);  // 4 becomes 2
  EXPECT_EQ(cvar->SetMinValue(1.0), S_OK);
  EXPECT_EQ(cvar->SetGrainValue(1.5), S_OK);  // 2 becomes 1.5
  EXPECT_EQ(listener->TakeMasks(),
            (Masks{NOTIFY_RANGE, kRangeAndValue, NOTIFY_RANGE, kRangeAndValue}));
  EXPECT_EQ(cvar->GetAdaptedValue(), 1.5);
  EXPECT_EQ(cvar->GetRequested(), 4.0);
}

TEST_F(DoubleRange, AMaximumBelowTheMinimumLowersItToo) {
  EXPECT_EQ(cvar->SetMaxValue(-3.0), S_OK);
  EXPECT_EQ(cvar->GetMin(), -3.0);
  EXPECT_EQ(cvar->GetMax(), -3.0);
  EXPECT_EQ(listener->TakeMasks(), Masks{kRangeAndValue});
  EXPECT_EQ(cvar->GetAdaptedValue(), -2.0);  // -1.5 steps go up
}

TEST_F(DoubleRange, AMinimumAboveTheMaximumRaisesItToo) {
  EXPECT_EQ(cvar->SetMinValue(12.0), S_OK);
  EXPECT_EQ(cvar->GetMin(), 12.0);
  EXPECT_EQ(cvar->GetMax(), 12.0);
  EXPECT_EQ(listener->TakeMasks(), Masks{kRangeAndValue});
}

/// Takes no maximum above 20, no negative minimum and no grain but whole ones.
class LimitedDouble : public CCvarDouble {
 protected:
  LimitedDouble() = default;
  ~LimitedDouble() = default;

  HRESULT SetMax(double max) override { return max > 20 ? E_FAIL : CCvarDouble::SetMax(max); }
  HRESULT SetMin(double min) override { return CCvarDouble::SetMin(min < 0 ? 0 : min); }
  HRESULT SetGrain(double grain) override { return CCvarDouble::SetGrain(std::floor(grain)); }
};

TEST_F(DoubleRange, ADerivedClassMayLimitTheRange) {
  const CComPtr<CvarObject<LimitedDouble>> limited = CvarObject<LimitedDouble>::Create();
  limited->Initialize(L"Level", 4, 1, 10, 2, nullptr, CVARFLAGS(0), nullptr, 0, REPLICATE_VALUE);
  EXPECT_EQ(limited->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(limited->SetMaxValue(21.0), E_FAIL);
  EXPECT_EQ(limited->GetMax(), 10.0);
  EXPECT_EQ(limited->SetGrainValue(2.5), S_FALSE);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(limited->SetMinValue(-3.0), S_OK);
  EXPECT_EQ(limited->GetMin(), 0.0);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_RANGE});
}

TEST_F(DoubleRange, NumberOfIncrementsNeedsAPositiveGrain) {
  double count = 9;
  EXPECT_EQ(cvar->get_NumberOfIncrement(&count), S_OK);
  EXPECT_EQ(count, 5.0);
  for (const double grain : {0.0, -3.0}) {
    ASSERT_EQ(cvar->SetGrainValue(grain), S_OK);
    count = 9;
    EXPECT_EQ(cvar->get_NumberOfIncrement(&count), E_FAIL);
    EXPECT_EQ(count, 0.0);
  }
}

TEST_F(DoubleRange, RangeTextShowsStepOrDigits) {
  struct {
    double min, max, grain;
    const wchar_t* text;
  } constexpr kRows[] = {{-1e-3, 1e6, 0.25, L"From -0.001 to 1e+06 step 0.25"},
                         {0, 10, 0, L"From 0 to 10 step 0"},
                         {0, 10, -3, L"From 0 to 10 step (3 digits)"},
                         {0, 10, -2.5, L"From 0 to 10 step (3 digits)"},
                         {0, 10, -0.25, L"From 0 to 10 step (1 digits)"},
                         {0, 10, -40, L"From 0 to 10 step (18 digits)"},
                         {0, 1234567, 1, L"From 0 to 1.23457e+06 step 1"}};
  for (const auto& row : kRows) {
    Configure(0, row.min, row.max, row.grain);
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Range), row.text);
  }
}

// SetRange ----------------------------------------------------------------------------------------

TEST_F(DoubleRange, SetRangeWithTheSameNumbersTellsNothing) {
  EXPECT_EQ(cvar->SetRange(4, 0, 10, 2, nullptr, nullptr, 0, true), S_OK);
  EXPECT_TRUE(listener->masks.empty());
}

TEST_F(DoubleRange, SetRangeGathersWhatChanged) {
  EXPECT_EQ(cvar->SetRange(5, 0, 2, 2, nullptr, nullptr, 7, true), S_OK);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_ATTRIBUTES | kRangeAndValue});
  EXPECT_EQ(cvar->SetRange(6, 0, 2, 2, nullptr, nullptr, 7, false), S_OK);  // default not set
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(cvar->SetRange(5, 0, 2, 2, nullptr, nullptr, 0, true), S_OK);  // no help keeps it
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(cvar->SetRange(6, 0, 2, 2, nullptr, nullptr, 0, true), S_OK);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_ATTRIBUTES});
}

TEST_F(DoubleRange, SetRangeTellsHintsBeforeTheRest) {
  EXPECT_EQ(cvar->SetRange(4, 1, 10, 2, nullptr, L"Knob", 0, true), S_OK);
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_GUIHINTS, NOTIFY_RANGE}));
  EXPECT_EQ(cvar->SetRange(4, 1, 10, 2, nullptr, nullptr, 0, true), S_OK);
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetGuiHints), L"Knob");
}

TEST_F(DoubleRange, SetRangeLowersTheMinimumAndTakesAnyNumber) {
  EXPECT_EQ(cvar->SetRange(4, 5, 3, 2, nullptr, nullptr, 0, true), S_OK);
  EXPECT_EQ(cvar->GetMin(), 3.0);
  EXPECT_EQ(cvar->GetMax(), 3.0);
  EXPECT_EQ(cvar->SetRange(4, 0, kInfinity, kNotANumber, nullptr, nullptr, 0, true), S_OK);
  EXPECT_EQ(cvar->GetMax(), kInfinity);
  EXPECT_TRUE(std::isnan(cvar->GetGrain()));
  EXPECT_EQ(cvar->GetAdaptedValue(), 4.0);  // a grain that is no number rounds nothing
}

// Steps -------------------------------------------------------------------------------------------

struct StepCase {
  const char* name;
  double start, grain;
  int steps;
  double request;
};
constexpr StepCase kStepCases[] = {
    {"Up", 100, 2, 3, 106},
    {"Down", 100, 2, -3, 94},
    {"SignificantDigits", 1239, -3, 1, 1251.39},
    {"RelativeGrain", 1000, 0, 1, 1000.0001},
    {"NothingFromZeroWithARelativeGrain", 0, 0, 5, 0},
    {"SmallestInteger", 0, 1, -2147483647 - 1, -2147483648.0},
};

TEST_F(DoubleRange, IncrementRequestsStepsFromTheAdaptedValue) {
  for (const StepCase& row : kStepCases) {
    SCOPED_TRACE(row.name);
    Configure(row.start, -1e6, 1e6, row.grain);
    EXPECT_EQ(cvar->Increment(row.steps), S_OK);
    EXPECT_DOUBLE_EQ(cvar->GetRequested(), row.request);
  }
}

TEST_F(DoubleRange, ReverseIncrementGoesTheOtherWay) {
  (void)cvar->SetFlags(CVARFLAG_REVERSEINCREMENT, true);
  EXPECT_EQ(cvar->Increment(1), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 2.0);
  EXPECT_EQ(cvar->Increment(-2), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 6.0);
  EXPECT_EQ(cvar->Increment(-2147483647 - 1), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 6.0 + 2.0 * 2147483648.0);
}

TEST_F(DoubleRange, EndsAreRequestedAsTheyStand) {
  Configure(4, 1, 9, 4);
  EXPECT_EQ(cvar->SetToMin(), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 1.0);
  EXPECT_EQ(cvar->GetAdaptedValue(), 0.0);  // rounding may leave the range
  EXPECT_EQ(cvar->SetToMax(), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 9.0);
  EXPECT_EQ(cvar->GetAdaptedValue(), 8.0);
}

TEST_F(DoubleRange, NormalisedValueIsNotLimited) {
  EXPECT_EQ(cvar->SetRequestedValueNorm(1.5), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 15.0);
  EXPECT_EQ(cvar->SetRequestedValueNorm(-0.5), S_OK);
  EXPECT_EQ(cvar->GetRequested(), -5.0);
  EXPECT_EQ(cvar->SetRequestedValueNorm(kNotANumber), E_INVALIDARG);
  double position = 9;
  EXPECT_EQ(cvar->GetAdaptedValueNorm(&position), S_OK);
  EXPECT_EQ(position, 0.0);
}

TEST_F(DoubleRange, NormalisedValueWithoutSpanIsInfiniteOrNoNumber) {
  Configure(4, 3, 3, 0);
  double position = 9;
  EXPECT_EQ(cvar->GetAdaptedValueNorm(&position), S_OK);
  EXPECT_TRUE(std::isnan(position));
  Configure(4, 3, 3, 2);  // adapted to 4
  EXPECT_EQ(cvar->GetAdaptedValueNorm(&position), S_OK);
  EXPECT_EQ(position, kInfinity);
}

// Late update -------------------------------------------------------------------------------------

TEST_F(DoubleRange, OnlyTheTypedReadOfTheValueRunsALateUpdate) {
  (void)cvar->SetFlags(CVARFLAG_LATEUPDATE, true);
  (void)listener->TakeMasks();
  double value = 0;
  CComVariant variant;
  EXPECT_EQ(cvar->GetRequestedValue(&value), S_OK);
  EXPECT_EQ(cvar->get_Value(&variant), S_OK);
  (void)TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(cvar->GetAdaptedValue(static_cast<double*>(nullptr)), E_POINTER);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(cvar->GetAdaptedValue(&value), S_OK);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_LATEUPDATE});
}

TEST_F(DoubleRange, ALateUpdateMayStillMoveTheValueThatIsRead) {
  (void)cvar->SetFlags(CVARFLAG_LATEUPDATE, true);
  listener->onNotify = [this](IVorCvar*, NOTIFYTYPE what) {
    if (what == NOTIFY_LATEUPDATE) {
      EXPECT_EQ(cvar->SetRequestedValue(6.0), S_OK);
    }
  };
  double value = 0;
  EXPECT_EQ(cvar->GetAdaptedValue(&value), S_OK);
  EXPECT_EQ(value, 6.0);
  listener->onNotify = nullptr;
}

}  // namespace
