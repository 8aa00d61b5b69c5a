// tattler-monitor: prints the probes of the programs that are started after it.

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <vector>

#include "MonitorSocket.h"
#include "Trace.h"
#include "platform/LastError.h"
#include "platform/NamedMutex.h"

namespace {

using namespace cvars::components;

constexpr wchar_t kMonitorMutex[] = L"Vortana Tattler Enabled";

struct Program {
  int connection;
  Trace trace;
};

// Becomes readable when the user asks for the end.
const int endRequest = eventfd(0, EFD_CLOEXEC);

void RequestEnd(int) {
  const std::uint64_t one = 1;
  (void)!write(endRequest, &one, sizeof(one));
}

// Without restarting: an output that stands still must not hold the end up.
void CatchEndSignals() {
  struct sigaction action = {};
  action.sa_handler = &RequestEnd;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

pid_t PeerOf(int connection) {
  ucred peer = {};
  socklen_t size = sizeof(peer);
  return getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 ? peer.pid : 0;
}

// Prints one message of a program. @return false when the program has gone
bool PrintMessage(Program& program) {
  char packet[sizeof(Message) + kLargestNameBytes];
  const ssize_t size = recv(program.connection, packet, sizeof(packet), 0);
  if (size <= 0) return false;
  if (static_cast<std::size_t>(size) < sizeof(Message)) return true;  // none of ours
  Message message;
  std::memcpy(&message, packet, sizeof(message));
  const std::string_view name(packet + sizeof(message),
                              static_cast<std::size_t>(size) - sizeof(message));
  const std::string line = program.trace.LineOf(message, name);
  if (!line.empty()) {
    std::puts(line.c_str());
    std::fflush(stdout);
  }
  return true;
}

// Prints until a signal asks for the end.
void Monitor(int listener, bool json) {
  std::vector<Program> programs;
  while (true) {
    std::vector<pollfd> waiting = {{endRequest, POLLIN, 0}, {listener, POLLIN, 0}};
    for (const Program& program : programs) waiting.push_back({program.connection, POLLIN, 0});
    if (poll(waiting.data(), waiting.size(), -1) < 0) continue;
    if (waiting[0].revents != 0) break;
    // From the last, so that the places of the others stay when one goes.
    for (std::size_t index = programs.size(); index-- > 0;) {
      if (waiting[index + 2].revents == 0 || PrintMessage(programs[index])) continue;
      close(programs[index].connection);
      programs.erase(programs.begin() + static_cast<std::ptrdiff_t>(index));
    }
    if (waiting[1].revents != 0) {
      const int connection = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
      if (connection >= 0) programs.push_back({connection, Trace(PeerOf(connection), json)});
    }
  }
  for (const Program& program : programs) close(program.connection);
}

}  // namespace

int main(int argumentCount, char** arguments) {
  const bool json = argumentCount == 2 && std::strcmp(arguments[1], "--json") == 0;
  if (argumentCount > 1 && !json) {
    std::fputs(
        "usage: tattler-monitor [--json]\n\n"
        "Prints the probes of the programs that are started after it, until it is interrupted.\n"
        "  --json   one object a line\n",
        stderr);
    return 2;
  }
  if (const HANDLE other = OpenMutex(MUTEX_ALL_ACCESS, 0, kMonitorMutex)) {
    CloseHandle(other);
    std::fputs("tattler-monitor: another monitor is running\n", stderr);
    return 1;
  }
  // Programs look for the mutex and then connect, so the socket comes first.
  const int listener = ListenForPrograms();
  const HANDLE mutex = listener >= 0 ? CreateMutex(nullptr, 1, kMonitorMutex) : nullptr;
  if (mutex == nullptr) {
    std::fputs("tattler-monitor: programs cannot be listened to\n", stderr);
    return 1;
  }
  CatchEndSignals();
  Monitor(listener, json);
  ReleaseMutex(mutex);
  CloseHandle(mutex);
  StopListening();
  close(listener);
  return 0;
}
