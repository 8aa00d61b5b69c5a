#pragma once

#include <string>
#include <string_view>

#include "Bstr.h"
#include "Export.h"

namespace cvars {

/// Hands a text out of an operation.
///
/// @param[out] out  caller frees.
/// @retval E_POINTER      out is null
/// @retval E_OUTOFMEMORY  the copy cannot be made; *out is null
CVARS_API HRESULT CopyOut(std::wstring_view text, BSTR* out);

/// A text that may be null, which reads as empty.
inline std::wstring_view TextOrEmpty(const wchar_t* text) noexcept {
  return text == nullptr ? std::wstring_view() : std::wstring_view(text);
}

/// A stored string, which may hold any character and may be null.
inline std::wstring_view BstrView(const wchar_t* text) noexcept {
  return {text == nullptr ? L"" : text, SysStringLen(text)};
}

/// Case-sensitive equality of texts; null equals empty.
inline bool SameText(const wchar_t* a, const wchar_t* b) noexcept {
  return TextOrEmpty(a) == TextOrEmpty(b);
}

}  // namespace cvars
