#include "GrainRounding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "Randomness.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(NearEqualityTest, CountsTheToleranceItself) {
  EXPECT_TRUE(cvars::NearlyEqual(1.0, 1.5, 0.5));
  EXPECT_FALSE(cvars::NearlyEqual(1.0, 1.5, 0.25));
  EXPECT_TRUE(cvars::NearlyEqual(2.0, 2.0, 0.0));
}

TEST(NearEqualityTest, ComparesInfinitiesExactly) {
  EXPECT_TRUE(cvars::NearlyEqual(kInfinity, kInfinity, 0.0));
  EXPECT_FALSE(cvars::NearlyEqual(kInfinity, -kInfinity, kInfinity));
  EXPECT_FALSE(cvars::NearlyEqual(kInfinity, 1.0, kInfinity));
}

TEST(NearEqualityTest, NotANumberIsNeverEqual) {
  EXPECT_FALSE(cvars::NearlyEqual(kNan, kNan, kInfinity));
  EXPECT_FALSE(cvars::NearlyEqual(kNan, 1.0, kInfinity));
  EXPECT_FALSE(cvars::NearlyEqual(1.0, 1.0, kNan));
}

TEST(ClampTest, KeepsWhatLiesInside) {
  EXPECT_EQ(3.0, cvars::ClampToRange(3.0, 0.0, 10.0));
  EXPECT_EQ(0.0, cvars::ClampToRange(-1.0, 0.0, 10.0));
  EXPECT_EQ(10.0, cvars::ClampToRange(10.5, 0.0, 10.0));
}

TEST(ClampTest, WithMinAboveMaxARequestBelowMinGivesMinAndAnyOtherMax) {
  EXPECT_EQ(10.0, cvars::ClampToRange(5.0, 10.0, 0.0));
  EXPECT_EQ(0.0, cvars::ClampToRange(10.0, 10.0, 0.0));
  EXPECT_EQ(0.0, cvars::ClampToRange(11.0, 10.0, 0.0));
}

struct StepCase {
  const char* name;
  double value;
  double grain;
  double step;
};

class EffectiveStepTest : public testing::TestWithParam<StepCase> {};

TEST_P(EffectiveStepTest, GivesTheStep) {
  EXPECT_DOUBLE_EQ(GetParam().step, cvars::EffectiveStep(GetParam().value, GetParam().grain));
}

constexpr StepCase kStepCases[] = {
    {"PositiveGrainIsTheStep", 1234.5, 0.25, 0.25},
    {"PositiveGrainIgnoresTheValue", -7.0, kInfinity, kInfinity},
    {"ZeroGrainIsRelative", 3e-9, 0.0, 3e-16},
    {"ZeroGrainTakesTheMagnitude", -2.0, 0.0, 2e-7},
    {"ZeroGrainAtZeroIsNoStep", 0.0, 0.0, 0.0},
    {"ThreeDigits", 1234.5, -3.0, 12.345},
    {"ThreeDigitsOfANegativeValue", -1239.0, -3.0, 12.39},
    {"DigitsRoundToWhole", 1000.0, -2.5, 10.0},
    {"OneDigitIsTheValue", 50.0, -1.0, 50.0},
    {"NoDigitIsOneDigit", 50.0, -0.25, 50.0},
    {"EighteenDigits", 1.0, -18.0, 1e-17},
    {"MoreThanEighteenDigitsAreEighteen", 1.0, -1e300, 1e-17},
    {"EndlessDigitsAreEighteen", 1.0, -kInfinity, 1e-17},
};
INSTANTIATE_TEST_SUITE_P(Table, EffectiveStepTest, testing::ValuesIn(kStepCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(EffectiveStepSpecialTest, NotANumberPassesThrough) {
  EXPECT_TRUE(std::isnan(cvars::EffectiveStep(1.0, kNan)));
}

TEST(EffectiveStepSpecialTest, EveryDigitCountMatchesThePowerOfTen) {
  for (int digits = 1; digits <= 18; ++digits) {
    EXPECT_EQ(7.3 * std::pow(10.0, 1 - digits), cvars::EffectiveStep(7.3, -digits)) << digits;
    EXPECT_EQ(digits, cvars::SignificantDigits(-digits));
  }
}

struct RoundCase {
  const char* name;
  double value;
  double step;
  double rounded;
};

class RoundToStepTest : public testing::TestWithParam<RoundCase> {};

TEST_P(RoundToStepTest, Rounds) {
  EXPECT_DOUBLE_EQ(GetParam().rounded, cvars::RoundToStep(GetParam().value, GetParam().step));
}

constexpr RoundCase kRoundCases[] = {
    {"Down", 9.9, 4.0, 8.0},
    {"TieGoesUp", 10.0, 4.0, 12.0},
    {"NegativeTieGoesUp", -10.0, 4.0, -8.0},
    {"Fraction", 10.0, 0.3, 9.9},
    {"TowardsZero", 0.4, 1.0, 0.0},
    {"NegativeToZero", -0.4, 1.0, 0.0},
    {"BelowMinusHalf", -0.6, 1.0, -1.0},
    {"ZeroStepKeeps", 1.23, 0.0, 1.23},
    {"NegativeStepKeeps", 1.23, -1.0, 1.23},
    {"NotANumberStepKeeps", 1.23, kNan, 1.23},
    {"OverflowOfTheProductKeeps", 1.7e308, 1.1e308, 1.7e308},
    {"OverflowOfTheQuotientKeeps", 1e300, 1e-300, 1e300},
    {"InfinityKeeps", kInfinity, 1.0, kInfinity},
    {"BeyondWholeNumbers", 1e20, 1.0, 1e20},
};
INSTANTIATE_TEST_SUITE_P(Table, RoundToStepTest, testing::ValuesIn(kRoundCases),
                         [](const auto& row) { return std::string(row.param.name); });

double SlowRound(double value, double step) {
  if (!(step > 0)) return value;
  const double rounded = std::floor(value / step + 0.5) * step;
  return std::isinf(rounded) ? value : rounded;
}

TEST(RoundToStepPropertyTest, MatchesTheFormula) {
  cvars::test::Randomness random("RoundToStep");
  for (int i = 0; i < 20000; ++i) {
    const double value = random.Chance(0.5) ? random.Real(-1e4, 1e4) : random.AnyDouble();
    double step = random.Chance(0.7) ? std::pow(10.0, random.Real(-6, 3)) : random.AnyDouble();
    if (random.Chance(0.3)) step = value / (static_cast<double>(random.Whole(-50, 50)) + 0.5);
    const double expected = SlowRound(value, step);
    const double rounded = cvars::RoundToStep(value, step);
    if (std::isnan(expected)) {
      EXPECT_TRUE(std::isnan(rounded)) << value << ' ' << step;
    } else {
      EXPECT_EQ(expected, rounded) << value << ' ' << step;
    }
  }
}

}  // namespace
