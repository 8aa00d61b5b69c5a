#include "CCvarString.h"

#include <gtest/gtest.h>

#include "CVorComBSTR.h"
#include "CvarObject.h"
#include "ReadProperties.h"
#include "RecordingListener.h"
#include "SafeArray.h"

namespace {

using cvars::test::RecordingListener;
using String = CComPtr<CvarObject<CCvarString>>;
using Masks = std::vector<NOTIFYTYPE>;

constexpr CVARREPLICATIONFLAGS kReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;

String MakeString(int maxLength = 16, const wchar_t* defaultValue = L"",
                  CVARFLAGS flags = CVARFLAGS(0)) {
  String cvar = CvarObject<CCvarString>::Create();
  cvar->Initialize(L"Label|lab", defaultValue, maxLength, flags, nullptr, 0, kReplication);
  return cvar;
}

std::wstring Text(IVorCvar* cvar, HRESULT (IVorCvar::*get)(BSTR*)) {
  CComBSTR text;
  EXPECT_EQ((cvar->*get)(&text), S_OK);
  return std::wstring(text.View());
}

std::wstring Adapted(const String& cvar) { return std::wstring(cvar->GetAdaptedValue().View()); }

TEST(StringAdaptation, NewCvarCutsToSixteenCharacters) {
  const String cvar = CvarObject<CCvarString>::Create();
  EXPECT_EQ(cvar->SetRequestedValue(L"12345678901234567890"), S_OK);
  EXPECT_EQ(Adapted(cvar), L"1234567890123456");
  int adapted = 0;
  EXPECT_EQ(cvar->get_IsValueAdapted(&adapted), S_OK);
  EXPECT_EQ(adapted, 1);
  CComBSTR requested;
  EXPECT_EQ(cvar->GetRequestedValue(&requested), S_OK);
  EXPECT_EQ(requested.View(), L"12345678901234567890");
}

struct CutCase {
  const char* name;
  int maxLength;
  const wchar_t* request;
  const wchar_t* adapted;
};
constexpr CutCase kCutCases[] = {
    {"ZeroLengthGivesEmpty", 0, L"abc", L""},
    {"ExactLengthIsKept", 3, L"abc", L"abc"},
    {"OneTooMany", 3, L"abcd", L"abc"},
    {"MinusOneIsUnlimited", -1, L"a text that is longer than sixteen",
     L"a text that is longer than sixteen"},
    {"CharactersBeyondAscii", 2, L"\u00e9\U0001f600x", L"\u00e9\U0001f600"},
    {"NullIsEmpty", 3, nullptr, L""},
};

TEST(StringAdaptation, TakesTheFirstCharactersUpToTheMaximumLength) {
  for (const CutCase& row : kCutCases) {
    SCOPED_TRACE(row.name);
    const String cvar = MakeString(row.maxLength, L"?");
    EXPECT_EQ(cvar->SetRequestedValue(row.request), S_OK);
    EXPECT_EQ(Adapted(cvar), row.adapted);
  }
}

TEST(StringRequest, SameTextSetsTheRequestedBitOnlyOnce) {
  const String cvar = MakeString();
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(L"abc"), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(L"abc"), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(L"ABC"), S_OK);
  EXPECT_EQ(listener->masks,
            (Masks{NOTIFY_REQUESTED | NOTIFY_VALUE, NOTIFY_REQUESTED | NOTIFY_VALUE}));
}

TEST(StringRequest, ChangeBeyondTheMaximumLengthMovesTheRequestAlone) {
  const String cvar = MakeString(3);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  cvar->SetRequestedValue(L"abcd");
  cvar->SetRequestedValue(L"abce");
  EXPECT_EQ(listener->masks, (Masks{NOTIFY_REQUESTED | NOTIFY_VALUE, NOTIFY_REQUESTED}));
}

TEST(StringRequest, ReadOnlyRefusesUnlessForced) {
  const String cvar = MakeString(16, L"old", CVARFLAG_READONLY);
  EXPECT_EQ(cvar->SetRequestedValue(L"new", false), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetRequestedValueFromStringRemote(L"new"), E_ACCESSDENIED);
  EXPECT_EQ(Adapted(cvar), L"old");
  EXPECT_EQ(cvar->SetRequestedValue(L"new", true), S_OK);
  EXPECT_EQ(Adapted(cvar), L"new");
}

TEST(StringRequest, PutValueTakesTextsOnly) {
  const String cvar = MakeString();
  EXPECT_EQ(cvar->put_Value(CComVariant(5)), E_INVALIDARG);
  EXPECT_EQ(cvar->put_Value(CComVariant()), E_INVALIDARG);
  EXPECT_EQ(cvar->put_Value(CComVariant(L"five")), S_OK);
  CComVariant value;
  EXPECT_EQ(cvar->get_Value(&value), S_OK);
  ASSERT_EQ(value.vt, VT_BSTR);
  EXPECT_STREQ(value.bstrVal, L"five");
}

TEST(StringRequest, DefaultIsRequestedAndAskedFor) {
  const String cvar = MakeString(16, L"start");
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetDefaultValue(L"start"), S_FALSE);
  EXPECT_EQ(cvar->SetDefaultValue(L"begin"), S_OK);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_ATTRIBUTES});
  EXPECT_EQ(Adapted(cvar), L"start");
  int isDefault = 1;
  EXPECT_EQ(cvar->IsDefault(&isDefault), S_OK);
  EXPECT_EQ(isDefault, 0);
  EXPECT_EQ(cvar->SetToDefault(), S_OK);
  EXPECT_EQ(Adapted(cvar), L"begin");
  EXPECT_EQ(cvar->IsDefault(&isDefault), S_OK);
  EXPECT_EQ(isDefault, 1);
}

TEST(StringRange, ChangeOfLengthDefaultHintsAndHelpIsOneNotification) {
  const String cvar = MakeString(16, L"");
  cvar->SetRequestedValue(L"abcdef");
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetRange(L"x", 3, nullptr, 7), S_OK);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_RANGE | NOTIFY_ATTRIBUTES | NOTIFY_VALUE});
  EXPECT_EQ(Adapted(cvar), L"abc");
  EXPECT_EQ(cvar->SetRange(L"x", 3, nullptr, 0), S_OK);
  EXPECT_TRUE(listener->TakeMasks().empty());
  unsigned int help = 0;
  EXPECT_EQ(cvar->get_HelpStringID(&help), S_OK);
  EXPECT_EQ(help, 7u);
  EXPECT_EQ(cvar->SetRange(L"x", 3, L"hints", 0), S_OK);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_GUIHINTS});
}

TEST(StringTexts, AreTheTextItself) {
  const String cvar = MakeString(16, L"a b");
  EXPECT_EQ(Text(cvar, &IVorCvar::GetAdaptedValueStringScreen), L"a b");
  EXPECT_EQ(Text(cvar, &IVorCvar::GetAdaptedValueStringRemote), L"a b");
  EXPECT_EQ(Text(cvar, &IVorCvar::GetAdaptedValueStringRemoteNoUnit), L"a b");
  EXPECT_EQ(Text(cvar, &IVorCvar::GetAdaptedValueStringAutomation), L"a b");
  EXPECT_EQ(Text(cvar, &IVorCvar::get_Type), L"String");
  for (const auto range :
       {&IVorCvar::get_Range, &IVorCvar::get_RangeStringScreen, &IVorCvar::get_RangeStringRemote,
        &IVorCvar::get_RangeStringAutomation}) {
    EXPECT_EQ(Text(cvar, range), L"Any number of characters");
  }
}

TEST(StringTexts, ACvarReadsAsEitherOwningString) {
  const String cvar = MakeString(3, L"abcd");
  const CVorComBSTR handedOut = *cvar;
  const CComBSTR own = *cvar;
  const CVorComBSTR madeFrom(*cvar);
  const CComBSTR madeOwn(*cvar);
  for (const CComBSTR* text : {static_cast<const CComBSTR*>(&handedOut), &own,
                               static_cast<const CComBSTR*>(&madeFrom), &madeOwn}) {
    EXPECT_EQ(text->View(), L"abc");
  }
}

TEST(StringTexts, SignatureShowsAnUnlimitedLengthAsMinusOne) {
  const String cvar = MakeString(5, L"def");
  cvar->SetRequestedValue(L"abcdefg");
  EXPECT_EQ(Text(cvar, &IVorCvar::get_Signature),
            L"Type,String,Request,abcdefg,Adapt,abcde,Default,def,MaxLen,5,Flags,-");
  cvar->SetRange(L"def", cvars::kUnlimitedLength, nullptr, 0);
  EXPECT_EQ(Text(cvar, &IVorCvar::get_Signature),
            L"Type,String,Request,abcdefg,Adapt,abcdefg,Default,def,MaxLen,-1,Flags,-");
}

TEST(StringTexts, PropertiesAddTheThreeValuesAndTheLength) {
  const String cvar = MakeString(5, L"def");
  ASSERT_EQ(cvar->SetRequestedValue(L"abcdefg"), S_OK);
  EXPECT_EQ(cvars::test::OwnPropertiesOf(*cvar),
            (cvars::test::Properties{{L"AdaptedValue", VT_BSTR, L"abcde"},
                                     {L"Default", VT_BSTR, L"def"},
                                     {L"MaxLen", VT_I4, L"5"},
                                     {L"RequestedValue", VT_BSTR, L"abcdefg"}}));
}

TEST(StringNorm, HasNoPosition) {
  const String cvar = MakeString();
  double position = 5;
  EXPECT_EQ(cvar->GetAdaptedValueNorm(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetAdaptedValueNorm(&position), S_OK);
  EXPECT_EQ(position, 0.0);
  EXPECT_EQ(cvar->SetRequestedValueNorm(0.5), E_NOTIMPL);
  EXPECT_EQ(cvar->Increment(1), E_NOTIMPL);
  EXPECT_EQ(cvar->SetToMin(), E_NOTIMPL);
}

TEST(StringNullPointers, ComeFirst) {
  const String cvar = MakeString();
  EXPECT_EQ(cvar->GetAdaptedValue(static_cast<BSTR*>(nullptr)), E_POINTER);
  EXPECT_EQ(cvar->GetDefaultValue(static_cast<BSTR*>(nullptr)), E_POINTER);
  EXPECT_EQ(cvar->GetRequestedValue(static_cast<BSTR*>(nullptr)), E_POINTER);
  EXPECT_EQ(cvar->GetMaxLength(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_Value(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_Range(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_Signature(nullptr), E_POINTER);
}

}  // namespace
