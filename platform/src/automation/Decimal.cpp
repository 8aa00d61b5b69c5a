#include "Decimal.h"

#include <algorithm>
#include <limits>

namespace cvars::platform {

namespace {

constexpr int kLargestScale = 28;
constexpr BYTE kMinus = 0x80;

DecimalDigits DigitsOfInteger(WideInteger value, int scale) {
  DecimalDigits result;
  const std::wstring text = FormatInteger(value);
  for (const wchar_t c : text) {
    if (c == L'-') {
      result.negative = true;
    } else if (c != L'0' || !result.digits.empty()) {
      result.digits.push_back(static_cast<char>(c));
    }
  }
  result.exponent = -scale;
  return result;
}

}  // namespace

bool IsValidDecimal(const DECIMAL& value) noexcept {
  return value.scale <= kLargestScale && (value.sign & ~kMinus) == 0;
}

DecimalDigits DigitsOf(const DECIMAL& value) {
  const auto magnitude = static_cast<WideInteger>(value.Hi32) << 64 | value.Lo64;
  return DigitsOfInteger(value.sign == kMinus ? -magnitude : magnitude, value.scale);
}

DecimalDigits DigitsOf(const CY& value) { return DigitsOfInteger(value.int64, 4); }

HRESULT ToDecimal(const DecimalDigits& value, DECIMAL& result) {
  DecimalDigits magnitude = value;
  magnitude.negative = false;
  const std::int64_t wanted = std::clamp<std::int64_t>(-value.exponent, 0, kLargestScale);
  for (int scale = static_cast<int>(wanted); scale >= 0; --scale) {
    WideInteger rounded = 0;
    if (!RoundScaled(magnitude, scale, rounded) || rounded >> 96 != 0) continue;
    result = DECIMAL{};
    result.scale = static_cast<BYTE>(scale);
    result.sign = value.negative && rounded != 0 ? kMinus : BYTE{0};
    result.Hi32 = static_cast<ULONG>(rounded >> 64);
    result.Lo64 = static_cast<ULONGLONG>(rounded);
    return S_OK;
  }
  return DISP_E_OVERFLOW;
}

HRESULT ToCurrency(const DecimalDigits& value, CY& result) {
  WideInteger rounded = 0;
  if (!RoundScaled(value, 4, rounded) || rounded < std::numeric_limits<LONGLONG>::min() ||
      rounded > std::numeric_limits<LONGLONG>::max()) {
    return DISP_E_OVERFLOW;
  }
  result.int64 = static_cast<LONGLONG>(rounded);
  return S_OK;
}

std::wstring FormatDecimal(const DecimalDigits& value) {
  std::string digits = value.digits;
  auto decimals = static_cast<std::size_t>(std::max<std::int64_t>(0, -value.exponent));
  if (value.exponent > 0) digits.append(static_cast<std::size_t>(value.exponent), '0');
  if (digits.size() <= decimals) digits.insert(0, decimals + 1 - digits.size(), '0');
  while (decimals > 0 && digits.back() == '0') {
    digits.pop_back();
    --decimals;
  }
  if (decimals > 0) digits.insert(digits.size() - decimals, 1, '.');
  const bool negative = value.negative && !value.digits.empty();
  return (negative ? L"-" : L"") + std::wstring(digits.begin(), digits.end());
}

}  // namespace cvars::platform
