// A cvar as scripts see it: members by name.

#include "ScriptMembers.h"

#include <gtest/gtest.h>

#include "CCvarBag.h"
#include "CCvarDouble.h"
#include "CvarObject.h"
#include "LiveCvars.h"
#include "RecordingListener.h"
#include "ScriptCall.h"

namespace {

using cvars::test::CallByName;

class ScriptMembers : public cvars::test::CvarTest {
 protected:
  ScriptMembers() {
    cvar->Initialize(L"Level|LVL", 4, 0, 10, 2, nullptr, CVARFLAG_HIDDEN, L"Knob", 9,
                     REPLICATE_VALUE);
  }
  void TearDown() override {
    cvar = nullptr;
    CvarTest::TearDown();
  }

  HRESULT Get(const wchar_t* name, CComVariant& value) {
    return CallByName(*cvar->GetIVorCvar(), name, DISPATCH_PROPERTYGET, {}, &value);
  }
  HRESULT Put(const wchar_t* name, const CComVariant& value) {
    return CallByName(*cvar->GetIVorCvar(), name, DISPATCH_PROPERTYPUT, {value});
  }
  HRESULT Call(const wchar_t* name, const std::vector<CComVariant>& arguments) {
    return CallByName(*cvar->GetIVorCvar(), name, DISPATCH_METHOD, arguments);
  }

  CComPtr<CvarObject<CCvarDouble>> cvar = CvarObject<CCvarDouble>::Create();
};

TEST_F(ScriptMembers, PropertiesAreReadByNameInAnyCase) {
  struct {
    const wchar_t* name;
    VARTYPE type;
    const wchar_t* text;
  } constexpr kRows[] = {
      {L"Value", VT_R8, L"4"},          {L"vALUE", VT_R8, L"4"},
      {L"Name", VT_BSTR, L"Level"},     {L"NAMEREMOTE", VT_BSTR, L"LVL"},
      {L"Type", VT_BSTR, L"Double"},    {L"Flags", VT_I4, L"2"},
      {L"FlagsString", VT_BSTR, L"H"},  {L"IsHidden", VT_I4, L"1"},
      {L"IsReadOnly", VT_I4, L"0"},     {L"HelpStringID", VT_UI4, L"9"},
      {L"GuiHints", VT_BSTR, L"Knob"},  {L"Range", VT_BSTR, L"From 0 to 10 step 2"},
      {L"RequestedValue", VT_R8, L"4"}, {L"IsDefault", VT_I4, L"1"},
      {L"ValueNorm", VT_R8, L"0.4"},    {L"EventSinkCount", VT_I4, L"0"},
      {L"Default", VT_R8, L"4"},        {L"Min", VT_R8, L"0"},
      {L"max", VT_R8, L"10"},           {L"Grain", VT_R8, L"2"},
      {L"Unit", VT_BSTR, L""},          {L"NumberOfIncrement", VT_R8, L"5"}};
  for (const auto& row : kRows) {
    CComVariant value;
    EXPECT_EQ(Get(row.name, value), S_OK) << CComBSTR(row.name).Length();
    EXPECT_EQ(value.vt, row.type);
    ASSERT_EQ(value.ChangeType(VT_BSTR), S_OK);
    EXPECT_STREQ(value.bstrVal, row.text);
  }
}

TEST_F(ScriptMembers, PropertiesAreWritten) {
  EXPECT_EQ(Put(L"Value", CComVariant(6)), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 6.0);
  EXPECT_EQ(Put(L"value", CComVariant(L"8")), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 8.0);
  EXPECT_EQ(Put(L"ValueNorm", CComVariant(0.2)), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 2.0);
  EXPECT_EQ(Put(L"CoarseGrain", CComVariant(1.5)), S_OK);
  CComVariant coarse;
  EXPECT_EQ(Get(L"CoarseGrain", coarse), S_OK);
  EXPECT_EQ(coarse.dblVal, 1.5);
}

TEST_F(ScriptMembers, MethodsTakeTheirArguments) {
  EXPECT_EQ(Call(L"Increment", {CComVariant(2)}), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 8.0);
  EXPECT_EQ(Call(L"SetToMin", {}), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 0.0);
  EXPECT_EQ(Call(L"SetFromStringRemote", {CComVariant(L"6")}), S_OK);
  EXPECT_EQ(cvar->GetRequested(), 6.0);
  EXPECT_EQ(Call(L"SetFromString", {CComVariant(2.5)}), S_OK);  // a number as its text
  EXPECT_EQ(cvar->GetRequested(), 2.5);
}

TEST_F(ScriptMembers, AFailureOfTheCvarIsTheAnswer) {
  cvar->SetReadOnly(1);
  EXPECT_EQ(Put(L"Value", CComVariant(6)), E_ACCESSDENIED);
  CComVariant parent(5);
  EXPECT_EQ(Get(L"Parent", parent), OLE_E_BLANK);
  EXPECT_EQ(parent.vt, VT_EMPTY);
}

TEST_F(ScriptMembers, WrongArgumentsAreRefused) {
  CComVariant value;
  EXPECT_EQ(Call(L"Increment", {}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(Call(L"Increment", {CComVariant(1), CComVariant(2)}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(Call(L"SetToMin", {CComVariant(1)}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(Call(L"Increment", {CComVariant(L"many")}), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(Call(L"Increment", {CComVariant(3e9)}), DISP_E_OVERFLOW);
  EXPECT_EQ(cvar->GetRequested(), 4.0);
}

TEST_F(ScriptMembers, AReadOnlyPropertyIsNotWritten) {
  EXPECT_EQ(Put(L"Name", CComVariant(L"x")), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(Put(L"SetToMin", CComVariant(1)), DISP_E_MEMBERNOTFOUND);
}

TEST_F(ScriptMembers, UnknownNamesAndNumbersAreRefused) {
  CComVariant value;
  EXPECT_EQ(Get(L"Nothing", value), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(Get(L"", value), DISP_E_UNKNOWNNAME);
  DISPPARAMS none = {};
  for (const DISPID id : {-1, -4, 9999, 0x7fffffff}) {
    EXPECT_EQ(cvar->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr),
              DISP_E_MEMBERNOTFOUND)
        << id;
  }
}

TEST_F(ScriptMembers, NamesOfArgumentsAreUnknown) {
  wchar_t member[] = L"Increment";
  wchar_t argument[] = L"Steps";
  wchar_t* names[] = {member, argument};
  DISPID ids[2] = {7, 7};
  EXPECT_EQ(cvar->GetIDsOfNames(IID_NULL, names, 2, 0, ids), DISP_E_UNKNOWNNAME);
  EXPECT_NE(ids[0], DISPID_UNKNOWN);
  EXPECT_EQ(ids[1], DISPID_UNKNOWN);
  EXPECT_EQ(cvar->GetIDsOfNames(IID_NULL, nullptr, 1, 0, ids), E_POINTER);
  EXPECT_EQ(cvar->GetIDsOfNames(IID_NULL, names, 1, 0, nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetIDsOfNames(IID_NULL, names, 0, 0, ids), E_INVALIDARG);
  CComVariant step(1);
  DISPID named = 3;
  DISPPARAMS parameters = {&step, &named, 1, 1};
  EXPECT_EQ(
      cvar->Invoke(ids[0], IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr),
      DISP_E_NONAMEDARGS);
}

TEST_F(ScriptMembers, TheNameValueIsTheObjectItself) {
  wchar_t value[] = L"Value";
  wchar_t* names[] = {value};
  DISPID id = 7;
  EXPECT_EQ(cvar->GetIDsOfNames(IID_NULL, names, 1, 0, &id), S_OK);
  EXPECT_EQ(id, DISPID_VALUE);
  const CComVariant object(static_cast<IDispatch*>(cvar->GetIVorCvar()));
  CComVariant number;
  EXPECT_EQ(number.ChangeType(VT_R8, &object), S_OK);
  EXPECT_EQ(number.dblVal, 4.0);
}

TEST_F(ScriptMembers, ThereIsNoTypeLibrary) {
  UINT count = 5;
  EXPECT_EQ(cvar->GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(cvar->GetTypeInfoCount(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetTypeInfo(0, 0, nullptr), E_POINTER);
  DISPPARAMS none = {};
  EXPECT_EQ(cvar->Invoke(0, IID_NULL, 0, DISPATCH_PROPERTYGET, nullptr, nullptr, nullptr, nullptr),
            E_POINTER);
  EXPECT_EQ(cvar->Invoke(0, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr),
            S_OK);  // nobody wants the result
}

}  // namespace
