#pragma once

#include <string>

#include "CvarEnums.h"
#include "Export.h"

namespace cvars {
/// Gives one letter for each set bit, in the order RHWLGNBAMYPDCVU; "-" for a word of 0.
///
/// C, for bit 0x20, stands after D, out of bit order. Bits above 0x4000 have no letter, so a word
/// that holds only such bits gives the empty text.
CVARS_API std::wstring FlagsString(CVARFLAGS flags);
}  // namespace cvars
