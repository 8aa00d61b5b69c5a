#pragma once

#include <string>

#include "Export.h"
#include "platform/MiniDump.h"

namespace cvars {

/// Writes mini-dumps of a process into numbered files.
///
/// The files are "<base name>.dmp", "<base name>1.dmp", "<base name>2.dmp" and so on: the first
/// name that is free. The dump library "DbgHelp.dll" is looked for in the folder of the program,
/// the system folder and the folders of PATH, and must be of version "5.1.2600.0" or later by the
/// comparison of the texts: version 10 counts as older, which is meant.
class CVARS_API MiniDumpWriter {
 public:
  /// @param baseName          borrowed.
  /// @param folder            a path of the platform, or "%LOGS%" in any case: "D:\Logs" when drive
  ///                          D: is labelled "USERDATA", else "C:\Vortana\Quillon\Logs".
  /// @param largestFileCount  number at which the file numbers end; when all exist, the last is
  ///                          overwritten.
  /// @param dumpType          MINIDUMP_TYPE flags.
  MiniDumpWriter(const wchar_t* baseName, const wchar_t* folder, ULONG largestFileCount,
                 ULONG dumpType);
  ~MiniDumpWriter();
  MiniDumpWriter(const MiniDumpWriter&) = delete;
  MiniDumpWriter& operator=(const MiniDumpWriter&) = delete;

  /// Writes one dump. Without the folder the file goes to the current folder.
  ///
  /// @param exception  null when there is none.
  /// @param path       caller frees; the path of the platform that was written. Null on failure.
  /// @param process    null = the current process.
  /// @param processId  0 = that of `process`.
  /// @param threadId   0 = the current thread; the thread that the exception belongs to.
  /// @retval E_POINTER  path is null
  /// @retval E_FAIL     there is no dump library that will do
  /// @return otherwise S_OK or the error of the step that failed
  HRESULT WriteDump(EXCEPTION_POINTERS* exception, BSTR* path, HANDLE process, ULONG processId,
                    ULONG threadId);

 private:
  HRESULT LoadDumpLibrary();
  HRESULT TryLibrary(const std::wstring& path);
  std::wstring FreeFileName() const;

  MiniDumpWriteDumpFunction* m_writeDump = nullptr;
  HMODULE m_library = nullptr;
  std::wstring m_baseName;
  std::wstring m_folder;
  ULONG m_dumpType;
  ULONG m_largestFileCount;
};

}  // namespace cvars
