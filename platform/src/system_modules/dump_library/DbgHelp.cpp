// "DbgHelp.dll": writes mini-dumps. The work is done by a helper process, because a process cannot
// look at its own threads while they run, and nothing of its memory can be trusted after a fault:
// between the call and the helper's start nothing is allocated.

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

#include "DumpHelper.h"
#include "platform/Files.h"
#include "platform/LastError.h"
#include "platform/MiniDump.h"
#include "platform/Processes.h"

extern "C" CVARS_API MiniDumpWriteDumpFunction MiniDumpWriteDump;

namespace cvars::platform {
namespace {

// A helper that takes longer is stuck; its end lets the stopped threads run on.
constexpr int kLongestDumpMs = 60'000;

// The lowest number a descriptor of ours may have, so that the helper's numbers are free.
constexpr int kFirstFreeDescriptor = 10;

struct Pipe {
  int readEnd = -1;
  int writeEnd = -1;

  Pipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    readEnd = fcntl(ends[0], F_DUPFD_CLOEXEC, kFirstFreeDescriptor);
    writeEnd = fcntl(ends[1], F_DUPFD_CLOEXEC, kFirstFreeDescriptor);
    close(ends[0]);
    close(ends[1]);
  }
  ~Pipe() {
    Close(readEnd);
    Close(writeEnd);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  static void Close(int& end) {
    if (end >= 0) close(end);
    end = -1;
  }
};

// The helper stands beside this library, or where the library's real file is.
bool FindHelper(char (&path)[PATH_MAX]) {
  Dl_info info = {};
  if (dladdr(reinterpret_cast<const void*>(&MiniDumpWriteDump), &info) == 0) return false;
  for (const bool resolve : {false, true}) {
    char library[PATH_MAX];
    if (resolve) {
      if (realpath(info.dli_fname, library) == nullptr) return false;
    } else {
      std::snprintf(library, sizeof(library), "%s", info.dli_fname);
    }
    char* slash = std::strrchr(library, '/');
    const int folderLength = slash != nullptr ? static_cast<int>(slash - library) + 1 : 0;
    const int length =
        std::snprintf(path, sizeof(path), "%.*s%s", folderLength, library, kDumpHelperName);
    if (length < static_cast<int>(sizeof(path)) && access(path, X_OK) == 0) return true;
  }
  return false;
}

int SpawnHelper(char* const* arguments, const Pipe& start, const Pipe& answer, int file,
                pid_t& helper) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, start.readEnd, kDumpHelperStart);
  posix_spawn_file_actions_adddup2(&actions, answer.writeEnd, kDumpHelperAnswer);
  posix_spawn_file_actions_adddup2(&actions, file, kDumpHelperFile);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t signals;
  sigemptyset(&signals);
  posix_spawnattr_setsigmask(&attributes, &signals);
  sigfillset(&signals);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  const int result = posix_spawn(&helper, arguments[0], &actions, &attributes, arguments, environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return result;
}

// @return the helper's answer, or an error number when there is none.
int ReadAnswer(int descriptor) {
  pollfd waiting = {descriptor, POLLIN, 0};
  int ready = 0;
  do {
    ready = poll(&waiting, 1, kLongestDumpMs);
  } while (ready < 0 && errno == EINTR);
  if (ready <= 0) return ETIMEDOUT;
  int answer = 0;
  ssize_t count = 0;
  do {
    count = read(descriptor, &answer, sizeof(answer));
  } while (count < 0 && errno == EINTR);
  return count == sizeof(answer) ? answer : EIO;
}

void Reap(pid_t helper) {
  while (waitpid(helper, nullptr, 0) < 0 && errno == EINTR) {
  }
}

// @return 0 or an error number.
int WriteDump(pid_t process, int file, DWORD type,
              const MINIDUMP_EXCEPTION_INFORMATION* exception) {
  char helperPath[PATH_MAX];
  if (!FindHelper(helperPath)) return ENOENT;
  char texts[4][24];
  std::snprintf(texts[0], sizeof(texts[0]), "%d", process);
  std::snprintf(texts[1], sizeof(texts[1]), "%u", exception != nullptr ? exception->ThreadId : 0u);
  std::snprintf(texts[2], sizeof(texts[2]), "%u", type);
  std::snprintf(texts[3], sizeof(texts[3]), "%zu",
                exception != nullptr ? reinterpret_cast<std::size_t>(exception->ExceptionPointers)
                                     : std::size_t{0});
  char* const arguments[] = {helperPath, texts[0], texts[1], texts[2], texts[3], nullptr};

  Pipe start;
  Pipe answer;
  const int dumpFile = fcntl(file, F_DUPFD_CLOEXEC, kFirstFreeDescriptor);
  if (start.writeEnd < 0 || answer.writeEnd < 0 || dumpFile < 0) return errno;
  pid_t helper = -1;
  const int spawned = SpawnHelper(arguments, start, answer, dumpFile, helper);
  close(dumpFile);
  if (spawned != 0) return spawned;
  Pipe::Close(start.readEnd);
  Pipe::Close(answer.writeEnd);
  // Where only parents may trace their children, the helper needs leave.
  prctl(PR_SET_PTRACER, helper, 0, 0, 0);
  const char go = 1;
  int result = write(start.writeEnd, &go, 1) == 1 ? ReadAnswer(answer.readEnd) : errno;
  if (result == ETIMEDOUT) kill(helper, SIGKILL);
  Reap(helper);
  prctl(PR_SET_PTRACER, 0, 0, 0, 0);
  return result;
}

}  // namespace
}  // namespace cvars::platform

int MiniDumpWriteDump(HANDLE process, DWORD processId, HANDLE file, DWORD type,
                      const MINIDUMP_EXCEPTION_INFORMATION* exception, const void*, const void*) {
  using namespace cvars::platform;
  const int descriptor = FileDescriptor(file);
  if (descriptor < 0) return 0;
  if (processId == 0) processId = GetProcessId(process);
  if (processId == 0) return 0;
  const int error = WriteDump(static_cast<pid_t>(processId), descriptor, type, exception);
  if (error == 0) return 1;
  SetLastError(ErrorFromErrno(error));
  return 0;
}
