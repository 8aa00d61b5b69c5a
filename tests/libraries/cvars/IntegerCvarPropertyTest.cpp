#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <tuple>

#include "IntegerCvarTest.h"
#include "Randomness.h"

namespace {

template <class Class>
using IntegerCvarPropertyTest = cvars::test::IntegerCvarTest<Class>;
TYPED_TEST_SUITE(IntegerCvarPropertyTest, cvars::test::IntegerWidths);

__extension__ typedef __int128 Wide;

/// The rule of adaptation, step by step, in plain arithmetic that is wide enough.
Wide SlowAdapt(Wide min, Wide max, Wide grain, Wide request) {
  const auto round = [grain](Wide value) {
    const Wide magnitude = value < 0 ? -value : value;
    Wide count = magnitude / grain;
    if (magnitude % grain != 0 && magnitude % grain >= grain / 2) ++count;
    return value < 0 ? -count * grain : count * grain;
  };
  const Wide clamped = request < min ? min : request > max ? max : request;
  if (grain <= 1) return clamped;
  const Wide shifted = round(clamped) + (min - round(min));
  return shifted < min ? min : shifted > max ? max : shifted;
}

TYPED_TEST(IntegerCvarPropertyTest, AdaptsAsTheSlowRuleDoes) {
  using Integer = typename TestFixture::Number;
  using Limits = std::numeric_limits<Integer>;
  cvars::test::Randomness random("IntegerCvar");
  const auto any = [&] {
    switch (random.Whole(0, 3)) {
      case 0:
        return static_cast<Integer>(random.Whole(-50, 50));
      case 1:
        return static_cast<Integer>(Limits::max() - random.Whole(0, 50));
      case 2:
        return static_cast<Integer>(Limits::min() + random.Whole(0, 50));
      default:
        return static_cast<Integer>(random.Whole(Limits::min(), Limits::max()));
    }
  };
  for (int i = 0; i < 20000 && !this->HasFailure(); ++i) {
    const Integer first = any();
    const Integer second = any();
    const Integer min = std::min(first, second);
    const Integer max = std::max(first, second);
    const auto small = static_cast<Integer>(random.Whole(1, 12));
    const Integer grain = random.Chance(0.7) ? small : std::max(any(), Integer{1});
    const Integer request = any();
    const auto cvar = CvarObject<TypeParam>::Create();
    cvar->SetRange(0, min, max, grain, nullptr, nullptr, 0, false);
    ASSERT_EQ(cvar->SetRequestedValue(request), S_OK);
    ASSERT_EQ(this->Adapted(cvar), static_cast<Integer>(SlowAdapt(min, max, grain, request)))
        << min << ' ' << max << ' ' << grain << ' ' << request;
  }
}

TYPED_TEST(IntegerCvarPropertyTest, SteppingVisitsEveryPointOnceUpAndDown) {
  for (const auto& [min, max, grain] :
       {std::tuple{0, 100, 10}, {-30, 30, 5}, {1, 101, 20}, {-999, 999, 1}}) {
    const auto cvar = this->Make(min, max, grain, min);
    for (int value = min; value < max; value += grain) {
      ASSERT_EQ(this->Adapted(cvar), value);
      ASSERT_EQ(cvar->Increment(1), S_OK);
    }
    for (int value = max; value > min; value -= grain) {
      ASSERT_EQ(this->Adapted(cvar), value);
      ASSERT_EQ(cvar->Increment(-1), S_OK);
    }
    EXPECT_EQ(this->Adapted(cvar), min);
  }
}

}  // namespace
