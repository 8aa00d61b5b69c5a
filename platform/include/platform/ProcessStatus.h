#pragma once

#include <cstddef>

#include "BasicTypes.h"

/// Memory counters of a process; sizes in bytes. Its page tables count as paged pool, its pinned
/// memory as non-paged pool, and what it has of its own, swapped out or not, as page file. Peaks of
/// these three are not kept by the system and read as their current values.
struct PROCESS_MEMORY_COUNTERS {
  DWORD cb;  ///< Size of this structure in bytes.
  DWORD PageFaultCount;
  std::size_t PeakWorkingSetSize;
  std::size_t WorkingSetSize;
  std::size_t QuotaPeakPagedPoolUsage;
  std::size_t QuotaPagedPoolUsage;
  std::size_t QuotaPeakNonPagedPoolUsage;
  std::size_t QuotaNonPagedPoolUsage;
  std::size_t PagefileUsage;
  std::size_t PeakPagefileUsage;
};

/// `GetProcessMemoryInfo` of "psapi.dll".
///
/// @param size  of the structure in bytes.
/// @return 1, or 0 with the last error set.
using GetProcessMemoryInfoFunction = int(HANDLE process, PROCESS_MEMORY_COUNTERS* counters,
                                         DWORD size);

/// What GetGuiResources counts.
inline constexpr DWORD GR_GDIOBJECTS = 0;
inline constexpr DWORD GR_USEROBJECTS = 1;

/// `GetGuiResources` of "user32.dll": counts graphics objects or windows of a process.
///
/// @return the count; 0 for what has none.
using GetGuiResourcesFunction = DWORD(HANDLE process, DWORD what);
