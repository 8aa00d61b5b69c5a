#include "TattlerClient.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "CComBSTR.h"
#include "CCvarBag.h"
#include "CCvarDouble.h"
#include "CDLLVersions.h"
#include "CvarObject.h"
#include "FakeEventLog.h"
#include "IsolatedHome.h"
#include "platform/NamedMutex.h"

namespace {

namespace fs = std::filesystem;
using cvars::TattlerClient;
using cvars::TattlerProbe;
using cvars::test::RegisteredClass;

struct Report {
  ULONG identifier;
  ULONG first;
  ULONG kind;
  ULONG second;
  friend bool operator==(const Report&, const Report&) = default;
};

struct FakeTattlerState {
  int made = 0;
  int live = 0;
  VARIANT_BOOL enabled = VARIANT_TRUE;
  HRESULT enabledResult = S_OK;
  HRESULT registerResult = S_OK;
  ULONG nextIdentifier = 100;
  std::vector<std::wstring> names;
  std::vector<Report> reports;
};
FakeTattlerState fake;

class FakeTattler final : public cvars::platform::Component<
                              cvars::platform::Offers<IVorTattlerClient, IID_IVorTattlerClient>> {
 public:
  FakeTattler() {
    ++fake.made;
    ++fake.live;
  }
  ~FakeTattler() override { --fake.live; }
  HRESULT RegisterProbe(const wchar_t* qualifiedName, ULONG* identifier) override {
    fake.names.push_back(qualifiedName);
    *identifier = FAILED(fake.registerResult) ? kNoProbe : fake.nextIdentifier++;
    return fake.registerResult;
  }
  HRESULT ReportProbe(ULONG identifier, ULONG firstValue, ULONG entryOrExit,
                      ULONG secondValue) override {
    fake.reports.push_back({identifier, firstValue, entryOrExit, secondValue});
    return S_OK;
  }
  HRESULT IsMonitoringEnabled(VARIANT_BOOL* enabled) override {
    *enabled = fake.enabled;
    return fake.enabledResult;
  }
};

class Tattler : public testing::Test {
 protected:
  void SetUp() override { fake = {}; }
  void TearDown() override { EXPECT_EQ(fake.live, 0); }

  cvars::test::IsolatedHome m_home;
  RegisteredClass<FakeTattler> m_class{L"Vortana.TattlerClient", CLSID_TattlerClient};
};

// The monitoring tool's announcement, as long as it lives.
class MonitorMutex {
 public:
  MonitorMutex() : m_handle(CreateMutex(nullptr, 1, L"Vortana Tattler Enabled")) {}
  ~MonitorMutex() {
    ReleaseMutex(m_handle);
    CloseHandle(m_handle);
  }
  MonitorMutex(const MonitorMutex&) = delete;
  MonitorMutex& operator=(const MonitorMutex&) = delete;

 private:
  HANDLE m_handle;
};

TEST_F(Tattler, WithoutTheMutexNoComponentIsMade) {
  TattlerClient client;
  EXPECT_EQ(client.Identifier(L"Probe", nullptr), 0xFFFFFFFFu);
  ULONG identifier = 5;
  EXPECT_EQ(client.RegisterName(L"Probe", &identifier), OLE_E_BLANK);
  EXPECT_EQ(identifier, 0xFFFFFFFFu);
  { const TattlerProbe probe(client, L"Probe", 1, 2, nullptr); }
  EXPECT_EQ(fake.made, 0);
  EXPECT_TRUE(fake.reports.empty());
}

TEST_F(Tattler, AToolStartedAfterTheFirstUseIsNotSeen) {
  TattlerClient client;
  EXPECT_EQ(client.Identifier(L"Probe", nullptr), kNoProbe);
  const MonitorMutex mutex;
  EXPECT_EQ(client.Identifier(L"Probe", nullptr), kNoProbe);
  EXPECT_EQ(fake.made, 0);
  TattlerClient later;
  EXPECT_EQ(later.Identifier(L"Probe", nullptr), 100u);
}

TEST_F(Tattler, AComponentThatWantsNoReportsIsReleased) {
  const MonitorMutex mutex;
  fake.enabled = VARIANT_FALSE;
  TattlerClient client;
  { const TattlerProbe probe(client, L"Probe", 1, 2, nullptr); }
  EXPECT_EQ(fake.made, 1);
  EXPECT_EQ(fake.live, 0);
  EXPECT_TRUE(fake.names.empty());
  EXPECT_TRUE(fake.reports.empty());
  EXPECT_EQ(client.Identifier(L"Probe", nullptr), kNoProbe);
  EXPECT_EQ(fake.made, 1);
}

TEST_F(Tattler, EveryValueButZeroReadsAsEnabled) {
  const MonitorMutex mutex;
  fake.enabled = 1;
  TattlerClient client;
  EXPECT_EQ(client.Identifier(L"Probe", nullptr), 100u);
}

TEST_F(Tattler, AProbeReportsItsEntryAndItsExit) {
  const MonitorMutex mutex;
  TattlerClient client;
  {
    const TattlerProbe probe(client, L"Outer", 11, 12, nullptr);
    const TattlerProbe inner(client, L"Inner", 21, 22, nullptr);
    EXPECT_EQ(fake.reports, (std::vector<Report>{{100, 11, 2, 12}, {101, 21, 2, 22}}));
  }
  EXPECT_EQ(fake.reports,
            (std::vector<Report>{
                {100, 11, 2, 12}, {101, 21, 2, 22}, {101, 21, 3, 22}, {100, 11, 3, 12}}));
  EXPECT_EQ(fake.names, (std::vector<std::wstring>{L"Outer", L"Inner"}));
  EXPECT_EQ(fake.made, 1);
}

TEST_F(Tattler, ABagGivesItsNameAsAPrefix) {
  const MonitorMutex mutex;
  TattlerClient client;
  const CComPtr<CCvarBag> bag = CCvarBag::Create(L"Channel1", nullptr);
  const CComPtr<CCvarBag> unnamed = CCvarBag::Create(L"", nullptr);
  EXPECT_EQ(client.Identifier(L"Load", bag), 100u);
  EXPECT_EQ(client.Identifier(L"Save", unnamed), 101u);
  EXPECT_EQ(fake.names, (std::vector<std::wstring>{L"Channel1::Load", L"Save"}));
}

TEST_F(Tattler, ACvarAsParentIsNoContainer) {
  const MonitorMutex mutex;
  TattlerClient client;
  const CComPtr<CvarObject<CCvarDouble>> gain = CvarObject<CCvarDouble>::Create();
  EXPECT_EQ(client.Identifier(L"Load", static_cast<IVorCvar*>(gain.p)), 100u);
  EXPECT_EQ(fake.names, (std::vector<std::wstring>{L"Load"}));
}

TEST_F(Tattler, ChildrenOfTheSameNameShareTheIdentifierOfTheFirst) {
  const MonitorMutex mutex;
  TattlerClient client;
  const CComPtr<CCvarBag> first = CCvarBag::Create(L"Channel1", nullptr);
  const CComPtr<CCvarBag> second = CCvarBag::Create(L"Channel2", nullptr);
  EXPECT_EQ(client.Identifier(L"Load", first), 100u);
  EXPECT_EQ(client.Identifier(L"Load", second), 100u);
  EXPECT_EQ(client.Identifier(L"Load", nullptr), 100u);
  EXPECT_EQ(fake.names, (std::vector<std::wstring>{L"Channel1::Load"}));
}

TEST_F(Tattler, ARefusedNameIsReportedAndAskedForAgain) {
  const MonitorMutex mutex;
  fake.registerResult = E_FAIL;
  TattlerClient client;
  { const TattlerProbe probe(client, L"Probe", 1, 2, nullptr); }
  EXPECT_EQ(fake.reports, (std::vector<Report>{{kNoProbe, 1, 2, 2}, {kNoProbe, 1, 3, 2}}));
  fake.registerResult = S_OK;
  EXPECT_EQ(client.Identifier(L"Probe", nullptr), 100u);
  EXPECT_EQ(fake.names.size(), 2u);
}

TEST_F(Tattler, RegisteringANamePassesThrough) {
  const MonitorMutex mutex;
  TattlerClient client;
  ULONG identifier = 0;
  EXPECT_EQ(client.RegisterName(L"Channel1::Load", nullptr), E_POINTER);
  EXPECT_EQ(client.RegisterName(L"Channel1::Load", &identifier), S_OK);
  EXPECT_EQ(identifier, 100u);
  fake.registerResult = E_ACCESSDENIED;
  EXPECT_EQ(client.RegisterName(L"Channel1::Save", &identifier), E_ACCESSDENIED);
  EXPECT_EQ(identifier, kNoProbe);
}

TEST_F(Tattler, ATattlingThreadIsInitialisedForComponents) {
  const MonitorMutex mutex;
  ULONG identifier = kNoProbe;
  std::thread([&identifier] {
    TattlerClient client;
    identifier = client.Identifier(L"Probe", nullptr);
  }).join();
  EXPECT_EQ(identifier, 100u);
}

TEST_F(Tattler, ReadingAVersionIsAProbe) {
  const MonitorMutex mutex;
  CDLLVersions versions;
  ULONG packed = 7;
  CComBSTR text;
  EXPECT_FALSE(versions.RetrieveFileVersion(L"C:\\missing.dll", &packed, &text));
  EXPECT_EQ(fake.names, (std::vector<std::wstring>{L"CDLLVersions::RetrieveFileVersion"}));
  const auto address = static_cast<ULONG>(reinterpret_cast<std::uintptr_t>(&versions));
  EXPECT_EQ(fake.reports, (std::vector<Report>{{100, address, 2, 0}, {100, address, 3, 0}}));
}

TEST(CDLLVersions, AMissingFileHasNumberZeroAndEmptyText) {
  CDLLVersions versions;
  for (const wchar_t* path : {L"C:\\missing.dll", L"", static_cast<const wchar_t*>(nullptr)}) {
    ULONG packed = 7;
    CComBSTR text;
    EXPECT_FALSE(versions.RetrieveFileVersion(path, &packed, &text));
    EXPECT_EQ(packed, 0u);
    ASSERT_NE(static_cast<BSTR>(text), nullptr);
    EXPECT_EQ(text.Length(), 0u);
  }
}

TEST(CDLLVersions, TextAndNumberFollowTheTable) {
  const fs::path golden = fs::path(CVARS_SOURCE_DIR) / "tests" / "golden";
  std::ifstream table(golden / "pe_versions.tsv");
  std::string line;
  std::getline(table, line);
  int rows = 0;
  while (std::getline(table, line)) {
    std::istringstream fields(line);
    std::string file, most, least, text, packed;
    fields >> file >> most >> least >> text >> packed;
    CDLLVersions versions;
    ULONG number = 7;
    CComBSTR version;
    const bool found =
        versions.RetrieveFileVersion((golden / "pe" / file).wstring().c_str(), &number, &version);
    EXPECT_EQ(found, text != "-") << file;
    EXPECT_EQ(std::wstring(version.View()),
              found ? std::wstring(text.begin(), text.end()) : std::wstring())
        << file;
    EXPECT_EQ(number, found ? std::stoul(packed) : 0u) << file;
    ++rows;
  }
  EXPECT_EQ(rows, 21);
}

TEST(CDLLVersions, TheProcessHasOneOfItsOwn) {
  EXPECT_EQ(&cvars::ProcessDllVersions(), &cvars::ProcessDllVersions());
  EXPECT_EQ(&cvars::ProcessDllVersions().ProbeClient(), &cvars::ProcessDllVersions().ProbeClient());
}

}  // namespace
