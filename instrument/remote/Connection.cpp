#include "instrument/remote/Connection.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/system/error_code.hpp>
#include <string>
#include <string_view>
#include <utility>

namespace cvars::remote {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

constexpr std::size_t kReadSize = 16 * 1024;
/// Commands that one client may run before the others get their turn.
constexpr std::size_t kCommandsPerTurn = 256;

std::string AddressOf(const tcp::socket& socket) {
  error_code error;
  const tcp::endpoint endpoint = socket.remote_endpoint(error);
  if (error) return "unknown";  // it is gone already
  const std::string address = endpoint.address().to_string();
  return (endpoint.address().is_v6() ? "[" + address + "]" : address) + ":" +
         std::to_string(endpoint.port());
}

}  // namespace

Connection::Connection(tcp::socket socket, const CommandTable& table, const Device& device,
                       const ServerHooks& hooks, std::size_t& clients)
    : m_socket(std::move(socket)),
      m_hooks(hooks),
      m_clients(clients),
      m_client(AddressOf(m_socket)),
      m_session(table, device, [this](const ProgramUnit& unit, ScpiError error) {
        m_hooks.refused(m_client, unit, error);
      }) {
  ++m_clients;
  m_hooks.connected(m_client);
}

Connection::~Connection() {
  m_hooks.gone(m_client);
  --m_clients;
}

void Connection::Start() {
  error_code error;
  m_socket.non_blocking(true, error);
  if (error) return;
  // Without these a connection is slower or outlives a peer that vanished, but it works.
  m_socket.set_option(tcp::no_delay(true), error);
  m_socket.set_option(asio::socket_base::keep_alive(true), error);
  Read();
}

void Connection::Read() {
  const std::span<char> room = m_lines.Prepare(kReadSize);
  m_socket.async_read_some(asio::buffer(room.data(), room.size()),
                           [self = shared_from_this()](const error_code& error, std::size_t size) {
                             if (error && error != asio::error::eof) return self->Close();
                             self->m_hasEnded = error == asio::error::eof;
                             self->m_lines.Commit(size);
                             self->RunLines();
                           });
}

void Connection::RunLines() {
  std::size_t budget = kCommandsPerTurn;
  for (;;) {
    if (m_isAnswering) {
      const Sent sent = Send();
      if (sent == Sent::kWaiting) return;
      if (sent == Sent::kFailed) return Close();
      m_isAnswering = false;
    }
    if (!m_isRunning && !NextLine()) break;
    if (budget == 0) {
      asio::post(m_socket.get_executor(), [self = shared_from_this()] { self->RunLines(); });
      return;
    }
    --budget;  // so that empty lines are not free
    if (m_session.Run(budget)) {
      m_isRunning = false;
      m_isAnswering = !m_session.Response().empty();
      m_sentLength = 0;
    }
  }
  if (m_hasEnded) return Close();
  Read();
}

bool Connection::NextLine() {
  std::string_view line;
  for (;;) {
    switch (m_lines.Next(line)) {
      case LineReader::Result::kNothing:
        return false;
      case LineReader::Result::kOverrun:
        m_session.Status().Report(ScpiError::kInputBufferOverrun);
        break;
      case LineReader::Result::kLine:
        m_session.Start(line);
        m_isRunning = true;
        return true;
    }
  }
}

Connection::Sent Connection::Send() {
  const std::string& response = m_session.Response();
  while (m_sentLength < response.size()) {
    error_code error;
    m_sentLength += m_socket.send(
        asio::buffer(response.data() + m_sentLength, response.size() - m_sentLength), 0, error);
    if (error == asio::error::would_block) {
      m_socket.async_wait(tcp::socket::wait_write,
                          [self = shared_from_this()](const error_code& waitError) {
                            if (waitError) return self->Close();
                            self->RunLines();
                          });
      return Sent::kWaiting;
    }
    if (error) return Sent::kFailed;
  }
  return Sent::kAll;
}

void Connection::Close() {
  error_code ignored;
  m_socket.shutdown(tcp::socket::shutdown_both, ignored);
  m_socket.close(ignored);
}

}  // namespace cvars::remote
