#include "CCvarObjectName.h"

#include <gtest/gtest.h>

#include "CCvarBag.h"
#include "CvarObject.h"
#include "IVorCvarFileName.h"
#include "ReadProperties.h"
#include "RecordingListener.h"
#include "platform/MessageBoxPresenter.h"

namespace {

using cvars::test::RecordingListener;
using Name = CComPtr<CvarObject<CCvarObjectName>>;
using Masks = std::vector<NOTIFYTYPE>;

// Keeps the boxes instead of showing them.
class RecordingPresenter final : public cvars::platform::MessageBoxPresenter {
 public:
  RecordingPresenter() : m_before(cvars::platform::SetMessageBoxPresenter(this)) {}
  ~RecordingPresenter() { cvars::platform::SetMessageBoxPresenter(m_before); }
  int Present(HWND, const wchar_t* text, const wchar_t*, UINT) override {
    texts.emplace_back(text);
    return 1;
  }
  std::vector<std::wstring> texts;

 private:
  cvars::platform::MessageBoxPresenter* m_before;
};

Name MakeName(const wchar_t* defaultValue = L"", int maxLength = -1) {
  Name cvar = CvarObject<CCvarObjectName>::Create();
  cvar->Initialize(L"Trace", defaultValue, maxLength, CVARFLAGS(0), nullptr, 0,
                   REPLICATE_VALUE | REPLICATE_REQUESTED);
  return cvar;
}

std::wstring Adapted(const Name& cvar) { return std::wstring(cvar->GetAdaptedValue().View()); }

struct NameCase {
  const char* name;
  const wchar_t* request;
  const wchar_t* joined;
};
constexpr NameCase kNameCases[] = {
    {"ScreenNameAlone", L"Math 1", L"Math 1|Math1|MATH1"},
    {"AllThree", L"Trace A|trA|tr a", L"Trace A|trA|TRA"},
    {"PunctuationGoesFromScripts", L"Ch.1 (AC)", L"Ch.1 (AC)|Ch1AC|CH1AC"},
    {"MissingAutomationStaysEmpty", L"X||y", L"X||Y"},
    {"LettersBeyondAsciiGo", L"\u00e9t\u00e9|\u00e9t\u00e9|\u00e9t\u00e9", L"\u00e9t\u00e9|t|T"},
    {"Empty", L"", L"||"},
    {"NullReadsAsEmpty", nullptr, L"||"},
};

TEST(ObjectNameRequest, IsStoredAsThreeNames) {
  for (const NameCase& row : kNameCases) {
    SCOPED_TRACE(row.name);
    const Name cvar = MakeName(L"before");
    EXPECT_EQ(cvar->SetRequestedValue(row.request), S_OK);
    EXPECT_EQ(Adapted(cvar), row.joined);
  }
}

TEST(ObjectNameRequest, SameNameSetsTheRequestedBitOnlyOnce) {
  const Name cvar = MakeName();
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(L"Math 1"), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(L"Math 1"), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(L"Math 1|Math1|math1"), S_OK);
  EXPECT_EQ(listener->masks, (Masks{NOTIFY_REQUESTED | NOTIFY_VALUE}));
}

TEST(ObjectNameRequest, TwoNamesAreRefusedWithAMessage) {
  RecordingPresenter presenter;
  const CComPtr<CCvarBag> bag = CCvarBag::Create(L"Display", nullptr);
  const Name cvar = MakeName(L"Old");
  ASSERT_EQ(bag->Add(cvar), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(L"A|B"), E_INVALIDARG);
  EXPECT_EQ(Adapted(cvar), L"Old|Old|OLD");
  ASSERT_EQ(presenter.texts.size(), 1u);
  EXPECT_EQ(presenter.texts[0],
            L"Invalid value specified: A|B\n Current BagName: Display\nYou must specify the screen "
            L"name only, or the the three names separated by |(screen|automation|remote)");
}

TEST(ObjectNameRequest, WithoutABagTheMessageHasAnEmptyBagName) {
  RecordingPresenter presenter;
  const Name cvar = MakeName();
  EXPECT_EQ(cvar->SetRequestedValue(L"A|B|C|D"), E_INVALIDARG);
  ASSERT_EQ(presenter.texts.size(), 1u);
  EXPECT_NE(presenter.texts[0].find(L"\n Current BagName: \n"), std::wstring::npos);
}

TEST(ObjectNameRequest, ReadOnlyRefusesBeforeItLooksAtTheText) {
  RecordingPresenter presenter;
  const Name cvar = MakeName(L"Old");
  cvar->SetReadOnly(1);
  EXPECT_EQ(cvar->SetRequestedValue(L"A|B"), E_ACCESSDENIED);
  EXPECT_TRUE(presenter.texts.empty());
  EXPECT_EQ(cvar->SetRequestedValue(L"New", true), S_OK);
  EXPECT_EQ(Adapted(cvar), L"New|New|NEW");
}

TEST(ObjectNameRequest, OneNameIsReplacedAtATime) {
  const Name cvar = MakeName(L"Math 1");
  EXPECT_EQ(cvar->SetRequestedValueStringScreen(L"Result"), S_OK);
  EXPECT_EQ(Adapted(cvar), L"Result|Math1|MATH1");
  EXPECT_EQ(cvar->SetRequestedValueStringAutomation(L"Res 1"), S_OK);
  EXPECT_EQ(Adapted(cvar), L"Result|Res1|MATH1");
  EXPECT_EQ(cvar->SetRequestedValueStringRemote(L"res"), S_OK);
  EXPECT_EQ(Adapted(cvar), L"Result|Res1|RES");
}

TEST(ObjectNameTexts, GiveOneNameEach) {
  const Name cvar = MakeName(L"Trace A|trA|ta");
  CComBSTR text;
  IVorCvar* const common = cvar->GetIVorCvar();
  EXPECT_EQ(common->GetAdaptedValueStringScreen(&text), S_OK);
  EXPECT_EQ(text.View(), L"Trace A");
  EXPECT_EQ(common->GetAdaptedValueStringRemote(&text), S_OK);
  EXPECT_EQ(text.View(), L"TA");
  EXPECT_EQ(common->GetAdaptedValueStringAutomation(&text), S_OK);
  EXPECT_EQ(text.View(), L"Trace A|trA|TA");
  EXPECT_EQ(cvar->GetAdaptedValueStringScreen().View(), L"Trace A");
  EXPECT_EQ(cvar->GetAdaptedValueStringAutomation().View(), L"trA");
  EXPECT_EQ(cvar->GetAdaptedValueStringRemote().View(), L"TA");
  EXPECT_EQ(cvar->GetAdaptedValueNamesJoined(&text), S_OK);
  EXPECT_EQ(text.View(), L"Trace A|trA|TA");
}

TEST(ObjectNameTexts, NamesThatTheLengthCutOffAreEmpty) {
  const Name cvar = MakeName(L"Trace", 7);  // "Trace|T" is left of "Trace|Trace|TRACE"
  EXPECT_EQ(Adapted(cvar), L"Trace|T");
  EXPECT_EQ(cvar->GetAdaptedValueStringScreen().View(), L"Trace");
  EXPECT_EQ(cvar->GetAdaptedValueStringAutomation().View(), L"T");
  EXPECT_EQ(cvar->GetAdaptedValueStringRemote().View(), L"");
}

TEST(ObjectNameTexts, SignatureShowsTheJoinedNames) {
  const Name cvar = MakeName(L"A");
  CComBSTR text;
  EXPECT_EQ(cvar->get_Signature(&text), S_OK);
  EXPECT_EQ(text.View(),
            L"Type,ObjectName,Request,A|A|A,Adapt,A|A|A,Default,A|A|A,MaxLen,-1,Flags,-");
}

TEST(ObjectNameDefault, IsKeptJoined) {
  const Name cvar = MakeName(L"Math 1");
  CComBSTR text;
  EXPECT_EQ(cvar->GetDefaultValue(&text), S_OK);
  EXPECT_EQ(text.View(), L"Math 1|Math1|MATH1");
  EXPECT_EQ(cvar->SetDefaultValue(L"A|B"), E_INVALIDARG);
  EXPECT_EQ(cvar->SetDefaultValue(L"Other"), S_OK);
  EXPECT_EQ(cvar->SetToDefault(), S_OK);
  EXPECT_EQ(Adapted(cvar), L"Other|Other|OTHER");
}

TEST(ObjectNameInterfaces, AreThoseOfATextToo) {
  const Name cvar = MakeName(L"Math 1");
  CComPtr<IVorCvarString> text;
  ASSERT_EQ(cvar->QueryInterface(IID_IVorCvarString, reinterpret_cast<void**>(&text)), S_OK);
  CComBSTR value;
  EXPECT_EQ(text->GetAdaptedValue(&value), S_OK);
  EXPECT_STREQ(value, L"Math 1|Math1|MATH1");
  CComPtr<IVorCvarObjectName> names;
  EXPECT_EQ(cvar->QueryInterface(IID_IVorCvarObjectName, reinterpret_cast<void**>(&names)), S_OK);
  CComPtr<IUnknown> other;
  EXPECT_EQ(cvar->QueryInterface(IID_IVorCvarFileName, reinterpret_cast<void**>(&other)),
            E_NOINTERFACE);
}

TEST(ObjectNameProperties, AddTheJoinedNamesAndTheScreenName) {
  const Name cvar = MakeName(L"Math 1", 9);
  EXPECT_EQ(cvars::test::OwnPropertiesOf(*cvar),
            (cvars::test::Properties{{L"AdaptedValue", VT_BSTR, L"Math 1|Ma"},
                                     {L"AdaptedValueStringScreen", VT_BSTR, L"Math 1"},
                                     {L"Default", VT_BSTR, L"Math 1|Math1|MATH1"},
                                     {L"MaxLen", VT_I4, L"9"},
                                     {L"RequestedValue", VT_BSTR, L"Math 1|Math1|MATH1"}}));
}

}  // namespace
