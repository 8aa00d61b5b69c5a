#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/FaultGuard.h"

namespace cvars::platform {

/// A range of addresses with what may be done there.
struct MemoryRegion {
  std::uint64_t begin;
  std::uint64_t end;
  bool readable;
  bool writable;
  bool executable;
  bool isPrivate;
  std::uint64_t fileOffset;
  std::string name;  ///< File, "[stack]", "[vdso]", ... or empty.
};

/// A thread of a stopped process.
struct StoppedThread {
  pid_t identifier;
  int pendingSignal;  ///< Given back to the thread when it runs on.
  CONTEXT context;
  std::uint64_t block;  ///< Address of the thread's own data.
  std::string name;
};

/// Another process whose threads stand still as long as this object lives.
class StoppedProcess {
 public:
  /// Stops every thread; a thread that has ended meanwhile is left out.
  /// @throws std::system_error when the process may not be stopped
  explicit StoppedProcess(pid_t process);
  ~StoppedProcess();
  StoppedProcess(const StoppedProcess&) = delete;
  StoppedProcess& operator=(const StoppedProcess&) = delete;

  pid_t Identifier() const { return m_process; }
  const std::vector<StoppedThread>& Threads() const { return m_threads; }
  const std::vector<MemoryRegion>& Regions() const { return m_regions; }

  /// Gives the region that holds an address; null when there is none.
  const MemoryRegion* RegionAt(std::uint64_t address) const;

  /// Copies memory; @return how many bytes from the start could be read.
  std::size_t ReadMemory(std::uint64_t address, std::span<std::byte> target) const;

  /// Copies a plain structure.
  template <typename T>
  std::optional<T> ReadObject(std::uint64_t address) const {
    T object;
    const auto bytes = std::as_writable_bytes(std::span(&object, 1));
    if (ReadMemory(address, bytes) != bytes.size()) return std::nullopt;
    return object;
  }

  /// Gives a file of the process's folder in /proc ("maps", "status").
  std::vector<std::byte> ReadProcFile(const char* name) const;

 private:
  void StopThreads();
  void ReadRegions();

  pid_t m_process;
  std::filesystem::path m_folder;
  int m_memory = -1;
  std::vector<StoppedThread> m_threads;
  std::vector<MemoryRegion> m_regions;
};

/// Reads a whole file whose size is not known beforehand; empty when it cannot be read.
std::vector<std::byte> ReadWholeFile(const std::filesystem::path& file);

}  // namespace cvars::platform
