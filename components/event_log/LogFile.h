#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace cvars::components {

/// The event log in files: "events.jsonl", and older entries in "events.1.jsonl" and on.
///
/// Any number of processes append. An entry is written in one piece behind the last: a process that
/// is killed while it writes loses that entry and no other, and the next one starts on a line of
/// its own. When a file is full the files move up by one and the oldest goes.
class LogFile {
 public:
  static constexpr std::uintmax_t kLargestFileBytes = 1 << 20;
  static constexpr int kOldFileCount = 7;

  /// @param folder  made at the first entry.
  explicit LogFile(std::filesystem::path folder) : m_folder(std::move(folder)) {}

  /// Appends one line. @return false when it cannot be written; nothing of it stays then
  bool Append(std::string line) const;

  /// Gives the files that exist, the oldest entries first.
  std::vector<std::filesystem::path> Files() const;

  /// Opens the files that exist for reading, the oldest entries first. No file moves meanwhile.
  /// @return descriptors; the caller closes them.
  std::vector<int> OpenForReading() const;

  /// Gives a file by its age: 0 is the one that is written.
  std::filesystem::path File(int age) const;

  const std::filesystem::path& Folder() const { return m_folder; }

 private:
  std::filesystem::path LockFile() const { return m_folder / ".lock"; }
  void MoveUp() const;

  std::filesystem::path m_folder;
};

/// The event log files of the platform's home.
LogFile HomeLogFile();

}  // namespace cvars::components
