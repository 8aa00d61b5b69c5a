#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <type_traits>

namespace cvars::platform {

/// The bytes of a module file, wherever they are. Every read is checked against the end.
class ModuleBytes {
 public:
  /// Copies `target.size()` bytes from `offset`.
  /// @return false when they do not all exist.
  virtual bool Read(std::uint64_t offset, std::span<std::byte> target) const = 0;

  /// Reads a number or a plain structure of little-endian numbers.
  template <typename T>
  std::optional<T> ReadAt(std::uint64_t offset) const {
    static_assert(std::is_trivially_copyable_v<T>);
    T value;
    if (!Read(offset, std::as_writable_bytes(std::span(&value, 1)))) return std::nullopt;
    return value;
  }

 protected:
  ~ModuleBytes() = default;
};

}  // namespace cvars::platform
