#pragma once

#include <filesystem>

#include "Export.h"

namespace cvars::platform {

/// Gives the user's home of the platform: registry hives, drives and logs live below it.
///
/// $VORTANA_HOME, else $XDG_STATE_HOME/vortana, else ~/.local/state/vortana; empty variables count
/// as unset. The environment is read at every call; the folder itself is not made.
CVARS_API std::filesystem::path HomeFolder();

}  // namespace cvars::platform
