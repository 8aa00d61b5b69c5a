#include "platform/Processes.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>

#include "handles/HandleTable.h"
#include "platform/LastError.h"

namespace cvars::platform {
namespace {

class ProcessHandle final : public HandleObject {
 public:
  explicit ProcessHandle(DWORD process) : m_process(process) {}
  DWORD Process() const { return m_process; }

 private:
  DWORD m_process;
};

}  // namespace
}  // namespace cvars::platform

DWORD GetCurrentProcessId() { return static_cast<DWORD>(getpid()); }

DWORD GetCurrentThreadId() { return static_cast<DWORD>(gettid()); }

HANDLE GetCurrentProcess() { return reinterpret_cast<HANDLE>(~std::uintptr_t{0}); }

HANDLE OpenProcess(DWORD, int, DWORD processId) {
  using namespace cvars::platform;
  const auto process = static_cast<pid_t>(processId);
  if (process <= 0 || (kill(process, 0) != 0 && errno != EPERM)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  return AddHandle(std::make_shared<ProcessHandle>(processId));
}

DWORD GetProcessId(HANDLE process) {
  using namespace cvars::platform;
  if (process == GetCurrentProcess()) return GetCurrentProcessId();
  const auto handle = FindHandleOf<ProcessHandle>(process);
  return handle != nullptr ? handle->Process() : 0;
}
