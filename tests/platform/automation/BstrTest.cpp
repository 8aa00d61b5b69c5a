#include <gtest/gtest.h>

#include <string>

#include "Bstr.h"
#include "CComBSTR.h"
#include "GoldenTable.h"

namespace {

TEST(UpperCase, EveryCharacterOfTheTable) {
  const auto rows = cvars::test::ReadTable("upper_case.tsv");
  EXPECT_EQ(rows.size(), 768u);
  for (const auto& row : rows) {
    const auto from = static_cast<wchar_t>(std::stoul(row.columns[0], nullptr, 16));
    const auto to = static_cast<wchar_t>(std::stoul(row.columns[1], nullptr, 16));
    EXPECT_EQ(cvars::UpperCase(from), to) << "line " << row.line;
  }
}

TEST(UpperCase, GreekAndCyrillicBeyondTheTable) {
  EXPECT_EQ(cvars::UpperCase(L'\u03C9'), L'\u03A9');
  EXPECT_EQ(cvars::UpperCase(L'\u0436'), L'\u0416');
}

TEST(Bstr, NullEqualsEmpty) {
  const CComBSTR empty(L"");
  EXPECT_EQ(VarBstrCmp(nullptr, empty, LOCALE_USER_DEFAULT, 0), VARCMP_EQ);
  EXPECT_TRUE(CComBSTR() == empty);
}

TEST(Bstr, OrderIsByCodePointAndCaseCountsUnlessIgnored) {
  const CComBSTR lower(L"\u00E4b");
  const CComBSTR upper(L"\u00C4B");
  EXPECT_EQ(VarBstrCmp(lower, upper, LOCALE_USER_DEFAULT, 0), VARCMP_GT);
  EXPECT_EQ(VarBstrCmp(upper, lower, LOCALE_USER_DEFAULT, 0), VARCMP_LT);
  EXPECT_EQ(VarBstrCmp(lower, upper, LOCALE_USER_DEFAULT, NORM_IGNORECASE), VARCMP_EQ);
}

TEST(Bstr, LengthOfTwoToTheThirtyIsRefused) {
  EXPECT_EQ(SysAllocStringLen(nullptr, 1u << 30), nullptr);
}

TEST(Bstr, CatJoinsAndKeepsZeros) {
  const CComBSTR left(3u, L"a\0b");
  CComBSTR joined;
  ASSERT_EQ(VarBstrCat(left, CComBSTR(L"c"), &joined), S_OK);
  EXPECT_TRUE(joined.View() == std::wstring_view(L"a\0bc", 4));
}

TEST(Bstr, IsReplacedByACopy) {
  BSTR text = SysAllocString(L"old");
  EXPECT_EQ(SysReAllocString(&text, L"new text"), 1);
  EXPECT_STREQ(text, L"new text");
  EXPECT_EQ(SysReAllocStringLen(&text, L"cut here", 3), 1);
  EXPECT_STREQ(text, L"cut");
  EXPECT_EQ(SysStringLen(text), 3u);
  EXPECT_EQ(SysReAllocStringLen(&text, nullptr, 2), 1);  // room without content
  EXPECT_EQ(SysStringLen(text), 2u);
  EXPECT_EQ(SysReAllocString(&text, nullptr), 1);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(SysReAllocString(nullptr, L"x"), 0);
  EXPECT_EQ(SysReAllocStringLen(nullptr, L"x", 1), 0);
}

TEST(Bstr, ATextThatCannotBeAllocatedKeepsTheOldOne) {
  BSTR text = SysAllocString(L"kept");
  EXPECT_EQ(SysReAllocStringLen(&text, nullptr, 1u << 30), 0);
  EXPECT_STREQ(text, L"kept");
  SysFreeString(text);
}

}  // namespace
