#include "NumberScan.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>

namespace cvars {
namespace {

constexpr bool IsDigit(wchar_t c) noexcept { return c >= L'0' && c <= L'9'; }

constexpr wchar_t LowerAscii(wchar_t c) noexcept {
  return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + (L'a' - L'A')) : c;
}

/// Value of a hexadecimal digit, -1 for anything else.
constexpr int HexDigit(wchar_t c) noexcept {
  if (IsDigit(c)) return static_cast<int>(c - L'0');
  const wchar_t lower = LowerAscii(c);
  return lower >= L'a' && lower <= L'f' ? static_cast<int>(lower - L'a') + 10 : -1;
}

bool StartsWith(const wchar_t* p, const wchar_t* last, std::wstring_view word) noexcept {
  if (static_cast<std::size_t>(last - p) < word.size()) return false;
  return std::equal(word.begin(), word.end(), p,
                    [](wchar_t expected, wchar_t c) { return expected == LowerAscii(c); });
}

/// Reads "e+12" after a mantissa; without digits the letter does not belong to the number.
///
/// Exponents beyond any double stop growing, far enough out for every text that fits in memory.
const wchar_t* ScanExponent(const wchar_t* p, const wchar_t* last, wchar_t letter,
                            std::int64_t* exponent) noexcept {
  constexpr std::int64_t kFarOut = std::int64_t{1} << 50;
  if (p == last || LowerAscii(*p) != letter) return p;
  const wchar_t* q = p + 1;
  bool negative = false;
  if (q != last && (*q == L'+' || *q == L'-')) negative = *q++ == L'-';
  if (q == last || !IsDigit(*q)) return p;
  std::int64_t number = 0;
  for (; q != last && IsDigit(*q); ++q) {
    if (number < kFarOut) number = number * 10 + (*q - L'0');
  }
  *exponent = negative ? -number : number;
  return q;
}

/// Converts digits [first, last), which may hold a point, times 10^exponent, correctly rounded.
///
/// Whether a double lies above or below a number is decided by at most 767 digits; a single digit
/// stands for whatever follows after that.
double ConvertDigits(const wchar_t* first, const wchar_t* last, std::int64_t exponent) noexcept {
  constexpr std::size_t kMostDigits = 780;
  char text[kMostDigits + 32];
  std::size_t count = 0;
  bool moreFollows = false;
  bool afterPoint = false;
  for (const wchar_t* p = first; p != last; ++p) {
    if (*p == L'.') {
      afterPoint = true;
      continue;
    }
    if (afterPoint) --exponent;
    if (count == 0 && *p == L'0') continue;
    if (count < kMostDigits) {
      text[count++] = static_cast<char>(*p);
    } else {
      moreFollows = moreFollows || *p != L'0';
      ++exponent;
    }
  }
  if (count == 0) return 0.0;
  if (moreFollows) {
    text[count++] = '1';
    --exponent;
  }
  const std::int64_t magnitude = exponent + static_cast<std::int64_t>(count);
  if (magnitude > 400) return std::numeric_limits<double>::infinity();
  if (magnitude < -400) return 0.0;
  char* end = text + count;
  *end++ = 'e';
  end = std::to_chars(end, text + sizeof(text), exponent).ptr;
  double value = 0.0;
  if (std::from_chars(text, end, value).ec == std::errc::result_out_of_range) {
    return magnitude > 0 ? std::numeric_limits<double>::infinity() : 0.0;
  }
  return value;
}

const wchar_t* ScanDecimal(const wchar_t* first, const wchar_t* last, double* value) noexcept {
  std::uint64_t mantissa = 0;
  std::int64_t exponent = 0;
  bool anyDigit = false;
  bool fits = true;
  const auto take = [&](wchar_t c) {
    anyDigit = true;
    if (mantissa < std::numeric_limits<std::uint64_t>::max() / 10) {
      mantissa = mantissa * 10 + static_cast<std::uint64_t>(c - L'0');
    } else {
      fits = false;
    }
  };
  const wchar_t* p = first;
  for (; p != last && IsDigit(*p); ++p) take(*p);
  if (p != last && *p == L'.') {
    const wchar_t* fraction = p + 1;
    for (p = fraction; p != last && IsDigit(*p); ++p) take(*p);
    exponent = fraction - p;
  }
  if (!anyDigit) return first;
  const wchar_t* mantissaEnd = p;
  std::int64_t written = 0;
  p = ScanExponent(p, last, L'e', &written);
  exponent += written;

  // Both the digits and the power of ten are exact doubles, so one operation rounds correctly.
  constexpr double kExactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                     1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                     1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  constexpr std::uint64_t kLargestExact = std::uint64_t{1} << 53;
  if (fits && mantissa <= kLargestExact && exponent >= -22 && exponent <= 22) {
    const auto digits = static_cast<double>(mantissa);
    *value = exponent < 0 ? digits / kExactPowers[-exponent] : digits * kExactPowers[exponent];
  } else {
    *value = ConvertDigits(first, mantissaEnd, written);
  }
  return p;
}

/// Reads what follows "0x"; gives `first` back when there is no digit.
const wchar_t* ScanHexadecimal(const wchar_t* first, const wchar_t* last, double* value) noexcept {
  static_assert(std::numeric_limits<long double>::digits >= 64,
                "the collected bits must be exact before the one rounding to double");
  std::uint64_t bits = 0;
  std::int64_t exponent = 0;
  bool anyDigit = false;
  bool afterPoint = false;
  const wchar_t* p = first;
  for (; p != last; ++p) {
    if (*p == L'.' && !afterPoint) {
      afterPoint = true;
      continue;
    }
    const int digit = HexDigit(*p);
    if (digit < 0) break;
    anyDigit = true;
    if (afterPoint) exponent -= 4;
    if ((bits >> 60) == 0) {
      bits = bits << 4 | static_cast<std::uint64_t>(digit);
    } else {
      // At least 61 bits are there; the last one remembers that something followed.
      bits |= digit != 0 ? 1u : 0u;
      exponent += 4;
    }
  }
  if (!anyDigit) return first;
  std::int64_t written = 0;
  p = ScanExponent(p, last, L'p', &written);
  const auto scale = static_cast<int>(std::clamp<std::int64_t>(exponent + written, -5000, 5000));
  *value = static_cast<double>(std::ldexp(static_cast<long double>(bits), scale));
  return p;
}

/// Reads the "(...)" that may follow "nan"; without its closing bracket it does not belong to it.
const wchar_t* SkipNanText(const wchar_t* first, const wchar_t* last) noexcept {
  if (first == last || *first != L'(') return first;
  const wchar_t* p = first + 1;
  while (p != last &&
         (IsDigit(*p) || *p == L'_' || (LowerAscii(*p) >= L'a' && LowerAscii(*p) <= L'z')))
    ++p;
  return p != last && *p == L')' ? p + 1 : first;
}

const wchar_t* ScanUnsigned(const wchar_t* p, const wchar_t* last, double* value) noexcept {
  if (p == last) return p;
  if (IsDigit(*p) || *p == L'.') {
    if (last - p > 2 && *p == L'0' && LowerAscii(p[1]) == L'x') {
      const wchar_t* end = ScanHexadecimal(p + 2, last, value);
      if (end != p + 2) return end;
    }
    return ScanDecimal(p, last, value);
  }
  if (StartsWith(p, last, L"inf")) {
    *value = std::numeric_limits<double>::infinity();
    return p + (StartsWith(p, last, L"infinity") ? 8 : 3);
  }
  if (StartsWith(p, last, L"nan")) {
    *value = std::numeric_limits<double>::quiet_NaN();
    return SkipNanText(p + 3, last);
  }
  return p;
}

}  // namespace

const wchar_t* ScanNumber(const wchar_t* first, const wchar_t* last, double* value) noexcept {
  const wchar_t* p = first;
  while (p != last && IsBlank(*p)) ++p;
  bool negative = false;
  if (p != last && (*p == L'+' || *p == L'-')) negative = *p++ == L'-';
  double magnitude = 0.0;
  const wchar_t* end = ScanUnsigned(p, last, &magnitude);
  if (end == p) return first;
  *value = negative ? -magnitude : magnitude;
  return end;
}

bool ScanExactInteger(const wchar_t* text, double value, std::int64_t* integer) noexcept {
  constexpr double kFirstRounded = 9007199254740992.0;  // 2^53
  if (text == nullptr || !(std::fabs(value) >= kFirstRounded)) return false;
  while (IsBlank(*text)) ++text;
  const bool negative = *text == L'-';
  if (negative || *text == L'+') ++text;
  // Counted below zero, where there is room for the smallest integer.
  std::int64_t number = 0;
  for (; *text >= L'0' && *text <= L'9'; ++text) {
    if (__builtin_mul_overflow(number, std::int64_t{10}, &number) ||
        __builtin_sub_overflow(number, static_cast<std::int64_t>(*text - L'0'), &number)) {
      return false;
    }
  }
  if (!negative && __builtin_sub_overflow(std::int64_t{0}, number, &number)) return false;
  if (static_cast<double>(number) != value) return false;
  *integer = number;
  return true;
}

const wchar_t* ScanHexadecimal(const wchar_t* first, const wchar_t* last,
                               std::uint32_t* value) noexcept {
  const auto digitAt = [last](const wchar_t* at) noexcept {
    if (at == last) return -1;
    if (*at >= L'0' && *at <= L'9') return static_cast<int>(*at - L'0');
    if (*at >= L'a' && *at <= L'f') return static_cast<int>(*at - L'a' + 10);
    if (*at >= L'A' && *at <= L'F') return static_cast<int>(*at - L'A' + 10);
    return -1;
  };
  const wchar_t* at = first;
  while (at != last && IsBlank(*at)) ++at;
  const bool negative = at != last && *at == L'-';
  if (at != last && (*at == L'-' || *at == L'+')) ++at;
  if (last - at >= 2 && at[0] == L'0' && (at[1] == L'x' || at[1] == L'X')) at += 2;
  if (digitAt(at) < 0) return first;
  std::uint32_t number = 0;
  for (int digit = digitAt(at); digit >= 0; digit = digitAt(++at)) {
    number = number << 4 | static_cast<std::uint32_t>(digit);
  }
  *value = negative ? 0u - number : number;
  return at;
}

}  // namespace cvars
