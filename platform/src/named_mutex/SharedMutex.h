#pragma once

#include <pthread.h>
#include <sys/types.h>

#include <atomic>
#include <filesystem>
#include <memory>

#include "BasicTypes.h"

namespace cvars::platform {

/// A mutex in memory that several processes map. The kernel tells when the owner has died.
class SharedMutex {
 public:
  /// Prepares fresh memory as a free mutex.
  SharedMutex();
  SharedMutex(const SharedMutex&) = delete;
  SharedMutex& operator=(const SharedMutex&) = delete;

  /// @return WAIT_OBJECT_0, WAIT_ABANDONED, WAIT_TIMEOUT or WAIT_FAILED.
  DWORD Acquire(DWORD timeoutMs);
  /// @return false when the calling thread does not own it.
  bool Release();
  /// Says whether a thread of this process owns it.
  bool IsOwnedByThisProcess() const;

 private:
  pthread_mutex_t m_mutex;
  std::atomic<pid_t> m_ownerThread = 0;
  std::atomic<pid_t> m_ownerProcess = 0;
  int m_depth = 0;  // of ownership; changed by the owner only
};
static_assert(std::atomic<pid_t>::is_always_lock_free);

/// A mapping of a shared mutex into this process.
class MutexMapping {
 public:
  /// Maps a mutex that only this process sees. @return null without memory.
  static std::unique_ptr<MutexMapping> Private();
  /// Maps the mutex in a file. @param fresh  the file is new and gets a free mutex.
  static std::unique_ptr<MutexMapping> OfFile(int descriptor, bool fresh);

  ~MutexMapping();
  MutexMapping(const MutexMapping&) = delete;
  MutexMapping& operator=(const MutexMapping&) = delete;

  SharedMutex& Mutex() const { return *m_mutex; }

 private:
  explicit MutexMapping(SharedMutex* mutex) : m_mutex(mutex) {}
  SharedMutex* m_mutex;
};

}  // namespace cvars::platform
