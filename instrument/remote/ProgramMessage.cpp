#include "instrument/remote/ProgramMessage.h"

#include <algorithm>
#include <cstddef>

#include "instrument/remote/Syntax.h"

namespace cvars::remote {
namespace {

constexpr std::size_t kBadBlock = std::string_view::npos;

/// Bytes of the block at the start of a text, its head included; kBadBlock when it is cut.
std::size_t BlockLength(std::string_view text, std::string_view& content) noexcept {
  if (text[1] == '0') {
    content = text.substr(2);
    return text.size();
  }
  const std::size_t digits = static_cast<std::size_t>(text[1] - '0');
  if (text.size() < 2 + digits) return kBadBlock;
  std::size_t length = 0;
  for (const char digit : text.substr(2, digits)) {
    if (!IsDigit(digit)) return kBadBlock;
    length = 10 * length + static_cast<std::size_t>(digit - '0');
  }
  if (text.size() - 2 - digits < length) return kBadBlock;
  content = text.substr(2 + digits, length);
  return 2 + digits + length;
}

bool StartsBlock(std::string_view text) noexcept {
  return text.size() >= 2 && text[0] == '#' && IsDigit(text[1]);
}

/// Characters up to the quote that ends the text, that quote included; 0 when there is none.
/// A doubled quote ends one text and starts the next, so the caller goes on after it.
std::size_t QuotedLength(std::string_view text) noexcept {
  const std::size_t end = text.find(text.front(), 1);
  return end == std::string_view::npos ? 0 : end + 1;
}

/// Where the command at the start of a text ends: at its semicolon or at the end of the text.
std::size_t UnitLength(std::string_view text) noexcept {
  bool mayStartData = false;
  for (std::size_t index = 0; index < text.size();) {
    const char character = text[index];
    std::size_t length = 1;
    if (character == ';') return index;
    if (character == '"' || character == '\'') {
      length = QuotedLength(text.substr(index));
      if (length == 0) return text.size();
    } else if (mayStartData && StartsBlock(text.substr(index))) {
      std::string_view content;
      length = BlockLength(text.substr(index), content);
      if (length == kBadBlock) length = 1;
    }
    mayStartData = IsBlank(character) || character == ',';
    index += length;
  }
  return text.size();
}

/// Reads one parameter from the start of a text that starts with no blank.
/// @param[out] length  characters up to the comma or the end of the text.
ScpiError ReadParameter(std::string_view text, Parameter& parameter, std::size_t& length) {
  const char first = text.front();
  length = 0;
  if (first == '"' || first == '\'') {
    while (length < text.size() && text[length] == first) {
      const std::size_t piece = QuotedLength(text.substr(length));
      if (piece == 0) return ScpiError::kInvalidStringData;
      length += piece;
    }
    parameter = {Parameter::Kind::kString, text.substr(0, length)};
  } else if (StartsBlock(text)) {
    parameter.kind = Parameter::Kind::kBlock;
    length = BlockLength(text, parameter.text);
    if (length == kBadBlock) return ScpiError::kInvalidBlockData;
  } else {
    int depth = 0;
    while (length < text.size() && (text[length] != ',' || depth > 0)) {
      if (text[length] == '(') ++depth;
      if (text[length] == ')') --depth;
      ++length;
    }
    parameter.text = Trim(text.substr(0, length));
    if (parameter.text.empty()) return ScpiError::kSyntaxError;
    if (IsLetter(first)) {
      parameter.kind = Parameter::Kind::kWord;
    } else if (IsDigit(first) || first == '+' || first == '-' || first == '.') {
      parameter.kind = Parameter::Kind::kNumber;
    } else if (first == '#') {
      parameter.kind = Parameter::Kind::kNonDecimal;
    } else if (first == '&') {
      parameter.kind = Parameter::Kind::kAutomationNumber;
    } else if (first == '(') {
      parameter.kind = Parameter::Kind::kExpression;
    } else {
      return ScpiError::kInvalidCharacter;
    }
    return ScpiError::kNone;
  }
  while (length < text.size() && IsBlank(text[length])) ++length;
  return length < text.size() && text[length] != ',' ? ScpiError::kInvalidSeparator
                                                     : ScpiError::kNone;
}

ScpiError ReadParameters(std::string_view text, std::vector<Parameter>& parameters) {
  for (;;) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    if (text.empty()) {
      // Nothing after the header is fine, nothing after a comma is not.
      return parameters.empty() ? ScpiError::kNone : ScpiError::kSyntaxError;
    }
    std::size_t length = 0;
    const ScpiError error = ReadParameter(text, parameters.emplace_back(), length);
    if (error != ScpiError::kNone) return error;
    if (length == text.size()) return ScpiError::kNone;
    text.remove_prefix(length + 1);
  }
}

bool IsHeaderCharacter(char character) noexcept {
  return character > 0x20 && character < 0x7F && character != '"' && character != '\'' &&
         character != ',' && character != '#';
}

}  // namespace

std::string Unquote(std::string_view quoted) {
  std::string text;
  if (quoted.size() < 2) return text;
  const char quote = quoted.front();
  quoted = quoted.substr(1, quoted.size() - 2);
  text.reserve(quoted.size());
  for (std::size_t index = 0; index < quoted.size(); ++index) {
    text.push_back(quoted[index]);
    if (quoted[index] == quote) ++index;
  }
  return text;
}

bool ProgramMessage::AtEnd() noexcept {
  while (!m_rest.empty() && (IsBlank(m_rest.front()) || m_rest.front() == ';')) {
    m_rest.remove_prefix(1);
  }
  return m_rest.empty();
}

ScpiError ProgramMessage::Next(ProgramUnit& unit) {
  const std::size_t unitLength = UnitLength(m_rest);
  std::string_view text = m_rest.substr(0, unitLength);
  m_rest.remove_prefix(std::min(unitLength + 1, m_rest.size()));

  unit.parameters.clear();
  unit.data = {};
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  unit.isAbsolute = !text.empty() && text.front() == ':';
  if (unit.isAbsolute) text.remove_prefix(1);
  unit.isCommon = !text.empty() && text.front() == '*';

  std::size_t length = 0;
  while (length < text.size() && IsHeaderCharacter(text[length]) && text[length] != '?') ++length;
  unit.header = text.substr(0, length);
  text.remove_prefix(length);
  unit.isQuery = !text.empty() && text.front() == '?';
  if (unit.isQuery) text.remove_prefix(1);
  if (unit.header.empty()) {
    return text.empty() || unit.isQuery ? ScpiError::kSyntaxError : ScpiError::kInvalidCharacter;
  }
  if (unit.isCommon && unit.isAbsolute) return ScpiError::kSyntaxError;
  if (text.empty()) return ScpiError::kNone;
  if (!IsBlank(text.front())) {
    return IsHeaderCharacter(text.front()) || unit.isQuery ? ScpiError::kHeaderSeparatorError
                                                           : ScpiError::kInvalidCharacter;
  }
  unit.data = text;
  return ReadParameters(text, unit.parameters);
}

}  // namespace cvars::remote
