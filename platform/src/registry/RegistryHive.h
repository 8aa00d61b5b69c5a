#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>

#include "RegistryTree.h"
#include "files/FileDescriptor.h"
#include "platform/Registry.h"

namespace cvars::platform {

/// A registry file that cannot be read or stored.
class RegistryFailure : public std::runtime_error {
 public:
  RegistryFailure(DWORD code, const std::string& what)
      : std::runtime_error(what), m_code(static_cast<LSTATUS>(code)) {}
  LSTATUS Code() const { return m_code; }

 private:
  LSTATUS m_code;
};

/// Reads one `.reg` file.
///
/// @throw RegistryFailure  with ERROR_BADDB and "<file>:<line>: <what>" when it is damaged
RegistryTree ReadRegistryFile(const std::filesystem::path& file, int descriptor,
                              const wchar_t* rootName);

/// The file of one root below the user's home.
///
/// A change is made on the newest state under a lock that other processes share, and replaces the
/// file as a whole: whoever reads sees it before or after the change, and so does the next start
/// when the process is killed within. A damaged file is never replaced.
class RegistryHive {
 public:
  RegistryHive(const wchar_t* rootName, const char* fileName)
      : m_rootName(rootName), m_fileName(fileName) {}

  /// Gives the newest state; an empty tree when there is no file yet.
  ///
  /// @throw RegistryFailure
  std::shared_ptr<const RegistryTree> Read();

  /// Changes the newest state by `change` and stores it; a result other than ERROR_SUCCESS stores
  /// nothing and is handed through.
  ///
  /// @throw RegistryFailure
  LSTATUS Change(const std::function<LSTATUS(RegistryTree&)>& change);

 private:
  // What was read last. The open file keeps its identity from being given to a newer one.
  struct State {
    std::filesystem::path file;
    FileDescriptor descriptor;
    struct stat status {};
    std::shared_ptr<const RegistryTree> tree;
  };

  std::filesystem::path File() const;
  void Store(const std::filesystem::path& file, const RegistryTree& tree) const;

  const wchar_t* m_rootName;
  const char* m_fileName;
  std::mutex m_lock;
  State m_state;  // guarded by m_lock
};

}  // namespace cvars::platform
