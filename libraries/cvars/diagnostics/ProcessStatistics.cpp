#include "ProcessStatistics.h"

#include "platform/Modules.h"
#include "platform/ProcessStatus.h"
#include "platform/Processes.h"

namespace cvars {

ProcessStatistics::ProcessStatistics() : m_library(LoadLibrary(L"psapi.dll")) {}

ProcessStatistics::~ProcessStatistics() {
  if (m_library != nullptr) FreeLibrary(m_library);
}

std::size_t ProcessStatistics::MemoryCounter(ULONG processId, int index) {
  if (m_library == nullptr) return 0;
  const auto getMemoryInfo = reinterpret_cast<GetProcessMemoryInfoFunction*>(
      GetProcAddress(m_library, "GetProcessMemoryInfo"));
  if (getMemoryInfo == nullptr) return 0;
  const HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, 0,
                                     processId != 0 ? processId : GetCurrentProcessId());
  if (process == nullptr) return 0;
  PROCESS_MEMORY_COUNTERS counters = {};
  const bool known = getMemoryInfo(process, &counters, sizeof(counters)) != 0;
  CloseHandle(process);
  if (!known) return 0;
  switch (index) {
    case 0:
      return counters.PageFaultCount;
    case 1:
      return counters.PeakWorkingSetSize;
    case 2:
      return counters.WorkingSetSize;
    case 3:
      return counters.QuotaPeakPagedPoolUsage;
    case 4:
      return counters.QuotaPagedPoolUsage;
    case 5:
      return counters.QuotaPeakNonPagedPoolUsage;
    case 6:
      return counters.QuotaNonPagedPoolUsage;
    case 7:
      return counters.PagefileUsage;
    case 8:
      return counters.PeakPagefileUsage;
    default:
      return 0;
  }
}

}  // namespace cvars
