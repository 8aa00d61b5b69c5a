#include "CCvarDoubleSet.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>

#include "CCvarIntSet.h"
#include "CCvarLongIntSet.h"
#include "CvarObject.h"
#include "LiveCvars.h"
#include "Randomness.h"
#include "ReadProperties.h"
#include "ReadText.h"
#include "RecordingListener.h"

namespace {

using cvars::test::RecordingListener;
using cvars::test::TextOf;
using Masks = std::vector<NOTIFYTYPE>;

constexpr CVARREPLICATIONFLAGS kDefaultReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;
constexpr NOTIFYTYPE kRequestedAndValue = NOTIFY_REQUESTED | NOTIFY_VALUE;
constexpr AdaptPolicy kPolicies[] = {ADAPT_CLOSEST_DOWN, ADAPT_CLOSEST_UP, ADAPT_DOWN, ADAPT_UP};

/// What holds for the sets of every number.
template <class Class>
class ValueSetCvarTest : public cvars::test::CvarTest {
 protected:
  using Number = typename Class::Number;
  using Cvar = CComPtr<CvarObject<Class>>;
  using Members = std::set<Number>;
  static constexpr bool kIsDouble = std::is_same_v<Number, double>;

  static Cvar Make(const Members& members, AdaptPolicy policy, Number defaultValue,
                   bool fine = false, const wchar_t* unit = nullptr,
                   CVARFLAGS flags = CVARFLAGS(0)) {
    Cvar cvar = CvarObject<Class>::Create();
    if constexpr (kIsDouble) {
      cvar->Initialize(L"Rate", defaultValue, members, policy, 0.0, fine, Number{1}, unit, flags,
                       nullptr, 0, kDefaultReplication);
    } else {
      cvar->Initialize(L"Rate", defaultValue, members, policy, fine, Number{1}, unit, flags,
                       nullptr, 0, kDefaultReplication);
    }
    return cvar;
  }
  static HRESULT SetRange(const Cvar& cvar, const Members& members, AdaptPolicy policy,
                          bool fine = false) {
    if constexpr (kIsDouble) {
      return cvar->SetRange(members, policy, 0.0, fine, Number{1});
    } else {
      return cvar->SetRange(members, policy, fine, Number{1});
    }
  }
};
using Classes = testing::Types<CCvarDoubleSet, CCvarIntSet, CCvarLongIntSet>;
TYPED_TEST_SUITE(ValueSetCvarTest, Classes);

struct AdaptRow {
  int request;
  int adapted[4];  ///< for ClosestDown, ClosestUp, Down, Up
};
// The members are 10, 20 and 50.
constexpr AdaptRow kAdaptRows[] = {
    {35, {20, 50, 20, 50}},   {49, {50, 50, 20, 50}}, {21, {20, 20, 20, 50}},
    {70, {50, 50, 50, 50}},   {5, {10, 10, 10, 10}},  {20, {20, 20, 20, 20}},
    {-900, {10, 10, 10, 10}},
};

TYPED_TEST(ValueSetCvarTest, RequestsTakeTheMemberThatThePolicySays) {
  for (const AdaptRow& row : kAdaptRows) {
    for (int policy = 0; policy < 4; ++policy) {
      SCOPED_TRACE(testing::Message() << row.request << " by policy " << policy);
      const auto cvar = this->Make({10, 20, 50}, kPolicies[policy], 10);
      EXPECT_EQ(cvar->SetRequestedValue(row.request), S_OK);
      EXPECT_EQ(cvar->GetAdaptedValue(), row.adapted[policy]);
      EXPECT_EQ(cvar->GetRequested(), row.request);
    }
  }
}

TYPED_TEST(ValueSetCvarTest, AnEmptySetKeepsTheRequest) {
  for (const AdaptPolicy policy : kPolicies) {
    const auto cvar = this->Make({}, policy, 1);
    EXPECT_EQ(cvar->SetRequestedValue(123456), S_OK);
    EXPECT_EQ(cvar->GetAdaptedValue(), 123456);
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Range), L"");
    EXPECT_EQ(cvar->Increment(1), S_OK);
    EXPECT_EQ(cvar->GetRequested(), 123456);
  }
}

TYPED_TEST(ValueSetCvarTest, IncrementsMoveByMembersAndStopAtTheEnds) {
  const auto cvar = this->Make({1, 2, 5}, ADAPT_CLOSEST_DOWN, 2);
  EXPECT_EQ(cvar->Increment(5), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 5);
  EXPECT_EQ(cvar->Increment(1), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 5);
  EXPECT_EQ(cvar->Increment(-1), S_OK);
  EXPECT_EQ(cvar->Increment(-1), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 1);
  EXPECT_EQ(cvar->Increment(std::numeric_limits<int>::min()), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 1);
  cvar->SetFlags(CVARFLAG_REVERSEINCREMENT, true);
  EXPECT_EQ(cvar->Increment(-1), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 2);
  cvar->SetReadOnly(1);
  EXPECT_EQ(cvar->Increment(1), E_ACCESSDENIED);
}

TYPED_TEST(ValueSetCvarTest, AValueReachedWithFineGrainIsRequestedAsItIs) {
  const auto cvar = this->Make({1, 2, 5}, ADAPT_CLOSEST_DOWN, 2, true);
  EXPECT_EQ(cvar->SetRequestedValue(3), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 3);
  EXPECT_EQ(cvar->EnableFineGrain(false, 1), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 3) << "switching does not adapt again";
  EXPECT_EQ(cvar->Increment(1), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 3);
  EXPECT_EQ(cvar->SetRequestedValue(4), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 5);
}

TYPED_TEST(ValueSetCvarTest, WithFineGrainItIsThePlainNumber) {
  const auto cvar = this->Make({1, 2, 5}, ADAPT_CLOSEST_DOWN, 2, true);
  const auto range = TextOf(*cvar, &IVorCvar::get_Range);
  EXPECT_EQ(range.substr(0, 5), L"From ");
  EXPECT_NE(TextOf(*cvar, &IVorCvar::get_Signature).find(L",Min,"), std::wstring::npos);
  EXPECT_EQ(cvar->Increment(2), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 4);
}

TYPED_TEST(ValueSetCvarTest, AnotherSetIsToldButDoesNotAdaptAgain) {
  const auto cvar = this->Make({1, 2, 5}, ADAPT_CLOSEST_DOWN, 2);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(this->SetRange(cvar, {10, 20}, ADAPT_UP), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 2);
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Range), L"10,20");
  EXPECT_EQ(this->SetRange(cvar, {10, 20}, ADAPT_UP), S_OK);
  EXPECT_EQ(cvar->EnableFineGrain(false, 1), S_OK);
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_RANGE}));
  EXPECT_EQ(cvar->EnableFineGrain(true, 3), S_OK);
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_RANGE}));
  EXPECT_EQ(cvar->EnableFineGrain(false, 3), S_OK);
  EXPECT_EQ(cvar->UpdateAdaptedValueAndNotify(), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 10);
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_RANGE, NOTIFY_VALUE}));
}

TYPED_TEST(ValueSetCvarTest, TheLongFormOfARangeTakesTheAttributesToo) {
  using Member = typename TestFixture::Number;
  const auto cvar = this->Make({1, 2, 5}, ADAPT_CLOSEST_DOWN, 2);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  const auto set = [&cvar](Member defaultValue, const std::set<Member>& members, bool setDefault) {
    if constexpr (TestFixture::kIsDouble) {
      return cvar->SetRange(defaultValue, members, ADAPT_UP, 0.0, false, Member{1}, nullptr,
                            L"Knob", 9, setDefault);
    } else {
      return cvar->SetRange(defaultValue, members, ADAPT_UP, false, Member{1}, nullptr, L"Knob", 9,
                            setDefault);
    }
  };
  EXPECT_EQ(set(7, {10, 20}, true), S_OK);
  Member defaultValue = 0;
  EXPECT_EQ(cvar->GetDefaultValue(&defaultValue), S_OK);
  EXPECT_EQ(defaultValue, 7);
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Range), L"10,20");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetGuiHints), L"Knob");
  unsigned int help = 0;
  EXPECT_EQ(cvar->get_HelpStringID(&help), S_OK);
  EXPECT_EQ(help, 9u);
  EXPECT_EQ(cvar->GetAdaptedValue(), 2);
  // The hints are told by themselves, as their setter does.
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_GUIHINTS, NOTIFY_ATTRIBUTES | NOTIFY_RANGE}));
  EXPECT_EQ(set(8, {10, 20}, false), S_OK);
  EXPECT_EQ(cvar->GetDefaultValue(&defaultValue), S_OK);
  EXPECT_EQ(defaultValue, 7);
  EXPECT_TRUE(listener->masks.empty());
}

TYPED_TEST(ValueSetCvarTest, TheSignatureShowsPolicyAndMembers) {
  constexpr const wchar_t* kNames[] = {L"ClosestDown", L"ClosestUp", L"Down", L"Up"};
  const std::wstring type = TextOf(*this->Make({}, ADAPT_UP, 0), &IVorCvar::get_Type);
  for (int policy = 0; policy < 4; ++policy) {
    const auto cvar = this->Make({5, 1, 2}, kPolicies[policy], 2, false, L"HZ", CVARFLAG_READONLY);
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Signature),
              L"Type," + type + L",Request,2,Adapt,2,Default,2,AdaptPolicy," + kNames[policy] +
                  L",Values,(1,2,5),Unit,HZ,Flags,R");
  }
}

TYPED_TEST(ValueSetCvarTest, PropertiesAddPolicyAndMembersToThoseOfTheNumber) {
  const auto cvar = this->Make({5, 1, 2}, ADAPT_CLOSEST_UP, 2);
  EXPECT_EQ(cvar->SetRequestedValue(4), S_OK);
  std::map<std::wstring, std::wstring> texts;
  for (const auto& property : cvars::test::OwnPropertiesOf(*cvar))
    texts[property.name] = property.text;
  EXPECT_EQ(texts.size(), 10u);
  EXPECT_EQ(texts[L"AdaptPolicy"], L"ClosestUp");
  EXPECT_EQ(texts[L"Values"], L"1,2,5");
  EXPECT_EQ(texts[L"RequestedValue"], L"4");
  EXPECT_EQ(texts[L"AdaptedValue"], L"5");
  EXPECT_EQ(texts[L"Default"], L"2");
  for (const wchar_t* name : {L"AdaptedValueStringScreen", L"Grain", L"Max", L"Min", L"Unit"}) {
    EXPECT_EQ(texts.count(name), 1u);
  }
}

TYPED_TEST(ValueSetCvarTest, ARequestNotifiesOnce) {
  const auto cvar = this->Make({1, 2, 5}, ADAPT_CLOSEST_DOWN, 2);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(6), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(7), S_OK);
  EXPECT_EQ(cvar->SetRequestedValueFromStringRemote(L"1"), S_OK);
  EXPECT_EQ(listener->TakeMasks(),
            (Masks{kRequestedAndValue, NOTIFY_REQUESTED, kRequestedAndValue}));
}

TYPED_TEST(ValueSetCvarTest, InitializeTellsNobody) {
  const auto cvar = CvarObject<TypeParam>::Create();
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  if constexpr (TestFixture::kIsDouble) {
    cvar->Initialize(L"Rate", 2, {1, 2, 5}, ADAPT_UP, 10.0, false, 0.01, L"HZ", CVARFLAGS(0), L"",
                     0, kDefaultReplication);
  } else {
    cvar->Initialize(L"Rate", 2, {1, 2, 5}, ADAPT_UP, false, 1, L"HZ", CVARFLAGS(0), L"", 0,
                     kDefaultReplication);
  }
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(cvar->GetAdaptedValue(), 2);
}

TYPED_TEST(ValueSetCvarTest, NullOutPointersAreRefused) {
  const auto cvar = this->Make({1, 2, 5}, ADAPT_CLOSEST_DOWN, 2);
  EXPECT_EQ(cvar->get_Range(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_Signature(nullptr), E_POINTER);
}

TYPED_TEST(ValueSetCvarTest, AdaptsAsAPlainSearchDoes) {
  using Member = typename TestFixture::Number;
  cvars::test::Randomness random("ValueSetCvar");
  for (int i = 0; i < 10000 && !this->HasFailure(); ++i) {
    std::set<Member> members;
    for (auto count = random.Whole(1, 6); count > 0; --count)
      members.insert(static_cast<Member>(random.Whole(-40, 40)));
    const AdaptPolicy policy = random.Pick(kPolicies);
    const auto request = static_cast<Member>(random.Whole(-50, 50));
    // The nearest member of those that the policy allows, by plain search.
    const bool inside = request > *members.begin() && request < *members.rbegin();
    Member best = *members.begin();
    bool found = false;
    for (const Member member : members) {
      if (inside && policy == ADAPT_UP && member < request) continue;
      if (inside && policy == ADAPT_DOWN && member > request) continue;
      const auto distance = [request](Member m) { return m < request ? request - m : m - request; };
      const bool nearer = !found || distance(member) < distance(best) ||
                          (distance(member) == distance(best) && policy == ADAPT_CLOSEST_UP);
      if (nearer) best = member;
      found = true;
    }
    const auto cvar = this->Make(members, policy, *members.begin());
    (void)cvar->SetRequestedValue(request);
    (void)cvar->UpdateAdaptedValueAndNotify();
    ASSERT_EQ(cvar->GetAdaptedValue(), best) << request << " by policy " << policy;
  }
}

TYPED_TEST(ValueSetCvarTest, SteppingVisitsEveryMemberOnceUpAndDown) {
  const std::set<typename TestFixture::Number> members = {-7, 0, 1, 2, 5, 10, 900};
  const auto cvar = this->Make(members, ADAPT_CLOSEST_DOWN, -7);
  for (auto at = members.begin(); at != members.end(); ++at) {
    ASSERT_EQ(cvar->GetAdaptedValue(), *at);
    ASSERT_EQ(cvar->Increment(1), S_OK);
  }
  for (auto at = members.rbegin(); at != members.rend(); ++at) {
    ASSERT_EQ(cvar->GetAdaptedValue(), *at);
    ASSERT_EQ(cvar->Increment(-1), S_OK);
  }
}

using DoubleSetTest = cvars::test::CvarTest;

TEST_F(DoubleSetTest, TheGrainFollowsTheMemberByTheDivisor) {
  const auto cvar = CvarObject<CCvarDoubleSet>::Create();
  cvar->Initialize(L"Rate", 1, {1, 2, 5}, ADAPT_CLOSEST_DOWN, 10, false, 0.15, nullptr,
                   CVARFLAGS(0), nullptr, 0, kDefaultReplication);
  EXPECT_EQ(cvar->GetGrain(), 0.15);  // 1 / 10 is below the minimum grain
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(5), S_OK);
  EXPECT_EQ(cvar->GetGrain(), 0.5);
  // The grain is told first, together with the request; the value has its own notification.
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_REQUESTED | NOTIFY_RANGE, NOTIFY_VALUE}));
  EXPECT_EQ(cvar->EnableFineGrain(true, 0.15), S_OK);
  EXPECT_EQ(cvar->Increment(1), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 5.5);
  EXPECT_EQ(cvar->GetGrain(), 0.5) << "with fine grain the grain stays";
}

TEST_F(DoubleSetTest, WithoutDivisorTheGrainStays) {
  const auto cvar = CvarObject<CCvarDoubleSet>::Create();
  cvar->SetRangeNoNotify({1, 2, 5}, ADAPT_UP, 0, false, 0.1);
  EXPECT_EQ(cvar->SetRequestedValue(1.5), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 2);
  EXPECT_EQ(cvar->GetGrain(), 1);
}

TEST_F(DoubleSetTest, SetRangeWithAttributesNotifiesWhatChanged) {
  const auto cvar = CvarObject<CCvarDoubleSet>::Create();
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetRange(2.5, {1, 2.5}, ADAPT_UP, 0, false, 0.1, nullptr, nullptr, 9, true),
            S_OK);
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_RANGE | NOTIFY_ATTRIBUTES}));
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Range), L"1,2.5");
  EXPECT_EQ(cvar->SetToDefault(), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 2.5);
}

using LongIntSetTest = cvars::test::CvarTest;

TEST_F(LongIntSetTest, MembersAtTheEndsOf64BitsAdaptExactly) {
  using Limits = std::numeric_limits<std::int64_t>;
  const auto cvar = CvarObject<CCvarLongIntSet>::Create();
  cvar->Initialize(L"Depth", 0, {Limits::min(), 0, Limits::max()}, ADAPT_CLOSEST_DOWN, false, 1,
                   L"", CVARFLAGS(0), L"", 0, kDefaultReplication);
  EXPECT_EQ(cvar->SetRequestedValue(Limits::max() / 2 + 1), S_OK);  // one nearer to the top
  EXPECT_EQ(cvar->GetAdaptedValue(), Limits::max());
  EXPECT_EQ(cvar->SetRequestedValue(Limits::min() / 2), S_OK);  // the tie goes down
  EXPECT_EQ(cvar->GetAdaptedValue(), Limits::min());
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Range), L"-9223372036854775808,0,9223372036854775807");
}

}  // namespace
