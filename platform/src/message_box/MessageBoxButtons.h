#pragma once

#include <span>

#include "BasicTypes.h"

namespace cvars::platform {

/// Gives the buttons of a box, from left to right.
///
/// @param type  MB_ flags; an unknown kind of box has the OK button.
std::span<const int> ButtonsOf(UINT type) noexcept;

}  // namespace cvars::platform
