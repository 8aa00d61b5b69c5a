#include "CVorCvarWrapper.h"

#include <gtest/gtest.h>

#include <vector>

#include "CComBSTR.h"
#include "CCvarBag.h"
#include "CCvarDouble.h"
#include "CvarObject.h"
#include "DeveloperEvents.h"
#include "LiveCvars.h"

namespace {

class WrapperTest : public cvars::test::CvarTest {
 protected:
  WrapperTest() {
    cvars::SetDeveloperEventObserver(
        [](const cvars::DeveloperEvent& event, void* self) {
          static_cast<WrapperTest*>(self)->m_events.push_back(event);
        },
        this);
    m_gain->Initialize(L"Gain", 1.0, 0.0, 10.0, 0.1, L"V", CVARFLAGS(0), L"", 0,
                       CVARREPLICATIONFLAGS(0x202));
  }
  ~WrapperTest() override { cvars::SetDeveloperEventObserver(nullptr, nullptr); }
  void TearDown() override {
    m_gain = nullptr;
    CvarTest::TearDown();
  }

  CComPtr<CvarObject<CCvarDouble>> m_gain = CvarObject<CCvarDouble>::Create();
  std::vector<cvars::DeveloperEvent> m_events;
};

TEST_F(WrapperTest, ACallThatSucceedsGoesThroughUnreported) {
  const CVorCvarWrapper wrapper(m_gain);
  EXPECT_EQ(wrapper.Cvar(), m_gain->GetIVorCvar());
  EXPECT_EQ(wrapper.Call(&IVorCvar::SetRequestedValueFromString, L"2.5 V"), S_OK);
  CComBSTR text;
  EXPECT_EQ(wrapper.Call(&IVorCvar::GetAdaptedValueStringRemote, &text), S_OK);
  EXPECT_EQ(text.View(), L"2.5 V");
  EXPECT_TRUE(m_events.empty());
}

TEST_F(WrapperTest, ACallThatFailsIsReportedAndItsCodeReturned) {
  const CVorCvarWrapper wrapper(m_gain);
  EXPECT_EQ(wrapper.Call(&IVorCvar::get_Name, nullptr), E_POINTER);
  ASSERT_EQ(m_events.size(), 1u);
  EXPECT_EQ(m_events[0].source, L"CVorCvarWrapper");
  EXPECT_EQ(m_events[0].message, L"hr=0x80004003: A pointer is null that must not be.");
  EXPECT_EQ(m_events[0].category, L"system");
  EXPECT_EQ(m_events[0].severity, 3);
  EXPECT_EQ(m_events[0].value, L"Gain");
  EXPECT_EQ(m_events[0].cvar, m_gain->GetIVorCvar());
}

TEST_F(WrapperTest, WithoutCvarEveryCallFailsAndIsReported) {
  const CVorCvarWrapper wrapper;
  EXPECT_EQ(wrapper.Cvar(), nullptr);
  EXPECT_EQ(wrapper.Call(&IVorCvar::SetToDefault), E_POINTER);
  EXPECT_EQ(CVorCvarWrapper(nullptr).Call(&IVorCvar::Increment, 1), E_POINTER);
  ASSERT_EQ(m_events.size(), 2u);
  for (const cvars::DeveloperEvent& event : m_events) {
    EXPECT_EQ(event.source, L"CVorCvarWrapper");
    EXPECT_EQ(event.value, L"Null Cvar Ptr");
    EXPECT_EQ(event.severity, 3);
    EXPECT_EQ(event.cvar, nullptr);
  }
}

TEST_F(WrapperTest, TheCvarLivesAsLongAsTheWrapper) {
  const CVorCvarWrapper wrapper(m_gain);
  m_gain = nullptr;
  EXPECT_EQ(wrapper.Call(&IVorCvar::SetToDefault), S_OK);
}

}  // namespace
