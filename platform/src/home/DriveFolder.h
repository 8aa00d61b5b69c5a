#pragma once

#include <filesystem>
#include <string_view>

namespace cvars::platform {

/// Gives the drive letter that a path starts with, in lower case; 0 when it has none.
char DriveLetter(std::wstring_view path);

/// Gives the folder of this machine that a drive lies in: the one its user mapped it to, else
/// <home>/drive_<letter>.
///
/// @param letter  in lower case.
std::filesystem::path DriveFolder(char letter);

}  // namespace cvars::platform
