#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "CComPtr.h"
#include "CComVariant.h"
#include "IVorEventLogMgr.h"
#include "SafeArray.h"
#include "components/event_log/LogFile.h"
#include "platform/Components.h"
#include "platform/JsonLine.h"
#include "platform/Processes.h"
#include "tests/components/event_log/EventLogFixture.h"

namespace {

namespace fs = std::filesystem;
using cvars::components::HomeLogFile;
using cvars::components::LogFile;
using cvars::platform::JsonMembers;
using cvars::platform::ReadJsonLine;
using cvars::test::EventLog;
using cvars::test::OpenLog;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::vector<std::string> LinesOf(const fs::path& path) {
  std::vector<std::string> lines;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

// All whole entries of the home's log, the oldest first.
std::vector<JsonMembers> Entries() {
  std::vector<JsonMembers> entries;
  for (const fs::path& path : HomeLogFile().Files()) {
    for (const std::string& line : LinesOf(path)) {
      if (auto entry = ReadJsonLine(line)) entries.push_back(std::move(*entry));
    }
  }
  return entries;
}

TEST_F(EventLog, ChecksItsArguments) {
  CComPtr<IVorEventLogMgr> manager;
  ASSERT_EQ(cvars::platform::CreateComponent(L"Vortana.EventLogMgr.1", IID_IVorEventLogMgr,
                                             reinterpret_cast<void**>(&manager)),
            S_OK);
  EXPECT_EQ(manager->GetEventLog(L"CvarDev", nullptr), E_POINTER);
  CComPtr<IVorEventLog> log;
  EXPECT_EQ(manager->GetEventLog(L"", &log), E_INVALIDARG);
  EXPECT_EQ(log.p, nullptr);
}

TEST_F(EventLog, WithoutAPlaceToWriteToNoLogIsOpened) {
  CComPtr<IVorEventLogMgr> manager;
  ASSERT_EQ(cvars::platform::CreateComponent(L"Vortana.EventLogMgr.1", IID_IVorEventLogMgr,
                                             reinterpret_cast<void**>(&manager)),
            S_OK);
  std::ofstream(m_home.Folder() / "logs") << "a file stands where the folder should be";
  CComPtr<IVorEventLog> log;
  EXPECT_EQ(manager->GetEventLog(L"CvarDev", &log), E_FAIL);
  EXPECT_EQ(log.p, nullptr);
}

TEST_F(EventLog, AnEntryIsOneLineWithAllThatWasGiven) {
  const CComPtr<IVorEventLog> log = OpenLog(L"CvarDev");
  ASSERT_EQ(log->LogEvent(L"Recursive Notification", L"cvar: Gain\n(\"x\")", 2, L"extra \u03A9",
                          CComVariant(42)),
            S_OK);
  const auto lines = LinesOf(HomeLogFile().File(0));
  ASSERT_EQ(lines.size(), 1u);
  const auto entry = ReadJsonLine(lines[0]);
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->at("source"), "CvarDev");
  EXPECT_EQ(entry->at("type"), "2");
  EXPECT_EQ(entry->at("message"), "Recursive Notification");
  EXPECT_EQ(entry->at("text"), "cvar: Gain\n(\"x\")");
  EXPECT_EQ(entry->at("extra"), "extra \xCE\xA9");
  EXPECT_EQ(entry->at("data"), "42");
  EXPECT_EQ(entry->at("program"), program_invocation_short_name);
  EXPECT_EQ(entry->at("process"), std::to_string(GetCurrentProcessId()));
  EXPECT_EQ(entry->at("thread"), std::to_string(GetCurrentThreadId()));
  EXPECT_THAT(entry->at("time"), testing::MatchesRegex("20..-..-..T..:..:..\\.......Z"));
}

struct DataCase {
  const char* name;
  CComVariant data;
  HRESULT result;
  const char* stored;  // null when the entry has none
};

TEST_F(EventLog, KeepsDataThatHasAText) {
  SAFEARRAY* bytes = SafeArrayCreateVector(VT_UI1, 0, 3);
  void* content = nullptr;
  SafeArrayAccessData(bytes, &content);
  static_cast<BYTE*>(content)[0] = 0xDE;
  static_cast<BYTE*>(content)[1] = 0xAD;
  static_cast<BYTE*>(content)[2] = 0x01;
  SafeArrayUnaccessData(bytes);
  CComVariant bytesData;
  bytesData.vt = VT_ARRAY | VT_UI1;
  bytesData.parray = bytes;
  CComVariant doubles;
  doubles.vt = VT_ARRAY | VT_R8;
  doubles.parray = SafeArrayCreateVector(VT_R8, 0, 2);
  CComVariant object;
  object.vt = VT_UNKNOWN;
  const DataCase cases[] = {
      {"Empty", CComVariant(), S_OK, nullptr},
      {"Negative", CComVariant(-7), S_OK, "-7"},
      {"Real", CComVariant(0.5), S_OK, "0.5"},
      {"Flag", CComVariant(true), S_OK, "true"},
      {"Text", CComVariant(L"a \"text\""), S_OK, "a \"text\""},
      {"LargeUnsigned", CComVariant(18446744073709551615ull), S_OK, "18446744073709551615"},
      {"Bytes", bytesData, S_OK, "dead01"},
      {"OtherArray", doubles, E_INVALIDARG, nullptr},
      {"Object", object, E_INVALIDARG, nullptr},
  };
  const CComPtr<IVorEventLog> log = OpenLog(L"CvarDev");
  for (const DataCase& row : cases) {
    const std::size_t before = Entries().size();
    EXPECT_EQ(log->LogEvent(L"m", L"t", 4, L"e", row.data), row.result) << row.name;
    const auto entries = Entries();
    ASSERT_EQ(entries.size(), before + (row.result == S_OK ? 1 : 0)) << row.name;
    if (row.stored != nullptr) {
      EXPECT_EQ(entries.back().at("data"), row.stored) << row.name;
    } else if (row.result == S_OK) {
      EXPECT_FALSE(entries.back().contains("data")) << row.name;
    }
  }
}

TEST_F(EventLog, AnyEventTypeIsStoredAsItStands) {
  const CComPtr<IVorEventLog> log = OpenLog(L"CvarDev");
  for (const long type : {1L, 2L, 4L, 0L, -3L, 77L}) {
    ASSERT_EQ(log->LogEvent(L"m", L"t", type, L"e", CComVariant()), S_OK);
    EXPECT_EQ(Entries().back().at("type"), std::to_string(type));
  }
}

TEST_F(EventLog, AnEntryBehindACutOneStartsOnItsOwnLine) {
  const CComPtr<IVorEventLog> log = OpenLog(L"CvarDev");
  ASSERT_EQ(log->LogEvent(L"first", L"t", 4, L"e", CComVariant()), S_OK);
  std::ofstream(HomeLogFile().File(0), std::ios::app) << "{\"time\":\"2026-";
  ASSERT_EQ(log->LogEvent(L"second", L"t", 4, L"e", CComVariant()), S_OK);
  const auto entries = Entries();
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].at("message"), "first");
  EXPECT_EQ(entries[1].at("message"), "second");
}

TEST_F(EventLog, FullFilesMoveUpAndTheOldestGoes) {
  const CComPtr<IVorEventLog> log = OpenLog(L"CvarDev");
  const std::wstring text(100'000, L'x');
  constexpr int kEntries = 150;
  for (int number = 0; number < kEntries; ++number) {
    ASSERT_EQ(log->LogEvent(std::to_wstring(number).c_str(), text.c_str(), 4, L"", CComVariant()),
              S_OK);
  }
  EXPECT_EQ(HomeLogFile().Files().size(), 1u + LogFile::kOldFileCount);
  for (const fs::path& path : HomeLogFile().Files()) {
    EXPECT_LE(fs::file_size(path), LogFile::kLargestFileBytes);
  }
  // Ten entries to a file: the last of them all, without a gap.
  const auto entries = Entries();
  ASSERT_EQ(entries.size(), 80u);
  for (std::size_t index = 0; index < entries.size(); ++index) {
    EXPECT_EQ(entries[index].at("message"),
              std::to_string(kEntries - 80 + static_cast<int>(index)));
  }
}

TEST_F(EventLog, AnEntryLargerThanAFileIsKept) {
  const CComPtr<IVorEventLog> log = OpenLog(L"CvarDev");
  const std::wstring text(LogFile::kLargestFileBytes + 10, L'x');
  ASSERT_EQ(log->LogEvent(L"m", text.c_str(), 4, L"", CComVariant()), S_OK);
  ASSERT_EQ(log->LogEvent(L"next", L"t", 4, L"", CComVariant()), S_OK);
  const auto entries = Entries();
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].at("text").size(), text.size());
}

TEST_F(EventLog, AKilledProcessLosesAtMostTheEntryBeingWritten) {
  constexpr int kRounds = 25;
  std::vector<int> written(kRounds, 0);
  for (int round = 0; round < kRounds; ++round) {
    int counts[2];
    ASSERT_EQ(pipe(counts), 0);
    const pid_t child = fork();
    if (child == 0) {
      const CComPtr<IVorEventLog> log = OpenLog((L"Round" + std::to_wstring(round)).c_str());
      const std::wstring text(3000, L'y');
      for (int number = 0;; ++number) {
        if (log->LogEvent(std::to_wstring(number).c_str(), text.c_str(), 4, L"", CComVariant()) !=
            S_OK) {
          _exit(1);
        }
        (void)!write(counts[1], "x", 1);  // one for each entry that is said to be kept
      }
    }
    close(counts[1]);
    char token = 0;
    // Kill it in the midst of its work, each time at another entry.
    for (int seen = 0; seen < 5 + round; ++seen) {
      ASSERT_EQ(read(counts[0], &token, 1), 1);
      ++written[static_cast<std::size_t>(round)];
    }
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    while (read(counts[0], &token, 1) == 1) ++written[static_cast<std::size_t>(round)];
    close(counts[0]);
  }
  const auto entries = Entries();
  for (int round = 0; round < kRounds; ++round) {
    int found = 0;
    for (const JsonMembers& entry : entries) {
      if (entry.at("source") != "Round" + std::to_string(round)) continue;
      EXPECT_EQ(entry.at("message"), std::to_string(found));
      ++found;
    }
    const int kept = written[static_cast<std::size_t>(round)];
    EXPECT_GE(found, kept);
    EXPECT_LE(found, kept + 1);
  }
}

TEST_F(EventLog, ThreadsAndProcessesDoNotMixTheirEntries) {
  const auto writeMany = [](int writer) {
    const CComPtr<IVorEventLog> log = OpenLog((L"Writer" + std::to_wstring(writer)).c_str());
    for (int number = 0; number < 100; ++number) {
      EXPECT_EQ(log->LogEvent(std::to_wstring(number).c_str(), L"t", 4, L"", CComVariant()), S_OK);
    }
  };
  std::vector<pid_t> children;
  for (int writer = 0; writer < 2; ++writer) {
    const pid_t child = fork();
    if (child == 0) {
      writeMany(writer);
      _exit(0);
    }
    children.push_back(child);
  }
  std::thread first(writeMany, 2);
  std::thread second(writeMany, 3);
  first.join();
  second.join();
  for (const pid_t child : children) waitpid(child, nullptr, 0);
  std::size_t lines = 0;
  for (const fs::path& path : HomeLogFile().Files()) lines += LinesOf(path).size();
  EXPECT_EQ(lines, 400u);
  EXPECT_EQ(Entries().size(), 400u);
}

// Stands in for the socket of the system's journal.
class FakeJournal {
 public:
  explicit FakeJournal(const fs::path& path) : m_socket(socket(AF_UNIX, SOCK_DGRAM, 0)) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    path.string().copy(address.sun_path, sizeof(address.sun_path) - 1);
    EXPECT_EQ(bind(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    setenv("VORTANA_JOURNAL", path.c_str(), 1);
  }
  ~FakeJournal() { close(m_socket); }
  FakeJournal(const FakeJournal&) = delete;
  FakeJournal& operator=(const FakeJournal&) = delete;

  std::string Receive() const {
    std::string datagram(64 * 1024, '\0');
    const ssize_t size = recv(m_socket, datagram.data(), datagram.size(), MSG_DONTWAIT);
    datagram.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    return datagram;
  }

 private:
  int m_socket;
};

// A field as the journal takes it: its name, a line feed, the length in eight bytes, the value.
std::string Field(const std::string& name, const std::string& value) {
  std::string field = name + '\n';
  for (int byte = 0; byte < 8; ++byte) {
    field += static_cast<char>((value.size() >> (8 * byte)) & 0xFF);
  }
  return field + value + '\n';
}

TEST_F(EventLog, EntriesGoToTheJournalWhereThereIsOne) {
  const FakeJournal journal(m_home.Folder() / "journal");
  const CComPtr<IVorEventLog> log = OpenLog(L"CvarDev");
  ASSERT_EQ(log->LogEvent(L"message", L"two\nlines", 2, L"extra", CComVariant(5)), S_OK);
  const std::string datagram = journal.Receive();
  EXPECT_THAT(datagram,
              StartsWith(Field("MESSAGE", "two\nlines") + Field("PRIORITY", "4") +
                         Field("SYSLOG_IDENTIFIER", "vortana") +
                         Field("VORTANA_SOURCE", "CvarDev") + Field("VORTANA_TYPE", "2")));
  EXPECT_THAT(datagram, HasSubstr("\"message\":\"message\""));
  EXPECT_TRUE(HomeLogFile().Files().empty());
}

TEST_F(EventLog, WhatTheJournalDoesNotTakeGoesToTheFile) {
  const FakeJournal journal(m_home.Folder() / "journal");
  const CComPtr<IVorEventLog> log = OpenLog(L"CvarDev");
  const std::wstring huge(4 << 20, L'x');
  ASSERT_EQ(log->LogEvent(L"huge", huge.c_str(), 2, L"", CComVariant()), S_OK);
  EXPECT_EQ(journal.Receive(), "");
  ASSERT_EQ(Entries().size(), 1u);
  EXPECT_EQ(Entries()[0].at("message"), "huge");
}

}  // namespace
