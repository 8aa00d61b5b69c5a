#include "FoldedTextIndex.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "Randomness.h"
#include "TextCase.h"

namespace {

using cvars::FoldedTextIndex;

TEST(FoldedTextIndexTest, FindsNothingWhileEmpty) {
  FoldedTextIndex index;
  EXPECT_EQ(FoldedTextIndex::kNone, index.Find(L""));
  EXPECT_EQ(FoldedTextIndex::kNone, index.Find(L"AC"));
}

TEST(FoldedTextIndexTest, AnyCaseFinds) {
  FoldedTextIndex index;
  index.Add(L"Dc 50 \u00e4", 7);
  EXPECT_EQ(7, index.Find(L"dC 50 \u00c4"));
  EXPECT_EQ(FoldedTextIndex::kNone, index.Find(L"Dc 50"));
  EXPECT_EQ(FoldedTextIndex::kNone, index.Find(L"Dc 50 \u00e4 "));
}

TEST(FoldedTextIndexTest, TheFirstNumberStays) {
  FoldedTextIndex index;
  index.Add(L"ac", 1);
  index.Add(L"AC", 2);
  EXPECT_EQ(1, index.Find(L"Ac"));
}

TEST(FoldedTextIndexTest, TheEmptyTextIsAText) {
  FoldedTextIndex index;
  index.Add(L"", 3);
  EXPECT_EQ(3, index.Find(L""));
}

TEST(FoldedTextIndexTest, AZeroAtTheEndIsACharacter) {
  FoldedTextIndex index;
  index.Add(std::wstring_view(L"ab\0", 3), 1);
  EXPECT_EQ(FoldedTextIndex::kNone, index.Find(L"ab"));
  EXPECT_EQ(1, index.Find(std::wstring_view(L"AB\0", 3)));
}

TEST(FoldedTextIndexTest, EveryLengthIsTold) {
  FoldedTextIndex index;
  std::wstring text;
  for (int length = 0; length <= 150; ++length, text += L'x') index.Add(text, length);
  text.clear();
  for (int length = 0; length <= 150; ++length, text += L'X') EXPECT_EQ(length, index.Find(text));
}

TEST(FoldedTextIndexTest, LongTextsAreComparedToTheirEnd) {
  FoldedTextIndex index;
  const std::wstring start(99, L'\u00e4');
  index.Add(start + L'a', 1);
  index.Add(start + L'b', 2);
  EXPECT_EQ(1, index.Find(start + L'A'));
  EXPECT_EQ(2, index.Find(std::wstring(99, L'\u00c4') + L'B'));
  EXPECT_EQ(FoldedTextIndex::kNone, index.Find(start + L'c'));
}

// Some characters besides those of ASCII have an upper case that is one of them.
TEST(FoldedTextIndexTest, EveryCharacterIsFoundByItsUpperCase) {
  constexpr wchar_t kEnd = 0x3000;
  for (wchar_t first = 1; first < kEnd; first += 0x100) {
    FoldedTextIndex index;
    std::map<std::wstring, int> model;
    for (wchar_t c = first; c < first + 0x100; ++c) {
      const std::wstring text = std::wstring(L"Range ") + c;
      index.Add(text, c);
      model.emplace(cvars::UpperCased(text), c);
    }
    for (wchar_t c = first; c < first + 0x100; ++c) {
      const std::wstring upper = cvars::UpperCased(std::wstring(L"RANGE ") + c);
      ASSERT_EQ(model.at(upper), index.Find(upper)) << static_cast<int>(c);
      ASSERT_EQ(model.at(upper), index.Find(std::wstring(L"range ") + c)) << static_cast<int>(c);
    }
  }
}

TEST(FoldedTextIndexTest, TheKindOfCharactersIsTold) {
  FoldedTextIndex index;
  index.Add(std::wstring_view(L"A\0\0\0B\0\0\0", 8), 1);
  index.Add(L"AB\u00c4\u00c4\u00c4\u00c4\u00c4\u00c4", 2);
  EXPECT_EQ(1, index.Find(std::wstring_view(L"a\0\0\0b\0\0\0", 8)));
  EXPECT_EQ(2, index.Find(L"ab\u00e4\u00e4\u00e4\u00e4\u00e4\u00e4"));
}

TEST(FoldedTextIndexTest, ClearForgets) {
  FoldedTextIndex index;
  index.Add(L"ac", 1);
  index.Clear();
  EXPECT_EQ(FoldedTextIndex::kNone, index.Find(L"ac"));
  index.Add(L"ac", 2);
  EXPECT_EQ(2, index.Find(L"ac"));
}

TEST(FoldedTextIndexTest, IsLookedIntoWithoutTheOwnerOnlyWhilePublished) {
  FoldedTextIndex index;
  int number = 77;
  EXPECT_FALSE(index.TryFind(L"ac", number));
  index.Add(L"ac", 1);
  EXPECT_FALSE(index.TryFind(L"ac", number));
  index.Publish();
  EXPECT_TRUE(index.TryFind(L"AC", number));
  EXPECT_EQ(1, number);
  EXPECT_TRUE(index.TryFind(L"dc", number));
  EXPECT_EQ(FoldedTextIndex::kNone, number);
  index.Withhold();
  EXPECT_FALSE(index.TryFind(L"ac", number));
  index.Publish();
  index.Add(L"dc", 2);
  EXPECT_FALSE(index.TryFind(L"ac", number));
  index.Publish();
  EXPECT_TRUE(index.TryFind(L"dc", number));
  EXPECT_EQ(2, number);
  index.Clear();
  EXPECT_FALSE(index.TryFind(L"ac", number));
  index.Publish();
  EXPECT_TRUE(index.TryFind(L"ac", number));
  EXPECT_EQ(FoldedTextIndex::kNone, number);
}

TEST(FoldedTextIndexTest, GrowsAfterItWasPublished) {
  FoldedTextIndex index;
  for (int number = 0; number < 500; ++number) {
    index.Add(std::to_wstring(number), number);
    index.Publish();
    int found = FoldedTextIndex::kNone;
    ASSERT_TRUE(index.TryFind(std::to_wstring(number / 2), found));
    ASSERT_EQ(number / 2, found);
  }
}

TEST(FoldedTextIndexPropertyTest, AgreesWithAMapOfUpperCasedTexts) {
  cvars::test::Randomness random("FoldedTextIndex");
  constexpr wchar_t kCharacters[] = {L'a', L'A', L'z', L'@', L'{', L'9', L'\u00e4', L'\u00c4', 0};
  const auto anyText = [&] {
    std::wstring text(static_cast<std::size_t>(random.Whole(0, 9)), L' ');
    for (wchar_t& c : text) c = random.Pick(kCharacters);
    return text;
  };
  for (int round = 0; round < 50; ++round) {
    FoldedTextIndex index;
    std::map<std::wstring, int> model;
    const auto count = static_cast<int>(random.Whole(0, 2000));
    for (int number = 0; number < count; ++number) {
      const std::wstring text = anyText();
      index.Add(text, number);
      model.emplace(cvars::UpperCased(text), number);
    }
    for (int look = 0; look < 500; ++look) {
      const std::wstring text = anyText();
      const auto found = model.find(cvars::UpperCased(text));
      ASSERT_EQ(found == model.end() ? FoldedTextIndex::kNone : found->second, index.Find(text));
    }
  }
}

}  // namespace
