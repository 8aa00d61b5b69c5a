#include "ValueSet.h"

#include <gtest/gtest.h>

#include <climits>

#include "Randomness.h"

namespace {

constexpr AdaptPolicy kPolicies[] = {ADAPT_CLOSEST_DOWN, ADAPT_CLOSEST_UP, ADAPT_DOWN, ADAPT_UP};

TEST(AdaptPolicyTest, NumbersAndNamesAreFixed) {
  EXPECT_EQ(0u, ADAPT_CLOSEST_DOWN);
  EXPECT_EQ(1u, ADAPT_CLOSEST_UP);
  EXPECT_EQ(2u, ADAPT_DOWN);
  EXPECT_EQ(3u, ADAPT_UP);
  EXPECT_STREQ(L"ClosestDown", cvars::AdaptPolicyName(ADAPT_CLOSEST_DOWN));
  EXPECT_STREQ(L"ClosestUp", cvars::AdaptPolicyName(ADAPT_CLOSEST_UP));
  EXPECT_STREQ(L"Down", cvars::AdaptPolicyName(ADAPT_DOWN));
  EXPECT_STREQ(L"Up", cvars::AdaptPolicyName(ADAPT_UP));
  EXPECT_STREQ(L"", cvars::AdaptPolicyName(static_cast<AdaptPolicy>(4)));
}

struct SetCase {
  const char* name;
  AdaptPolicy policy;
  double requested;
  double adapted;
};

class ValueSetAdaptTest : public testing::TestWithParam<SetCase> {};

TEST_P(ValueSetAdaptTest, TakesAMember) {
  const SetCase& row = GetParam();
  EXPECT_EQ(row.adapted, cvars::AdaptToSet<double>({1, 2, 5}, row.policy, row.requested));
}

constexpr SetCase kSetCases[] = {
    {"TieClosestDown", ADAPT_CLOSEST_DOWN, 3.5, 2},
    {"TieClosestUp", ADAPT_CLOSEST_UP, 3.5, 5},
    {"NearerBelow", ADAPT_CLOSEST_UP, 3.4, 2},
    {"NearerAbove", ADAPT_CLOSEST_DOWN, 3.6, 5},
    {"Down", ADAPT_DOWN, 4.9, 2},
    {"Up", ADAPT_UP, 2.1, 5},
};
INSTANTIATE_TEST_SUITE_P(Table, ValueSetAdaptTest, testing::ValuesIn(kSetCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ValueSetEndsTest, OutsideTheMembersThePolicyDoesNotCount) {
  for (const AdaptPolicy policy : kPolicies) {
    EXPECT_EQ(5, cvars::AdaptToSet<double>({1, 2, 5}, policy, 7));
    EXPECT_EQ(1, cvars::AdaptToSet<double>({1, 2, 5}, policy, 0.5));
    EXPECT_EQ(2, cvars::AdaptToSet<double>({1, 2, 5}, policy, 2));
    EXPECT_EQ(3.3, cvars::AdaptToSet<double>({}, policy, 3.3));
    EXPECT_EQ(4, cvars::AdaptToSet<double>({4}, policy, 4.5));
  }
}

TEST(ValueSetIntegerTest, DistancesDoNotOverflow) {
  const std::set<std::int64_t> ends = {INT64_MIN, INT64_MAX};
  EXPECT_EQ(INT64_MIN, cvars::AdaptToSet<std::int64_t>(ends, ADAPT_CLOSEST_UP, -1));
  EXPECT_EQ(INT64_MAX, cvars::AdaptToSet<std::int64_t>(ends, ADAPT_CLOSEST_DOWN, 0));
  const std::set<std::int32_t> narrow = {INT32_MIN, INT32_MAX};
  EXPECT_EQ(INT32_MIN, cvars::AdaptToSet<std::int32_t>(narrow, ADAPT_CLOSEST_UP, -1));
  EXPECT_EQ(INT32_MAX, cvars::AdaptToSet<std::int32_t>(narrow, ADAPT_CLOSEST_DOWN, 0));
}

TEST(ValueSetStepTest, StopsAtTheEnds) {
  const std::set<double> members = {1, 2, 5};
  EXPECT_EQ(5, cvars::StepInSet(members, 2.0, 1));
  EXPECT_EQ(5, cvars::StepInSet(members, 2.0, 5));
  EXPECT_EQ(1, cvars::StepInSet(members, 2.0, -1));
  EXPECT_EQ(1, cvars::StepInSet(members, 5.0, INT_MIN));
  EXPECT_EQ(5, cvars::StepInSet(members, 1.0, INT_MAX));
  EXPECT_EQ(2, cvars::StepInSet(members, 2.0, 0));
}

TEST(ValueSetStepTest, WhatIsNoMemberStays) {
  EXPECT_EQ(3, cvars::StepInSet<double>({1, 2, 5}, 3, 1));
  EXPECT_EQ(3, cvars::StepInSet<double>({}, 3, -1));
}

TEST(ValueSetTextTest, JoinsTheMembers) {
  EXPECT_EQ(L"1,2.5,5", cvars::MembersText<double>({5, 1, 2.5}));
  EXPECT_EQ(L"-3,10000000000", cvars::MembersText<std::int64_t>({10000000000, -3}));
  EXPECT_EQ(L"", cvars::MembersText<double>({}));
}

TEST(ValueSetPropertyTest, MatchesAPlainSearch) {
  cvars::test::Randomness random("ValueSet");
  for (int i = 0; i < 20000 && !HasFailure(); ++i) {
    std::set<int> members;
    for (std::int64_t count = random.Whole(0, 6); count > 0; --count)
      members.insert(static_cast<int>(random.Whole(-20, 20)));
    const auto policy = random.Pick(kPolicies);
    const int requested = static_cast<int>(random.Whole(-25, 25));
    int expected = requested;
    if (!members.empty() && members.count(requested) == 0) {
      int below = INT_MIN;
      int above = INT_MAX;
      for (const int member : members) {
        if (member < requested) below = member;
        if (member > requested && above == INT_MAX) above = member;
      }
      if (above == INT_MAX) {
        expected = below;
      } else if (below == INT_MIN) {
        expected = above;
      } else if (policy == ADAPT_UP || policy == ADAPT_DOWN) {
        expected = policy == ADAPT_UP ? above : below;
      } else if (requested - below == above - requested) {
        expected = policy == ADAPT_CLOSEST_UP ? above : below;
      } else {
        expected = requested - below < above - requested ? below : above;
      }
    }
    EXPECT_EQ(expected, cvars::AdaptToSet(members, policy, requested));
  }
}

}  // namespace
