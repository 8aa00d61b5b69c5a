#pragma once

#include <string>
#include <string_view>

#include "Bstr.h"
#include "Export.h"

namespace cvars {

/// Gives the upper case of one character, quickly for the characters of ASCII.
inline wchar_t FoldedCharacter(wchar_t character) noexcept {
  constexpr wchar_t kCaseBit = 0x20;
  constexpr wchar_t kAsciiEnd = 0x80;
  if (character >= L'a' && character <= L'z') return character - kCaseBit;
  return character < kAsciiEnd ? character : UpperCase(character);
}

/// Gives the text with every character upper-cased, independent of the process locale.
CVARS_API std::wstring UpperCased(std::wstring_view text);

/// Says whether two texts are the same but for the case of their characters.
CVARS_API bool SameTextAnyCase(std::wstring_view left, std::wstring_view right) noexcept;

}  // namespace cvars
