#include <vector>

#include "Cvars.h"
#include "instrument/model/Bags.h"

namespace cvars::model {
namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 240;
constexpr int kColumns = 10;
constexpr int kRows = 8;
constexpr WORD kBlack = 0;
constexpr WORD kGray = 0x2108;

// The empty graticule, 16 bits a pixel.
HBITMAP DrawGraticule() {
  std::vector<WORD> pixels(kWidth * kHeight, kBlack);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const bool onLine = x % (kWidth / kColumns) == 0 || y % (kHeight / kRows) == 0;
      if (onLine) pixels[static_cast<std::size_t>(y * kWidth + x)] = kGray;
    }
  }
  const BITMAP description = {0, kWidth, kHeight, kWidth * 2, 1, 16, pixels.data()};
  return CreateBitmapIndirect(&description);
}

}  // namespace

CComPtr<CCvarBag> MakeScreenBag() {
  CComPtr<CCvarBag> bag = CCvarBag::Create(L"Screen", nullptr);
  const auto image = CvarObject<CCvarImage>::Create();
  image->Initialize(L"Image", 0, CVARFLAGS(0), nullptr, 0, REPLICATE_VALUE | REPLICATE_REQUESTED);
  (void)image->LoadFromHandle(DrawGraticule());  // nobody listens yet
  (void)bag->Add(image);                         // a new cvar has no parent yet
  return bag;
}

}  // namespace cvars::model
