#pragma once

#include <optional>

#include "ModuleBytes.h"
#include "platform/FileVersion.h"

namespace cvars::platform {

/// Reads the version note of an ELF file of 32 or 64 bits, little-endian.
std::optional<FileVersion> ReadElfVersion(const ModuleBytes& bytes);

}  // namespace cvars::platform
