#include "MonitorSocket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <system_error>

#include "platform/Home.h"

namespace cvars::components {
namespace {

constexpr char kSocketName[] = "tattler.socket";

// The address goes by the open folder, because a socket's path must be short and a home's may not
// be.
class HomeAddress {
 public:
  HomeAddress() : m_folder(open(platform::HomeFolder().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {
    m_address.sun_family = AF_UNIX;
    std::snprintf(m_address.sun_path, sizeof(m_address.sun_path), "/proc/self/fd/%d/%s", m_folder,
                  kSocketName);
  }
  ~HomeAddress() {
    if (m_folder >= 0) close(m_folder);
  }
  HomeAddress(const HomeAddress&) = delete;
  HomeAddress& operator=(const HomeAddress&) = delete;

  const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&m_address); }
  static constexpr socklen_t Size() { return sizeof(sockaddr_un); }

 private:
  int m_folder;
  sockaddr_un m_address = {};
};

int NewSocket() { return socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0); }

}  // namespace

int ListenForPrograms() {
  std::error_code ignored;  // shows when the socket is bound
  std::filesystem::create_directories(platform::HomeFolder(), ignored);
  StopListening();
  const HomeAddress address;
  const int listener = NewSocket();
  constexpr int kWaitingPrograms = 32;
  if (listener >= 0 && bind(listener, address.Get(), HomeAddress::Size()) == 0 &&
      listen(listener, kWaitingPrograms) == 0) {
    return listener;
  }
  if (listener >= 0) close(listener);
  return -1;
}

void StopListening() { unlink((platform::HomeFolder() / kSocketName).c_str()); }

int ConnectToMonitor() {
  const HomeAddress address;
  const int connection = NewSocket();
  if (connection >= 0 && connect(connection, address.Get(), HomeAddress::Size()) == 0) {
    return connection;
  }
  if (connection >= 0) close(connection);
  return -1;
}

}  // namespace cvars::components
