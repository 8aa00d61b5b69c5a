#pragma once

namespace cvars::platform {

/// File name of the program that stops a process and writes its dump; it stands beside the dump
/// library. Its arguments: process, thread of the exception, dump type, address of the exception's
/// EXCEPTION_POINTERS in the process or 0, all decimal.
inline constexpr char kDumpHelperName[] = "vortana-dump-helper";

/// Descriptors that the program is started with.
inline constexpr int kDumpHelperStart = 3;   ///< Readable once the program may stop the process.
inline constexpr int kDumpHelperAnswer = 4;  ///< Takes the error number as an int; 0 is success.
inline constexpr int kDumpHelperFile = 5;    ///< The dump file.

}  // namespace cvars::platform
