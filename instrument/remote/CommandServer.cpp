#include "instrument/remote/CommandServer.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/system/error_code.hpp>
#include <boost/system/system_error.hpp>
#include <chrono>
#include <csignal>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "instrument/remote/Connection.h"

namespace cvars::remote {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

/// Pause after a connection could not be accepted, when descriptors have run out for example.
constexpr std::chrono::milliseconds kAcceptPause{50};
/// How long the server stays awake after a command. A client that sends command after command then
/// does not wait each time until a sleeping thread has been woken.
constexpr std::chrono::microseconds kLinger{50};

}  // namespace

class CommandServer::Loop {
 public:
  Loop(const CommandTable& table, const Device& device, const ListenAddress& where,
       ServerHooks hooks)
      : m_table(table), m_device(device), m_hooks(std::move(hooks)) {
    const tcp::endpoint endpoint(asio::ip::make_address(where.address), where.port);
    m_acceptor.open(endpoint.protocol());
    m_acceptor.set_option(asio::socket_base::reuse_address(true));
    m_acceptor.bind(endpoint);
    m_acceptor.listen();
  }

  std::uint16_t Port() const {
    error_code ignored;
    return m_acceptor.local_endpoint(ignored).port();
  }

  void StopOnSignals() {
    m_signals.add(SIGINT);
    m_signals.add(SIGTERM);
    m_signals.async_wait([this](const error_code& error, int) {
      if (!error) m_context.stop();
    });
  }

  void Run() {
    Accept();
    if (std::thread::hardware_concurrency() < 2) {
      m_context.run();
      return;
    }
    while (m_context.run_one() != 0) Linger();
  }

  void Stop() { m_context.stop(); }

 private:
  /// Stays awake for what comes next.
  void Linger() {
    using Clock = std::chrono::steady_clock;
    Clock::time_point end = Clock::now() + kLinger;
    while (Clock::now() < end) {
      if (m_context.poll() != 0) {
        end = Clock::now() + kLinger;
      } else {
        std::this_thread::yield();
      }
    }
  }

  void Accept() {
    m_acceptor.async_accept([this](const error_code& error, tcp::socket socket) {
      if (error) return AcceptLater();
      if (m_clients < kMostClients) {
        std::make_shared<Connection>(std::move(socket), m_table, m_device, m_hooks, m_clients)
            ->Start();
      }
      Accept();
    });
  }

  void AcceptLater() {
    m_pause.expires_after(kAcceptPause);
    m_pause.async_wait([this](const error_code& error) {
      if (!error) Accept();
    });
  }

  const CommandTable& m_table;
  const Device& m_device;
  // The connections live in handlers of the context; they tell of their end and count themselves
  // out.
  const ServerHooks m_hooks;
  std::size_t m_clients = 0;
  asio::io_context m_context{1};
  tcp::acceptor m_acceptor{m_context};
  asio::steady_timer m_pause{m_context};
  asio::signal_set m_signals{m_context};
};

CommandServer::CommandServer(const CommandTable& table, const Device& device,
                             const ListenAddress& where, ServerHooks hooks) try
    : m_loop(std::make_unique<Loop>(table, device, where, std::move(hooks))) {
} catch (const boost::system::system_error& error) {
  throw std::system_error(error.code(), where.address + ":" + std::to_string(where.port));
}

CommandServer::~CommandServer() = default;

std::uint16_t CommandServer::Port() const noexcept { return m_loop->Port(); }

void CommandServer::StopOnSignals() { m_loop->StopOnSignals(); }

void CommandServer::Run() { m_loop->Run(); }

void CommandServer::Stop() { m_loop->Stop(); }

}  // namespace cvars::remote
