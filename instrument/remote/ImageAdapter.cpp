// Pictures: a query answers with a BMP file as a block; a block or the name of a file loads one.

#include <span>
#include <string>
#include <vector>

#include "Cvars.h"
#include "instrument/remote/CvarAdapters.h"
#include "instrument/remote/WireText.h"

namespace cvars::remote {
namespace {

class PictureAdapter final : public CvarAdapter {
 protected:
  // A picture has no default.
  ScpiError SetParameter(IVorCvar& cvar, const Parameter& parameter) const override {
    HBITMAP bitmap = nullptr;
    if (parameter.kind == Parameter::Kind::kBlock) {
      bitmap = platform::BitmapFromFileBytes(std::as_bytes(std::span(parameter.text)));
    } else if (parameter.kind == Parameter::Kind::kString) {
      const std::wstring path = FromWire(Unquote(parameter.text));
      bitmap = static_cast<HBITMAP>(
          LoadImage(nullptr, path.c_str(), IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE));
    } else {
      return ScpiError::kDataTypeError;
    }
    // What cannot be read leaves the picture there is.
    if (bitmap == nullptr) return ScpiError::kIllegalParameterValue;
    const CComPtr<IVorCvarImage> image = ImageOf(cvar);
    if (image == nullptr) {
      DeleteObject(bitmap);
      return ScpiError::kExecutionError;
    }
    return ErrorOf(image->LoadFromHandle(bitmap));
  }

  ScpiError AppendValue(IVorCvar& cvar, std::string& answer) const override {
    const CComPtr<IVorCvarImage> image = ImageOf(cvar);
    HBITMAP bitmap = nullptr;
    if (image == nullptr || FAILED(image->GetBitmapHandle(&bitmap))) {
      return ScpiError::kExecutionError;
    }
    const std::vector<std::byte> file = platform::BitmapFileBytes(bitmap);
    AppendBlock({reinterpret_cast<const char*>(file.data()), file.size()}, answer);
    return ScpiError::kNone;
  }

 private:
  static CComPtr<IVorCvarImage> ImageOf(IVorCvar& cvar) {
    CComPtr<IVorCvarImage> image;
    (void)cvar.QueryInterface(IID_IVorCvarImage, reinterpret_cast<void**>(&image));
    return image;
  }
};

}  // namespace

const CvarAdapter& ImageAdapter() {
  static const PictureAdapter adapter;
  return adapter;
}

}  // namespace cvars::remote
