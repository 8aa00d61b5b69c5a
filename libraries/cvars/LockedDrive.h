#pragma once

#include <string>
#include <string_view>

#include "Export.h"

namespace cvars {

/// Reads the drive that the user's registry forces on every file-name value of the process, making
/// the registry key when it is missing.
CVARS_API void ReadLockedDrive();

/// The drive read last ("D:"); empty while none is forced.
CVARS_API std::wstring LockedDrive();

/// Puts a drive in place of that of a path: of its leading letter and colon, or in front of a path
/// that has none.
CVARS_API std::wstring OnDrive(std::wstring_view path, std::wstring_view drive);

}  // namespace cvars
