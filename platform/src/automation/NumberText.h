#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Variant.h"

namespace cvars::platform {

__extension__ using WideInteger = __int128;
__extension__ using WideMagnitude = unsigned __int128;

/// A decimal number of any length: `digits` without leading zeros (empty is zero), times ten to the
/// power `exponent`.
struct DecimalDigits {
  bool negative = false;
  std::string digits;
  std::int64_t exponent = 0;
};

/// What a text says: a decimal number, or with `based` the bits of a hexadecimal or octal one.
struct TextNumber {
  DecimalDigits decimal;
  bool based = false;
  ULONGLONG bits = 0;
};

/// Reads a number with what may surround it: blanks, one of each sign on either side, parentheses
/// for minus, one dollar sign, commas after the first digit. A zero character ends the text.
/// @retval DISP_E_TYPEMISMATCH  no such number
/// @retval DISP_E_OVERFLOW      more than 64 bits in another base than ten
HRESULT ParseNumber(std::wstring_view text, TextNumber& number);

/// The value times ten to the power `scale`, rounded to an integer, ties to even.
/// @return false when it has more than 38 digits
bool RoundScaled(const DecimalDigits& value, int scale, WideInteger& result);

/// @retval DISP_E_OVERFLOW  beyond the range of a double; too small a number gives zero
HRESULT ToDouble(const DecimalDigits& value, double& result);

/// Prints with up to `precision` significant digits: fixed as long as that many decimals are
/// enough, else with an exponent of at least two digits.
std::wstring FormatReal(double value, int precision);
std::wstring FormatInteger(WideInteger value);

}  // namespace cvars::platform
