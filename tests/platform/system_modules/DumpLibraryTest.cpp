#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <functional>
#include <latch>
#include <string>
#include <thread>

#include "IsolatedHome.h"
#include "MinidumpReader.h"
#include "platform/Files.h"
#include "platform/LastError.h"
#include "platform/MiniDump.h"
#include "platform/Processes.h"

namespace {

namespace fs = std::filesystem;
using cvars::test::MinidumpReader;
using testing::Contains;
using testing::Field;
using testing::HasSubstr;

constexpr DWORD kFatalPathType =
    MiniDumpWithProcessThreadData | MiniDumpWithIndirectlyReferencedMemory;

MiniDumpWriteDumpFunction* DumpFunction() {
  static void* library = dlopen(CVARS_BINARY_DIR "/lib/DbgHelp.dll", RTLD_NOW);
  if (library == nullptr) return nullptr;
  return reinterpret_cast<MiniDumpWriteDumpFunction*>(dlsym(library, "MiniDumpWriteDump"));
}

// @return what the program wrote.
std::string OutputOf(const std::string& command) {
  std::string output;
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  std::array<char, 4096> buffer;
  while (const std::size_t count = fread(buffer.data(), 1, buffer.size(), pipe)) {
    output.append(buffer.data(), count);
  }
  pclose(pipe);
  return output;
}

bool HasProgram(const char* name) { return !OutputOf(std::string("command -v ") + name).empty(); }

// Threads that stand in functions of known names until the end.
class WaitingThreads {
 public:
  WaitingThreads() {
    m_threads[0] = std::thread([this] { WaitForTriggerThread(); });
    m_threads[1] = std::thread([this] { AcquireSweepThread(); });
    m_threads[2] = std::thread([this] { ServeRemoteThread(); });
    m_started.wait();
  }
  ~WaitingThreads() {
    const std::uint64_t wake = 1;
    (void)!write(m_event, &wake, sizeof(wake));
    for (std::thread& thread : m_threads) thread.join();
    close(m_event);
  }

  // Not inlined, so that each has a frame of its own.
  __attribute__((noinline)) void WaitForTriggerThread() { Wait(1); }
  __attribute__((noinline)) void AcquireSweepThread() { Wait(2); }
  __attribute__((noinline)) void ServeRemoteThread() { Wait(3); }

 private:
  __attribute__((noinline)) void Wait(int which) {
    m_started.count_down();
    pollfd waiting = {m_event, POLLIN, 0};
    while (poll(&waiting, 1, -1) < 0) {
    }
    m_woken += which;
  }
  const int m_event = eventfd(0, 0);
  std::latch m_started{3};
  std::atomic<int> m_woken = 0;
  std::array<std::thread, 3> m_threads;
};

class DumpLibrary : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(DumpFunction(), nullptr) << dlerror(); }

  std::string Path() const { return (m_home.Folder() / "test.dmp").string(); }

  int WriteDump(DWORD type, const MINIDUMP_EXCEPTION_INFORMATION* exception = nullptr,
                HANDLE process = GetCurrentProcess(), DWORD processId = 0) {
    const std::string path = Path();
    const HANDLE file =
        CreateFile(std::wstring(path.begin(), path.end()).c_str(), GENERIC_WRITE, FILE_SHARE_WRITE,
                   nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return -1;
    const int result = DumpFunction()(process, processId, file, type, exception, nullptr, nullptr);
    CloseHandle(file);
    return result;
  }

  cvars::test::IsolatedHome m_home;
};

TEST_F(DumpLibrary, HoldsEveryThreadWithRegistersAndStack) {
  const WaitingThreads threads;
  ASSERT_EQ(WriteDump(kFatalPathType), 1) << GetLastError();
  const MinidumpReader dump(Path());
  ASSERT_TRUE(dump.IsMinidump());
  EXPECT_EQ(dump.Flags(), kFatalPathType);
  EXPECT_GE(dump.Threads().size(), 4u);
  EXPECT_THAT(dump.Threads(),
              Contains(Field(&MinidumpReader::Thread::identifier, GetCurrentThreadId())));
  for (const MinidumpReader::Thread& thread : dump.Threads()) {
    EXPECT_NE(thread.programCounter, 0u);
    EXPECT_GT(thread.stackSize, 0u);
    EXPECT_LE(thread.stackStart, thread.stackPointer);
    EXPECT_GT(thread.stackStart + thread.stackSize, thread.stackPointer);
    EXPECT_TRUE(dump.HoldsMemory(thread.stackPointer));
  }
}

TEST_F(DumpLibrary, NamesTheModulesWithTheirBuildIdentifiers) {
  ASSERT_EQ(WriteDump(MiniDumpNormal), 1) << GetLastError();
  const MinidumpReader dump(Path());
  const auto modules = dump.Modules();
  ASSERT_FALSE(modules.empty());
  EXPECT_EQ(modules.front().name, fs::read_symlink("/proc/self/exe").string());
  EXPECT_THAT(modules,
              Contains(Field(&MinidumpReader::Module::name, HasSubstr("libcvars_platform"))));
  EXPECT_THAT(modules, Contains(Field(&MinidumpReader::Module::name, HasSubstr("/libc.so.6"))));
  for (const MinidumpReader::Module& module : modules) {
    EXPECT_GT(module.size, 0u) << module.name;
    if (module.name.starts_with(CVARS_BINARY_DIR)) {
      EXPECT_GT(module.buildIdBytes, 0u) << module.name;
    }
  }
}

TEST_F(DumpLibrary, DescribesTheMemoryAndTheSystem) {
  ASSERT_EQ(WriteDump(kFatalPathType), 1) << GetLastError();
  const MinidumpReader dump(Path());
  EXPECT_GT(dump.RegionCount(), 10u);
  constexpr std::uint32_t kSystemInfo = 7;
  constexpr std::uint32_t kMiscInfo = 15;
  constexpr std::uint32_t kMaps = 0x47670009;
  constexpr std::uint32_t kEnvironment = 0x47670007;
  constexpr std::uint32_t kException = 6;
  EXPECT_TRUE(dump.HasStream(kSystemInfo));
  EXPECT_TRUE(dump.HasStream(kMiscInfo));
  EXPECT_TRUE(dump.HasStream(kMaps));
  EXPECT_TRUE(dump.HasStream(kEnvironment));
  EXPECT_FALSE(dump.HasStream(kException));
  ASSERT_EQ(WriteDump(MiniDumpNormal), 1);
  EXPECT_FALSE(MinidumpReader(Path()).HasStream(kEnvironment));
}

TEST_F(DumpLibrary, HoldsWhatTheStackPointsToWhenAsked) {
  auto* page = static_cast<char*>(
      mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  char* volatile onStack = page;
  ASSERT_EQ(WriteDump(MiniDumpWithIndirectlyReferencedMemory), 1);
#ifndef __SANITIZE_ADDRESS__  // which keeps locals off the stack
  EXPECT_TRUE(MinidumpReader(Path()).HoldsMemory(reinterpret_cast<std::uint64_t>(onStack)));
#endif
  ASSERT_EQ(WriteDump(MiniDumpNormal), 1);
  EXPECT_FALSE(MinidumpReader(Path()).HoldsMemory(reinterpret_cast<std::uint64_t>(onStack)));
  munmap(page, 4096);
}

int dumpResult;
std::string dumpPath;

LONG DumpingFilter(EXCEPTION_POINTERS* pointers) {
  const MINIDUMP_EXCEPTION_INFORMATION information = {GetCurrentThreadId(), pointers, 0};
  const HANDLE file =
      CreateFile(std::wstring(dumpPath.begin(), dumpPath.end()).c_str(), GENERIC_WRITE, 0, nullptr,
                 CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  dumpResult =
      DumpFunction()(GetCurrentProcess(), 0, file, kFatalPathType, &information, nullptr, nullptr);
  CloseHandle(file);
  return EXCEPTION_EXECUTE_HANDLER;
}

__attribute__((noinline)) HRESULT FaultingListener(void*) {
  asm volatile("ud2");
  return S_OK;
}

TEST_F(DumpLibrary, RecordsTheFaultThatAFilterIsGiven) {
  dumpPath = Path();
  dumpResult = 0;
  SetUnhandledExceptionFilter(&DumpingFilter);
  EXPECT_EQ(cvars::platform::CallGuarded(&FaultingListener, nullptr), E_FAIL);
  SetUnhandledExceptionFilter(nullptr);
  ASSERT_EQ(dumpResult, 1);
  const MinidumpReader dump(Path());
  const auto exception = dump.ExceptionInfo();
  EXPECT_EQ(exception.thread, GetCurrentThreadId());
  EXPECT_EQ(exception.code, static_cast<std::uint32_t>(SIGILL));
  const auto function = reinterpret_cast<std::uint64_t>(&FaultingListener);
  EXPECT_GE(exception.programCounter, function);
  EXPECT_LT(exception.programCounter, function + 64);
}

TEST_F(DumpLibrary, AFileThatIsNoneOrAProcessThatIsNoneIsRefused) {
  EXPECT_EQ(DumpFunction()(GetCurrentProcess(), 0, nullptr, 0, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
  EXPECT_EQ(WriteDump(MiniDumpNormal, nullptr, nullptr), 0);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST_F(DumpLibrary, AnEndedProcessCannotBeDumped) {
  const pid_t child = fork();
  if (child == 0) _exit(0);
  waitpid(child, nullptr, 0);
  EXPECT_EQ(WriteDump(MiniDumpNormal, nullptr, nullptr, static_cast<DWORD>(child)), 0);
}

TEST_F(DumpLibrary, AnotherProcessIsDumpedAndRunsOn) {
  int finish[2];
  ASSERT_EQ(pipe(finish), 0);
  const pid_t child = fork();
  if (child == 0) {
    close(finish[1]);
    char token;
    _exit(read(finish[0], &token, 1) == 0 ? 5 : 6);
  }
  close(finish[0]);
  const HANDLE process =
      OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, 0, static_cast<DWORD>(child));
  EXPECT_EQ(WriteDump(MiniDumpNormal, nullptr, process), 1) << GetLastError();
  CloseHandle(process);
  EXPECT_THAT(MinidumpReader(Path()).Threads(),
              Contains(Field(&MinidumpReader::Thread::identifier, static_cast<DWORD>(child))));
  close(finish[1]);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 5);
}

TEST_F(DumpLibrary, LeavesNoProcessBehind) {
  ASSERT_EQ(WriteDump(MiniDumpNormal), 1);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(DumpLibrary, SucceedsAHundredTimesWhileThreadsRunHard) {
  constexpr int kThreads = 3;
  std::atomic<bool> stop = false;
  std::array<std::atomic<std::uint64_t>, kThreads> rounds = {};
  std::vector<std::thread> threads;
  for (int index = 0; index < kThreads; ++index) {
    threads.emplace_back([&stop, &count = rounds[static_cast<std::size_t>(index)]] {
      while (!stop) {
        const auto text =
            std::make_unique<std::string>(static_cast<std::size_t>(count % 1000), 'x');
        // Threads that come and go meanwhile.
        if (count % 64 == 0) std::thread([&text] { text->push_back('y'); }).join();
        ++count;
      }
    });
  }
  int succeeded = 0;
  for (int round = 0; round < 100; ++round) {
    if (WriteDump(kFatalPathType) == 1 && MinidumpReader(Path()).Threads().size() >= kThreads + 1) {
      ++succeeded;
    }
  }
  std::array<std::uint64_t, kThreads> before;
  for (std::size_t index = 0; index < kThreads; ++index) before[index] = rounds[index];
  // All go on: each of them is seen to count further.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  for (std::size_t index = 0; index < kThreads; ++index) {
    while (rounds[index] == before[index] && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::yield();
    }
    EXPECT_GT(rounds[index], before[index]);
  }
  stop = true;
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(succeeded, 100);
}

TEST_F(DumpLibrary, IsAMiniDumpToTheFileCommand) {
  if (!HasProgram("file")) GTEST_SKIP() << "the program file is not installed";
  ASSERT_EQ(WriteDump(kFatalPathType), 1);
  EXPECT_THAT(OutputOf("file " + Path()), HasSubstr("Mini DuMP crash report"));
}

TEST_F(DumpLibrary, IsOpenedByTheDebuggerWithSymbolisedStacks) {
  if (!HasProgram("lldb")) GTEST_SKIP() << "the program lldb is not installed";
  const WaitingThreads threads;
  ASSERT_EQ(WriteDump(kFatalPathType), 1);
  const std::string output = OutputOf("lldb --batch --no-lldbinit -o 'target create --core " +
                                      Path() + "' -o 'thread list' -o 'bt all' -o 'image list'");
  EXPECT_THAT(output, HasSubstr("thread #4"));
  EXPECT_THAT(output, HasSubstr("WaitForTriggerThread"));
  EXPECT_THAT(output, HasSubstr("AcquireSweepThread"));
  EXPECT_THAT(output, HasSubstr("ServeRemoteThread"));
  EXPECT_THAT(output, HasSubstr("MiniDumpWriteDump"));
#ifndef __SANITIZE_ADDRESS__  // whose optimised build has other frames here
  EXPECT_THAT(output, HasSubstr("DumpLibrary_IsOpenedByTheDebuggerWithSymbolisedStacks_Test"));
#endif
  EXPECT_THAT(output, HasSubstr("DbgHelp.dll"));
  EXPECT_THAT(output, HasSubstr("libcvars_platform"));
}

}  // namespace
