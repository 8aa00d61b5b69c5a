#include "NumberText.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

namespace cvars::platform {

namespace {

constexpr std::int64_t kLargestExponent = 1'000'000'000;

bool IsBlank(wchar_t c) {
  return (c >= 0x9 && c <= 0xD) || c == 0x20 || c == 0x85 || c == 0xA0 || c == 0x1680 ||
         (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
         c == 0x3000;
}

bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

// Walks over a text once; what was seen is kept, because each mark may stand only once.
class NumberReader {
 public:
  explicit NumberReader(std::wstring_view text) : m_rest(text.substr(0, text.find(L'\0'))) {}

  HRESULT Read(TextNumber& number) {
    SkipLeading();
    if (Peek() == L'&' && !m_minus && !m_open && !m_currency) return ReadBased(number);
    if (!ReadDigits(number.decimal) || !ReadExponent(number.decimal) || !SkipTrailing()) {
      return DISP_E_TYPEMISMATCH;
    }
    number.decimal.negative = m_minus || m_open;
    return S_OK;
  }

 private:
  wchar_t Peek() const { return m_rest.empty() ? L'\0' : m_rest.front(); }
  void Next() { m_rest.remove_prefix(1); }
  void SkipBlanks() {
    while (!m_rest.empty() && IsBlank(m_rest.front())) Next();
  }

  static bool Once(bool& seen) {
    if (seen) return false;
    seen = true;
    return true;
  }

  // A mark that may stand on either side of the digits.
  bool TakeMark() {
    bool* seen = nullptr;
    if (Peek() == L'+') seen = &m_plus;
    if (Peek() == L'-') seen = &m_minus;
    if (Peek() == L'$') seen = &m_currency;
    if (seen == nullptr || !Once(*seen)) return false;
    Next();
    return true;
  }

  void SkipLeading() {
    for (;;) {
      SkipBlanks();
      if (Peek() == L'(' && Once(m_open)) {
        Next();
      } else if (!TakeMark()) {
        return;
      }
    }
  }

  bool SkipTrailing() {
    bool closed = false;
    for (;;) {
      SkipBlanks();
      if (m_rest.empty()) return closed == m_open;
      if (Peek() == L')' && m_open && Once(closed)) {
        Next();
      } else if (!TakeMark()) {
        return false;
      }
    }
  }

  bool ReadDigits(DecimalDigits& value) {
    bool any = false;
    bool point = false;
    for (; !m_rest.empty(); Next()) {
      const wchar_t c = m_rest.front();
      if (IsDigit(c)) {
        any = true;
        if (point) --value.exponent;
        if (c != L'0' || !value.digits.empty()) value.digits.push_back(static_cast<char>(c));
      } else if (c == L'.' && !point) {
        point = true;
      } else if (c != L',' || !any) {
        break;
      }
    }
    return any;
  }

  bool ReadExponent(DecimalDigits& value) {
    // An amount of money has no exponent: the letter is then left over and refused.
    if (m_currency || (Peek() != L'e' && Peek() != L'E')) return true;
    Next();
    bool negative = false;
    if (Peek() == L'+' || Peek() == L'-') {
      negative = Peek() == L'-';
      Next();
    }
    if (!IsDigit(Peek())) return false;
    std::int64_t exponent = 0;
    for (; IsDigit(Peek()); Next()) {
      exponent = std::min(exponent * 10 + (Peek() - L'0'), kLargestExponent);
    }
    value.exponent += negative ? -exponent : exponent;
    return true;
  }

  HRESULT ReadBased(TextNumber& number) {
    Next();
    unsigned shift = 0;
    if (Peek() == L'h' || Peek() == L'H') shift = 4;
    if (Peek() == L'o' || Peek() == L'O') shift = 3;
    if (shift == 0) return DISP_E_TYPEMISMATCH;
    Next();
    bool any = false;
    bool tooWide = false;
    ULONGLONG bits = 0;
    for (; !m_rest.empty(); Next()) {
      const int digit = DigitValue(m_rest.front());
      if (digit < 0 || digit >= (1 << shift)) break;
      any = true;
      if ((bits >> (64 - shift)) != 0) tooWide = true;
      bits = bits << shift | static_cast<unsigned>(digit);
    }
    SkipBlanks();
    if (!any || !m_rest.empty()) return DISP_E_TYPEMISMATCH;
    if (tooWide) return DISP_E_OVERFLOW;
    number.based = true;
    number.bits = bits;
    return S_OK;
  }

  static int DigitValue(wchar_t c) {
    if (IsDigit(c)) return c - L'0';
    if (c >= L'a' && c <= L'f') return c - L'a' + 10;
    if (c >= L'A' && c <= L'F') return c - L'A' + 10;
    return -1;
  }

  std::wstring_view m_rest;
  bool m_plus = false;
  bool m_minus = false;
  bool m_currency = false;
  bool m_open = false;
};

std::wstring Widen(std::string_view text) { return std::wstring(text.begin(), text.end()); }

// Printing rounds a half away from zero, the number formatter below to even: a number exactly
// between two texts is moved to the next one up, whose text is the wanted one.
double AwayFromTie(double magnitude, int precision) {
  char digits[32];
  const auto last = std::to_chars(digits, digits + sizeof(digits), magnitude,
                                  std::chars_format::scientific, precision)
                        .ptr;
  const std::string_view printed(digits, static_cast<std::size_t>(last - digits));
  if (printed[printed.find('e') - 1] != '5') return magnitude;
  constexpr int kEveryDigit = 770;
  char exact[kEveryDigit + 32];
  const auto end = std::to_chars(exact, exact + sizeof(exact), magnitude,
                                 std::chars_format::scientific, kEveryDigit)
                       .ptr;
  const std::string_view all(exact, static_cast<std::size_t>(end - exact));
  const auto dropped = static_cast<std::size_t>(precision) + 1;  // behind the point
  const bool tie = all[dropped] == '5' && all.find_first_not_of('0', dropped + 1) == all.find('e');
  return tie ? std::nextafter(magnitude, std::numeric_limits<double>::infinity()) : magnitude;
}

std::wstring FormatSpecial(double value) {
  const bool negative = std::signbit(value);
  if (std::isinf(value)) return negative ? L"-1.#INF" : L"1.#INF";
  const auto bits = std::bit_cast<std::uint64_t>(value);
  if (bits == 0xFFF8'0000'0000'0000) return L"-1.#IND";
  const bool quiet = (bits & 0x0008'0000'0000'0000) != 0;
  return std::wstring(negative ? L"-" : L"") + (quiet ? L"1.#QNAN" : L"1.#SNAN");
}

}  // namespace

HRESULT ParseNumber(std::wstring_view text, TextNumber& number) {
  return NumberReader(text).Read(number);
}

bool RoundScaled(const DecimalDigits& value, int scale, WideInteger& result) {
  constexpr std::int64_t kMostDigits = 38;
  result = 0;
  if (value.digits.empty()) return true;
  const auto size = static_cast<std::int64_t>(value.digits.size());
  const std::int64_t kept = size + value.exponent + scale;
  if (kept > kMostDigits) return false;
  if (kept < 0) return true;
  for (std::int64_t i = 0; i < kept; ++i) {
    result = result * 10 + (i < size ? value.digits[static_cast<std::size_t>(i)] - '0' : 0);
  }
  if (kept < size) {
    const std::string_view rest =
        std::string_view(value.digits).substr(static_cast<std::size_t>(kept));
    const bool exactHalf =
        rest.front() == '5' && rest.find_first_not_of('0', 1) == std::string_view::npos;
    if (exactHalf ? result % 2 != 0 : rest.front() >= '5') ++result;
  }
  if (value.negative) result = -result;
  return true;
}

HRESULT ToDouble(const DecimalDigits& value, double& result) {
  result = 0;
  if (value.digits.empty()) return S_OK;
  const std::string text = value.digits + "e" + std::to_string(value.exponent);
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), result);
  if (parsed.ec == std::errc::result_out_of_range) {
    const bool large = static_cast<std::int64_t>(value.digits.size()) + value.exponent > 0;
    if (large) return DISP_E_OVERFLOW;
    result = 0;
  }
  if (value.negative) result = -result;
  return S_OK;
}

std::wstring FormatReal(double value, int precision) {
  if (!std::isfinite(value)) return FormatSpecial(value);
  if (value == 0) return L"0";
  const double magnitude = AwayFromTie(std::abs(value), precision);
  char buffer[64];
  const auto end = std::to_chars(buffer, buffer + sizeof(buffer), magnitude,
                                 std::chars_format::scientific, precision - 1)
                       .ptr;
  const std::string_view printed(buffer, static_cast<std::size_t>(end - buffer));
  const std::size_t mark = printed.find('e');
  std::string digits(1, printed[0]);
  if (precision > 1) digits += printed.substr(2, mark - 2);
  digits.erase(digits.find_last_not_of('0') + 1);
  int exponent = 0;
  const char* from = printed.data() + mark + 1;
  std::from_chars(*from == '+' ? from + 1 : from, end, exponent);

  const int count = static_cast<int>(digits.size());
  const int decimals = std::max(0, count - 1 - exponent);
  std::string text;
  if (exponent >= precision || decimals > precision) {
    text = digits.substr(0, 1);
    if (count > 1) text.append(1, '.').append(digits, 1);
    const std::string power = std::to_string(std::abs(exponent));
    text += exponent < 0 ? "E-" : "E+";
    if (power.size() < 2) text += '0';
    text += power;
  } else if (exponent < 0) {
    text = "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
  } else {
    const auto whole = static_cast<std::size_t>(exponent) + 1;
    if (digits.size() < whole) digits.append(whole - digits.size(), '0');
    text = digits.substr(0, whole);
    if (digits.size() > whole) text.append(1, '.').append(digits, whole);
  }
  return Widen((value < 0 ? "-" : "") + text);
}

std::wstring FormatInteger(WideInteger value) {
  const bool negative = value < 0;
  WideMagnitude rest =
      negative ? -static_cast<WideMagnitude>(value) : static_cast<WideMagnitude>(value);
  std::wstring text;
  do {
    text.insert(text.begin(), static_cast<wchar_t>(L'0' + static_cast<int>(rest % 10)));
    rest /= 10;
  } while (rest != 0);
  return negative ? L"-" + text : text;
}

}  // namespace cvars::platform
