#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>

#include "BasicTypes.h"

struct link_map;

namespace cvars::platform {

/// A loaded shared object or the executable.
struct Module {
  void* library = nullptr;          ///< As dlopen gave it.
  const link_map* image = nullptr;  ///< What the dynamic loader knows it by.
  std::filesystem::path file;
  ULONG uses = 0;  ///< By LoadLibrary.
};

/// The modules that have handles: small positive numbers that are never used again.
class ModuleTable {
 public:
  static ModuleTable& Instance();

  /// Loads a file and counts a use; null when it cannot be loaded.
  HMODULE Load(const std::filesystem::path& file);
  /// Gives the handle of a file that is loaded, null when it is not.
  HMODULE Find(const std::filesystem::path& file);
  HMODULE FindAddress(const void* address);
  HMODULE Executable();
  bool Free(HMODULE handle);
  /// @param handle  null is the executable.
  std::optional<Module> Get(HMODULE handle);

 private:
  // Gives the number of an open library; the reference of `library` goes to the table or back.
  HMODULE Enter(void* library, ULONG uses);

  std::mutex m_lock;
  std::map<std::uintptr_t, Module> m_modules;  // guarded by m_lock
  std::uintptr_t m_last = 0;                   // guarded by m_lock
};

/// Gives the file that a name alone means to the loader; empty when there is none.
std::filesystem::path SearchModule(const std::filesystem::path& name);

}  // namespace cvars::platform
