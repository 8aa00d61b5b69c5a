#include "HandleTable.h"

#include <cstdint>
#include <mutex>
#include <unordered_map>

#include "platform/LastError.h"

namespace cvars::platform {
namespace {

struct HandleTable {
  std::mutex lock;
  std::unordered_map<std::uintptr_t, std::shared_ptr<HandleObject>> objects;
  std::uintptr_t next = 4;
};

// Never destroyed, so that handles can be closed while the process ends.
HandleTable& Table() {
  static HandleTable& table = *new HandleTable;
  return table;
}

}  // namespace

DWORD HandleObject::Wait(DWORD) {
  SetLastError(ERROR_INVALID_HANDLE);
  return WAIT_FAILED;
}

HANDLE AddHandle(std::shared_ptr<HandleObject> object) {
  HandleTable& table = Table();
  const std::lock_guard lock(table.lock);
  const std::uintptr_t value = table.next;
  table.objects.emplace(value, std::move(object));
  table.next += 4;
  return reinterpret_cast<HANDLE>(value);
}

std::shared_ptr<HandleObject> FindHandle(HANDLE handle) {
  HandleTable& table = Table();
  const std::lock_guard lock(table.lock);
  const auto found = table.objects.find(reinterpret_cast<std::uintptr_t>(handle));
  if (found != table.objects.end()) return found->second;
  SetLastError(ERROR_INVALID_HANDLE);
  return nullptr;
}

}  // namespace cvars::platform

DWORD WaitForSingleObject(HANDLE handle, DWORD timeoutMs) {
  const auto object = cvars::platform::FindHandle(handle);
  return object != nullptr ? object->Wait(timeoutMs) : WAIT_FAILED;
}

int CloseHandle(HANDLE handle) {
  std::shared_ptr<cvars::platform::HandleObject> closed;  // goes after the lock is left
  cvars::platform::HandleTable& table = cvars::platform::Table();
  const std::lock_guard lock(table.lock);
  const auto found = table.objects.find(reinterpret_cast<std::uintptr_t>(handle));
  if (found == table.objects.end()) {
    SetLastError(ERROR_INVALID_HANDLE);
    return 0;
  }
  closed = std::move(found->second);
  table.objects.erase(found);
  return 1;
}
