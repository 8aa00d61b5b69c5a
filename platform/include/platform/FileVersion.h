#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>

#include "BasicTypes.h"
#include "Export.h"

namespace cvars::platform {

/// The fixed version of a module file: four numbers of 16 bits each, the most significant first.
struct FileVersion {
  DWORD mostSignificant;   ///< First number in the high word, second in the low word.
  DWORD leastSignificant;  ///< Third number in the high word, fourth in the low word.

  friend constexpr bool operator==(const FileVersion&, const FileVersion&) = default;
};

/// Reads the version of a module file: the version resource of a PE file of 32 or 64 bits, or the
/// note that cvars_set_version leaves in an ELF file. Content that is damaged, cut short or made
/// up reads as no version.
///
/// @param file  a path of this machine.
/// @return nothing when the file cannot be read or has no version.
CVARS_API std::optional<FileVersion> ReadFileVersion(const std::filesystem::path& file);

/// Reads the version of a module file whose bytes are in memory.
CVARS_API std::optional<FileVersion> ReadFileVersion(std::span<const std::byte> content);

}  // namespace cvars::platform
