#include "TextCase.h"

#include <gtest/gtest.h>

namespace {

TEST(TextCaseTest, UpperCasesCharacterByCharacter) {
  EXPECT_EQ(L"DC 50\u00d6_\u00b5\u00df", cvars::UpperCased(L"dc 50\u00f6_\u00b5\u00df"));
  EXPECT_EQ(L"", cvars::UpperCased(L""));
}

TEST(TextCaseTest, FoldingAgreesWithTheUpperCaseOfEveryCharacter) {
  for (wchar_t c = 0; c < 0x3000; ++c) {
    EXPECT_EQ(cvars::UpperCase(c), cvars::FoldedCharacter(c)) << static_cast<unsigned>(c);
  }
}

struct SameCase {
  const char* name;
  const wchar_t* left;
  const wchar_t* right;
  bool same;
};

class SameTextAnyCaseTest : public testing::TestWithParam<SameCase> {};

TEST_P(SameTextAnyCaseTest, Compares) {
  EXPECT_EQ(GetParam().same, cvars::SameTextAnyCase(GetParam().left, GetParam().right));
  EXPECT_EQ(GetParam().same, cvars::SameTextAnyCase(GetParam().right, GetParam().left));
}

constexpr SameCase kSameCases[] = {
    {"Empty", L"", L"", true},
    {"OtherCase", L"Dc50", L"dC50", true},
    {"OtherCaseBeyondAscii", L"\u00e4\u03c9", L"\u00c4\u03a9", true},
    {"PrefixIsNotTheSame", L"DC", L"DC50", false},
    {"BlankCounts", L"DC", L"DC ", false},
    {"TwoLettersAreNotSharpS", L"ss", L"\u00df", false},
    {"NeighboursOfTheLettersAreNotFolded", L"[", L"{", false},
};
INSTANTIATE_TEST_SUITE_P(Table, SameTextAnyCaseTest, testing::ValuesIn(kSameCases),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
