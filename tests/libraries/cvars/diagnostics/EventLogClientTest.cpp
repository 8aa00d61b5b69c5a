#include "EventLogClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <regex>

#include "CComVariant.h"
#include "FakeEventLog.h"
#include "IsolatedHome.h"
#include "RecordingPresenter.h"
#include "platform/Processes.h"

namespace {

namespace fs = std::filesystem;
using cvars::EventLogClient;
using cvars::test::fakeEventLog;
using cvars::test::FakeEventLogMgr;
using cvars::test::RecordingPresenter;
using cvars::test::RegisteredClass;

class EventLogClientTest : public testing::Test {
 protected:
  void SetUp() override { fakeEventLog = {}; }
  cvars::test::IsolatedHome m_home;
  RecordingPresenter m_presenter;
};
using EventLogClientWithManager = EventLogClientTest;
using EventLogClientWithoutManager = EventLogClientTest;

TEST_F(EventLogClientWithManager, OpensTheLogAtTheFirstEntryAndKeepsIt) {
  const RegisteredClass<FakeEventLogMgr> manager(L"Vortana.EventLogMgr.1", CLSID_EventLogMgr);
  EventLogClient client(L"CvarEnum");
  EXPECT_EQ(fakeEventLog.managersMade, 0);
  EXPECT_EQ(client.LogEvent(L"message", L"text", 1, L"extra", CComVariant(7)), S_OK);
  EXPECT_EQ(client.LogEvent(L"second", L"", 4, L"", CComVariant()), S_OK);
  EXPECT_EQ(fakeEventLog.managersMade, 1);
  EXPECT_EQ(fakeEventLog.logsOpened, 1);
  ASSERT_EQ(fakeEventLog.entries.size(), 2u);
  const auto& first = fakeEventLog.entries[0];
  EXPECT_EQ(first.source, L"CvarEnum");
  EXPECT_EQ(first.message, L"message");
  EXPECT_EQ(first.text, L"text");
  EXPECT_EQ(first.eventType, 1);
  EXPECT_EQ(first.extraText, L"extra");
  EXPECT_EQ(first.dataType, VT_I4);
  EXPECT_EQ(fakeEventLog.entries[1].dataType, VT_EMPTY);
  EXPECT_TRUE(m_presenter.Boxes().empty());
}

TEST_F(EventLogClientWithManager, TheAnswerOfTheLogIsHandedBack) {
  const RegisteredClass<FakeEventLogMgr> manager(L"Vortana.EventLogMgr.1", CLSID_EventLogMgr);
  fakeEventLog.logResult = E_ACCESSDENIED;
  EventLogClient client(L"CvarEnum");
  EXPECT_EQ(client.LogEvent(L"m", L"t", 1, L"e", CComVariant()), E_ACCESSDENIED);
}

TEST_F(EventLogClientWithManager, ALogThatCannotBeOpenedIsToldAndTriedAgain) {
  const RegisteredClass<FakeEventLogMgr> manager(L"Vortana.EventLogMgr.1", CLSID_EventLogMgr);
  fakeEventLog.openResult = E_ACCESSDENIED;
  EventLogClient client(L"CvarEnum");
  EXPECT_EQ(client.LogEvent(L"m", L"t", 1, L"e", CComVariant()), E_FAIL);
  ASSERT_EQ(m_presenter.Boxes().size(), 1u);
  EXPECT_EQ(m_presenter.Boxes()[0].text, L"Couldn't instantiate event log! 0x80070005");
  EXPECT_EQ(m_presenter.Boxes()[0].caption, L"FATAL ERROR");
  EXPECT_EQ(m_presenter.Boxes()[0].type, 0x10u);
  EXPECT_EQ(m_presenter.Boxes()[0].owner, nullptr);
  fakeEventLog.openResult = S_OK;
  EXPECT_EQ(client.LogEvent(L"m", L"t", 1, L"e", CComVariant()), S_OK);
  EXPECT_EQ(m_presenter.Boxes().size(), 1u);
}

TEST_F(EventLogClientWithManager, SuccessWithoutALogIsAFailureOfCodeZero) {
  const RegisteredClass<FakeEventLogMgr> manager(L"Vortana.EventLogMgr.1", CLSID_EventLogMgr);
  fakeEventLog.givesLog = false;
  EventLogClient client(L"CvarEnum");
  EXPECT_EQ(client.LogEvent(L"m", L"t", 1, L"e", CComVariant()), E_FAIL);
  ASSERT_EQ(m_presenter.Boxes().size(), 1u);
  EXPECT_EQ(m_presenter.Boxes()[0].text, L"Couldn't instantiate event log! 0x0");
}

// Makes the logs folder and gives it as a folder of this machine.
fs::path MakeLogsFolder(const fs::path& home) {
  const fs::path folder = home / "drive_c" / "Vortana" / "Quillon" / "Logs";
  fs::create_directories(folder);
  return folder;
}

TEST_F(EventLogClientWithoutManager, TheBoxTellsWhatHappenedAndWhereTheDumpIs) {
  cvars::test::ForgetEventLogManager();
  const fs::path logs = MakeLogsFolder(m_home.Folder());
  EventLogClient client(L"CvarDev");
  EXPECT_EQ(client.LogEvent(L"Recursive Notification", L"cvar: Gain", 2, L"more", CComVariant()),
            E_FAIL);
  ASSERT_EQ(m_presenter.Boxes().size(), 1u);
  const RecordingPresenter::Box& box = m_presenter.Boxes()[0];
  EXPECT_EQ(box.owner, nullptr);
  EXPECT_EQ(box.caption, L"FATAL ERROR");
  EXPECT_EQ(box.type, 0x10u);
  std::wsmatch numbers;
  const std::wregex memory(L"\nProcessMemoryKb (\\d+)\n");
  ASSERT_TRUE(std::regex_search(box.text, numbers, memory)) << testing::PrintToString(box.text);
  EXPECT_GT(std::stoul(numbers[1]), 1000u);
  EXPECT_EQ(box.text,
            L"Couldn't instantiate event log manager! 0x80040154\n"
            L"Hint1: Recursive Notification\n"
            L"Hint2: cvar: Gain\n"
            L"Hint3: more\n"
            L"ThreadID: " +
                std::to_wstring(GetCurrentThreadId()) +
                L"\n"
                L"ProcessMemoryKb " +
                numbers[1].str() +
                L"\n"
                L"GDI handles 0\n"
                L"USER handles 0\n"
                L"A mini-dump file was written into the logs directory:\n"
                L"C:\\Vortana\\Quillon\\Logs\\VorMiniDump.dmp\n\n"
                L"Vortana takes software quality seriously, in order to help prevent\n"
                L"this problem in the future, please may we ask that you send an email\n"
                L"to software-quality@vortana.example, containing the contents of this dialog.\n");
  EXPECT_TRUE(fs::exists(logs / "VorMiniDump.dmp"));
}

TEST_F(EventLogClientWithoutManager, EveryEntryTriesAgainAndDumpsAreNumbered) {
  cvars::test::ForgetEventLogManager();
  const fs::path logs = MakeLogsFolder(m_home.Folder());
  EventLogClient client(L"CvarDev");
  for (const wchar_t* name : {L"VorMiniDump.dmp", L"VorMiniDump1.dmp", L"VorMiniDump2.dmp"}) {
    EXPECT_FALSE(fs::exists(logs / name));
    EXPECT_EQ(client.LogEvent(L"m", L"t", 2, L"e", CComVariant()), E_FAIL);
    EXPECT_TRUE(fs::exists(logs / name));
    EXPECT_THAT(m_presenter.Boxes().back().text, testing::HasSubstr(name));
  }
  EXPECT_EQ(m_presenter.Boxes().size(), 3u);
}

TEST_F(EventLogClientWithoutManager, WithoutALogsFolderTheDumpGoesToTheCurrentFolder) {
  cvars::test::ForgetEventLogManager();
  const fs::path before = fs::current_path();
  fs::create_directories(m_home.Folder() / "here");
  fs::current_path(m_home.Folder() / "here");
  EventLogClient client(L"CvarDev");
  EXPECT_EQ(client.LogEvent(L"m", L"t", 2, L"e", CComVariant()), E_FAIL);
  EXPECT_TRUE(fs::exists("VorMiniDump.dmp"));
  fs::current_path(before);
  ASSERT_EQ(m_presenter.Boxes().size(), 1u);
  EXPECT_THAT(m_presenter.Boxes()[0].text,
              testing::HasSubstr(L"logs directory:\nVorMiniDump.dmp\n\nVortana"));
}

TEST_F(EventLogClientWithoutManager, ADumpThatCannotBeWrittenLeavesThePathEmpty) {
  cvars::test::ForgetEventLogManager();
  const fs::path logs = MakeLogsFolder(m_home.Folder());
  // A folder stands where the file should be made, under every name.
  fs::create_directory(logs / "VorMiniDump.dmp");
  for (int number = 1; number < 1000; ++number) {
    fs::create_directory(logs / ("VorMiniDump" + std::to_string(number) + ".dmp"));
  }
  EventLogClient client(L"CvarDev");
  EXPECT_EQ(client.LogEvent(L"m", L"t", 2, L"e", CComVariant()), E_FAIL);
  ASSERT_EQ(m_presenter.Boxes().size(), 1u);
  EXPECT_THAT(m_presenter.Boxes()[0].text, testing::HasSubstr(L"logs directory:\n\n\nVortana"));
}

TEST_F(EventLogClientWithoutManager, LongAndOddHintsAreToldWhole) {
  cvars::test::ForgetEventLogManager();
  MakeLogsFolder(m_home.Folder());
  const std::wstring hint = std::wstring(5000, L'x') + L"%s%n%d \u03A9";
  EventLogClient client(L"CvarDev");
  EXPECT_EQ(client.LogEvent(hint.c_str(), L"%x", 2, nullptr, CComVariant()), E_FAIL);
  ASSERT_EQ(m_presenter.Boxes().size(), 1u);
  EXPECT_THAT(m_presenter.Boxes()[0].text,
              testing::HasSubstr(L"Hint1: " + hint + L"\nHint2: %x\nHint3: \nThreadID: "));
}

}  // namespace
