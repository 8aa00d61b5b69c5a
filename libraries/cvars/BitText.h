#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Export.h"
#include "ResultCodes.h"

namespace cvars {

/// The characters of bit patterns, in the order in which sets of them are written.
inline constexpr std::wstring_view kBitCharacters = L"01BFRX";

/// Bits of the numbers that bit patterns are read as.
inline constexpr std::size_t kNumberBits = 32;

/// Which end of a pattern is filled or cut.
enum class BitEnd { kLeft, kRight };

/// Gives the bit characters that occur in a text, in any case, each once and in their order.
CVARS_API std::wstring BitSetOf(std::wstring_view text);

/// Takes the blanks out of a text and upper-cases the rest.
///
/// @param allowed     the characters that the result may hold.
/// @param[out] bits   untouched on failure.
/// @retval E_INVALIDARG  a character is not allowed
CVARS_API HRESULT NormalizeBits(std::wstring_view text, std::wstring_view allowed,
                                std::wstring* bits);

/// Brings a pattern to a length, by cutting it or by filling it at one end.
CVARS_API std::wstring FitBits(std::wstring_view bits, std::size_t length, wchar_t padding,
                               BitEnd end);

/// Reads a pattern of at most 32 bits as an unsigned number, most significant bit first: "1" is a
/// set bit, every other character a clear one.
CVARS_API std::uint32_t BitsToNumber(std::wstring_view bits) noexcept;

/// Writes the low `count` bits of a number, most significant first; at most 32.
CVARS_API std::wstring NumberToBits(std::uint32_t number, std::size_t count);

/// Extends the sign of a number of `width` bits.
///
/// Shift counts are taken modulo 32: for a width of 32 a number with the top bit set becomes -1,
/// and for a width of 0 bit 31 is the sign. That is meant.
CVARS_API std::int32_t SignExtended(std::uint32_t number, std::uint32_t width) noexcept;

/// Writes each hexadecimal digit as four bits, and each "X" as four of them; any case.
///
/// @param[out] bits  untouched on failure.
/// @retval E_INVALIDARG  another character
CVARS_API HRESULT HexadecimalToBits(std::wstring_view text, std::wstring* bits);

/// Writes each four bits as a hexadecimal digit, four "X" as "X", any other mixture as "$".
///
/// A length that is no multiple of four is filled first: at the right end with "0"; at the left end
/// with "X" when the first bit and `padding` both are "X", else with "0".
CVARS_API std::wstring BitsToHexadecimal(std::wstring_view bits, wchar_t padding, BitEnd end);

/// Parts a pattern into groups of eight, counted from the right end, with a blank between them.
CVARS_API std::wstring GroupedBits(std::wstring_view bits);

}  // namespace cvars
