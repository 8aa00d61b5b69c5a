#include "FatalErrorReport.h"

#include <string>
#include <string_view>

#include "CComBSTR.h"
#include "MiniDumpWriter.h"
#include "ProcessStatistics.h"
#include "platform/MessageBox.h"
#include "platform/Modules.h"
#include "platform/ProcessStatus.h"
#include "platform/Processes.h"

namespace cvars {
namespace {

constexpr wchar_t kCaption[] = L"FATAL ERROR";
constexpr wchar_t kQualityContact[] = L"software-quality@vortana.example";
constexpr ULONG kLargestDumpCount = 1000;

std::wstring Hexadecimal(HRESULT result) {
  constexpr wchar_t kDigits[] = L"0123456789abcdef";
  std::wstring text;
  auto pattern = static_cast<std::uint32_t>(result);
  do {
    text.insert(text.begin(), kDigits[pattern & 0xF]);
    pattern >>= 4;
  } while (pattern != 0);
  return text;
}

std::wstring WriteProcessDump() {
  MiniDumpWriter writer(L"VorMiniDump", L"%LOGS%", kLargestDumpCount,
                        MiniDumpWithProcessThreadData | MiniDumpWithIndirectlyReferencedMemory);
  CComBSTR path;
  // Without a dump the report goes on; its path is empty then.
  (void)writer.WriteDump(nullptr, &path, nullptr, 0, 0);
  return std::wstring(path.View());
}

std::size_t WorkingSetKilobytes() {
  constexpr int kWorkingSet = 2;
  return ProcessStatistics().MemoryCounter(0, kWorkingSet) >> 10;
}

// Counts 0 where the library or the function cannot be had.
struct InterfaceObjects {
  DWORD graphics = 0;
  DWORD windows = 0;
};

InterfaceObjects CountInterfaceObjects() {
  InterfaceObjects objects;
  const HMODULE library = LoadLibrary(L"user32.dll");
  if (library == nullptr) return objects;
  const auto count =
      reinterpret_cast<GetGuiResourcesFunction*>(GetProcAddress(library, "GetGuiResources"));
  if (count != nullptr) {
    objects.graphics = count(GetCurrentProcess(), GR_GDIOBJECTS);
    objects.windows = count(GetCurrentProcess(), GR_USEROBJECTS);
  }
  FreeLibrary(library);
  return objects;
}

std::wstring OrEmpty(const wchar_t* text) { return text != nullptr ? text : L""; }

void ShowFatalError(const std::wstring& text) {
  (void)MessageBox(nullptr, text.c_str(), kCaption, MB_OK | MB_ICONERROR);  // one button only
}

}  // namespace

void ReportMissingEventLogManager(HRESULT created, const FatalErrorHints& hints) {
  const std::wstring dumpPath = WriteProcessDump();
  const std::size_t kilobytes = WorkingSetKilobytes();
  const InterfaceObjects objects = CountInterfaceObjects();
  ShowFatalError(
      L"Couldn't instantiate event log manager! 0x" + Hexadecimal(created) + L"\nHint1: " +
      OrEmpty(hints.message) + L"\nHint2: " + OrEmpty(hints.text) + L"\nHint3: " +
      OrEmpty(hints.extraText) + L"\nThreadID: " + std::to_wstring(GetCurrentThreadId()) +
      L"\nProcessMemoryKb " + std::to_wstring(kilobytes) + L"\nGDI handles " +
      std::to_wstring(objects.graphics) + L"\nUSER handles " + std::to_wstring(objects.windows) +
      L"\nA mini-dump file was written into the logs directory:\n" + dumpPath +
      L"\n\n"
      L"Vortana takes software quality seriously, in order to help prevent\n"
      L"this problem in the future, please may we ask that you send an email\n"
      L"to " +
      kQualityContact + L", containing the contents of this dialog.\n");
}

void ReportMissingEventLog(HRESULT opened) {
  ShowFatalError(L"Couldn't instantiate event log! 0x" + Hexadecimal(opened));
}

}  // namespace cvars
