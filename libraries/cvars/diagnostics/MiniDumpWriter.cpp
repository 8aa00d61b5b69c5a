#include "MiniDumpWriter.h"

#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "CComBSTR.h"
#include "CDLLVersions.h"
#include "platform/Files.h"
#include "platform/HostPath.h"
#include "platform/LastError.h"
#include "platform/Modules.h"
#include "platform/Processes.h"
#include "platform/Utf8.h"
#include "platform/Volumes.h"

namespace cvars {
namespace {

constexpr wchar_t kLibraryName[] = L"DbgHelp.dll";
constexpr wchar_t kOldestVersion[] = L"5.1.2600.0";

bool EqualWithoutCase(const wchar_t* left, const wchar_t* right) {
  return VarBstrCmp(CComBSTR(left), CComBSTR(right), LOCALE_USER_DEFAULT, NORM_IGNORECASE) ==
         VARCMP_EQ;
}

std::wstring LogsFolder() {
  constexpr DWORD kLabelSize = 64;
  wchar_t label[kLabelSize] = {};
  const bool known =
      GetVolumeInformation(L"D:\\", label, kLabelSize, nullptr, nullptr, nullptr, nullptr, 0) != 0;
  return known && EqualWithoutCase(label, L"USERDATA") ? L"D:\\Logs"
                                                       : L"C:\\Vortana\\Quillon\\Logs";
}

std::wstring WithSeparator(std::wstring folder, wchar_t separator) {
  if (!folder.empty() && folder.back() != separator) folder += separator;
  return folder;
}

bool Exists(const std::wstring& path) {
  std::error_code ignored;  // what cannot be asked for counts as missing
  return std::filesystem::exists(platform::HostPath(path), ignored);
}

std::wstring ProgramFolder() {
  std::vector<wchar_t> path(4096);
  const DWORD length = GetModuleFileName(nullptr, path.data(), static_cast<DWORD>(path.size()));
  const std::wstring_view program(path.data(), length);
  const std::size_t separator = program.find_last_of(L"\\/");
  return separator == std::wstring_view::npos ? std::wstring()
                                              : std::wstring(program.substr(0, separator + 1));
}

std::wstring SystemFolder() {
  std::vector<wchar_t> path(4096);
  const UINT length = GetSystemDirectory(path.data(), static_cast<UINT>(path.size()));
  return WithSeparator(std::wstring(path.data(), length), L'/');
}

// Where the dump library may be, each with its separator, in the order of trying.
std::vector<std::wstring> CandidateFolders() {
  std::vector<std::wstring> folders = {ProgramFolder(), SystemFolder()};
  const char* variable = std::getenv("PATH");
  std::wstring_view rest;
  const std::wstring searchPath = platform::FromUtf8(variable != nullptr ? variable : "");
  rest = searchPath;
  while (!rest.empty()) {
    const std::size_t end = rest.find(L':');
    folders.push_back(WithSeparator(std::wstring(rest.substr(0, end)), L'/'));
    rest = end == std::wstring_view::npos ? std::wstring_view() : rest.substr(end + 1);
  }
  return folders;
}

bool IsNewEnough(const std::wstring& library) {
  ULONG packedNumber = 0;
  CComBSTR version;
  return ProcessDllVersions().RetrieveFileVersion(library.c_str(), &packedNumber, &version) &&
         VarBstrCmp(version, CComBSTR(kOldestVersion), LOCALE_USER_DEFAULT, NORM_IGNORECASE) !=
             VARCMP_LT;
}

HRESULT LastFailure() {
  const DWORD error = GetLastError();
  return error != ERROR_SUCCESS ? platform::ResultFromError(error) : E_FAIL;
}

}  // namespace

MiniDumpWriter::MiniDumpWriter(const wchar_t* baseName, const wchar_t* folder,
                               ULONG largestFileCount, ULONG dumpType)
    : m_baseName(baseName != nullptr ? baseName : L""),
      m_folder(folder != nullptr ? folder : L""),
      m_dumpType(dumpType),
      m_largestFileCount(largestFileCount) {
  if (EqualWithoutCase(m_folder.c_str(), L"%LOGS%")) m_folder = LogsFolder();
  m_folder = WithSeparator(std::move(m_folder), L'\\');
}

MiniDumpWriter::~MiniDumpWriter() {
  if (m_library != nullptr) FreeLibrary(m_library);
}

HRESULT MiniDumpWriter::TryLibrary(const std::wstring& path) {
  if (!Exists(path) || !IsNewEnough(path)) return E_FAIL;
  const HMODULE library = LoadLibrary(path.c_str());
  if (library == nullptr) return LastFailure();
  const FARPROC function = GetProcAddress(library, "MiniDumpWriteDump");
  if (function == nullptr) {
    const HRESULT failure = LastFailure();
    FreeLibrary(library);
    return failure;
  }
  m_library = library;
  m_writeDump = reinterpret_cast<MiniDumpWriteDumpFunction*>(function);
  return S_OK;
}

HRESULT MiniDumpWriter::LoadDumpLibrary() {
  if (m_writeDump != nullptr) return S_OK;
  HRESULT result = E_FAIL;
  for (const std::wstring& folder : CandidateFolders()) {
    const HRESULT tried = TryLibrary(folder + kLibraryName);
    if (tried == S_OK) return S_OK;
    if (tried != E_FAIL) result = tried;
  }
  return result;
}

std::wstring MiniDumpWriter::FreeFileName() const {
  const std::wstring start = (Exists(m_folder) ? m_folder : std::wstring()) + m_baseName;
  std::wstring name = start + L".dmp";
  for (ULONG number = 1; number < m_largestFileCount && Exists(name); ++number) {
    name = start + std::to_wstring(number) + L".dmp";
  }
  return name;
}

HRESULT MiniDumpWriter::WriteDump(EXCEPTION_POINTERS* exception, BSTR* path, HANDLE process,
                                  ULONG processId, ULONG threadId) {
  if (path == nullptr) return E_POINTER;
  *path = nullptr;
  const HRESULT loaded = LoadDumpLibrary();
  if (FAILED(loaded)) return loaded;
  const std::wstring name = FreeFileName();
  CComBSTR writtenPath(name.c_str());
  const HANDLE file = CreateFile(name.c_str(), GENERIC_WRITE, FILE_SHARE_WRITE, nullptr,
                                 CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return LastFailure();
  const MINIDUMP_EXCEPTION_INFORMATION information = {
      threadId != 0 ? threadId : GetCurrentThreadId(), exception, 0};
  const HANDLE dumped = process != nullptr ? process : GetCurrentProcess();
  const bool written =
      m_writeDump(dumped, processId != 0 ? processId : GetProcessId(dumped), file, m_dumpType,
                  exception != nullptr ? &information : nullptr, nullptr, nullptr) != 0;
  const HRESULT result = written ? S_OK : LastFailure();
  CloseHandle(file);
  if (written) *path = writtenPath.Detach();
  return result;
}

}  // namespace cvars
