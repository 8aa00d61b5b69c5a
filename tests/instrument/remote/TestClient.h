#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace cvars::remote::test {

/// A TCP client of the loopback interface with plain blocking calls. Every wait has a deadline.
class TestClient {
 public:
  static constexpr int kDeadlineMs = 20000;

  explicit TestClient(std::uint16_t port) : m_socket(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
      throw std::system_error(errno, std::generic_category(), "connect");
    }
  }
  ~TestClient() { close(m_socket); }
  TestClient(const TestClient&) = delete;
  TestClient& operator=(const TestClient&) = delete;

  /// Sends everything. @return false when the server has closed the connection.
  bool Send(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t sent = send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (sent < 0) return false;
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
  }

  /// Sends what fits without waiting longer than a time for room. @return bytes sent.
  std::size_t SendWhatFits(std::string_view bytes, int waitMs) {
    std::size_t total = 0;
    while (total < bytes.size() && Wait(POLLOUT, waitMs)) {
      const ssize_t sent =
          send(m_socket, bytes.data() + total, bytes.size() - total, MSG_NOSIGNAL | MSG_DONTWAIT);
      if (sent < 0) break;
      total += static_cast<std::size_t>(sent);
    }
    return total;
  }

  void EndSending() { shutdown(m_socket, SHUT_WR); }

  /// One line without its line feed; "<closed>" or "<silent>" when none comes.
  std::string ReadLine() {
    for (;;) {
      const std::size_t end = m_received.find('\n');
      if (end != std::string::npos) {
        std::string line = m_received.substr(0, end);
        m_received.erase(0, end + 1);
        return line;
      }
      if (!Wait(POLLIN, kDeadlineMs)) return "<silent>";
      if (Receive().empty()) return "<closed>";
    }
  }

  /// Everything up to the end of the connection.
  std::string ReadToEnd() {
    while (Wait(POLLIN, kDeadlineMs)) {
      if (Receive().empty()) return std::exchange(m_received, {});
    }
    return m_received + "<silent>";
  }

  /// What one call to the system gives.
  std::string ReadOnce() {
    if (!Wait(POLLIN, kDeadlineMs)) return "<silent>";
    (void)Receive();
    return std::exchange(m_received, {});
  }

  std::string Ask(std::string_view line) {
    std::string text(line);
    text.push_back('\n');
    return Send(text) ? ReadLine() : "<closed>";
  }

 private:
  bool Wait(short what, int waitMs) const {
    pollfd entry{m_socket, what, 0};
    return poll(&entry, 1, waitMs) == 1;
  }
  std::string_view Receive() {
    char buffer[65536];
    const ssize_t size = recv(m_socket, buffer, sizeof buffer, 0);
    if (size <= 0) return {};
    m_received.append(buffer, static_cast<std::size_t>(size));
    return m_received;
  }

  int m_socket;
  std::string m_received;
};

}  // namespace cvars::remote::test
