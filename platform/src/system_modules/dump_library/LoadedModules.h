#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "StoppedProcess.h"

namespace cvars::platform {

/// A program or library that a process has loaded.
struct LoadedModule {
  std::uint64_t base;
  std::uint64_t size;
  std::string path;
  std::vector<std::byte> buildId;  ///< Empty when the module has none.
};

/// Lists the modules of a process; the program itself comes first.
std::vector<LoadedModule> FindLoadedModules(const StoppedProcess& process);

}  // namespace cvars::platform
