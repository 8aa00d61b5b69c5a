#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace cvars::test {

/// One line of a table: where it stands and its columns.
struct GoldenRow {
  int line = 0;
  std::vector<std::string> columns;
};

inline std::vector<GoldenRow> ReadTable(const std::string& name) {
  std::ifstream file(std::string(CVARS_SOURCE_DIR "/tests/golden/") + name);
  EXPECT_TRUE(file) << name;
  std::vector<GoldenRow> rows;
  std::string text;
  for (int line = 1; std::getline(file, text); ++line) {
    if (text.empty() || text[0] == '#') continue;
    GoldenRow row{line, {}};
    std::size_t from = 0;
    for (std::size_t tab = 0; (tab = text.find('\t', from)) != std::string::npos; from = tab + 1) {
      row.columns.push_back(text.substr(from, tab - from));
    }
    row.columns.push_back(text.substr(from));
    rows.push_back(row);
  }
  return rows;
}

/// The characters of a quoted text of ASCII and \uXXXX.
inline std::wstring Unquote(const std::string& quoted) {
  std::wstring text;
  for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
    if (quoted[i] != '\\') {
      text.push_back(static_cast<wchar_t>(static_cast<unsigned char>(quoted[i])));
    } else if (quoted[i + 1] == 'u') {
      text.push_back(static_cast<wchar_t>(std::stoul(quoted.substr(i + 2, 4), nullptr, 16)));
      i += 5;
    } else {
      text.push_back(static_cast<wchar_t>(quoted[++i]));
    }
  }
  return text;
}

/// The bits written before the colon.
inline std::uint64_t Bits(const std::string& column) {
  return std::stoull(column.substr(0, column.find(':')), nullptr, 16);
}

}  // namespace cvars::test
