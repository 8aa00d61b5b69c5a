#pragma once

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

}  // namespace cvars
