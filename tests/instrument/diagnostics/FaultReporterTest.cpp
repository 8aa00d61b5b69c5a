#include "instrument/diagnostics/FaultReporter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "IsolatedHome.h"
#include "LogEntries.h"
#include "RecordingListener.h"
#include "SampleCvars.h"
#include "platform/Processes.h"
#include "tests/platform/system_modules/MinidumpReader.h"

namespace {

namespace fs = std::filesystem;
using cvars::diagnostics::FaultReporter;
using cvars::test::LogEntries;
using cvars::test::MinidumpReader;
using cvars::test::RecordingListener;
using cvars::test::SampleCvar;
using testing::HasSubstr;
using testing::MatchesRegex;

// Writes through a null pointer; the sanitizer's own check of it is off, so that the fault happens.
[[gnu::noinline]] __attribute__((no_sanitize("undefined"))) void WriteThroughNull() {
  int* volatile nowhere = nullptr;
  *static_cast<volatile int*>(nowhere) = 1;
}

class FaultReporterTest : public testing::Test {
 protected:
  void SetUp() override { setenv("VORTANA_JOURNAL", "none", 1); }
  void TearDown() override { unsetenv("VORTANA_JOURNAL"); }

  fs::path Dump(const char* name) const {
    return m_home.Folder() / "drive_c" / "Vortana" / "Quillon" / "Logs" / name;
  }

  cvars::test::IsolatedHome m_home;
};
using FaultReporterDeathTest = FaultReporterTest;

TEST_F(FaultReporterTest, AListenersFaultIsReportedAndTheNextListenerCalled) {
  const FaultReporter reporter;
  const auto cvar = CvarObject<SampleCvar>::Create();
  const auto bad = RecordingListener::Create();
  const auto good = RecordingListener::Create();
  bad->onNotify = [](IVorCvar*, NOTIFYTYPE) { WriteThroughNull(); };
  ASSERT_EQ(cvar->AttachCvarEventSink(bad), S_OK);
  ASSERT_EQ(cvar->AttachCvarEventSink(good), S_OK);

  EXPECT_EQ(cvar->ForceNotification(NOTIFY_VALUE), E_FAIL);
  EXPECT_EQ(good->TakeMasks(), std::vector<NOTIFYTYPE>{NOTIFY_VALUE});
  auto entries = LogEntries(m_home.Folder());
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].at("source"), "CvarScope");
  EXPECT_EQ(entries[0].at("type"), "1");
  EXPECT_THAT(entries[0].at("text"), MatchesRegex("Fault: 0xc0000005 at 0x[0-9a-f]+, mini-dump "
                                                  "C:.Vortana.Quillon.Logs.VorMiniDump.dmp"));
  EXPECT_EQ(MinidumpReader(Dump("VorMiniDump.dmp")).ExceptionInfo().thread, GetCurrentThreadId());

  EXPECT_EQ(cvar->ForceNotification(NOTIFY_RANGE), E_FAIL);
  EXPECT_EQ(good->TakeMasks(), std::vector<NOTIFYTYPE>{NOTIFY_RANGE});
  entries = LogEntries(m_home.Folder());
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_THAT(entries[1].at("text"), HasSubstr("VorMiniDump1.dmp"));
  EXPECT_TRUE(fs::exists(Dump("VorMiniDump1.dmp")));
}

TEST_F(FaultReporterTest, FaultsOfSeveralThreadsAreReportedEach) {
  const FaultReporter reporter;
  std::vector<std::thread> threads;
  for (int number = 0; number < 3; ++number) {
    threads.emplace_back([] {
      EXPECT_EQ(cvars::platform::CallGuarded(
                    [](void*) -> HRESULT {
                      WriteThroughNull();
                      return S_OK;
                    },
                    nullptr),
                E_FAIL);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(LogEntries(m_home.Folder()).size(), 3u);
  EXPECT_TRUE(fs::exists(Dump("VorMiniDump2.dmp")));
}

TEST_F(FaultReporterDeathTest, AFaultOutsideAListenerIsReportedAndEndsTheProcess) {
  const pid_t child = fork();
  if (child == 0) {
    const FaultReporter reporter;
    WriteThroughNull();
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  // By the signal, or by the report of the sanitizer that handles the signal.
  EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) != 0) << status;
  ASSERT_EQ(LogEntries(m_home.Folder()).size(), 1u);
  EXPECT_EQ(LogEntries(m_home.Folder())[0].at("message"), "Fault");
  EXPECT_TRUE(fs::exists(Dump("VorMiniDump.dmp")));
}

LONG Contain(EXCEPTION_POINTERS*) { return EXCEPTION_EXECUTE_HANDLER; }

TEST_F(FaultReporterTest, PutsTheFilterBackThatWasThere) {
  SetUnhandledExceptionFilter(&Contain);
  { const FaultReporter reporter; }
  EXPECT_EQ(SetUnhandledExceptionFilter(nullptr), &Contain);
}

}  // namespace
