#pragma once

#include <cstddef>
#include <cstdint>

#include "Export.h"
#include "platform/Modules.h"

namespace cvars::platform {

/// One resource of a module.
struct ResourceEntry {
  ResourceKind kind;
  std::uint32_t id;
  const void* data;
  std::size_t size;  ///< In bytes; of texts without their terminator.
};

/// The resources of a module, sorted by kind and identifier.
struct ResourceTable {
  std::size_t count;
  const ResourceEntry* entries;
};

}  // namespace cvars::platform

/// The table that the CMake function cvars_add_resources compiles into a module.
extern "C" CVARS_API const cvars::platform::ResourceTable cvars_module_resources;
