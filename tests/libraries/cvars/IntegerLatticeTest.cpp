#include "IntegerLattice.h"

#include <gtest/gtest.h>

#include <climits>

#include "Randomness.h"

namespace {

using Lattice32 = cvars::IntegerLattice<std::int32_t>;
using Lattice64 = cvars::IntegerLattice<std::int64_t>;

template <class T>
cvars::IntegerLattice<T> Lattice(T min, T max, T grain) {
  cvars::IntegerLattice<T> lattice{min, max, grain, 0};
  lattice.RecomputeOrigin();
  return lattice;
}

struct GrainCase {
  const char* name;
  std::int64_t value;
  std::int64_t grain;
  std::int64_t rounded;
};

class RoundToGrainTest : public testing::TestWithParam<GrainCase> {};

TEST_P(RoundToGrainTest, Rounds) {
  EXPECT_EQ(GetParam().rounded,
            static_cast<std::int64_t>(cvars::RoundToGrain(GetParam().value, GetParam().grain)));
}

constexpr GrainCase kGrainCases[] = {
    {"TieAwayFromZero", 15, 10, 20},
    {"NegativeTieAwayFromZero", -15, 10, -20},
    {"Down", 14, 10, 10},
    {"NegativeDown", -14, 10, -10},
    {"OddGrainRoundsUpJustBelowTheHalf", 2, 5, 5},
    {"OddGrainRoundsAwayBelowZero", -2, 5, -5},
    {"OddGrainDown", 1, 5, 0},
    {"GrainThreeRoundsEveryRest", 1, 3, 3},
    {"GrainTwo", 1, 2, 2},
    {"GrainOneKeeps", 7, 1, 7},
    {"GrainZeroKeeps", 7, 0, 7},
    {"NegativeGrainKeeps", 7, -5, 7},
    {"Multiple", 20, 10, 20},
    {"Zero", 0, 10, 0},
    {"LargestGrain", INT64_MIN + 1, INT64_MAX, INT64_MIN + 1},
    {"SmallestValue", INT64_MIN, 2, INT64_MIN},
};
INSTANTIATE_TEST_SUITE_P(Table, RoundToGrainTest, testing::ValuesIn(kGrainCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(RoundToGrainWideTest, MayLeaveTheWidthOfItsArgument) {
  EXPECT_TRUE(cvars::RoundToGrain(INT64_MAX, 10) == cvars::WideInteger{INT64_MAX} + 3);
  EXPECT_TRUE(cvars::RoundToGrain(INT64_MIN, 10) == cvars::WideInteger{INT64_MIN} - 2);
}

TEST(IntegerLatticeOriginTest, IsTheRestOfTheMinimum) {
  EXPECT_EQ(0, Lattice32::Origin(0, 10));
  EXPECT_EQ(1, Lattice32::Origin(1, 5));
  EXPECT_EQ(-2, Lattice32::Origin(8, 5)) << "8 rounds to 10";
  EXPECT_EQ(1, Lattice32::Origin(-999, 1000)) << "-999 rounds to -1000";
  EXPECT_EQ(0, Lattice32::Origin(-999, 1));
  EXPECT_EQ(-1, Lattice64::Origin(INT64_MIN, INT64_MAX));
}

TEST(IntegerLatticeAdaptTest, ClampsFirst) {
  const Lattice32 lattice = Lattice(0, 1000, 10);
  EXPECT_EQ(20, lattice.Adapt(15));
  EXPECT_EQ(10, lattice.Adapt(14));
  EXPECT_EQ(0, lattice.Adapt(-15));
  EXPECT_EQ(-20, Lattice(-1000, 1000, 10).Adapt(-15));
}

TEST(IntegerLatticeAdaptTest, AddsTheOriginAfterRoundingTheValueItself) {
  const Lattice32 lattice = Lattice(1, 999, 5);
  EXPECT_EQ(11, lattice.Adapt(7));
  EXPECT_EQ(6, lattice.Adapt(6));
  EXPECT_EQ(999, lattice.Adapt(998)) << "1001 lies above the range";
}

TEST(IntegerLatticeAdaptTest, ADefaultMinimumShiftsALargeGrain) {
  EXPECT_EQ(999, Lattice(-999, 999, 1000).Adapt(999)) << "1001 is limited to 999";
  EXPECT_EQ(1, Lattice(-999, 999, 1000).Adapt(0));
}

TEST(IntegerLatticeAdaptTest, ThresholdsNextToTheEndsSaturate) {
  const Lattice64 wide = Lattice(INT64_MIN, INT64_MAX, std::int64_t{10});
  EXPECT_EQ(INT64_MIN, wide.Adapt(INT64_MIN));
  EXPECT_EQ(INT64_MAX, wide.Adapt(INT64_MAX));
  const Lattice32 narrow = Lattice(INT32_MIN, INT32_MAX, 10);
  EXPECT_EQ(INT32_MIN, narrow.Adapt(INT32_MIN));
  EXPECT_EQ(INT32_MAX, narrow.Adapt(INT32_MAX));
}

TEST(IntegerLatticeAdaptTest, ValuesBeyond32BitsKeepEveryDigit) {
  const Lattice64 lattice = Lattice<std::int64_t>(0, 10000000000, 1000);
  EXPECT_EQ(5000000000, lattice.Adapt(5000000000));
  EXPECT_EQ(5000001000, lattice.Adapt(5000000500));
}

TEST(IntegerLatticeSteppedTest, StaysInsideTheRange) {
  const Lattice32 lattice = Lattice(0, 100, 10);
  EXPECT_EQ(50, lattice.Stepped(30, 2));
  EXPECT_EQ(10, lattice.Stepped(30, -2));
  EXPECT_EQ(100, lattice.Stepped(30, 8));
  EXPECT_EQ(0, lattice.Stepped(30, -8));
  EXPECT_EQ(30, lattice.Stepped(30, 0));
}

TEST(IntegerLatticeSteppedTest, TheProductOf32BitsWraps) {
  const Lattice32 lattice = Lattice(-1000, 1000, 1 << 16);
  EXPECT_EQ(0, lattice.Stepped(0, 1 << 16)) << "2^32 wraps to 0";
  EXPECT_EQ(-1000, lattice.Stepped(0, 1 << 15)) << "2^31 wraps to the smallest number";
}

TEST(IntegerLatticeSteppedTest, TheProductOf64BitsDoesNot) {
  const Lattice64 lattice = Lattice<std::int64_t>(INT64_MIN, INT64_MAX, INT64_MAX);
  EXPECT_EQ(INT64_MAX, lattice.Stepped(5, INT_MAX));
  EXPECT_EQ(INT64_MIN, lattice.Stepped(5, INT_MIN));
}

TEST(IntegerLatticeCountTest, IsARealQuotient) {
  EXPECT_DOUBLE_EQ(2.5, Lattice(0, 25, 10).StepCount());
  EXPECT_DOUBLE_EQ(4294967295.0, Lattice(INT32_MIN, INT32_MAX, 1).StepCount());
  EXPECT_DOUBLE_EQ(18446744073709551615.0,
                   Lattice<std::int64_t>(INT64_MIN, INT64_MAX, 1).StepCount());
}

TEST(CutToIntegerTest, CutsTowardsZero) {
  std::int32_t integer = 0;
  EXPECT_EQ(S_OK, cvars::CutToInteger(2.9, &integer));
  EXPECT_EQ(2, integer);
  EXPECT_EQ(S_OK, cvars::CutToInteger(-2.9, &integer));
  EXPECT_EQ(-2, integer);
  EXPECT_EQ(S_OK, cvars::CutToInteger(2147483647.9, &integer));
  EXPECT_EQ(INT32_MAX, integer);
  EXPECT_EQ(S_OK, cvars::CutToInteger(-2147483648.9, &integer));
  EXPECT_EQ(INT32_MIN, integer);
}

TEST(CutToIntegerTest, WhatDoesNotFitChangesNothing) {
  std::int32_t narrow = 7;
  EXPECT_EQ(DISP_E_OVERFLOW, cvars::CutToInteger(2147483648.0, &narrow));
  EXPECT_EQ(DISP_E_OVERFLOW, cvars::CutToInteger(-2147483649.0, &narrow));
  EXPECT_EQ(E_INVALIDARG, cvars::CutToInteger(HUGE_VAL, &narrow));
  EXPECT_EQ(E_INVALIDARG, cvars::CutToInteger(-HUGE_VAL, &narrow));
  EXPECT_EQ(E_INVALIDARG, cvars::CutToInteger(std::nan(""), &narrow));
  EXPECT_EQ(7, narrow);
  std::int64_t wide = 7;
  EXPECT_EQ(DISP_E_OVERFLOW, cvars::CutToInteger(9223372036854775808.0, &wide));
  EXPECT_EQ(7, wide);
  EXPECT_EQ(S_OK, cvars::CutToInteger(-9223372036854775808.0, &wide));
  EXPECT_EQ(INT64_MIN, wide);
}

template <class T>
void ExpectLikePlainArithmetic(const char* what) {
  using Wide = cvars::WideInteger;
  cvars::test::Randomness random(what);
  const auto pick = [&] {
    if (random.Chance(0.2)) {
      constexpr T kEnds[] = {
          std::numeric_limits<T>::min(),     std::numeric_limits<T>::min() + 1, -1, 0, 1,
          std::numeric_limits<T>::max() - 1, std::numeric_limits<T>::max()};
      return random.Pick(kEnds);
    }
    if (random.Chance(0.5)) return static_cast<T>(random.Whole(-2000, 2000));
    return static_cast<T>(
        random.Whole(std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
  };
  for (int i = 0; i < 20000; ++i) {
    T min = pick();
    T max = pick();
    if (max < min) std::swap(min, max);
    const T grain =
        std::max<T>(random.Chance(0.6) ? static_cast<T>(random.Whole(1, 20)) : pick(), 1);
    const T request = pick();
    const auto round = [&](Wide value) {
      if (grain <= 1) return value;
      const Wide magnitude = value < 0 ? -value : value;
      Wide count = magnitude / grain;
      if (magnitude % grain != 0 && magnitude % grain >= grain / 2) ++count;
      return count * grain * (value < 0 ? -1 : 1);
    };
    const Wide clamped = std::min<Wide>(std::max<Wide>(request, min), max);
    Wide expected = clamped;
    if (grain > 1) {
      expected = round(clamped) + (Wide{min} - round(min));
      expected = std::min<Wide>(std::max<Wide>(expected, min), max);
    }
    ASSERT_EQ(static_cast<T>(expected), Lattice<T>(min, max, grain).Adapt(request))
        << min << ' ' << max << ' ' << grain << ' ' << request;
  }
}

TEST(IntegerLatticePropertyTest, NarrowMatchesPlainArithmetic) {
  ExpectLikePlainArithmetic<std::int32_t>("IntegerLattice32");
}

TEST(IntegerLatticePropertyTest, WideMatchesPlainArithmetic) {
  ExpectLikePlainArithmetic<std::int64_t>("IntegerLattice64");
}

}  // namespace
