#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace cvars::platform {

/// Pixels in memory: rows from the top, without gaps between them.
struct PixelImage {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::uint16_t bitsPerPixel = 32;  ///< 16 or 32
  std::vector<std::byte> pixels;

  std::size_t RowBytes() const noexcept {
    return static_cast<std::size_t>(width) * (bitsPerPixel / 8u);
  }
};

/// Decodes a BMP file; nothing when it is damaged, or of a kind that is not known.
std::optional<PixelImage> DecodeBmp(std::span<const std::byte> file);

/// Encodes an image as a BMP file of 32 bits a pixel.
std::vector<std::byte> EncodeBmp(const PixelImage& image);

}  // namespace cvars::platform
