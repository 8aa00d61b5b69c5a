#include "instrument/diagnostics/InstrumentLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

#include "IsolatedHome.h"
#include "LogEntries.h"
#include "tests/libraries/cvars/diagnostics/FakeEventLog.h"
#include "tests/libraries/cvars/diagnostics/RecordingPresenter.h"

namespace {

using cvars::diagnostics::InstrumentLog;
using cvars::test::LogEntries;
using testing::HasSubstr;

class InstrumentLogTest : public testing::Test {
 protected:
  void SetUp() override { setenv("VORTANA_JOURNAL", "none", 1); }
  void TearDown() override { unsetenv("VORTANA_JOURNAL"); }

  cvars::test::IsolatedHome m_home;
  InstrumentLog m_log;
};

TEST_F(InstrumentLogTest, TellsWhatHappened) {
  m_log.Started("127.0.0.1", 5025);
  m_log.ClientConnected("127.0.0.1:40000");
  m_log.SettingRefused("127.0.0.1:40000", "TRIGGER:SOURCE C9", "-224,\"Illegal parameter value\"");
  m_log.ClientGone("127.0.0.1:40000");
  m_log.Faulted(0xC0000005, 0x1234, L"C:\\Logs\\VorMiniDump.dmp");
  m_log.Faulted(0xC000001D, 0, L"");
  m_log.Stopped();
  const struct {
    const char* type;
    const char* message;
    const char* text;
    const char* extra;
  } kExpected[] = {
      {"4", "Started", "Started: listens on 127.0.0.1 port 5025", "listens on 127.0.0.1 port 5025"},
      {"4", "Client connected", "Client connected: 127.0.0.1:40000", "127.0.0.1:40000"},
      {"2", "Setting refused",
       "Setting refused: TRIGGER:SOURCE C9 of 127.0.0.1:40000: -224,\"Illegal parameter value\"",
       "TRIGGER:SOURCE C9 of 127.0.0.1:40000: -224,\"Illegal parameter value\""},
      {"4", "Client gone", "Client gone: 127.0.0.1:40000", "127.0.0.1:40000"},
      {"1", "Fault", "Fault: 0xc0000005 at 0x1234, mini-dump C:\\Logs\\VorMiniDump.dmp",
       "0xc0000005 at 0x1234, mini-dump C:\\Logs\\VorMiniDump.dmp"},
      {"1", "Fault", "Fault: 0xc000001d at 0x0, no mini-dump", "0xc000001d at 0x0, no mini-dump"},
      {"4", "Stopped", "Stopped", ""},
  };
  const auto entries = LogEntries(m_home.Folder());
  ASSERT_EQ(entries.size(), std::size(kExpected));
  for (std::size_t index = 0; index < entries.size(); ++index) {
    EXPECT_EQ(entries[index].at("source"), "CvarScope");
    EXPECT_EQ(entries[index].at("type"), kExpected[index].type);
    EXPECT_EQ(entries[index].at("message"), kExpected[index].message);
    EXPECT_EQ(entries[index].at("text"), kExpected[index].text);
    EXPECT_EQ(entries[index].at("extra"), kExpected[index].extra);
  }
}

TEST_F(InstrumentLogTest, ShowsWhatIsNotPrintableAsSuch) {
  m_log.SettingRefused("c", "A \x1B[2J\xFF \xCE\xA9", "-101");
  EXPECT_EQ(LogEntries(m_home.Folder()).at(0).at("extra"),
            "A \xEF\xBF\xBD[2J\xEF\xBF\xBD \xCE\xA9 of c: -101");
}

TEST_F(InstrumentLogTest, CutsLongCommands) {
  m_log.SettingRefused("c", std::string(201, 'x'), "-112");
  EXPECT_EQ(LogEntries(m_home.Folder()).at(0).at("extra"),
            std::string(200, 'x') + "... of c: -112");
}

TEST_F(InstrumentLogTest, AFloodOfRefusalsEndsUntilTheClientIsGone) {
  for (int number = 1; number <= InstrumentLog::kMostRefusals + 5; ++number) {
    m_log.SettingRefused("flood", "X" + std::to_string(number), "-113");
  }
  m_log.SettingRefused("other", "Y", "-113");
  m_log.ClientGone("flood");
  m_log.SettingRefused("flood", "Z", "-113");
  const auto entries = LogEntries(m_home.Folder());
  ASSERT_EQ(entries.size(), 104u);  // a hundred, the last word of them, and three
  EXPECT_EQ(entries[99].at("extra"), "X100 of flood: -113");
  EXPECT_EQ(entries[100].at("extra"), "no more are told of flood until it is gone");
  EXPECT_EQ(entries[101].at("extra"), "Y of other: -113");
  EXPECT_EQ(entries[103].at("extra"), "Z of flood: -113");
}

TEST_F(InstrumentLogTest, WithoutALogTheUserIsToldOnce) {
  std::filesystem::create_directories(m_home.Folder() / "drive_c/Vortana/Quillon/Logs");
  cvars::test::ForgetEventLogManager();
  const cvars::test::RecordingPresenter presenter;
  m_log.Started("127.0.0.1", 5025);
  m_log.Stopped();
  ASSERT_EQ(presenter.Boxes().size(), 1u);
  EXPECT_THAT(presenter.Boxes()[0].text, HasSubstr(L"Hint1: Started\n"));
  EXPECT_TRUE(LogEntries(m_home.Folder()).empty());
}

}  // namespace
