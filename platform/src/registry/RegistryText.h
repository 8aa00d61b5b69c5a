#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "RegistryTree.h"

namespace cvars::platform {

/// A text that cannot be read as a registry file.
class RegistryTextError : public std::runtime_error {
 public:
  RegistryTextError(std::size_t line, const std::string& what)
      : std::runtime_error(what), m_line(line) {}
  /// @return counted from 1.
  std::size_t Line() const { return m_line; }

 private:
  std::size_t m_line;
};

/// Reads the text of a `.reg` file.
///
/// @param rootName  the root that all keys of the file must lie in ("HKEY_CURRENT_USER").
/// @throw RegistryTextError  at the first line that cannot be read; nothing is skipped silently.
RegistryTree ReadRegistryFileText(std::string_view text, std::wstring_view rootName);

/// Writes a tree as the text of a `.reg` file: keys and values in the order of their folded names,
/// so that equal trees give equal files.
std::string WriteRegistryFileText(const RegistryTree& tree, std::wstring_view rootName);

}  // namespace cvars::platform
