#include "NumericText.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cwchar>
#include <iterator>

#include "GrainRounding.h"
#include "NumberScan.h"

namespace cvars {
namespace {

// --- powers of ten ---

constexpr int kLargestPower = 30;
constexpr double kPowers[] = {
    1e-30, 1e-29, 1e-28, 1e-27, 1e-26, 1e-25, 1e-24, 1e-23, 1e-22, 1e-21, 1e-20, 1e-19, 1e-18,
    1e-17, 1e-16, 1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10, 1e-9,  1e-8,  1e-7,  1e-6,  1e-5,
    1e-4,  1e-3,  1e-2,  1e-1,  1e0,   1e1,   1e2,   1e3,   1e4,   1e5,   1e6,   1e7,   1e8,
    1e9,   1e10,  1e11,  1e12,  1e13,  1e14,  1e15,  1e16,  1e17,  1e18,  1e19,  1e20,  1e21,
    1e22,  1e23,  1e24,  1e25,  1e26,  1e27,  1e28,  1e29,  1e30};
static_assert(std::size(kPowers) == 2 * kLargestPower + 1);

/// 10^exponent for exponents from -30 to 30.
double SmallPower(int exponent) noexcept { return kPowers[exponent + kLargestPower]; }

double PowerOfThousand(int exponent) noexcept {
  return exponent >= -10 && exponent <= 10 ? SmallPower(3 * exponent)
                                           : std::pow(1000.0, static_cast<double>(exponent));
}

/// Gives floor(log10(a) + bias) for a finite number above 0; the bias is far below 1.
///
/// Next to a power of ten the rounding of the logarithm decides, so only there it is computed.
int DecimalExponent(double a, double bias) noexcept {
  if (a >= 1e-29 && a < 1e29) {
    const auto binary = static_cast<int>(std::bit_cast<std::uint64_t>(a) >> 52) - 1023;
    int exponent = (binary * 1233) >> 12;  // 1233 / 4096 is log10(2) as far as it matters here
    if (a >= SmallPower(exponent + 1)) ++exponent;
    const double low = SmallPower(exponent);
    const double high = SmallPower(exponent + 1);
    if (a == low || (a - low > low * 1e-12 && high - a > high * 1e-12)) return exponent;
  }
  return static_cast<int>(std::floor(std::log10(a) + bias));
}

// --- engineering notation ---

/// A number as mantissa times 1000^power; the mantissa carries no sign.
struct Engineering {
  double mantissa;
  int integerDigits;
  int decimals;
  int power;
};

Engineering Decompose(double value, double step) noexcept {
  const double magnitude = std::fabs(value);
  double resolution = std::fabs(step);
  if (resolution == 0.0 || !std::isfinite(resolution)) resolution = magnitude;
  const int grainExponent = resolution > 0.0 ? DecimalExponent(resolution, 1e-15) : 0;

  if (magnitude == 0.0) {
    const int power =
        grainExponent > 0 ? (grainExponent + 2) / 3 : -(-grainExponent / 3);  // rounds up
    return {0.0, 1, 3 * power - grainExponent, power};
  }

  const int exponent = std::max(DecimalExponent(magnitude, 0.0), grainExponent);
  const int digits = std::clamp(exponent - grainExponent + 1, 1, 18);
  const int position = ((exponent % 3) + 3) % 3;
  Engineering number{};
  number.power = std::max((exponent - position) / 3, -102);
  number.mantissa = magnitude / PowerOfThousand(number.power);
  number.integerDigits = position + 1;
  number.decimals = std::max(digits - number.integerDigits, 0);
  if (number.integerDigits == 3 && number.mantissa + 0.5 * SmallPower(-number.decimals) >= 1000.0) {
    number.mantissa /= 1000.0;  // it would read 1000 of the smaller prefix
    number.power += 1;
    number.decimals += 3;
    number.integerDigits = 0;
  }
  return number;
}

// --- the number without its unit ---

/// Room before a number for its sign and digits, and behind it for an exponent or a prefix.
constexpr std::size_t kDigitsRoom = 32;
constexpr std::size_t kSuffixRoom = 8;

/// A text in the making: digits grow to the left, what follows them to the right.
struct NumberBuffer {
  wchar_t characters[kDigitsRoom + kSuffixRoom];
  wchar_t* first = characters + kDigitsRoom;
  wchar_t* last = first;

  void Prepend(wchar_t character) noexcept { *--first = character; }
  void Append(wchar_t character) noexcept { *last++ = character; }
  std::wstring_view View() const noexcept { return {first, last}; }
};

void PrependUnsigned(NumberBuffer& text, std::uint64_t number) noexcept {
  while (number >= 10) {
    text.Prepend(static_cast<wchar_t>(L'0' + number % 10));
    number /= 10;
  }
  text.Prepend(static_cast<wchar_t>(L'0' + number));
}

__extension__ typedef unsigned __int128 UnsignedWide;  // exact products of mantissa and power

/// Gives number * 10^decimals as a whole number, exact ties to the even one.
///
/// The number is finite and lies in 0..1023, the decimals in 0..15.
std::uint64_t ScaleToWhole(double number, int decimals) noexcept {
  constexpr std::uint64_t kWholePowers[] = {1ull,
                                            10ull,
                                            100ull,
                                            1000ull,
                                            10000ull,
                                            100000ull,
                                            1000000ull,
                                            10000000ull,
                                            100000000ull,
                                            1000000000ull,
                                            10000000000ull,
                                            100000000000ull,
                                            1000000000000ull,
                                            10000000000000ull,
                                            100000000000000ull,
                                            1000000000000000ull};
  // The number is bits * 2^-shift; below 1024 the shift is at least 43.
  const auto pattern = std::bit_cast<std::uint64_t>(number);
  const auto binary = static_cast<int>(pattern >> 52);
  const std::uint64_t fraction = pattern & ((std::uint64_t{1} << 52) - 1);
  const std::uint64_t bits = binary == 0 ? fraction : fraction | std::uint64_t{1} << 52;
  const int shift = 1075 - std::max(binary, 1);
  if (shift >= 128) return 0;
  const UnsignedWide product = static_cast<UnsignedWide>(bits) * kWholePowers[decimals];
  const UnsignedWide rest = product & ((static_cast<UnsignedWide>(1) << shift) - 1);
  const UnsignedWide half = static_cast<UnsignedWide>(1) << (shift - 1);
  const auto whole = static_cast<std::uint64_t>(product >> shift);
  return rest > half || (rest == half && (whole & 1) != 0) ? whole + 1 : whole;
}

/// Writes a mantissa with the given decimals, without the zeros at its end when they are to go.
///
/// @return whether "0" alone stands there.
bool PrependMantissa(NumberBuffer& text, double mantissa, int decimals, bool keepZeros) noexcept {
  if (decimals > 15) {
    char digits[kDigitsRoom];
    const char* last =
        std::to_chars(digits, std::end(digits), mantissa, std::chars_format::fixed, decimals).ptr;
    if (!keepZeros) {
      while (last[-1] == '0') --last;
      if (last[-1] == '.') --last;
    }
    while (last != digits) text.Prepend(static_cast<wchar_t>(*--last));
    return false;
  }
  std::uint64_t number = ScaleToWhole(mantissa, decimals);
  const bool zero = number == 0 && decimals == 0;
  if (!keepZeros) {
    for (; decimals > 0 && number % 10 == 0; --decimals) number /= 10;
  }
  if (decimals > 0) {
    for (; decimals > 0; --decimals) {
      text.Prepend(static_cast<wchar_t>(L'0' + number % 10));
      number /= 10;
    }
    text.Prepend(L'.');
  }
  PrependUnsigned(text, number);
  return zero;
}

bool IsScreen(NumberStyle style) noexcept {
  return style == NumberStyle::kScreen || style == NumberStyle::kScreenCompact;
}

/// Writes a finite number and its prefix or exponent.
void WriteNumber(NumberBuffer& text, double value, double grain, bool unitFollows,
                 NumberStyle style, int width) noexcept {
  Engineering number = Decompose(value, EffectiveStep(value, grain));
  const int wanted = number.integerDigits + number.decimals + (number.decimals > 0 ? 1 : 0) + 1;
  if (wanted > width) number.decimals = std::max(number.decimals - (wanted - width), 0);

  const bool plainZero =
      PrependMantissa(text, number.mantissa, number.decimals, style == NumberStyle::kScreen);
  // There is no negative zero, but one with decimals keeps its sign.
  if (value < 0.0 && !plainZero) text.Prepend(L'-');

  if (IsScreen(style) && unitFollows && number.power >= -6 && number.power <= 4) {
    constexpr wchar_t kPrefixes[] = L"afpn\u00b5m kMGT";
    text.Append(L' ');
    if (number.power != 0) text.Append(kPrefixes[number.power + 6]);
    return;
  }
  if (number.power != 0) {
    text.Append(IsScreen(style) ? L'e' : L'E');
    text.Append(number.power < 0 ? L'-' : L'+');
    const int exponent = 3 * std::abs(number.power);
    if (exponent >= 100) text.Append(static_cast<wchar_t>(L'0' + exponent / 100));
    if (exponent >= 10) text.Append(static_cast<wchar_t>(L'0' + exponent / 10 % 10));
    text.Append(static_cast<wchar_t>(L'0' + exponent % 10));
  }
  if (unitFollows) text.Append(L' ');
}

// --- number and unit ---

/// Compares without the call that the standard comparison makes; most texts differ at once.
bool SameText(std::wstring_view left, std::wstring_view right) noexcept {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (left[i] != right[i]) return false;
  }
  return true;
}

std::wstring_view TrimEnd(std::wstring_view text) noexcept {
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

wchar_t* WriteText(wchar_t* out, std::wstring_view text) noexcept {
  return std::copy(text.begin(), text.end(), out);
}

/// The parts of a finished text; the views lie in the caller's buffers.
struct NumberParts {
  std::wstring_view number;
  std::wstring_view unit;
  bool plural = false;

  std::size_t Length() const noexcept { return number.size() + unit.size() + (plural ? 1 : 0); }
  void Write(wchar_t* out) const noexcept {
    out = WriteText(WriteText(out, number), unit);
    if (plural) *out = L's';
  }
};

NumberParts MakeParts(NumberBuffer& text, double value, double grain, std::wstring_view unit,
                      NumberStyle style, int width) noexcept {
  if (!std::isfinite(value)) return {IsScreen(style) ? L"- - -" : L"UNDEF", {}, false};
  if (style == NumberStyle::kRemoteNoUnit) unit = {};
  WriteNumber(text, value, grain, !unit.empty(), style, width);
  NumberParts parts{text.View(), TrimEnd(unit), false};
  parts.plural = IsScreen(style) && value != 1.0 && IsCountingUnit(unit);
  if (parts.unit.empty()) parts.number = TrimEnd(parts.number);
  return parts;
}

HRESULT MakeText(const NumberParts& parts, BSTR* text) {
  *text = SysAllocStringLen(nullptr, static_cast<UINT>(parts.Length()));
  if (*text == nullptr) return E_OUTOFMEMORY;
  parts.Write(*text);
  return S_OK;
}

// --- reading ---

std::wstring_view ViewOf(const wchar_t* text) noexcept {
  return text == nullptr ? std::wstring_view() : std::wstring_view(text);
}

HRESULT Parse(std::wstring_view text, std::wstring_view unit, PrefixTable table, double* value) {
  text = TrimEnd(text);
  double number = 0.0;
  const wchar_t* const first = text.data();
  const wchar_t* const last = first + text.size();
  const wchar_t* p = ScanNumber(first, last, &number);
  if (p == first) return kNoNumber;
  while (p != last && IsBlank(*p)) ++p;
  const std::wstring_view suffix(p, last);
  if (suffix.empty() || SameText(suffix, unit)) {
    *value = number;
    return S_OK;
  }
  std::wstring_view prefix;
  if (SameText(suffix.substr(1), unit)) {
    prefix = suffix.substr(0, 1);
  } else if (suffix.size() >= 2 && SameText(suffix.substr(2), unit)) {
    prefix = suffix.substr(0, 2);
  } else {
    return kUnknownSuffix;
  }
  const auto entry = std::find_if(table.begin(), table.end(), [&](const NumberPrefix& candidate) {
    return SameText(candidate.text, prefix);
  });
  if (entry == table.end()) return kUnknownSuffix;
  const bool megahertz = SameText(prefix, L"M") && SameText(unit, L"HZ");
  *value = number * (megahertz ? 1e6 : entry->multiplier);
  return S_OK;
}

/// Finds the first "s" that follows the unit; npos when there is none.
std::size_t FindPlural(std::wstring_view text, std::wstring_view unit) noexcept {
  for (std::size_t at = unit.size(); at < text.size(); ++at) {
    if (text[at] == L's' && SameText(text.substr(at - unit.size(), unit.size()), unit)) return at;
  }
  return std::wstring_view::npos;
}

}  // namespace

bool IsCountingUnit(std::wstring_view unit) noexcept {
  constexpr std::wstring_view kCountingUnits[] = {L"sweep", L"decade", L"hour", L"day",
                                                  L"wk",    L"bit",    L"byte"};
  return std::any_of(std::begin(kCountingUnits), std::end(kCountingUnits),
                     [unit](std::wstring_view word) { return SameText(word, unit); });
}

HRESULT FormatNumber(double value, double grain, std::wstring_view unit, NumberStyle style,
                     int width, BSTR* text) {
  NumberBuffer buffer;
  return MakeText(MakeParts(buffer, value, grain, unit, style, width), text);
}

void AppendNumber(std::wstring& text, double value, double grain, std::wstring_view unit,
                  NumberStyle style, int width) {
  NumberBuffer buffer;
  const NumberParts parts = MakeParts(buffer, value, grain, unit, style, width);
  const std::size_t start = text.size();
  text.resize(start + parts.Length());
  parts.Write(text.data() + start);
}

HRESULT FormatInteger(std::int64_t value, std::wstring_view unit, NumberStyle style, BSTR* text) {
  NumberBuffer buffer;
  const auto bits = static_cast<std::uint64_t>(value);
  PrependUnsigned(buffer, value < 0 ? 0 - bits : bits);
  if (value < 0) buffer.Prepend(L'-');
  if (style == NumberStyle::kRemoteNoUnit) unit = {};
  if (!unit.empty()) buffer.Append(L' ');
  const bool plural = IsScreen(style) && value != 1 && IsCountingUnit(unit);
  return MakeText({buffer.View(), unit, plural}, text);
}

void AppendGeneral(std::wstring& text, double value) {
  char digits[32];
  const auto end =
      std::to_chars(digits, std::end(digits), value, std::chars_format::general, 6).ptr;
  text.append(digits, end);
}

void AppendDecimal(std::wstring& text, std::int64_t value) {
  char digits[24];
  text.append(digits, std::to_chars(digits, std::end(digits), value).ptr);
}

HRESULT ParseNumber(const wchar_t* text, std::wstring_view unit, PrefixTable table, double* value) {
  if (value == nullptr) return E_POINTER;
  return Parse(ViewOf(text), unit, table, value);
}

HRESULT ParseScreenNumber(const wchar_t* text, std::wstring_view unit, double* value) {
  if (value == nullptr) return E_POINTER;
  const std::wstring_view written = ViewOf(text);
  const std::size_t plural = FindPlural(written, unit);
  if (plural == std::wstring_view::npos) return Parse(written, unit, kScreenPrefixes, value);

  wchar_t buffer[128];
  if (written.size() <= std::size(buffer)) {
    wchar_t* end = WriteText(buffer, written.substr(0, plural));
    end = WriteText(end, written.substr(plural + 1));
    return Parse({buffer, end}, unit, kScreenPrefixes, value);
  }
  std::wstring singular(written);
  singular.erase(plural, 1);
  return Parse(singular, unit, kScreenPrefixes, value);
}

}  // namespace cvars
