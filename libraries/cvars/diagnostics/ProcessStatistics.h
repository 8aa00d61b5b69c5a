#pragma once

#include <cstddef>

#include "BasicTypes.h"
#include "Export.h"

namespace cvars {

/// Reads the memory counters of a process.
class CVARS_API ProcessStatistics {
 public:
  ProcessStatistics();
  ~ProcessStatistics();
  ProcessStatistics(const ProcessStatistics&) = delete;
  ProcessStatistics& operator=(const ProcessStatistics&) = delete;

  /// @param processId  0 = the current process.
  /// @param index      0 page faults, 1 peak working set, 2 working set, 3 peak paged pool,
  ///                   4 paged pool, 5 peak non-paged pool, 6 non-paged pool, 7 page file,
  ///                   8 peak page file; all but the first in bytes.
  /// @return the counter; 0 on any failure and for any other index.
  std::size_t MemoryCounter(ULONG processId, int index);

 private:
  HMODULE m_library;  // "psapi.dll"; null when it cannot be had
};

}  // namespace cvars
