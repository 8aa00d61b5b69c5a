#include "instrument/remote/CommandServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <deque>
#include <string>
#include <thread>

#include "instrument/remote/LineReader.h"
#include "instrument/remote/StandardCommands.h"
#include "tests/instrument/remote/TestClient.h"

namespace cvars::remote {
namespace {

using test::TestClient;

constexpr const char* kIdentity = "Maker,Model,0,1";

class CommandServerTest : public testing::Test {
 protected:
  CommandServerTest() { AddStandardCommands(m_table); }
  ~CommandServerTest() override {
    m_server.Stop();
    m_thread.join();
  }
  std::uint16_t Port() const { return m_server.Port(); }

 private:
  CommandTable m_table;
  Device m_device{kIdentity};
  CommandServer m_server{m_table, m_device, {"127.0.0.1", 0}};
  std::thread m_thread{[this] { m_server.Run(); }};
};

TEST_F(CommandServerTest, AnswersALine) {
  TestClient client(Port());
  EXPECT_EQ(client.Ask("*IDN?"), kIdentity);
  EXPECT_EQ(client.Ask("*OPC?;*TST?\r"), "1;0");
}

TEST_F(CommandServerTest, TakesALineInPieces) {
  TestClient client(Port());
  for (const char character : std::string("*IDN?;*OP")) client.Send(std::string(1, character));
  client.Send("C?\r\n*TST?");
  EXPECT_EQ(client.ReadLine(), std::string(kIdentity) + ";1");
  client.Send("\n");
  EXPECT_EQ(client.ReadLine(), "0");
}

TEST_F(CommandServerTest, AnswersEveryLineOfAPiece) {
  TestClient client(Port());
  client.Send("*IDN?\n*OPC?\n\n*CLS\n*TST?\n");
  EXPECT_EQ(client.ReadLine(), kIdentity);
  EXPECT_EQ(client.ReadLine(), "1");
  EXPECT_EQ(client.ReadLine(), "0");
}

TEST_F(CommandServerTest, ResponseLineComesInOnePiece) {
  TestClient client(Port());
  for (int count = 0; count < 100; ++count) {
    client.Send("*IDN?;*OPC?;*TST?;SYST:ERR?\n");
    EXPECT_EQ(client.ReadOnce(), std::string(kIdentity) + ";1;0;0,\"No error\"\n");
  }
}

TEST_F(CommandServerTest, HalfClosingClientGetsItsAnswersFirst) {
  TestClient client(Port());
  std::string lines;
  std::string answers;
  for (int count = 0; count < 3000; ++count) {
    lines += "*IDN?\n";
    answers += std::string(kIdentity) + "\n";
  }
  client.Send(lines);
  client.EndSending();
  EXPECT_EQ(client.ReadToEnd(), answers);
}

TEST_F(CommandServerTest, UnfinishedLastLineIsNotRun) {
  TestClient client(Port());
  client.Send("*OPC?\n*IDN?");
  client.EndSending();
  EXPECT_EQ(client.ReadToEnd(), "1\n");
}

TEST_F(CommandServerTest, StatusIsPerConnection) {
  TestClient one(Port());
  TestClient other(Port());
  EXPECT_EQ(one.Ask("NOTHING;*ESR?"), "32");
  EXPECT_EQ(other.Ask("*ESR?"), "0");
  EXPECT_EQ(other.Ask("SYST:ERR?"), "0,\"No error\"");
  EXPECT_EQ(one.Ask("SYST:ERR?"), "-113,\"Undefined header\"");
}

TEST_F(CommandServerTest, LineOfTheLimitIsRun) {
  TestClient client(Port());
  std::string line = "*OPC?";
  line.insert(0, LineReader::kLineLimit - line.size(), ' ');
  EXPECT_EQ(client.Ask(line), "1");
}

TEST_F(CommandServerTest, LineBeyondTheLimitIsReportedAndTheConnectionGoesOn) {
  TestClient client(Port());
  client.Send(std::string(3 * LineReader::kLineLimit, 'x') + "\n");
  EXPECT_EQ(client.Ask("*IDN?"), kIdentity);
  EXPECT_EQ(client.Ask("*ESR?;:SYST:ERR?;ERR?"), "8;-363,\"Input buffer overrun\";0,\"No error\"");
}

TEST_F(CommandServerTest, LongLineGivesALongResponse) {
  TestClient client(Port());
  std::string line;
  std::string answer;
  while (line.size() < 100000) {
    line += "*OPC?;";
    answer += "1;";
  }
  answer.pop_back();
  EXPECT_EQ(client.Ask(line), answer);
}

TEST_F(CommandServerTest, TooManyClientsAreTurnedAway) {
  std::deque<TestClient> clients;
  for (std::size_t count = 0; count < CommandServer::kMostClients; ++count) {
    ASSERT_EQ(clients.emplace_back(Port()).Ask("*OPC?"), "1");
  }
  EXPECT_EQ(TestClient(Port()).ReadToEnd(), "");
  EXPECT_EQ(clients.back().Ask("*IDN?"), kIdentity);
  clients.front().EndSending();
  EXPECT_EQ(clients.front().ReadToEnd(), "");
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (TestClient(Port()).Ask("*OPC?") != "1") {
    ASSERT_LT(std::chrono::steady_clock::now(), deadline);
  }
}

TEST_F(CommandServerTest, SecondServerOnTheSamePortFails) {
  CommandTable table;
  Device device;
  EXPECT_THROW(CommandServer(table, device, {"127.0.0.1", Port()}), std::system_error);
  EXPECT_THROW(CommandServer(table, device, {"nowhere", 0}), std::system_error);
}

/// Runs round trips of a well-behaved client next to what the test does.
class HostileClientTest : public CommandServerTest {
 protected:
  /// A hundred round trips, each within the deadline of the client.
  void ExpectService() {
    TestClient client(Port());
    for (int count = 0; count < 100; ++count) {
      ASSERT_EQ(client.Ask("*IDN?"), kIdentity);
      ASSERT_EQ(client.Ask("SYST:ERR:COUN?"), "0");
    }
  }
};

TEST_F(HostileClientTest, FloodingClientsLeaveOthersTheirTurn) {
  std::atomic<bool> stop = false;
  std::string flood;
  for (int count = 0; count < 500; ++count) flood += "*IDN?;NOTHING;*OPC?\n;;\n*CLS\n";
  std::deque<std::thread> flooders;
  for (int count = 0; count < 3; ++count) {
    flooders.emplace_back([&] {
      TestClient client(Port());
      while (!stop) {
        client.Send(flood);
        for (int line = 0; line < 500; ++line) {
          EXPECT_EQ(client.ReadLine(), std::string(kIdentity) + ";1");
        }
      }
    });
  }
  ExpectService();
  stop = true;
  for (std::thread& flooder : flooders) flooder.join();
}

TEST_F(HostileClientTest, VeryLongLinesLeaveOthersTheirTurn) {
  TestClient hostile(Port());
  std::string line;
  while (line.size() < 900000) line += "NOTHING:AT:ALL?;";
  std::thread sender([&] {
    for (int count = 0; count < 5; ++count) EXPECT_EQ(hostile.Ask(line + "*OPC?"), "1");
  });
  ExpectService();
  sender.join();
}

TEST_F(HostileClientTest, GarbageIsReportedToItsSenderOnly) {
  std::atomic<bool> stop = false;
  std::thread sender([&] {
    std::uint64_t state = 1;
    while (!stop) {
      TestClient client(Port());
      std::string garbage(50000, ' ');
      for (char& character : garbage) {
        state = state * 6364136223846793005U + 1442695040888963407U;
        character = static_cast<char>(state >> 56);
      }
      client.Send(garbage);
      client.EndSending();
      (void)client.ReadToEnd();
    }
  });
  ExpectService();
  stop = true;
  sender.join();
}

TEST_F(HostileClientTest, NeverReadingClientIsNotReadFromAndLosesNothing) {
  TestClient hostile(Port());
  std::string flood;
  for (int count = 0; count < 1000; ++count) flood += "*IDN?\n";
  // The pipe fills up: a server that went on reading would take all of this.
  constexpr std::size_t kMost = std::size_t{64} << 20;
  std::size_t total = 0;
  std::size_t sent = flood.size();
  while (sent == flood.size() && total < kMost) {
    sent = hostile.SendWhatFits(flood, 300);
    total += sent;
    if (total % (100 * flood.size()) == 0) ExpectService();
  }
  EXPECT_LT(total, kMost);
  ExpectService();

  hostile.EndSending();
  const std::string answers = hostile.ReadToEnd();
  const std::size_t lineCount = total / std::string("*IDN?\n").size();
  EXPECT_EQ(static_cast<std::size_t>(std::count(answers.begin(), answers.end(), '\n')), lineCount);
  EXPECT_EQ(answers.size(), lineCount * (std::string(kIdentity).size() + 1));
}

TEST_F(HostileClientTest, ClientThatVanishesAmidAnAnswerHurtsNobody) {
  for (int count = 0; count < 20; ++count) {
    TestClient hostile(Port());
    std::string flood;
    for (int lines = 0; lines < 2000; ++lines) flood += "*IDN?\n";
    hostile.Send(flood);
  }
  ExpectService();
}

}  // namespace
}  // namespace cvars::remote
