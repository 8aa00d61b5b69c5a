#pragma once

#include "BasicTypes.h"
#include "Export.h"
#include "platform/Handles.h"

struct SECURITY_ATTRIBUTES;

inline constexpr DWORD SYNCHRONIZE = 0x00100000;
inline constexpr DWORD MUTEX_ALL_ACCESS = 0x001F0001;

inline constexpr DWORD ERROR_NOT_OWNER = 288;

/// Makes a mutex that other processes find by its name, or opens the one that has the name.
///
/// The name exists while a process has a handle; a process that ends, however it ends, gives its
/// handles back. Ownership belongs to a thread and counts: as many releases as waits. Names belong
/// to the home of the platform and may hold any character; their case counts.
///
/// @param attributes  not used.
/// @param owned       not 0: the calling thread owns a new mutex; one that exists is only opened.
/// @param name        borrowed; null or empty makes a mutex without a name.
/// @return the handle, caller closes; null with the last error set on failure. The last error is
///         ERROR_ALREADY_EXISTS when the mutex existed, else ERROR_SUCCESS.
CVARS_API HANDLE CreateMutex(SECURITY_ATTRIBUTES* attributes, int owned, const wchar_t* name);

/// Opens a mutex that exists.
///
/// @param access   not used; every handle may do everything.
/// @param inherit  not used.
/// @return the handle, caller closes; null with the last error ERROR_FILE_NOT_FOUND when there is
///         no such mutex.
CVARS_API HANDLE OpenMutex(DWORD access, int inherit, const wchar_t* name);

/// Gives up one ownership of the calling thread.
/// @return 1, or 0 with the last error ERROR_NOT_OWNER or ERROR_INVALID_HANDLE.
CVARS_API int ReleaseMutex(HANDLE mutex);
