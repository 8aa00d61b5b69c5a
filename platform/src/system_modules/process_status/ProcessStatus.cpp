// "psapi.dll": memory counters of processes, from the kernel's account of them.

#include "platform/ProcessStatus.h"

#include <charconv>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include "Export.h"
#include "platform/LastError.h"
#include "platform/Processes.h"

extern "C" CVARS_API GetProcessMemoryInfoFunction GetProcessMemoryInfo;

namespace {

constexpr std::size_t kBytesPerKilobyte = 1024;

std::string ContentOf(DWORD process, const char* name) {
  std::ifstream file("/proc/" + std::to_string(process) + '/' + name);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::size_t NumberAt(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t");
  std::size_t number = 0;
  if (start != std::string_view::npos) {
    std::from_chars(text.data() + start, text.data() + text.size(), number);
  }
  return number;
}

// "VmRSS:     1234 kB"
std::size_t StatusBytes(std::string_view status, std::string_view field) {
  const std::size_t found = status.find(field);
  return found == std::string_view::npos
             ? 0
             : NumberAt(status.substr(found + field.size())) * kBytesPerKilobyte;
}

// The fields that follow the program's name, which may hold blanks and parentheses itself; the
// state is field 3.
std::size_t StatNumber(std::string_view stat, int field) {
  std::size_t position = stat.rfind(')');
  for (int index = 2; index < field && position != std::string_view::npos; ++index) {
    position = stat.find(' ', position + 1);
  }
  return position == std::string_view::npos ? 0 : NumberAt(stat.substr(position));
}

}  // namespace

int GetProcessMemoryInfo(HANDLE process, PROCESS_MEMORY_COUNTERS* counters, DWORD size) {
  if (counters == nullptr || size < sizeof(*counters)) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return 0;
  }
  const DWORD processId = GetProcessId(process);
  if (processId == 0) return 0;
  const std::string status = ContentOf(processId, "status");
  const std::string stat = ContentOf(processId, "stat");
  if (status.empty() || stat.empty()) {
    SetLastError(ERROR_INVALID_HANDLE);
    return 0;
  }
  constexpr int kMinorFaults = 10;
  constexpr int kMajorFaults = 12;
  *counters = {};
  counters->cb = sizeof(*counters);
  counters->PageFaultCount =
      static_cast<DWORD>(StatNumber(stat, kMinorFaults) + StatNumber(stat, kMajorFaults));
  counters->PeakWorkingSetSize = StatusBytes(status, "VmHWM:");
  counters->WorkingSetSize = StatusBytes(status, "VmRSS:");
  // The kernel keeps page tables for a process: the nearest it has to paged pool.
  counters->QuotaPagedPoolUsage = StatusBytes(status, "VmPTE:");
  counters->QuotaPeakPagedPoolUsage = counters->QuotaPagedPoolUsage;
  counters->QuotaNonPagedPoolUsage = StatusBytes(status, "VmPin:");
  counters->QuotaPeakNonPagedPoolUsage = counters->QuotaNonPagedPoolUsage;
  counters->PagefileUsage = StatusBytes(status, "RssAnon:") + StatusBytes(status, "VmSwap:");
  counters->PeakPagefileUsage = counters->PagefileUsage;
  return 1;
}
