#pragma once

#include <filesystem>
#include <string_view>

#include "Export.h"

namespace cvars::platform {

/// Gives the file of this machine that a path of the platform names.
///
/// "C:\a\b" is <home>/drive_c/a/b and likewise for every drive letter, in either case; "\" and "/"
/// both separate. A path without a drive letter that starts with a separator is a path of this
/// machine from its root; any other is relative to the current folder. The case of names counts.
/// The folders drive_c and drive_d exist after the first call; other drives exist when their
/// folder does. Nothing else is made.
///
/// ".." never leaves a drive. A drive lies elsewhere when the key "SOFTWARE\Vortana\Drives" of
/// HKEY_CURRENT_USER has a text value named after its letter ("E"): a folder of this machine, from
/// its root.
CVARS_API std::filesystem::path HostPath(std::wstring_view path);

}  // namespace cvars::platform
