#include "FaultRecord.h"

#include <cstring>

namespace cvars::platform {
namespace {

std::uint64_t Register(const ucontext_t& state, int index) noexcept {
  return static_cast<std::uint64_t>(state.uc_mcontext.gregs[index]);
}

// A touch this close to the stack pointer that finds no memory has run off the end of the stack.
bool IsStackOverflow(const siginfo_t& info, const ucontext_t& state) noexcept {
  constexpr std::uint64_t kReach = 64 * 1024;
  const auto touched = reinterpret_cast<std::uint64_t>(info.si_addr);
  const std::uint64_t stackPointer = Register(state, REG_RSP);
  return touched + kReach >= stackPointer && touched < stackPointer + kReach;
}

DWORD FloatingPointCode(int code) noexcept {
  switch (code) {
    case FPE_INTDIV:
      return EXCEPTION_INT_DIVIDE_BY_ZERO;
    case FPE_INTOVF:
      return EXCEPTION_INT_OVERFLOW;
    case FPE_FLTDIV:
      return EXCEPTION_FLT_DIVIDE_BY_ZERO;
    case FPE_FLTOVF:
      return EXCEPTION_FLT_OVERFLOW;
    case FPE_FLTUND:
      return EXCEPTION_FLT_UNDERFLOW;
    case FPE_FLTRES:
      return EXCEPTION_FLT_INEXACT_RESULT;
    default:
      return EXCEPTION_FLT_INVALID_OPERATION;
  }
}

DWORD CodeOf(int signal, const siginfo_t& info, const ucontext_t& state) noexcept {
  switch (signal) {
    case SIGFPE:
      return FloatingPointCode(info.si_code);
    case SIGILL:
      return info.si_code == ILL_PRVOPC || info.si_code == ILL_PRVREG
                 ? EXCEPTION_PRIV_INSTRUCTION
                 : EXCEPTION_ILLEGAL_INSTRUCTION;
    case SIGBUS:
      return info.si_code == BUS_ADRALN ? EXCEPTION_DATATYPE_MISALIGNMENT : EXCEPTION_IN_PAGE_ERROR;
    default:
      return info.si_code > 0 && IsStackOverflow(info, state) ? EXCEPTION_STACK_OVERFLOW
                                                              : EXCEPTION_ACCESS_VIOLATION;
  }
}

// How the memory was touched, from the processor's page fault code: bit 1 is a write, bit 4 an
// instruction fetch.
std::uintptr_t AccessKind(const ucontext_t& state) noexcept {
  const std::uint64_t code = Register(state, REG_ERR);
  if ((code & 0x10) != 0) return 8;
  return (code & 0x2) != 0 ? 1 : 0;
}

}  // namespace

void FillExceptionRecord(int signal, const siginfo_t& info, const ucontext_t& state,
                         EXCEPTION_RECORD& record) noexcept {
  record = {};
  record.ExceptionCode = CodeOf(signal, info, state);
  record.ExceptionAddress = reinterpret_cast<void*>(Register(state, REG_RIP));
  if (signal == SIGSEGV || signal == SIGBUS) {
    record.NumberParameters = 2;
    record.ExceptionInformation[0] = AccessKind(state);
    record.ExceptionInformation[1] =
        info.si_code > 0 ? reinterpret_cast<std::uintptr_t>(info.si_addr) : 0;
  }
}

void FillContext(const ucontext_t& state, CONTEXT& context) noexcept {
  context = {};
  context.ContextFlags = CONTEXT_FULL;
  context.Rax = Register(state, REG_RAX);
  context.Rcx = Register(state, REG_RCX);
  context.Rdx = Register(state, REG_RDX);
  context.Rbx = Register(state, REG_RBX);
  context.Rsp = Register(state, REG_RSP);
  context.Rbp = Register(state, REG_RBP);
  context.Rsi = Register(state, REG_RSI);
  context.Rdi = Register(state, REG_RDI);
  context.R8 = Register(state, REG_R8);
  context.R9 = Register(state, REG_R9);
  context.R10 = Register(state, REG_R10);
  context.R11 = Register(state, REG_R11);
  context.R12 = Register(state, REG_R12);
  context.R13 = Register(state, REG_R13);
  context.R14 = Register(state, REG_R14);
  context.R15 = Register(state, REG_R15);
  context.Rip = Register(state, REG_RIP);
  context.EFlags = static_cast<DWORD>(Register(state, REG_EFL));
  context.SegCs = static_cast<WORD>(Register(state, REG_CSGSFS));
  context.SegGs = static_cast<WORD>(Register(state, REG_CSGSFS) >> 16);
  context.SegFs = static_cast<WORD>(Register(state, REG_CSGSFS) >> 32);
  if (state.uc_mcontext.fpregs != nullptr) {
    static_assert(sizeof(*state.uc_mcontext.fpregs) == sizeof(context.FltSave));
    std::memcpy(&context.FltSave, state.uc_mcontext.fpregs, sizeof(context.FltSave));
    context.MxCsr = context.FltSave.MxCsr;
  }
}

}  // namespace cvars::platform
