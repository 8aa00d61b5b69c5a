#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Export.h"

namespace cvars {

/// Reads a 32-bit integer from the start of a text, as the C scan "%i" does.
///
/// Leading blanks, a sign, then decimal digits, hexadecimal ones behind "0x", or octal ones behind
/// "0". Of longer numbers the low 32 bits are kept. "0x" alone is no number.
/// @param[out] value  untouched when there is no number.
/// @return whether there is one
CVARS_API bool ScanInteger(std::wstring_view text, std::uint32_t* value) noexcept;

enum class HexCase { kLower, kUpper };

/// Appends a number in hexadecimal, with zeros in front up to `leastDigits`.
CVARS_API void AppendHexadecimal(std::wstring& text, std::uint32_t value, std::size_t leastDigits,
                                 HexCase letters);

}  // namespace cvars
