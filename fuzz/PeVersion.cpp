// The version resource of PE files.

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/FileVersion.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  (void)cvars::platform::ReadFileVersion(std::as_bytes(std::span(data, size)));
  return 0;
}
