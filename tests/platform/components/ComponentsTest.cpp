#include "platform/Components.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "CComPtr.h"
#include "IVorAsynchronousCvarNotifier.h"
#include "IVorEventLogMgr.h"
#include "IVorMessageBox.h"
#include "IVorPhysicalUnit.h"
#include "IVorRegExp.h"
#include "IVorTattlerClient.h"
#include "IsolatedHome.h"
#include "platform/ComponentModule.h"
#include "platform/Registry.h"

namespace cvars::platform {
namespace {

constexpr wchar_t kRegExp[] = L"VBScript.RegExp";
constexpr CLSID kUnknownClass = {0x11111111, 0x2222, 0x3333, {0x44, 0x44, 5, 6, 7, 8, 9, 10}};

// Answers every test of a text with "found", so that it is told from the installed component.
class AlwaysFound final : public Component<Offers<IVorRegExp, IID_IVorRegExp>> {
 public:
  HRESULT get_Pattern(BSTR*) override { return E_NOTIMPL; }
  HRESULT put_Pattern(const wchar_t*) override { return E_NOTIMPL; }
  HRESULT get_IgnoreCase(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT put_IgnoreCase(VARIANT_BOOL) override { return E_NOTIMPL; }
  HRESULT get_Global(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT put_Global(VARIANT_BOOL) override { return E_NOTIMPL; }
  HRESULT Test(const wchar_t*, VARIANT_BOOL*) override { return kAnswer; }

  static constexpr HRESULT kAnswer = 77;
};

// Runs on a thread that nobody initialised, and waits for it.
template <typename Operation>
void OnFreshThread(Operation operation) {
  std::thread(operation).join();
}

HRESULT MakeRegExp(CComPtr<IVorRegExp>& made) {
  return CoCreateInstance(CLSID_RegExp, nullptr, CLSCTX_ALL, IID_IVorRegExp,
                          reinterpret_cast<void**>(&made));
}

HRESULT CreateRegExp(CComPtr<IVorRegExp>& made) {
  return CreateComponent(kRegExp, IID_IVorRegExp, reinterpret_cast<void**>(&made));
}

class ComponentsTest : public testing::Test {
 protected:
  test::IsolatedHome m_home;
};

struct ClassCase {
  const wchar_t* progId;
  CLSID clsid;
};
constexpr ClassCase kClassCases[] = {
    {L"Vortana.AsynchronousCvarNotifier", CLSID_AsynchronousCvarNotifier},
    {L"Vortana.PhysicalUnit", CLSID_PhysicalUnit},
    {L"Vortana.MessageBox", CLSID_MessageBox},
    {L"VBScript.RegExp", CLSID_RegExp},
    {L"Vortana.EventLogMgr.1", CLSID_EventLogMgr},
    {L"Vortana.TattlerClient", CLSID_TattlerClient},
};

TEST_F(ComponentsTest, EmptyHomeKnowsEveryComponent) {
  for (const ClassCase& row : kClassCases) {
    CLSID clsid = GUID_NULL;
    EXPECT_EQ(CLSIDFromProgID(row.progId, &clsid), S_OK) << row.progId;
    EXPECT_EQ(clsid, row.clsid) << row.progId;
    wchar_t* text = nullptr;
    EXPECT_EQ(ProgIDFromCLSID(row.clsid, &text), S_OK) << row.progId;
    EXPECT_STREQ(text, row.progId);
    CoTaskMemFree(text);
    CComPtr<IUnknown> made;
    EXPECT_EQ(CreateComponent(row.progId, IID_IUnknown, reinterpret_cast<void**>(&made)), S_OK)
        << row.progId;
  }
}

TEST_F(ComponentsTest, ProgrammaticIdentifierIsFoundInAnyCase) {
  CLSID clsid = GUID_NULL;
  EXPECT_EQ(CLSIDFromProgID(L"vbscript.REGEXP", &clsid), S_OK);
  EXPECT_EQ(clsid, CLSID_RegExp);
}

TEST_F(ComponentsTest, UnknownProgrammaticIdentifier) {
  CLSID clsid = CLSID_RegExp;
  EXPECT_EQ(CLSIDFromProgID(L"Vortana.Nothing", &clsid), CO_E_CLASSSTRING);
  EXPECT_EQ(clsid, GUID_NULL);
}

TEST_F(ComponentsTest, ProgrammaticIdentifierOfClass) {
  wchar_t* text = nullptr;
  ASSERT_EQ(ProgIDFromCLSID(CLSID_RegExp, &text), S_OK);
  EXPECT_STREQ(text, kRegExp);
  CoTaskMemFree(text);
  EXPECT_EQ(ProgIDFromCLSID(kUnknownClass, &text), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(text, nullptr);
}

TEST_F(ComponentsTest, CreationNeedsInitializedThread) {
  OnFreshThread([] {
    CComPtr<IVorRegExp> made;
    EXPECT_EQ(MakeRegExp(made), CO_E_NOTINITIALIZED);
    ASSERT_EQ(CoInitialize(nullptr), S_OK);
    EXPECT_EQ(MakeRegExp(made), S_OK);
    made = nullptr;
    CoUninitialize();
    EXPECT_EQ(MakeRegExp(made), CO_E_NOTINITIALIZED);
  });
}

TEST_F(ComponentsTest, InitializationsAreCountedPerThread) {
  OnFreshThread([] {
    EXPECT_EQ(CoInitialize(nullptr), S_OK);
    EXPECT_EQ(CoInitialize(nullptr), S_FALSE);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);
    CoUninitialize();
    CComPtr<IVorRegExp> made;
    EXPECT_EQ(MakeRegExp(made), S_OK);
    OnFreshThread([] {
      CComPtr<IVorRegExp> other;
      EXPECT_EQ(MakeRegExp(other), CO_E_NOTINITIALIZED);
    });
    CoUninitialize();
    CoUninitialize();
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    CoUninitialize();
  });
}

TEST_F(ComponentsTest, CreateComponentInitializesTheThread) {
  OnFreshThread([] {
    CComPtr<IVorRegExp> made;
    EXPECT_EQ(CreateRegExp(made), S_OK);
    EXPECT_NE(made, nullptr);
    EXPECT_EQ(MakeRegExp(made), S_OK);
  });
}

TEST_F(ComponentsTest, CreateComponentOfUnknownIdentifier) {
  void* object = this;
  EXPECT_EQ(CreateComponent(L"Vortana.Nothing", IID_IUnknown, &object), CO_E_CLASSSTRING);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(CreateComponent(kRegExp, IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(ComponentsTest, OwningPointerMakesAnObjectByClassOrProgrammaticIdentifier) {
  OnFreshThread([] {
    CComPtr<IVorRegExp> made;
    EXPECT_EQ(made.CoCreateInstance(CLSID_RegExp), CO_E_NOTINITIALIZED);
    ASSERT_EQ(CoInitialize(nullptr), S_OK);
    EXPECT_EQ(made.CoCreateInstance(CLSID_RegExp), S_OK);
    EXPECT_EQ(made.CoCreateInstance(kRegExp, nullptr, CLSCTX_INPROC_SERVER), S_OK);
    EXPECT_NE(made.p, nullptr);
    CComPtr<IVorRegExp> other;
    EXPECT_EQ(other.CoCreateInstance(kRegExp), S_OK);
    EXPECT_NE(other.p, made.p);
    EXPECT_EQ(other.CoCreateInstance(L"Vortana.Nothing"), CO_E_CLASSSTRING);
    EXPECT_EQ(other.p, nullptr);
    made = nullptr;
    CoUninitialize();
  });
}

TEST_F(ComponentsTest, InterfaceThatIsNotOffered) {
  void* object = this;
  EXPECT_EQ(CreateComponent(kRegExp, kUnknownClass, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
}

TEST_F(ComponentsTest, AggregationIsRefused) {
  OnFreshThread([] {
    (void)CoInitialize(nullptr);
    AlwaysFound* const outer = new AlwaysFound;
    void* object = nullptr;
    EXPECT_EQ(CoCreateInstance(CLSID_RegExp, outer, CLSCTX_ALL, IID_IUnknown, &object),
              CLASS_E_NOAGGREGATION);
    outer->Release();
    CoUninitialize();
  });
}

TEST_F(ComponentsTest, ContextWithoutProcessServersFindsNoModule) {
  OnFreshThread([] {
    (void)CoInitialize(nullptr);
    void* object = nullptr;
    EXPECT_EQ(CoCreateInstance(CLSID_RegExp, nullptr, CLSCTX_LOCAL_SERVER, IID_IUnknown, &object),
              REGDB_E_CLASSNOTREG);
    CoUninitialize();
  });
}

TEST_F(ComponentsTest, RegisteredObjectGoesAheadOfInstalledModule) {
  auto* const factory = new ClassFactory<AlwaysFound>;
  DWORD cookie = 0;
  ASSERT_EQ(CoRegisterClassObject(CLSID_RegExp, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                  &cookie),
            S_OK);
  EXPECT_NE(cookie, 0u);
  factory->Release();
  OnFreshThread([] {
    CComPtr<IVorRegExp> made;
    ASSERT_EQ(CreateRegExp(made), S_OK);
    EXPECT_EQ(made->Test(L"", nullptr), AlwaysFound::kAnswer);
  });
  EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
  EXPECT_EQ(CoRevokeClassObject(cookie), CO_E_OBJNOTREG);
  CComPtr<IVorRegExp> made;
  ASSERT_EQ(CreateRegExp(made), S_OK);
  EXPECT_EQ(made->Test(L"", nullptr), E_POINTER);
}

TEST_F(ComponentsTest, RegisteredObjectOfUnknownClassIsCreated) {
  OnFreshThread([] {
    (void)CoInitialize(nullptr);
    auto* const factory = new ClassFactory<AlwaysFound>;
    DWORD cookie = 0;
    ASSERT_EQ(CoRegisterClassObject(kUnknownClass, factory, CLSCTX_LOCAL_SERVER, 0, &cookie), S_OK);
    factory->Release();
    CComPtr<IVorRegExp> made;
    EXPECT_EQ(CoCreateInstance(kUnknownClass, nullptr, CLSCTX_ALL, IID_IVorRegExp,
                               reinterpret_cast<void**>(&made)),
              S_OK);
    EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
    EXPECT_EQ(CoCreateInstance(kUnknownClass, nullptr, CLSCTX_ALL, IID_IVorRegExp,
                               reinterpret_cast<void**>(&made)),
              REGDB_E_CLASSNOTREG);
    CoUninitialize();
  });
}

TEST_F(ComponentsTest, UsersEntryWinsOverInstalledOne) {
  ASSERT_EQ(WriteRegistryText(HKEY_CLASSES_ROOT, L"VBScript.RegExp\\CLSID", L"",
                              L"{11111111-2222-3333-4444-05060708090A}"),
            0);
  CLSID clsid = GUID_NULL;
  EXPECT_EQ(CLSIDFromProgID(kRegExp, &clsid), S_OK);
  EXPECT_EQ(clsid, kUnknownClass);
}

TEST_F(ComponentsTest, UsersModuleThatIsMissing) {
  ASSERT_EQ(WriteRegistryText(HKEY_CLASSES_ROOT,
                              L"CLSID\\{E27BA3E9-A748-441A-BC55-1094A25F1589}\\InprocServer32", L"",
                              L"/nowhere/module.so"),
            0);
  CComPtr<IVorRegExp> made;
  EXPECT_EQ(CreateRegExp(made), CO_E_DLLNOTFOUND);
  EXPECT_EQ(made, nullptr);
}

TEST_F(ComponentsTest, UsersModuleThatMakesNoClasses) {
  ASSERT_EQ(WriteRegistryText(HKEY_CLASSES_ROOT,
                              L"CLSID\\{E27BA3E9-A748-441A-BC55-1094A25F1589}\\InprocServer32", L"",
                              L"../../libcvars_platform.so"),
            0);
  CComPtr<IVorRegExp> made;
  EXPECT_EQ(CreateRegExp(made), CO_E_ERRORINDLL);
}

TEST_F(ComponentsTest, DamagedUserClassesLeaveTheInstalledOnes) {
  std::filesystem::create_directories(m_home.Folder() / "registry");
  std::ofstream(m_home.Folder() / "registry" / "classes_root.reg") << "damaged";
  CComPtr<IVorRegExp> made;
  EXPECT_EQ(CreateRegExp(made), S_OK);
  EXPECT_NE(RegistryDamage(HKEY_CLASSES_ROOT).find("classes_root.reg:1:"), std::string::npos);
}

TEST_F(ComponentsTest, ChildProcessWithEmptyHomeCreatesComponent) {
  const pid_t child = fork();
  if (child == 0) {
    CComPtr<IVorRegExp> made;
    _exit(CreateRegExp(made) == S_OK && made != nullptr ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

TEST_F(ComponentsTest, NullArguments) {
  CLSID clsid = GUID_NULL;
  DWORD cookie = 1;
  EXPECT_EQ(CLSIDFromProgID(nullptr, &clsid), E_INVALIDARG);
  EXPECT_EQ(CLSIDFromProgID(kRegExp, nullptr), E_INVALIDARG);
  EXPECT_EQ(CoRegisterClassObject(CLSID_RegExp, nullptr, CLSCTX_ALL, 0, &cookie), E_INVALIDARG);
  EXPECT_EQ(cookie, 0u);
  EXPECT_EQ(CoCreateInstance(CLSID_RegExp, nullptr, CLSCTX_ALL, IID_IUnknown, nullptr), E_POINTER);
}

TEST(GuidTextTest, WritesUpperCaseInBraces) {
  wchar_t text[39];
  EXPECT_EQ(StringFromGUID2(kUnknownClass, text, 39), 39);
  EXPECT_STREQ(text, L"{11111111-2222-3333-4444-05060708090A}");
  EXPECT_EQ(StringFromGUID2(kUnknownClass, text, 38), 0);
}

TEST(GuidTextTest, ReadsEitherCase) {
  CLSID clsid = GUID_NULL;
  EXPECT_EQ(CLSIDFromString(L"{e27ba3e9-a748-441A-bc55-1094a25f1589}", &clsid), S_OK);
  EXPECT_EQ(clsid, CLSID_RegExp);
}

TEST(GuidTextTest, RefusesOtherShapes) {
  for (const wchar_t* text :
       {L"{e27ba3e9-a748-441A-bc55-1094a25f158}", L"{e27ba3e9-a748-441A-bc55-1094a25f1589",
        L"{e27ba3e9-a748-441A-bc55-1094a25f158g}", L"{e27ba3e9+a748-441A-bc55-1094a25f1589}"}) {
    CLSID clsid = CLSID_RegExp;
    EXPECT_EQ(CLSIDFromString(text, &clsid), CO_E_CLASSSTRING);
  }
}

}  // namespace
}  // namespace cvars::platform
