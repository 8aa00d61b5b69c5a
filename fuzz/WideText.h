#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace cvars::fuzz {

/// Makes a text of bytes: a byte a character, and from 0xF0 on two bytes a wide one.
inline std::wstring WideText(const std::uint8_t* data, std::size_t size) {
  std::wstring text;
  for (std::size_t i = 0; i < size; ++i) {
    if (data[i] >= 0xF0 && i + 1 < size) {
      text += static_cast<wchar_t>(data[i] << 8 | data[i + 1]);
      ++i;
    } else {
      text += static_cast<wchar_t>(data[i]);
    }
  }
  return text;
}

}  // namespace cvars::fuzz
