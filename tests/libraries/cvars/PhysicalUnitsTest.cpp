#include "PhysicalUnits.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "platform/ComponentModule.h"
#include "platform/Components.h"

namespace {

/// A factory that fails as often as it is asked.
class FailingFactory final
    : public cvars::platform::Component<cvars::platform::Offers<IClassFactory, IID_IClassFactory>> {
 public:
  HRESULT CreateInstance(IUnknown*, REFIID, void** object) override {
    *object = nullptr;
    return E_FAIL;
  }
  HRESULT LockServer(int) override { return S_OK; }
};

// The first use in the process, so it stands first.
TEST(PhysicalUnitServiceTest, AFailedCreationIsTriedAgainAndTheServiceIsKept) {
  CComPtr<FailingFactory> factory;
  factory.Attach(new FailingFactory);
  DWORD cookie = 0;
  ASSERT_EQ(S_OK, CoRegisterClassObject(CLSID_PhysicalUnit, factory, CLSCTX_ALL, REGCLS_MULTIPLEUSE,
                                        &cookie));
  EXPECT_EQ(nullptr, static_cast<IVorPhysicalUnit*>(cvars::PhysicalUnitService()));
  EXPECT_EQ(E_INVALIDARG, cvars::ValidateUnit(L"V"));
  EXPECT_EQ(L"", cvars::ScreenUnit(L"HZ"));
  ASSERT_EQ(S_OK, CoRevokeClassObject(cookie));

  IVorPhysicalUnit* const service = cvars::PhysicalUnitService();
  EXPECT_NE(nullptr, service);
  EXPECT_EQ(service, static_cast<IVorPhysicalUnit*>(cvars::PhysicalUnitService()));
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
  EXPECT_EQ(L"Hz", cvars::ScreenUnit(L"HZ"));
  EXPECT_EQ(L"", cvars::ScreenUnit(nullptr));
  EXPECT_EQ(L"volts", cvars::ScreenUnit(L"volts"));
}

}  // namespace
