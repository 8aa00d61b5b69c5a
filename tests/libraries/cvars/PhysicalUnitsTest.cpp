#include "PhysicalUnits.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "SameObjectFactory.h"
#include "platform/Components.h"

namespace {

// The first use in the process, so it stands first.
TEST(PhysicalUnitServiceTest, AFailedCreationIsTriedAgainAndTheServiceIsKept) {
  const CComPtr<IClassFactory> factory = cvars::test::SameObjectFactory::Create(nullptr);
  DWORD cookie = 0;
  ASSERT_EQ(S_OK, CoRegisterClassObject(CLSID_PhysicalUnit, factory, CLSCTX_ALL, REGCLS_MULTIPLEUSE,
                                        &cookie));
  EXPECT_EQ(nullptr, cvars::PhysicalUnitService());
  EXPECT_EQ(E_INVALIDARG, cvars::ValidateUnit(L"V"));
  std::wstring screen = L"kept";
  EXPECT_EQ(E_INVALIDARG, cvars::ScreenUnit(L"HZ", &screen));
  EXPECT_EQ(L"kept", screen);
  ASSERT_EQ(S_OK, CoRevokeClassObject(cookie));

  IVorPhysicalUnit* const service = cvars::PhysicalUnitService();
  EXPECT_NE(nullptr, service);
  EXPECT_EQ(service, cvars::PhysicalUnitService());
}

TEST(PhysicalUnitServiceTest, IsOneForAllThreads) {
  std::vector<IVorPhysicalUnit*> seen(4);
  {
    std::vector<std::jthread> threads;
    for (IVorPhysicalUnit*& slot : seen)
      threads.emplace_back([&slot] { slot = cvars::PhysicalUnitService(); });
  }
  for (IVorPhysicalUnit* service : seen) {
    EXPECT_NE(nullptr, service);
    EXPECT_EQ(seen.front(), service);
  }
}

TEST(UnitValidationTest, AsksTheService) {
  EXPECT_EQ(S_OK, cvars::ValidateUnit(L"V"));
  EXPECT_EQ(S_OK, cvars::ValidateUnit(L""));
  EXPECT_EQ(S_OK, cvars::ValidateUnit(nullptr));
  EXPECT_EQ(S_OK, cvars::ValidateUnit(L"V/DIV"));
  EXPECT_EQ(E_INVALIDARG, cvars::ValidateUnit(L"volts"));
}

TEST(ScreenUnitTest, AsksTheService) {
  std::wstring screen;
  EXPECT_EQ(S_OK, cvars::ScreenUnit(L"HZ", &screen));
  EXPECT_EQ(L"Hz", screen);
  EXPECT_EQ(S_OK, cvars::ScreenUnit(L"volts", &screen));
  EXPECT_EQ(L"volts", screen);
  EXPECT_EQ(S_OK, cvars::ScreenUnit(nullptr, &screen));
  EXPECT_EQ(L"", screen);
}

}  // namespace
