#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "Export.h"

namespace cvars::platform {

/// Writes one flat JSON object on one line.
class CVARS_API JsonLine {
 public:
  JsonLine& Text(std::string_view key, std::wstring_view value);
  JsonLine& Text(std::string_view key, std::string_view utf8);
  JsonLine& Number(std::string_view key, std::int64_t value);
  JsonLine& Number(std::string_view key, std::uint64_t value);
  /// A value that is not finite is written as a text.
  JsonLine& Number(std::string_view key, double value);
  JsonLine& Flag(std::string_view key, bool value);

  /// The object, without a line feed.
  std::string Line() const { return m_text + '}'; }

 private:
  void Key(std::string_view key);
  void Quoted(std::string_view utf8);

  std::string m_text = "{";
};

/// The members of a flat JSON object: texts unescaped, all other values as they stand.
using JsonMembers = std::map<std::string, std::string, std::less<>>;

/// Reads one line; nothing when it is not a whole flat object.
CVARS_API std::optional<JsonMembers> ReadJsonLine(std::string_view line);

}  // namespace cvars::platform
