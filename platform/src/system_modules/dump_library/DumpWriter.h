#pragma once

#include <optional>

#include "DumpedMemory.h"
#include "StoppedProcess.h"

namespace cvars::platform {

/// Writes the mini-dump of a stopped process to a file.
///
/// @param descriptor  open for writing, at its start.
/// @throws std::system_error when the file cannot be written
void WriteMiniDump(const StoppedProcess& process, const std::optional<DumpedFault>& fault,
                   std::uint32_t dumpType, int descriptor);

}  // namespace cvars::platform
