#include "SharedMutex.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <new>

#include "platform/Handles.h"

namespace cvars::platform {
namespace {

timespec DeadlineIn(DWORD timeoutMs) {
  constexpr long kNanosecondsPerSecond = 1'000'000'000;
  timespec deadline = {};
  clock_gettime(CLOCK_MONOTONIC, &deadline);
  deadline.tv_sec += static_cast<time_t>(timeoutMs / 1000);
  deadline.tv_nsec += static_cast<long>(timeoutMs % 1000) * 1'000'000;
  if (deadline.tv_nsec >= kNanosecondsPerSecond) {
    deadline.tv_nsec -= kNanosecondsPerSecond;
    ++deadline.tv_sec;
  }
  return deadline;
}

int Lock(pthread_mutex_t& mutex, DWORD timeoutMs) {
  if (timeoutMs == INFINITE) return pthread_mutex_lock(&mutex);
  if (timeoutMs == 0) return pthread_mutex_trylock(&mutex);
  const timespec deadline = DeadlineIn(timeoutMs);
  return pthread_mutex_clocklock(&mutex, CLOCK_MONOTONIC, &deadline);
}

}  // namespace

SharedMutex::SharedMutex() {
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
  pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutex_init(&m_mutex, &attributes);
  pthread_mutexattr_destroy(&attributes);
}

DWORD SharedMutex::Acquire(DWORD timeoutMs) {
  DWORD answer = WAIT_OBJECT_0;
  switch (Lock(m_mutex, timeoutMs)) {
    case 0:
      break;
    case EOWNERDEAD:
      pthread_mutex_consistent(&m_mutex);
      m_depth = 0;
      answer = WAIT_ABANDONED;
      break;
    case EBUSY:
    case ETIMEDOUT:
      return WAIT_TIMEOUT;
    default:
      return WAIT_FAILED;
  }
  ++m_depth;
  m_ownerThread.store(gettid(), std::memory_order_relaxed);
  m_ownerProcess.store(getpid(), std::memory_order_relaxed);
  return answer;
}

bool SharedMutex::Release() {
  if (m_ownerThread.load(std::memory_order_relaxed) != gettid()) return false;
  if (m_depth == 1) {
    m_ownerThread.store(0, std::memory_order_relaxed);
    m_ownerProcess.store(0, std::memory_order_relaxed);
  }
  --m_depth;
  return pthread_mutex_unlock(&m_mutex) == 0;
}

bool SharedMutex::IsOwnedByThisProcess() const {
  return m_ownerProcess.load(std::memory_order_relaxed) == getpid();
}

std::unique_ptr<MutexMapping> MutexMapping::Private() {
  void* memory = mmap(nullptr, sizeof(SharedMutex), PROT_READ | PROT_WRITE,
                      MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return nullptr;
  return std::unique_ptr<MutexMapping>(new MutexMapping(new (memory) SharedMutex));
}

std::unique_ptr<MutexMapping> MutexMapping::OfFile(int descriptor, bool fresh) {
  if (fresh && ftruncate(descriptor, sizeof(SharedMutex)) != 0) return nullptr;
  void* memory =
      mmap(nullptr, sizeof(SharedMutex), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  if (memory == MAP_FAILED) return nullptr;
  auto* mutex = fresh ? new (memory) SharedMutex : static_cast<SharedMutex*>(memory);
  return std::unique_ptr<MutexMapping>(new MutexMapping(mutex));
}

MutexMapping::~MutexMapping() {
  // The kernel and the C library look at the mutexes of a thread when it ends: one that a thread
  // of this process owns must stay where it is.
  if (!m_mutex->IsOwnedByThisProcess()) munmap(m_mutex, sizeof(SharedMutex));
}

}  // namespace cvars::platform
