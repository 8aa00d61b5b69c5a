#include "CCvarDouble.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "CvarObject.h"
#include "RecordingListener.h"

namespace {

using cvars::test::RecordingListener;

constexpr CVARREPLICATIONFLAGS kDefaultReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;
constexpr NOTIFYTYPE kRequestedAndValue = NOTIFY_REQUESTED | NOTIFY_VALUE;

using Double = CComPtr<CvarObject<CCvarDouble>>;

Double MakeDouble(double min, double max, double grain, double defaultValue = 0.0,
                  CVARFLAGS flags = CVARFLAGS(0)) {
  Double cvar = CvarObject<CCvarDouble>::Create();
  cvar->Initialize(L"Level", defaultValue, min, max, grain, nullptr, flags, nullptr, 0,
                   kDefaultReplication);
  return cvar;
}

double Adapted(const Double& cvar) {
  double value = std::nan("");
  EXPECT_EQ(cvar->GetAdaptedValue(&value), S_OK);
  return value;
}

TEST(DoubleAdaptation, NewCvarLiftsRequestsBelowItsTinyMinimumThenRoundsByItsGrain) {
  Double cvar = CvarObject<CCvarDouble>::Create();
  EXPECT_EQ(cvar->SetRequestedValue(-5.0), S_OK);
  EXPECT_EQ(Adapted(cvar), 0.0);  // 1e-300 rounded to whole grains of 1
  EXPECT_EQ(cvar->SetGrainValue(0.0), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 1e-300);
}

struct AdaptCase {
  const char* name;
  double min, max, grain, request, adapted;
};
constexpr AdaptCase kAdaptCases[] = {
    {"RoundedInsideRange", 0, 10, 4, 9.9, 8},
    {"RoundedBeyondMaxAndKept", 0, 10, 4, 10, 12},
    {"RequestAboveMaxRoundsDown", 0, 10.1, 1, 10.1, 10},
    {"TieGoesUp", 0, 10, 1, 2.5, 3},
    {"NegativeTieGoesUp", -10, 10, 1, -2.5, -2},
    {"BelowMin", -1, 1, 0.5, -7, -1},
    {"SignificantDigitsKeepTheValue", 0, 1e6, -3, 1239, 1239},
    {"RelativeGrainKeepsTheValue", 0, 1, 0, 3e-9, 3e-9},
};

TEST(DoubleAdaptation, ClampsThenRoundsFromZero) {
  for (const AdaptCase& row : kAdaptCases) {
    SCOPED_TRACE(row.name);
    const Double cvar = MakeDouble(row.min, row.max, row.grain);
    EXPECT_EQ(cvar->SetRequestedValue(row.request), S_OK);
    EXPECT_DOUBLE_EQ(Adapted(cvar), row.adapted);
    EXPECT_EQ(cvar->GetRequested(), row.request);
  }
}

TEST(DoubleAdaptation, GrainThreeTenthsOfTenGivesThirtyThreeSteps) {
  const Double cvar = MakeDouble(0, 10, 0.3);
  cvar->SetRequestedValue(10.0);
  EXPECT_EQ(Adapted(cvar), 33 * 0.3);
}

TEST(DoubleRequest, NotifiesRequestedAndValueOnce) {
  const Double cvar = MakeDouble(0, 10, 1);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(3.2), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(3.3), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(3.3), S_OK);
  EXPECT_EQ(listener->masks, (std::vector<NOTIFYTYPE>{kRequestedAndValue, NOTIFY_REQUESTED}));
}

TEST(DoubleRequest, RefusesNumbersThatAreNotFiniteAndReadOnlyCvars) {
  const Double cvar = MakeDouble(0, 10, 1, 2);
  EXPECT_EQ(cvar->SetRequestedValue(std::nan("")), E_INVALIDARG);
  EXPECT_EQ(cvar->SetRequestedValue(std::numeric_limits<double>::infinity()), E_INVALIDARG);
  cvar->SetReadOnly(1);
  EXPECT_EQ(cvar->SetRequestedValue(5.0), E_ACCESSDENIED);
  EXPECT_EQ(Adapted(cvar), 2.0);
  EXPECT_EQ(cvar->SetRequestedValue(5.0, true), S_OK);
  EXPECT_EQ(Adapted(cvar), 5.0);
}

}  // namespace
