#pragma once

#include "BasicTypes.h"

namespace cvars {

/// What the user is told when the event log cannot be had: three texts of the event under way.
struct FatalErrorHints {
  const wchar_t* message;
  const wchar_t* text;
  const wchar_t* extraText;
};

/// Reports an installation without event-log manager: writes a mini-dump into the logs folder,
/// gathers counters of the process and shows all of it in a box, which returns when it is closed.
///
/// @param created  why the manager could not be made.
void ReportMissingEventLogManager(HRESULT created, const FatalErrorHints& hints);

/// Shows that the manager is there but gave no log.
///
/// @param opened  what the manager answered.
void ReportMissingEventLog(HRESULT opened);

}  // namespace cvars
