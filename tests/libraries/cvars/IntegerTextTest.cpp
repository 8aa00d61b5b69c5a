#include "IntegerText.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "Randomness.h"

namespace {

constexpr std::uint32_t kUntouched = 55;

struct ScanCase {
  const wchar_t* text;
  bool found;
  std::uint32_t value;
};
constexpr ScanCase kScanCases[] = {
    {L"16", true, 16},
    {L"0x10", true, 16},
    {L"0X1f", true, 31},
    {L"010", true, 8},
    {L"0", true, 0},
    {L"09", true, 0},  // octal up to the 9
    {L" \t\n 12", true, 12},
    {L"-1", true, 0xFFFFFFFF},
    {L"+7", true, 7},
    {L"-0x10", true, 0xFFFFFFF0},
    {L"12volts", true, 12},
    {L"4294967296", true, 0},  // the low 32 bits
    {L"0x123456789", true, 0x23456789},
    {L"0x", false, kUntouched},
    {L"0xg", false, kUntouched},
    {L"abc", false, kUntouched},
    {L"", false, kUntouched},
    {L"-", false, kUntouched},
    {L"- 1", false, kUntouched},
};

TEST(IntegerScan, ReadsWhatTheCScanReads) {
  for (const ScanCase& row : kScanCases) {
    std::uint32_t value = kUntouched;
    EXPECT_EQ(cvars::ScanInteger(row.text, &value), row.found) << testing::PrintToString(row.text);
    EXPECT_EQ(value, row.value) << testing::PrintToString(row.text);
  }
}

TEST(IntegerScan, ReadsRandomNumbersAsTheCLibraryWritesThem) {
  cvars::test::Randomness random("ScanInteger");
  for (int i = 0; i < 10000; ++i) {
    const auto number = static_cast<std::uint32_t>(random.Bits());
    constexpr const wchar_t* kFormats[] = {L"%u", L"0x%x", L"0X%X", L"0%o"};
    wchar_t text[16];
    ASSERT_GT(std::swprintf(text, std::size(text), random.Pick(kFormats), number), 0);
    std::uint32_t value = 0;
    ASSERT_TRUE(cvars::ScanInteger(text, &value));
    ASSERT_EQ(value, number);
  }
}

struct HexCaseRow {
  std::uint32_t value;
  std::size_t least;
  cvars::HexCase letters;
  const wchar_t* text;
};
constexpr HexCaseRow kHexRows[] = {
    {0x1F, 8, cvars::HexCase::kLower, L"0000001f"},
    {0x1F, 1, cvars::HexCase::kUpper, L"1F"},
    {0, 1, cvars::HexCase::kUpper, L"0"},
    {0, 0, cvars::HexCase::kUpper, L"0"},
    {0xFFFFFFFF, 2, cvars::HexCase::kLower, L"ffffffff"},
};

TEST(Hexadecimal, FillsWithZerosInFront) {
  for (const HexCaseRow& row : kHexRows) {
    std::wstring text = L"&h";
    cvars::AppendHexadecimal(text, row.value, row.least, row.letters);
    EXPECT_EQ(text, std::wstring(L"&h") + row.text);
  }
}

}  // namespace
