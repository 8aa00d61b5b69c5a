#pragma once

#include <boost/asio/ip/tcp.hpp>
#include <cstddef>
#include <memory>
#include <string>

#include "instrument/remote/CommandServer.h"
#include "instrument/remote/LineReader.h"
#include "instrument/remote/Session.h"

namespace cvars::remote {

/// One client of the server.
///
/// It either reads, or runs the lines that it has, or waits for the client to take an answer; never
/// two of these at once. The handlers that wait keep it alive.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  /// @param table   borrowed
  /// @param device  borrowed
  /// @param hooks   borrowed; told when the connection is made and when it goes.
  /// @param clients  counts the connections that live; borrowed.
  Connection(boost::asio::ip::tcp::socket socket, const CommandTable& table, const Device& device,
             const ServerHooks& hooks, std::size_t& clients);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  void Start();

 private:
  enum class Sent { kAll, kWaiting, kFailed };

  void Read();
  void RunLines();
  bool NextLine();
  Sent Send();
  void Close();

  boost::asio::ip::tcp::socket m_socket;
  const ServerHooks& m_hooks;
  std::size_t& m_clients;
  const std::string m_client;  ///< address and port
  LineReader m_lines;
  Session m_session;
  std::size_t m_sentLength = 0;  ///< how much of the session's response is sent
  bool m_isRunning = false;      ///< a line has been started and not finished
  bool m_isAnswering = false;    ///< a line is finished and its response not sent
  bool m_hasEnded = false;       ///< the client sends no more
};

}  // namespace cvars::remote
