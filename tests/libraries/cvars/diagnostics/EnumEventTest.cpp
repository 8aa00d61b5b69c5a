#include <gtest/gtest.h>

#include "CCvarBag.h"
#include "CCvarEnum.h"
#include "CvarObject.h"
#include "FakeEventLog.h"
#include "IsolatedHome.h"

namespace {

using cvars::test::fakeEventLog;
using cvars::test::FakeEventLogMgr;
using cvars::test::RegisteredClass;

TEST(EnumEvent, IsLoggedWithTheNamesOfBagAndCvarWhateverTheSwitch) {
  const cvars::test::IsolatedHome home;
  fakeEventLog = {};
  const RegisteredClass<FakeEventLogMgr> manager(L"Vortana.EventLogMgr.1", CLSID_EventLogMgr);
  const CComPtr<CCvarBag> bag = CCvarBag::Create(L"Channel1", nullptr);
  const auto cvar = CvarObject<CCvarEnum>::Create();
  cvar->Initialize(L"Coupling", L"DC,AC", 0, CVARFLAGS(0), nullptr, 0, REPLICATE_VALUE, 0);
  ASSERT_EQ(S_OK, bag->Add(cvar));
  EXPECT_EQ(S_OK, cvar->LogCvarEnumEvent(L"no such choice", 2));
  ASSERT_EQ(1u, fakeEventLog.entries.size());
  EXPECT_EQ(L"CvarEnum", fakeEventLog.entries[0].source);
  EXPECT_EQ(L"no such choice", fakeEventLog.entries[0].message);
  EXPECT_EQ(L"Channel1.Coupling", fakeEventLog.entries[0].text);
  EXPECT_EQ(2, fakeEventLog.entries[0].eventType);
  EXPECT_EQ(VT_EMPTY, fakeEventLog.entries[0].dataType);
  fakeEventLog.logResult = E_UNEXPECTED;
  EXPECT_EQ(E_UNEXPECTED, cvar->LogCvarEnumEvent(L"again", 4));
}

}  // namespace
