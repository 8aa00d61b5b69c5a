#pragma once

#include <memory>

#include "platform/Handles.h"

namespace cvars::platform {

/// What a handle stands for.
class HandleObject {
 public:
  virtual ~HandleObject() = default;

  /// Waits for the object; by default there is nothing to wait for.
  virtual DWORD Wait(DWORD timeoutMs);

 protected:
  HandleObject() = default;
  HandleObject(const HandleObject&) = delete;
  HandleObject& operator=(const HandleObject&) = delete;
};

/// Gives an object a new handle.
HANDLE AddHandle(std::shared_ptr<HandleObject> object);

/// Gives the object of a handle; null, with the last error set, when there is none.
std::shared_ptr<HandleObject> FindHandle(HANDLE handle);

/// Gives the object of a handle when it is of that kind; else null with the last error set.
template <typename T>
std::shared_ptr<T> FindHandleOf(HANDLE handle) {
  std::shared_ptr<HandleObject> object = FindHandle(handle);
  auto typed = std::dynamic_pointer_cast<T>(object);
  if (object != nullptr && typed == nullptr) (void)FindHandle(nullptr);
  return typed;
}

}  // namespace cvars::platform
