#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

#include "CComBSTR.h"
#include "CDLLVersions.h"
#include "IsolatedHome.h"
#include "PlainLocale.h"
#include "TattlerClient.h"
#include "components/tattler/Trace.h"
#include "platform/Components.h"
#include "platform/JsonLine.h"
#include "platform/NamedMutex.h"
#include "platform/Processes.h"

namespace {

using cvars::TattlerClient;
using cvars::TattlerProbe;
using cvars::components::Message;
using cvars::components::MessageKind;
using cvars::components::Trace;
using cvars::platform::ReadJsonLine;
using testing::HasSubstr;
using testing::MatchesRegex;

bool MonitorIsThere() {
  const HANDLE mutex = OpenMutex(MUTEX_ALL_ACCESS, 0, L"Vortana Tattler Enabled");
  if (mutex != nullptr) CloseHandle(mutex);
  return mutex != nullptr;
}

// The monitor program, from its announcement on.
class RunningMonitor {
 public:
  explicit RunningMonitor(const char* option) {
    int output[2];
    if (pipe(output) != 0) std::abort();
    m_process = fork();
    if (m_process == 0) {
      dup2(output[1], STDOUT_FILENO);
      execl(CVARS_BINARY_DIR "/bin/tattler-monitor", "tattler-monitor", option,
            static_cast<char*>(nullptr));
      _exit(127);
    }
    close(output[1]);
    m_output = output[0];
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!MonitorIsThere() && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::yield();
    }
  }
  ~RunningMonitor() { End(); }
  RunningMonitor(const RunningMonitor&) = delete;
  RunningMonitor& operator=(const RunningMonitor&) = delete;

  std::string ReadLine() {
    std::string line;
    char character = 0;
    while (read(m_output, &character, 1) == 1 && character != '\n') line += character;
    return line;
  }

  // @return the exit code
  int End() {
    if (m_process < 0) return -1;
    kill(m_process, SIGTERM);
    int status = 0;
    waitpid(m_process, &status, 0);
    m_process = -1;
    close(m_output);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t m_process = -1;
  int m_output = -1;
};

class TattlerMonitor : public testing::Test {
 protected:
  cvars::test::IsolatedHome m_home;
};

TEST_F(TattlerMonitor, StartedBeforeShowsEntriesExitsValuesAndDurations) {
  RunningMonitor monitor("--json");
  ASSERT_TRUE(MonitorIsThere());
  TattlerClient client;
  { const TattlerProbe probe(client, L"Trigger::Arm \u03A9", 11, 22, nullptr); }
  const auto entry = ReadJsonLine(monitor.ReadLine());
  const auto exit = ReadJsonLine(monitor.ReadLine());
  ASSERT_TRUE(entry);
  ASSERT_TRUE(exit);
  EXPECT_EQ(entry->at("probe"), "Trigger::Arm \xCE\xA9");
  EXPECT_EQ(entry->at("kind"), "entry");
  EXPECT_EQ(entry->at("first"), "11");
  EXPECT_EQ(entry->at("second"), "22");
  EXPECT_EQ(entry->at("process"), std::to_string(GetCurrentProcessId()));
  EXPECT_EQ(entry->at("thread"), std::to_string(GetCurrentThreadId()));
  EXPECT_EQ(entry->at("program"), program_invocation_short_name);
  EXPECT_FALSE(entry->contains("duration_us"));
  EXPECT_EQ(exit->at("kind"), "exit");
  EXPECT_EQ(exit->at("probe"), entry->at("probe"));
  const cvars::test::PlainLocale plain;
  EXPECT_GT(std::stod(exit->at("duration_us")), 0.0);
}

TEST_F(TattlerMonitor, ShowsTheProbesOfTheLibrary) {
  RunningMonitor monitor("--json");
  CDLLVersions versions;
  ULONG packed = 0;
  CComBSTR text;
  (void)versions.RetrieveFileVersion(L"C:\\missing.dll", &packed, &text);
  EXPECT_THAT(monitor.ReadLine(), HasSubstr("\"probe\":\"CDLLVersions::RetrieveFileVersion\""));
}

TEST_F(TattlerMonitor, StartedAfterTheFirstProbeShowsNothingOfTheProgram) {
  TattlerClient early;
  { const TattlerProbe probe(early, L"Early", 0, 0, nullptr); }
  RunningMonitor monitor("--json");
  { const TattlerProbe probe(early, L"Early", 0, 0, nullptr); }
  TattlerClient late;
  { const TattlerProbe probe(late, L"Late", 0, 0, nullptr); }
  EXPECT_THAT(monitor.ReadLine(), HasSubstr("\"probe\":\"Late\""));
}

TEST_F(TattlerMonitor, LeavesNothingBehindWhenItEnds) {
  RunningMonitor monitor("--json");
  ASSERT_TRUE(MonitorIsThere());
  TattlerClient client;
  EXPECT_NE(client.Identifier(L"Probe", nullptr), kNoProbe);
  EXPECT_EQ(monitor.End(), 0);
  EXPECT_FALSE(MonitorIsThere());
  EXPECT_FALSE(std::filesystem::exists(m_home.Folder() / "tattler.socket"));
  // A program that was connected goes on.
  { const TattlerProbe probe(client, L"Probe", 0, 0, nullptr); }
}

TEST_F(TattlerMonitor, ASecondOneRefusesToRun) {
  RunningMonitor monitor("--json");
  const int status = std::system(CVARS_BINARY_DIR "/bin/tattler-monitor 2>/dev/null");
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_TRUE(MonitorIsThere());
}

CComPtr<IVorTattlerClient> MakeComponent() {
  CComPtr<IVorTattlerClient> component;
  EXPECT_EQ(cvars::platform::CreateComponent(L"Vortana.TattlerClient", IID_IVorTattlerClient,
                                             reinterpret_cast<void**>(&component)),
            S_OK);
  return component;
}

TEST_F(TattlerMonitor, TheSameNameAlwaysHasTheSameIdentifier) {
  RunningMonitor monitor("--json");
  const CComPtr<IVorTattlerClient> first = MakeComponent();
  const CComPtr<IVorTattlerClient> second = MakeComponent();
  ULONG identifiers[3] = {};
  EXPECT_EQ(first->RegisterProbe(L"One", &identifiers[0]), S_OK);
  EXPECT_EQ(second->RegisterProbe(L"One", &identifiers[1]), S_OK);
  EXPECT_EQ(first->RegisterProbe(L"Two", &identifiers[2]), S_OK);
  EXPECT_EQ(identifiers[0], identifiers[1]);
  EXPECT_NE(identifiers[0], identifiers[2]);
  EXPECT_EQ(first->RegisterProbe(L"One", nullptr), E_POINTER);
  EXPECT_EQ(first->RegisterProbe(L"", &identifiers[0]), E_INVALIDARG);
  EXPECT_EQ(identifiers[0], kNoProbe);
}

TEST_F(TattlerMonitor, ABusyMonitorNeverHoldsAProgramUp) {
  RunningMonitor monitor("--json");  // whose output nobody reads, so that it stands still
  TattlerClient client;
  for (int round = 0; round < 20'000; ++round) {
    const TattlerProbe probe(client, L"Probe", static_cast<ULONG>(round), 0, nullptr);
  }
}

TEST_F(TattlerMonitor, WithoutMonitorTheComponentWantsNoReports) {
  const CComPtr<IVorTattlerClient> component = MakeComponent();
  VARIANT_BOOL enabled = VARIANT_TRUE;
  EXPECT_EQ(component->IsMonitoringEnabled(&enabled), S_OK);
  EXPECT_EQ(enabled, VARIANT_FALSE);
  EXPECT_EQ(component->IsMonitoringEnabled(nullptr), E_POINTER);
}

Message Report(std::uint32_t identifier, std::uint32_t kind, std::uint64_t timeUs) {
  Message message = {};
  message.kind = MessageKind::kReport;
  message.identifier = identifier;
  message.entryOrExit = kind;
  message.thread = 7;
  message.monotonicTimeNs = timeUs * 1000;
  return message;
}

Message Named(MessageKind kind, std::uint32_t identifier) {
  Message message = {};
  message.kind = kind;
  message.identifier = identifier;
  return message;
}

TEST(TattlerTrace, IndentsWhatIsNestedAndTimesIt) {
  Trace trace(42, false);
  EXPECT_EQ(trace.LineOf(Named(MessageKind::kProgram, 0), "scope"), "");
  EXPECT_EQ(trace.LineOf(Named(MessageKind::kName, 1), "Outer"), "");
  EXPECT_EQ(trace.LineOf(Named(MessageKind::kName, 2), "Inner"), "");
  const std::string start = "1970-01-01T00:00:00.000000Z scope[42] 7 ";
  EXPECT_EQ(trace.LineOf(Report(1, 2, 1000), ""), start + "> Outer (0, 0)");
  EXPECT_EQ(trace.LineOf(Report(2, 2, 1010), ""), start + "  > Inner (0, 0)");
  EXPECT_EQ(trace.LineOf(Report(2, 3, 1015), ""), start + "  < Inner (0, 0) 5.0 us");
  EXPECT_EQ(trace.LineOf(Report(1, 3, 1100), ""), start + "< Outer (0, 0) 100.0 us");
}

TEST(TattlerTrace, AnExitWithoutEntryHasNoDuration) {
  Trace trace(42, false);
  EXPECT_EQ(trace.LineOf(Report(9, 3, 5), ""),
            "1970-01-01T00:00:00.000000Z [42] 7 < (unknown probe) (0, 0)");
}

TEST(TattlerTrace, TellsWhatWasLost) {
  Trace trace(42, true);
  Message lost = Named(MessageKind::kLost, 0);
  lost.firstValue = 12;
  EXPECT_THAT(trace.LineOf(lost, ""), HasSubstr("\"lost\":12"));
}

}  // namespace
