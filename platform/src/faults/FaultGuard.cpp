#include "platform/FaultGuard.h"

#include <cxxabi.h>
#include <pthread.h>
#include <setjmp.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstring>
#include <mutex>

#include "AlternateStack.h"
#include "FaultRecord.h"

namespace cvars::platform {

constinit std::atomic<LPTOP_LEVEL_EXCEPTION_FILTER> faultFilter{nullptr};

namespace {

// Head of what the C++ runtime keeps per thread about exceptions under way.
struct ExceptionGlobals {
  void* caught;
  unsigned int uncaught;
};

ExceptionGlobals& Globals() noexcept {
  return *reinterpret_cast<ExceptionGlobals*>(abi::__cxa_get_globals());
}

// Leaves the catch blocks that a fault cut short.
void AbandonExceptions(const ExceptionGlobals& before) noexcept {
  while (Globals().caught != before.caught && Globals().caught != nullptr) abi::__cxa_end_catch();
  Globals().uncaught = before.uncaught;
}

// One guarded call on the stack of its thread.
struct GuardFrame {
  sigjmp_buf resume;
  GuardFrame* outer;
  ExceptionGlobals exceptions;
};

// Found without a call into the loader, because the signal handler reads it.
__attribute__((tls_model("initial-exec"))) thread_local GuardFrame* innermost = nullptr;

struct CaughtSignal {
  int number;
  struct sigaction previous;
  bool installed;
};

std::mutex installMutex;
constinit std::array<CaughtSignal, 4> caughtSignals = {{
    {SIGSEGV, {}, false},
    {SIGBUS, {}, false},
    {SIGFPE, {}, false},
    {SIGILL, {}, false},
}};

// Gives a fault to whoever handled the signal before; by default that ends the process.
void PassOn(int signal, siginfo_t* info, void* state) {
  struct sigaction previous = {};
  previous.sa_handler = SIG_DFL;
  for (const CaughtSignal& caught : caughtSignals) {
    if (caught.number == signal) previous = caught.previous;
  }
  if ((previous.sa_flags & SA_SIGINFO) != 0 && previous.sa_sigaction != nullptr) {
    previous.sa_sigaction(signal, info, state);
    return;
  }
  if (previous.sa_handler != SIG_DFL && previous.sa_handler != SIG_IGN) {
    previous.sa_handler(signal);
    return;
  }
  // Returning repeats the faulting instruction, now with the default action. A signal that was
  // sent is sent again; it arrives when the handler returns.
  struct sigaction byDefault = {};
  byDefault.sa_handler = SIG_DFL;
  sigaction(signal, &byDefault, nullptr);
  if (info->si_code <= 0) raise(signal);
}

// A signal that this very thread sent itself counts as its fault; one from elsewhere does not.
bool BelongsToThread(const siginfo_t& info) noexcept {
  return info.si_code > 0 || (info.si_code == SI_TKILL && info.si_pid == getpid());
}

void HandleFault(int signal, siginfo_t* info, void* stateAddress) {
  const int savedErrno = errno;
  const LPTOP_LEVEL_EXCEPTION_FILTER filter = faultFilter.load();
  if (filter != nullptr && BelongsToThread(*info)) {
    auto& state = *static_cast<ucontext_t*>(stateAddress);
    EXCEPTION_RECORD record;
    CONTEXT context;
    FillExceptionRecord(signal, *info, state, record);
    FillContext(state, context);
    EXCEPTION_POINTERS pointers = {&record, &context};
    GuardFrame* const guard = innermost;
    const LONG answer = filter(&pointers);
    if (answer != EXCEPTION_CONTINUE_SEARCH && guard != nullptr) {
      pthread_sigmask(SIG_SETMASK, &state.uc_sigmask, nullptr);
      siglongjmp(guard->resume, 1);
    }
  }
  errno = savedErrno;
  PassOn(signal, info, stateAddress);
}

void InstallHandlers() {
  struct sigaction action = {};
  action.sa_sigaction = &HandleFault;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  sigemptyset(&action.sa_mask);
  for (const CaughtSignal& caught : caughtSignals) sigaddset(&action.sa_mask, caught.number);
  for (CaughtSignal& caught : caughtSignals) {
    if (caught.installed || sigaction(caught.number, nullptr, &caught.previous) != 0) continue;
    caught.installed = sigaction(caught.number, &action, nullptr) == 0;
  }
}

void RestoreHandlers() {
  for (CaughtSignal& caught : caughtSignals) {
    if (!caught.installed) continue;
    struct sigaction current = {};
    // A handler that somebody else put on top stays, and ours below it, which it may call.
    if (sigaction(caught.number, nullptr, &current) == 0 && (current.sa_flags & SA_SIGINFO) != 0 &&
        current.sa_sigaction == &HandleFault) {
      sigaction(caught.number, &caught.previous, nullptr);
      caught.installed = false;
    }
  }
}

// The forced unwinding carries no object, so its reference binds to null.
__attribute__((no_sanitize("null"))) HRESULT CallCatching(GuardedFunction function, void* context) {
  try {
    return function(context);
  } catch (const abi::__forced_unwind&) {
    throw;
  } catch (...) {
    return E_FAIL;
  }
}

// Runs the function as the innermost guarded call; leaves the chain as it was on every way out but
// a fault, after which the caller restores it.
HRESULT CallInside(GuardFrame& frame, GuardedFunction function, void* context) {
  innermost = &frame;
  try {
    const HRESULT result = CallCatching(function, context);
    innermost = frame.outer;
    return result;
  } catch (...) {
    innermost = frame.outer;
    throw;
  }
}

HRESULT CallContained(GuardedFunction function, void* context) {
  EnsureAlternateStack();
  GuardFrame frame;
  frame.outer = innermost;
  frame.exceptions = Globals();
  if (sigsetjmp(frame.resume, 0) != 0) {
    innermost = frame.outer;
    AbandonExceptions(frame.exceptions);
    return E_FAIL;
  }
  return CallInside(frame, function, context);
}

}  // namespace

HRESULT CallGuarded(GuardedFunction function, void* context) {
  return FaultFilterInstalled() ? CallContained(function, context)
                                : CallCatching(function, context);
}

}  // namespace cvars::platform

LPTOP_LEVEL_EXCEPTION_FILTER SetUnhandledExceptionFilter(LPTOP_LEVEL_EXCEPTION_FILTER filter) {
  using namespace cvars::platform;
  const std::lock_guard lock(installMutex);
  const LPTOP_LEVEL_EXCEPTION_FILTER previous = faultFilter.load();
  if (previous == nullptr && filter != nullptr) {
    InstallHandlers();
    EnsureAlternateStack();
  }
  faultFilter.store(filter);
  if (previous != nullptr && filter == nullptr) RestoreHandlers();
  return previous;
}
