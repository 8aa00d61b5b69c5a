#pragma once

namespace cvars::platform {

/// Gives the calling thread a stack of its own for signal handlers, so that a fault that has used
/// up the thread's stack can still be handled. It goes with the thread.
void EnsureAlternateStack() noexcept;

}  // namespace cvars::platform
