#pragma once

#include <string>
#include <vector>

#include "Guid.h"

namespace cvars::platform {

/// Gives an identifier as the registry writes it: braces, upper case.
std::wstring GuidText(REFGUID guid);

/// Reads the default text of a key of the class registry; the empty text when there is none.
///
/// The user's entries win. When the user's file is damaged the installed classes still stand, so
/// that the program can tell its user.
///
/// @param path  the names of the key and of those above it, below HKEY_CLASSES_ROOT.
std::wstring ClassRegistryText(const std::vector<std::wstring>& path);

}  // namespace cvars::platform
