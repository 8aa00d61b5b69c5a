// The loader of bitmap files.

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/Bitmap.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  DeleteObject(cvars::platform::BitmapFromFileBytes(std::as_bytes(std::span(data, size))));
  return 0;
}
