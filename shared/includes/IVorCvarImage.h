#pragma once

#include "IVorCvar.h"

struct HBITMAP__;
using HBITMAP = HBITMAP__*;

/// {D2E6A7C4-5B19-4E0D-8C73-9F3B1A64C044}
inline constexpr IID IID_IVorCvarImage = {
    0xD2E6A7C4, 0x5B19, 0x4E0D, {0x8C, 0x73, 0x9F, 0x3B, 0x1A, 0x64, 0xC0, 0x44}};

/// A cvar that holds a bitmap, which it owns.
class CVARS_API IVorCvarImage : public IVorCvar {
 public:
  /// @param bitmap  receives the handle itself, borrowed; null when there is no bitmap.
  virtual HRESULT GetBitmapHandle(HBITMAP* bitmap) = 0;                      // 44
  virtual HRESULT LoadFromBitmapResource(unsigned int id) = 0;               // 45
  virtual HRESULT LoadFromFile(const wchar_t* path) = 0;                     // 46
  virtual HRESULT LoadFromHandle(HBITMAP bitmap) = 0;                        // 47
  virtual HRESULT CreateBitmap(int width, int height, HBITMAP* bitmap) = 0;  // 48

 protected:
  ~IVorCvarImage() = default;
};

template <>
struct cvars::InterfaceId<IVorCvarImage> {
  static constexpr IID value = IID_IVorCvarImage;
};
