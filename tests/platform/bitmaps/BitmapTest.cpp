#include "platform/Bitmap.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <vector>

#include "IsolatedHome.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

void Put16(Bytes& bytes, unsigned value) {
  bytes.push_back(static_cast<std::uint8_t>(value));
  bytes.push_back(static_cast<std::uint8_t>(value >> 8));
}
void Put32(Bytes& bytes, std::uint32_t value) {
  Put16(bytes, value & 0xFFFF);
  Put16(bytes, value >> 16);
}

struct BmpCase {
  const char* name;
  std::int32_t width, height;
  unsigned bits;
  std::uint32_t compression;
  Bytes masksAndPalette;
  std::uint32_t colours;
  Bytes pixels;
  std::vector<std::uint32_t> expected;  // 0xRRGGBB, rows from the top
};

Bytes FileOf(const BmpCase& row) {
  Bytes file = {'B', 'M'};
  Put32(file, 0);
  Put32(file, 0);
  Put32(file, static_cast<std::uint32_t>(54 + row.masksAndPalette.size()));
  Put32(file, 40);
  Put32(file, static_cast<std::uint32_t>(row.width));
  Put32(file, static_cast<std::uint32_t>(row.height));
  Put16(file, 1);
  Put16(file, row.bits);
  Put32(file, row.compression);
  Put32(file, 0);
  Put32(file, 0);
  Put32(file, 0);
  Put32(file, row.colours);
  Put32(file, 0);
  file.insert(file.end(), row.masksAndPalette.begin(), row.masksAndPalette.end());
  file.insert(file.end(), row.pixels.begin(), row.pixels.end());
  return file;
}

std::vector<std::uint32_t> PixelsOf(HBITMAP bitmap) {
  BITMAP description = {};
  EXPECT_EQ(GetObject(bitmap, sizeof(description), &description), int{sizeof(BITMAP)});
  EXPECT_EQ(description.bmBitsPixel, 32);
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(description.bmWidth) *
                                    static_cast<std::size_t>(description.bmHeight));
  std::memcpy(pixels.data(), description.bmBits, pixels.size() * 4);
  for (std::uint32_t& pixel : pixels) pixel &= 0xFFFFFF;
  return pixels;
}

// Black, white, red, green as blue-green-red-zero.
const Bytes kPalette = {0, 0, 0, 0, 255, 255, 255, 0, 0, 0, 255, 0, 0, 255, 0, 0};
constexpr std::uint32_t kBlack = 0x000000, kWhite = 0xFFFFFF, kRed = 0xFF0000, kGreen = 0x00FF00,
                        kBlue = 0x0000FF;

const BmpCase kCases[] = {
    {"OneBit",
     2,
     2,
     1,
     0,
     kPalette,
     2,
     {0x40, 0, 0, 0, 0x80, 0, 0, 0},
     {kWhite, kBlack, kBlack, kWhite}},
    {"FourBits", 3, 1, 4, 0, kPalette, 4, {0x12, 0x30, 0, 0}, {kWhite, kRed, kGreen}},
    {"EightBits",
     2,
     2,
     8,
     0,
     kPalette,
     4,
     {0, 1, 0, 0, 2, 3, 0, 0},
     {kRed, kGreen, kBlack, kWhite}},
    {"SixteenBits",
     2,
     2,
     16,
     0,
     {},
     0,
     {0x00, 0x7C, 0xE0, 0x03, 0x1F, 0x00, 0xFF, 0x7F},
     {kBlue, kWhite, kRed, kGreen}},
    {"SixteenBitsWithMasks",
     2,
     1,
     16,
     3,
     {0x00, 0xF8, 0, 0, 0xE0, 0x07, 0, 0, 0x1F, 0, 0, 0},
     0,
     {0x00, 0xF8, 0xE0, 0x07},
     {kRed, kGreen}},
    {"TwentyFourBits",
     2,
     2,
     24,
     0,
     {},
     0,
     {255, 0, 0, 0, 255, 0, 0, 0, 0, 0, 255, 255, 255, 255, 0, 0},
     {kRed, kWhite, kBlue, kGreen}},
    {"ThirtyTwoBits", 1, 2, 32, 0, {}, 0, {255, 0, 0, 0, 0, 0, 255, 9}, {kRed, kBlue}},
    {"ColoursOfADeepImageAreNotRead", 1, 1, 32, 0, {}, 100000, {255, 0, 0, 0}, {kBlue}},
    {"RowsFromTheTop", 1, -2, 32, 0, {}, 0, {255, 0, 0, 0, 0, 0, 255, 0}, {kBlue, kRed}},
    {"RunLength8",
     2,
     2,
     8,
     1,
     kPalette,
     4,
     {2, 1, 0, 0, 1, 2, 1, 3, 0, 1},
     {kRed, kGreen, kWhite, kWhite}},
    {"RunLength8WithPixelsAndMoves",
     3,
     2,
     8,
     1,
     kPalette,
     4,
     {0, 3, 1, 2, 3, 0, 0, 0, 0, 2, 1, 0, 1, 3, 0, 1},
     {kBlack, kGreen, kBlack, kWhite, kRed, kGreen}},
    {"RunLength4", 3, 1, 4, 2, kPalette, 4, {3, 0x12, 0, 1}, {kWhite, kRed, kWhite}},
    {"RunLength4WithPixels",
     3,
     1,
     4,
     2,
     kPalette,
     4,
     {0, 3, 0x12, 0x30, 0, 1},
     {kWhite, kRed, kGreen}},
    {"RunBeyondTheRowIsCut", 2, 1, 8, 1, kPalette, 4, {9, 1, 0, 1}, {kWhite, kWhite}},
    {"IndexWithoutAColourIsBlack", 1, 1, 8, 0, kPalette, 4, {200, 0, 0, 0}, {kBlack}},
};

TEST(BitmapFile, IsReadForEveryDepth) {
  for (const BmpCase& row : kCases) {
    SCOPED_TRACE(row.name);
    const Bytes file = FileOf(row);
    const HBITMAP bitmap = cvars::platform::BitmapFromFileBytes(std::as_bytes(std::span(file)));
    ASSERT_NE(bitmap, nullptr);
    EXPECT_EQ(PixelsOf(bitmap), row.expected);
    EXPECT_EQ(DeleteObject(bitmap), 1);
  }
}

TEST(BitmapFile, EveryTruncationGivesNoBitmapOrReadsNothingBeyond) {
  for (const BmpCase& row : kCases) {
    SCOPED_TRACE(row.name);
    const Bytes file = FileOf(row);
    const std::size_t headers = 54 + row.masksAndPalette.size();
    for (std::size_t length = 0; length < file.size(); ++length) {
      const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
      const HBITMAP bitmap = cvars::platform::BitmapFromFileBytes(std::as_bytes(std::span(cut)));
      if (length <= headers) {
        EXPECT_EQ(bitmap, nullptr) << length;
      }
      DeleteObject(bitmap);
    }
  }
}

struct DamageCase {
  const char* name;
  std::size_t at;
  std::uint8_t value;
};
constexpr DamageCase kDamages[] = {
    {"Signature", 0, 'X'},   {"HeaderSize", 14, 39},        {"ZeroWidth", 18, 0},
    {"HugeWidth", 21, 0x7F}, {"NegativeWidth", 21, 0x80},   {"Depth", 28, 5},
    {"Compression", 30, 9},  {"PixelsBehindTheEnd", 13, 1},
};

TEST(BitmapFile, DamageGivesNoBitmap) {
  for (const DamageCase& damage : kDamages) {
    SCOPED_TRACE(damage.name);
    Bytes file = FileOf(kCases[6]);  // 32 bits, 1 x 2
    file[damage.at] = damage.value;
    EXPECT_EQ(cvars::platform::BitmapFromFileBytes(std::as_bytes(std::span(file))), nullptr);
  }
}

TEST(BitmapFile, IsLoadedByAPathOfThePlatform) {
  const cvars::test::IsolatedHome home;
  const Bytes file = FileOf(kCases[5]);
  const std::filesystem::path path =
      std::filesystem::temp_directory_path() / "cvars-bitmap-test.bmp";
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
  const std::wstring name = path.wstring();
  const auto bitmap =
      static_cast<HBITMAP>(LoadImage(nullptr, name.c_str(), IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE));
  std::filesystem::remove(path);
  ASSERT_NE(bitmap, nullptr);
  EXPECT_EQ(PixelsOf(bitmap), kCases[5].expected);
  EXPECT_EQ(DeleteObject(bitmap), 1);
  EXPECT_EQ(LoadImage(nullptr, name.c_str(), IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE), nullptr);
}

TEST(Bitmap, WrittenFileReadsBackTheSame) {
  const Bytes file = FileOf(kCases[2]);
  const HBITMAP bitmap = cvars::platform::BitmapFromFileBytes(std::as_bytes(std::span(file)));
  const std::vector<std::byte> written = cvars::platform::BitmapFileBytes(bitmap);
  const HBITMAP back = cvars::platform::BitmapFromFileBytes(written);
  EXPECT_EQ(PixelsOf(back), PixelsOf(bitmap));
  DeleteObject(bitmap);
  DeleteObject(back);
}

TEST(Bitmap, SixteenBitPixelsAreCopiedAndWritten) {
  WORD pixels[] = {0x7C00, 0x001F, 0x03E0, 0x7FFF};
  const BITMAP description = {0, 2, 2, 4, 1, 16, pixels};
  const HBITMAP bitmap = CreateBitmapIndirect(&description);
  ASSERT_NE(bitmap, nullptr);
  pixels[0] = 0;
  const HBITMAP back =
      cvars::platform::BitmapFromFileBytes(cvars::platform::BitmapFileBytes(bitmap));
  EXPECT_EQ(PixelsOf(back), (std::vector<std::uint32_t>{kRed, kBlue, kGreen, kWhite}));
  DeleteObject(bitmap);
  DeleteObject(back);
}

TEST(Bitmap, DescriptionsThatCannotBeGiveNone) {
  WORD pixel = 0;
  for (const BITMAP& description :
       {BITMAP{0, 0, 1, 2, 1, 16, &pixel}, BITMAP{0, 1, 0, 2, 1, 16, &pixel},
        BITMAP{0, 1, 1, 1, 1, 16, &pixel}, BITMAP{0, 1, 1, 2, 2, 16, &pixel},
        BITMAP{0, 1, 1, 2, 1, 8, &pixel}, BITMAP{0, 1, 1, 2, 1, 16, nullptr}}) {
    EXPECT_EQ(CreateBitmapIndirect(&description), nullptr);
  }
  EXPECT_EQ(CreateBitmapIndirect(nullptr), nullptr);
}

TEST(Bitmap, HandlesThatAreNoneDoNoHarm) {
  WORD pixel = 0;
  const BITMAP description = {0, 1, 1, 2, 1, 16, &pixel};
  const HBITMAP bitmap = CreateBitmapIndirect(&description);
  const auto copy = static_cast<HBITMAP>(CopyImage(bitmap, IMAGE_BITMAP, 0, 0, 0));
  EXPECT_NE(copy, nullptr);
  EXPECT_NE(copy, bitmap);
  EXPECT_EQ(DeleteObject(bitmap), 1);
  EXPECT_EQ(DeleteObject(bitmap), 0);
  EXPECT_EQ(DeleteObject(nullptr), 0);
  EXPECT_EQ(CopyImage(bitmap, IMAGE_BITMAP, 0, 0, 0), nullptr);
  BITMAP out = {};
  EXPECT_EQ(GetObject(bitmap, sizeof(out), &out), 0);
  EXPECT_EQ(GetObject(copy, 4, &out), 0);
  EXPECT_EQ(DeleteObject(copy), 1);
}

}  // namespace
