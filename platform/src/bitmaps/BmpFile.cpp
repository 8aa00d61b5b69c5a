// BMP files: a file header, an information header of one of several sizes, masks or colours,
// pixels.

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>

#include "bitmaps/PixelImage.h"

namespace cvars::platform {
namespace {

constexpr std::size_t kFileHeaderBytes = 14;
constexpr std::uint32_t kCoreHeaderBytes = 12;
constexpr std::uint32_t kInfoHeaderBytes = 40;
constexpr std::uint32_t kLargestHeaderBytes = 124;
constexpr std::uint32_t kUncompressed = 0;
constexpr std::uint32_t kRunLength8 = 1;
constexpr std::uint32_t kRunLength4 = 2;
constexpr std::uint32_t kBitFields = 3;
constexpr std::uint32_t kAlphaBitFields = 6;
// More than any panel shows; keeps a few bytes of a file from asking for gigabytes.
constexpr std::int64_t kMostPixels = std::int64_t{1} << 26;
constexpr std::size_t kPixelBytes = 4;

// Reads little-endian numbers; behind the end of the file everything is 0 and `Good` is false.
class Reader {
 public:
  explicit Reader(std::span<const std::byte> bytes) noexcept : m_bytes(bytes) {}

  std::uint8_t Byte(std::size_t at) noexcept {
    if (at >= m_bytes.size()) {
      m_good = false;
      return 0;
    }
    return std::to_integer<std::uint8_t>(m_bytes[at]);
  }
  std::uint16_t Word(std::size_t at) noexcept {
    return static_cast<std::uint16_t>(Byte(at) | (Byte(at + 1) << 8));
  }
  std::uint32_t Dword(std::size_t at) noexcept {
    return Word(at) | (static_cast<std::uint32_t>(Word(at + 2)) << 16);
  }
  bool Good() const noexcept { return m_good; }
  std::size_t Size() const noexcept { return m_bytes.size(); }

 private:
  std::span<const std::byte> m_bytes;
  bool m_good = true;
};

// One colour of a pixel of 16 or 32 bits.
struct Channel {
  std::uint32_t mask = 0;

  std::uint8_t Of(std::uint32_t pixel) const noexcept {
    if (mask == 0) return 0;
    const int shift = std::countr_zero(mask);
    const std::uint32_t largest = mask >> shift;
    const std::uint32_t value = (pixel & mask) >> shift;
    return static_cast<std::uint8_t>(std::uint64_t{value} * 255 / largest);
  }
};

struct Layout {
  std::int32_t width = 0;
  std::int32_t height = 0;
  bool fromTop = false;
  std::uint16_t bits = 0;
  std::uint32_t compression = kUncompressed;
  std::size_t paletteAt = 0;
  std::size_t paletteEntryBytes = 4;
  std::uint32_t colours = 0;
  std::size_t pixelsAt = 0;
  Channel red, green, blue;
};

bool ReadLayout(Reader& reader, Layout& layout) {
  if (reader.Byte(0) != 'B' || reader.Byte(1) != 'M') return false;
  layout.pixelsAt = reader.Dword(10);
  const std::uint32_t headerBytes = reader.Dword(14);
  std::size_t at = kFileHeaderBytes;
  if (headerBytes == kCoreHeaderBytes) {
    layout.width = reader.Word(at + 4);
    layout.height = reader.Word(at + 6);
    layout.bits = reader.Word(at + 10);
    layout.paletteEntryBytes = 3;
  } else if (headerBytes >= kInfoHeaderBytes && headerBytes <= kLargestHeaderBytes) {
    layout.width = static_cast<std::int32_t>(reader.Dword(at + 4));
    const auto height = static_cast<std::int32_t>(reader.Dword(at + 8));
    if (height == INT32_MIN) return false;
    layout.fromTop = height < 0;
    layout.height = layout.fromTop ? -height : height;
    layout.bits = reader.Word(at + 14);
    layout.compression = reader.Dword(at + 16);
    // Deeper images may name colours too, for screens that have few; they are not needed to read
    // it.
    if (layout.bits <= 8) layout.colours = reader.Dword(at + 32);
  } else {
    return false;
  }
  if (!reader.Good() || layout.width <= 0 || layout.height <= 0 ||
      std::int64_t{layout.width} * layout.height > kMostPixels) {
    return false;
  }

  const std::size_t masksAt = at + kInfoHeaderBytes;
  layout.paletteAt = at + headerBytes;
  const bool hasMasks = layout.compression == kBitFields || layout.compression == kAlphaBitFields;
  switch (layout.bits) {
    case 1:
    case 4:
    case 8: {
      const bool runs = (layout.bits == 8 && layout.compression == kRunLength8) ||
                        (layout.bits == 4 && layout.compression == kRunLength4);
      if (layout.compression != kUncompressed && !runs) return false;
      if (runs && layout.fromTop) return false;
      const std::uint32_t most = 1u << layout.bits;
      if (layout.colours == 0 || layout.colours > most) layout.colours = most;
      return true;
    }
    case 24:
      return layout.compression == kUncompressed;
    case 16:
    case 32:
      if (hasMasks) {
        // Masks stand in the larger headers, or right behind the smallest.
        layout.red.mask = reader.Dword(masksAt);
        layout.green.mask = reader.Dword(masksAt + 4);
        layout.blue.mask = reader.Dword(masksAt + 8);
      } else if (layout.compression != kUncompressed) {
        return false;
      } else if (layout.bits == 16) {
        layout.red.mask = 0x7C00;
        layout.green.mask = 0x03E0;
        layout.blue.mask = 0x001F;
      } else {
        layout.red.mask = 0x00FF0000;
        layout.green.mask = 0x0000FF00;
        layout.blue.mask = 0x000000FF;
      }
      return reader.Good();
    default:
      return false;
  }
}

// Sets pixels of the image under construction, by their place in the file.
class Canvas {
 public:
  Canvas(PixelImage& image, bool fromTop) noexcept : m_image(image), m_fromTop(fromTop) {}

  void Set(std::int32_t x, std::int32_t row, std::uint8_t red, std::uint8_t green,
           std::uint8_t blue) noexcept {
    if (x < 0 || x >= m_image.width || row < 0 || row >= m_image.height) return;
    const std::int32_t y = m_fromTop ? row : m_image.height - 1 - row;
    std::byte* const pixel = m_image.pixels.data() +
                             static_cast<std::size_t>(y) * m_image.RowBytes() +
                             static_cast<std::size_t>(x) * kPixelBytes;
    pixel[0] = std::byte{blue};
    pixel[1] = std::byte{green};
    pixel[2] = std::byte{red};
    pixel[3] = std::byte{0xFF};
  }

 private:
  PixelImage& m_image;
  bool m_fromTop;
};

struct Colour {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
};

class Palette {
 public:
  Palette(Reader& reader, const Layout& layout) {
    for (std::uint32_t i = 0; i < layout.colours; ++i) {
      const std::size_t at = layout.paletteAt + i * layout.paletteEntryBytes;
      m_colours[i] = {reader.Byte(at + 2), reader.Byte(at + 1), reader.Byte(at)};
    }
  }
  // An index without a colour is black.
  const Colour& operator[](std::uint8_t index) const noexcept { return m_colours[index]; }

 private:
  std::array<Colour, 256> m_colours{};
};

bool ReadRows(Reader& reader, const Layout& layout, Canvas& canvas) {
  const std::size_t rowBytes = (static_cast<std::size_t>(layout.width) * layout.bits + 31) / 32 * 4;
  if (layout.pixelsAt > reader.Size() ||
      (reader.Size() - layout.pixelsAt) / rowBytes < static_cast<std::size_t>(layout.height)) {
    return false;
  }
  const Palette palette(reader, layout);
  for (std::int32_t row = 0; row < layout.height; ++row) {
    const std::size_t start = layout.pixelsAt + static_cast<std::size_t>(row) * rowBytes;
    for (std::int32_t x = 0; x < layout.width; ++x) {
      const auto column = static_cast<std::size_t>(x);
      if (layout.bits <= 8) {
        const std::size_t bit = column * layout.bits;
        const unsigned shift = 8u - layout.bits - static_cast<unsigned>(bit % 8);
        const unsigned index = (reader.Byte(start + bit / 8) >> shift) & ((1u << layout.bits) - 1);
        const Colour& colour = palette[static_cast<std::uint8_t>(index)];
        canvas.Set(x, row, colour.red, colour.green, colour.blue);
      } else if (layout.bits == 24) {
        const std::size_t at = start + column * 3;
        canvas.Set(x, row, reader.Byte(at + 2), reader.Byte(at + 1), reader.Byte(at));
      } else {
        const std::uint32_t pixel =
            layout.bits == 16 ? reader.Word(start + column * 2) : reader.Dword(start + column * 4);
        canvas.Set(x, row, layout.red.Of(pixel), layout.green.Of(pixel), layout.blue.Of(pixel));
      }
    }
  }
  return reader.Good();
}

// Runs of equal pixels, and escapes: 0 ends the row, 1 the image, 2 moves, more are pixels as such.
bool ReadRuns(Reader& reader, const Layout& layout, Canvas& canvas) {
  const Palette palette(reader, layout);
  const bool nibbles = layout.bits == 4;
  const auto set = [&](std::int32_t x, std::int32_t row, std::uint8_t value, unsigned nth) {
    const std::uint8_t index =
        !nibbles ? value : static_cast<std::uint8_t>(nth % 2 == 0 ? value >> 4 : value & 0xF);
    const Colour& colour = palette[index];
    canvas.Set(x, row, colour.red, colour.green, colour.blue);
  };
  std::size_t at = layout.pixelsAt;
  std::int32_t x = 0;
  std::int32_t row = 0;
  while (reader.Good() && row < layout.height) {
    const unsigned count = reader.Byte(at);
    const std::uint8_t value = reader.Byte(at + 1);
    at += 2;
    if (count != 0) {
      for (unsigned i = 0; i < count; ++i) set(x++, row, value, i);
    } else if (value == 0) {
      x = 0;
      ++row;
    } else if (value == 1) {
      return reader.Good();
    } else if (value == 2) {
      x += reader.Byte(at);
      row += reader.Byte(at + 1);
      at += 2;
    } else {
      for (unsigned i = 0; i < value; ++i) {
        set(x++, row, reader.Byte(at + (nibbles ? i / 2 : i)), i);
      }
      const std::size_t bytes = nibbles ? (value + 1u) / 2 : value;
      at += bytes + bytes % 2;
    }
    // A damaged file may go on to the right without end.
    if (x > layout.width) x = layout.width;
  }
  return reader.Good();
}

void PutDword(std::vector<std::byte>& bytes, std::size_t at, std::uint32_t value) {
  for (unsigned i = 0; i < 4; ++i) bytes[at + i] = static_cast<std::byte>(value >> (8 * i));
}

}  // namespace

std::optional<PixelImage> DecodeBmp(std::span<const std::byte> file) {
  Reader reader(file);
  Layout layout;
  if (!ReadLayout(reader, layout)) return std::nullopt;
  PixelImage image;
  image.width = layout.width;
  image.height = layout.height;
  try {
    image.pixels.resize(image.RowBytes() * static_cast<std::size_t>(image.height));
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  }
  Canvas canvas(image, layout.fromTop);
  const bool runs = layout.compression == kRunLength8 || layout.compression == kRunLength4;
  const bool read = runs ? ReadRuns(reader, layout, canvas) : ReadRows(reader, layout, canvas);
  if (!read) return std::nullopt;
  return image;
}

std::vector<std::byte> EncodeBmp(const PixelImage& image) {
  constexpr std::size_t kHeaders = kFileHeaderBytes + kInfoHeaderBytes;
  const auto width = static_cast<std::size_t>(image.width);
  const auto height = static_cast<std::size_t>(image.height);
  std::vector<std::byte> bytes(kHeaders + width * height * kPixelBytes);
  bytes[0] = std::byte{'B'};
  bytes[1] = std::byte{'M'};
  PutDword(bytes, 2, static_cast<std::uint32_t>(bytes.size()));
  PutDword(bytes, 10, kHeaders);
  PutDword(bytes, 14, kInfoHeaderBytes);
  PutDword(bytes, 18, static_cast<std::uint32_t>(image.width));
  PutDword(bytes, 22, static_cast<std::uint32_t>(image.height));
  PutDword(bytes, 26, 1u | (32u << 16));
  PutDword(bytes, 34, static_cast<std::uint32_t>(width * height * kPixelBytes));
  const Channel red{0x7C00};
  const Channel green{0x03E0};
  const Channel blue{0x001F};
  for (std::size_t y = 0; y < height; ++y) {
    std::byte* out = bytes.data() + kHeaders + (height - 1 - y) * width * kPixelBytes;
    const std::byte* in = image.pixels.data() + y * image.RowBytes();
    if (image.bitsPerPixel == 32) {
      std::memcpy(out, in, width * kPixelBytes);
      continue;
    }
    for (std::size_t x = 0; x < width; ++x, in += 2, out += kPixelBytes) {
      const std::uint32_t pixel =
          std::to_integer<std::uint32_t>(in[0]) | (std::to_integer<std::uint32_t>(in[1]) << 8);
      out[0] = std::byte{blue.Of(pixel)};
      out[1] = std::byte{green.Of(pixel)};
      out[2] = std::byte{red.Of(pixel)};
      out[3] = std::byte{0xFF};
    }
  }
  return bytes;
}

}  // namespace cvars::platform
