#include "CLockstep.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include "Randomness.h"

namespace {

const std::vector<double> kRows[] = {
    {1, 2, 2.5, 5, 10}, {1, 2, 4, 10},    {1, 2, 4, 5, 10}, {1, 2, 4, 8, 10}, {1, 2, 5, 10},
    {1, 2.5, 4, 5, 10}, {1, 2.5, 5, 10},  {1, 3, 5, 10},    {1, 3.3, 10},     {1, 10},
    {1, 2, 10},         {1, 2, 3, 5, 10}, {1, 5, 10}};

TEST(LockstepSequenceTest, HasTheMantissasOfItsRow) {
  for (int row = 0; row <= 12; ++row) {
    const auto mantissas = CLockstep::Mantissas(static_cast<LOCKSTEP>(row));
    EXPECT_EQ(kRows[row], std::vector<double>(mantissas.begin(), mantissas.end())) << row;
  }
}

TEST(LockstepSequenceTest, OtherNumbersAreClamped) {
  EXPECT_EQ(12, CLockstep(static_cast<LOCKSTEP>(13)).Lockstep());
  EXPECT_EQ(12, CLockstep(static_cast<LOCKSTEP>(INT_MAX)).Lockstep());
  EXPECT_EQ(0, CLockstep(static_cast<LOCKSTEP>(0xFFFFFFFFu)).Lockstep());
  EXPECT_EQ(0, CLockstep(static_cast<LOCKSTEP>(0x80000000u)).Lockstep());
  CLockstep lockstep(LOCKSTEP_1_2_5);
  lockstep.SetLockstep(static_cast<LOCKSTEP>(99));
  EXPECT_EQ(LOCKSTEP_1_5, lockstep.Lockstep());
}

TEST(LockstepRangeTest, StartsWithTheWidestRange) {
  const CLockstep lockstep(LOCKSTEP_1_2_5);
  EXPECT_EQ(1e-301, lockstep.Min());
  EXPECT_EQ(1e301, lockstep.Max());
}

TEST(LockstepRangeTest, KeepsMinBelowMaxAndInsideTheBounds) {
  CLockstep lockstep(LOCKSTEP_1_2_5);
  lockstep.SetMax(10);
  lockstep.SetMin(20);
  EXPECT_EQ(20, lockstep.Min());
  EXPECT_EQ(20, lockstep.Max());
  lockstep.SetMax(5);
  EXPECT_EQ(5, lockstep.Min());
  EXPECT_EQ(5, lockstep.Max());
  lockstep.SetMin(-3);
  EXPECT_EQ(1e-301, lockstep.Min());
  lockstep.SetMax(std::numeric_limits<double>::infinity());
  EXPECT_EQ(1e301, lockstep.Max());
}

TEST(LockstepPointTest, FindsThePointsRoundAValue) {
  const CLockstep lockstep(LOCKSTEP_1_2_5);
  EXPECT_DOUBLE_EQ(5, lockstep.Point(3.3, true, true));
  EXPECT_DOUBLE_EQ(2, lockstep.Point(3.3, false, true));
  EXPECT_DOUBLE_EQ(100, lockstep.Point(51, true, true));
  EXPECT_DOUBLE_EQ(50, lockstep.Point(99, false, true));
  EXPECT_DOUBLE_EQ(2e-6, lockstep.Point(1.5e-6, true, true));
  EXPECT_DOUBLE_EQ(2, lockstep.Point(2, true, true));
  EXPECT_DOUBLE_EQ(2, lockstep.Point(2, false, true));
}

TEST(LockstepPointTest, WhatRoundingTookAwayStaysOnThePoint) {
  const CLockstep lockstep(LOCKSTEP_1_2_5);
  EXPECT_DOUBLE_EQ(2, lockstep.Point(2 + 1e-14, true, true));
  EXPECT_DOUBLE_EQ(2, lockstep.Point(2 - 1e-14, false, true));
  EXPECT_DOUBLE_EQ(5, lockstep.Point(2 + 4e-14, true, true));
  EXPECT_DOUBLE_EQ(1, lockstep.Point(2 - 4e-14, false, true));
}

TEST(LockstepPointTest, ValuesThatAreNotAboveZeroReadAsOne) {
  const CLockstep lockstep(LOCKSTEP_1_2_5);
  for (const double value : {0.0, -0.0, -7.0, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(1, lockstep.Point(value, true, true));
    EXPECT_EQ(1, lockstep.Point(value, false, true));
    EXPECT_EQ(1, lockstep.Nearest(value));
  }
}

TEST(LockstepPointTest, TheRangeLimitsAPointOnlyWhenAsked) {
  CLockstep lockstep(LOCKSTEP_1_2_5);
  lockstep.SetMax(4.2);
  lockstep.SetMin(2.2);
  EXPECT_EQ(4.2, lockstep.Point(3, true, true));
  EXPECT_EQ(2.2, lockstep.Point(3, false, true));
  EXPECT_DOUBLE_EQ(5, lockstep.Point(3, true, false));
  EXPECT_DOUBLE_EQ(2, lockstep.Point(3, false, false));
}

TEST(LockstepNearestTest, ComparesRatios) {
  const CLockstep lockstep(LOCKSTEP_1_2_5);
  EXPECT_DOUBLE_EQ(5, lockstep.Nearest(3.3));
  EXPECT_DOUBLE_EQ(2, lockstep.Nearest(3.16));
  EXPECT_DOUBLE_EQ(2, lockstep.Nearest(2));
  EXPECT_DOUBLE_EQ(1000, lockstep.Nearest(800));
}

TEST(LockstepNearestTest, ATieGoesDown) {
  // 2 lies between 1 and 4 with the same ratio to both.
  CLockstep lockstep(LOCKSTEP_1);
  lockstep.SetMax(4);
  lockstep.SetMin(1);
  EXPECT_EQ(1, lockstep.Nearest(2));
}

TEST(LockstepFineTest, IsOneHundredthOfThePointAbove) {
  const CLockstep lockstep(LOCKSTEP_1_2_5);
  EXPECT_DOUBLE_EQ(0.05, lockstep.Fine(3.3, 0));
  EXPECT_DOUBLE_EQ(0.05, lockstep.Fine(3.3, 1));
}

TEST(LockstepFineTest, OnAPointTheDirectionChoosesTheSide) {
  const CLockstep lockstep(LOCKSTEP_1_2_5);
  EXPECT_DOUBLE_EQ(0.02, lockstep.Fine(2, 0));
  EXPECT_DOUBLE_EQ(0.02, lockstep.Fine(2, -1));
  EXPECT_DOUBLE_EQ(0.05, lockstep.Fine(2, 1));
  EXPECT_DOUBLE_EQ(0.05, lockstep.Fine(2.0001, 0)) << "above a point the next one counts";
  EXPECT_DOUBLE_EQ(0.02, lockstep.Fine(1.9999, 0));
}

TEST(LockstepAdaptTest, SnapsOrRoundsToTheFineStep) {
  const CLockstep lockstep(LOCKSTEP_1_2_5);
  EXPECT_DOUBLE_EQ(5, lockstep.Adapt(3.3, false));
  EXPECT_DOUBLE_EQ(3.35, lockstep.Adapt(3.34, true));
  EXPECT_DOUBLE_EQ(1.98, lockstep.Adapt(1.985, true));
}

TEST(LockstepAdaptTest, StaysInsideTheRangeByWholeSteps) {
  CLockstep lockstep(LOCKSTEP_1_2_5);
  lockstep.SetMax(4.03);
  lockstep.SetMin(2.52);
  EXPECT_DOUBLE_EQ(4.0, lockstep.Adapt(4.03, true)) << "4.05 lies above the range";
  EXPECT_DOUBLE_EQ(2.55, lockstep.Adapt(2.52, true)) << "2.5 lies below the range";
}

TEST(LockstepAdaptTest, ARangeBelowOneStepKeepsTheValue) {
  CLockstep lockstep(LOCKSTEP_1_2_5);
  lockstep.SetMax(3.03);
  lockstep.SetMin(3.01);
  EXPECT_EQ(3.021, lockstep.Adapt(3.021, true));
}

TEST(LockstepSteppedTest, MovesFromPointToPoint) {
  const CLockstep lockstep(LOCKSTEP_1_2_5);
  EXPECT_DOUBLE_EQ(10, lockstep.Stepped(5, 1));
  EXPECT_DOUBLE_EQ(2, lockstep.Stepped(5, -1));
  EXPECT_DOUBLE_EQ(100, lockstep.Stepped(5, 4));
  EXPECT_DOUBLE_EQ(0.5, lockstep.Stepped(5, -3));
  EXPECT_EQ(5, lockstep.Stepped(5, 0));
}

TEST(LockstepSteppedTest, StopsAtTheRangeEnds) {
  CLockstep lockstep(LOCKSTEP_1_2_5);
  lockstep.SetMax(30);
  lockstep.SetMin(0.3);
  EXPECT_EQ(30, lockstep.Stepped(5, INT_MAX));
  EXPECT_EQ(0.3, lockstep.Stepped(5, INT_MIN));
}

double SlowPoint(int row, double value, bool up) {
  if (!(value > 0)) value = 1;
  const double decade = std::pow(10.0, std::floor(std::log10(value)));
  const auto& mantissas = kRows[row];
  if (up) {
    return decade * *std::find_if(mantissas.begin(), mantissas.end() - 1,
                                  [&](double m) { return m > value / decade - 2e-14; });
  }
  return decade * *std::find_if(mantissas.rbegin(), mantissas.rend() - 1,
                                [&](double m) { return m <= value / decade + 2e-14; });
}

TEST(LockstepPropertyTest, PointsMatchThePlainSearch) {
  cvars::test::Randomness random("Lockstep");
  for (int i = 0; i < 20000 && !HasFailure(); ++i) {
    const int row = static_cast<int>(random.Whole(0, 12));
    double value = std::pow(10.0, random.Real(-30, 30));
    if (random.Chance(0.4)) {
      value = random.Pick(kRows[row]) * std::pow(10.0, static_cast<double>(random.Whole(-12, 12))) *
              (1 + static_cast<double>(random.Whole(-60, 60)) * 1e-15);
    }
    CLockstep lockstep(static_cast<LOCKSTEP>(row));
    const double above = SlowPoint(row, value, true);
    const double below = SlowPoint(row, value, false);
    EXPECT_EQ(above, lockstep.Point(value, true, false)) << row << ' ' << value;
    EXPECT_EQ(below, lockstep.Point(value, false, false)) << row << ' ' << value;
    EXPECT_EQ(value / below <= above / value ? below : above, lockstep.Nearest(value));
    const double adapted = lockstep.Adapt(value, false);
    EXPECT_NEAR(adapted, lockstep.Adapt(adapted, false), adapted * 1e-13) << "settles at once";
  }
}

}  // namespace
