#pragma once

#include <cstdint>

#include "Export.h"

namespace cvars {

/// Tells what may stand around a number or a unit: blank, tab, line feed, vertical tab, form feed
/// and carriage return, whatever the process locale.
constexpr bool IsBlank(wchar_t character) noexcept {
  return character == L' ' || (character >= L'\t' && character <= L'\r');
}

/// Reads a floating-point number from the start of a text.
///
/// Accepts what the C function strtod accepts in the "C" locale, whatever the process locale is:
/// leading blanks, a sign, decimal or hexadecimal digits with an exponent, "inf", "infinity",
/// "nan", "nan(...)" in any case. The result is correctly rounded; a number too large is an
/// infinity, one too small is subnormal or 0.
///
/// @param first  borrowed, start of the text.
/// @param last   end of the text.
/// @param value  receives the number; untouched when there is none.
/// @return the first character after the number; `first` when there is none.
CVARS_API const wchar_t* ScanNumber(const wchar_t* first, const wchar_t* last,
                                    double* value) noexcept;

/// Reads the whole number at the start of a text exactly, where a double cannot hold it.
///
/// @param text     borrowed; what the double was read from.
/// @param value    the double; the whole number has to be the same but for its rounding, so that a
///                 prefix or an exponent in the text keeps the double.
/// @param integer  receives the number; untouched when there is none.
/// @return whether the text says it better than the double: at 2^53 and above.
CVARS_API bool ScanExactInteger(const wchar_t* text, double value, std::int64_t* integer) noexcept;

/// Reads a hexadecimal integer from the start of a text.
///
/// Accepts what the C scan "%x" accepts: leading blanks, a sign, "0x", digits in any case. "0x"
/// without a digit behind it is no number.
///
/// @param first  borrowed, start of the text.
/// @param last   end of the text.
/// @param value  receives the low 32 bits, negated for "-"; untouched when there is no number.
/// @return the first character after the number; `first` when there is none.
CVARS_API const wchar_t* ScanHexadecimal(const wchar_t* first, const wchar_t* last,
                                         std::uint32_t* value) noexcept;

}  // namespace cvars
