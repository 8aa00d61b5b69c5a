#include "LogFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "platform/Home.h"

namespace cvars::components {
namespace {

constexpr int kAppending = O_RDWR | O_CREAT | O_APPEND;

class Descriptor {
 public:
  Descriptor(const std::filesystem::path& file, int flags)
      : m_value(open(file.c_str(), flags | O_CLOEXEC, 0644)) {}
  ~Descriptor() {
    if (m_value >= 0) close(m_value);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  explicit operator bool() const { return m_value >= 0; }
  int Value() const { return m_value; }
  off_t Size() const {
    struct stat status = {};
    return fstat(m_value, &status) == 0 ? status.st_size : 0;
  }

 private:
  int m_value;
};

bool Lock(int descriptor, int operation) {
  int result = 0;
  do {
    result = flock(descriptor, operation);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

bool EndsInsideLine(const Descriptor& file, off_t size) {
  char last = '\n';
  return size > 0 && pread(file.Value(), &last, 1, size - 1) == 1 && last != '\n';
}

}  // namespace

std::filesystem::path LogFile::File(int age) const {
  return m_folder / (age == 0 ? "events.jsonl" : "events." + std::to_string(age) + ".jsonl");
}

// From the oldest on, so that a process killed in between leaves a gap at most.
void LogFile::MoveUp() const {
  for (int age = kOldFileCount - 1; age >= 0; --age) {
    std::rename(File(age).c_str(), File(age + 1).c_str());
  }
}

bool LogFile::Append(std::string line) const {
  line += '\n';
  std::error_code ignored;  // shows when the files are opened
  std::filesystem::create_directories(m_folder, ignored);
  const Descriptor lock(LockFile(), O_RDWR | O_CREAT);
  if (!lock || !Lock(lock.Value(), LOCK_EX)) return false;
  {
    const Descriptor current(File(0), kAppending);
    if (!current) return false;
    const off_t size = current.Size();
    if (size == 0 || static_cast<std::uintmax_t>(size) + line.size() <= kLargestFileBytes) {
      if (EndsInsideLine(current, size)) line.insert(line.begin(), '\n');
      const ssize_t written = write(current.Value(), line.data(), line.size());
      if (written == static_cast<ssize_t>(line.size())) return true;
      if (written > 0) (void)!ftruncate(current.Value(), size);
      return false;
    }
  }
  MoveUp();
  const Descriptor fresh(File(0), kAppending);
  const ssize_t written = fresh ? write(fresh.Value(), line.data(), line.size()) : -1;
  if (written > 0 && written < static_cast<ssize_t>(line.size())) {
    (void)!ftruncate(fresh.Value(), 0);
  }
  return written == static_cast<ssize_t>(line.size());
}

std::vector<std::filesystem::path> LogFile::Files() const {
  std::vector<std::filesystem::path> files;
  for (int age = kOldFileCount; age >= 0; --age) {
    if (std::filesystem::exists(File(age))) files.push_back(File(age));
  }
  return files;
}

std::vector<int> LogFile::OpenForReading() const {
  // Who may not lock, or comes before the first entry, reads all the same.
  const Descriptor lock(LockFile(), O_RDONLY);
  if (lock) (void)Lock(lock.Value(), LOCK_SH);
  std::vector<int> files;
  for (const std::filesystem::path& path : Files()) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file >= 0) files.push_back(file);
  }
  return files;
}

LogFile HomeLogFile() { return LogFile(platform::HomeFolder() / "logs"); }

}  // namespace cvars::components
