#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "instrument/remote/Command.h"
#include "instrument/remote/CommandTable.h"

namespace cvars::remote {

/// Where a server listens.
struct ListenAddress {
  std::string address = "127.0.0.1";  ///< numeric, IPv4 or IPv6
  std::uint16_t port = 5025;          ///< 0 takes a free port
};

/// What a server tells its host. Called on the thread that runs the server; must not throw.
///
/// A client is named by its address and port, as in "127.0.0.1:40000" and "[::1]:40000".
struct ServerHooks {
  std::function<void(const std::string& client)> connected = [](const std::string&) {};
  std::function<void(const std::string& client)> gone = [](const std::string&) {};
  /// A command without question mark ended in an error.
  std::function<void(const std::string& client, const ProgramUnit& unit, ScpiError error)> refused =
      [](const std::string&, const ProgramUnit&, ScpiError) {};
};

/// Serves the commands of a table to TCP clients.
///
/// One event loop on one thread runs all commands, so commands need no locks. Clients take turns: a
/// long line or a flood of lines is run in slices. A client that does not read its answers is not
/// read from either, which bounds what is kept for it. A client that half-closes gets the answers
/// to what it sent before the connection ends.
class CommandServer {
 public:
  /// Clients served at a time; a further one is closed at once.
  static constexpr std::size_t kMostClients = 256;

  /// Starts to listen; nothing is served before Run.
  /// @param table   borrowed
  /// @param device  borrowed
  /// @param hooks   copied
  /// @throws std::system_error  when the address cannot be listened to
  CommandServer(const CommandTable& table, const Device& device, const ListenAddress& where,
                ServerHooks hooks = {});
  ~CommandServer();
  CommandServer(const CommandServer&) = delete;
  CommandServer& operator=(const CommandServer&) = delete;

  /// The port that clients connect to.
  std::uint16_t Port() const noexcept;
  /// Ends Run at SIGINT and SIGTERM.
  void StopOnSignals();
  /// Serves clients until Stop. Connections that are open then are closed.
  void Run();
  /// Ends Run. Thread-safe.
  void Stop();

 private:
  class Loop;
  std::unique_ptr<Loop> m_loop;
};

}  // namespace cvars::remote
