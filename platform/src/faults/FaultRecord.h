#pragma once

#include <ucontext.h>
#include <csignal>

#include "platform/FaultGuard.h"

namespace cvars::platform {

/// Describes a fault signal as an exception record. Safe in a signal handler.
void FillExceptionRecord(int signal, const siginfo_t& info, const ucontext_t& state,
                         EXCEPTION_RECORD& record) noexcept;

/// Copies the registers at the fault. Safe in a signal handler.
void FillContext(const ucontext_t& state, CONTEXT& context) noexcept;

}  // namespace cvars::platform
