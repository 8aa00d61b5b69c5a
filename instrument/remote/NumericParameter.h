#pragma once

#include <string>

#include "instrument/remote/Command.h"
#include "instrument/remote/ProgramMessage.h"

namespace cvars::remote {

/// Reads a whole number from a parameter: a decimal, rounded to the nearest, or #H, #Q, #B.
/// @param[out] value  untouched on failure.
/// @retval kDataTypeError     the parameter is no number
/// @retval kSuffixNotAllowed  something follows the number
/// @retval kDataOutOfRange    outside 0..most
/// @retval kNone
ScpiError ReadWholeNumber(const Parameter& parameter, unsigned most, unsigned& value);

/// Splits a decimal with suffix into the number, without blanks ("1 E 3" gives "1E3"), and the
/// suffix in upper case.
/// @retval kDataTypeError  no decimal number at the start
/// @retval kNone
ScpiError SplitDecimal(std::string_view text, std::string& number, std::string& suffix);

/// Appends a number with the shortest digits that read back the same and an exponent that is a
/// multiple of three: 1.5E-3.
void AppendNumber(double value, std::string& text);

}  // namespace cvars::remote
