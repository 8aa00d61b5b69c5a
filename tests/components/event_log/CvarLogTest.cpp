#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "CComPtr.h"
#include "CComVariant.h"
#include "IVorEventLogMgr.h"
#include "components/event_log/LogFile.h"
#include "tests/components/event_log/EventLogFixture.h"

namespace {

namespace fs = std::filesystem;
using cvars::components::HomeLogFile;
using cvars::test::EventLog;
using cvars::test::OpenLog;
using testing::HasSubstr;
using testing::StartsWith;

// The reader program.
class CvarLog : public EventLog {
 protected:
  static std::string Run(const std::string& arguments) {
    std::string output;
    FILE* pipe = popen((CVARS_BINARY_DIR "/bin/cvar-log " + arguments + " 2>&1").c_str(), "r");
    std::array<char, 4096> block;
    while (const std::size_t count = fread(block.data(), 1, block.size(), pipe)) {
      output.append(block.data(), count);
    }
    m_status = pclose(pipe);
    return output;
  }

  void WriteLines(std::initializer_list<const char*> lines, int age = 0) {
    fs::create_directories(HomeLogFile().Folder());
    std::ofstream file(HomeLogFile().File(age), std::ios::app);
    for (const char* line : lines) file << line << '\n';
  }

  static inline int m_status = 0;
};

constexpr char kOld[] =
    R"({"time":"2026-11-20T08:00:00.000000Z","source":"CvarDev","type":4,"text":"old"})";
constexpr char kWarning[] =
    R"({"time":"2026-11-21T08:00:00.000000Z","source":"CvarDev","type":2,"text":"careful"})";
constexpr char kError[] =
    R"({"time":"2026-11-21T09:00:00.000000Z","source":"CvarEnum","type":1,"text":"wrong"})";
constexpr char kOldText[] = "2026-11-20T08:00:00.000000Z information CvarDev old\n";
constexpr char kWarningText[] = "2026-11-21T08:00:00.000000Z warning CvarDev careful\n";
constexpr char kErrorText[] = "2026-11-21T09:00:00.000000Z error CvarEnum wrong\n";

TEST_F(CvarLog, PrintsTheOldestFirstThroughAllFiles) {
  WriteLines({kOld}, 2);
  WriteLines({kWarning}, 1);
  WriteLines({kError});
  EXPECT_EQ(Run(""), std::string(kOldText) + kWarningText + kErrorText);
  EXPECT_EQ(m_status, 0);
}

TEST_F(CvarLog, AnEmptyLogPrintsNothing) {
  EXPECT_EQ(Run(""), "");
  EXPECT_EQ(m_status, 0);
}

TEST_F(CvarLog, CutLinesAreLeftOut) {
  WriteLines({kWarning, "{\"time\":\"2026-11-21T08:3", kError});
  EXPECT_EQ(Run(""), std::string(kWarningText) + kErrorText);
}

TEST_F(CvarLog, FiltersBySourceTypeAndTime) {
  WriteLines({kOld, kWarning, kError});
  EXPECT_EQ(Run("--source CvarEnum"), kErrorText);
  EXPECT_EQ(Run("--type warning"), kWarningText);
  EXPECT_EQ(Run("--type 4"), kOldText);
  EXPECT_EQ(Run("--since 2026-11-21"), std::string(kWarningText) + kErrorText);
  EXPECT_EQ(Run("--until 2026-11-21"), kOldText);
  EXPECT_EQ(Run("--since 2026-11-20T09:00 --until 2026-11-21T08:30:00Z"), kWarningText);
  EXPECT_EQ(Run("--source CvarDev --type error"), "");
}

TEST_F(CvarLog, PrintsTheStoredObjectsForTools) {
  WriteLines({kWarning, kError});
  EXPECT_EQ(Run("--json --type error"), std::string(kError) + '\n');
}

TEST_F(CvarLog, TellsItsUsageWhenNotUnderstood) {
  for (const char* arguments : {"--unknown", "--source", "--type loud", "--help"}) {
    EXPECT_THAT(Run(arguments), StartsWith("usage: cvar-log")) << arguments;
    EXPECT_EQ(WEXITSTATUS(m_status), 2) << arguments;
  }
}

// "cvar-log --follow" as a child process. Its output waits in a pipe of one page.
class FollowingReader {
 public:
  FollowingReader() {
    int output[2];
    EXPECT_EQ(pipe2(output, O_CLOEXEC), 0);
    EXPECT_EQ(fcntl(output[0], F_SETPIPE_SZ, kPipeBytes), kPipeBytes);
    m_output = output[0];
    m_process = fork();
    if (m_process == 0) {
      dup2(output[1], STDOUT_FILENO);
      execl(CVARS_BINARY_DIR "/bin/cvar-log", "cvar-log", "--follow", static_cast<char*>(nullptr));
      _exit(127);
    }
    close(output[1]);
  }
  ~FollowingReader() {
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
    close(m_output);
  }
  FollowingReader(const FollowingReader&) = delete;
  FollowingReader& operator=(const FollowingReader&) = delete;

  // The next line; what came of it when nothing more comes in time.
  std::string ReadLine() {
    std::size_t end = m_unread.find('\n');
    pollfd readable = {m_output, POLLIN, 0};
    while (end == std::string::npos && poll(&readable, 1, kDeadlineMs) == 1) {
      char block[kPipeBytes];
      const ssize_t count = read(m_output, block, sizeof(block));
      if (count <= 0) break;
      const std::size_t before = m_unread.size();
      m_unread.append(block, static_cast<std::size_t>(count));
      end = m_unread.find('\n', before);
    }
    const std::size_t length = end == std::string::npos ? m_unread.size() : end + 1;
    const std::string line = m_unread.substr(0, length);
    m_unread.erase(0, length);
    return line;
  }

  // @return whether the program waits for its output to be taken.
  bool WaitUntilFull() const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kDeadlineMs);
    for (int waiting = 0; waiting < kPipeBytes; std::this_thread::yield()) {
      if (ioctl(m_output, FIONREAD, &waiting) != 0) return false;
      if (std::chrono::steady_clock::now() > deadline) return false;
    }
    return true;
  }

 private:
  static constexpr int kPipeBytes = 4096;
  static constexpr int kDeadlineMs = 20'000;
  pid_t m_process = -1;
  int m_output = -1;
  std::string m_unread;
};

TEST_F(CvarLog, FollowsNewEntriesThroughAChangeOfFiles) {
  WriteLines({kOld});
  FollowingReader reader;
  EXPECT_EQ(reader.ReadLine(), kOldText);
  WriteLines({kWarning});
  EXPECT_EQ(reader.ReadLine(), kWarningText);
  fs::rename(HomeLogFile().File(0), HomeLogFile().File(1));
  WriteLines({kError});
  EXPECT_EQ(reader.ReadLine(), kErrorText);
}

TEST_F(CvarLog, FollowsALogThatDoesNotExistYet) {
  FollowingReader reader;
  const CComPtr<IVorEventLog> log = OpenLog(L"CvarDev");
  ASSERT_EQ(log->LogEvent(L"m", L"the first", 4, L"", CComVariant()), S_OK);
  EXPECT_THAT(reader.ReadLine(), testing::EndsWith("Z information CvarDev the first\n"));
}

// Ten entries to a file, so that the files move up at every tenth.
void LogLongEntries(int first, int end) {
  const CComPtr<IVorEventLog> log = OpenLog(L"CvarDev");
  const std::wstring filling(100'000, L'x');
  for (int number = first; number < end; ++number) {
    ASSERT_EQ(log->LogEvent(L"m", (std::to_wstring(number) + L" " + filling).c_str(), 4, L"",
                            CComVariant()),
              S_OK);
  }
}

void ExpectLongEntries(FollowingReader& reader, int first, int end) {
  for (int number = first; number < end; ++number) {
    const std::string line = reader.ReadLine();
    ASSERT_THAT(line.substr(0, 60), HasSubstr("CvarDev " + std::to_string(number) + " x"));
    EXPECT_THAT(line, testing::EndsWith("x\n"));
  }
}

TEST_F(CvarLog, NoEntryIsMissedWhenFilesMoveUpWhileOlderOnesArePrinted) {
  LogLongEntries(0, 25);
  FollowingReader reader;
  ASSERT_TRUE(reader.WaitUntilFull());  // it is inside its first, oldest file
  LogLongEntries(25, 55);
  ExpectLongEntries(reader, 0, 55);
}

TEST_F(CvarLog, NoEntryIsMissedWhenSeveralFilesComeBetweenTwoLooks) {
  WriteLines({kOld});
  FollowingReader reader;
  EXPECT_EQ(reader.ReadLine(), kOldText);
  LogLongEntries(0, 5);
  ASSERT_TRUE(reader.WaitUntilFull());
  LogLongEntries(5, 45);
  ExpectLongEntries(reader, 0, 45);
}

// With a journal in place, and a program for its reader that keeps its arguments in a file.
class CvarLogOfJournal : public CvarLog {
 protected:
  void SetUp() override {
    const fs::path socket = m_home.Folder() / "journal";
    std::ofstream(socket).flush();
    setenv("VORTANA_JOURNAL", socket.c_str(), 1);
    m_path = getenv("PATH");
    setenv("PATH", (m_home.Folder().string() + ":" + m_path).c_str(), 1);
  }
  void TearDown() override {
    setenv("PATH", m_path.c_str(), 1);
    CvarLog::TearDown();
  }

  void MakeJournalReader(const std::string& commands) const {
    const fs::path file = m_home.Folder() / "journalctl";
    std::ofstream(file) << "#!/bin/sh\necho \"$@\" >" << Arguments() << '\n' << commands;
    fs::permissions(file, fs::perms::owner_all);
  }
  void KeepInJournal(std::initializer_list<const char*> lines) const {
    std::string commands;
    for (const char* line : lines) commands += std::string("echo '") + line + "'\n";
    MakeJournalReader(commands);
  }
  fs::path Arguments() const { return m_home.Folder() / "arguments"; }

 private:
  std::string m_path;
};

TEST_F(CvarLogOfJournal, PrintsEntriesAsThoseOfTheFiles) {
  KeepInJournal({kOld, "an entry of somebody else", kWarning, kError});
  EXPECT_EQ(Run(""), std::string(kOldText) + kWarningText + kErrorText);
  EXPECT_EQ(m_status, 0);
  EXPECT_EQ(Run("--json --type error"), std::string(kError) + '\n');
}

TEST_F(CvarLogOfJournal, FiltersBySourceTypeAndTime) {
  KeepInJournal({kOld, kWarning, kError});
  EXPECT_EQ(Run("--source CvarEnum"), kErrorText);
  EXPECT_EQ(Run("--type warning"), kWarningText);
  EXPECT_EQ(Run("--since 2026-11-20T09:00 --until 2026-11-21T08:30:00Z"), kWarningText);
}

TEST_F(CvarLogOfJournal, AsksForAllEntriesOfTheLogAndNoOthers) {
  KeepInJournal({});
  EXPECT_EQ(Run(""), "");
  std::string arguments;
  std::getline(std::ifstream(Arguments()), arguments);
  EXPECT_EQ(arguments,
            "--quiet --no-pager --output=cat --output-fields=VORTANA_ENTRY --no-tail "
            "SYSLOG_IDENTIFIER=vortana");
}

TEST_F(CvarLogOfJournal, FollowsNewEntries) {
  MakeJournalReader(std::string("echo '") + kOld + "'\nread never <" +
                    (m_home.Folder() / "more").string());
  ASSERT_EQ(mkfifo((m_home.Folder() / "more").c_str(), 0600), 0);
  FollowingReader reader;
  EXPECT_EQ(reader.ReadLine(), kOldText);
  std::string arguments;
  std::getline(std::ifstream(Arguments()), arguments);
  EXPECT_THAT(arguments, testing::EndsWith(" --follow"));
}

TEST_F(CvarLogOfJournal, FailsWhenTheJournalCannotBeRead) {
  MakeJournalReader("exit 3\n");
  EXPECT_EQ(Run(""), "");
  EXPECT_EQ(WEXITSTATUS(m_status), 1);
}

TEST_F(CvarLogOfJournal, SaysWhenTheJournalHasNoReader) {
  setenv("PATH", m_home.Folder().c_str(), 1);
  EXPECT_THAT(Run(""), StartsWith("cvar-log: journalctl cannot be started"));
  EXPECT_EQ(WEXITSTATUS(m_status), 1);
}

}  // namespace
