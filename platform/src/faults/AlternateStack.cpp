#include "AlternateStack.h"

#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>

namespace cvars::platform {
namespace {

// A filter may write a dump and a report from here.
constexpr std::size_t kStackBytes = 512 * 1024;

// The stack of one thread; the lowest page stays closed to catch an overflow of this one too.
class AlternateStack {
 public:
  AlternateStack() noexcept {
    m_guardBytes = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* memory = mmap(nullptr, m_guardBytes + kStackBytes, PROT_NONE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) return;
    char* usable = static_cast<char*>(memory) + m_guardBytes;
    stack_t stack = {};
    stack.ss_sp = usable;
    stack.ss_size = kStackBytes;
    if (mprotect(usable, kStackBytes, PROT_READ | PROT_WRITE) != 0 ||
        sigaltstack(&stack, &m_previous) != 0) {
      munmap(memory, m_guardBytes + kStackBytes);
      return;
    }
    m_memory = memory;
  }

  ~AlternateStack() {
    if (m_memory == nullptr) return;
    sigaltstack(&m_previous, nullptr);
    munmap(m_memory, m_guardBytes + kStackBytes);
  }

  AlternateStack(const AlternateStack&) = delete;
  AlternateStack& operator=(const AlternateStack&) = delete;

 private:
  void* m_memory = nullptr;
  std::size_t m_guardBytes = 0;
  stack_t m_previous = {};
};

}  // namespace

void EnsureAlternateStack() noexcept { thread_local AlternateStack stack; }

}  // namespace cvars::platform
