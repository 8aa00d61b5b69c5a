#include "DriveFolder.h"

#include <string>

#include "platform/Home.h"
#include "platform/Registry.h"
#include "platform/Utf8.h"

namespace cvars::platform {

std::filesystem::path DriveFolder(char letter) {
  const wchar_t name[] = {static_cast<wchar_t>(letter - 'a' + 'A'), L'\0'};
  const std::wstring mapped =
      ReadRegistryText(HKEY_CURRENT_USER, L"SOFTWARE\\Vortana\\Drives", name);
  if (mapped.starts_with(L'/')) return ToUtf8(mapped);
  return HomeFolder() / (std::string("drive_") + letter);
}

}  // namespace cvars::platform
