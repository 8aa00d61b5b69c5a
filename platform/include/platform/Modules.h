#pragma once

#include <cstddef>
#include <span>

#include "BasicTypes.h"
#include "Export.h"

/// Address of an exported function; to be cast to its type.
using FARPROC = void (*)();

/// Loads a module and counts one use of it.
///
/// @param name  borrowed. A name alone ("psapi.dll") is looked for in the folder of the executable,
///              the system folder and the folders of PATH, which are split at ":"; anything with a
///              separator or a drive is a path of the platform. The case of names counts.
/// @return null when there is no such module; GetLastError tells ERROR_MOD_NOT_FOUND
CVARS_API HMODULE LoadLibrary(const wchar_t* name);
/// Gives an exported function.
///
/// @return null when the module exports no such name; GetLastError tells ERROR_PROC_NOT_FOUND
CVARS_API FARPROC GetProcAddress(HMODULE module, const char* name);
/// Undoes one LoadLibrary; the last one unloads the module and ends its handle.
///
/// @return 0 when the handle is of no loaded module
CVARS_API int FreeLibrary(HMODULE module);
/// Gives the handle of a module that is loaded already, without counting a use.
///
/// @param name  borrowed; null is the executable. A file name or a path.
CVARS_API HMODULE GetModuleHandle(const wchar_t* name);
/// Gives the path of a module's file.
///
/// @param module  null is the executable.
/// @param size    characters at path.
/// @return characters written, the terminator not counted; `size` when the path was cut, 0 on
/// failure
CVARS_API DWORD GetModuleFileName(HMODULE module, wchar_t* path, DWORD size);
/// Gives the system folder of the loader: the folder of the platform library.
///
/// @return characters written, the terminator not counted; the size needed when they do not fit
CVARS_API UINT GetSystemDirectory(wchar_t* path, UINT size);
/// Copies a text of a module's string table.
///
/// @param module  null is the executable.
/// @param size    characters at buffer. 0: buffer is taken as a `const wchar_t**` and receives the
///                text itself, which is weak.
/// @return characters of the text, cut to what fits; 0 when there is no such text
CVARS_API int LoadString(HINSTANCE module, UINT id, wchar_t* buffer, int size);

namespace cvars::platform {

enum class ResourceKind : std::uint32_t { kText, kBitmap, kIcon };

/// Gives the handle of the module that an address belongs to; null when it is of none.
CVARS_API HINSTANCE ModuleOf(const void* address);

/// Gives a resource of a module: the bytes of the bitmap or icon file, or the characters of a text.
///
/// @param module  null is the executable.
/// @return weak, valid while the module is loaded; empty when there is no such resource
CVARS_API std::span<const std::byte> FindModuleResource(HINSTANCE module, ResourceKind kind,
                                                        UINT id);

}  // namespace cvars::platform
