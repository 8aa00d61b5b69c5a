#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

#include "CComPtr.h"
#include "IVorEventLogMgr.h"
#include "IsolatedHome.h"
#include "platform/Components.h"

namespace cvars::test {

/// Opens a log of the component as its users do.
inline CComPtr<IVorEventLog> OpenLog(const wchar_t* source) {
  CComPtr<IVorEventLogMgr> manager;
  EXPECT_EQ(platform::CreateComponent(L"Vortana.EventLogMgr.1", IID_IVorEventLogMgr,
                                      reinterpret_cast<void**>(&manager)),
            S_OK);
  CComPtr<IVorEventLog> log;
  if (manager != nullptr) {
    EXPECT_EQ(manager->GetEventLog(source, &log), S_OK);
  }
  return log;
}

/// Logs to the files of a home of its own.
class EventLog : public testing::Test {
 protected:
  void SetUp() override { setenv("VORTANA_JOURNAL", "none", 1); }
  void TearDown() override { unsetenv("VORTANA_JOURNAL"); }
  IsolatedHome m_home;
};

}  // namespace cvars::test
