#pragma once

#include "Export.h"
#include "ResultCodes.h"

/// Allocates a copy of a null-terminated text. Null gives null; a failed allocation gives null.
CVARS_API BSTR SysAllocString(const wchar_t* text);
/// Allocates `length` characters and a terminator, copied from `text` (null leaves them zero).
/// @return null when the allocation fails or `length` is 2^30 or more.
CVARS_API BSTR SysAllocStringLen(const wchar_t* text, UINT length);
/// Allocates `byteLength` bytes; SysStringLen then is the number of whole characters.
CVARS_API BSTR SysAllocStringByteLen(const char* bytes, UINT byteLength);
/// Replaces `*text` by a copy of `source`. @return 1, or 0 when the allocation failed (old text
/// kept).
CVARS_API int SysReAllocString(BSTR* text, const wchar_t* source);
CVARS_API int SysReAllocStringLen(BSTR* text, const wchar_t* source, UINT length);
/// Frees a string made by these functions; null does nothing.
CVARS_API void SysFreeString(BSTR text);
/// Length in characters; 0 for null.
CVARS_API UINT SysStringLen(const wchar_t* text);
/// Length in bytes; 0 for null.
CVARS_API UINT SysStringByteLen(const wchar_t* text);

/// Flags of VarBstrCmp.
inline constexpr ULONG NORM_IGNORECASE = 0x1;
/// Results of VarBstrCmp.
inline constexpr HRESULT VARCMP_LT = 0;
inline constexpr HRESULT VARCMP_EQ = 1;
inline constexpr HRESULT VARCMP_GT = 2;

/// Compares by code point, null equal to empty, stored lengths (not terminators) counting.
/// @param flags  NORM_IGNORECASE compares upper-cased code points.
CVARS_API HRESULT VarBstrCmp(BSTR left, BSTR right, LCID locale, ULONG flags);
/// Joins two strings. @param result caller frees.
CVARS_API HRESULT VarBstrCat(BSTR left, BSTR right, BSTR* result);

namespace cvars {
/// Upper case of one character, independent of the process locale (simple Unicode upper case).
CVARS_API wchar_t UpperCase(wchar_t character) noexcept;
}  // namespace cvars
