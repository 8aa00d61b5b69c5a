#include "EnumCvarTest.h"

namespace {

using namespace cvars::test;

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

}  // namespace
