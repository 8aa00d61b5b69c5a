#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "RegistryHive.h"

namespace cvars::platform {

/// The classes that are installed on this machine: all `.reg` files of the component folder.
struct MachineClasses {
  RegistryTree tree;
  std::string damage;  ///< What is wrong with the files that were left out; empty when nothing.
};

/// Gives the folder of the platform library: the system folder of the loader.
const std::filesystem::path& SystemFolder();
/// Gives the folder of the installed components and of the files that register them.
const std::filesystem::path& ComponentFolder();

/// Gives the installed classes, read once per process.
const MachineClasses& InstalledClasses();

/// One of the predefined roots.
class RegistryRoot {
 public:
  /// @return null when the key is no predefined root.
  static RegistryRoot* Of(HKEY key);

  /// Gives what reading this root shows.
  ///
  /// @throw RegistryFailure
  virtual std::shared_ptr<const RegistryTree> View() = 0;
  /// Gives the part of the root that can be changed.
  RegistryHive& Hive() { return m_hive; }

 protected:
  RegistryRoot(const wchar_t* name, const char* fileName) : m_hive(name, fileName) {}
  ~RegistryRoot() = default;

 private:
  RegistryHive m_hive;
};

}  // namespace cvars::platform
