#pragma once

#include <string_view>

namespace cvars::remote {

/// White space of the command language: every control character counts as a blank.
constexpr bool IsBlank(char character) noexcept {
  return static_cast<unsigned char>(character) <= 0x20;
}

constexpr bool IsDigit(char character) noexcept { return character >= '0' && character <= '9'; }

/// Upper case of an ASCII letter; everything else as it is.
constexpr char ToUpper(char character) noexcept {
  return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A')
                                              : character;
}

constexpr bool IsLetter(char character) noexcept {
  return ToUpper(character) >= 'A' && ToUpper(character) <= 'Z';
}

/// The text without the blanks around it.
constexpr std::string_view Trim(std::string_view text) noexcept {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

/// Says whether a text is the long or the short form of a mnemonic, in any case.
/// @param mnemonic  the short form in upper case, the rest of the long form in lower: "MAXimum".
bool IsMnemonic(std::string_view mnemonic, std::string_view text) noexcept;

}  // namespace cvars::remote
