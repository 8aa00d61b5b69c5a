#include "TextPieces.h"

#include <gtest/gtest.h>

namespace {

using Pieces = std::vector<std::wstring_view>;

struct SplitCase {
  const char* name;
  const wchar_t* text;
  Pieces pieces;
};

class SplitTextTest : public testing::TestWithParam<SplitCase> {};

TEST_P(SplitTextTest, Splits) {
  EXPECT_EQ(GetParam().pieces, cvars::SplitText(GetParam().text, L','));
}

const SplitCase kSplitCases[] = {
    {"EmptyTextIsOnePiece", L"", {L""}},
    {"NoSeparator", L"DC50", {L"DC50"}},
    {"Three", L"A,B,C", {L"A", L"B", L"C"}},
    {"BlanksStay", L" A , B ", {L" A ", L" B "}},
    {"EmptyPiecesStay", L"A,,B", {L"A", L"", L"B"}},
    {"SeparatorAlone", L",", {L"", L""}},
    {"SeparatorAtBothEnds", L",A,", {L"", L"A", L""}},
};
INSTANTIATE_TEST_SUITE_P(Table, SplitTextTest, testing::ValuesIn(kSplitCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(TextJoinerTest, PutsASeparatorBetweenPieces) {
  EXPECT_EQ(L"A,B,C", cvars::TextJoiner(L',').Add(L"A").Add(L"B").Add(L"C").Text());
}

TEST(TextJoinerTest, NothingJoinedIsEmpty) { EXPECT_EQ(L"", cvars::TextJoiner(L',').Text()); }

TEST(TextJoinerTest, AnEmptyFirstPieceCounts) {
  EXPECT_EQ(L",B", cvars::TextJoiner(L',').Add(L"").Add(L"B").Text());
}

TEST(TextJoinerTest, GoesOnBehindATextWithoutSeparator) {
  EXPECT_EQ(L"Range,A,B", cvars::TextJoiner(L"Range,", L',').Add(L"A").Add(L"B").Text());
}

TEST(TextJoinerTest, BeginHandsOutTheTextBehindTheSeparator) {
  cvars::TextJoiner joiner(L';');
  joiner.Begin() += L"x";
  joiner.Begin() += L"y";
  EXPECT_EQ(L"x;y", joiner.Text());
}

}  // namespace
