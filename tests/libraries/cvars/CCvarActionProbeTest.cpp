// The process decides once whether the monitoring tool is there, so this is a program of its own.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CCvarAction.h"
#include "CvarObject.h"
#include "IVorTattlerClient.h"
#include "diagnostics/FakeEventLog.h"
#include "platform/ComponentModule.h"
#include "platform/Components.h"
#include "platform/NamedMutex.h"

namespace {

struct Report {
  ULONG identifier;
  ULONG first;
  ULONG kind;
  ULONG second;
  friend bool operator==(const Report&, const Report&) = default;
};
std::vector<std::wstring> names;
std::vector<Report> reports;

class Tattler final : public cvars::platform::Component<
                          cvars::platform::Offers<IVorTattlerClient, IID_IVorTattlerClient>> {
 public:
  HRESULT RegisterProbe(const wchar_t* qualifiedName, ULONG* identifier) override {
    names.push_back(qualifiedName);
    *identifier = 100;
    return S_OK;
  }
  HRESULT ReportProbe(ULONG identifier, ULONG firstValue, ULONG entryOrExit,
                      ULONG secondValue) override {
    reports.push_back({identifier, firstValue, entryOrExit, secondValue});
    return S_OK;
  }
  HRESULT IsMonitoringEnabled(VARIANT_BOOL* enabled) override {
    *enabled = VARIANT_TRUE;
    return S_OK;
  }
};

TEST(ActionProbe, SetAndLoadIconReportsItsEntryAndExit) {
  const HANDLE mutex = CreateMutex(nullptr, 1, L"Vortana Tattler Enabled");
  ASSERT_NE(mutex, nullptr);
  const cvars::test::RegisteredClass<Tattler> known(L"Vortana.TattlerClient", CLSID_TattlerClient);
  const CComPtr<CvarObject<CCvarAction>> cvar = CvarObject<CCvarAction>::Create();
  cvar->Initialize(L"Auto Setup", CVARFLAGS(0), L"", 0, 0, CVARREPLICATIONFLAGS(0));
  EXPECT_EQ(cvar->SetAndLoadIcon(5, nullptr), S_OK);
  EXPECT_EQ(names, (std::vector<std::wstring>{L"CCvarAction::SetAndLoadIcon"}))
      << "a cvar is no bag, so its name is no prefix";
  EXPECT_EQ(reports, (std::vector<Report>{{100, 0, kProbeEntry, 0}, {100, 0, kProbeExit, 0}}));

  ReleaseMutex(mutex);
  CloseHandle(mutex);
}

}  // namespace
