#pragma once

#include "instrument/remote/CommandTable.h"

namespace cvars::remote {

/// Adds the commands that every instrument has: *CLS to *WAI, SYSTem: and STATus:.
void AddStandardCommands(CommandTable& table);

}  // namespace cvars::remote
