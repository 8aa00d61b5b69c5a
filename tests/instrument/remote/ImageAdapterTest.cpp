#include <string>

#include "CCvarImage.h"
#include "CvarObject.h"
#include "tests/instrument/remote/SessionFixture.h"

namespace cvars::remote {
namespace {

class ImageAdapterTest : public SessionFixture {
 protected:
  ImageAdapterTest() {
    const auto image = CvarObject<CCvarImage>::Create();
    image->Initialize(L"Image", 0, CVARFLAGS(0), nullptr, 0, REPLICATE_VALUE);
    HBITMAP bitmap = nullptr;
    EXPECT_EQ(image->CreateBitmap(2, 1, &bitmap), S_OK);
    AddBag(L"Screen", {image});
  }

  // A BMP file of 2 x 1 pixels of 32 bits: 14 + 40 bytes of headers and 8 of pixels.
  static std::string FileOf(char blue) {
    std::string file("BM\x3e\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\x02\0\0\0\x01\0\0\0\x01\0\x20\0",
                     30);
    file += std::string(4, '\0') + std::string("\x08\0\0\0", 4) + std::string(16, '\0');
    for (int pixel = 0; pixel < 2; ++pixel) file += std::string({blue, 0, 0, '\xff'});
    return file;
  }
};

TEST_F(ImageAdapterTest, QueryAnswersWithABmpFileAsABlock) {
  EXPECT_EQ(Ask("SCREEN:IMAGE?"), "#262" + FileOf(0) + "\n");
}

TEST_F(ImageAdapterTest, BlockReplacesThePicture) {
  EXPECT_EQ(Ask("SCREEN:IMAGE #262" + FileOf('\x40') + ";IMAGE?"), "#262" + FileOf('\x40') + "\n");
  EXPECT_EQ(TakeError(), 0);
}

constexpr RefusedCase kRefusedCases[] = {
    {"SCREEN:IMAGE #15hello", -224}, {"SCREEN:IMAGE 'C:\\none.bmp'", -224},
    {"SCREEN:IMAGE 5", -104},        {"SCREEN:IMAGE word", -104},
    {"SCREEN:IMAGE DEF", -104},      {"SCREEN:IMAGE", -109},
    {"SCREEN:IMAGE? 1", -108},
};

TEST_F(ImageAdapterTest, RefusalsKeepThePicture) {
  ExpectRefusals(kRefusedCases, "SCREEN:IMAGE?", "#262" + FileOf(0) + "\n");
}

}  // namespace
}  // namespace cvars::remote
