#pragma once

#include <atomic>
#include <string>

#include "BasicTypes.h"
#include "CComPtr.h"

namespace cvars {

class ListenerProxy;
class ReplicationManager;

/// The parts of a cvar that most cvars never use.
class CvarExtras {
 public:
  CvarExtras() noexcept;
  ~CvarExtras();
  CvarExtras(const CvarExtras&) = delete;
  CvarExtras& operator=(const CvarExtras&) = delete;

  std::wstring guiHints;
  HINSTANCE iconModule = nullptr;
  std::uint32_t iconId = 0;
  CComPtr<ListenerProxy> proxy;                           // guarded by the object lock
  std::atomic<ReplicationManager*> replication{nullptr};  // owned
};

}  // namespace cvars
