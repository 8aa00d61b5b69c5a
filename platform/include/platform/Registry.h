#pragma once

#include <string>

#include "BasicTypes.h"
#include "Export.h"
#include "LastError.h"

struct SECURITY_ATTRIBUTES;
struct FILETIME;

/// Result of a registry call: ERROR_SUCCESS or one of the codes of LastError.h.
using LSTATUS = LONG;
using REGSAM = DWORD;

/// The roots. They need no opening and no closing.
///
/// Each is kept in one text file below the user's home, registry/current_user.reg and
/// registry/classes_root.reg. HKEY_CLASSES_ROOT also shows the classes that are installed on the
/// machine; what the user's file says wins, and writing changes the user's file only.
inline const HKEY HKEY_CLASSES_ROOT = reinterpret_cast<HKEY>(std::uintptr_t{0x80000000});
inline const HKEY HKEY_CURRENT_USER = reinterpret_cast<HKEY>(std::uintptr_t{0x80000001});

/// What an open key may be used for.
inline constexpr REGSAM KEY_QUERY_VALUE = 0x1;
inline constexpr REGSAM KEY_SET_VALUE = 0x2;
inline constexpr REGSAM KEY_CREATE_SUB_KEY = 0x4;
inline constexpr REGSAM KEY_ENUMERATE_SUB_KEYS = 0x8;
inline constexpr REGSAM KEY_READ = 0x20019;
inline constexpr REGSAM KEY_WRITE = 0x20006;
inline constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;

/// Kinds of values. Texts are 4-byte characters; their sizes are in bytes, terminator included.
inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_EXPAND_SZ = 2;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;
inline constexpr DWORD REG_MULTI_SZ = 7;
inline constexpr DWORD REG_QWORD = 11;

inline constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
/// What RegCreateKeyEx did.
inline constexpr DWORD REG_CREATED_NEW_KEY = 1;
inline constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

// Names of keys and values are compared without regard to case and keep the spelling they were
// made with. "\" separates keys. Every call sees what other processes wrote before it; a change is
// on the disk, whole, when its call returns. Common results, beside those at each call:
//   ERROR_INVALID_HANDLE     the key is not open
//   ERROR_KEY_DELETED        the key was deleted after it was opened
//   ERROR_ACCESS_DENIED      the key was opened without the needed access
//   ERROR_BADDB              the file of the root is damaged; it is left as it is
//   ERROR_WRITE_FAULT        the change could not be stored; nothing changed

/// Opens a key, making it and the keys above it when they are missing.
///
/// @param reserved     0.
/// @param keyClass     not kept.
/// @param security     not looked at.
/// @param[out] result  close with RegCloseKey.
/// @param[out] disposition  may be null; whether the key was made or was there.
/// @retval ERROR_INVALID_PARAMETER  result or the name is null, or a name is not allowed
/// @retval ERROR_BAD_PATHNAME       the name starts with "\"
CVARS_API LSTATUS RegCreateKeyEx(HKEY key, const wchar_t* subKey, DWORD reserved,
                                 const wchar_t* keyClass, DWORD options, REGSAM access,
                                 const SECURITY_ATTRIBUTES* security, HKEY* result,
                                 DWORD* disposition);
/// Opens a key that exists.
///
/// @param subKey  null or empty opens the key again.
/// @retval ERROR_FILE_NOT_FOUND  there is no such key
CVARS_API LSTATUS RegOpenKeyEx(HKEY key, const wchar_t* subKey, DWORD options, REGSAM access,
                               HKEY* result);
CVARS_API LSTATUS RegCloseKey(HKEY key);
/// Reads a value.
///
/// @param name      null or empty is the key's default value.
/// @param type      may be null.
/// @param data      may be null, to ask for the size alone.
/// @param dataSize  in: bytes at data; out: bytes of the value. May be null when data is.
/// @retval ERROR_FILE_NOT_FOUND  there is no such value
/// @retval ERROR_MORE_DATA       the value is larger; data is untouched, dataSize tells the size
CVARS_API LSTATUS RegQueryValueEx(HKEY key, const wchar_t* name, DWORD* reserved, DWORD* type,
                                  BYTE* data, DWORD* dataSize);
/// Stores a value in place of the one of that name.
CVARS_API LSTATUS RegSetValueEx(HKEY key, const wchar_t* name, DWORD reserved, DWORD type,
                                const BYTE* data, DWORD dataSize);
/// @retval ERROR_FILE_NOT_FOUND  there is no such value
CVARS_API LSTATUS RegDeleteValue(HKEY key, const wchar_t* name);
/// Deletes a key below `key` with its values.
///
/// @retval ERROR_FILE_NOT_FOUND  there is no such key
/// @retval ERROR_ACCESS_DENIED   it has keys below it, or is a class of the machine
CVARS_API LSTATUS RegDeleteKey(HKEY key, const wchar_t* subKey);
/// Gives the name of a key below `key`.
///
/// @param index     from 0.
/// @param nameSize  in: characters at name; out: characters of the name, terminator not counted.
/// @retval ERROR_NO_MORE_ITEMS  there are not so many
/// @retval ERROR_MORE_DATA      the name does not fit
CVARS_API LSTATUS RegEnumKeyEx(HKEY key, DWORD index, wchar_t* name, DWORD* nameSize,
                               DWORD* reserved, wchar_t* keyClass, DWORD* classSize,
                               FILETIME* lastWrite);
/// Gives the name, type and data of a value of `key`; the sizes as above, the data as in
/// RegQueryValueEx.
CVARS_API LSTATUS RegEnumValue(HKEY key, DWORD index, wchar_t* name, DWORD* nameSize,
                               DWORD* reserved, DWORD* type, BYTE* data, DWORD* dataSize);

namespace cvars::platform {

/// Reads a REG_SZ value; the empty text when there is none.
CVARS_API std::wstring ReadRegistryText(HKEY root, const wchar_t* subKey, const wchar_t* name);
/// Stores a REG_SZ value, making its key when it is missing.
CVARS_API LSTATUS WriteRegistryText(HKEY root, const wchar_t* subKey, const wchar_t* name,
                                    const std::wstring& text);

/// Says where and how the file of a root is damaged ("<file>:12: value without ="); the empty
/// string when it can be read.
CVARS_API std::string RegistryDamage(HKEY root);

}  // namespace cvars::platform
