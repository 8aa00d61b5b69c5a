#pragma once

#include <optional>

#include "ModuleBytes.h"
#include "platform/FileVersion.h"

namespace cvars::platform {

/// Reads the fixed version record in the version resource of a PE file. The signature of the
/// record does not matter.
std::optional<FileVersion> ReadPeVersion(const ModuleBytes& bytes);

}  // namespace cvars::platform
