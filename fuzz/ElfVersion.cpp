// The version note of ELF files. Every input gets the signature, so that all of it is read.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/FileVersion.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr std::uint8_t kSignature[] = {0x7F, 'E', 'L', 'F'};
  std::vector<std::uint8_t> content(data, data + size);
  if (content.size() >= sizeof(kSignature)) {
    std::copy(std::begin(kSignature), std::end(kSignature), content.begin());
  }
  (void)cvars::platform::ReadFileVersion(std::as_bytes(std::span(content)));
  return 0;
}
