#include "Journal.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace cvars::components {

std::string JournalSocket() {
  const char* chosen = std::getenv("VORTANA_JOURNAL");
  const std::string path =
      chosen != nullptr && *chosen != '\0' ? chosen : "/run/systemd/journal/socket";
  return path != "none" && access(path.c_str(), W_OK) == 0 ? path : std::string();
}

bool SendToJournal(const std::string& socketPath,
                   const std::vector<std::pair<std::string, std::string>>& fields) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  if (socketPath.size() >= sizeof(address.sun_path)) return false;
  std::memcpy(address.sun_path, socketPath.c_str(), socketPath.size() + 1);

  // Each field as its name, a line feed, the length of the value in 64 bits, and the value: so that
  // values may hold line feeds.
  std::string datagram;
  for (const auto& [name, value] : fields) {
    const std::uint64_t length = value.size();
    datagram += name + '\n';
    datagram.append(reinterpret_cast<const char*>(&length), sizeof(length));
    datagram += value + '\n';
  }
  const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (descriptor < 0) return false;
  const ssize_t sent =
      sendto(descriptor, datagram.data(), datagram.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
             reinterpret_cast<const sockaddr*>(&address), sizeof(address));
  close(descriptor);
  return sent == static_cast<ssize_t>(datagram.size());
}

}  // namespace cvars::components
