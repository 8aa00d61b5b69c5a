#pragma once

#include "BasicTypes.h"
#include "Export.h"

// Drives have labels, which are kept in the registry of the user's home, under the key
// "SOFTWARE\Vortana\Volumes" of HKEY_CURRENT_USER.

/// Gives a drive a label, or takes it away.
///
/// @param root   borrowed; "D:\", "D:" or any path of the drive. Null is C:.
/// @param label  borrowed; at most 32 characters. Null or empty takes the label away.
/// @return 1, or 0 with the last error ERROR_PATH_NOT_FOUND (no such drive),
///         ERROR_INVALID_PARAMETER (label too long) or what the registry answered.
CVARS_API int SetVolumeLabel(const wchar_t* root, const wchar_t* label);

/// Reads the label and the properties of a drive. Every output may be null.
///
/// @param root                borrowed; as above.
/// @param[out] label          empty for a drive without a label.
/// @param labelSize           characters at label.
/// @param[out] serialNumber   that of the file system the drive lies in.
/// @param[out] longestName    longest file name, in bytes of UTF-8.
/// @param[out] flags          1 (names keep their case and differ by it) + 2.
/// @param[out] fileSystem     "vortana".
/// @param fileSystemSize      characters at fileSystem.
/// @return 1, or 0 with the last error ERROR_PATH_NOT_FOUND (no such drive) or
///         ERROR_MORE_DATA (a text does not fit; nothing is written).
CVARS_API int GetVolumeInformation(const wchar_t* root, wchar_t* label, DWORD labelSize,
                                   DWORD* serialNumber, DWORD* longestName, DWORD* flags,
                                   wchar_t* fileSystem, DWORD fileSystemSize);
