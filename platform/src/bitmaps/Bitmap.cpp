#include "platform/Bitmap.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <mutex>
#include <new>
#include <stdexcept>
#include <unordered_map>

#include "bitmaps/PixelImage.h"
#include "platform/HostPath.h"
#include "platform/Modules.h"

using cvars::platform::PixelImage;

namespace {

// Every bitmap there is, so that a handle that is none does no harm.
class Bitmaps {
 public:
  static HBITMAP Add(PixelImage image) {
    auto owned = std::make_shared<PixelImage>(std::move(image));
    const auto handle = reinterpret_cast<HBITMAP>(owned.get());
    const std::lock_guard guard(s_lock);
    All().emplace(handle, std::move(owned));
    return handle;
  }
  static std::shared_ptr<PixelImage> Find(HANDLE handle) {
    const std::lock_guard guard(s_lock);
    const auto found = All().find(static_cast<HBITMAP>(handle));
    return found == All().end() ? nullptr : found->second;
  }
  static bool Remove(HANDLE handle) {
    const std::lock_guard guard(s_lock);
    return All().erase(static_cast<HBITMAP>(handle)) != 0;
  }

 private:
  // Never destroyed: cvars that go at the end of the process still delete their bitmaps.
  static std::unordered_map<HBITMAP, std::shared_ptr<PixelImage>>& All() {
    static auto& all = *new std::unordered_map<HBITMAP, std::shared_ptr<PixelImage>>;
    return all;
  }
  static inline constinit std::mutex s_lock;
};

std::vector<std::byte> ReadWholeFile(const std::filesystem::path& path) {
  std::vector<std::byte> bytes;
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  constexpr std::uintmax_t kLargestFile = std::uintmax_t{1} << 30;
  if (error || size > kLargestFile) return bytes;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             &std::fclose);
  if (file == nullptr) return bytes;
  bytes.resize(static_cast<std::size_t>(size));
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
  return bytes;
}

bool IsResourceNumber(const wchar_t* name) noexcept {
  return reinterpret_cast<std::uintptr_t>(name) <= 0xFFFF;
}

}  // namespace

HANDLE LoadImage(HINSTANCE module, const wchar_t* name, UINT kind, int width, int height,
                 UINT flags) {
  if (kind != IMAGE_BITMAP || width != 0 || height != 0) return nullptr;
  if ((flags & LR_LOADFROMFILE) != 0) {
    if (IsResourceNumber(name)) return nullptr;
    return cvars::platform::BitmapFromFileBytes(ReadWholeFile(cvars::platform::HostPath(name)));
  }
  if (!IsResourceNumber(name)) return nullptr;
  const auto id = static_cast<UINT>(reinterpret_cast<std::uintptr_t>(name));
  return cvars::platform::BitmapFromFileBytes(
      cvars::platform::FindModuleResource(module, cvars::platform::ResourceKind::kBitmap, id));
}

HANDLE CopyImage(HANDLE image, UINT kind, int width, int height, UINT) {
  const std::shared_ptr<PixelImage> source = Bitmaps::Find(image);
  if (source == nullptr || kind != IMAGE_BITMAP || width != 0 || height != 0) return nullptr;
  return Bitmaps::Add(*source);
}

HBITMAP CreateBitmapIndirect(const BITMAP* description) {
  if (description == nullptr || description->bmWidth < 1 || description->bmHeight < 1 ||
      description->bmPlanes != 1 || description->bmBits == nullptr ||
      (description->bmBitsPixel != 16 && description->bmBitsPixel != 32)) {
    return nullptr;
  }
  PixelImage image;
  image.width = description->bmWidth;
  image.height = description->bmHeight;
  image.bitsPerPixel = description->bmBitsPixel;
  if (description->bmWidthBytes < 0 ||
      static_cast<std::size_t>(description->bmWidthBytes) < image.RowBytes()) {
    return nullptr;
  }
  const auto rows = static_cast<std::size_t>(image.height);
  try {
    image.pixels.resize(image.RowBytes() * rows);
  } catch (const std::bad_alloc&) {
    return nullptr;
  } catch (const std::length_error&) {
    return nullptr;
  }
  for (std::size_t y = 0; y < rows; ++y) {
    std::memcpy(image.pixels.data() + y * image.RowBytes(),
                static_cast<const std::byte*>(description->bmBits) +
                    y * static_cast<std::size_t>(description->bmWidthBytes),
                image.RowBytes());
  }
  return Bitmaps::Add(std::move(image));
}

int DeleteObject(HANDLE object) { return Bitmaps::Remove(object) ? 1 : 0; }

int GetObject(HANDLE object, int size, void* description) {
  const std::shared_ptr<PixelImage> image = Bitmaps::Find(object);
  if (image == nullptr) return 0;
  if (description == nullptr) return sizeof(BITMAP);
  if (size < static_cast<int>(sizeof(BITMAP))) return 0;
  const BITMAP bitmap = {
      0, image->width,        image->height,       static_cast<LONG>(image->RowBytes()),
      1, image->bitsPerPixel, image->pixels.data()};
  std::memcpy(description, &bitmap, sizeof(bitmap));
  return sizeof(BITMAP);
}

namespace cvars::platform {

HBITMAP BitmapFromFileBytes(std::span<const std::byte> bytes) {
  std::optional<PixelImage> image = DecodeBmp(bytes);
  return image ? Bitmaps::Add(std::move(*image)) : nullptr;
}

std::vector<std::byte> BitmapFileBytes(HBITMAP bitmap) {
  const std::shared_ptr<PixelImage> image = Bitmaps::Find(bitmap);
  return image == nullptr ? std::vector<std::byte>() : EncodeBmp(*image);
}

}  // namespace cvars::platform
