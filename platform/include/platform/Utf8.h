#pragma once

#include <string>
#include <string_view>

#include "Export.h"

namespace cvars::platform {

/// Writes a wide text as UTF-8, independent of the process locale.
///
/// Characters that are no code points become U+FFFD, except those that FromUtf8 makes of broken
/// bytes: these give their byte back, so that every file name survives the round trip.
CVARS_API std::string ToUtf8(std::wstring_view text);

/// Reads UTF-8 as a wide text; a byte that belongs to no valid sequence becomes U+DC00 + byte.
CVARS_API std::wstring FromUtf8(std::string_view bytes);

}  // namespace cvars::platform
