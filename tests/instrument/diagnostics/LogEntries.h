#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/JsonLine.h"

namespace cvars::test {

/// The entries in the event log file of a home, the oldest first.
inline std::vector<platform::JsonMembers> LogEntries(const std::filesystem::path& home) {
  std::vector<platform::JsonMembers> entries;
  std::ifstream file(home / "logs" / "events.jsonl");
  for (std::string line; std::getline(file, line);) {
    if (auto entry = platform::ReadJsonLine(line)) entries.push_back(std::move(*entry));
  }
  return entries;
}

}  // namespace cvars::test
