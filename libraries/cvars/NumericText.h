#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "Bstr.h"
#include "Export.h"

namespace cvars {

/// How a number is written.
enum class NumberStyle : int {
  kRemote = 0,         ///< "1.5E-3 V": exponent, no trailing zeros
  kRemoteNoUnit = 1,   ///< "1.5E-3"
  kScreen = 2,         ///< "1.50 mV": prefix, every digit of the grain
  kScreenCompact = 3,  ///< "1.5 mV": prefix, no trailing zeros
};

/// Longest number, in characters, that a cvar writes before exponent or prefix.
inline constexpr int kNumberWidth = 20;

/// Writes a number with the digits that its grain can change.
///
/// The exponent is a multiple of 3. On screen it is written as a prefix from a to T when there is a
/// unit, and a counting unit ("sweep", "hour", ...) gets a plural "s" for every value but 1. A
/// value that is not finite gives "UNDEF" for remote and "- - -" for screen, without a unit. Never
/// depends on the process locale.
///
/// @param value  in base units.
/// @param grain  as in EffectiveStep; one whose step is not finite shows the leading digit only.
/// @param unit   borrowed; remote or screen spelling as the style asks.
/// @param width  longest number in characters; decimals beyond it are dropped.
/// @param text   caller frees; null on failure.
/// @retval E_OUTOFMEMORY
/// @retval S_OK
[[nodiscard]] CVARS_API HRESULT FormatNumber(double value, double grain, std::wstring_view unit,
                                             NumberStyle style, int width, BSTR* text);

/// Appends what FormatNumber writes to a text.
CVARS_API void AppendNumber(std::wstring& text, double value, double grain, std::wstring_view unit,
                            NumberStyle style, int width);

/// Writes an integer in full, followed by a blank and the unit when there is one.
///
/// In the screen styles a counting unit gets a plural "s" for every value but 1.
///
/// @param unit  borrowed; remote or screen spelling as the style asks; not read without unit.
/// @param text  caller frees; null on failure.
/// @retval E_OUTOFMEMORY
/// @retval S_OK
[[nodiscard]] CVARS_API HRESULT FormatInteger(std::int64_t value, std::wstring_view unit,
                                              NumberStyle style, BSTR* text);

/// Says whether the screen text of a unit has a plural: sweep, decade, hour, day, wk, bit, byte.
CVARS_API bool IsCountingUnit(std::wstring_view unit) noexcept;

/// Appends a double as C's "%g" prints it in the "C" locale.
CVARS_API void AppendGeneral(std::wstring& text, double value);

/// Appends an integer in decimal.
CVARS_API void AppendDecimal(std::wstring& text, std::int64_t value);

/// Appends a number without unit or prefix: a double as AppendGeneral, an integer as AppendDecimal.
template <class Number>
void AppendPlain(std::wstring& text, Number number) {
  if constexpr (std::is_floating_point_v<Number>) {
    AppendGeneral(text, number);
  } else {
    AppendDecimal(text, number);
  }
}

/// A prefix and what it multiplies by.
struct NumberPrefix {
  std::wstring_view text;
  double multiplier;
};
using PrefixTable = std::span<const NumberPrefix>;

/// Prefixes of remote commands, in the order in which they are tried. M is milli, MA is mega.
inline constexpr NumberPrefix kRemotePrefixes[] = {
    {L"EX", 1e18}, {L"PE", 1e15}, {L"T", 1e12}, {L"G", 1e9},   {L"MA", 1e6},  {L"K", 1e3},
    {L"M", 1e-3},  {L"U", 1e-6},  {L"N", 1e-9}, {L"P", 1e-12}, {L"F", 1e-15}, {L"A", 1e-18}};

/// Prefixes of the screen, in the order in which they are tried.
inline constexpr NumberPrefix kScreenPrefixes[] = {
    {L"T", 1e12},      {L"G", 1e9},  {L"M", 1e6},   {L"k", 1e3},   {L"m", 1e-3},
    {L"\u00b5", 1e-6}, {L"n", 1e-9}, {L"p", 1e-12}, {L"f", 1e-15}, {L"a", 1e-18}};

/// There is no number at the start of the text.
inline constexpr HRESULT kNoNumber = ResultCode(0x80040512);
/// What follows the number is neither the unit nor a known prefix and the unit.
inline constexpr HRESULT kUnknownSuffix = ResultCode(0x80040513);

/// Reads `number [blanks] [prefix] [unit]`, for example "1.5 mV".
///
/// Thread-safe and independent of the process locale. M before HZ is always mega.
///
/// @param text   borrowed; null reads as empty.
/// @param unit   borrowed, without prefix ("V"); when empty the whole suffix is the prefix.
/// @param table  which prefixes are known: kScreenPrefixes or kRemotePrefixes.
/// @param[out] value  in base units (1.5 mV gives 0.0015), not always finite; untouched on failure.
/// @retval E_POINTER       `value` is null
/// @retval kNoNumber       no number at the start of `text`
/// @retval kUnknownSuffix  neither the unit nor a known prefix before it; case counts
/// @retval S_OK
[[nodiscard]] CVARS_API HRESULT ParseNumber(const wchar_t* text, std::wstring_view unit,
                                            PrefixTable table, double* value);

/// Reads a number with the screen prefixes, as ParseNumber does.
///
/// The first place where the unit is followed by "s" loses that "s", so "2 sweeps" reads with the
/// unit "sweep". With an empty unit any "s" is such a place.
[[nodiscard]] CVARS_API HRESULT ParseScreenNumber(const wchar_t* text, std::wstring_view unit,
                                                  double* value);

}  // namespace cvars
