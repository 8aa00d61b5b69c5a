#include "BitText.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "Randomness.h"

namespace {

using cvars::BitEnd;
using cvars::test::Randomness;

constexpr int kRandomCases = 20000;

TEST(BitSet, KeepsBitCharactersOnceAndInTheirOrder) {
  EXPECT_EQ(cvars::BitSetOf(L"x10"), L"01X");
  EXPECT_EQ(cvars::BitSetOf(L"xrfb10"), L"01BFRX");
  EXPECT_EQ(cvars::BitSetOf(L"1 1 2 z"), L"1");
  EXPECT_EQ(cvars::BitSetOf(L""), L"");
}

TEST(BitText, NormalisesBlanksAndCase) {
  std::wstring bits = L"untouched";
  EXPECT_EQ(cvars::NormalizeBits(L"1 0 1x", L"01X", &bits), S_OK);
  EXPECT_EQ(bits, L"101X");
  EXPECT_EQ(cvars::NormalizeBits(L"", L"", &bits), S_OK);
  EXPECT_EQ(bits, L"");
}

TEST(BitText, RefusesCharactersThatAreNotAllowedAndLeavesTheResult) {
  std::wstring bits = L"untouched";
  EXPECT_EQ(cvars::NormalizeBits(L"101X", L"01", &bits), E_INVALIDARG);
  EXPECT_EQ(cvars::NormalizeBits(L"1\t0", L"01", &bits), E_INVALIDARG);  // only the blank is passed
  EXPECT_EQ(bits, L"untouched");
}

struct FitCase {
  const wchar_t* bits;
  std::size_t length;
  wchar_t padding;
  BitEnd end;
  const wchar_t* fitted;
};
constexpr FitCase kFitCases[] = {
    {L"110011", 4, L'0', BitEnd::kLeft, L"0011"}, {L"110011", 4, L'0', BitEnd::kRight, L"1100"},
    {L"1", 4, L'0', BitEnd::kLeft, L"0001"},      {L"1", 4, L'0', BitEnd::kRight, L"1000"},
    {L"1", 3, L'X', BitEnd::kLeft, L"XX1"},       {L"", 3, L'1', BitEnd::kRight, L"111"},
    {L"101", 3, L'0', BitEnd::kLeft, L"101"},     {L"101", 0, L'0', BitEnd::kLeft, L""},
};

TEST(BitText, FitsToALength) {
  for (const FitCase& row : kFitCases) {
    EXPECT_EQ(cvars::FitBits(row.bits, row.length, row.padding, row.end), row.fitted) << row.bits;
  }
}

TEST(BitText, ReadsNumbersMostSignificantBitFirst) {
  EXPECT_EQ(cvars::BitsToNumber(L""), 0u);
  EXPECT_EQ(cvars::BitsToNumber(L"1110"), 14u);
  EXPECT_EQ(cvars::BitsToNumber(L"10000000000000000000000000000000"), 0x80000000u);
  EXPECT_EQ(cvars::BitsToNumber(L"1X1"), 5u);
}

TEST(BitText, WritesNumbersMostSignificantBitFirst) {
  EXPECT_EQ(cvars::NumberToBits(5, 4), L"0101");
  EXPECT_EQ(cvars::NumberToBits(0xFFFFFFFF, 3), L"111");
  EXPECT_EQ(cvars::NumberToBits(5, 0), L"");
  EXPECT_EQ(cvars::NumberToBits(0x80000001, 40), L"10000000000000000000000000000001");
}

TEST(BitText, ExtendsSigns) {
  EXPECT_EQ(cvars::SignExtended(14, 4), -2);
  EXPECT_EQ(cvars::SignExtended(6, 4), 6);
  EXPECT_EQ(cvars::SignExtended(1, 1), -1);
  EXPECT_EQ(cvars::SignExtended(0x7FFFFFFF, 31), -1);
}

TEST(BitText, SignOf32BitsGivesMinusOneBecauseTheShiftWraps) {
  EXPECT_EQ(cvars::SignExtended(0x80000000, 32), -1);
  EXPECT_EQ(cvars::SignExtended(0x80001234, 32), -1);
  EXPECT_EQ(cvars::SignExtended(0x7FFFFFFF, 32), 0x7FFFFFFF);
}

TEST(BitText, SignOfNoBitsIsBit31) {
  EXPECT_EQ(cvars::SignExtended(0x80000000, 0), -1);
  EXPECT_EQ(cvars::SignExtended(0x40000000, 0), 0x40000000);
}

TEST(BitText, WritesHexadecimalDigitsAsBits) {
  std::wstring bits = L"untouched";
  EXPECT_EQ(cvars::HexadecimalToBits(L"1aFx", &bits), S_OK);
  EXPECT_EQ(bits, L"000110101111XXXX");
  EXPECT_EQ(cvars::HexadecimalToBits(L"", &bits), S_OK);
  EXPECT_EQ(bits, L"");
  EXPECT_EQ(cvars::HexadecimalToBits(L"1g", &bits), E_INVALIDARG);
  EXPECT_EQ(bits, L"");
}

struct HexCase {
  const wchar_t* bits;
  wchar_t padding;
  BitEnd end;
  const wchar_t* text;
};
constexpr HexCase kHexCases[] = {
    {L"101", L'0', BitEnd::kLeft, L"5"},
    {L"101", L'0', BitEnd::kRight, L"A"},
    {L"XXXX0001", L'0', BitEnd::kLeft, L"X1"},
    {L"X001", L'0', BitEnd::kLeft, L"$"},
    {L"1B", L'0', BitEnd::kRight, L"$"},
    {L"XX1010", L'X', BitEnd::kLeft, L"XA"},   // filled with X, as the first bit is X
    {L"1X1010", L'X', BitEnd::kLeft, L"$A"},   // filled with 0
    {L"XX1010", L'0', BitEnd::kLeft, L"$A"},   // filled with 0, as the padding is 0
    {L"1010XX", L'X', BitEnd::kRight, L"A$"},  // the right end is always filled with 0
    {L"", L'X', BitEnd::kLeft, L""},
    {L"11111111", L'0', BitEnd::kLeft, L"FF"},
};

TEST(BitText, WritesHexadecimal) {
  for (const HexCase& row : kHexCases) {
    EXPECT_EQ(cvars::BitsToHexadecimal(row.bits, row.padding, row.end), row.text) << row.bits;
  }
}

TEST(BitText, GroupsEightBitsFromTheRight) {
  EXPECT_EQ(cvars::GroupedBits(L"1111000011"), L"11 11000011");
  EXPECT_EQ(cvars::GroupedBits(L"101100111000"), L"1011 00111000");
  EXPECT_EQ(cvars::GroupedBits(L"1111000011110000"), L"11110000 11110000");
  EXPECT_EQ(cvars::GroupedBits(L"11110000"), L"11110000");
  EXPECT_EQ(cvars::GroupedBits(L""), L"");
}

// Slow models, written character by character from the rules -------------------------------------

std::wstring RandomText(Randomness& random, std::wstring_view characters, std::int64_t longest) {
  std::wstring text;
  for (std::int64_t i = random.Whole(0, longest); i > 0; --i) text += random.Pick(characters);
  return text;
}

// The model of padding: one character at a time, at the given end.
std::wstring ModelOfFit(std::wstring bits, std::size_t length, wchar_t padding, bool right) {
  while (bits.size() < length) bits = right ? bits + padding : padding + bits;
  while (bits.size() > length) bits.erase(right ? bits.end() - 1 : bits.begin());
  return bits;
}

TEST(BitTextModel, FitsRandomPatternsAsTheSlowModel) {
  Randomness random("FitBits");
  for (int i = 0; i < kRandomCases; ++i) {
    const std::wstring bits = RandomText(random, cvars::kBitCharacters, 40);
    const auto length = static_cast<std::size_t>(random.Whole(0, 40));
    const wchar_t padding = random.Pick(cvars::kBitCharacters);
    const bool right = random.Chance(0.5);
    ASSERT_EQ(cvars::FitBits(bits, length, padding, right ? BitEnd::kRight : BitEnd::kLeft),
              ModelOfFit(bits, length, padding, right));
  }
}

TEST(BitTextModel, NormalisesRandomTextsAsTheSlowModel) {
  Randomness random("NormalizeBits");
  for (int i = 0; i < kRandomCases; ++i) {
    const std::wstring allowed = RandomText(random, cvars::kBitCharacters, 6);
    const std::wstring text = RandomText(random, L"01BFRXbfrx 01 X", 12);
    std::wstring model;
    bool refused = false;
    for (wchar_t character : text) {
      if (character == L' ') continue;
      if (character == L'b') character = L'B';
      if (character == L'f') character = L'F';
      if (character == L'r') character = L'R';
      if (character == L'x') character = L'X';
      bool found = false;
      for (const wchar_t one : allowed) found = found || one == character;
      refused = refused || !found;
      model += character;
    }
    std::wstring bits = L"untouched";
    ASSERT_EQ(cvars::NormalizeBits(text, allowed, &bits), refused ? E_INVALIDARG : S_OK);
    ASSERT_EQ(bits, refused ? L"untouched" : model);
  }
}

TEST(BitTextModel, NumbersComeBackFromTheirBits) {
  Randomness random("NumberToBits");
  for (int i = 0; i < kRandomCases; ++i) {
    const auto number = static_cast<std::uint32_t>(random.Bits());
    const auto width = static_cast<unsigned>(random.Whole(0, 32));
    std::wstring model;
    std::uint64_t rest = number;
    for (unsigned bit = 0; bit < width; ++bit) {
      model.insert(0, 1, rest % 2 == 1 ? L'1' : L'0');
      rest /= 2;
    }
    ASSERT_EQ(cvars::NumberToBits(number, width), model);
    ASSERT_EQ(cvars::BitsToNumber(model), number % (std::uint64_t{1} << width));
  }
}

TEST(BitTextModel, SignsAreThoseOfTwosComplement) {
  Randomness random("SignExtended");
  for (int i = 0; i < kRandomCases; ++i) {
    const auto width = static_cast<std::uint32_t>(random.Whole(1, 31));
    const auto number = static_cast<std::uint32_t>(random.Bits() % (std::uint64_t{1} << width));
    const std::int64_t half = std::int64_t{1} << (width - 1);
    const std::int64_t model = number < half ? number : std::int64_t{number} - 2 * half;
    ASSERT_EQ(cvars::SignExtended(number, width), model);
  }
}

// The model of the digits: fill one character at a time, then let the C library print each four.
std::wstring ModelOfHexadecimal(std::wstring bits, wchar_t padding, bool right) {
  const wchar_t fill = !right && padding == L'X' && !bits.empty() && bits[0] == L'X' ? L'X' : L'0';
  while (bits.size() % 4 != 0) bits = right ? bits + L'0' : fill + bits;
  std::wstring text;
  for (std::size_t at = 0; at < bits.size(); at += 4) {
    const std::wstring four = bits.substr(at, 4);
    std::string plain(four.begin(), four.end());
    char* end = nullptr;
    const unsigned long value = std::strtoul(plain.c_str(), &end, 2);
    wchar_t digit[8] = L"$";
    if (four == L"XXXX") {
      digit[0] = L'X';
    } else if (*end == '\0') {
      std::swprintf(digit, std::size(digit), L"%lX", value);
    }
    text += digit;
  }
  return text;
}

TEST(BitTextModel, WritesRandomPatternsInHexadecimalAsTheSlowModel) {
  Randomness random("BitsToHexadecimal");
  constexpr std::wstring_view kSets[] = {L"01", L"01X", L"X", L"01BFRX", L"0001111X"};
  for (int i = 0; i < kRandomCases; ++i) {
    const std::wstring bits = RandomText(random, random.Pick(kSets), 40);
    const wchar_t padding = random.Pick(cvars::kBitCharacters);
    const bool right = random.Chance(0.5);
    ASSERT_EQ(cvars::BitsToHexadecimal(bits, padding, right ? BitEnd::kRight : BitEnd::kLeft),
              ModelOfHexadecimal(bits, padding, right))
        << testing::PrintToString(bits);
  }
}

TEST(BitTextModel, HexadecimalDigitsComeBackFromTheirBits) {
  Randomness random("HexadecimalToBits");
  for (int i = 0; i < kRandomCases; ++i) {
    const std::wstring text = RandomText(random, L"0123456789ABCDEFX", 12);
    std::wstring bits;
    ASSERT_EQ(cvars::HexadecimalToBits(text, &bits), S_OK);
    ASSERT_EQ(bits.size(), 4 * text.size());
    ASSERT_EQ(cvars::BitsToHexadecimal(bits, L'0', BitEnd::kLeft), text);
  }
}

TEST(BitTextModel, GroupsRandomPatternsAsTheSlowModel) {
  Randomness random("GroupedBits");
  for (int i = 0; i < kRandomCases; ++i) {
    const std::wstring bits = RandomText(random, cvars::kBitCharacters, 40);
    std::wstring rest = bits;
    std::wstring model;
    while (rest.size() > 8) {
      model = L" " + rest.substr(rest.size() - 8) + model;
      rest.resize(rest.size() - 8);
    }
    ASSERT_EQ(cvars::GroupedBits(bits), rest + model);
  }
}

}  // namespace
