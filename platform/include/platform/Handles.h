#pragma once

#include "BasicTypes.h"
#include "Export.h"

/// What WaitForSingleObject answers.
inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_ABANDONED = 0x80;  ///< Owned now; the thread that owned it before died.
inline constexpr DWORD WAIT_TIMEOUT = 0x102;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;
inline constexpr DWORD INFINITE = 0xFFFFFFFF;

/// Waits until the object is free or the time has run out.
///
/// @param handle     of a mutex.
/// @param timeoutMs  longest wait in milliseconds; 0 asks only, INFINITE waits without limit.
/// @return one of the WAIT_ values; WAIT_FAILED with the last error set for any other handle.
CVARS_API DWORD WaitForSingleObject(HANDLE handle, DWORD timeoutMs);

/// Gives a handle back. The object goes with its last handle.
/// @return 1, or 0 with the last error ERROR_INVALID_HANDLE.
CVARS_API int CloseHandle(HANDLE handle);
