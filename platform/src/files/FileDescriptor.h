#pragma once

#include <unistd.h>

#include <utility>

namespace cvars::platform {

/// Owns a file descriptor and closes it.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept
      : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(m_descriptor, other.m_descriptor);
    other.Close();
    return *this;
  }
  ~FileDescriptor() { Close(); }

  explicit operator bool() const { return m_descriptor >= 0; }
  int Get() const { return m_descriptor; }
  void Close() noexcept {
    if (const int descriptor = std::exchange(m_descriptor, -1); descriptor >= 0) close(descriptor);
  }

 private:
  int m_descriptor = -1;
};

}  // namespace cvars::platform
