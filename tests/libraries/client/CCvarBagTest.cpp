#include "CCvarBag.h"

#include <gtest/gtest.h>

#include "LiveCvars.h"
#include "RecordingListener.h"
#include "SampleCvars.h"
#include "ScriptCall.h"

namespace {

using cvars::test::CallByName;
using cvars::test::RecordingListener;
using cvars::test::SampleCvar;

using Sample = CComPtr<CvarObject<SampleCvar>>;

Sample MakeCvar(const wchar_t* name) {
  Sample cvar = CvarObject<SampleCvar>::Create();
  cvar->SetName(name);
  return cvar;
}

class Bag : public cvars::test::CvarTest {
 protected:
  Bag() {
    EXPECT_EQ(bag->Add(level), S_OK);
    EXPECT_EQ(bag->Add(slope), S_OK);
  }
  void TearDown() override {
    bag = nullptr;
    level = nullptr;
    slope = nullptr;
    CvarTest::TearDown();
  }

  CComPtr<CCvarBag> bag = CCvarBag::Create(L"Trigger", nullptr);
  Sample level = MakeCvar(L"Trigger Level|LVL");
  Sample slope = MakeCvar(L"Slope");
};

TEST_F(Bag, AddingMakesItTheParentAndHoldsTheCvar) {
  EXPECT_EQ(level->GetParent(), static_cast<IUnknown*>(bag.p));
  EXPECT_EQ(level->AddRef(), 3u);
  EXPECT_EQ(level->Release(), 2u);
  EXPECT_EQ(bag->Count(), 2u);
  EXPECT_EQ(bag->At(0), level->GetIVorCvar());
  EXPECT_EQ(bag->At(1), slope->GetIVorCvar());
  EXPECT_EQ(bag->At(2), nullptr);
}

TEST_F(Bag, ACvarHasOneBagAtMost) {
  EXPECT_EQ(bag->Add(nullptr), E_POINTER);
  EXPECT_EQ(bag->Add(level), E_INVALIDARG);
  const auto other = CCvarBag::Create(L"Other", nullptr);
  EXPECT_EQ(other->Add(level), E_INVALIDARG);
  EXPECT_EQ(other->Remove(level), S_FALSE);
  EXPECT_EQ(bag->Remove(level), S_OK);
  EXPECT_EQ(level->GetParent(), nullptr);
  EXPECT_EQ(other->Add(level), S_OK);
}

TEST_F(Bag, CvarsAreFoundByEitherNameInAnyCase) {
  for (const wchar_t* name : {L"Trigger Level", L"trigger LEVEL", L"lvl", L"LVL"}) {
    EXPECT_EQ(bag->Find(name), level->GetIVorCvar());
  }
  for (const wchar_t* name : {L"Trigger", L"", static_cast<const wchar_t*>(nullptr)}) {
    EXPECT_EQ(bag->Find(name), nullptr);
  }
}

TEST_F(Bag, ABagThatGoesClearsTheParentOfItsCvars) {
  bag = nullptr;
  EXPECT_EQ(level->GetParent(), nullptr);
  IUnknown* parent = level->GetIVorCvar();
  EXPECT_EQ(level->get_Parent(&parent), OLE_E_BLANK);
  EXPECT_EQ(level->AddRef(), 2u);
  EXPECT_EQ(level->Release(), 1u);
}

// Changes a cvar when it goes.
class ChangesAtItsEnd final : public IVorCvarEventSink {
 public:
  explicit ChangesAtItsEnd(IVorCvar* cvar) : m_cvar(cvar) {}
  HRESULT QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IVorCvarEventSink) return E_NOINTERFACE;
    *object = static_cast<IVorCvarEventSink*>(this);
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++m_references; }
  ULONG Release() override {
    const ULONG left = --m_references;
    if (left == 0) {
      EXPECT_EQ(m_cvar->ForceNotification(NOTIFY_VALUE), S_OK);
      delete this;
    }
    return left;
  }
  HRESULT OnCvarNotify(IVorCvar*, NOTIFYTYPE) override { return S_OK; }

 private:
  ~ChangesAtItsEnd() = default;
  CComPtr<IVorCvar> m_cvar;
  ULONG m_references = 0;
};

TEST_F(Bag, TheEndOfOneCvarMayChangeAnotherWhileTheBagGoes) {
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(slope->AttachCvarEventSink(listener), S_OK);
  ASSERT_EQ(level->AttachCvarEventSink(new ChangesAtItsEnd(slope->GetIVorCvar())), S_OK);
  level = nullptr;
  bag = nullptr;
  EXPECT_EQ(listener->masks, std::vector<NOTIFYTYPE>{NOTIFY_VALUE});
}

TEST_F(Bag, ItemsAreNamesOrPositions) {
  struct {
    CComVariant key;
    IVorCvar* found;
    HRESULT result;
  } const rows[] = {{CComVariant(L"slope"), slope->GetIVorCvar(), S_OK},
                    {CComVariant(0), level->GetIVorCvar(), S_OK},
                    {CComVariant(1.0), slope->GetIVorCvar(), S_OK},
                    {CComVariant(L"1"), nullptr, DISP_E_BADINDEX},  // a text is a name
                    {CComVariant(2), nullptr, DISP_E_BADINDEX},
                    {CComVariant(-1), nullptr, DISP_E_BADINDEX},
                    {CComVariant(1e10), nullptr, DISP_E_OVERFLOW}};
  for (const auto& row : rows) {
    CComPtr<IVorCvar> cvar;
    EXPECT_EQ(bag->get_Item(row.key, &cvar), row.result);
    EXPECT_EQ(cvar.p, row.found);
  }
  EXPECT_EQ(bag->get_Item(CComVariant(0), nullptr), E_POINTER);
  EXPECT_EQ(bag->get_Count(nullptr), E_POINTER);
  EXPECT_EQ(bag->GetModuleInstanceHandle(nullptr), E_POINTER);
}

TEST_F(Bag, ScriptsReachNameCountItemAndCvars) {
  CComVariant value;
  EXPECT_EQ(CallByName(*bag, L"NAME", DISPATCH_PROPERTYGET, {}, &value), S_OK);
  EXPECT_STREQ(value.bstrVal, L"Trigger");
  value.Clear();
  EXPECT_EQ(CallByName(*bag, L"Count", DISPATCH_PROPERTYGET, {}, &value), S_OK);
  EXPECT_EQ(value.lVal, 2);
  EXPECT_EQ(CallByName(*bag, L"Item", DISPATCH_PROPERTYGET, {CComVariant(L"lvl")}, &value), S_OK);
  EXPECT_EQ(value.pdispVal, static_cast<IDispatch*>(level->GetIVorCvar()));
  value.Clear();
  EXPECT_EQ(CallByName(*bag, L"slope", DISPATCH_PROPERTYGET, {}, &value), S_OK);
  EXPECT_EQ(value.pdispVal, static_cast<IDispatch*>(slope->GetIVorCvar()));
}

TEST_F(Bag, ScriptsAreRefusedWhatThereIsNot) {
  CComVariant value;
  EXPECT_EQ(CallByName(*bag, L"Nothing", DISPATCH_PROPERTYGET, {}, &value), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(CallByName(*bag, L"Item", DISPATCH_PROPERTYGET, {}, &value), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(CallByName(*bag, L"Name", DISPATCH_PROPERTYGET, {CComVariant(1)}, &value),
            DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(CallByName(*bag, L"Item", DISPATCH_PROPERTYGET, {CComVariant(5)}, &value),
            DISP_E_BADINDEX);
  EXPECT_EQ(CallByName(*bag, L"Name", DISPATCH_PROPERTYPUT, {CComVariant(L"x")}),
            DISP_E_MEMBERNOTFOUND);
  DISPPARAMS none = {};
  EXPECT_EQ(bag->Invoke(57, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr),
            DISP_E_MEMBERNOTFOUND);
}

TEST_F(Bag, OffersItsInterfacesOnly) {
  for (const IID& iid : {IID_IUnknown, IID_IDispatch, IID_CvarBag}) {
    CComPtr<IUnknown> found;
    EXPECT_EQ(bag->QueryInterface(iid, reinterpret_cast<void**>(&found)), S_OK);
    EXPECT_EQ(found.p, static_cast<IUnknown*>(bag.p));
  }
  void* other = this;
  EXPECT_EQ(bag->QueryInterface(IID_IVorCvar, &other), E_NOINTERFACE);
  EXPECT_EQ(other, nullptr);
}

TEST_F(Bag, HasNoTypeLibrary) {
  UINT count = 5;
  EXPECT_EQ(bag->GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(bag->GetTypeInfoCount(nullptr), E_POINTER);
  int untouched = 0;
  auto* info = reinterpret_cast<ITypeInfo*>(&untouched);
  EXPECT_EQ(bag->GetTypeInfo(0, 0, &info), E_NOTIMPL);
  EXPECT_EQ(info, nullptr);
  EXPECT_EQ(bag->GetTypeInfo(0, 0, nullptr), E_POINTER);
}

}  // namespace
