#include "platform/FileVersion.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>

#include "ElfVersion.h"
#include "PeVersion.h"

namespace cvars::platform {
namespace {

// The readers take numbers out of the files as they stand.
static_assert(std::endian::native == std::endian::little);

class MemoryBytes final : public ModuleBytes {
 public:
  explicit MemoryBytes(std::span<const std::byte> content) : m_content(content) {}

  bool Read(std::uint64_t offset, std::span<std::byte> target) const override {
    if (offset > m_content.size() || target.size() > m_content.size() - offset) return false;
    const auto source = m_content.subspan(offset, target.size());
    std::copy(source.begin(), source.end(), target.begin());
    return true;
  }

 private:
  std::span<const std::byte> m_content;
};

// Reads from the open file, so that a file cut short meanwhile is an ordinary failure.
class FileBytes final : public ModuleBytes {
 public:
  explicit FileBytes(const std::filesystem::path& file)
      : m_descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
  ~FileBytes() {
    if (m_descriptor >= 0) close(m_descriptor);
  }
  FileBytes(const FileBytes&) = delete;
  FileBytes& operator=(const FileBytes&) = delete;

  bool IsFile() const {
    struct stat status = {};
    return m_descriptor >= 0 && fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode);
  }

  bool Read(std::uint64_t offset, std::span<std::byte> target) const override {
    if (offset > static_cast<std::uint64_t>(INT64_MAX) - target.size()) return false;
    while (!target.empty()) {
      const ssize_t count =
          pread(m_descriptor, target.data(), target.size(), static_cast<off_t>(offset));
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return false;
      offset += static_cast<std::uint64_t>(count);
      target = target.subspan(static_cast<std::size_t>(count));
    }
    return true;
  }

 private:
  int m_descriptor;
};

std::optional<FileVersion> ReadVersion(const ModuleBytes& bytes) {
  if (const auto version = ReadPeVersion(bytes)) return version;
  return ReadElfVersion(bytes);
}

}  // namespace

std::optional<FileVersion> ReadFileVersion(const std::filesystem::path& file) {
  const FileBytes bytes(file);
  return bytes.IsFile() ? ReadVersion(bytes) : std::nullopt;
}

std::optional<FileVersion> ReadFileVersion(std::span<const std::byte> content) {
  return ReadVersion(MemoryBytes(content));
}

}  // namespace cvars::platform
