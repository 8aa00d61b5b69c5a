#pragma once

#include <cstddef>
#include <cstdint>

using HRESULT = std::int32_t;  ///< Result code; negative means failure.
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using INT = std::int32_t;
using UINT = std::uint32_t;
using DWORD = std::uint32_t;
using WORD = std::uint16_t;
using BYTE = std::uint8_t;
using LCID = std::uint32_t;
using DISPID = std::int32_t;
using SCODE = std::int32_t;
using DATE = double;

/// Length-prefixed wide string, one code point per element; null reads as empty. See Bstr.h.
using BSTR = wchar_t*;

/// 16-bit boolean: VARIANT_TRUE has all bits set.
using VARIANT_BOOL = std::int16_t;
inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

struct HINSTANCE__;
struct HWND__;
struct HKEY__;
/// Module handle: a small positive number into the platform's module table.
using HINSTANCE = HINSTANCE__*;
using HMODULE = HINSTANCE;
using HWND = HWND__*;
using HKEY = HKEY__*;
using HANDLE = void*;

/// The locale identifiers the library passes to conversions and comparisons.
inline constexpr LCID LOCALE_USER_DEFAULT = 1024;
inline constexpr LCID LOCALE_ENGLISH_US = 1033;
