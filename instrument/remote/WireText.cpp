#include "instrument/remote/WireText.h"

#include <cstddef>
#include <cstdint>

namespace cvars::remote {
namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;

bool IsCharacter(std::uint32_t code) noexcept {
  return code < 0xD800 || (code > 0xDFFF && code <= 0x10FFFF);
}

/// Reads the character at the start of a text that is not empty, and takes it away.
std::uint32_t TakeCharacter(std::string_view& wire) noexcept {
  const auto first = static_cast<unsigned char>(wire.front());
  wire.remove_prefix(1);
  if (first < 0x80) return first;
  const int length = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
  if (first < 0xC2 || first > 0xF4) return kReplacement;
  std::uint32_t code = first & (0x3FU >> length);
  std::string_view rest = wire;
  for (int count = 0; count < length; ++count) {
    if (rest.empty() || (static_cast<unsigned char>(rest.front()) & 0xC0) != 0x80) {
      return kReplacement;
    }
    code = (code << 6) | (static_cast<unsigned char>(rest.front()) & 0x3F);
    rest.remove_prefix(1);
  }
  // The shortest spelling only: three bytes from U+0800, four from U+10000.
  constexpr std::uint32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
  if (code < kLeast[length] || !IsCharacter(code)) return kReplacement;
  wire = rest;
  return code;
}

}  // namespace

void AppendToWire(std::wstring_view text, std::string& wire) {
  for (const wchar_t character : text) {
    auto code = static_cast<std::uint32_t>(character);
    if (code < 0x80) {
      wire.push_back(static_cast<char>(code));
      continue;
    }
    if (!IsCharacter(code)) code = kReplacement;
    const int length = code >= 0x10000 ? 3 : code >= 0x800 ? 2 : 1;
    constexpr std::uint32_t kMarks[] = {0, 0xC0, 0xE0, 0xF0};
    wire.push_back(static_cast<char>(kMarks[length] | (code >> (6 * length))));
    for (int shift = 6 * (length - 1); shift >= 0; shift -= 6) {
      wire.push_back(static_cast<char>(0x80 | ((code >> shift) & 0x3F)));
    }
  }
}

void AppendQuoted(std::string_view text, std::string& wire) {
  wire += '"';
  for (const char character : text) {
    if (character == '"') wire += '"';
    wire += character;
  }
  wire += '"';
}

void AppendBlock(std::string_view bytes, std::string& wire) {
  const std::string length = std::to_string(bytes.size());
  wire += '#';
  wire += std::to_string(length.size());
  wire += length;
  wire += bytes;
}

std::wstring FromWire(std::string_view wire) {
  std::wstring text;
  text.reserve(wire.size());
  while (!wire.empty()) text.push_back(static_cast<wchar_t>(TakeCharacter(wire)));
  return text;
}

}  // namespace cvars::remote
