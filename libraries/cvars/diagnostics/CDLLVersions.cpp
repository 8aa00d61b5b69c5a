#include "CDLLVersions.h"

#include <new>
#include <string>

#include "CComBSTR.h"
#include "platform/FileVersion.h"
#include "platform/HostPath.h"

namespace {

constexpr ULONG HighWord(ULONG words) { return words >> 16; }
constexpr ULONG LowByte(ULONG words) { return words & 0xFF; }

ULONG PackedNumber(const cvars::platform::FileVersion& version) {
  ULONG number = LowByte(HighWord(version.mostSignificant));
  number = number * 100 + LowByte(version.mostSignificant);
  number = number * 100 + LowByte(HighWord(version.leastSignificant));
  return number * 100 + LowByte(version.leastSignificant);
}

// The second and fourth part lose their high byte, which is meant: texts that are compared with
// others made so must not change.
std::wstring VersionText(const cvars::platform::FileVersion& version) {
  return std::to_wstring(HighWord(version.mostSignificant)) + L'.' +
         std::to_wstring(LowByte(version.mostSignificant)) + L'.' +
         std::to_wstring(HighWord(version.leastSignificant)) + L'.' +
         std::to_wstring(LowByte(version.leastSignificant));
}

}  // namespace

CDLLVersions::CDLLVersions() = default;
CDLLVersions::~CDLLVersions() = default;

bool CDLLVersions::RetrieveFileVersion(const wchar_t* path, ULONG* packedNumber,
                                       BSTR* versionText) {
  const cvars::TattlerProbe probe(m_client, L"CDLLVersions::RetrieveFileVersion",
                                  static_cast<ULONG>(reinterpret_cast<std::uintptr_t>(this)), 0,
                                  nullptr);
  if (packedNumber == nullptr || versionText == nullptr) return false;
  *packedNumber = 0;
  *versionText = nullptr;
  std::optional<cvars::platform::FileVersion> version;
  if (path != nullptr && *path != L'\0') {
    version = cvars::platform::ReadFileVersion(cvars::platform::HostPath(path));
  }
  CComBSTR text(version ? VersionText(*version).c_str() : L"");
  *versionText = text.Detach();
  if (!version) return false;
  *packedNumber = PackedNumber(*version);
  return true;
}

namespace cvars {

CDLLVersions& ProcessDllVersions() {
  static CDLLVersions versions;
  return versions;
}

}  // namespace cvars
