#include "LockedDrive.h"

#include <mutex>
#include <vector>

#include "platform/Registry.h"

namespace cvars {
namespace {

constexpr wchar_t kKey[] = L"SOFTWARE\\Vortana\\Pelora";
constexpr wchar_t kValue[] = L"LockedDrive";

std::mutex g_lock;
std::wstring& Drive() {
  static std::wstring drive;  // guarded by g_lock
  return drive;
}

}  // namespace

void ReadLockedDrive() {
  HKEY key = nullptr;
  if (RegCreateKeyEx(HKEY_CURRENT_USER, kKey, 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, &key,
                     nullptr) == ERROR_SUCCESS) {
    RegCloseKey(key);
  }
  std::wstring drive = platform::ReadRegistryText(HKEY_CURRENT_USER, kKey, kValue);
  const std::lock_guard guard(g_lock);
  Drive() = std::move(drive);
}

std::wstring LockedDrive() {
  const std::lock_guard guard(g_lock);
  return Drive();
}

std::wstring OnDrive(std::wstring_view path, std::wstring_view drive) {
  const auto isLetter = [](wchar_t c) {
    return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z');
  };
  const bool hasDrive = path.size() >= 2 && path[1] == L':' && isLetter(path[0]);
  return std::wstring(drive) + std::wstring(hasDrive ? path.substr(2) : path);
}

}  // namespace cvars
