#include "NumericText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <limits>
#include <string>

#include "PlainLocale.h"
#include "Randomness.h"

namespace {

using cvars::NumberStyle;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr NumberStyle kStyles[] = {NumberStyle::kRemote, NumberStyle::kRemoteNoUnit,
                                   NumberStyle::kScreen, NumberStyle::kScreenCompact};

std::wstring Taken(BSTR text) {
  std::wstring copy(text, SysStringLen(text));
  EXPECT_EQ(L'\0', text[copy.size()]);
  SysFreeString(text);
  return copy;
}

std::wstring Format(double value, double grain, std::wstring_view unit, NumberStyle style,
                    int width = cvars::kNumberWidth) {
  BSTR text = nullptr;
  EXPECT_EQ(S_OK, cvars::FormatNumber(value, grain, unit, style, width, &text));
  return Taken(text);
}

// --- formatting: a table worked out by hand ---

struct FormatCase {
  const char* name;
  double value;
  double grain;
  const wchar_t* unit;
  NumberStyle style;
  const wchar_t* text;
};

class FormatNumberTest : public testing::TestWithParam<FormatCase> {};

TEST_P(FormatNumberTest, GivesTheText) {
  const FormatCase& row = GetParam();
  EXPECT_EQ(row.text, Format(row.value, row.grain, row.unit, row.style));
  std::wstring appended = L"<";
  cvars::AppendNumber(appended, row.value, row.grain, row.unit, row.style, cvars::kNumberWidth);
  EXPECT_EQ(std::wstring(L"<") + row.text, appended);
}

constexpr FormatCase kFormatCases[] = {
    {"ScreenPrefix", 0.0015, 1e-4, L"V", NumberStyle::kScreen, L"1.5 mV"},
    {"RemoteExponent", 0.0015, 1e-4, L"V", NumberStyle::kRemote, L"1.5E-3 V"},
    {"RemoteWithoutUnit", 0.0015, 1e-4, L"V", NumberStyle::kRemoteNoUnit, L"1.5E-3"},
    {"ScreenWithoutUnitHasAnExponent", 0.0015, 1e-4, L"", NumberStyle::kScreen, L"1.5e-3"},
    {"RemoteWithEmptyUnit", 0.0015, 1e-4, L"", NumberStyle::kRemote, L"1.5E-3"},
    {"ScreenKeepsZeros", 1.5, 1e-3, L"V", NumberStyle::kScreen, L"1.500 V"},
    {"CompactDropsZeros", 1.5, 1e-3, L"V", NumberStyle::kScreenCompact, L"1.5 V"},
    {"RemoteDropsZeros", 1.5, 1e-3, L"V", NumberStyle::kRemote, L"1.5 V"},
    {"CompactDropsThePoint", 2.0, 1e-3, L"V", NumberStyle::kScreenCompact, L"2 V"},
    {"CompactKeepsIntegerZeros", 100.0, 1.0, L"V", NumberStyle::kScreenCompact, L"100 V"},
    {"Negative", -0.25, 1e-2, L"V", NumberStyle::kScreen, L"-250 mV"},
    {"ZeroTakesThePrefixOfTheGrain", 0.0, 1e-3, L"V", NumberStyle::kScreen, L"0 mV"},
    {"ZeroWithOneDecimal", 0.0, 1e-4, L"V", NumberStyle::kScreen, L"0.0 mV"},
    {"ZeroWithTwoDecimals", 0.0, 1e-5, L"V", NumberStyle::kScreen, L"0.00 mV"},
    {"ZeroWithCoarseGrain", 0.0, 100.0, L"V", NumberStyle::kScreen, L"0.0 kV"},
    {"ZeroRemote", 0.0, 1e-4, L"V", NumberStyle::kRemote, L"0E-3 V"},
    {"NegativeZeroHasNoSign", -0.0, 1e-3, L"V", NumberStyle::kScreen, L"0 mV"},
    {"ZeroWithRelativeGrain", 0.0, 0.0, L"V", NumberStyle::kScreen, L"0 V"},
    {"ZeroWithDigitsGrain", 0.0, -3.0, L"V", NumberStyle::kScreen, L"0 V"},
    {"RoundedToZeroHasNoSign", -0.0004, 1.0, L"V", NumberStyle::kScreen, L"0 V"},
    {"CarryMovesToTheNextPrefix", 999.96, 0.1, L"V", NumberStyle::kScreen, L"1.0000 kV"},
    {"CarryOnTheRemoteSide", 999.96, 0.1, L"V", NumberStyle::kRemote, L"1E+3 V"},
    {"NoCarryBelowHalf", 999.94, 0.1, L"V", NumberStyle::kScreen, L"999.9 V"},
    {"LargestPrefix", 1e12, 1e12, L"Hz", NumberStyle::kScreen, L"1 THz"},
    {"SmallestPrefix", 1e-18, 1e-18, L"s", NumberStyle::kScreen, L"1 as"},
    {"Micro", 2e-6, 1e-6, L"s", NumberStyle::kScreen, L"2 \u00b5s"},
    {"AboveThePrefixes", 5e15, 1e15, L"Hz", NumberStyle::kScreen, L"5e+15 Hz"},
    {"BelowThePrefixes", 5e-21, 1e-21, L"s", NumberStyle::kScreen, L"5e-21 s"},
    {"CountingUnitPlural", 2.0, 1.0, L"sweep", NumberStyle::kScreen, L"2 sweeps"},
    {"CountingUnitOne", 1.0, 1.0, L"sweep", NumberStyle::kScreen, L"1 sweep"},
    {"CountingUnitMinusOne", -1.0, 1.0, L"hour", NumberStyle::kScreenCompact, L"-1 hours"},
    {"CountingUnitZero", 0.0, 1.0, L"byte", NumberStyle::kScreen, L"0 bytes"},
    {"CountingUnitWithPrefix", 2000.0, 1000.0, L"bit", NumberStyle::kScreen, L"2 kbits"},
    {"CountingUnitRemoteStays", 2.0, 1.0, L"sweep", NumberStyle::kRemote, L"2 sweep"},
    {"OtherUnitsHaveNoPlural", 2.0, 1.0, L"div", NumberStyle::kScreen, L"2 div"},
    {"CountingUnitCaseCounts", 2.0, 1.0, L"Sweep", NumberStyle::kScreen, L"2 Sweep"},
    {"InfiniteRemote", kInfinity, 1.0, L"V", NumberStyle::kRemote, L"UNDEF"},
    {"InfiniteRemoteWithoutUnit", -kInfinity, 1.0, L"V", NumberStyle::kRemoteNoUnit, L"UNDEF"},
    {"InfiniteScreen", kInfinity, 1.0, L"V", NumberStyle::kScreen, L"- - -"},
    {"NotANumberScreen", kNan, 1.0, L"sweep", NumberStyle::kScreenCompact, L"- - -"},
    {"TieToEvenDown", 2.5, 1.0, L"V", NumberStyle::kScreen, L"2 V"},
    {"TieToEvenUp", 3.5, 1.0, L"V", NumberStyle::kScreen, L"4 V"},
    {"GrainAboveTheValue", 7.0, 100.0, L"V", NumberStyle::kScreen, L"7 V"},
    {"DigitsGrain", 1239.0, -3.0, L"V", NumberStyle::kScreen, L"1.24 kV"},
    {"RelativeGrain", 1.5, 0.0, L"V", NumberStyle::kScreen, L"1.5000000 V"},
    {"UnitLosesTrailingBlanks", 1.5, 0.1, L"V \t", NumberStyle::kScreen, L"1.5 V"},
    {"BlankUnitVanishes", 0.0015, 1e-4, L"  ", NumberStyle::kScreen, L"1.5 m"},
    {"InfiniteGrainShowsTheLeadingDigit", 1234.0, kInfinity, L"V", NumberStyle::kScreen, L"1 kV"},
    {"Largest", std::numeric_limits<double>::max(), 1e306, L"V", NumberStyle::kRemote,
     L"180E+306 V"},
};
INSTANTIATE_TEST_SUITE_P(Table, FormatNumberTest, testing::ValuesIn(kFormatCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FormatNumberWidthTest, DecimalsBeyondTheWidthAreDropped) {
  // Digit, point and 17 decimals need 20 characters; the ninth grain digit is the last of 10.
  EXPECT_EQ(L"1.00000000000000000 V", Format(1.0, 1e-30, L"V", NumberStyle::kScreen));
  EXPECT_EQ(L"1.2345679 V", Format(1.23456789, 1e-8, L"V", NumberStyle::kScreen, 10));
  EXPECT_EQ(L"1 V", Format(1.23456789, 1e-8, L"V", NumberStyle::kScreen, 1));
  EXPECT_EQ(L"1 V", Format(1.23456789, 1e-8, L"V", NumberStyle::kScreen, 0));
}

TEST(FormatNumberUnitTest, UnitsOfAnyLengthAreKept) {
  const std::wstring unit(1000, L'u');
  EXPECT_EQ(L"1 " + unit, Format(1.0, 1.0, unit, NumberStyle::kScreen));
}

TEST(FormatNumberSignTest, ANegativeZeroWithDecimalsKeepsItsSign) {
  // Below 1000^-102 the mantissa is no longer brought to 1..1000, so only zeros are left of it.
  EXPECT_EQ(L"-0.000e-306 V", Format(-5e-320, 5e-324, L"V", NumberStyle::kScreen));
  EXPECT_EQ(L"-0E-306 V", Format(-5e-320, 5e-324, L"V", NumberStyle::kRemote));
}

// --- formatting: against the plain algorithm ---

std::wstring SlowFormat(double value, double grain, std::wstring unit, NumberStyle style,
                        int width) {
  const int mode = static_cast<int>(style);
  if (!std::isfinite(value)) return mode < 2 ? L"UNDEF" : L"- - -";
  if (mode >= 2 && value != 1.0) {
    for (const wchar_t* word : {L"sweep", L"decade", L"hour", L"day", L"wk", L"bit", L"byte"}) {
      if (unit == word) {
        unit += L's';
        break;
      }
    }
  }
  double step = grain;
  if (grain == 0.0) step = std::fabs(value) * 1e-7;
  if (grain < 0.0) {
    const double n = std::clamp(std::floor(std::fabs(grain) + 0.5) - 1.0, 0.0, 17.0);
    step = std::fabs(value) * std::pow(10.0, -n);
  }
  step = std::fabs(step);
  if (step == 0.0) step = std::fabs(value);
  const int g = step > 0 ? static_cast<int>(std::floor(std::log10(step) + 1e-15)) : 0;
  double mantissa = 0.0;
  int integerDigits = 1;
  int decimals = 0;
  int k = 0;
  if (value == 0.0) {
    k = static_cast<int>(std::ceil(g / 3.0));
    decimals = 3 * k - g;
  } else {
    const double a = std::fabs(value);
    const int e = std::max(static_cast<int>(std::floor(std::log10(a))), g);
    const int digits = std::clamp(e - g + 1, 1, 18);
    const int r = ((e % 3) + 3) % 3;
    k = std::max((e - r) / 3, -102);
    mantissa = std::copysign(a / std::pow(1000.0, k), value);
    integerDigits = r + 1;
    decimals = std::max(digits - (r + 1), 0);
    if (integerDigits == 3 && std::fabs(mantissa) + 0.5 * std::pow(10.0, -decimals) >= 1000) {
      mantissa /= 1000;
      k += 1;
      decimals += 3;
      integerDigits = 0;
    }
  }
  int columns = integerDigits + decimals + (decimals > 0 ? 1 : 0) + 1;
  if (columns > width) {
    decimals -= columns - width;
    columns = width;
  }
  if (decimals < 0) decimals = 0;
  if (columns == 0) columns = 10;
  wchar_t buffer[400];
  {
    const cvars::test::PlainLocale plain;
    std::swprintf(buffer, 400, L"%*.*f", columns, decimals, mantissa);
  }
  std::wstring text = buffer;
  if (text.size() > 1 && text.substr(text.size() - 2) == L"-0") text[text.size() - 2] = L' ';
  if (mode != 2 && text.find(L'.') != std::wstring::npos) {
    while (text.back() == L'0') text.pop_back();
    if (text.back() == L'.') text.pop_back();
  }
  if (mode >= 2 && !unit.empty() && k >= -6 && k <= 4) {
    const wchar_t* prefixes[] = {L" a", L" f", L" p", L" n", L" \u00b5", L" m",
                                 L" ",  L" k", L" M", L" G", L" T"};
    text += prefixes[k + 6];
  } else if (k == 0) {
    text += L' ';
  } else {
    std::swprintf(buffer, 400, L"%c%c%d ", mode < 2 ? 'E' : 'e', k < 0 ? '-' : '+',
                  3 * std::abs(k));
    text += buffer;
  }
  if (mode != 1) text += unit;
  const auto first = text.find_first_not_of(L" \t\n\v\f\r");
  const auto last = text.find_last_not_of(L" \t\n\v\f\r");
  return first == std::wstring::npos ? L"" : text.substr(first, last - first + 1);
}

void ExpectLikeSlow(double value, double grain, const wchar_t* unit, int width) {
  for (const NumberStyle style : kStyles) {
    EXPECT_EQ(SlowFormat(value, grain, unit, style, width),
              Format(value, grain, unit, style, width))
        << std::hexfloat << value << " grain " << grain << " style " << static_cast<int>(style)
        << " width " << width;
  }
}

constexpr const wchar_t* kUnits[] = {L"V", L"", L"Hz", L"sweep", L"byte", L"V/div", L" ", L"wk "};

double RandomGrain(cvars::test::Randomness& random) {
  switch (random.Whole(0, 5)) {
    case 0:
      return 0.0;
    case 1:
      return static_cast<double>(random.Whole(-20, -1));
    case 2:
      return std::pow(10.0, random.Real(-20, 15));
    case 3:
      return std::pow(10.0, static_cast<double>(random.Whole(-320, 308)));
    case 4: {
      const double any = random.AnyDouble();
      return std::isfinite(any) ? any : 1.0;
    }
    default:
      return static_cast<double>(random.Whole(1, 9)) *
             std::pow(10.0, static_cast<double>(random.Whole(-9, 4)));
  }
}

TEST(FormatNumberPropertyTest, MatchesThePlainAlgorithm) {
  cvars::test::Randomness random("FormatNumber");
  for (int i = 0; i < 20000 && !HasFailure(); ++i) {
    double value = 0.0;
    switch (random.Whole(0, 4)) {
      case 0:
        value = random.AnyDouble();
        break;
      case 1:
        value = std::pow(10.0, random.Real(-25, 20)) * (random.Chance(0.5) ? 1 : -1);
        break;
      case 2:
        value = static_cast<double>(random.Whole(-200000, 200000)) / 64.0;
        break;
      case 3:
        value = static_cast<double>(random.Whole(-99999, 99999)) *
                std::pow(10.0, static_cast<double>(random.Whole(-12, 9)));
        break;
      default:
        value = std::pow(1000.0, static_cast<double>(random.Whole(-7, 6))) *
                (1.0 - std::pow(10.0, random.Real(-17, -2)));
    }
    ExpectLikeSlow(
        value, RandomGrain(random), random.Pick(kUnits),
        random.Chance(0.8) ? cvars::kNumberWidth : static_cast<int>(random.Whole(0, 30)));
  }
}

TEST(FormatNumberPropertyTest, MatchesThePlainAlgorithmRoundPowersOfTen) {
  for (int exponent = -323; exponent <= 308 && !HasFailure(); ++exponent) {
    const double power = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
    const double around[] = {power,
                             std::nextafter(power, 0.0),
                             std::nextafter(power, kInfinity),
                             power * (1 - 3e-16),
                             power * (1 + 1e-15),
                             power * (1 - 1e-15),
                             power * (1 - 1e-14),
                             power * (1 - 2e-12),
                             -power,
                             power * 9.5,
                             power * 2.5};
    for (const double value : around) {
      if (!std::isfinite(value)) continue;
      for (const double grain : {0.0, -1.0, -4.0, -18.0, 1e-3, 1.0, std::fabs(value), power}) {
        if (std::isfinite(grain)) ExpectLikeSlow(value, grain, L"V", cvars::kNumberWidth);
      }
      ExpectLikeSlow(1.5, std::fabs(value), L"V", cvars::kNumberWidth);
      ExpectLikeSlow(0.0, std::fabs(value), L"V", cvars::kNumberWidth);
    }
  }
}

// --- integers, %g ---

struct IntegerCase {
  const char* name;
  std::int64_t value;
  const wchar_t* unit;
  NumberStyle style;
  const wchar_t* text;
};

class FormatIntegerTest : public testing::TestWithParam<IntegerCase> {};

TEST_P(FormatIntegerTest, GivesTheText) {
  BSTR text = nullptr;
  ASSERT_EQ(S_OK, cvars::FormatInteger(GetParam().value, GetParam().unit, GetParam().style, &text));
  EXPECT_EQ(GetParam().text, Taken(text));
}

constexpr IntegerCase kIntegerCases[] = {
    {"Remote", 1500, L"HZ", NumberStyle::kRemote, L"1500 HZ"},
    {"RemoteWithoutUnit", 1500, L"HZ", NumberStyle::kRemoteNoUnit, L"1500"},
    {"Screen", -3, L"Hz", NumberStyle::kScreen, L"-3 Hz"},
    {"EmptyUnit", 7, L"", NumberStyle::kScreen, L"7"},
    {"Plural", 0, L"bit", NumberStyle::kScreen, L"0 bits"},
    {"PluralCompact", 2, L"wk", NumberStyle::kScreenCompact, L"2 wks"},
    {"Singular", 1, L"day", NumberStyle::kScreen, L"1 day"},
    {"MinusOneIsPlural", -1, L"decade", NumberStyle::kScreen, L"-1 decades"},
    {"RemoteHasNoPlural", 2, L"bit", NumberStyle::kRemote, L"2 bit"},
    {"Largest", INT64_MAX, L"", NumberStyle::kRemote, L"9223372036854775807"},
    {"Smallest", INT64_MIN, L"", NumberStyle::kRemote, L"-9223372036854775808"},
};
INSTANTIATE_TEST_SUITE_P(Table, FormatIntegerTest, testing::ValuesIn(kIntegerCases),
                         [](const auto& row) { return std::string(row.param.name); });

std::wstring General(double value) {
  std::wstring text;
  cvars::AppendGeneral(text, value);
  return text;
}

TEST(GeneralTextTest, PrintsSixDigits) {
  EXPECT_EQ(L"0", General(0.0));
  EXPECT_EQ(L"-0", General(-0.0));
  EXPECT_EQ(L"0.1", General(0.1));
  EXPECT_EQ(L"1e-300", General(1e-300));
  EXPECT_EQ(L"1e+300", General(1e300));
  EXPECT_EQ(L"123457", General(123456.5001));
  EXPECT_EQ(L"1e+06", General(1e6));
  EXPECT_EQ(L"0.0001", General(1e-4));
  EXPECT_EQ(L"1e-05", General(1e-5));
  EXPECT_EQ(L"inf", General(kInfinity));
  EXPECT_EQ(L"-inf", General(-kInfinity));
  EXPECT_EQ(L"nan", General(kNan));
}

TEST(GeneralTextTest, PrintsWhatTheCLibraryPrints) {
  cvars::test::Randomness random("General");
  for (int i = 0; i < 20000 && !HasFailure(); ++i) {
    const double value = random.Chance(0.5)
                             ? random.AnyDouble()
                             : static_cast<double>(random.Whole(-40000000, 40000000)) / 16.0;
    wchar_t text[64];
    {
      const cvars::test::PlainLocale plain;
      std::swprintf(text, std::size(text), L"%g", value);
    }
    EXPECT_EQ(text, General(value));
  }
}

TEST(DecimalTextTest, AppendsTheNumber) {
  std::wstring text = L"a";
  cvars::AppendDecimal(text, -42);
  cvars::AppendDecimal(text, INT64_MIN);
  EXPECT_EQ(L"a-42-9223372036854775808", text);
}

// --- parsing ---

constexpr double kUntouched = 4711.0;

struct ParseCase {
  const char* name;
  const wchar_t* text;
  const wchar_t* unit;
  cvars::PrefixTable table;
  HRESULT result;
  double value;
};

class ParseNumberTest : public testing::TestWithParam<ParseCase> {};

TEST_P(ParseNumberTest, ReadsTheText) {
  const ParseCase& row = GetParam();
  double value = kUntouched;
  EXPECT_EQ(row.result, cvars::ParseNumber(row.text, row.unit, row.table, &value));
  EXPECT_EQ(row.value, value);
}

constexpr cvars::PrefixTable kScreen = cvars::kScreenPrefixes;
constexpr cvars::PrefixTable kRemote = cvars::kRemotePrefixes;

const ParseCase kParseCases[] = {
    {"BlankBeforeThePrefix", L"1.5 mV", L"V", kScreen, S_OK, 0.0015},
    {"NoBlank", L"1.5mV", L"V", kScreen, S_OK, 0.0015},
    {"ScreenMIsMega", L"1.5 MV", L"V", kScreen, S_OK, 1.5e6},
    {"RemoteMIsMilli", L"1.5 MV", L"V", kRemote, S_OK, 0.0015},
    {"RemoteMaIsMega", L"1.5 MAV", L"V", kRemote, S_OK, 1.5e6},
    {"RemoteMegahertz", L"100 MHZ", L"HZ", kRemote, S_OK, 1e8},
    {"RemoteMegahertzInFull", L"100 MAHZ", L"HZ", kRemote, S_OK, 1e8},
    {"MilliIsNoMegaForOtherCase", L"100 MHz", L"Hz", kRemote, S_OK, 0.1},
    {"RemoteExa", L"2 EXHZ", L"HZ", kRemote, S_OK, 2e18},
    {"RemotePeta", L"2 PEHZ", L"HZ", kRemote, S_OK, 2e15},
    {"RemotePico", L"2 PS", L"S", kRemote, S_OK, 2.0 * 1e-12},
    {"RemoteAtto", L"2 AS", L"S", kRemote, S_OK, 2.0 * 1e-18},
    {"ScreenMicro", L"3 \u00b5s", L"s", kScreen, S_OK, 3.0 * 1e-6},
    {"OtherMicroSignIsUnknown", L"3 \u03bcs", L"s", kScreen, cvars::kUnknownSuffix, kUntouched},
    {"NumberOnly", L" 7 ", L"V", kScreen, S_OK, 7.0},
    {"UnitOnlyAfterNumber", L"7 V", L"V", kScreen, S_OK, 7.0},
    {"ExponentOfTheNumber", L"1e-3V", L"V", kScreen, S_OK, 1e-3},
    {"ExponentAndPrefix", L"1e3 mV", L"V", kScreen, S_OK, 1.0},
    {"WordIsNoUnit", L"7 volts", L"V", kScreen, cvars::kUnknownSuffix, kUntouched},
    {"UnknownPrefix", L"7 xV", L"V", kScreen, cvars::kUnknownSuffix, kUntouched},
    {"TwoCharacterPrefixOnScreen", L"7 MAV", L"V", kScreen, cvars::kUnknownSuffix, kUntouched},
    {"ThreeCharactersAreNoPrefix", L"7 MAXV", L"V", kRemote, cvars::kUnknownSuffix, kUntouched},
    {"CaseOfTheUnitCounts", L"7 v", L"V", kScreen, cvars::kUnknownSuffix, kUntouched},
    {"CaseOfThePrefixCounts", L"7 KV", L"V", kScreen, cvars::kUnknownSuffix, kUntouched},
    {"PrefixWithoutUnit", L"7 m", L"V", kScreen, cvars::kUnknownSuffix, kUntouched},
    {"BlankBetweenPrefixAndUnit", L"7 m V", L"V", kScreen, cvars::kUnknownSuffix, kUntouched},
    {"EmptyUnitPrefix", L"5m", L"", kScreen, S_OK, 0.005},
    {"EmptyUnitTwoCharacters", L"5MA", L"", kRemote, S_OK, 5e6},
    {"EmptyUnitUnknown", L"5V", L"", kScreen, cvars::kUnknownSuffix, kUntouched},
    {"Empty", L"", L"V", kScreen, cvars::kNoNumber, kUntouched},
    {"Null", nullptr, L"V", kScreen, cvars::kNoNumber, kUntouched},
    {"BlanksOnly", L" \t\n", L"V", kScreen, cvars::kNoNumber, kUntouched},
    {"UnitAlone", L"V", L"V", kScreen, cvars::kNoNumber, kUntouched},
    {"Infinite", L"inf", L"V", kScreen, S_OK, kInfinity},
    {"OverflowIsInfinite", L"1e999 V", L"V", kScreen, S_OK, kInfinity},
    {"Hexadecimal", L"0x10 V", L"V", kScreen, S_OK, 16.0},
    {"HexadecimalDigitsBeforeThePrefix", L"0x1 fV", L"V", kScreen, S_OK, 1e-15},
    {"CommaEndsTheNumber", L"38,4 kV", L"V", kScreen, cvars::kUnknownSuffix, kUntouched},
    {"UnitThatStartsLikeAPrefix", L"5 m", L"m", kScreen, S_OK, 5.0},
    {"PrefixOfThatUnit", L"5 mm", L"m", kScreen, S_OK, 0.005},
    {"PrefixLikeUnitAfterM", L"5 MM", L"M", kRemote, S_OK, 0.005},
};
INSTANTIATE_TEST_SUITE_P(Table, ParseNumberTest, testing::ValuesIn(kParseCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ParseNumberTablesTest, EveryPrefixIsKnown) {
  const std::pair<const wchar_t*, double> remote[] = {
      {L"EX", 1e18}, {L"PE", 1e15}, {L"T", 1e12}, {L"G", 1e9},   {L"MA", 1e6},  {L"K", 1e3},
      {L"M", 1e-3},  {L"U", 1e-6},  {L"N", 1e-9}, {L"P", 1e-12}, {L"F", 1e-15}, {L"A", 1e-18}};
  const std::pair<const wchar_t*, double> screen[] = {
      {L"T", 1e12},      {L"G", 1e9},  {L"M", 1e6},   {L"k", 1e3},   {L"m", 1e-3},
      {L"\u00b5", 1e-6}, {L"n", 1e-9}, {L"p", 1e-12}, {L"f", 1e-15}, {L"a", 1e-18}};
  const auto expectRows = [](cvars::PrefixTable table, const auto& rows) {
    ASSERT_EQ(std::size(rows), table.size());
    for (std::size_t i = 0; i < table.size(); ++i) {
      EXPECT_EQ(rows[i].first, table[i].text);
      EXPECT_EQ(rows[i].second, table[i].multiplier);
    }
  };
  expectRows(cvars::kRemotePrefixes, remote);
  expectRows(cvars::kScreenPrefixes, screen);
}

TEST(ParseNumberArgumentsTest, NullResultGivesPointerError) {
  EXPECT_EQ(E_POINTER, cvars::ParseNumber(L"x", L"V", kScreen, nullptr));
  EXPECT_EQ(E_POINTER, cvars::ParseScreenNumber(L"x", L"V", nullptr));
}

TEST(ParseNumberArgumentsTest, ErrorCodesAreFixed) {
  EXPECT_EQ(static_cast<HRESULT>(0x80040512u), cvars::kNoNumber);
  EXPECT_EQ(static_cast<HRESULT>(0x80040513u), cvars::kUnknownSuffix);
}

struct ScreenCase {
  const char* name;
  const wchar_t* text;
  const wchar_t* unit;
  HRESULT result;
  double value;
};

class ParseScreenNumberTest : public testing::TestWithParam<ScreenCase> {};

TEST_P(ParseScreenNumberTest, ReadsTheText) {
  const ScreenCase& row = GetParam();
  double value = kUntouched;
  EXPECT_EQ(row.result, cvars::ParseScreenNumber(row.text, row.unit, &value));
  EXPECT_EQ(row.value, value);
}

const ScreenCase kScreenCases[] = {
    {"Plural", L"2 sweeps", L"sweep", S_OK, 2.0},
    {"Singular", L"2 sweep", L"sweep", S_OK, 2.0},
    {"PluralWithPrefix", L"2 kbits", L"bit", S_OK, 2000.0},
    {"AnyUnitLosesItsS", L"2 mVs", L"V", S_OK, 0.002},
    {"TwoSAreOneTooMany", L"2 sweepss", L"sweep", cvars::kUnknownSuffix, kUntouched},
    {"SecondsPlural", L"2 ss", L"s", S_OK, 2.0},
    {"EmptyUnitAnyS", L"5s", L"", S_OK, 5.0},
    {"EmptyUnitFirstSOnly", L"5ss", L"", cvars::kUnknownSuffix, kUntouched},
    {"EmptyUnitSInsideTheNumber", L"1s5k", L"", S_OK, 15000.0},
    {"Null", nullptr, L"", cvars::kNoNumber, kUntouched},
    {"Prefix", L"1.5 mV", L"V", S_OK, 0.0015},
};
INSTANTIATE_TEST_SUITE_P(Table, ParseScreenNumberTest, testing::ValuesIn(kScreenCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ParseScreenNumberLongTest, TextsOfAnyLengthLoseTheirS) {
  double value = kUntouched;
  const std::wstring text = L"0." + std::wstring(500, L'0') + L"4e500 hours";
  EXPECT_EQ(S_OK, cvars::ParseScreenNumber(text.c_str(), L"hour", &value));
  EXPECT_EQ(0.4, value);
}

TEST(ParseFormattedPropertyTest, WhatIsWrittenIsRead) {
  cvars::test::Randomness random("ParseFormatted");
  for (int i = 0; i < 20000 && !HasFailure(); ++i) {
    const double value = std::pow(10.0, random.Real(-17, 14)) * (random.Chance(0.5) ? 1 : -1);
    double screen = kUntouched;
    double remote = kUntouched;
    const std::wstring onScreen = Format(value, -10, L"V", NumberStyle::kScreen);
    const std::wstring onRemote = Format(value, -10, L"V", NumberStyle::kRemote);
    ASSERT_EQ(S_OK, cvars::ParseScreenNumber(onScreen.c_str(), L"V", &screen));
    ASSERT_EQ(S_OK, cvars::ParseNumber(onRemote.c_str(), L"V", kRemote, &remote));
    EXPECT_NEAR(value, screen, std::fabs(value) * 6e-10);
    EXPECT_NEAR(value, remote, std::fabs(value) * 6e-10);
  }
}

}  // namespace
