#include "platform/Utf8.h"

#include <cstdint>

namespace cvars::platform {
namespace {

constexpr std::uint32_t kBrokenByte = 0xDC00;
constexpr std::uint32_t kReplacement = 0xFFFD;

void AppendCodePoint(std::string& out, std::uint32_t code) {
  const auto byte = [&out](std::uint32_t value) { out.push_back(static_cast<char>(value)); };
  if (code < 0x80) {
    byte(code);
  } else if (code < 0x800) {
    byte(0xC0 | code >> 6);
    byte(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    byte(0xE0 | code >> 12);
    byte(0x80 | (code >> 6 & 0x3F));
    byte(0x80 | (code & 0x3F));
  } else {
    byte(0xF0 | code >> 18);
    byte(0x80 | (code >> 12 & 0x3F));
    byte(0x80 | (code >> 6 & 0x3F));
    byte(0x80 | (code & 0x3F));
  }
}

bool IsCodePoint(std::uint32_t code) {
  return code < 0xD800 || (code >= 0xE000 && code <= 0x10FFFF);
}

// Length of the valid sequence at the start of `bytes`, with its code point; 0 when there is none.
std::size_t Sequence(std::string_view bytes, std::uint32_t* code) {
  const auto lead = static_cast<unsigned char>(bytes[0]);
  if (lead < 0x80) {
    *code = lead;
    return 1;
  }
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) return 0;
  std::uint32_t value = lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(bytes[i]);
    if ((next & 0xC0) != 0x80) return 0;
    value = value << 6 | (next & 0x3Fu);
  }
  if (value < kSmallest[length] || !IsCodePoint(value)) return 0;
  *code = value;
  return length;
}

}  // namespace

std::string ToUtf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  for (const wchar_t character : text) {
    const auto code = static_cast<std::uint32_t>(character);
    if (code >= kBrokenByte + 0x80 && code <= kBrokenByte + 0xFF) {
      out.push_back(static_cast<char>(code - kBrokenByte));
    } else {
      AppendCodePoint(out, IsCodePoint(code) ? code : kReplacement);
    }
  }
  return out;
}

std::wstring FromUtf8(std::string_view bytes) {
  std::wstring out;
  out.reserve(bytes.size());
  while (!bytes.empty()) {
    std::uint32_t code = kBrokenByte + static_cast<unsigned char>(bytes[0]);
    const std::size_t length = Sequence(bytes, &code);
    out.push_back(static_cast<wchar_t>(code));
    bytes.remove_prefix(length == 0 ? 1 : length);
  }
  return out;
}

}  // namespace cvars::platform
