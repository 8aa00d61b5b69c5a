#include <gtest/gtest.h>

#include <string>

#include "CComBSTR.h"
#include "CComPtr.h"
#include "IVorRegExp.h"
#include "IsolatedHome.h"
#include "platform/Components.h"

namespace {

class RegExpTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(cvars::platform::CreateComponent(L"VBScript.RegExp", IID_IVorRegExp,
                                               reinterpret_cast<void**>(&m_regExp)),
              S_OK);
  }

  bool Found(const wchar_t* text) {
    VARIANT_BOOL found = 55;
    EXPECT_EQ(m_regExp->Test(text, &found), S_OK);
    EXPECT_TRUE(found == VARIANT_TRUE || found == VARIANT_FALSE);
    return found == VARIANT_TRUE;
  }

  cvars::test::IsolatedHome m_home;
  CComPtr<IVorRegExp> m_regExp;
};

struct SearchCase {
  const char* name;
  const wchar_t* pattern;
  const wchar_t* text;
  bool found;
};

constexpr SearchCase kSearchCases[] = {
    {"ClassInTheMiddle", L"[^01]", L"0120", true},
    {"ClassNowhere", L"[^01]", L"0110", false},
    {"RangeInClass", L"[^0-9A-F]", L"12AG", true},
    {"RangeInClassNowhere", L"[^0-9A-F]", L"12AF", false},
    {"CaseCounts", L"[a-f]", L"ABC", false},
    {"EmptyTextHasNoCharacter", L"[^01]", L"", false},
    {"AnchoredWhole", L"^[01]+$", L"0101", true},
    {"AnchoredWholeRefuses", L"^[01]+$", L"01 1", false},
    {"BackReference", L"(a.)\\1", L"xabab", true},
    {"BackReferenceNowhere", L"(a.)\\1", L"xabac", false},
    {"BeyondAscii", L"[\u00b5\u2126]", L"5 \u2126", true},
};

TEST_F(RegExpTest, SearchesAnywhereInTheText) {
  for (const SearchCase& row : kSearchCases) {
    ASSERT_EQ(m_regExp->put_Pattern(row.pattern), S_OK) << row.name;
    EXPECT_EQ(Found(row.text), row.found) << row.name;
  }
}

TEST_F(RegExpTest, NewOneHasEmptyPatternAndOptionsOff) {
  CComBSTR pattern;
  EXPECT_EQ(m_regExp->get_Pattern(&pattern), S_OK);
  EXPECT_EQ(SysStringLen(pattern), 0u);
  VARIANT_BOOL option = 55;
  EXPECT_EQ(m_regExp->get_IgnoreCase(&option), S_OK);
  EXPECT_EQ(option, VARIANT_FALSE);
  option = 55;
  EXPECT_EQ(m_regExp->get_Global(&option), S_OK);
  EXPECT_EQ(option, VARIANT_FALSE);
}

TEST_F(RegExpTest, EmptyPatternIsFoundEverywhere) {
  EXPECT_TRUE(Found(L"abc"));
  EXPECT_TRUE(Found(L""));
  EXPECT_TRUE(Found(nullptr));
}

TEST_F(RegExpTest, PatternThatCannotBeReadLeavesTheOldOne) {
  ASSERT_EQ(m_regExp->put_Pattern(L"b"), S_OK);
  EXPECT_EQ(m_regExp->put_Pattern(L"[a"), E_INVALIDARG);
  EXPECT_EQ(m_regExp->put_Pattern(L"(a"), E_INVALIDARG);
  EXPECT_EQ(m_regExp->put_Pattern(L"*"), E_INVALIDARG);
  CComBSTR pattern;
  EXPECT_EQ(m_regExp->get_Pattern(&pattern), S_OK);
  EXPECT_STREQ(pattern, L"b");
  EXPECT_TRUE(Found(L"abc"));
  EXPECT_FALSE(Found(L"a"));
}

TEST_F(RegExpTest, IgnoreCaseActsOnThePatternAlreadySet) {
  ASSERT_EQ(m_regExp->put_Pattern(L"[a-f]"), S_OK);
  ASSERT_EQ(m_regExp->put_IgnoreCase(1), S_OK);
  EXPECT_TRUE(Found(L"XB"));
  VARIANT_BOOL option = 0;
  EXPECT_EQ(m_regExp->get_IgnoreCase(&option), S_OK);
  EXPECT_EQ(option, VARIANT_TRUE);
  ASSERT_EQ(m_regExp->put_IgnoreCase(VARIANT_FALSE), S_OK);
  EXPECT_FALSE(Found(L"XB"));
}

TEST_F(RegExpTest, GlobalIsKeptAndChangesNoTest) {
  ASSERT_EQ(m_regExp->put_Pattern(L"a"), S_OK);
  ASSERT_EQ(m_regExp->put_Global(VARIANT_TRUE), S_OK);
  EXPECT_TRUE(Found(L"a"));
  EXPECT_TRUE(Found(L"a"));
  VARIANT_BOOL option = 0;
  EXPECT_EQ(m_regExp->get_Global(&option), S_OK);
  EXPECT_EQ(option, VARIANT_TRUE);
}

TEST_F(RegExpTest, LongTextNeedsNoDeepStack) {
  const std::wstring text(300000, L'a');
  ASSERT_EQ(m_regExp->put_Pattern(L"^(a|b)*$"), S_OK);
  EXPECT_TRUE(Found(text.c_str()));
}

TEST_F(RegExpTest, NullOutPointers) {
  EXPECT_EQ(m_regExp->get_Pattern(nullptr), E_POINTER);
  EXPECT_EQ(m_regExp->get_IgnoreCase(nullptr), E_POINTER);
  EXPECT_EQ(m_regExp->get_Global(nullptr), E_POINTER);
  EXPECT_EQ(m_regExp->Test(L"", nullptr), E_POINTER);
}

}  // namespace
