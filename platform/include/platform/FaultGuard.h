#pragma once

#include <atomic>
#include <cstdint>

#include "BasicTypes.h"
#include "Export.h"
#include "ResultCodes.h"

/// Answers of a fault filter.
inline constexpr LONG EXCEPTION_EXECUTE_HANDLER = 1;      ///< Give up what faulted and go on.
inline constexpr LONG EXCEPTION_CONTINUE_SEARCH = 0;      ///< Let the process end.
inline constexpr LONG EXCEPTION_CONTINUE_EXECUTION = -1;  ///< Taken as EXCEPTION_EXECUTE_HANDLER.

/// Kinds of fault, in EXCEPTION_RECORD::ExceptionCode.
inline constexpr DWORD EXCEPTION_DATATYPE_MISALIGNMENT = 0x80000002;
inline constexpr DWORD EXCEPTION_ACCESS_VIOLATION = 0xC0000005;
inline constexpr DWORD EXCEPTION_IN_PAGE_ERROR = 0xC0000006;
inline constexpr DWORD EXCEPTION_ILLEGAL_INSTRUCTION = 0xC000001D;
inline constexpr DWORD EXCEPTION_FLT_DIVIDE_BY_ZERO = 0xC000008E;
inline constexpr DWORD EXCEPTION_FLT_INEXACT_RESULT = 0xC000008F;
inline constexpr DWORD EXCEPTION_FLT_INVALID_OPERATION = 0xC0000090;
inline constexpr DWORD EXCEPTION_FLT_OVERFLOW = 0xC0000091;
inline constexpr DWORD EXCEPTION_FLT_UNDERFLOW = 0xC0000093;
inline constexpr DWORD EXCEPTION_INT_DIVIDE_BY_ZERO = 0xC0000094;
inline constexpr DWORD EXCEPTION_INT_OVERFLOW = 0xC0000095;
inline constexpr DWORD EXCEPTION_PRIV_INSTRUCTION = 0xC0000096;
inline constexpr DWORD EXCEPTION_STACK_OVERFLOW = 0xC00000FD;

inline constexpr DWORD EXCEPTION_NONCONTINUABLE = 1;
inline constexpr DWORD EXCEPTION_MAXIMUM_PARAMETERS = 15;

/// What happened. Of a memory access, ExceptionInformation holds 0 for a read, 1 for a write or 8
/// for an execution, and then the address that was touched.
struct EXCEPTION_RECORD {
  DWORD ExceptionCode;
  DWORD ExceptionFlags;
  EXCEPTION_RECORD* ExceptionRecord;
  void* ExceptionAddress;
  DWORD NumberParameters;
  std::uintptr_t ExceptionInformation[EXCEPTION_MAXIMUM_PARAMETERS];
};

/// Which parts of a CONTEXT are filled.
inline constexpr DWORD CONTEXT_AMD64 = 0x00100000;
inline constexpr DWORD CONTEXT_CONTROL = CONTEXT_AMD64 | 0x1;
inline constexpr DWORD CONTEXT_INTEGER = CONTEXT_AMD64 | 0x2;
inline constexpr DWORD CONTEXT_SEGMENTS = CONTEXT_AMD64 | 0x4;
inline constexpr DWORD CONTEXT_FLOATING_POINT = CONTEXT_AMD64 | 0x8;
inline constexpr DWORD CONTEXT_FULL = CONTEXT_CONTROL | CONTEXT_INTEGER | CONTEXT_FLOATING_POINT;

/// 128-bit register.
struct alignas(16) M128A {
  std::uint64_t Low;
  std::int64_t High;
};

/// Floating-point and vector state in the layout of the FXSAVE instruction.
struct XMM_SAVE_AREA32 {
  WORD ControlWord;
  WORD StatusWord;
  BYTE TagWord;
  BYTE Reserved1;
  WORD ErrorOpcode;
  DWORD ErrorOffset;
  WORD ErrorSelector;
  WORD Reserved2;
  DWORD DataOffset;
  WORD DataSelector;
  WORD Reserved3;
  DWORD MxCsr;
  DWORD MxCsr_Mask;
  M128A FloatRegisters[8];
  M128A XmmRegisters[16];
  BYTE Reserved4[96];
};
static_assert(sizeof(XMM_SAVE_AREA32) == 512);

/// The registers of a thread, in the layout that mini-dumps store.
struct alignas(16) CONTEXT {
  std::uint64_t P1Home, P2Home, P3Home, P4Home, P5Home, P6Home;
  DWORD ContextFlags;
  DWORD MxCsr;
  WORD SegCs, SegDs, SegEs, SegFs, SegGs, SegSs;
  DWORD EFlags;
  std::uint64_t Dr0, Dr1, Dr2, Dr3, Dr6, Dr7;
  std::uint64_t Rax, Rcx, Rdx, Rbx, Rsp, Rbp, Rsi, Rdi;
  std::uint64_t R8, R9, R10, R11, R12, R13, R14, R15;
  std::uint64_t Rip;
  XMM_SAVE_AREA32 FltSave;
  M128A VectorRegister[26];
  std::uint64_t VectorControl;
  std::uint64_t DebugControl;
  std::uint64_t LastBranchToRip, LastBranchFromRip;
  std::uint64_t LastExceptionToRip, LastExceptionFromRip;
};
static_assert(sizeof(CONTEXT) == 1232);

/// A fault: what happened and the registers at that moment.
struct EXCEPTION_POINTERS {
  EXCEPTION_RECORD* ExceptionRecord;
  CONTEXT* ContextRecord;
};

/// Decides about a fault. Runs on the thread that faulted, on a stack of its own; a fault inside
/// the filter ends the process.
using LPTOP_LEVEL_EXCEPTION_FILTER = LONG (*)(EXCEPTION_POINTERS*);

/// Installs the process's filter of processor faults (SIGSEGV, SIGBUS, SIGFPE, SIGILL).
///
/// The platform catches these signals only while a filter is installed. A fault below CallGuarded
/// is contained when the filter asks for it; every other fault ends the process after the filter
/// has seen it, the way it would have ended without a filter: signal handlers that were installed
/// before keep their turn.
///
/// @param filter  null uninstalls.
/// @return the filter installed before, or null.
CVARS_API LPTOP_LEVEL_EXCEPTION_FILTER
SetUnhandledExceptionFilter(LPTOP_LEVEL_EXCEPTION_FILTER filter);

namespace cvars::platform {

/// The installed filter; read it through FaultFilterInstalled.
extern CVARS_API std::atomic<LPTOP_LEVEL_EXCEPTION_FILTER> faultFilter;

/// Says whether a filter of processor faults is installed. Costs one load.
inline bool FaultFilterInstalled() noexcept {
  return faultFilter.load(std::memory_order_relaxed) != nullptr;
}

using GuardedFunction = HRESULT (*)(void* context);

/// Calls a function whose failure must not take the caller down.
///
/// Guards nest; a fault ends the innermost guarded call of its thread. What the function had under
/// way when it faulted (locks, memory) stays as it was at that moment. Only the forced unwinding of
/// a cancelled thread passes through.
///
/// @retval E_FAIL  the function threw, or it faulted and the installed filter let the program go on
/// @return otherwise what the function returned
CVARS_API HRESULT CallGuarded(GuardedFunction function, void* context);

}  // namespace cvars::platform
