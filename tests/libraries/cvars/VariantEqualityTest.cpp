#include "VariantEquality.h"

#include <gtest/gtest.h>

#include <string>

#include "CComVariant.h"
#include "SafeArray.h"

namespace {

using cvars::SameVariant;

struct EqualityCase {
  const char* name;
  CComVariant left;
  CComVariant right;
  bool same;
};

class VariantEqualityTest : public testing::TestWithParam<EqualityCase> {};

TEST_P(VariantEqualityTest, Compares) {
  EXPECT_EQ(GetParam().same, SameVariant(GetParam().left, GetParam().right));
  EXPECT_EQ(GetParam().same, SameVariant(GetParam().right, GetParam().left));
}

const EqualityCase kEqualityCases[] = {
    {"Empty", CComVariant(), CComVariant(), true},
    {"EmptyIsNotZero", CComVariant(), CComVariant(0), false},
    {"Integers", CComVariant(5), CComVariant(5), true},
    {"OtherIntegers", CComVariant(5), CComVariant(6), false},
    {"OtherTag", CComVariant(5), CComVariant(5.0), false},
    {"Shorts", CComVariant(short{5}), CComVariant(short{5}), true},
    {"Bytes", CComVariant(static_cast<unsigned char>(5)),
     CComVariant(static_cast<unsigned char>(6)), false},
    {"LongIntegers", CComVariant(5'000'000'000LL), CComVariant(5'000'000'001LL), false},
    {"Doubles", CComVariant(0.5), CComVariant(0.5), true},
    {"ZeroesOfOtherSign", CComVariant(0.0), CComVariant(-0.0), false},
    {"Booleans", CComVariant(true), CComVariant(false), false},
    {"Texts", CComVariant(L"page"), CComVariant(L"page"), true},
    {"CaseOfTextsCounts", CComVariant(L"page"), CComVariant(L"Page"), false},
    {"NullTextIsEmpty", CComVariant(static_cast<const wchar_t*>(nullptr)), CComVariant(L""), true},
};
INSTANTIATE_TEST_SUITE_P(Table, VariantEqualityTest, testing::ValuesIn(kEqualityCases),
                         [](const auto& row) { return std::string(row.param.name); });

CComVariant VectorOf(VARTYPE type, LONG lowerBound, std::initializer_list<CComVariant> elements) {
  CComVariant variant;
  variant.vt = static_cast<VARTYPE>(VT_ARRAY | type);
  variant.parray = SafeArrayCreateVector(type, lowerBound, static_cast<ULONG>(elements.size()));
  LONG index = lowerBound;
  for (CComVariant element : elements) {
    void* const value = type == VT_VARIANT ? static_cast<void*>(&element)
                        : type == VT_BSTR  ? static_cast<void*>(element.bstrVal)
                                           : static_cast<void*>(&element.lVal);
    EXPECT_EQ(S_OK, SafeArrayPutElement(variant.parray, &index, value));
    ++index;
  }
  return variant;
}

TEST(VariantEqualityArrayTest, ArraysAreComparedByTheirElements) {
  const CComVariant numbers = VectorOf(VT_I4, 0, {1, 2});
  EXPECT_TRUE(SameVariant(numbers, CComVariant(numbers)));
  EXPECT_FALSE(SameVariant(numbers, VectorOf(VT_I4, 0, {1, 3})));
  EXPECT_FALSE(SameVariant(numbers, VectorOf(VT_I4, 0, {1, 2, 3})));
  EXPECT_FALSE(SameVariant(numbers, VectorOf(VT_I4, 1, {1, 2})));
  EXPECT_TRUE(SameVariant(VectorOf(VT_BSTR, 0, {L"a"}), VectorOf(VT_BSTR, 0, {L"a"})));
  EXPECT_FALSE(SameVariant(VectorOf(VT_BSTR, 0, {L"a"}), VectorOf(VT_BSTR, 0, {L"b"})));
  EXPECT_TRUE(SameVariant(VectorOf(VT_VARIANT, 0, {L"a", 1}), VectorOf(VT_VARIANT, 0, {L"a", 1})));
  EXPECT_FALSE(
      SameVariant(VectorOf(VT_VARIANT, 0, {L"a", 1}), VectorOf(VT_VARIANT, 0, {L"a", 1.0})));
}

TEST(VariantEqualityTest, EveryFieldOfADecimalCounts) {
  VARIANT value{};
  value.decVal = {0, 2, 0x80, 1, 12345};
  value.vt = VT_DECIMAL;
  EXPECT_TRUE(SameVariant(value, value));
  const auto differs = [&value](auto DECIMAL::*field) {
    DECIMAL other = value.decVal;
    ++(other.*field);
    VARIANT variant{};
    variant.decVal = other;
    variant.vt = VT_DECIMAL;
    return !SameVariant(value, variant);
  };
  EXPECT_TRUE(differs(&DECIMAL::scale));
  EXPECT_TRUE(differs(&DECIMAL::sign));
  EXPECT_TRUE(differs(&DECIMAL::Hi32));
  EXPECT_TRUE(differs(&DECIMAL::Lo64));
}

TEST(VariantEqualityArrayTest, ANullArrayIsTheSameAsNullOnly) {
  CComVariant null = VectorOf(VT_I4, 0, {});
  (void)SafeArrayDestroy(null.parray);
  null.parray = nullptr;
  EXPECT_TRUE(SameVariant(null, CComVariant(static_cast<const VARIANT&>(null))));
  EXPECT_FALSE(SameVariant(null, VectorOf(VT_I4, 0, {})));
}

TEST(VariantEqualityReferenceTest, ReferencesAreComparedByTheirAddress) {
  LONG first = 1;
  LONG second = 1;
  VARIANT left{};
  left.vt = VT_BYREF | VT_I4;
  left.plVal = &first;
  VARIANT right = left;
  EXPECT_TRUE(SameVariant(left, right));
  right.plVal = &second;
  EXPECT_FALSE(SameVariant(left, right));
}

}  // namespace
