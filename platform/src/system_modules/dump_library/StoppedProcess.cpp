#include "StoppedProcess.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstring>
#include <memory>
#include <set>
#include <sstream>
#include <system_error>

namespace cvars::platform {
namespace {

using Clock = std::chrono::steady_clock;

// A thread that does not stop in this time waits inside the kernel, where it changes nothing; it
// is left out.
constexpr auto kLongestWait = std::chrono::seconds(1);

std::vector<pid_t> ThreadIdentifiers(const std::filesystem::path& folder) {
  std::vector<pid_t> identifiers;
  const std::unique_ptr<DIR, int (*)(DIR*)> tasks(opendir((folder / "task").c_str()), &closedir);
  if (tasks == nullptr) return identifiers;
  while (const dirent* entry = readdir(tasks.get())) {
    pid_t identifier = 0;
    const char* end = entry->d_name + std::strlen(entry->d_name);
    if (std::from_chars(entry->d_name, end, identifier).ptr == end) {
      identifiers.push_back(identifier);
    }
  }
  return identifiers;
}

// @return the signal the thread was about to get, 0 for none; nothing when it did not stop.
std::optional<int> WaitForStop(pid_t thread) {
  const auto deadline = Clock::now() + kLongestWait;
  while (true) {
    int status = 0;
    const pid_t result = waitpid(thread, &status, __WALL | WNOHANG);
    if (result == thread) {
      if (!WIFSTOPPED(status)) return std::nullopt;
      const bool isEvent = (status >> 16) != 0;
      return isEvent ? 0 : WSTOPSIG(status);
    }
    if (result < 0 && errno != EINTR) return std::nullopt;
    if (Clock::now() > deadline) return std::nullopt;
    usleep(100);
  }
}

void CopyRegisters(const user_regs_struct& registers, CONTEXT& context) {
  context.ContextFlags = CONTEXT_FULL | CONTEXT_SEGMENTS;
  context.Rax = registers.rax;
  context.Rcx = registers.rcx;
  context.Rdx = registers.rdx;
  context.Rbx = registers.rbx;
  context.Rsp = registers.rsp;
  context.Rbp = registers.rbp;
  context.Rsi = registers.rsi;
  context.Rdi = registers.rdi;
  context.R8 = registers.r8;
  context.R9 = registers.r9;
  context.R10 = registers.r10;
  context.R11 = registers.r11;
  context.R12 = registers.r12;
  context.R13 = registers.r13;
  context.R14 = registers.r14;
  context.R15 = registers.r15;
  context.Rip = registers.rip;
  context.EFlags = static_cast<DWORD>(registers.eflags);
  context.SegCs = static_cast<WORD>(registers.cs);
  context.SegDs = static_cast<WORD>(registers.ds);
  context.SegEs = static_cast<WORD>(registers.es);
  context.SegFs = static_cast<WORD>(registers.fs);
  context.SegGs = static_cast<WORD>(registers.gs);
  context.SegSs = static_cast<WORD>(registers.ss);
}

// "7f0e3c000000-7f0e3c021000 rw-p 00000000 00:00 0    name"
std::optional<MemoryRegion> ParseRegion(const std::string& line) {
  MemoryRegion region = {};
  char permissions[5] = {};
  int nameStart = 0;
  unsigned long begin = 0;
  unsigned long end = 0;
  unsigned long offset = 0;
  if (std::sscanf(line.c_str(), "%lx-%lx %4s %lx %*s %*s %n", &begin, &end, permissions, &offset,
                  &nameStart) < 4) {
    return std::nullopt;
  }
  region.begin = begin;
  region.end = end;
  region.fileOffset = offset;
  region.readable = permissions[0] == 'r';
  region.writable = permissions[1] == 'w';
  region.executable = permissions[2] == 'x';
  region.isPrivate = permissions[3] == 'p';
  if (nameStart > 0) region.name = line.substr(static_cast<std::size_t>(nameStart));
  return region;
}

}  // namespace

std::vector<std::byte> ReadWholeFile(const std::filesystem::path& file) {
  std::vector<std::byte> content;
  const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return content;
  constexpr std::size_t kBlock = 64 * 1024;
  ssize_t count = 0;
  do {
    const std::size_t size = content.size();
    content.resize(size + kBlock);
    count = read(descriptor, content.data() + size, kBlock);
    content.resize(size + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  } while (count > 0);
  close(descriptor);
  return content;
}

StoppedProcess::StoppedProcess(pid_t process)
    : m_process(process), m_folder("/proc/" + std::to_string(process)) {
  StopThreads();
  m_memory = open((m_folder / "mem").c_str(), O_RDONLY | O_CLOEXEC);
  ReadRegions();
}

StoppedProcess::~StoppedProcess() {
  for (const StoppedThread& thread : m_threads) {
    ptrace(PTRACE_DETACH, thread.identifier, nullptr,
           reinterpret_cast<void*>(static_cast<std::intptr_t>(thread.pendingSignal)));
  }
  if (m_memory >= 0) close(m_memory);
}

void StoppedProcess::StopThreads() {
  std::set<pid_t> seen;
  int lastError = ESRCH;
  // Threads that still run may start others: until a look finds no new one.
  for (bool foundNew = true; foundNew;) {
    foundNew = false;
    for (const pid_t identifier : ThreadIdentifiers(m_folder)) {
      if (!seen.insert(identifier).second) continue;
      foundNew = true;
      if (ptrace(PTRACE_SEIZE, identifier, nullptr, nullptr) != 0) {
        lastError = errno;
        continue;
      }
      ptrace(PTRACE_INTERRUPT, identifier, nullptr, nullptr);
      const auto pendingSignal = WaitForStop(identifier);
      if (!pendingSignal) continue;
      StoppedThread thread = {};
      thread.identifier = identifier;
      thread.pendingSignal = *pendingSignal;
      user_regs_struct registers = {};
      if (ptrace(PTRACE_GETREGS, identifier, nullptr, &registers) == 0) {
        CopyRegisters(registers, thread.context);
        thread.block = registers.fs_base;
      }
      user_fpregs_struct floatRegisters = {};
      static_assert(sizeof(floatRegisters) == sizeof(thread.context.FltSave));
      if (ptrace(PTRACE_GETFPREGS, identifier, nullptr, &floatRegisters) == 0) {
        std::memcpy(&thread.context.FltSave, &floatRegisters, sizeof(floatRegisters));
        thread.context.MxCsr = floatRegisters.mxcsr;
      }
      const auto name = ReadProcFile(("task/" + std::to_string(identifier) + "/comm").c_str());
      thread.name.assign(reinterpret_cast<const char*>(name.data()), name.size());
      if (!thread.name.empty() && thread.name.back() == '\n') thread.name.pop_back();
      m_threads.push_back(std::move(thread));
    }
  }
  if (m_threads.empty()) throw std::system_error(lastError, std::generic_category());
  std::sort(m_threads.begin(), m_threads.end(),
            [](const auto& a, const auto& b) { return a.identifier < b.identifier; });
}

void StoppedProcess::ReadRegions() {
  const auto maps = ReadProcFile("maps");
  std::istringstream lines(std::string(reinterpret_cast<const char*>(maps.data()), maps.size()));
  for (std::string line; std::getline(lines, line);) {
    if (auto region = ParseRegion(line)) m_regions.push_back(std::move(*region));
  }
}

const MemoryRegion* StoppedProcess::RegionAt(std::uint64_t address) const {
  const auto next = std::upper_bound(
      m_regions.begin(), m_regions.end(), address,
      [](std::uint64_t value, const MemoryRegion& region) { return value < region.begin; });
  if (next == m_regions.begin()) return nullptr;
  const MemoryRegion& region = *std::prev(next);
  return address < region.end ? &region : nullptr;
}

std::size_t StoppedProcess::ReadMemory(std::uint64_t address, std::span<std::byte> target) const {
  std::size_t done = 0;
  while (done < target.size()) {
    const ssize_t count = pread(m_memory, target.data() + done, target.size() - done,
                                static_cast<off_t>(address + done));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    done += static_cast<std::size_t>(count);
  }
  return done;
}

std::vector<std::byte> StoppedProcess::ReadProcFile(const char* name) const {
  return ReadWholeFile(m_folder / name);
}

}  // namespace cvars::platform
