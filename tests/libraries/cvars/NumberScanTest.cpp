#include "NumberScan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <cwchar>
#include <string>

#include "PlainLocale.h"
#include "Randomness.h"

namespace {

std::uint64_t BitsOf(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof(bits));
  return bits;
}

double ReadByTheCLibrary(const std::wstring& text, std::ptrdiff_t* length) {
  const cvars::test::PlainLocale plain;
  wchar_t* end = nullptr;
  const double value = std::wcstod(text.c_str(), &end);
  *length = end - text.c_str();
  return value;
}

std::wstring Printed(const wchar_t* format, int digits, double value) {
  const cvars::test::PlainLocale plain;
  wchar_t text[64];
  std::swprintf(text, std::size(text), format, digits, value);
  return text;
}

/// Compares with the C library in the "C" locale.
void ExpectLikeC(const std::wstring& text) {
  std::ptrdiff_t expectedLength = 0;
  const double expected = ReadByTheCLibrary(text, &expectedLength);
  double value = 4711.0;
  const wchar_t* const first = text.data();
  const wchar_t* const end = cvars::ScanNumber(first, first + text.size(), &value);
  ASSERT_EQ(expectedLength, end - first) << testing::PrintToString(text);
  if (end == first) {
    EXPECT_EQ(4711.0, value);
  } else if (std::isnan(expected)) {
    EXPECT_TRUE(std::isnan(value)) << testing::PrintToString(text);
  } else {
    EXPECT_EQ(BitsOf(expected), BitsOf(value)) << testing::PrintToString(text);
  }
}

struct ScanCase {
  const char* name;
  const wchar_t* text;
  std::ptrdiff_t length;
  double value;
};

class ScanNumberTest : public testing::TestWithParam<ScanCase> {};

TEST_P(ScanNumberTest, ReadsTheNumber) {
  const std::wstring text = GetParam().text;
  double value = 4711.0;
  const wchar_t* end = cvars::ScanNumber(text.data(), text.data() + text.size(), &value);
  EXPECT_EQ(GetParam().length, end - text.data());
  EXPECT_EQ(GetParam().value, value);
  ExpectLikeC(text);
}

constexpr ScanCase kScanCases[] = {
    {"Whole", L"42", 2, 42.0},
    {"Fraction", L"1.5 mV", 3, 1.5},
    {"LeadingBlanks", L" \t\n\v\f\r7", 7, 7.0},
    {"Plus", L"+2", 2, 2.0},
    {"Minus", L"-2.5", 4, -2.5},
    {"TwoSigns", L"+-2", 0, 4711.0},
    {"PointFirst", L".5", 2, 0.5},
    {"PointLast", L"5.V", 2, 5.0},
    {"PointOnly", L".", 0, 4711.0},
    {"CommaEnds", L"1,5", 1, 1.0},
    {"Exponent", L"1e-3", 4, 1e-3},
    {"UpperExponent", L"1E+2V", 4, 100.0},
    {"ExponentWithoutDigits", L"1e V", 1, 1.0},
    {"ExponentWithSignOnly", L"1e+", 1, 1.0},
    {"Empty", L"", 0, 4711.0},
    {"BlanksOnly", L"   ", 0, 4711.0},
    {"Word", L"volts", 0, 4711.0},
    {"Overflow", L"1e999", 5, HUGE_VAL},
    {"NegativeOverflow", L"-1e999", 6, -HUGE_VAL},
    {"Underflow", L"1e-999", 6, 0.0},
    {"EndlessExponent", L"1e99999999999999999999", 22, HUGE_VAL},
    {"ZeroWithEndlessExponent", L"0e99999999999999999999", 22, 0.0},
    {"Subnormal", L"5e-324", 6, 5e-324},
    {"Hexadecimal", L"0x1F", 4, 31.0},
    {"HexadecimalFraction", L"0x.8", 4, 0.5},
    {"HexadecimalExponent", L"0X1p-3", 6, 0.125},
    {"HexadecimalPrefixAlone", L"0x", 1, 0.0},
    {"HexadecimalPrefixAndWord", L"0xyz", 1, 0.0},
    {"HexadecimalPointOnly", L"0x.", 1, 0.0},
    {"Infinity", L"inf", 3, HUGE_VAL},
    {"InfinityInFull", L"-INFinity", 9, -HUGE_VAL},
    {"InfinityCutShort", L"infinit", 3, HUGE_VAL},
};
INSTANTIATE_TEST_SUITE_P(Table, ScanNumberTest, testing::ValuesIn(kScanCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ScanNotANumberTest, ReadsTheWordAndItsBrackets) {
  for (const wchar_t* text : {L"nan", L"-NaN", L"nan(12_a)", L"nan(1", L"nan(-)", L"nan()x", L"na"})
    ExpectLikeC(text);
}

TEST(ScanNumberLongTest, RoundsTextsOfAnyLengthCorrectly) {
  // Half way between 1 and the next double, exactly and with a last digit far behind.
  const std::wstring half = L"1.00000000000000011102230246251565404236316680908203125";
  ExpectLikeC(half);
  ExpectLikeC(half + std::wstring(2000, L'0'));
  ExpectLikeC(half + std::wstring(2000, L'0') + L"1");
  ExpectLikeC(std::wstring(5000, L'0') + L"1" + std::wstring(300, L'0'));
  ExpectLikeC(L"0." + std::wstring(5000, L'0') + L"7e5001");
  ExpectLikeC(L"1" + std::wstring(5000, L'0') + L"e-5000");
  ExpectLikeC(std::wstring(1500, L'9'));
  ExpectLikeC(L"0x1." + std::wstring(100, L'f'));
  ExpectLikeC(L"0x1.00000000000008" + std::wstring(100, L'0'));
  ExpectLikeC(L"0x1.00000000000008" + std::wstring(100, L'0') + L"1");
  ExpectLikeC(L"0x1.00000000000018p-1060");
  ExpectLikeC(L"0x" + std::wstring(400, L'0') + L"1p-1074");
  ExpectLikeC(L"0x1p-1075");
  ExpectLikeC(L"0x1.0000000000001p-1075");
  ExpectLikeC(L"0x1p1024");
  ExpectLikeC(L"0x1.fffffffffffff8p1023");
  ExpectLikeC(L"2.4703282292062327208e-324");
  ExpectLikeC(L"2.4703282292062328e-324");
  ExpectLikeC(L"1.7976931348623158e308");
  ExpectLikeC(L"1.7976931348623159e308");
}

TEST(ScanNumberPropertyTest, ReadsWhatTheCLibraryReads) {
  cvars::test::Randomness random("ScanNumber");
  constexpr std::wstring_view kCharacters = L"00123456789999..eEpPxX+-  infatyINFATY()_abcV";
  for (int i = 0; i < 20000; ++i) {
    std::wstring text;
    for (std::int64_t length = random.Whole(0, 14); length > 0; --length)
      text += random.Pick(kCharacters);
    ExpectLikeC(text);
  }
  for (int i = 0; i < 20000; ++i) {
    const double value = random.AnyDouble();
    ExpectLikeC(Printed(random.Chance(0.2) ? L"%.*a" : L"%.*e",
                        random.Chance(0.8) ? 18 : static_cast<int>(random.Whole(0, 24)), value));
  }
  for (int i = 0; i < 20000; ++i) {
    const std::wstring text = std::to_wstring(random.Whole(-99999999, 99999999)) + L"." +
                              std::to_wstring(random.Whole(0, 9999)) + L"e" +
                              std::to_wstring(random.Whole(-330, 310));
    ExpectLikeC(text);
  }
}

struct HexadecimalCase {
  const char* name;
  const wchar_t* text;
  std::uint32_t value;
  std::ptrdiff_t read;
};

class HexadecimalTest : public testing::TestWithParam<HexadecimalCase> {};

TEST_P(HexadecimalTest, Reads) {
  const std::wstring_view text = GetParam().text;
  std::uint32_t value = 77;
  const wchar_t* const end = cvars::ScanHexadecimal(text.data(), text.data() + text.size(), &value);
  EXPECT_EQ(GetParam().read, end - text.data());
  EXPECT_EQ(GetParam().value, value);
}

constexpr HexadecimalCase kHexadecimalCases[] = {
    {"Digits", L"ff0000", 0xFF0000, 6},
    {"AnyCase", L"aBcDeF", 0xABCDEF, 6},
    {"Prefix", L"0xFf", 0xFF, 4},
    {"UpperPrefix", L"0X1f", 0x1F, 4},
    {"LeadingBlanks", L" \t1", 1, 3},
    {"PlusSign", L"+12", 0x12, 3},
    {"MinusSign", L"-1", 0xFFFFFFFF, 2},
    {"StopsAtTheFirstOther", L"12g4", 0x12, 2},
    {"LongRunsKeepTheLowBits", L"123456789ABCDEF01", 0xABCDEF01, 17},
    {"Empty", L"", 77, 0},
    {"NoDigit", L"green", 77, 0},
    {"PrefixAlone", L"0x", 77, 0},
    {"PrefixWithoutDigit", L"0xg", 77, 0},
    {"SignAlone", L"-", 77, 0},
    {"ZeroIsANumber", L"0", 0, 1},
};
INSTANTIATE_TEST_SUITE_P(Table, HexadecimalTest, testing::ValuesIn(kHexadecimalCases),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
