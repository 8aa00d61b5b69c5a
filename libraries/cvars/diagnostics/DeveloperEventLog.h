#pragma once

#include "CVorComBSTR.h"
#include "Export.h"
#include "IVorCvar.h"

/// Writes a developer event into the event log of source "CvarDev", when the user's registry asks
/// for it: value "EnableCvarDevLogging" (REG_DWORD, not 0) of the key "SOFTWARE\Vortana\Quillon".
///
/// The switch is read at the first call of the process and kept; while it is off a call costs one
/// test. 2 logs information, any other value warnings.
///
/// @param cvar  borrowed; null logs nothing.
CVARS_API void g_KnobsetLogDeveloperEvent(const CVorComBSTR& message, IVorCvar* cvar);
