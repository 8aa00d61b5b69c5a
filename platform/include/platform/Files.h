#pragma once

#include "BasicTypes.h"
#include "Export.h"
#include "platform/Handles.h"

struct SECURITY_ATTRIBUTES;

inline constexpr DWORD GENERIC_READ = 0x80000000;
inline constexpr DWORD GENERIC_WRITE = 0x40000000;
inline constexpr DWORD FILE_SHARE_READ = 1;
inline constexpr DWORD FILE_SHARE_WRITE = 2;
inline constexpr DWORD CREATE_NEW = 1;     ///< Fails when the file exists.
inline constexpr DWORD CREATE_ALWAYS = 2;  ///< Empties a file that exists.
inline constexpr DWORD OPEN_EXISTING = 3;  ///< Fails when the file does not exist.
inline constexpr DWORD OPEN_ALWAYS = 4;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;

/// What calls that make a handle of a file answer on failure.
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(~std::uintptr_t{0});

/// Opens or makes a file.
///
/// @param path         borrowed; a path of the platform.
/// @param access       GENERIC_READ, GENERIC_WRITE or both.
/// @param sharing, attributes, flags  not used: every file is shared, with normal attributes.
/// @param disposition  one of the four above.
/// @return the handle, caller closes; INVALID_HANDLE_VALUE with the last error set on failure.
CVARS_API HANDLE CreateFile(const wchar_t* path, DWORD access, DWORD sharing,
                            SECURITY_ATTRIBUTES* attributes, DWORD disposition, DWORD flags,
                            HANDLE templateFile);

namespace cvars::platform {

/// Gives the descriptor behind a handle of CreateFile; -1, with the last error set, for any other.
/// It stays the handle's.
CVARS_API int FileDescriptor(HANDLE file);

/// Gives the platform's error code of an error number of this system.
CVARS_API DWORD ErrorFromErrno(int number) noexcept;

/// Gives the result code of a platform error code: 0x80070000 and the code; S_OK for 0.
constexpr HRESULT ResultFromError(DWORD error) noexcept {
  return error == 0 ? 0 : static_cast<HRESULT>(0x80070000u | (error & 0xFFFFu));
}

}  // namespace cvars::platform
