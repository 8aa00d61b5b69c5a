#include "platform/Volumes.h"

#include <sys/statvfs.h>

#include <cwchar>
#include <filesystem>
#include <string>
#include <system_error>

#include "DriveFolder.h"
#include "platform/HostPath.h"
#include "platform/Registry.h"

namespace cvars::platform {
namespace {

constexpr wchar_t kLabels[] = L"SOFTWARE\\Vortana\\Volumes";
constexpr wchar_t kFileSystem[] = L"vortana";
constexpr std::size_t kLongestLabel = 32;
constexpr DWORD kNamesDifferByCase = 0x1;
constexpr DWORD kNamesKeepCase = 0x2;

// A drive that exists.
struct Volume {
  std::wstring name;  ///< Its letter, in upper case.
  std::filesystem::path folder;
};

bool Find(const wchar_t* root, Volume& volume) {
  const std::wstring path(root != nullptr ? root : L"C:");
  (void)HostPath(path);  // makes the standard drives
  const char letter = DriveLetter(path);
  std::error_code error;
  if (letter != '\0') volume.folder = DriveFolder(letter);
  if (letter == '\0' || !std::filesystem::is_directory(volume.folder, error)) {
    SetLastError(ERROR_PATH_NOT_FOUND);
    return false;
  }
  volume.name = static_cast<wchar_t>(letter - 'a' + 'A');
  return true;
}

bool Fits(std::wstring_view text, const wchar_t* buffer, DWORD size) {
  return buffer == nullptr || text.size() < size;
}

void CopyOut(const std::wstring& text, wchar_t* buffer) {
  if (buffer != nullptr) std::wmemcpy(buffer, text.c_str(), text.size() + 1);
}

}  // namespace
}  // namespace cvars::platform

using namespace cvars::platform;

int SetVolumeLabel(const wchar_t* root, const wchar_t* label) {
  Volume volume;
  if (!Find(root, volume)) return 0;
  const std::wstring text(label != nullptr ? label : L"");
  const LSTATUS result = text.size() > kLongestLabel ? static_cast<LSTATUS>(ERROR_INVALID_PARAMETER)
                                                     : WriteRegistryText(HKEY_CURRENT_USER, kLabels,
                                                                         volume.name.c_str(), text);
  if (result == static_cast<LSTATUS>(ERROR_SUCCESS)) return 1;
  SetLastError(static_cast<DWORD>(result));
  return 0;
}

int GetVolumeInformation(const wchar_t* root, wchar_t* label, DWORD labelSize, DWORD* serialNumber,
                         DWORD* longestName, DWORD* flags, wchar_t* fileSystem,
                         DWORD fileSystemSize) {
  Volume volume;
  if (!Find(root, volume)) return 0;
  const std::wstring text = ReadRegistryText(HKEY_CURRENT_USER, kLabels, volume.name.c_str());
  if (!Fits(text, label, labelSize) || !Fits(kFileSystem, fileSystem, fileSystemSize)) {
    SetLastError(ERROR_MORE_DATA);
    return 0;
  }
  struct statvfs status {};
  if (statvfs(volume.folder.c_str(), &status) != 0) {
    SetLastError(ERROR_PATH_NOT_FOUND);
    return 0;
  }
  CopyOut(text, label);
  CopyOut(kFileSystem, fileSystem);
  if (serialNumber != nullptr) *serialNumber = static_cast<DWORD>(status.f_fsid);
  if (longestName != nullptr) *longestName = static_cast<DWORD>(status.f_namemax);
  if (flags != nullptr) *flags = kNamesDifferByCase | kNamesKeepCase;
  return 1;
}
