#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "BasicTypes.h"
#include "Export.h"

struct HBITMAP__;
/// Handle of a bitmap; owned by whoever made it, ended by DeleteObject.
using HBITMAP = HBITMAP__*;

/// Description of a bitmap: rows from the top, each of `bmWidthBytes` bytes.
struct BITMAP {
  LONG bmType;        ///< 0
  LONG bmWidth;       ///< pixels
  LONG bmHeight;      ///< pixels
  LONG bmWidthBytes;  ///< bytes from one row to the next
  WORD bmPlanes;      ///< 1
  WORD bmBitsPixel;   ///< bits of a pixel: 16 or 32
  void* bmBits;       ///< the pixels; borrowed
};

inline constexpr UINT IMAGE_BITMAP = 0;
inline constexpr UINT IMAGE_ICON = 1;
inline constexpr UINT LR_DEFAULTCOLOR = 0x0;
inline constexpr UINT LR_LOADFROMFILE = 0x10;

/// The name that stands for a resource number, for LoadImage.
inline const wchar_t* MAKEINTRESOURCE(WORD id) noexcept {
  return reinterpret_cast<const wchar_t*>(static_cast<std::uintptr_t>(id));
}

/// Loads a bitmap from a module's resources, or with LR_LOADFROMFILE from a BMP file.
///
/// Files of 1, 4, 8, 16, 24 and 32 bits are read, run-length coded ones too, with rows from the
/// bottom or from the top; the bitmap has 32 bits a pixel, blue first.
///
/// @param module  null is the executable; not used for a file.
/// @param name    MAKEINTRESOURCE(id), or a path of the platform; borrowed.
/// @param kind    IMAGE_BITMAP.
/// @param width   0, the size of the image; other sizes are not made. `height` likewise.
/// @return caller deletes; null when there is no such image or it is damaged
CVARS_API HANDLE LoadImage(HINSTANCE module, const wchar_t* name, UINT kind, int width, int height,
                           UINT flags);
/// Copies a bitmap. @param width  0, the size of the bitmap; `height` likewise.
/// @return caller deletes; null for what is no bitmap
CVARS_API HANDLE CopyImage(HANDLE image, UINT kind, int width, int height, UINT flags);
/// Makes a bitmap of 16 or 32 bits a pixel and copies its pixels.
/// @return caller deletes; null for a description that cannot be
CVARS_API HBITMAP CreateBitmapIndirect(const BITMAP* description);
/// Ends a bitmap. @return 0 for what is no bitmap
CVARS_API int DeleteObject(HANDLE object);
/// Describes a bitmap; `bmBits` is borrowed and lives as long as the bitmap.
/// @param size  bytes at description. @return bytes written, 0 for what is no bitmap
CVARS_API int GetObject(HANDLE object, int size, void* description);

namespace cvars::platform {

/// Reads a bitmap file from memory. @return caller deletes; null when it is damaged
CVARS_API HBITMAP BitmapFromFileBytes(std::span<const std::byte> bytes);
/// Writes a bitmap as a BMP file of 32 bits a pixel, rows from the bottom.
/// @return empty for what is no bitmap
CVARS_API std::vector<std::byte> BitmapFileBytes(HBITMAP bitmap);

}  // namespace cvars::platform
