// Round trips of a remote query over loopback, and of the same bytes to a bare echo server.

#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <thread>
#include <vector>

#include "Cvars.h"
#include "instrument/model/Oscilloscope.h"
#include "instrument/remote/BagCommands.h"
#include "instrument/remote/CommandServer.h"
#include "instrument/remote/StandardCommands.h"

namespace {

constexpr std::string_view kQuery = "CHANNEL1:SCALE?\n";

/// A descriptor that is closed with it; a call that failed ends the program.
class Socket {
 public:
  explicit Socket(int descriptor) : m_descriptor(descriptor) {
    if (descriptor < 0) std::abort();
  }
  ~Socket() { close(m_descriptor); }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  void SendWithoutDelay() const {
    const int on = 1;
    setsockopt(m_descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  }
  operator int() const { return m_descriptor; }

 private:
  int m_descriptor;
};

sockaddr_in Loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

/// Sends back what comes, one client at a time, with nothing but blocking calls.
class EchoServer {
 public:
  EchoServer() {
    sockaddr_in address = Loopback(0);
    socklen_t size = sizeof address;
    if (bind(m_listener, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        listen(m_listener, 1) != 0 ||
        getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
      std::abort();
    }
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { Serve(); });
  }
  /// Its only client has gone by then.
  ~EchoServer() { m_thread.join(); }

  std::uint16_t Port() const { return m_port; }

 private:
  void Serve() const {
    const Socket client(accept(m_listener, nullptr, nullptr));
    client.SendWithoutDelay();
    char buffer[4096];
    for (;;) {
      const ssize_t size = recv(client, buffer, sizeof buffer, 0);
      if (size <= 0) return;
      if (send(client, buffer, static_cast<std::size_t>(size), MSG_NOSIGNAL) != size) return;
    }
  }

  Socket m_listener{socket(AF_INET, SOCK_STREAM, 0)};
  std::uint16_t m_port = 0;
  std::thread m_thread;
};

/// The instrument, served on a thread of its own.
class Scope {
 public:
  Scope() {
    cvars::remote::AddStandardCommands(m_table);
    for (const CComPtr<CCvarBag>& bag : m_scope.Bags()) {
      if (cvars::remote::AddBagCommands(m_table, *bag) != S_OK) std::abort();
    }
  }
  ~Scope() {
    m_server.Stop();
    m_thread.join();
  }
  std::uint16_t Port() const { return m_server.Port(); }

 private:
  cvars::model::Oscilloscope m_scope;
  cvars::remote::CommandTable m_table;
  cvars::remote::Device m_device;
  cvars::remote::CommandServer m_server{m_table, m_device, {"127.0.0.1", 0}};
  std::thread m_thread{[this] { m_server.Run(); }};
};

/// Sends the query and waits for a line, again and again.
template <typename Server>
void RoundTrip(benchmark::State& state) {
  const Server server;
  const Socket client(socket(AF_INET, SOCK_STREAM, 0));
  const sockaddr_in address = Loopback(server.Port());
  if (connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    std::abort();
  }
  client.SendWithoutDelay();
  for (auto step : state) {
    if (send(client, kQuery.data(), kQuery.size(), MSG_NOSIGNAL) !=
        static_cast<ssize_t>(kQuery.size())) {
      state.SkipWithError("the server has gone");
      break;
    }
    char buffer[256];
    ssize_t total = 0;
    do {
      const ssize_t size =
          recv(client, buffer + total, sizeof buffer - static_cast<std::size_t>(total), 0);
      if (size <= 0) break;
      total += size;
    } while (buffer[total - 1] != '\n');
    benchmark::DoNotOptimize(buffer);
  }
}

/// One iteration = a query of each client, all under way at once, and their answers.
void RoundTripsOfMany(benchmark::State& state) {
  const Scope scope;
  const sockaddr_in address = Loopback(scope.Port());
  std::vector<std::unique_ptr<Socket>> clients;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    clients.push_back(std::make_unique<Socket>(socket(AF_INET, SOCK_STREAM, 0)));
    if (connect(*clients.back(), reinterpret_cast<const sockaddr*>(&address), sizeof address) !=
        0) {
      std::abort();
    }
    clients.back()->SendWithoutDelay();
  }
  for (auto step : state) {
    for (const auto& client : clients) {
      if (send(*client, kQuery.data(), kQuery.size(), MSG_NOSIGNAL) < 0) std::abort();
    }
    for (const auto& client : clients) {
      char buffer[256];
      ssize_t size = 0;
      do {
        size = recv(*client, buffer, sizeof buffer, 0);
        if (size <= 0) std::abort();
      } while (buffer[size - 1] != '\n');
    }
  }
  state.counters["per_query"] = benchmark::Counter(
      static_cast<double>(state.iterations()) * static_cast<double>(state.range(0)),
      benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// From nothing to an instrument that listens, and back.
void StartUp(benchmark::State& state) {
  for (auto step : state) {
    const Scope scope;
    benchmark::DoNotOptimize(scope.Port());
  }
}

BENCHMARK(RoundTripsOfMany)->Name("round_trip/clients")->Arg(1)->Arg(8)->Arg(64)->UseRealTime();
BENCHMARK(StartUp)->Name("start_up/instrument")->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(RoundTrip<Scope>)->Name("round_trip/query")->UseRealTime();
BENCHMARK(RoundTrip<EchoServer>)->Name("round_trip/echo")->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
