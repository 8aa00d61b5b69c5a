#include "CCvarDoubleLockstep.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "CvarObject.h"
#include "LiveCvars.h"
#include "Randomness.h"
#include "ReadText.h"
#include "RecordingListener.h"

namespace {

using cvars::test::RecordingListener;
using cvars::test::TextOf;
using Lockstep = CComPtr<CvarObject<CCvarDoubleLockstep>>;
using Masks = std::vector<NOTIFYTYPE>;
using LockstepCvarTest = cvars::test::CvarTest;

constexpr CVARREPLICATIONFLAGS kDefaultReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;
constexpr NOTIFYTYPE kRequestedAndValue = NOTIFY_REQUESTED | NOTIFY_VALUE;

Lockstep Make(double min, double max, LOCKSTEP lockstep, double defaultValue, int fineAllowed = 1,
              CVARFLAGS flags = CVARFLAGS(0), const wchar_t* unit = nullptr) {
  Lockstep cvar = CvarObject<CCvarDoubleLockstep>::Create();
  cvar->Initialize(L"Scale", defaultValue, min, max, lockstep, unit, fineAllowed, flags, nullptr, 0,
                   kDefaultReplication);
  return cvar;
}

double Adapted(const Lockstep& cvar) {
  double value = std::nan("");
  EXPECT_EQ(cvar->GetAdaptedValue(&value), S_OK);
  return value;
}

struct AdaptRow {
  const char* name;
  double request, adapted;
};
constexpr AdaptRow kAdaptRows[] = {
    {"RatioNearerToThePointAbove", 3.3, 5},   // 3.3 / 2 = 1.65 > 5 / 3.3 = 1.52
    {"RatioNearerToThePointBelow", 3.16, 2},  // 3.16 / 2 = 1.580 < 5 / 3.16 = 1.582
    {"APointStays", 0.05, 0.05},
    {"ZeroClampsToMin", 0, 0.001},
    {"NegativeClampsToMin", -3, 0.001},
    {"AboveMax", 7e9, 1000},
};

TEST_F(LockstepCvarTest, RequestsSnapToTheNearestPoint) {
  for (const AdaptRow& row : kAdaptRows) {
    SCOPED_TRACE(row.name);
    const auto cvar = Make(0.001, 1000, LOCKSTEP_1_2_5, 1);
    EXPECT_EQ(cvar->SetRequestedValue(row.request), S_OK);
    EXPECT_DOUBLE_EQ(Adapted(cvar), row.adapted);
    EXPECT_EQ(cvar->GetRequested(), row.request);
  }
}

TEST_F(LockstepCvarTest, AnExactTieGoesToTheLowerPoint) {
  // The range ends in the point above: 3 / 2 = 4.5 / 3.
  const auto cvar = Make(0.001, 4.5, LOCKSTEP_1_2_5, 1);
  EXPECT_EQ(cvar->SetRequestedValue(3), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 2);
}

TEST_F(LockstepCvarTest, AnUnknownSequenceBecomesTheNearestKnown) {
  LOCKSTEP lockstep{};
  EXPECT_EQ(Make(1, 100, static_cast<LOCKSTEP>(99), 1)->get_Lockstep(&lockstep), S_OK);
  EXPECT_EQ(lockstep, LOCKSTEP_1_5);
  EXPECT_EQ(Make(1, 100, static_cast<LOCKSTEP>(0xFFFFFFFFu), 1)->get_LockStep(&lockstep), S_OK);
  EXPECT_EQ(lockstep, LOCKSTEP_1_2_25_5);
}

TEST_F(LockstepCvarTest, BoundsAndDefaultAreLimited) {
  const auto cvar = Make(-5, 1e305, LOCKSTEP_1_2_5, 0);
  EXPECT_EQ(cvar->GetMin(), 1e-301);
  EXPECT_EQ(cvar->GetMax(), 1e301);
  double value = 0;
  EXPECT_EQ(cvar->GetDefaultValue(&value), S_OK);
  EXPECT_EQ(value, 1e-301);
}

TEST_F(LockstepCvarTest, AnotherSequenceAdaptsAgainAndNotifiesTheRange) {
  const auto cvar = Make(0.001, 1000, LOCKSTEP_1_2_5, 2);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->put_Lockstep(LOCKSTEP_1_2_5), S_FALSE);
  EXPECT_EQ(cvar->put_Lockstep(LOCKSTEP_1_3_5), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 3);  // 2 / 1 = 2 > 3 / 2 = 1.5
  EXPECT_EQ(cvar->put_Lockstep(static_cast<LOCKSTEP>(40)), S_OK);
  EXPECT_EQ(cvar->put_Lockstep(static_cast<LOCKSTEP>(50)), S_FALSE);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 1);  // of 1, 5, 10
  EXPECT_EQ(listener->TakeMasks(),
            (Masks{NOTIFY_RANGE | NOTIFY_VALUE, NOTIFY_RANGE | NOTIFY_VALUE}));
}

TEST_F(LockstepCvarTest, CoarseIncrementsMoveFromPointToPoint) {
  const auto cvar = Make(0.001, 1000, LOCKSTEP_1_2_5, 5);
  EXPECT_EQ(cvar->Increment(1), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 10);
  EXPECT_EQ(cvar->Increment(-1), S_OK);
  EXPECT_EQ(cvar->Increment(-1), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 2);
  EXPECT_EQ(cvar->Increment(std::numeric_limits<int>::max()), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 1000);
  EXPECT_EQ(cvar->Increment(std::numeric_limits<int>::min()), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 0.001);
}

TEST_F(LockstepCvarTest, TheReverseFlagTurnsCoarseAndFineIncrementsOnce) {
  const auto cvar = Make(0.001, 1000, LOCKSTEP_1_2_5, 5, 1, CVARFLAG_REVERSEINCREMENT);
  EXPECT_EQ(cvar->Increment(1), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 2);
  EXPECT_EQ(cvar->put_FineGrainOn(1), S_OK);
  EXPECT_EQ(cvar->IncrementFine(1), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 1.98);  // down, with the step of the part under 2
}

TEST_F(LockstepCvarTest, FineGrainCountsOnlyWhileAllowed) {
  const auto cvar = Make(0.001, 1000, LOCKSTEP_1_2_5, 2, 0);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->put_FineGrainOn(1), S_OK);
  int on = 0;
  EXPECT_EQ(cvar->get_FineGrainOn(&on), S_OK);
  EXPECT_EQ(on, 1);
  EXPECT_EQ(cvar->IncrementFine(1), S_FALSE);
  EXPECT_TRUE(listener->TakeMasks().empty());
  EXPECT_EQ(cvar->SetRequestedValue(3.34), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 5);
  listener->TakeMasks();
  EXPECT_EQ(cvar->put_FineGrainAllowed(1), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 3.35);  // whole 1 % steps of 5
  EXPECT_EQ(cvar->put_FineGrainAllowed(2), S_OK);
  EXPECT_EQ(cvar->get_FineGrainAllowed(&on), S_OK);
  EXPECT_EQ(on, 2);
  EXPECT_EQ(cvar->put_FineGrainOn(0), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 5);
  EXPECT_EQ(listener->TakeMasks(),
            (Masks{NOTIFY_RANGE | NOTIFY_VALUE, NOTIFY_RANGE | NOTIFY_VALUE}));
}

TEST_F(LockstepCvarTest, FineIncrementsUseTheStepOfTheDecadePartTheyLeadInto) {
  const auto cvar = Make(0.001, 1000, LOCKSTEP_1_2_5, 2);
  EXPECT_EQ(cvar->put_FineGrainOn(1), S_OK);
  EXPECT_EQ(cvar->Increment(1), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 2.05);
  EXPECT_DOUBLE_EQ(cvar->GetGrain(), 0.05);
  EXPECT_EQ(cvar->Increment(-1), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 2);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->Increment(-1), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 1.98);
  EXPECT_DOUBLE_EQ(cvar->GetGrain(), 0.02);
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_RANGE | kRequestedAndValue}));
}

TEST_F(LockstepCvarTest, ARefusedFineIncrementMovesTheGrainAllTheSame) {
  const auto cvar = Make(0.001, 1000, LOCKSTEP_1_2_5, 2);
  EXPECT_EQ(cvar->put_FineGrainOn(1), S_OK);
  cvar->SetReadOnly(1);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->IncrementFine(1), E_ACCESSDENIED);
  EXPECT_DOUBLE_EQ(cvar->GetGrain(), 0.05);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 2);
  EXPECT_TRUE(listener->masks.empty());
  cvar->SetReadOnly(0);
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_FLAGS | NOTIFY_RANGE})) << "told with the next";
}

TEST_F(LockstepCvarTest, SetRangeUpdatesBoundsAndGrain) {
  const auto cvar = Make(0.001, 1000, LOCKSTEP_1_2_5, 5);
  // The grain of an Initialize is that of the value before its default: 1 % of 0.001.
  EXPECT_DOUBLE_EQ(cvar->GetGrain(), 1e-5);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetRange(5, 0.001, 1000, nullptr, nullptr, 0, true), S_OK);
  EXPECT_DOUBLE_EQ(cvar->GetGrain(), 0.05);
  EXPECT_EQ(cvar->SetRange(5, 0.001, 1000, nullptr, nullptr, 0, true), S_OK);
  EXPECT_EQ(cvar->SetRange(2, 0.01, 2, nullptr, L"knob", 7, true), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 2);
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_RANGE, NOTIFY_GUIHINTS,
                                          NOTIFY_ATTRIBUTES | NOTIFY_RANGE | NOTIFY_VALUE}));
  EXPECT_EQ(cvar->SetRange(2, 50, 20, nullptr, nullptr, 0, true), S_OK);
  EXPECT_EQ(cvar->GetMin(), 20);
  EXPECT_EQ(cvar->GetMax(), 20);
}

TEST_F(LockstepCvarTest, BoundSettersLimitAndKeepMinBelowMax) {
  const auto cvar = Make(0.01, 100, LOCKSTEP_1_2_5, 1);
  EXPECT_EQ(cvar->SetMinValue(std::nan("")), E_INVALIDARG);
  EXPECT_EQ(cvar->SetMaxValue(std::nan("")), E_INVALIDARG);
  EXPECT_EQ(cvar->SetMaxValue(HUGE_VAL), S_FALSE);  // the other bound did not move
  EXPECT_EQ(cvar->GetMax(), 1e301);
  EXPECT_EQ(cvar->SetMinValue(-HUGE_VAL), S_FALSE);
  EXPECT_EQ(cvar->GetMin(), 1e-301);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetMaxValue(0.5), S_FALSE);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 0.5);
  EXPECT_EQ(cvar->SetMinValue(20), S_FALSE);
  EXPECT_EQ(cvar->GetMin(), 20);
  EXPECT_EQ(cvar->GetMax(), 20);
  EXPECT_EQ(cvar->SetMaxValue(4), S_FALSE);
  EXPECT_EQ(cvar->GetMin(), 4);
  EXPECT_EQ(listener->TakeMasks(), (Masks(3, NOTIFY_RANGE | NOTIFY_VALUE)));
  listener->answer = E_FAIL;
  EXPECT_EQ(cvar->SetMaxValue(40), E_FAIL);
}

TEST_F(LockstepCvarTest, PositionsAreLogarithmic) {
  const auto cvar = Make(0.01, 100, LOCKSTEP_1_2_5, 1);
  double position = -1;
  EXPECT_EQ(cvar->GetAdaptedValueNorm(&position), S_OK);
  EXPECT_DOUBLE_EQ(position, 0.5);
  EXPECT_EQ(cvar->SetRequestedValueNorm(0.75), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 10);
  EXPECT_EQ(cvar->SetRequestedValueNorm(2), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 100);
  EXPECT_EQ(cvar->SetRequestedValueNorm(std::nan("")), E_INVALIDARG);
  EXPECT_EQ(cvar->GetAdaptedValueNorm(nullptr), E_POINTER);
}

TEST_F(LockstepCvarTest, NumberOfIncrementCountsCoarseSteps) {
  double count = -1;
  EXPECT_EQ(Make(0.01, 100, LOCKSTEP_1_2_5, 1)->get_NumberOfIncrement(&count), S_OK);
  EXPECT_EQ(count, 12);  // three steps in each of four decades
  EXPECT_EQ(Make(0.3, 3, LOCKSTEP_1_2_5, 1)->get_NumberOfIncrement(&count), S_OK);
  EXPECT_EQ(count, 4);  // 0.5, 1, 2, 3
  EXPECT_EQ(Make(7, 7, LOCKSTEP_1_2_5, 7)->get_NumberOfIncrement(&count), S_OK);
  EXPECT_EQ(count, 0);
}

TEST_F(LockstepCvarTest, TheCoarseGrainIsAlwaysZero) {
  const auto cvar = Make(0.01, 100, LOCKSTEP_1_2_5, 1);
  EXPECT_EQ(cvar->put_CoarseGrain(5), S_OK);
  double grain = -1;
  EXPECT_EQ(cvar->get_CoarseGrain(&grain), S_OK);
  EXPECT_EQ(grain, 0);
}

struct RangeRow {
  LOCKSTEP lockstep;
  const wchar_t* points;
};
constexpr RangeRow kRangeRows[] = {
    {LOCKSTEP_1_2_25_5, L"1, 2, 2.5, 5"},
    {LOCKSTEP_1_2_4, L"1, 2, 4"},
    {LOCKSTEP_1_2_4_5, L"1, 2, 4, 5"},
    {LOCKSTEP_1_2_4_8, L"1, 2, 4, 8"},
    {LOCKSTEP_1_2_5, L"1, 2, 5"},
    {LOCKSTEP_1_25_4_5, L"1, 2.5, 4, 5"},
    {LOCKSTEP_1_25_5, L"1, 2.5, 5"},
    {LOCKSTEP_1_3_5, L"1, 3, 5"},
    {LOCKSTEP_1_33, L"1, 3.3"},
    {LOCKSTEP_1, L"1"},
    {LOCKSTEP_1_2, L"1, 2"},
    {LOCKSTEP_1_2_3_5, L"1, 2, 3, 5"},
    {LOCKSTEP_1_5, L"1, 5"},
};

TEST_F(LockstepCvarTest, TheRangeTextListsTheSequenceAndFineGrain) {
  for (const RangeRow& row : kRangeRows) {
    const auto cvar = Make(0.001, 1000, row.lockstep, 1);
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Range),
              std::wstring(L"From 0.001 to 1000 step 1e-05, locked to ") + row.points +
                  L", fine grain allowed=true, on=false");
  }
  const auto cvar = Make(0.001, 1000, LOCKSTEP_1, 1, 0);
  EXPECT_EQ(cvar->put_FineGrainOn(1), S_OK);
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_RangeStringScreen),
            L"From 0.001 to 1000 step 1e-05, locked to 1, fine grain allowed=false, on=true")
      << "on= shows the switch, not whether it counts";
}

TEST_F(LockstepCvarTest, TheSignatureNamesItsType) {
  const auto cvar = Make(0.001, 1000, LOCKSTEP_1_2_5, 5, 1, CVARFLAG_READONLY, L"V");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Signature),
            L"Type,DoubleLockstep,Request,5,Adapt,5,Default,5,Min,0.001,Max,1000,Grain,1e-05,"
            L"Unit,V,Flags,R");
}

TEST_F(LockstepCvarTest, AReadOnlyCvarRefuses) {
  const auto cvar = Make(0.001, 1000, LOCKSTEP_1_2_5, 5, 1, CVARFLAG_READONLY);
  EXPECT_EQ(cvar->Increment(1), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetRequestedValue(1), E_ACCESSDENIED);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 5);
}

TEST_F(LockstepCvarTest, NullOutPointersAreRefused) {
  const auto cvar = Make(0.001, 1000, LOCKSTEP_1_2_5, 5);
  EXPECT_EQ(cvar->get_Lockstep(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_LockStep(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_FineGrainAllowed(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_FineGrainOn(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_CoarseGrain(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_NumberOfIncrement(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_Range(nullptr), E_POINTER);
}

TEST_F(LockstepCvarTest, AReplicaTakesOverSequenceAndFineGrainWithTheRange) {
  const auto source = Make(0.1, 50, LOCKSTEP_1_2_4, 4);
  ASSERT_EQ(source->put_FineGrainOn(1), S_OK);
  const auto replica = Make(0.001, 1000, LOCKSTEP_1_2_5, 1, 0);
  replica->SetReplicationFlags(REPLICATE_RANGE);
  EXPECT_EQ(replica->OnCvarNotify(source, NOTIFY_RANGE), S_OK);
  LOCKSTEP lockstep{};
  int on = 0;
  EXPECT_EQ(replica->get_Lockstep(&lockstep), S_OK);
  EXPECT_EQ(lockstep, LOCKSTEP_1_2_4);
  EXPECT_EQ(replica->get_FineGrainAllowed(&on), S_OK);
  EXPECT_EQ(on, 1);
  EXPECT_EQ(replica->get_FineGrainOn(&on), S_OK);
  EXPECT_EQ(on, 1);
  EXPECT_EQ(replica->GetMin(), 0.1);
  EXPECT_EQ(replica->GetMax(), 50);
}

TEST_F(LockstepCvarTest, ItIsADoubleToo) {
  const auto cvar = Make(0.001, 1000, LOCKSTEP_1_2_5, 5);
  CComPtr<IVorCvarDouble> plain;
  ASSERT_EQ(cvar->QueryInterface(IID_IVorCvarDouble, reinterpret_cast<void**>(&plain)), S_OK);
  EXPECT_EQ(plain->SetRequestedValue(3.3), S_OK);
  EXPECT_DOUBLE_EQ(Adapted(cvar), 5);
  CComPtr<IVorCvarDoubleLockstep> own;
  EXPECT_EQ(cvar->QueryInterface(IID_IVorCvarDoubleLockstep, reinterpret_cast<void**>(&own)), S_OK);
}

/// The points of a sequence inside a range, with its ends, from a plain table.
std::vector<double> PointsBetween(int sequence, int lowDecade, int highDecade) {
  static const std::vector<double> kRows[] = {
      {1, 2, 2.5, 5}, {1, 2, 4},    {1, 2, 4, 5}, {1, 2, 4, 8}, {1, 2, 5},
      {1, 2.5, 4, 5}, {1, 2.5, 5},  {1, 3, 5},    {1, 3.3},     {1},
      {1, 2},         {1, 2, 3, 5}, {1, 5}};
  std::vector<double> points;
  for (int decade = lowDecade; decade < highDecade; ++decade) {
    for (const double mantissa : kRows[sequence]) points.push_back(mantissa * std::pow(10, decade));
  }
  points.push_back(std::pow(10, highDecade));
  return points;
}

TEST_F(LockstepCvarTest, SteppingVisitsEveryPointOfEverySequenceOnceUpAndDown) {
  for (const auto& [low, high] : {std::pair{-9, 2}, {-3, 1}, {0, 1}, {5, 12}}) {
    for (int sequence = 0; sequence <= 12; ++sequence) {
      SCOPED_TRACE(testing::Message() << "sequence " << sequence << " from 1e" << low);
      const std::vector<double> points = PointsBetween(sequence, low, high);
      const auto cvar =
          Make(points.front(), points.back(), static_cast<LOCKSTEP>(sequence), points.front());
      for (std::size_t i = 0; i < points.size(); ++i) {
        ASSERT_NEAR(Adapted(cvar), points[i], points[i] * 1e-12);
        ASSERT_EQ(cvar->Increment(1), S_OK);
      }
      for (std::size_t i = points.size(); i-- > 0;) {
        ASSERT_NEAR(Adapted(cvar), points[i], points[i] * 1e-12);
        ASSERT_EQ(cvar->Increment(-1), S_OK);
      }
      double count = 0;
      ASSERT_EQ(cvar->get_NumberOfIncrement(&count), S_OK);
      EXPECT_EQ(count, static_cast<double>(points.size() - 1));
    }
  }
}

TEST_F(LockstepCvarTest, SnapsToThePointWithTheNearestRatio) {
  cvars::test::Randomness random("LockstepCvar");
  for (int i = 0; i < 10000 && !HasFailure(); ++i) {
    const int sequence = static_cast<int>(random.Whole(0, 12));
    const std::vector<double> points = PointsBetween(sequence, -4, 4);
    const auto cvar = CvarObject<CCvarDoubleLockstep>::Create();
    cvar->put_Lockstep(static_cast<LOCKSTEP>(sequence));
    cvar->SetRange(1, 1e-4, 1e4, nullptr, nullptr, 0, false);
    const double request = std::pow(10.0, random.Real(-4.5, 4.5));
    const double clamped = std::clamp(request, 1e-4, 1e4);
    double nearest = points.front();
    double smallest = std::numeric_limits<double>::infinity();
    bool close = false;
    for (const double point : points) {
      const double distance = std::fabs(std::log(clamped) - std::log(point));
      close = close || std::fabs(distance - smallest) < 1e-9;
      if (distance < smallest) {
        smallest = distance;
        nearest = point;
      }
    }
    if (close) continue;  // the model's logarithms cannot tell so near a tie
    (void)cvar->SetRequestedValue(request);
    ASSERT_NEAR(cvar->GetAdaptedValue(), nearest, nearest * 1e-12) << sequence << ' ' << request;
  }
}

TEST_F(LockstepCvarTest, FineValuesAreWholeFineStepsInsideTheRange) {
  cvars::test::Randomness random("LockstepFine");
  for (int i = 0; i < 10000 && !HasFailure(); ++i) {
    const int sequence = static_cast<int>(random.Whole(0, 12));
    const auto cvar = Make(1e-4, 1e4, static_cast<LOCKSTEP>(sequence), 1);
    ASSERT_EQ(cvar->put_FineGrainOn(1), S_OK);
    const double request = std::pow(10.0, random.Real(-4, 4));
    (void)cvar->SetRequestedValue(request);
    double above = 0;
    bool onPoint = false;
    for (const double point : PointsBetween(sequence, -4, 5)) {
      onPoint = onPoint || std::fabs(point - request) <= 2e-4 * point;
      if (above == 0 && point > request) above = point;
    }
    if (onPoint) continue;  // which part of the decade counts there is tested by hand
    const double step = above * 0.01;
    double count = std::round(request / step);
    if (std::fabs(std::fabs(request / step - count) - 0.5) < 1e-9) continue;  // a tie goes up
    if (count * step < 1e-4) ++count;
    if (count * step > 1e4) --count;
    ASSERT_NEAR(cvar->GetAdaptedValue(), count * step, request * 1e-12)
        << sequence << ' ' << request;
  }
}

}  // namespace
