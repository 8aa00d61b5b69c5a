#pragma once

#include "CvarBag.h"
#include "instrument/remote/CommandTable.h"

namespace cvars::remote {

/// Adds a command `BAG:CVAR` for every cvar of a bag, by the remote names.
///
/// Cvars that are for the user interface only stay out. The commands hold references to the cvars.
/// @param bag  borrowed.
/// @return the failure of a call to the bag or to a cvar; the commands added before it stay.
[[nodiscard]] HRESULT AddBagCommands(CommandTable& table, CvarBag& bag);

}  // namespace cvars::remote
