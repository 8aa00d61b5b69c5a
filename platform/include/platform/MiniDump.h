#pragma once

#include "BasicTypes.h"
#include "platform/FaultGuard.h"

/// What goes into a mini-dump beside threads, stacks and modules; bits of a mask.
enum MINIDUMP_TYPE : DWORD {
  MiniDumpNormal = 0x0,
  MiniDumpWithDataSegs = 0x1,                     ///< Writable data of the modules.
  MiniDumpWithFullMemory = 0x2,                   ///< Everything that can be read.
  MiniDumpWithIndirectlyReferencedMemory = 0x40,  ///< What stacks and registers point to.
  MiniDumpWithProcessThreadData = 0x100,          ///< Environment, command line, thread blocks.
};

/// The fault that a dump is about.
struct MINIDUMP_EXCEPTION_INFORMATION {
  DWORD ThreadId;
  EXCEPTION_POINTERS* ExceptionPointers;
  int ClientPointers;  ///< Not used: the pointers are those of the process that is dumped.
};

/// `MiniDumpWriteDump` of "DbgHelp.dll": writes a dump of a process into an open file.
///
/// The threads of the process stand still meanwhile and run on afterwards.
///
/// @param file       of CreateFile, open for writing.
/// @param exception  null when there is none.
/// @param userStreams, callback  null.
/// @return 1, or 0 with the last error set.
using MiniDumpWriteDumpFunction = int(HANDLE process, DWORD processId, HANDLE file, DWORD type,
                                      const MINIDUMP_EXCEPTION_INFORMATION* exception,
                                      const void* userStreams, const void* callback);
