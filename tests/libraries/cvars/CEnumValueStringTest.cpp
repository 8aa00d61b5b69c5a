#include "CEnumValueString.h"

#include <gtest/gtest.h>

namespace {

struct SpellingCase {
  const char* name;
  const wchar_t* text;
  bool specialCharacters;
  const wchar_t* screen;
  const wchar_t* automation;
  const wchar_t* remote;
};

class SpellingTest : public testing::TestWithParam<SpellingCase> {};

TEST_P(SpellingTest, MakesThreeSpellings) {
  const SpellingCase& row = GetParam();
  const CEnumValueString value(row.text, row.specialCharacters);
  EXPECT_EQ(std::wstring_view(row.screen), value.Screen().View());
  EXPECT_EQ(std::wstring_view(row.automation), value.Automation().View());
  EXPECT_EQ(std::wstring_view(row.remote), value.Remote().View());
}

constexpr SpellingCase kSpellingCases[] = {
    {"EmptyGivesThreeEmpty", L"", false, L"", L"", L""},
    {"OneForAll", L"Normal", false, L"Normal", L"Normal", L"NORMAL"},
    {"AutomationIsCleaned", L"Ch 1 (AC)", false, L"Ch 1 (AC)", L"Ch1AC", L"CH1AC"},
    {"PointStays", L"x0.5", false, L"x0.5", L"x0.5", L"X0.5"},
    {"UnderscoreGoes", L"20_MHz", false, L"20_MHz", L"20MHz", L"20MHZ"},
    {"LettersBeyondAsciiGo", L"\u00dcber 5", false, L"\u00dcber 5", L"ber5", L"BER5"},
    {"NothingLeft", L"+/-", false, L"+/-", L"", L""},
    {"Two", L"20 MHz|Low Pass", false, L"20 MHz", L"LowPass", L"LOWPASS"},
    {"Three", L"DC 50|Dc 50|d 50", false, L"DC 50", L"Dc50", L"D 50"},
    {"RemoteIsNotCleaned", L"a|b|c (1)", false, L"a", L"b", L"C (1)"},
    {"EmptySecond", L"a|", false, L"a", L"", L""},
    {"EmptyThird", L"a|b|", false, L"a", L"b", L""},
    {"EmptySecondWithThird", L"a||c", false, L"a", L"", L"C"},
    {"EmptyScreen", L"|b", false, L"", L"b", L"B"},
    {"SeparatorAlone", L"|", false, L"", L"", L""},
    {"FourthIsIgnored", L"a|b|c|d", false, L"a", L"b", L"C"},
    {"SpecialCharactersStay", L"Ch 1 (AC)", true, L"Ch 1 (AC)", L"Ch 1 (AC)", L"CH 1 (AC)"},
    {"SpecialCharactersStayInTheSecond", L"a|b (c)", true, L"a", L"b (c)", L"B (C)"},
};
INSTANTIATE_TEST_SUITE_P(Table, SpellingTest, testing::ValuesIn(kSpellingCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(EnumValueStringTest, JoinsTheThreeSpellings) {
  EXPECT_EQ(L"Math 1|Math1|MATH1", CEnumValueString(L"Math 1", false).Joined());
  EXPECT_EQ(L"||", CEnumValueString().Joined());
}

TEST(EnumValueStringTest, AppendsBehindAText) {
  std::wstring text = L"(";
  CEnumValueString(L"a", false).AppendJoined(text);
  EXPECT_EQ(L"(a|a|A", text);
}

TEST(EnumValueStringTest, SameAnyCaseLooksAtAllThree) {
  const CEnumValueString off(L"Off|off|OFF", false);
  EXPECT_TRUE(off.SameAnyCase(CEnumValueString(L"oFF|OFF|off", false)));
  EXPECT_FALSE(off.SameAnyCase(CEnumValueString(L"Off.|off|OFF", false)));
  EXPECT_FALSE(off.SameAnyCase(CEnumValueString(L"Off|of|OFF", false)));
  EXPECT_FALSE(off.SameAnyCase(CEnumValueString(L"Off|off|OF", false)));
}

TEST(EnumValueStringTest, EqualityCountsTheCase) {
  const CEnumValueString off(L"Off", false);
  EXPECT_TRUE(off == CEnumValueString(L"Off", false));
  EXPECT_FALSE(off == CEnumValueString(L"off", false));
}

TEST(EnumValueStringTest, AReplacedSpellingIsTakenAsItIs) {
  CEnumValueString value(L"a", false);
  value.SetScreen(L"s 1");
  value.SetAutomation(L"a 2");
  value.SetRemote(L"r 3");
  EXPECT_EQ(L"s 1|a 2|r 3", value.Joined());
}

TEST(CleanedForScriptsTest, KeepsAsciiLettersDigitsAndPoints) {
  EXPECT_EQ(L"az.AZ09", cvars::CleanedForScripts(L"a-z . A_Z@[`{ 0/:9 \u00e9\u0663"));
}

}  // namespace
