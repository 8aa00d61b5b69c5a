#include "platform/JsonLine.h"

#include <charconv>
#include <cmath>

#include "platform/Utf8.h"

namespace cvars::platform {
namespace {

void AppendUtf8(std::string& text, std::uint32_t code) {
  text += ToUtf8(std::wstring(1, static_cast<wchar_t>(code)));
}

// Reads from the front of a text; a method that fails leaves the reader unusable.
class Reader {
 public:
  explicit Reader(std::string_view text) : m_rest(text) {}

  bool Take(char expected) {
    SkipBlanks();
    if (m_rest.empty() || m_rest.front() != expected) return false;
    m_rest.remove_prefix(1);
    return true;
  }

  bool AtEnd() {
    SkipBlanks();
    return m_rest.empty();
  }

  std::optional<std::string> TakeText() {
    if (!Take('"')) return std::nullopt;
    std::string text;
    while (!m_rest.empty()) {
      const char character = m_rest.front();
      m_rest.remove_prefix(1);
      if (character == '"') return text;
      if (character != '\\') {
        text += character;
      } else if (!TakeEscape(text)) {
        return std::nullopt;
      }
    }
    return std::nullopt;
  }

  // A number, true, false or null, as it stands.
  std::optional<std::string> TakeWord() {
    SkipBlanks();
    std::size_t length = 0;
    while (length < m_rest.size() && IsWordCharacter(m_rest[length])) ++length;
    if (length == 0) return std::nullopt;
    std::string word(m_rest.substr(0, length));
    m_rest.remove_prefix(length);
    return word;
  }

  bool IsAtText() {
    SkipBlanks();
    return !m_rest.empty() && m_rest.front() == '"';
  }

 private:
  static bool IsWordCharacter(char character) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
           character == 'E' || character == '+' || character == '-' || character == '.';
  }

  void SkipBlanks() {
    while (!m_rest.empty() && (m_rest.front() == ' ' || m_rest.front() == '\t')) {
      m_rest.remove_prefix(1);
    }
  }

  std::optional<std::uint32_t> TakeUnit() {
    constexpr std::size_t kDigits = 4;
    std::uint32_t unit = 0;
    if (m_rest.size() < kDigits) return std::nullopt;
    const char* end = m_rest.data() + kDigits;
    if (std::from_chars(m_rest.data(), end, unit, 16).ptr != end) return std::nullopt;
    m_rest.remove_prefix(kDigits);
    return unit;
  }

  bool TakeEscape(std::string& text) {
    constexpr std::string_view kNames = "\"\\/bfnrt";
    constexpr std::string_view kCharacters = "\"\\/\b\f\n\r\t";
    if (m_rest.empty()) return false;
    const char name = m_rest.front();
    m_rest.remove_prefix(1);
    if (const std::size_t index = kNames.find(name); index != std::string_view::npos) {
      text += kCharacters[index];
      return true;
    }
    if (name != 'u') return false;
    auto unit = TakeUnit();
    if (!unit) return false;
    std::uint32_t code = *unit;
    if (code >= 0xD800 && code < 0xDC00 && m_rest.starts_with("\\u")) {
      m_rest.remove_prefix(2);
      const auto low = TakeUnit();
      if (!low) return false;
      code = 0x10000 + ((code - 0xD800) << 10) + (*low - 0xDC00);
    }
    AppendUtf8(text, code);
    return true;
  }

  std::string_view m_rest;
};

}  // namespace

void JsonLine::Key(std::string_view key) {
  if (m_text.size() > 1) m_text += ',';
  Quoted(key);
  m_text += ':';
}

void JsonLine::Quoted(std::string_view utf8) {
  constexpr char kDigits[] = "0123456789abcdef";
  m_text += '"';
  for (const char character : utf8) {
    const auto byte = static_cast<unsigned char>(character);
    if (character == '"' || character == '\\') {
      m_text += '\\';
      m_text += character;
    } else if (character == '\n') {
      m_text += "\\n";
    } else if (byte < 0x20 || byte == 0x7F) {
      m_text += "\\u00";
      m_text += kDigits[byte >> 4];
      m_text += kDigits[byte & 0xF];
    } else {
      m_text += character;
    }
  }
  m_text += '"';
}

JsonLine& JsonLine::Text(std::string_view key, std::wstring_view value) {
  return Text(key, ToUtf8(value));
}

JsonLine& JsonLine::Text(std::string_view key, std::string_view utf8) {
  Key(key);
  Quoted(utf8);
  return *this;
}

JsonLine& JsonLine::Number(std::string_view key, std::int64_t value) {
  Key(key);
  m_text += std::to_string(value);
  return *this;
}

JsonLine& JsonLine::Number(std::string_view key, std::uint64_t value) {
  Key(key);
  m_text += std::to_string(value);
  return *this;
}

JsonLine& JsonLine::Number(std::string_view key, double value) {
  char digits[32];
  const auto end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
  const std::string_view text(digits, static_cast<std::size_t>(end - digits));
  if (!std::isfinite(value)) return Text(key, text);
  Key(key);
  m_text += text;
  return *this;
}

JsonLine& JsonLine::Flag(std::string_view key, bool value) {
  Key(key);
  m_text += value ? "true" : "false";
  return *this;
}

std::optional<JsonMembers> ReadJsonLine(std::string_view line) {
  Reader reader(line);
  JsonMembers members;
  if (!reader.Take('{')) return std::nullopt;
  while (!reader.Take('}')) {
    if (!members.empty() && !reader.Take(',')) return std::nullopt;
    auto key = reader.TakeText();
    if (!key || !reader.Take(':')) return std::nullopt;
    auto value = reader.IsAtText() ? reader.TakeText() : reader.TakeWord();
    if (!value) return std::nullopt;
    members.insert_or_assign(std::move(*key), std::move(*value));
  }
  return reader.AtEnd() ? std::optional(std::move(members)) : std::nullopt;
}

}  // namespace cvars::platform
