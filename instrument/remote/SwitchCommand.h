#pragma once

#include <functional>
#include <memory>

#include "instrument/remote/Command.h"

namespace cvars::remote {

/// A command that turns something on and off: `ON`, `OFF` or a number, of which 0 is off. The query
/// answers 1 or 0.
std::shared_ptr<const Command> MakeSwitchCommand(std::function<bool()> isOn,
                                                 std::function<void(bool on)> turn);

}  // namespace cvars::remote
