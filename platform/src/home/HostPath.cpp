#include "platform/HostPath.h"

#include <string>
#include <system_error>
#include <vector>

#include "DriveFolder.h"
#include "platform/Home.h"
#include "platform/Utf8.h"

namespace cvars::platform {
namespace {

bool IsSeparator(wchar_t character) { return character == L'\\' || character == L'/'; }

// The folders and the name of a path within its drive, with ".." kept inside.
std::vector<std::wstring_view> NamesWithinDrive(std::wstring_view rest) {
  std::vector<std::wstring_view> names;
  while (!rest.empty()) {
    const std::size_t end = rest.find_first_of(L"\\/");
    const std::wstring_view name = rest.substr(0, end);
    if (name == L"..") {
      if (!names.empty()) names.pop_back();
    } else if (!name.empty() && name != L".") {
      names.push_back(name);
    }
    rest.remove_prefix(end == std::wstring_view::npos ? rest.size() : end + 1);
  }
  return names;
}

void MakeStandardDrives() {
  const std::filesystem::path home = HomeFolder();
  std::error_code ignored;  // A home that cannot be made shows at the first use of a file.
  std::filesystem::create_directories(home / "drive_c", ignored);
  std::filesystem::create_directories(home / "drive_d", ignored);
}

}  // namespace

char DriveLetter(std::wstring_view path) {
  if (path.size() < 2 || path[1] != L':') return '\0';
  if (path[0] >= L'A' && path[0] <= L'Z') return static_cast<char>(path[0] - L'A' + L'a');
  if (path[0] >= L'a' && path[0] <= L'z') return static_cast<char>(path[0]);
  return '\0';
}

std::filesystem::path HostPath(std::wstring_view path) {
  MakeStandardDrives();
  const char letter = DriveLetter(path);
  if (letter == '\0') {
    std::wstring slashed(path);
    for (wchar_t& character : slashed) {
      if (IsSeparator(character)) character = L'/';
    }
    return ToUtf8(slashed);
  }
  std::filesystem::path host = DriveFolder(letter);
  for (const std::wstring_view name : NamesWithinDrive(path.substr(2))) host /= ToUtf8(name);
  return host;
}

}  // namespace cvars::platform
