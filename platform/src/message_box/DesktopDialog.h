#pragma once

#include <string>

#include "BasicTypes.h"

namespace cvars::platform {

/// Shows a box by the dialog program of the desktop and waits for the answer.
///
/// @param text     UTF-8.
/// @param caption  UTF-8.
/// @param type     MB_ flags.
/// @return the button chosen; 0 when there is no desktop, no dialog program, or no answer.
int ShowDesktopDialog(const std::string& text, const std::string& caption, UINT type);

}  // namespace cvars::platform
