// Names, flags, help, hints, icon and parent: what a cvar is, whatever its value.

#include <gtest/gtest.h>

#include <type_traits>

#include "CCvarBag.h"
#include "LiveCvars.h"
#include "ReadText.h"
#include "RecordingListener.h"
#include "SampleCvars.h"
#include "platform/Modules.h"

namespace {

using cvars::test::PlainCvar;
using cvars::test::PlainObject;
using cvars::test::RecordingListener;
using cvars::test::TextOf;

using Plain = CComPtr<CvarObject<PlainCvar>>;
using Masks = std::vector<NOTIFYTYPE>;

HINSTANCE ThisModule() {
  static const int s_here = 0;
  return cvars::platform::ModuleOf(&s_here);
}

unsigned long NumberOf(HINSTANCE module) {
  return static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(module));
}

class CvarIdentity : public cvars::test::CvarTest {
 protected:
  CvarIdentity() { EXPECT_EQ(cvar->AttachCvarEventSink(listener), S_OK); }
  void TearDown() override {
    cvar = nullptr;
    EXPECT_EQ(listener->References(), 1u) << "the listener is still held";
    CvarTest::TearDown();
  }

  std::wstring Name() { return TextOf(*cvar, &IVorCvar::get_Name); }
  std::wstring RemoteName() { return TextOf(*cvar, &IVorCvar::get_NameRemote); }
  std::wstring Help() { return TextOf(*cvar, &IVorCvar::get_HelpString); }
  std::wstring Hints() { return TextOf(*cvar, &IVorCvar::GetGuiHints); }

  Plain cvar = CvarObject<PlainCvar>::Create();
  CComPtr<RecordingListener> listener = RecordingListener::Create();
};

// Names -------------------------------------------------------------------------------------------

TEST_F(CvarIdentity, AFreshCvarIsUnnamedAndHasNoFlags) {
  EXPECT_EQ(Name(), L"(unnamedCvar)");
  EXPECT_EQ(RemoteName(), L"(UNNAMEDCVAR)");
  long flags = 5;
  EXPECT_EQ(cvar->get_Flags(&flags), S_OK);
  EXPECT_EQ(flags, 0);
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetFlagsString), L"-");
  EXPECT_EQ(Hints(), L"");
  EXPECT_EQ(Help(), L"");
  unsigned int helpId = 3;
  EXPECT_EQ(cvar->get_HelpStringID(&helpId), S_OK);
  EXPECT_EQ(helpId, 0u);
}

struct NameCase {
  const char* name;
  const wchar_t* text;
  const wchar_t* screen;
  const wchar_t* remote;
};
constexpr NameCase kNameCases[] = {
    {"TwoPieces", L"Trigger Level|trig level", L"Trigger Level", L"TRIG_LEVEL"},
    {"OnePieceIsBoth", L"Trigger Level", L"Trigger Level", L"TRIGGER_LEVEL"},
    {"FurtherPiecesAreDropped", L"a|b|c", L"a", L"B"},
    {"FirstPieceMayBeEmpty", L"|x y", L"", L"X_Y"},
    {"SecondPieceMayBeEmpty", L"x|", L"x", L""},
    {"BarAlone", L"|", L"", L""},
    {"Empty", L"", L"", L""},
    {"NullReadsAsEmpty", nullptr, L"", L""},
    {"OnlyBlanksBecomeUnderscores", L"a\tb c", L"a\tb c", L"A\tB_C"},
    {"UpperCaseIsPerCharacter", L"\u00e4\u00f6\u00fc \u00e9", L"\u00e4\u00f6\u00fc \u00e9",
     L"\u00c4\u00d6\u00dc_\u00c9"},
    {"MicroSignStays", L"\u00b5s", L"\u00b5s", L"\u00b5S"},
    {"SharpSStays", L"stra\u00dfe", L"stra\u00dfe", L"STRA\u00dfE"},
    {"BeyondOneByteACharacter", L"\u03a9 load|ohm", L"\u03a9 load", L"OHM"},
};

TEST_F(CvarIdentity, NamesFollowTheNameRuleAndTellNobody) {
  for (const NameCase& row : kNameCases) {
    SCOPED_TRACE(row.name);
    cvar->SetName(row.text);
    EXPECT_EQ(Name(), row.screen);
    EXPECT_EQ(RemoteName(), row.remote);
  }
  EXPECT_EQ(listener->masks, Masks{});
}

TEST_F(CvarIdentity, MemberNameOfAFreshCvarChangesNothing) {
  cvar->InitializeName(CComBSTR(L"m_cvFoo"));
  EXPECT_EQ(Name(), L"(unnamedCvar)");
}

constexpr NameCase kMemberNameCases[] = {
    {"PrefixIsCut", L"m_cvFoo", L"Foo", L"FOO"},
    {"PointerPrefixIsCut", L"m_pcvFoo", L"Foo", L"FOO"},
    {"EachIsCutOnce", L"m_cvm_pcvm_cvA", L"m_cvA", L"M_CVA"},
    {"AnywhereInTheText", L"Xm_cvY", L"XY", L"XY"},
    {"CaseCounts", L"M_CVfoo", L"M_CVfoo", L"M_CVFOO"},
    {"NameRuleApplies", L"m_cvA b|c d", L"A b", L"C_D"},
    {"NullStaysEmpty", nullptr, L"", L""},
};

TEST_F(CvarIdentity, MemberNameFillsAnEmptyName) {
  for (const NameCase& row : kMemberNameCases) {
    SCOPED_TRACE(row.name);
    cvar->SetName(L"");
    cvar->InitializeName(CComBSTR(row.text));
    EXPECT_EQ(Name(), row.screen);
    EXPECT_EQ(RemoteName(), row.remote);
  }
}

TEST_F(CvarIdentity, MemberNameLeavesAGivenNameAlone) {
  cvar->SetName(L"Bar");
  cvar->InitializeName(CComBSTR(L"m_cvFoo"));
  EXPECT_EQ(Name(), L"Bar");
}

TEST_F(CvarIdentity, BagAndCvarNameJoinsBothNames) {
  EXPECT_EQ(cvar->get_BagAndCvarName(nullptr), E_POINTER);
  cvar->SetName(L"Gain");
  EXPECT_EQ(TextOf(*cvar, &cvars::CvarCore::get_BagAndCvarName), L".Gain");
  const auto bag = CCvarBag::Create(L"Channel1", nullptr);
  ASSERT_EQ(bag->Add(cvar), S_OK);
  EXPECT_EQ(TextOf(*cvar, &cvars::CvarCore::get_BagAndCvarName), L"Channel1.Gain");
  cvar->SetName(L"");
  EXPECT_EQ(TextOf(*cvar, &cvars::CvarCore::get_BagAndCvarName), L"Channel1.");
  EXPECT_EQ(bag->Remove(cvar), S_OK);
}

TEST_F(CvarIdentity, BagNameIsEmptyForAParentThatIsNoBag) {
  cvar->SetName(L"Gain");
  const auto parent = PlainObject::Create();
  cvar->SetParent(parent);
  EXPECT_EQ(TextOf(*cvar, &cvars::CvarCore::get_BagAndCvarName), L".Gain");
  cvar->SetParent(nullptr);
}

// Flags -------------------------------------------------------------------------------------------

struct FlagsStringCase {
  long flags;
  const wchar_t* text;
};
constexpr FlagsStringCase kFlagsStringCases[] = {
    {0x0, L"-"},
    {0x1, L"R"},
    {0x2, L"H"},
    {0x4, L"W"},
    {0x8, L"L"},
    {0x10, L"G"},
    {0x20, L"C"},
    {0x40, L"N"},
    {0x80, L"B"},
    {0x100, L"A"},
    {0x200, L"M"},
    {0x400, L"Y"},
    {0x800, L"P"},
    {0x1000, L"D"},
    {0x2000, L"V"},
    {0x4000, L"U"},
    {0x8000, L""},
    {0x10000, L""},
    {0x23, L"RHC"},
    {0x6001, L"RVU"},
    {0x1020, L"DC"},
    {0x10001, L"R"},
    {-0x7fffffff - 1, L""},
    {0x7fff, L"RHWLGNBAMYPDCVU"},
};

TEST_F(CvarIdentity, FlagsStringHasOneLetterForEachFlagInItsOwnOrder) {
  for (const FlagsStringCase& row : kFlagsStringCases) {
    SCOPED_TRACE(row.flags);
    (void)cvar->SetFlags(row.flags);
    EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetFlagsString), row.text);
    EXPECT_EQ(cvar->GetFlagsString(), row.text);
    long flags = ~row.flags;
    EXPECT_EQ(cvar->get_Flags(&flags), S_OK);
    EXPECT_EQ(flags, row.flags);
  }
}

TEST_F(CvarIdentity, SettingAFlagTwiceNotifiesOnce) {
  EXPECT_TRUE(cvar->SetFlags(CVARFLAG_PUBLIC, true));
  EXPECT_FALSE(cvar->SetFlags(CVARFLAG_PUBLIC, true));
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_FLAGS});
}

TEST_F(CvarIdentity, FlagsAreReplacedWholeOrChangedBitByBit) {
  EXPECT_TRUE(cvar->SetFlags(0x30001L));
  EXPECT_FALSE(cvar->SetFlags(0x30001L));
  EXPECT_TRUE(cvar->SetFlags(CVARFLAG_READONLY | CVARFLAG_HIDDEN, true));
  EXPECT_EQ(cvar->Flags(), CVARFLAGS(0x30003));
  EXPECT_TRUE(cvar->SetFlags(CVARFLAGS(0x20001), false));
  EXPECT_EQ(cvar->Flags(), CVARFLAGS(0x10002));
  EXPECT_FALSE(cvar->SetFlags(CVARFLAG_READONLY, false));
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_FLAGS, NOTIFY_FLAGS, NOTIFY_FLAGS}));
}

TEST_F(CvarIdentity, FlagsWordIsComparedAs32Bits) {
  EXPECT_TRUE(cvar->SetFlags(0x80000001L));
  EXPECT_FALSE(cvar->SetFlags(static_cast<long>(static_cast<std::int32_t>(0x80000001))));
}

struct NamedFlagCase {
  const char* name;
  bool (*set)(CvarObject<PlainCvar>& cvar, int on);
  CVARFLAGS flag;
};
constexpr NamedFlagCase kNamedFlagCases[] = {
    {"ReadOnly", [](auto& cvar, int on) { return cvar.SetReadOnly(on); }, CVARFLAG_READONLY},
    {"Hidden", [](auto& cvar, int on) { return cvar.SetHidden(on); }, CVARFLAG_HIDDEN},
    {"Wrapping", [](auto& cvar, int on) { return cvar.SetWrapping(on); }, CVARFLAG_WRAPPING},
    {"Grayed", [](auto& cvar, int on) { return cvar.SetGrayed(on); }, CVARFLAG_GRAYED},
    {"Private", [](auto& cvar, int on) { return cvar.ForcePrivate(on != 0); }, CVARFLAG_PRIVATE},
    {"Public", [](auto& cvar, int on) { return cvar.ForcePublic(on != 0); }, CVARFLAG_PUBLIC},
};

TEST_F(CvarIdentity, NamedSettersChangeTheirBitAndNothingElse) {
  for (const NamedFlagCase& row : kNamedFlagCases) {
    SCOPED_TRACE(row.name);
    (void)cvar->SetFlags(CVARFLAG_P, true);
    (void)listener->TakeMasks();
    EXPECT_TRUE(row.set(*cvar, -3));
    EXPECT_EQ(cvar->Flags(), row.flag | CVARFLAG_P);
    EXPECT_FALSE(row.set(*cvar, 1));
    EXPECT_TRUE(row.set(*cvar, 0));
    EXPECT_EQ(cvar->Flags(), CVARFLAG_P);
    EXPECT_FALSE(row.set(*cvar, 0));
    EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_FLAGS, NOTIFY_FLAGS}));
  }
}

TEST_F(CvarIdentity, AFlagSetterSaysTrueWhateverListenersAnswer) {
  listener->answer = E_FAIL;
  EXPECT_TRUE(cvar->SetHidden(1));
}

struct PredicateCase {
  const char* name;
  HRESULT (IVorCvar::*ask)(int*);
  long flag;
};
constexpr PredicateCase kPredicateCases[] = {
    {"IsReadOnly", &IVorCvar::IsReadOnly, 0x1},
    {"IsHidden", &IVorCvar::IsHidden, 0x2},
    {"IsGuiOnly", &IVorCvar::IsGuiOnly, 0x10},
    {"IsNonvolatile", &IVorCvar::IsNonvolatile, 0x40},
};

TEST_F(CvarIdentity, PredicatesReadTheirBit) {
  for (const PredicateCase& row : kPredicateCases) {
    SCOPED_TRACE(row.name);
    int set = 7;
    (void)cvar->SetFlags(row.flag);
    EXPECT_EQ((cvar->*row.ask)(&set), S_OK);
    EXPECT_EQ(set, 1);
    (void)cvar->SetFlags(~row.flag);
    EXPECT_EQ((cvar->*row.ask)(&set), S_OK);
    EXPECT_EQ(set, 0);
    EXPECT_EQ((cvar->*row.ask)(nullptr), E_POINTER);
  }
}

// Help and hints ----------------------------------------------------------------------------------

TEST_F(CvarIdentity, HelpStringIdNotifiesAttributesWhenItDiffers) {
  cvar->SetHelpStringID(17);
  cvar->SetHelpStringID(17);
  cvar->SetHelpStringID(0xFFFFFFFF);
  unsigned int id = 0;
  EXPECT_EQ(cvar->get_HelpStringID(&id), S_OK);
  EXPECT_EQ(id, 0xFFFFFFFFu);
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_ATTRIBUTES, NOTIFY_ATTRIBUTES}));
}

TEST_F(CvarIdentity, HelpComesFromTheStringResourcesOfTheParentsModule) {
  cvar->SetHelpStringID(17);
  EXPECT_EQ(Help(), L"");  // no parent
  const auto bag = CCvarBag::Create(L"Trigger", ThisModule());
  ASSERT_EQ(bag->Add(cvar), S_OK);
  EXPECT_EQ(Help(), L"Level at which the trigger fires.");
  cvar->SetHelpStringID(18);
  EXPECT_EQ(Help(), L"");  // no such text
  cvar->SetHelpStringID(0);
  EXPECT_EQ(Help(), L"");
  EXPECT_EQ(bag->Remove(cvar), S_OK);
}

TEST_F(CvarIdentity, HelpIsEmptyForAParentThatIsNoBag) {
  const auto parent = PlainObject::Create();
  cvar->SetParent(parent);
  cvar->SetHelpStringID(17);
  EXPECT_EQ(Help(), L"");
  cvar->SetParent(nullptr);
}

TEST_F(CvarIdentity, HintsNotifyWhenTheyDiffer) {
  cvar->SetGuiHints(nullptr);
  cvar->SetGuiHints(L"");  // an empty text is as good as none
  EXPECT_EQ(listener->TakeMasks(), Masks{});
  cvar->SetGuiHints(L"Knob");
  cvar->SetGuiHints(L"Knob");
  cvar->SetGuiHints(L"KNOB");  // case counts
  EXPECT_EQ(Hints(), L"KNOB");
  cvar->SetGuiHints(nullptr);
  EXPECT_EQ(Hints(), L"");
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_GUIHINTS, NOTIFY_GUIHINTS, NOTIFY_GUIHINTS}));
}

// Icon --------------------------------------------------------------------------------------------

struct Icon {
  unsigned long id = 99;
  unsigned long module = 99;
  bool operator==(const Icon&) const = default;
};

Icon IconOf(IVorCvar& cvar) {
  Icon icon;
  EXPECT_EQ(cvar.GetIconInfo(&icon.id, &icon.module), S_OK);
  return icon;
}

TEST_F(CvarIdentity, IconInfoNeedsBothPointersAndChangesNothingWithoutThem) {
  unsigned long number = 42;
  EXPECT_EQ(cvar->GetIconInfo(nullptr, &number), E_INVALIDARG);
  EXPECT_EQ(cvar->GetIconInfo(&number, nullptr), E_INVALIDARG);
  EXPECT_EQ(cvar->GetIconInfo(nullptr, nullptr), E_INVALIDARG);
  EXPECT_EQ(number, 42u);
}

TEST_F(CvarIdentity, IconIdTakesTheModuleOfTheParent) {
  EXPECT_EQ(IconOf(*cvar), (Icon{0, 0}));
  cvar->SetIcon(5);
  EXPECT_EQ(IconOf(*cvar), (Icon{5, 0}));
  const auto bag = CCvarBag::Create(L"Trigger", ThisModule());
  ASSERT_EQ(bag->Add(cvar), S_OK);
  EXPECT_EQ(IconOf(*cvar), (Icon{5, NumberOf(ThisModule())}));  // filled when it is asked for
  cvar->SetIcon(5);
  cvar->SetIcon(6);
  EXPECT_EQ(IconOf(*cvar), (Icon{6, NumberOf(ThisModule())}));
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_ATTRIBUTES, NOTIFY_ATTRIBUTES}));
  EXPECT_EQ(bag->Remove(cvar), S_OK);
}

TEST_F(CvarIdentity, IconAndModuleAreSetTogether) {
  cvar->SetIcon(0, 0);
  EXPECT_EQ(listener->TakeMasks(), Masks{});
  cvar->SetIcon(5, 77);
  cvar->SetIcon(5, 77);
  EXPECT_EQ(IconOf(*cvar), (Icon{5, 77}));
  cvar->SetIcon(5, 78);
  EXPECT_EQ(IconOf(*cvar), (Icon{5, 78}));
  EXPECT_EQ(listener->TakeMasks(), (Masks{NOTIFY_ATTRIBUTES, NOTIFY_ATTRIBUTES}));
}

TEST_F(CvarIdentity, IconIdWithoutAParentForgetsAnExplicitModule) {
  cvar->SetIcon(5, 77);
  cvar->SetIcon(6);
  EXPECT_EQ(IconOf(*cvar), (Icon{6, 0}));
}

TEST_F(CvarIdentity, IconIdHas32Bits) {
  cvar->SetIcon(0x100000000ul);
  cvar->SetIcon(0x100000000ul, 0);
  EXPECT_EQ(listener->TakeMasks(), Masks{});
  cvar->SetIcon(0x100000005ul);
  EXPECT_EQ(IconOf(*cvar), (Icon{5, 0}));
  cvar->SetIcon(5);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_ATTRIBUTES});
  cvar->SetIcon(static_cast<unsigned long>(-1), 77);
  EXPECT_EQ(IconOf(*cvar), (Icon{0xFFFFFFFF, 77}));
}

TEST_F(CvarIdentity, AnIconModuleWithoutIconIsNotFilled) {
  const auto bag = CCvarBag::Create(L"Trigger", ThisModule());
  ASSERT_EQ(bag->Add(cvar), S_OK);
  EXPECT_EQ(IconOf(*cvar), (Icon{0, 0}));
  EXPECT_EQ(bag->Remove(cvar), S_OK);
}

// Parent ------------------------------------------------------------------------------------------

TEST_F(CvarIdentity, WithoutParentTheAnswerIsBlankAndNull) {
  IUnknown* parent = listener;
  EXPECT_EQ(cvar->get_Parent(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_Parent(&parent), OLE_E_BLANK);
  EXPECT_EQ(parent, nullptr);
  HINSTANCE module = ThisModule();
  EXPECT_EQ(cvar->GetParentModuleInstanceHandle(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetParentModuleInstanceHandle(&module), OLE_E_BLANK);
  EXPECT_EQ(module, nullptr);
}

TEST_F(CvarIdentity, AParentThatIsNoBagReadsAsNone) {
  const auto object = PlainObject::Create();
  cvar->SetParent(object);
  IUnknown* parent = listener;
  EXPECT_EQ(cvar->get_Parent(&parent), OLE_E_BLANK);
  EXPECT_EQ(parent, nullptr);
  EXPECT_EQ(cvar->GetParent(), object.p);
  cvar->SetParent(nullptr);
}

TEST_F(CvarIdentity, ParentIsTheIdentityOfTheBag) {
  const auto bag = CCvarBag::Create(L"Trigger", ThisModule());
  ASSERT_EQ(bag->Add(cvar), S_OK);
  {
    CComPtr<IUnknown> parent;
    EXPECT_EQ(cvar->get_Parent(&parent), S_OK);
    EXPECT_TRUE(parent.IsEqualObject(bag));
    HINSTANCE module = nullptr;
    EXPECT_EQ(cvar->GetParentModuleInstanceHandle(&module), S_OK);
    EXPECT_EQ(module, ThisModule());
  }
  EXPECT_EQ(bag->Remove(cvar), S_OK);
  EXPECT_EQ(cvar->GetParent(), nullptr);
}

// Life --------------------------------------------------------------------------------------------

TEST_F(CvarIdentity, ProcessWideCountsFollowEveryCvar) {
  const int constructed = CvarBaseCpp::NumCvarsConstructed();
  const int destructed = CvarBaseCpp::NumCvarsDestructed();
  {
    const Plain first = CvarObject<PlainCvar>::Create();
    const Plain second = CvarObject<PlainCvar>::Create();
    EXPECT_EQ(CvarBaseCpp::NumCvarsConstructed(), constructed + 2);
    EXPECT_EQ(CvarBaseCpp::NumCvarsDestructed(), destructed);
  }
  EXPECT_EQ(CvarBaseCpp::NumCvarsConstructed(), constructed + 2);
  EXPECT_EQ(CvarBaseCpp::NumCvarsDestructed(), destructed + 2);
}

TEST_F(CvarIdentity, TheLastReferenceReleasesListenersEvenWhenTheyUseTheCvar) {
  Plain going = CvarObject<PlainCvar>::Create();
  ASSERT_EQ(going->AttachCvarEventSink(cvar->GetIVorCvar()), S_OK);  // one cvar listens to another
  EXPECT_EQ(cvar->AddRef(), 3u);
  EXPECT_EQ(cvar->Release(), 2u);
  going = nullptr;
  EXPECT_EQ(cvar->AddRef(), 2u);
  EXPECT_EQ(cvar->Release(), 1u);
}

}  // namespace
