#include "CCvarEnum.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "CvarObject.h"
#include "PropertyOf.h"
#include "RecordingListener.h"

namespace {

using cvars::test::PlainObject;
using cvars::test::PropertyOf;
using cvars::test::RecordingListener;
using Masks = std::vector<NOTIFYTYPE>;
using Enum = CComPtr<CvarObject<CCvarEnum>>;

constexpr CVARREPLICATIONFLAGS kDefaultReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;
constexpr NOTIFYTYPE kRequestedAndValue = NOTIFY_REQUESTED | NOTIFY_VALUE;
constexpr NOTIFYTYPE kRangeAndValue = NOTIFY_RANGE | NOTIFY_VALUE;
constexpr int kUntouched = 77;

Enum MakeEnum(const wchar_t* values, int defaultIndex = 0, CVARFLAGS flags = CVARFLAGS(0)) {
  Enum cvar = CvarObject<CCvarEnum>::Create();
  cvar->Initialize(L"Coupling", values, defaultIndex, flags, nullptr, 0, kDefaultReplication, 0);
  return cvar;
}

CComPtr<RecordingListener> Listen(const Enum& cvar) {
  auto listener = RecordingListener::Create();
  EXPECT_EQ(S_OK, cvar->AttachCvarEventSink(listener));
  return listener;
}

int Adapted(const Enum& cvar) {
  int index = kUntouched;
  EXPECT_EQ(S_OK, cvar->GetAdaptedValue(&index));
  return index;
}
int Requested(const Enum& cvar) {
  int index = kUntouched;
  EXPECT_EQ(S_OK, cvar->GetRequestedValue(&index));
  return index;
}
int Default(const Enum& cvar) {
  int index = kUntouched;
  EXPECT_EQ(S_OK, cvar->GetDefaultValue(&index));
  return index;
}

// The text that an operation hands out.
template <class Get, class... A>
std::wstring Text(const Enum& cvar, Get get, A... arguments) {
  CComBSTR text;
  EXPECT_EQ(S_OK, ((*cvar).*get)(arguments..., &text));
  return std::wstring(text.View());
}
std::wstring All(const Enum& cvar) { return Text(cvar, &CCvarEnum::GetFullRangeString, 1); }
std::wstring Screens(const Enum& cvar) { return Text(cvar, &CCvarEnum::get_RangeStringScreen); }

// Life

TEST(EnumTest, ANewOneHasThreeDifferentMarksAndNoEntry) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  EXPECT_EQ(-2, Adapted(cvar));
  EXPECT_EQ(-3, Default(cvar));
  EXPECT_EQ(-4, Requested(cvar));
  EXPECT_EQ(-1, cvar->MaxValueIndex());
  EXPECT_EQ(L"Enum", Text(cvar, &CCvarEnum::get_Type));
}

TEST(EnumTest, TheFirstAdaptationTurnsTheMarkIntoNoEntry) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->UpdateAdaptedValueAndNotify());
  EXPECT_EQ(-1, Adapted(cvar));
  EXPECT_EQ(Masks{NOTIFY_VALUE}, listener->TakeMasks());
}

TEST(EnumTest, InitializeBuildsTheListRequestsTheDefaultAndTellsNobody) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  const auto listener = Listen(cvar);
  cvar->Initialize(L"Trigger Mode|trig mode", L"Auto,Normal,Single|One|ONE", 1,
                   CVARFLAG_NONVOLATILE, L"combo", 12, REPLICATE_VALUE, 34);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(L"Trigger Mode", Text(cvar, &CCvarEnum::get_Name));
  EXPECT_EQ(L"TRIG_MODE", Text(cvar, &CCvarEnum::get_NameRemote));
  EXPECT_EQ(L"Auto|Auto|AUTO,Normal|Normal|NORMAL,Single|One|ONE", All(cvar));
  EXPECT_EQ(1, Requested(cvar));
  EXPECT_EQ(1, Default(cvar));
  EXPECT_EQ(1, Adapted(cvar));
  EXPECT_EQ(CVARFLAG_NONVOLATILE, cvar->Flags());
  EXPECT_EQ(REPLICATE_VALUE, cvar->ReplicationFlags());
  EXPECT_EQ(L"combo", Text(cvar, &CCvarEnum::GetGuiHints));
  unsigned int helpId = 0;
  EXPECT_EQ(S_OK, cvar->get_HelpStringID(&helpId));
  EXPECT_EQ(12u, helpId);
  unsigned long iconId = 0;
  unsigned long module = 0;
  EXPECT_EQ(S_OK, cvar->GetIconInfo(&iconId, &module));
  EXPECT_EQ(34u, iconId);
  EXPECT_EQ(S_OK, cvar->ForceNotification(NOTIFY_FLAGS));
  EXPECT_EQ(Masks{NOTIFY_FLAGS}, listener->TakeMasks());
}

TEST(EnumTest, InitializeStoresTheFlagsBeforeItMakesTheEntries) {
  EXPECT_EQ(L"Ch 1 (AC)|Ch 1 (AC)|CH 1 (AC)",
            All(MakeEnum(L"Ch 1 (AC)", 0, CVARFLAG_SPECIALCHARS)));
  EXPECT_EQ(L"Ch 1 (AC)|Ch1AC|CH1AC", All(MakeEnum(L"Ch 1 (AC)")));
}

TEST(EnumTest, InitializeOfAReadOnlyEnumRequestsTheDefault) {
  EXPECT_EQ(1, Adapted(MakeEnum(L"A,B", 1, CVARFLAG_READONLY)));
}

TEST(EnumTest, InitializeLeavesEmptyPiecesOutAndKeepsEqualOnes) {
  EXPECT_EQ(L"A,B,A", Screens(MakeEnum(L",A,,B,A,")));
}

TEST(EnumTest, InitializeWithNullTextsGivesAnEmptyNameAndNoEntry) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  cvar->Initialize(nullptr, nullptr, 0, CVARFLAGS(0), nullptr, 0, kDefaultReplication, 0);
  EXPECT_EQ(L"", Text(cvar, &CCvarEnum::get_Name));
  EXPECT_EQ(-1, Adapted(cvar));
  EXPECT_EQ(0, Requested(cvar));
}

// Building the list

TEST(EnumAddValueTest, SeveralPiecesAreAppendedWhateverTheIndex) {
  const Enum cvar = MakeEnum(L"X");
  EXPECT_EQ(S_OK, cvar->AddValue(L"A,B,C", 0, 0));
  EXPECT_EQ(L"X,A,B,C", Screens(cvar));
}

TEST(EnumAddValueTest, OnePieceGoesBeforeTheIndex) {
  const Enum cvar = MakeEnum(L"A,B");
  EXPECT_EQ(S_OK, cvar->AddValue(L"X", 0, 0));
  EXPECT_EQ(S_OK, cvar->AddValue(L"Y", 0, 2));
  EXPECT_EQ(S_OK, cvar->AddValue(L"Z", 0, 99));
  EXPECT_EQ(S_OK, cvar->AddValue(L"W", 0, -1));
  EXPECT_EQ(L"X,A,Y,B,Z,W", Screens(cvar));
}

TEST(EnumAddValueTest, TheSameEntryTwiceStaysOne) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  EXPECT_EQ(S_OK, cvar->AddValue(L"Off", 0, -1));
  const auto listener = Listen(cvar);
  EXPECT_EQ(E_INVALIDARG, cvar->AddValue(L"Off", 0, -1));
  EXPECT_EQ(E_INVALIDARG, cvar->AddValue(L"oFF|OFF|off", 0, -1));
  EXPECT_EQ(L"Off", Screens(cvar));
  EXPECT_TRUE(listener->masks.empty());
}

TEST(EnumAddValueTest, EqualPiecesOfOneTextStayOne) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  EXPECT_EQ(S_OK, cvar->AddValue(L"A,B,a", 0, -1));
  EXPECT_EQ(L"A,B", Screens(cvar));
}

TEST(EnumAddValueTest, AnEntryThatDiffersInOneSpellingIsAdded) {
  const Enum cvar = MakeEnum(L"Off|off|OFF");
  EXPECT_EQ(S_OK, cvar->AddValue(L"Off|off|ZERO", 0, -1));
  EXPECT_EQ(L"Off,Off", Screens(cvar));
}

TEST(EnumAddValueTest, NothingToAddIsAnErrorAndTellsNobody) {
  const Enum cvar = MakeEnum(L"A");
  const auto listener = Listen(cvar);
  EXPECT_EQ(E_INVALIDARG, cvar->AddValue(L"", 0, -1));
  EXPECT_EQ(E_INVALIDARG, cvar->AddValue(L",,", 0, -1));
  EXPECT_EQ(E_INVALIDARG, cvar->AddValue(nullptr, 0, -1));
  EXPECT_TRUE(listener->masks.empty());
}

TEST(EnumAddValueTest, TellsTheRangeOnceAndTheValueWhenItMoves) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(1));
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->AddValue(L"A,B,C", 0, -1));
  EXPECT_EQ(S_OK, cvar->AddValue(L"D", 0, -1));
  EXPECT_EQ((Masks{kRangeAndValue, NOTIFY_RANGE}), listener->TakeMasks());
}

TEST(EnumAddValueTest, GivesTheAnswerOfTheListeners) {
  const Enum cvar = MakeEnum(L"A");
  const auto listener = RecordingListener::Create(E_UNEXPECTED);
  ASSERT_EQ(S_OK, cvar->AttachCvarEventSink(listener));
  EXPECT_EQ(E_UNEXPECTED, cvar->AddValue(L"B", 0, -1));
}

TEST(EnumAddValueTest, AnIconComesFromTheModuleOfTheCvarsOwnIcon) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  cvar->SetIcon(1, 5);
  EXPECT_EQ(S_OK, cvar->AddValue(L"A", 7, -1));
  EXPECT_EQ(S_OK, cvar->AddValue(L"B", 0, -1));
  unsigned long id = 0;
  unsigned long module = 0;
  EXPECT_EQ(S_OK, cvar->GetEnumValueIconInfo(0, &id, &module));
  EXPECT_EQ(7u, id);
  EXPECT_EQ(5u, module);
  EXPECT_EQ(S_OK, cvar->GetEnumValueIconInfo(1, &id, &module));
  EXPECT_EQ(0u, id);
  EXPECT_EQ(0u, module);
}

TEST(EnumAddValueTest, WithIconInfoKeepsThePair) {
  const Enum cvar = MakeEnum(L"A");
  EXPECT_EQ(S_OK, cvar->AddValueAndIconInfo(L"B", 9, reinterpret_cast<HINSTANCE>(4), 0));
  EXPECT_EQ(L"B,A", Screens(cvar));
  unsigned long id = 0;
  unsigned long module = 0;
  EXPECT_EQ(S_OK, cvar->GetEnumValueIconInfo(0, &id, &module));
  EXPECT_EQ(9u, id);
  EXPECT_EQ(4u, module);
  EXPECT_EQ(E_INVALIDARG, cvar->AddValueAndIconInfo(L"b", 9, nullptr, 0));
  EXPECT_EQ(E_INVALIDARG, cvar->AddValueAndIconInfo(nullptr, 9, nullptr, 0));
}

TEST(EnumAddValueTest, WithVariantKeepsVariantAndObject) {
  const Enum cvar = MakeEnum(L"A");
  const CComPtr<IUnknown> object = PlainObject::Create();
  EXPECT_EQ(S_OK, cvar->AddValueWithVariant(L"B", CComVariant(2.5), object, -1));
  CComVariant value;
  EXPECT_EQ(S_OK, cvar->GetVariant(1, &value));
  EXPECT_EQ(VT_R8, value.vt);
  EXPECT_EQ(2.5, value.dblVal);
  CComPtr<IUnknown> kept;
  EXPECT_EQ(S_OK, cvar->GetEnumIUnknown(1, &kept));
  EXPECT_EQ(object.p, kept.p);
  EXPECT_EQ(E_INVALIDARG, cvar->AddValueWithVariant(L"", CComVariant(), nullptr, -1));
}

TEST(EnumAddValueTest, IfValidTakesTheEntryOver) {
  const Enum cvar = MakeEnum(L"A");
  const auto listener = Listen(cvar);
  EXPECT_TRUE(cvar->AddValueIfValid(new CCvarEnumValue(L"B", false), 0));
  EXPECT_FALSE(cvar->AddValueIfValid(new CCvarEnumValue(L"", false), 0));
  EXPECT_FALSE(cvar->AddValueIfValid(nullptr, 0));
  EXPECT_EQ(L"B,A", Screens(cvar));
  EXPECT_TRUE(listener->masks.empty());
}

TEST(EnumPageTest, ANewNameBecomesAnEntryWithItsPage) {
  const Enum cvar = MakeEnum(L"A");
  const auto listener = Listen(cvar);
  const CComPtr<IUnknown> object = PlainObject::Create();
  EXPECT_EQ(S_OK, cvar->AddChildPage(L"Filter", L"filter page", object));
  EXPECT_EQ(Masks{NOTIFY_RANGE}, listener->TakeMasks());
  EXPECT_EQ(L"A,Filter", Screens(cvar));
  CComVariant page;
  EXPECT_EQ(S_OK, cvar->GetExtraEnumData(1, EXTRAENUMDATA_CHILDPAGE, &page));
  ASSERT_EQ(VT_BSTR, page.vt);
  EXPECT_STREQ(L"filter page", page.bstrVal);
  CComPtr<IUnknown> kept;
  EXPECT_EQ(S_OK, cvar->GetEnumIUnknown(1, &kept));
  EXPECT_EQ(object.p, kept.p);
}

TEST(EnumPageTest, AKnownNameIsEnabledAndNothingElseChanges) {
  const Enum cvar = MakeEnum(L"A,Filter");
  EXPECT_EQ(S_OK, cvar->Disable(1));
  EXPECT_EQ(S_OK, cvar->AddChildPage(L"FILTER", L"page", nullptr));
  int enabled = 0;
  EXPECT_EQ(S_OK, cvar->IsEnabled(1, &enabled));
  EXPECT_EQ(1, enabled);
  CComVariant page(5);
  EXPECT_EQ(S_OK, cvar->GetExtraEnumData(1, EXTRAENUMDATA_CHILDPAGE, &page));
  EXPECT_EQ(VT_EMPTY, page.vt);
  EXPECT_EQ(2, cvar->MaxValueIndex() + 1);
  EXPECT_EQ(S_FALSE, cvar->AddChildPage(L"Filter", L"page", nullptr));
}

TEST(EnumPageTest, AnEmptyNameIsRefused) {
  const Enum cvar = MakeEnum(L"A");
  EXPECT_EQ(E_INVALIDARG, cvar->AddChildPage(L"", L"page", nullptr));
  EXPECT_EQ(E_INVALIDARG, cvar->AddPage(nullptr, L"page", CComVariant(), DLGPAGE_MAIN, nullptr));
}

TEST(EnumPageTest, AddPageKeepsVariantAndPageType) {
  const Enum cvar = MakeEnum(L"A");
  EXPECT_EQ(S_OK, cvar->AddPage(L"B", L"page", CComVariant(3), DLGPAGE_MAIN, nullptr));
  CComVariant value;
  EXPECT_EQ(S_OK, cvar->GetVariant(1, &value));
  EXPECT_EQ(3, value.lVal);
  DLGPAGETYPE type = DLGPAGE_CHILD;
  EXPECT_EQ(S_OK, cvar->GetPageType(1, &type));
  EXPECT_EQ(DLGPAGE_MAIN, type);
  EXPECT_EQ(S_OK, cvar->GetPageType(0, &type));
  EXPECT_EQ(DLGPAGE_CHILD, type);
  EXPECT_EQ(E_POINTER, cvar->GetPageType(0, nullptr));
  EXPECT_EQ(E_INVALIDARG, cvar->GetPageType(2, &type));
}

TEST(EnumDeleteTest, RemovesTheEntryThatTheTextMatches) {
  const Enum cvar = MakeEnum(L"A,B,C", 1);
  const auto listener = Listen(cvar);
  EXPECT_EQ(1, cvar->DeleteValue(L"b"));
  EXPECT_EQ(L"A,C", Screens(cvar));
  EXPECT_EQ(0, cvar->DeleteValue(L"b"));
  EXPECT_EQ(0, cvar->DeleteValue(nullptr));
  EXPECT_EQ(Masks{NOTIFY_RANGE}, listener->TakeMasks());
  EXPECT_EQ(1, cvar->DeleteValue(L"C"));
  EXPECT_EQ(0, Adapted(cvar));
  EXPECT_EQ(Masks{kRangeAndValue}, listener->TakeMasks());
}

TEST(EnumDeleteTest, AllReadaptsAndTellsOnce) {
  const Enum cvar = MakeEnum(L"A,B");
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->DeleteAllValues());
  EXPECT_EQ(-1, Adapted(cvar));
  EXPECT_EQ(Masks{kRangeAndValue}, listener->TakeMasks());
}

TEST(EnumDeleteTest, AllWithoutNotificationIsSilentAndKeepsTheValue) {
  const Enum cvar = MakeEnum(L"A,B", 1);
  const auto listener = Listen(cvar);
  cvar->DeleteAllValuesNoNotify();
  EXPECT_EQ(0, cvar->MaxValueIndex() + 1);
  EXPECT_EQ(1, Adapted(cvar));
  EXPECT_EQ(L"", Text(cvar, &CCvarEnum::GetAdaptedValueStringScreen));
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(S_OK, cvar->ForceNotification(NOTIFY_FLAGS));
  EXPECT_EQ(Masks{NOTIFY_FLAGS}, listener->TakeMasks());
}

TEST(EnumDeleteTest, ReleasesTheObjects) {
  const auto object = RecordingListener::Create();
  {
    const Enum cvar = MakeEnum(L"");
    for (const wchar_t* text : {L"A", L"B", L"C", L"D"}) {
      EXPECT_EQ(S_OK, cvar->AddValueWithVariant(text, CComVariant(), object, -1));
    }
    EXPECT_EQ(5u, object->References());
    EXPECT_EQ(1, cvar->DeleteValue(L"A"));
    EXPECT_EQ(4u, object->References());
    EXPECT_EQ(S_OK, cvar->SetRange(L"X", 0, nullptr, 0, false));
    EXPECT_EQ(1u, object->References());
    EXPECT_EQ(S_OK, cvar->AddValueWithVariant(L"A", CComVariant(object.p), object, -1));
    EXPECT_EQ(3u, object->References());
    cvar->DeleteAllValuesNoNotify();
    EXPECT_EQ(1u, object->References());
    EXPECT_EQ(S_OK, cvar->AddValueWithVariant(L"A", CComVariant(), object, -1));
  }
  EXPECT_EQ(1u, object->References());
}

TEST(EnumSetRangeTest, ReplacesTheList) {
  const Enum cvar = MakeEnum(L"A,B", 1);
  EXPECT_EQ(S_OK, cvar->Disable(0));
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->SetRange(L"C,,D,C", 5, nullptr, 0, false));
  EXPECT_EQ(L"C,D,C", Screens(cvar));
  EXPECT_EQ(1, Default(cvar));
  EXPECT_EQ(Masks{NOTIFY_RANGE}, listener->TakeMasks());
}

TEST(EnumSetRangeTest, TheSameListIsNoChangeOfRange) {
  const Enum cvar = MakeEnum(L"A,B", 1);
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->SetRange(L"A,B", 1, nullptr, 0, true));
  EXPECT_TRUE(listener->masks.empty());
}

TEST(EnumSetRangeTest, TheCaseOfASpellingIsAChange) {
  const Enum cvar = MakeEnum(L"A,B");
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->SetRange(L"A,b", 0, nullptr, 0, false));
  EXPECT_EQ(Masks{NOTIFY_RANGE}, listener->TakeMasks());
}

TEST(EnumSetRangeTest, EnablesEveryEntry) {
  const Enum cvar = MakeEnum(L"A,B", 1);
  EXPECT_EQ(S_OK, cvar->Disable(1));
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->SetRange(L"A,B", 0, nullptr, 0, false));
  EXPECT_EQ(2, cvar->GetNumberOfEnabledValueStates());
  EXPECT_EQ(Masks{NOTIFY_VALUE}, listener->TakeMasks());
}

TEST(EnumSetRangeTest, DefaultHelpAndHintsAreTold) {
  const Enum cvar = MakeEnum(L"A,B");
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->SetRange(L"A,B", 1, nullptr, 0, true));
  EXPECT_EQ(1, Default(cvar));
  EXPECT_EQ(0, Requested(cvar));
  EXPECT_EQ(Masks{NOTIFY_ATTRIBUTES}, listener->TakeMasks());
  EXPECT_EQ(S_OK, cvar->SetRange(L"A,B", 1, nullptr, 8, true));
  EXPECT_EQ(Masks{NOTIFY_ATTRIBUTES}, listener->TakeMasks());
  EXPECT_EQ(S_OK, cvar->SetRange(L"A,B", 1, nullptr, 8, true));
  EXPECT_TRUE(listener->TakeMasks().empty());
  EXPECT_EQ(S_OK, cvar->SetRange(L"A,B", 1, L"combo", 0, false));
  EXPECT_EQ(Masks{NOTIFY_GUIHINTS}, listener->TakeMasks());
}

TEST(EnumSetRangeTest, UnchangedAttributesAreTakenBackFromWhatIsPending) {
  const Enum cvar = MakeEnum(L"A,B");
  const auto listener = Listen(cvar);
  cvar->SuspendNotifications(1);
  EXPECT_EQ(S_OK, cvar->SetRange(L"A,B", 1, nullptr, 0, true));
  EXPECT_EQ(S_OK, cvar->SetRange(L"A,B", 1, nullptr, 0, true));
  cvar->SuspendNotifications(0);
  EXPECT_TRUE(listener->masks.empty());
}

TEST(EnumSetRangeTest, SetValueStringVectorsAppendsWithAState) {
  const Enum cvar = MakeEnum(L"A");
  const auto listener = Listen(cvar);
  cvar->SetValueStringVectors(L"B,,C", 0);
  cvar->SetValueStringVectors(nullptr, 1);
  EXPECT_EQ(L"A|A|A,B|B|B,C|C|C", All(cvar));
  EXPECT_EQ(L"A", Screens(cvar));
  EXPECT_TRUE(listener->masks.empty());
}

TEST(EnumChangeStringTest, ReplacesOneSpellingAndTells) {
  const Enum cvar = MakeEnum(L"A,B");
  const auto listener = Listen(cvar);
  EXPECT_TRUE(cvar->ChangeStringScreenValue(CComVariant(1), L"Screen 2"));
  EXPECT_TRUE(cvar->ChangeStringAutomationValue(CComVariant(L"b"), L"Auto 2"));
  EXPECT_TRUE(cvar->ChangeStringRemoteValue(CComVariant(1), L"remote 2"));
  EXPECT_EQ(L"A|A|A,Screen 2|Auto 2|remote 2", All(cvar));
  EXPECT_EQ((Masks{NOTIFY_RANGE, NOTIFY_RANGE, NOTIFY_RANGE}), listener->TakeMasks());
  EXPECT_EQ(1, cvar->GetIndexOfStringValue(L"AUTO 2"));
  EXPECT_EQ(-1, cvar->GetIndexOfStringValue(L"b"));
}

TEST(EnumChangeStringTest, CaseAloneIsAChangeAndTheSameTextIsNot) {
  const Enum cvar = MakeEnum(L"A");
  const auto listener = Listen(cvar);
  EXPECT_FALSE(cvar->ChangeStringScreenValue(CComVariant(0), L"A"));
  EXPECT_FALSE(cvar->ChangeStringRemoteValue(CComVariant(0), L"A"));
  EXPECT_FALSE(cvar->ChangeStringAutomationValue(CComVariant(0), L"A"));
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_TRUE(cvar->ChangeStringScreenValue(CComVariant(0), L"a"));
}

TEST(EnumChangeStringTest, NoSuchEntryIsNoChange) {
  const Enum cvar = MakeEnum(L"A");
  EXPECT_FALSE(cvar->ChangeStringScreenValue(CComVariant(1), L"X"));
  EXPECT_FALSE(cvar->ChangeStringScreenValue(CComVariant(-1), L"X"));
  EXPECT_FALSE(cvar->ChangeStringScreenValue(CComVariant(L"Q"), L"X"));
  EXPECT_FALSE(cvar->ChangeStringScreenValue(CComVariant(0.0), L"X"));
}

// Looking at the list

TEST(EnumLookTest, CountsAndBounds) {
  const Enum cvar = MakeEnum(L"A,B,C");
  EXPECT_EQ(S_OK, cvar->Disable(1));
  int number = kUntouched;
  EXPECT_EQ(S_OK, cvar->GetNumberOfValueStates(&number));
  EXPECT_EQ(3, number);
  EXPECT_EQ(2, cvar->GetNumberOfEnabledValueStates());
  EXPECT_EQ(S_OK, cvar->GetMin(&number));
  EXPECT_EQ(0, number);
  EXPECT_EQ(S_OK, cvar->GetMax(&number));
  EXPECT_EQ(2, number);
  EXPECT_TRUE(cvar->IsValidIndex(2));
  EXPECT_FALSE(cvar->IsValidIndex(3));
  EXPECT_FALSE(cvar->IsValidIndex(-1));
}

TEST(EnumLookTest, AnEmptyListHasMaxMinusOne) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  int number = kUntouched;
  EXPECT_EQ(S_OK, cvar->GetNumberOfValueStates(&number));
  EXPECT_EQ(0, number);
  EXPECT_EQ(S_OK, cvar->GetMin(&number));
  EXPECT_EQ(0, number);
  EXPECT_EQ(S_OK, cvar->GetMax(&number));
  EXPECT_EQ(-1, number);
}

TEST(EnumLookTest, SpellingsOfAnEntry) {
  const Enum cvar = MakeEnum(L"Off,DC 50|Dc50|d 50");
  EXPECT_EQ(L"DC 50", Text(cvar, &CCvarEnum::GetValueStringScreen, 1));
  EXPECT_EQ(L"Dc50", Text(cvar, &CCvarEnum::GetValueStringAutomation, 1));
  EXPECT_EQ(L"D 50", Text(cvar, &CCvarEnum::GetValueStringRemote, 1));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(1));
  EXPECT_EQ(L"DC 50", Text(cvar, &CCvarEnum::GetAdaptedValueStringScreen));
  EXPECT_EQ(L"D 50", Text(cvar, &CCvarEnum::GetAdaptedValueStringRemote));
  EXPECT_EQ(L"D 50", Text(cvar, &CCvarEnum::GetAdaptedValueStringRemoteNoUnit));
  EXPECT_EQ(L"Dc50", Text(cvar, &CCvarEnum::GetAdaptedValueStringAutomation));
}

TEST(EnumLookTest, MatchesThroughTheRemoteSpellingFirst) {
  const Enum cvar = MakeEnum(L"Off,DC 50|Dc50|DC50");
  int index = kUntouched;
  EXPECT_EQ(S_OK, cvar->GetIndexOfStringName(L"dc50", &index));
  EXPECT_EQ(1, index);
  EXPECT_EQ(S_OK, cvar->GetIndexOfStringName(L"DC 50", &index));
  EXPECT_EQ(1, index);
  EXPECT_EQ(S_OK, cvar->GetIndexOfStringName(L"dc", &index));
  EXPECT_EQ(-1, index);
  EXPECT_EQ(S_OK, cvar->GetIndexOfStringName(nullptr, &index));
  EXPECT_EQ(-1, index);
}

struct VariantCase {
  const char* name;
  CComVariant which;
  int index;
};

class EnumVariantTest : public testing::TestWithParam<VariantCase> {};

TEST_P(EnumVariantTest, SelectsAnEntry) {
  EXPECT_EQ(GetParam().index, MakeEnum(L"A,B,7")->GetIndexOfVariant(GetParam().which));
}

const VariantCase kVariantCases[] = {
    {"Short", CComVariant(short{2}), 2},
    {"Integer", CComVariant(1), 1},
    {"IntegerIsNotChecked", CComVariant(-5), -5},
    {"LongInteger", CComVariant(9LL), 9},
    {"LongIntegerThatDoesNotFit", CComVariant(5'000'000'000LL), -1},
    {"UnsignedShort", CComVariant(static_cast<unsigned short>(1)), 1},
    {"Unsigned", CComVariant(2u), 2},
    {"UnsignedLong", CComVariant(2ull), 2},
    {"UnsignedLongThatDoesNotFit", CComVariant(0x1'0000'0000ull), -1},
    {"Text", CComVariant(L"b"), 1},
    {"TextThatLooksLikeANumberIsAText", CComVariant(L"7"), 2},
    {"UnknownText", CComVariant(L"Q"), -1},
    {"RealNumber", CComVariant(1.0), -1},
    {"Boolean", CComVariant(true), -1},
    {"Byte", CComVariant(static_cast<unsigned char>(1)), -1},
    {"Empty", CComVariant(), -1},
};
INSTANTIATE_TEST_SUITE_P(Table, EnumVariantTest, testing::ValuesIn(kVariantCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(EnumLookTest, NextAndPreviousValue) {
  const Enum cvar = MakeEnum(L"A,B,C");
  EXPECT_EQ(1, cvar->NextValue(0));
  EXPECT_EQ(2, cvar->NextValue(2));
  EXPECT_EQ(1, cvar->PrevValue(2));
  EXPECT_EQ(0, cvar->PrevValue(0));
  EXPECT_TRUE(cvar->SetWrapModeOn(1));
  EXPECT_EQ(0, cvar->NextValue(2));
  EXPECT_EQ(2, cvar->PrevValue(0));
}

TEST(EnumLookTest, WrapModeIsTheWrappingFlag) {
  const Enum cvar = MakeEnum(L"A");
  const auto listener = Listen(cvar);
  int on = kUntouched;
  EXPECT_EQ(S_OK, cvar->IsWrapModeOn(&on));
  EXPECT_EQ(0, on);
  EXPECT_TRUE(cvar->SetWrapModeOn(1));
  EXPECT_FALSE(cvar->SetWrapModeOn(1));
  EXPECT_EQ(S_OK, cvar->IsWrapModeOn(&on));
  EXPECT_EQ(1, on);
  EXPECT_TRUE(cvar->HasFlag(CVARFLAG_WRAPPING));
  EXPECT_EQ(Masks{NOTIFY_FLAGS}, listener->TakeMasks());
}

// Enabling

TEST(EnumEnableTest, DisablingTheAdaptedEntryMovesTheValueAndKeepsTheRequest) {
  const Enum cvar = MakeEnum(L"A,B,C,D", 2);
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->Disable(3));
  EXPECT_EQ(Masks{NOTIFY_RANGE}, listener->TakeMasks());
  EXPECT_EQ(S_OK, cvar->Disable(2));
  EXPECT_EQ(Masks{kRangeAndValue}, listener->TakeMasks());
  EXPECT_EQ(1, Adapted(cvar));
  EXPECT_EQ(2, Requested(cvar));
  EXPECT_EQ(S_OK, cvar->Enable(2, 1));
  EXPECT_EQ(2, Adapted(cvar));
}

TEST(EnumEnableTest, WithWrappingTheSearchGoesOnAtTheFirst) {
  const Enum cvar = MakeEnum(L"A,B,C,D", 2, CVARFLAG_WRAPPING);
  EXPECT_EQ(S_OK, cvar->Disable(3));
  EXPECT_EQ(S_OK, cvar->Disable(2));
  EXPECT_EQ(0, Adapted(cvar));
}

TEST(EnumEnableTest, AllDisabledIsNoEntry) {
  const Enum cvar = MakeEnum(L"A,B");
  EXPECT_EQ(S_OK, cvar->Disable(0));
  EXPECT_EQ(S_OK, cvar->Disable(1));
  EXPECT_EQ(-1, Adapted(cvar));
  EXPECT_EQ(L"", Text(cvar, &CCvarEnum::GetAdaptedValueStringScreen));
  EXPECT_EQ(L"", Text(cvar, &CCvarEnum::GetAdaptedValueStringRemote));
  EXPECT_EQ(L"", Text(cvar, &CCvarEnum::GetAdaptedValueStringAutomation));
  EXPECT_EQ(L"", Screens(cvar));
}

TEST(EnumEnableTest, AnUnchangedStateIsNoChange) {
  const Enum cvar = MakeEnum(L"A,B");
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_FALSE, cvar->Enable(1, 1));
  EXPECT_EQ(S_FALSE, cvar->Enable(1, -5));
  EXPECT_EQ(S_OK, cvar->Disable(1));
  EXPECT_EQ(S_FALSE, cvar->Disable(1));
  EXPECT_EQ(Masks{NOTIFY_RANGE}, listener->TakeMasks());
}

TEST(EnumEnableTest, EveryFormChangesTheState) {
  const Enum cvar = MakeEnum(L"A,B");
  int enabled = kUntouched;
  EXPECT_EQ(S_OK, cvar->Disable(CComVariant(L"b")));
  EXPECT_EQ(S_OK, cvar->IsEnabled(1, &enabled));
  EXPECT_EQ(0, enabled);
  EXPECT_EQ(S_OK, cvar->Enable(CComVariant(1)));
  EXPECT_EQ(S_OK, cvar->IsEnabled(CComVariant(L"B"), &enabled));
  EXPECT_EQ(1, enabled);
  EXPECT_EQ(S_OK, cvar->Enable(CComVariant(L"B"), 0));
  EXPECT_EQ(S_OK, cvar->IsEnabled(CComVariant(1), &enabled));
  EXPECT_EQ(0, enabled);
}

TEST(EnumEnableTest, NoSuchEntryIsRefused) {
  const Enum cvar = MakeEnum(L"A");
  int enabled = kUntouched;
  for (const int index : {-1, 1}) {
    EXPECT_EQ(E_INVALIDARG, cvar->Enable(index, 1));
    EXPECT_EQ(E_INVALIDARG, cvar->Disable(index));
    EXPECT_EQ(E_INVALIDARG, cvar->IsEnabled(index, &enabled));
  }
  for (const CComVariant& which : {CComVariant(L"Q"), CComVariant(0.0)}) {
    EXPECT_EQ(E_INVALIDARG, cvar->Enable(which));
    EXPECT_EQ(E_INVALIDARG, cvar->Enable(which, 0));
    EXPECT_EQ(E_INVALIDARG, cvar->Disable(which));
    EXPECT_EQ(E_INVALIDARG, cvar->IsEnabled(which, &enabled));
  }
  EXPECT_EQ(kUntouched, enabled);
}

// What belongs to an entry

TEST(EnumEntryDataTest, TheVariantIsCopiedBothWays) {
  const Enum cvar = MakeEnum(L"A");
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->SetVariant(0, CComVariant(L"page")));
  EXPECT_EQ(S_FALSE, cvar->SetVariant(0, CComVariant(L"page")));
  EXPECT_EQ(Masks{NOTIFY_RANGE}, listener->TakeMasks());
  CComVariant value(5);
  EXPECT_EQ(S_OK, cvar->GetVariant(0, &value));
  EXPECT_STREQ(L"page", value.bstrVal);
  EXPECT_EQ(E_INVALIDARG, cvar->SetVariant(1, CComVariant(1)));
  EXPECT_EQ(E_INVALIDARG, cvar->GetVariant(1, &value));
  EXPECT_STREQ(L"page", value.bstrVal);
}

TEST(EnumEntryDataTest, AnEntryWithoutObjectGivesNull) {
  const Enum cvar = MakeEnum(L"A");
  CComPtr<IUnknown> object;
  EXPECT_EQ(S_OK, cvar->GetEnumIUnknown(0, &object));
  EXPECT_EQ(nullptr, object.p);
  EXPECT_EQ(E_INVALIDARG, cvar->GetEnumIUnknown(1, &object));
}

TEST(EnumEntryDataTest, TheIconPair) {
  const Enum cvar = MakeEnum(L"A");
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->SetEnumValueIconInfo(0, 3, reinterpret_cast<HINSTANCE>(4)));
  EXPECT_EQ(S_FALSE, cvar->SetEnumValueIconInfo(0, 3, reinterpret_cast<HINSTANCE>(4)));
  EXPECT_EQ(S_OK, cvar->SetEnumValueIconInfo(0, 3, reinterpret_cast<HINSTANCE>(5)));
  EXPECT_EQ((Masks{NOTIFY_RANGE, NOTIFY_RANGE}), listener->TakeMasks());
  unsigned long id = 0;
  unsigned long module = 0;
  EXPECT_EQ(S_OK, cvar->GetEnumValueIconInfo(0, &id, &module));
  EXPECT_EQ(3u, id);
  EXPECT_EQ(5u, module);
  EXPECT_EQ(E_INVALIDARG, cvar->SetEnumValueIconInfo(1, 3, nullptr));
  EXPECT_EQ(E_INVALIDARG, cvar->GetEnumValueIconInfo(1, &id, &module));
}

TEST(EnumEntryDataTest, EveryKindOfExtraData) {
  const Enum cvar = MakeEnum(L"A");
  const auto listener = Listen(cvar);
  CComVariant value;
  EXPECT_EQ(S_OK, cvar->SetExtraEnumData(0, EXTRAENUMDATA_ICONID, CComVariant(L"12")));
  EXPECT_EQ(S_OK, cvar->GetExtraEnumData(0, EXTRAENUMDATA_ICONID, &value));
  EXPECT_EQ(VT_I4, value.vt);
  EXPECT_EQ(12, value.lVal);

  const CComPtr<IUnknown> object = PlainObject::Create();
  EXPECT_EQ(S_OK, cvar->SetExtraEnumData(0, EXTRAENUMDATA_OBJECT, CComVariant(object.p)));
  EXPECT_EQ(S_OK, cvar->GetExtraEnumData(0, EXTRAENUMDATA_OBJECT, &value));
  EXPECT_EQ(VT_UNKNOWN, value.vt);
  EXPECT_EQ(object.p, value.punkVal);

  for (const EXTRAENUMDATA kind : {EXTRAENUMDATA_VARIANT, EXTRAENUMDATA_EXTRA1,
                                   EXTRAENUMDATA_CHILDPAGE, EXTRAENUMDATA_EXTRA3}) {
    const CComVariant item(static_cast<int>(kind) * 10);
    EXPECT_EQ(S_OK, cvar->SetExtraEnumData(0, kind, item));
    EXPECT_EQ(S_OK, cvar->GetExtraEnumData(0, kind, &value));
    EXPECT_EQ(item.lVal, value.lVal);
  }
  EXPECT_EQ(Masks(6, NOTIFY_RANGE), listener->TakeMasks());
}

TEST(EnumEntryDataTest, TheSameExtraDataIsNoChange) {
  const Enum cvar = MakeEnum(L"A");
  const CComPtr<IUnknown> object = PlainObject::Create();
  const std::pair<EXTRAENUMDATA, CComVariant> rows[] = {
      {EXTRAENUMDATA_ICONID, 5},      {EXTRAENUMDATA_OBJECT, CComVariant(object.p)},
      {EXTRAENUMDATA_VARIANT, 1},     {EXTRAENUMDATA_EXTRA1, L"x"},
      {EXTRAENUMDATA_CHILDPAGE, 2.5}, {EXTRAENUMDATA_EXTRA3, true},
  };
  for (const auto& [kind, item] : rows) EXPECT_EQ(S_OK, cvar->SetExtraEnumData(0, kind, item));
  const auto listener = Listen(cvar);
  for (const auto& [kind, item] : rows) EXPECT_EQ(S_FALSE, cvar->SetExtraEnumData(0, kind, item));
  EXPECT_TRUE(listener->masks.empty());
}

TEST(EnumEntryDataTest, AnEmptyVariantReadsAsTheFirstExtraItem) {
  const Enum cvar = MakeEnum(L"A");
  CComVariant value;
  EXPECT_EQ(S_OK, cvar->SetExtraEnumData(0, EXTRAENUMDATA_EXTRA1, CComVariant(4)));
  EXPECT_EQ(S_OK, cvar->GetExtraEnumData(0, EXTRAENUMDATA_VARIANT, &value));
  EXPECT_EQ(4, value.lVal);
  EXPECT_EQ(S_OK, cvar->GetVariant(0, &value));
  EXPECT_EQ(VT_EMPTY, value.vt);
  EXPECT_EQ(S_OK, cvar->SetExtraEnumData(0, EXTRAENUMDATA_VARIANT, CComVariant(3)));
  EXPECT_EQ(S_OK, cvar->GetExtraEnumData(0, EXTRAENUMDATA_VARIANT, &value));
  EXPECT_EQ(3, value.lVal);
}

TEST(EnumEntryDataTest, OtherKindsAndOtherEntriesAreRefused) {
  const Enum cvar = MakeEnum(L"A");
  CComVariant value(kUntouched);
  for (const int kind : {0, 7, -1}) {
    EXPECT_EQ(E_INVALIDARG, cvar->SetExtraEnumData(0, EXTRAENUMDATA(kind), CComVariant(1)));
    EXPECT_EQ(E_INVALIDARG, cvar->GetExtraEnumData(0, EXTRAENUMDATA(kind), &value));
  }
  for (int kind = 1; kind <= 6; ++kind) {
    EXPECT_EQ(E_INVALIDARG, cvar->SetExtraEnumData(1, EXTRAENUMDATA(kind), CComVariant(1)));
    EXPECT_EQ(E_INVALIDARG, cvar->GetExtraEnumData(-1, EXTRAENUMDATA(kind), &value));
  }
  EXPECT_EQ(kUntouched, value.lVal);
}

TEST(EnumEntryDataTest, WhatDoesNotConvertIsRefusedWithItsCode) {
  const Enum cvar = MakeEnum(L"A");
  EXPECT_EQ(DISP_E_TYPEMISMATCH,
            cvar->SetExtraEnumData(0, EXTRAENUMDATA_ICONID, CComVariant(L"icon")));
  EXPECT_EQ(DISP_E_TYPEMISMATCH, cvar->SetExtraEnumData(0, EXTRAENUMDATA_OBJECT, CComVariant(1)));
}

// Requests

TEST(EnumRequestTest, TellsRequestAndValueAndNothingTheSecondTime) {
  const Enum cvar = MakeEnum(L"A,B,C");
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(2));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(2));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(9));
  EXPECT_EQ((Masks{kRequestedAndValue, NOTIFY_REQUESTED}), listener->TakeMasks());
  EXPECT_EQ(9, Requested(cvar));
  EXPECT_EQ(2, Adapted(cvar));
  int adapted = 0;
  EXPECT_EQ(S_OK, cvar->get_IsValueAdapted(&adapted));
  EXPECT_EQ(1, adapted);
}

TEST(EnumRequestTest, BelowTheListIsNoEntry) {
  const Enum cvar = MakeEnum(L"A,B");
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(-7));
  EXPECT_EQ(-1, Adapted(cvar));
}

TEST(EnumRequestTest, ReadOnlyRefusesUnlessForced) {
  const Enum cvar = MakeEnum(L"A,B", 0, CVARFLAG_READONLY);
  const auto listener = Listen(cvar);
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetRequestedValue(1));
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetRequestedValue(1, false));
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetRequestedValueFromString(L"B"));
  EXPECT_EQ(E_ACCESSDENIED, cvar->put_Value(CComVariant(L"B")));
  EXPECT_EQ(E_ACCESSDENIED, cvar->put_Value(CComVariant(1)));
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetRequestedValueNorm(1.0));
  EXPECT_EQ(E_ACCESSDENIED, cvar->Increment(1));
  EXPECT_EQ(E_ACCESSDENIED, cvar->SetToDefault());
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(1, true));
  EXPECT_EQ(1, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(L"A", true));
  EXPECT_EQ(0, Adapted(cvar));
}

TEST(EnumRequestTest, WithTheKeepFlagADisabledEntryLeavesTheValue) {
  const Enum cvar = MakeEnum(L"A,B,C", 0, CVARFLAG_D);
  EXPECT_EQ(S_OK, cvar->Disable(2));
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(2));
  EXPECT_EQ(2, Requested(cvar));
  EXPECT_EQ(0, Adapted(cvar));
  EXPECT_EQ(Masks{NOTIFY_REQUESTED}, listener->TakeMasks());
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(99));
  EXPECT_EQ(0, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(1));
  EXPECT_EQ(1, Adapted(cvar));
}

TEST(EnumRequestTest, TextsMatchAnySpelling) {
  const Enum cvar = MakeEnum(L"Off,DC 50|Dc50|D50");
  for (const wchar_t* text : {L"dc 50", L"dC50", L"d50"}) {
    EXPECT_EQ(S_OK, cvar->SetRequestedValue(0));
    EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(text));
    EXPECT_EQ(1, Adapted(cvar));
  }
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromStringScreen(L"off"));
  EXPECT_EQ(0, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromStringRemote(L"D50"));
  EXPECT_EQ(1, Adapted(cvar));
}

TEST(EnumRequestTest, AnUnknownTextIsRefused) {
  const Enum cvar = MakeEnum(L"A");
  EXPECT_EQ(E_INVALIDARG, cvar->SetRequestedValueFromString(L"Q"));
  EXPECT_EQ(E_INVALIDARG, cvar->SetRequestedValueFromString(nullptr));
  EXPECT_EQ(E_INVALIDARG, cvar->SetRequestedValueFromString(L"undef"));
  EXPECT_EQ(0, Requested(cvar));
}

TEST(EnumPendingTextTest, TakesEffectWhenTheEntryComes) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(L"AC"));
  EXPECT_EQ(S_OK, cvar->AddValue(L"DC", 0, -1));
  EXPECT_EQ(-1, Adapted(cvar));
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->AddValue(L"ac", 0, -1));
  EXPECT_EQ(1, Adapted(cvar));
  EXPECT_EQ(1, Requested(cvar));
  EXPECT_EQ(Masks{kRangeAndValue}, listener->TakeMasks());
}

TEST(EnumPendingTextTest, IsTakenOnce) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(L"AC"));
  EXPECT_EQ(S_OK, cvar->AddValue(L"AC,DC", 0, -1));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(1));
  EXPECT_EQ(S_OK, cvar->AddValue(L"GND", 0, -1));
  EXPECT_EQ(1, Adapted(cvar));
}

TEST(EnumPendingTextTest, UndefIsNotKept) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(L"uNdEf"));
  EXPECT_EQ(S_OK, cvar->AddValue(L"undef", 0, -1));
  EXPECT_EQ(-4, Requested(cvar));
  EXPECT_EQ(-1, Adapted(cvar));
}

TEST(EnumPendingTextTest, ARequestedIndexForgetsIt) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  EXPECT_EQ(S_OK, cvar->SetRequestedValueFromString(L"AC"));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(0));
  EXPECT_EQ(S_OK, cvar->AddValue(L"DC,AC", 0, -1));
  EXPECT_EQ(0, Adapted(cvar));
}

TEST(EnumValueTest, ReadsAsTheAutomationText) {
  const Enum cvar = MakeEnum(L"Off,DC 50|Dc50|D50", 1);
  CComVariant value(5);
  EXPECT_EQ(S_OK, cvar->get_Value(&value));
  ASSERT_EQ(VT_BSTR, value.vt);
  EXPECT_STREQ(L"Dc50", value.bstrVal);
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(-1));
  EXPECT_EQ(S_OK, cvar->get_Value(&value));
  ASSERT_EQ(VT_BSTR, value.vt);
  EXPECT_STREQ(L"", value.bstrVal);
}

TEST(EnumValueTest, IsWrittenAsTextOrIndex) {
  const Enum cvar = MakeEnum(L"A,B,7");
  EXPECT_EQ(S_OK, cvar->put_Value(CComVariant(L"b")));
  EXPECT_EQ(1, Requested(cvar));
  EXPECT_EQ(S_OK, cvar->put_Value(CComVariant(L"7")));
  EXPECT_EQ(2, Requested(cvar));
  EXPECT_EQ(S_OK, cvar->put_Value(CComVariant(0.6)));
  EXPECT_EQ(1, Requested(cvar));
  EXPECT_EQ(S_OK, cvar->put_Value(CComVariant(static_cast<unsigned char>(2))));
  EXPECT_EQ(2, Requested(cvar));
  EXPECT_EQ(E_INVALIDARG, cvar->put_Value(CComVariant(L"Q")));
  EXPECT_EQ(DISP_E_OVERFLOW, cvar->put_Value(CComVariant(5e10)));
  EXPECT_EQ(2, Requested(cvar));
}

TEST(EnumValueTest, ATextByReferenceIsAText) {
  const Enum cvar = MakeEnum(L"A,B");
  CComBSTR text(L"B");
  VARIANT reference{};
  reference.vt = VT_BYREF | VT_BSTR;
  reference.pbstrVal = &text.m_str;
  EXPECT_EQ(S_OK, cvar->put_Value(reference));
  EXPECT_EQ(1, Requested(cvar));
}

TEST(EnumValueTest, TheRequestIsAnIndex) {
  const Enum cvar = MakeEnum(L"A");
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(9));
  CComVariant value;
  EXPECT_EQ(S_OK, cvar->GetRequestedVariantValue(&value));
  EXPECT_EQ(VT_I4, value.vt);
  EXPECT_EQ(9, value.lVal);
}

TEST(EnumValueTest, TheDefaultIsRequestedAgain) {
  const Enum cvar = MakeEnum(L"A,B,C", 1);
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_FALSE, cvar->SetDefaultValue(1));
  EXPECT_EQ(S_OK, cvar->SetDefaultValue(2));
  EXPECT_EQ(Masks{NOTIFY_ATTRIBUTES}, listener->TakeMasks());
  int isDefault = kUntouched;
  EXPECT_EQ(S_OK, cvar->IsDefault(&isDefault));
  EXPECT_EQ(0, isDefault);
  EXPECT_EQ(S_OK, cvar->SetToDefault());
  EXPECT_EQ(2, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->IsDefault(&isDefault));
  EXPECT_EQ(1, isDefault);
}

TEST(EnumValueTest, HasNoEndsToGoTo) {
  const Enum cvar = MakeEnum(L"A");
  EXPECT_EQ(E_NOTIMPL, cvar->SetToMin());
  EXPECT_EQ(E_NOTIMPL, cvar->SetToMax());
}

TEST(EnumNormTest, IsTheIndexPartOfTheLast) {
  const Enum cvar = MakeEnum(L"A,B,C,D,E", 1);
  double position = 0;
  EXPECT_EQ(S_OK, cvar->GetAdaptedValueNorm(&position));
  EXPECT_EQ(0.25, position);
}

TEST(EnumNormTest, AnEmptyListDividesByOne) {
  const Enum cvar = MakeEnum(L"");
  double position = 0;
  EXPECT_EQ(S_OK, cvar->GetAdaptedValueNorm(&position));
  EXPECT_EQ(-1.0, position);
}

TEST(EnumNormTest, ASingleEntryGivesNotANumberWhichIsMeant) {
  const Enum cvar = MakeEnum(L"A");
  double position = 0;
  EXPECT_EQ(S_OK, cvar->GetAdaptedValueNorm(&position));
  EXPECT_TRUE(std::isnan(position));
}

struct NormCase {
  const char* name;
  double position;
  HRESULT result;
  int requested;
};

class EnumSetNormTest : public testing::TestWithParam<NormCase> {};

TEST_P(EnumSetNormTest, RequestsAnIndex) {
  const Enum cvar = MakeEnum(L"A,B,C,D,E", 3);
  EXPECT_EQ(GetParam().result, cvar->SetRequestedValueNorm(GetParam().position));
  EXPECT_EQ(GetParam().requested, Requested(cvar));
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr NormCase kNormCases[] = {
    {"First", 0.0, S_OK, 0},
    {"Last", 1.0, S_OK, 4},
    {"TieGoesUp", 0.125, S_OK, 1},
    {"BelowTheTie", 0.12, S_OK, 0},
    {"Above", 2.0, S_OK, 8},
    {"Below", -1.0, S_OK, -4},
    {"FarAboveIsTheLargestInteger", 1e300, S_OK, std::numeric_limits<int>::max()},
    {"FarBelowIsTheSmallestInteger", -1e300, S_OK, std::numeric_limits<int>::min()},
    {"Infinity", kInfinity, E_INVALIDARG, 3},
    {"NotANumber", std::numeric_limits<double>::quiet_NaN(), E_INVALIDARG, 3},
};
INSTANTIATE_TEST_SUITE_P(Table, EnumSetNormTest, testing::ValuesIn(kNormCases),
                         [](const auto& row) { return std::string(row.param.name); });

// Stepping

TEST(EnumIncrementTest, TheLastStaysWithoutWrapping) {
  const Enum cvar = MakeEnum(L"A,B,C", 2);
  EXPECT_EQ(S_OK, cvar->Increment(1));
  EXPECT_EQ(2, Adapted(cvar));
  EXPECT_TRUE(cvar->SetWrapModeOn(1));
  EXPECT_EQ(S_OK, cvar->Increment(1));
  EXPECT_EQ(0, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->Increment(-1));
  EXPECT_EQ(2, Adapted(cvar));
}

TEST(EnumIncrementTest, DisabledEntriesDoNotCount) {
  const Enum cvar = MakeEnum(L"A,B,C,D");
  EXPECT_EQ(S_OK, cvar->Disable(1));
  EXPECT_EQ(S_OK, cvar->Increment(2));
  EXPECT_EQ(3, Requested(cvar));
}

TEST(EnumIncrementTest, StartsFromTheAdaptedEntry) {
  const Enum cvar = MakeEnum(L"A,B,C");
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(9));
  EXPECT_EQ(S_OK, cvar->Increment(-1));
  EXPECT_EQ(1, Requested(cvar));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(9));
  EXPECT_EQ(S_OK, cvar->Increment(0));
  EXPECT_EQ(2, Requested(cvar));
}

TEST(EnumIncrementTest, TheReverseFlagTurnsTheDirection) {
  const Enum cvar = MakeEnum(L"A,B,C", 1, CVARFLAG_REVERSEINCREMENT);
  EXPECT_EQ(S_OK, cvar->Increment(1));
  EXPECT_EQ(0, Adapted(cvar));
  EXPECT_EQ(S_OK, cvar->Increment(std::numeric_limits<int>::min()));
  EXPECT_EQ(2, Adapted(cvar));
}

TEST(EnumIncrementTest, AnEmptyListKeepsTheRequest) {
  const Enum cvar = MakeEnum(L"", 3);
  const auto listener = Listen(cvar);
  EXPECT_EQ(S_OK, cvar->Increment(1));
  EXPECT_EQ(3, Requested(cvar));
  EXPECT_TRUE(listener->masks.empty());
}

// Texts about the list

TEST(EnumRangeTextTest, ListsTheEnabledEntries) {
  const Enum cvar = MakeEnum(L"Off,DC 50|Dc50|D50,G N D");
  EXPECT_EQ(S_OK, cvar->Disable(0));
  EXPECT_EQ(L"DC 50|Dc50|D50,G N D|GND|GND", Text(cvar, &CCvarEnum::get_Range));
  EXPECT_EQ(L"DC 50|Dc50|D50,G N D|GND|GND", Text(cvar, &CCvarEnum::GetFullRangeString, 0));
  EXPECT_EQ(L"Off|Off|OFF,DC 50|Dc50|D50,G N D|GND|GND",
            Text(cvar, &CCvarEnum::GetFullRangeString, 1));
  EXPECT_EQ(L"DC 50,G N D", Text(cvar, &CCvarEnum::get_RangeStringScreen));
  EXPECT_EQ(L"Dc50,GND", Text(cvar, &CCvarEnum::get_RangeStringAutomation));
  EXPECT_EQ(L"D50,GND", Text(cvar, &CCvarEnum::get_RangeStringRemote));
  EXPECT_EQ(L"DC 50,G N D", Text(cvar, &CCvarEnum::GetRangeStringScreen));
  EXPECT_EQ(L"D50,GND", Text(cvar, &CCvarEnum::GetRangeStringRemote));
}

TEST(EnumSignatureTest, ShowsTheTripleAndEveryEntry) {
  const Enum cvar = MakeEnum(L"A,B b,C", 1, CVARFLAG_WRAPPING);
  EXPECT_EQ(S_OK, cvar->Disable(2));
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(2));
  EXPECT_EQ(
      L"Type,Enum,Request,C|C|C,Adapt,A|A|A,Default,B b|Bb|BB,Flags,W,Range,"
      L"A|A|A,B b|Bb|BB,(C|C|C)",
      Text(cvar, &CCvarEnum::get_Signature));
}

TEST(EnumSignatureTest, AnIndexWithoutEntryIsEmpty) {
  EXPECT_EQ(L"Type,Enum,Request,,Adapt,,Default,,Flags,-,Range,",
            Text(CvarObject<CCvarEnum>::Create(), &CCvarEnum::get_Signature));
}

TEST(EnumPropertiesTest, AddsItsOwnToTheCommonOnes) {
  const Enum cvar = MakeEnum(L"A,B b", 1);
  EXPECT_EQ(1, PropertyOf(*cvar, L"RequestedValue").lVal);
  EXPECT_EQ(1, PropertyOf(*cvar, L"AdaptedValue").lVal);
  EXPECT_EQ(1, PropertyOf(*cvar, L"Default").lVal);
  EXPECT_STREQ(L"B b", PropertyOf(*cvar, L"AdaptedValueStringScreen").bstrVal);
  EXPECT_STREQ(L"A|A|A,B b|Bb|BB", PropertyOf(*cvar, L"Range").bstrVal);
  EXPECT_STREQ(L"Enum", PropertyOf(*cvar, L"Type").bstrVal);
}

// Pointers

TEST(EnumNullPointerTest, IsRefusedBeforeAnythingElse) {
  const Enum cvar = MakeEnum(L"A");
  constexpr int kNoEntry = 5;
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValue(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetDefaultValue(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetRequestedValue(static_cast<int*>(nullptr)));
  EXPECT_EQ(E_POINTER, cvar->GetNumberOfValueStates(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetMin(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetMax(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetValueStringScreen(kNoEntry, nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetValueStringAutomation(kNoEntry, nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetValueStringRemote(kNoEntry, nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetIndexOfStringName(L"A", nullptr));
  EXPECT_EQ(E_POINTER, cvar->IsEnabled(kNoEntry, nullptr));
  EXPECT_EQ(E_POINTER, cvar->IsEnabled(CComVariant(L"Q"), nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetVariant(kNoEntry, nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetEnumIUnknown(kNoEntry, nullptr));
  unsigned long number = 0;
  EXPECT_EQ(E_POINTER, cvar->GetEnumValueIconInfo(kNoEntry, nullptr, &number));
  EXPECT_EQ(E_POINTER, cvar->GetEnumValueIconInfo(kNoEntry, &number, nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetExtraEnumData(kNoEntry, EXTRAENUMDATA_VARIANT, nullptr));
  EXPECT_EQ(E_POINTER, cvar->IsWrapModeOn(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetRangeStringScreen(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetRangeStringRemote(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetFullRangeString(0, nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_Range(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_RangeStringScreen(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_RangeStringRemote(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_RangeStringAutomation(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_Signature(nullptr));
  EXPECT_EQ(E_POINTER, cvar->get_Value(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValueNorm(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValueStringScreen(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetAdaptedValueStringRemote(nullptr));
  EXPECT_EQ(E_POINTER, cvar->GetRequestedVariantValue(nullptr));
}

TEST(EnumEntryTextTest, NoSuchEntryLeavesTheOutputAlone) {
  const Enum cvar = MakeEnum(L"A");
  wchar_t mark[] = L"mark";
  for (const int index : {-1, 1}) {
    BSTR text = mark;
    EXPECT_EQ(E_INVALIDARG, cvar->GetValueStringScreen(index, &text));
    EXPECT_EQ(E_INVALIDARG, cvar->GetValueStringAutomation(index, &text));
    EXPECT_EQ(E_INVALIDARG, cvar->GetValueStringRemote(index, &text));
    EXPECT_EQ(mark, text);
  }
}

// Scripts

CComVariant Invoke(const Enum& cvar, const wchar_t* name, WORD kind,
                   std::vector<CComVariant> lastFirst, HRESULT expected = S_OK) {
  std::wstring copy = name;
  wchar_t* names[] = {copy.data()};
  DISPID id = DISPID_UNKNOWN;
  EXPECT_EQ(S_OK, cvar->GetIDsOfNames(IID_NULL, names, 1, LOCALE_ENGLISH_US, &id));
  std::vector<VARIANT> arguments(lastFirst.begin(), lastFirst.end());
  DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
  CComVariant result;
  EXPECT_EQ(expected, cvar->Invoke(id, IID_NULL, LOCALE_ENGLISH_US, kind, &parameters, &result,
                                   nullptr, nullptr));
  return result;
}

TEST(EnumScriptTest, MembersAreCalledByName) {
  const Enum cvar = MakeEnum(L"Off,DC 50|Dc50|D50", 1);
  EXPECT_STREQ(L"Dc50", Invoke(cvar, L"value", DISPATCH_PROPERTYGET, {}).bstrVal);
  EXPECT_EQ(1, Invoke(cvar, L"Index", DISPATCH_PROPERTYGET, {}).lVal);
  EXPECT_EQ(1, Invoke(cvar, L"Default", DISPATCH_PROPERTYGET, {}).lVal);
  EXPECT_EQ(2, Invoke(cvar, L"Count", DISPATCH_PROPERTYGET, {}).lVal);
  EXPECT_EQ(0, Invoke(cvar, L"Min", DISPATCH_PROPERTYGET, {}).lVal);
  EXPECT_EQ(1, Invoke(cvar, L"Max", DISPATCH_PROPERTYGET, {}).lVal);
  EXPECT_EQ(0, Invoke(cvar, L"IsWrapModeOn", DISPATCH_PROPERTYGET, {}).lVal);
  EXPECT_STREQ(L"Off", Invoke(cvar, L"ValueStringScreen", DISPATCH_METHOD, {0}).bstrVal);
  EXPECT_STREQ(L"Dc50", Invoke(cvar, L"ValueStringAutomation", DISPATCH_METHOD, {1}).bstrVal);
  EXPECT_STREQ(L"D50", Invoke(cvar, L"ValueStringRemote", DISPATCH_METHOD, {1}).bstrVal);
  EXPECT_EQ(1, Invoke(cvar, L"IndexOf", DISPATCH_METHOD, {L"d50"}).lVal);
  EXPECT_STREQ(L"Off|Off|OFF,DC 50|Dc50|D50",
               Invoke(cvar, L"FullRange", DISPATCH_METHOD, {1}).bstrVal);
  Invoke(cvar, L"Disable", DISPATCH_METHOD, {L"D50"});
  EXPECT_EQ(0, Invoke(cvar, L"IsEnabled", DISPATCH_METHOD, {1}).lVal);
  EXPECT_EQ(0, Adapted(cvar));
  Invoke(cvar, L"Enable", DISPATCH_METHOD, {1});
  EXPECT_EQ(1, Adapted(cvar));
  Invoke(cvar, L"Index", DISPATCH_PROPERTYPUT, {0});
  EXPECT_EQ(0, Adapted(cvar));
  Invoke(cvar, L"SetVariant", DISPATCH_METHOD, {L"x", 0});
  EXPECT_STREQ(L"x", Invoke(cvar, L"Variant", DISPATCH_METHOD, {0}).bstrVal);
  Invoke(cvar, L"SetExtraData", DISPATCH_METHOD, {L"page", 5, 0});
  EXPECT_STREQ(L"page", Invoke(cvar, L"ExtraData", DISPATCH_METHOD, {5, 0}).bstrVal);
  EXPECT_EQ(nullptr, Invoke(cvar, L"Object", DISPATCH_METHOD, {0}).punkVal);
}

// Replicas

TEST(EnumReplicaTest, FollowsTheIndexOfTheRequest) {
  const Enum source = MakeEnum(L"A,B,C");
  const Enum replica = MakeEnum(L"X,Y,Z");
  EXPECT_EQ(S_OK, source->SetRequestedValue(2));
  EXPECT_EQ(S_OK, replica->OnCvarNotify(source, kRequestedAndValue));
  EXPECT_EQ(2, Adapted(replica));
}

TEST(EnumReplicaTest, OfTheValueAloneFollowsTheText) {
  const Enum source = MakeEnum(L"A,B,C");
  const Enum replica = MakeEnum(L"C,B,A");
  replica->SetReplicationFlags(REPLICATE_VALUE);
  EXPECT_EQ(S_OK, source->SetRequestedValue(2));
  EXPECT_EQ(S_OK, replica->OnCvarNotify(source, NOTIFY_VALUE));
  EXPECT_EQ(0, Adapted(replica));
}

// Listeners

TEST(EnumListenerTest, MayChangeTheListFromInsideItsCall) {
  const Enum cvar = MakeEnum(L"A,B,C");
  const auto listener = Listen(cvar);
  listener->onNotify = [&](IVorCvar*, NOTIFYTYPE what) {
    if ((what & NOTIFY_REQUESTED) != 0) {
      EXPECT_EQ(1, cvar->DeleteValue(L"A"));
    }
  };
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(2));
  EXPECT_EQ(L"B,C", Screens(cvar));
  EXPECT_EQ(1, Adapted(cvar));
  EXPECT_EQ((Masks{kRequestedAndValue, kRangeAndValue}), listener->TakeMasks());
}

}  // namespace
