#include "DeveloperEventLog.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>

#include "BareCvar.h"
#include "CCvarBag.h"
#include "CCvarDouble.h"
#include "CVorCvarWrapper.h"
#include "CvarObject.h"
#include "DeveloperEvents.h"
#include "FakeEventLog.h"
#include "IsolatedHome.h"
#include "RecordingPresenter.h"
#include "platform/Registry.h"

namespace {

using cvars::test::fakeEventLog;
using cvars::test::FakeEventLogMgr;
using cvars::test::RegisteredClass;

// The switch is read once per process, so each case has a process of its own. Its failures are
// shown by the number of the line.
class DeveloperEventLog : public testing::Test {
 protected:
  static int RunInChild(const std::function<int()>& body) {
    const pid_t child = fork();
    if (child == 0) {
      fakeEventLog = {};
      const RegisteredClass<FakeEventLogMgr> manager(L"Vortana.EventLogMgr.1", CLSID_EventLogMgr);
      _exit(body() & 0xFF);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  static void SetSwitch(DWORD type, const void* data, DWORD size) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyEx(HKEY_CURRENT_USER, L"SOFTWARE\\Vortana\\Quillon", 0, nullptr, 0,
                             KEY_WRITE, nullptr, &key, nullptr),
              0);
    EXPECT_EQ(
        RegSetValueEx(key, L"EnableCvarDevLogging", 0, type, static_cast<const BYTE*>(data), size),
        0);
    RegCloseKey(key);
  }
  static void SetSwitch(DWORD value) { SetSwitch(REG_DWORD, &value, sizeof(value)); }

  cvars::test::IsolatedHome m_home;
};

CComPtr<CvarObject<CCvarDouble>> MakeGain() {
  CComPtr<CvarObject<CCvarDouble>> gain = CvarObject<CCvarDouble>::Create();
  gain->Initialize(L"Gain", 1.0, 0.0, 10.0, 0.1, L"V", CVARFLAGS(0), L"", 0,
                   CVARREPLICATIONFLAGS(0x202));
  return gain;
}

// @return 0 when one event gave no entry and made no manager, else a line number.
int ExpectSilence() {
  const auto gain = MakeGain();
  g_KnobsetLogDeveloperEvent(CVorComBSTR(L"misbehaves"), gain);
  if (fakeEventLog.managersMade != 0) return __LINE__;
  return fakeEventLog.entries.empty() ? 0 : __LINE__;
}

TEST_F(DeveloperEventLog, WithoutTheSwitchNoManagerIsMade) {
  EXPECT_EQ(RunInChild(&ExpectSilence), 0);
}

TEST_F(DeveloperEventLog, SwitchZeroIsOff) {
  SetSwitch(0);
  EXPECT_EQ(RunInChild(&ExpectSilence), 0);
}

TEST_F(DeveloperEventLog, ASwitchOfTextTypeIsOff) {
  SetSwitch(REG_SZ, L"1", 2 * sizeof(wchar_t));
  EXPECT_EQ(RunInChild(&ExpectSilence), 0);
}

TEST_F(DeveloperEventLog, ASwitchOfFourBytesThatIsNoNumberIsOff) {
  const DWORD one = 1;
  SetSwitch(REG_BINARY, &one, sizeof(one));
  EXPECT_EQ(RunInChild(&ExpectSilence), 0);
}

struct TypeCase {
  const char* name;
  DWORD switchValue;
  long eventType;
};
constexpr TypeCase kTypeCases[] = {
    {"OneIsWarning", 1, 2},
    {"TwoIsInformation", 2, 4},
    {"ThreeIsWarning", 3, 2},
    {"LargeIsWarning", 0x80000000, 2},
};
class DeveloperEventType : public DeveloperEventLog,
                           public testing::WithParamInterface<TypeCase> {};

TEST_P(DeveloperEventType, ComesFromTheSwitch) {
  SetSwitch(GetParam().switchValue);
  const long expected = GetParam().eventType;
  EXPECT_EQ(RunInChild([expected] {
              const auto gain = MakeGain();
              g_KnobsetLogDeveloperEvent(CVorComBSTR(L"misbehaves"), gain);
              if (fakeEventLog.entries.size() != 1) return __LINE__;
              return fakeEventLog.entries[0].eventType == expected ? 0 : __LINE__;
            }),
            0);
}

INSTANTIATE_TEST_SUITE_P(Switches, DeveloperEventType, testing::ValuesIn(kTypeCases),
                         [](const auto& row) { return row.param.name; });

TEST_F(DeveloperEventLog, ACvarWithoutParentIsNamedAlone) {
  SetSwitch(1);
  EXPECT_EQ(RunInChild([] {
              const auto gain = MakeGain();
              g_KnobsetLogDeveloperEvent(CVorComBSTR(L"misbehaves"), gain);
              if (fakeEventLog.entries.size() != 1) return __LINE__;
              const auto& entry = fakeEventLog.entries[0];
              if (entry.source != L"CvarDev") return __LINE__;
              if (entry.message != L"misbehaves") return __LINE__;
              if (entry.text != L"cvar: Gain (misbehaves)") return __LINE__;
              if (entry.extraText != entry.text) return __LINE__;
              return entry.dataType == VT_EMPTY ? 0 : __LINE__;
            }),
            0);
}

TEST_F(DeveloperEventLog, ACvarInABagIsNamedWithIt) {
  SetSwitch(1);
  EXPECT_EQ(RunInChild([] {
              const auto gain = MakeGain();
              CComPtr<CCvarBag> bag = CCvarBag::Create(L"Channel1", nullptr);
              bag->Add(gain);
              g_KnobsetLogDeveloperEvent(CVorComBSTR(L"misbehaves"), gain);
              if (fakeEventLog.entries.size() != 1) return __LINE__;
              return fakeEventLog.entries[0].text == L"cvar: Channel1.Gain (misbehaves)" ? 0
                                                                                         : __LINE__;
            }),
            0);
}

TEST_F(DeveloperEventLog, ABagWithoutNameIsLeftOut) {
  SetSwitch(1);
  EXPECT_EQ(RunInChild([] {
              const auto gain = MakeGain();
              CComPtr<CCvarBag> bag = CCvarBag::Create(L"", nullptr);
              bag->Add(gain);
              g_KnobsetLogDeveloperEvent(CVorComBSTR(L"misbehaves"), gain);
              if (fakeEventLog.entries.size() != 1) return __LINE__;
              return fakeEventLog.entries[0].text == L"cvar: Gain (misbehaves)" ? 0 : __LINE__;
            }),
            0);
}

TEST_F(DeveloperEventLog, ANullCvarIsNotLogged) {
  SetSwitch(1);
  EXPECT_EQ(RunInChild([] {
              g_KnobsetLogDeveloperEvent(CVorComBSTR(L"misbehaves"), nullptr);
              if (fakeEventLog.managersMade != 0) return __LINE__;
              return fakeEventLog.entries.empty() ? 0 : __LINE__;
            }),
            0);
}

TEST_F(DeveloperEventLog, ACallWithANullCvarReadsTheSwitch) {
  EXPECT_EQ(RunInChild([] {
              g_KnobsetLogDeveloperEvent(CVorComBSTR(L"misbehaves"), nullptr);
              SetSwitch(1);
              return ExpectSilence();
            }),
            0);
}

TEST_F(DeveloperEventLog, TheSwitchIsReadOnce) {
  SetSwitch(1);
  EXPECT_EQ(RunInChild([] {
              const auto gain = MakeGain();
              g_KnobsetLogDeveloperEvent(CVorComBSTR(L"first"), gain);
              SetSwitch(0);
              g_KnobsetLogDeveloperEvent(CVorComBSTR(L"second"), gain);
              return fakeEventLog.entries.size() == 2 ? 0 : __LINE__;
            }),
            0);
}

TEST_F(DeveloperEventLog, EveryEventOpensManagerAndLogAnew) {
  SetSwitch(1);
  EXPECT_EQ(RunInChild([] {
              const auto gain = MakeGain();
              for (int count = 1; count <= 3; ++count) {
                g_KnobsetLogDeveloperEvent(CVorComBSTR(L"misbehaves"), gain);
                if (fakeEventLog.managersMade != count) return __LINE__;
                if (fakeEventLog.logsOpened != count) return __LINE__;
              }
              return 0;
            }),
            0);
}

TEST_F(DeveloperEventLog, AMissingManagerLosesTheEventAfterTheBox) {
  SetSwitch(1);
  std::filesystem::create_directories(m_home.Folder() / "drive_c/Vortana/Quillon/Logs");
  EXPECT_EQ(RunInChild([] {
              cvars::test::ForgetEventLogManager();
              cvars::test::RecordingPresenter presenter;
              const auto gain = MakeGain();
              g_KnobsetLogDeveloperEvent(CVorComBSTR(L"misbehaves"), gain);
              if (!fakeEventLog.entries.empty()) return __LINE__;
              return presenter.Boxes().size() == 1 ? 0 : __LINE__;
            }),
            0);
}

TEST_F(DeveloperEventLog, ReportsOfTheCoreReachTheLog) {
  SetSwitch(2);
  EXPECT_EQ(RunInChild([] {
              const auto gain = MakeGain();
              cvars::DeveloperEvent event;
              event.message = L"Recursive Notification";
              event.severity = 4;
              event.cvar = gain;
              cvars::ReportDeveloperEvent(event);
              if (fakeEventLog.entries.size() != 1) return __LINE__;
              return fakeEventLog.entries[0].text == L"cvar: Gain (Recursive Notification)"
                         ? 0
                         : __LINE__;
            }),
            0);
}

TEST_F(DeveloperEventLog, AFailedCallThroughAWrapperReachesTheLog) {
  SetSwitch(1);
  EXPECT_EQ(RunInChild([] {
              const auto gain = MakeGain();
              CComPtr<CCvarBag> bag = CCvarBag::Create(L"Channel1", nullptr);
              bag->Add(gain);
              if (CVorCvarWrapper(gain).Call(&IVorCvar::get_Name, nullptr) != E_POINTER) {
                return __LINE__;
              }
              if (fakeEventLog.entries.size() != 1) return __LINE__;
              const auto& entry = fakeEventLog.entries[0];
              const std::wstring message = L"hr=0x80004003: A pointer is null that must not be.";
              if (entry.source != L"CvarDev") return __LINE__;
              if (entry.message != message) return __LINE__;
              if (entry.text != L"cvar: Channel1.Gain (" + message + L")") return __LINE__;
              return entry.eventType == 2 ? 0 : __LINE__;
            }),
            0);
}

TEST_F(DeveloperEventLog, AnEmptyWrapperHasNoCvarToLog) {
  SetSwitch(1);
  EXPECT_EQ(RunInChild([] {
              if (CVorCvarWrapper().Call(&IVorCvar::SetToDefault) != E_POINTER) return __LINE__;
              return fakeEventLog.entries.empty() ? 0 : __LINE__;
            }),
            0);
}

TEST_F(DeveloperEventLog, AFailedReplicaReachesTheLog) {
  SetSwitch(2);
  EXPECT_EQ(RunInChild([] {
              const auto gain = MakeGain();
              CComPtr<cvars::test::BareCvar> silent;  // answers E_NOTIMPL to everything
              silent.Attach(new cvars::test::BareCvar);
              gain->SetReplicationFlags(REPLICATE_NAME);
              if (gain->OnCvarNotify(silent, NOTIFY_ATTRIBUTES) != E_NOTIMPL) return __LINE__;
              if (fakeEventLog.entries.size() != 1) return __LINE__;
              const auto& entry = fakeEventLog.entries[0];
              if (entry.message != L"80004001") return __LINE__;
              if (entry.text != L"cvar: Gain (80004001)") return __LINE__;
              return entry.eventType == 4 ? 0 : __LINE__;
            }),
            0);
}

}  // namespace
