#pragma once

#include "BasicTypes.h"
#include "Export.h"
#include "platform/Handles.h"

inline constexpr DWORD PROCESS_VM_READ = 0x10;
inline constexpr DWORD PROCESS_QUERY_INFORMATION = 0x400;

/// Number of the calling process, as the kernel counts.
CVARS_API DWORD GetCurrentProcessId();
/// Number of the calling thread, as the kernel counts.
CVARS_API DWORD GetCurrentThreadId();
/// A handle that always means the calling process; it need not be closed.
CVARS_API HANDLE GetCurrentProcess();

/// Opens a process.
///
/// @param access, inherit  not used; what may be done is up to the system.
/// @return the handle, caller closes; null with the last error ERROR_INVALID_PARAMETER when there
///         is no such process.
CVARS_API HANDLE OpenProcess(DWORD access, int inherit, DWORD processId);

/// Gives the number of a process; 0, with the last error set, for any other handle.
CVARS_API DWORD GetProcessId(HANDLE process);
