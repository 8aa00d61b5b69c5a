#include "CCvarRegister.h"

#include <gtest/gtest.h>

#include "CvarObject.h"
#include "LiveCvars.h"
#include "ReadProperties.h"
#include "ReadText.h"
#include "RecordingListener.h"

namespace {

using cvars::test::RecordingListener;
using cvars::test::TextOf;

using Register = CComPtr<CvarObject<CCvarRegister>>;
using Masks = std::vector<NOTIFYTYPE>;

constexpr NOTIFYTYPE kRequestedAndValue = NOTIFY_REQUESTED | NOTIFY_VALUE;
constexpr NOTIFYTYPE kEverything = NOTIFYTYPE(0xFFFFFFFF);

struct Setup {
  unsigned defaultValue = 0;
  ACCESSSTYLE style = ACCESSSTYLE_READWRITE;
  unsigned address = 0x40;
  unsigned bits = 32;
  unsigned mask = 0xFFFFFFFF;
  CVARFLAGS flags = CVARFLAGS(0);
  CVARREPLICATIONFLAGS replication = CVARREPLICATIONFLAGS(0x202);
  bool everyUpdate = false;
};

void Initialize(const Register& cvar, const Setup& setup) {
  cvar->Initialize(L"Acquisition Control|acq control", setup.defaultValue, setup.style,
                   setup.address, setup.bits, setup.mask, setup.flags, L"hint", 9,
                   setup.replication, setup.everyUpdate);
}

Register Make(const Setup& setup = {}) {
  Register cvar = CvarObject<CCvarRegister>::Create();
  Initialize(cvar, setup);
  return cvar;
}

template <class Value>
Value Get(const Register& cvar, HRESULT (IVorCvarRegister::*get)(Value*)) {
  Value value{};
  EXPECT_EQ((static_cast<IVorCvarRegister&>(*cvar).*get)(&value), S_OK);
  return value;
}
unsigned Adapted(const Register& cvar) { return Get(cvar, &IVorCvarRegister::GetAdaptedValue); }
unsigned Requested(const Register& cvar) { return Get(cvar, &IVorCvarRegister::GetRequestedValue); }
unsigned Default(const Register& cvar) { return Get(cvar, &IVorCvarRegister::GetDefaultValue); }
unsigned Mask(const Register& cvar) { return Get(cvar, &IVorCvarRegister::GetMask); }
unsigned Bits(const Register& cvar) { return Get(cvar, &IVorCvarRegister::GetNbOfBits); }
unsigned Address(const Register& cvar) { return Get(cvar, &IVorCvarRegister::GetHardwareAddress); }
ACCESSSTYLE Style(const Register& cvar) { return Get(cvar, &IVorCvarRegister::GetAccessStyle); }
bool ReadOnly(const Register& cvar) { return cvar->HasFlag(CVARFLAG_READONLY); }

CComPtr<RecordingListener> Listen(const Register& cvar) {
  CComPtr<RecordingListener> listener = RecordingListener::Create();
  EXPECT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  return listener;
}

struct FieldOf {
  unsigned first = 55;
  unsigned last = 55;
  CComBSTR text{L"untouched"};
};
FieldOf Field(const Register& cvar, unsigned bit) {
  FieldOf field;
  EXPECT_EQ(cvar->GetFieldDescription(bit, &field.first, &field.last, &field.text), S_OK);
  return field;
}

class RegisterTest : public cvars::test::CvarTest {};

// Initialize --------------------------------------------------------------------------------------

TEST_F(RegisterTest, NewOneHas32BitsAndIsWritable) {
  const Register cvar = CvarObject<CCvarRegister>::Create();
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Type), L"Register");
  EXPECT_EQ(Adapted(cvar), 0u);
  EXPECT_EQ(Bits(cvar), 32u);
  EXPECT_EQ(Mask(cvar), 0xFFFFFFFFu);
  EXPECT_EQ(Address(cvar), 0u);
  EXPECT_EQ(Style(cvar), ACCESSSTYLE_READWRITE);
}

TEST_F(RegisterTest, InitializeCutsTheMaskToTheWidthButNotTheDefaultAndThatIsMeant) {
  const Register cvar = Make({.defaultValue = 0x12345, .bits = 8, .mask = 0xFFFF});
  EXPECT_EQ(Bits(cvar), 8u);
  EXPECT_EQ(Mask(cvar), 0xFFu);
  EXPECT_EQ(Default(cvar), 0x2345u);
  EXPECT_EQ(Requested(cvar), 0x2345u);
  EXPECT_EQ(Adapted(cvar), 0x45u);
}

TEST_F(RegisterTest, InitializeTakesWidthsOutOfBoundsAs32AndLeavesTheMask) {
  for (const unsigned bits : {0u, 32u, 40u, 0xFFFFFFFFu}) {
    const Register cvar = Make({.bits = bits, .mask = 0xF0F0F0F0});
    EXPECT_EQ(Bits(cvar), 32u);
    EXPECT_EQ(Mask(cvar), 0xF0F0F0F0u);
  }
  EXPECT_EQ(Mask(Make({.bits = 31})), 0x7FFFFFFFu);
  EXPECT_EQ(Mask(Make({.bits = 1})), 1u);
}

TEST_F(RegisterTest, InitializeConfiguresEverythingAndTellsNobody) {
  const Register cvar = CvarObject<CCvarRegister>::Create();
  const auto listener = Listen(cvar);
  Initialize(cvar, {.defaultValue = 5,
                    .style = ACCESSSTYLE(7),
                    .flags = CVARFLAG_HIDDEN,
                    .replication = REPLICATE_DESCRIPTION,
                    .everyUpdate = true});
  EXPECT_EQ(listener->masks, Masks{});
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_NameRemote), L"ACQ_CONTROL");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetGuiHints), L"hint");
  EXPECT_EQ(Style(cvar), ACCESSSTYLE(7));
  EXPECT_FALSE(ReadOnly(cvar));
  EXPECT_TRUE(cvar->HasFlag(CVARFLAG_HIDDEN));
  EXPECT_EQ(cvar->ReplicationFlags(), REPLICATE_DESCRIPTION);
  unsigned id = 0;
  EXPECT_EQ(cvar->get_HelpStringID(&id), S_OK);
  EXPECT_EQ(id, 9u);
  EXPECT_EQ(cvar->UpdateFromHardware(5), S_OK);
  EXPECT_EQ(listener->masks, Masks{NOTIFY_VALUE});
}

TEST_F(RegisterTest, AccessStyle2StaysReadOnlyWhateverTheFlagsSay) {
  const Register cvar = Make({.defaultValue = 3, .style = ACCESSSTYLE_READONLY});
  EXPECT_TRUE(ReadOnly(cvar));
  EXPECT_EQ(Adapted(cvar), 3u) << "the default was written first";
  const Register flagged = Make({.flags = CVARFLAG_READONLY});
  EXPECT_TRUE(ReadOnly(flagged));
}

// Writing -----------------------------------------------------------------------------------------

TEST_F(RegisterTest, AWriteKeepsTheBitsThatExist) {
  const Register cvar = Make({.mask = 0xFF});
  EXPECT_EQ(cvar->SetRequestedValue(0x1FF), S_OK);
  EXPECT_EQ(Requested(cvar), 0x1FFu);
  EXPECT_EQ(Adapted(cvar), 0xFFu);
  CComVariant value;
  EXPECT_EQ(cvar->get_Value(&value), S_OK);
  ASSERT_EQ(value.vt, VT_BSTR);
  EXPECT_STREQ(value.bstrVal, L"&hFF");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen), L"000000ff");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemote), L"000000ff");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringAutomation), L"&hFF");
}

TEST_F(RegisterTest, WritingTheSameValueTwiceNotifiesItOnce) {
  const Register cvar = Make();
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->SetRequestedValue(7), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(7), S_OK);
  EXPECT_EQ(listener->masks, Masks{kRequestedAndValue});
}

TEST_F(RegisterTest, WritingTheSameValueTwiceNotifiesItTwiceWhenEveryUpdateCounts) {
  const Register cvar = Make({.everyUpdate = true});
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->SetRequestedValue(7), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(7), S_OK);
  EXPECT_EQ(listener->masks, (Masks{kRequestedAndValue, NOTIFY_VALUE}));
}

TEST_F(RegisterTest, AReadOnlyOneIgnoresEveryWriteAndSucceeds) {
  const Register cvar = Make({.defaultValue = 3, .style = ACCESSSTYLE_READONLY});
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->SetRequestedValue(7), S_OK);
  EXPECT_EQ(cvar->SetRequestedValueFromString(L"7"), S_OK);
  EXPECT_EQ(cvar->SetRequestedValueFromStringScreen(L"7"), S_OK);
  EXPECT_EQ(cvar->SetRequestedValueFromStringRemote(L"7"), S_OK);
  EXPECT_EQ(cvar->put_Value(CComVariant(7)), S_OK);
  EXPECT_EQ(cvar->put_Value(CComVariant(L"junk")), S_OK);
  EXPECT_EQ(cvar->SetToDefault(), S_OK);
  EXPECT_EQ(Requested(cvar), 3u);
  EXPECT_EQ(listener->masks, Masks{});
  CComVariant wrong;
  wrong.vt = VT_UNKNOWN;
  wrong.punkVal = nullptr;
  EXPECT_EQ(cvar->put_Value(wrong), E_INVALIDARG) << "a wrong kind is still wrong";
}

TEST_F(RegisterTest, WritesSucceedWhateverListenersAnswer) {
  const Register cvar = Make();
  const auto listener = RecordingListener::Create(E_UNEXPECTED);
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(7), S_OK);
  EXPECT_EQ(cvar->UpdateFromHardware(8), S_OK);
  EXPECT_EQ(cvar->SetMask(1), E_UNEXPECTED) << "attributes answer what listeners do";
}

struct TextCase {
  const wchar_t* text;
  unsigned value;
};
constexpr TextCase kTextCases[] = {
    {L"0x10", 16}, {L"010", 8}, {L"abc", 0}, {L"12", 12}, {L"", 0}, {nullptr, 0}, {L"-1", ~0u},
};

TEST_F(RegisterTest, ReadsTextsAsTheCScanAndWritesZeroForOthers) {
  for (const TextCase& row : kTextCases) {
    const Register cvar = Make({.defaultValue = 99});
    EXPECT_EQ(cvar->SetRequestedValueFromString(row.text), S_OK);
    EXPECT_EQ(Requested(cvar), row.value);
  }
}

struct VariantCase {
  const char* name;
  CComVariant value;
  HRESULT result;
  unsigned written;
};

TEST_F(RegisterTest, TakesVariantsThatAreNumbersOrTexts) {
  CComVariant object;
  object.vt = VT_UNKNOWN;
  object.punkVal = nullptr;
  const VariantCase kCases[] = {
      {"Long", CComVariant(31), S_OK, 31},
      {"UnsignedLong", CComVariant(0xFFFFFFFFu), S_OK, 0xFFFFFFFF},
      {"Double", CComVariant(12.0), S_OK, 12},
      {"TextDecimal", CComVariant(L"12"), S_OK, 12},
      {"TextWithZeroInFrontIsOctal", CComVariant(L"012"), S_OK, 10},
      {"TextHexadecimal", CComVariant(L"0x1F"), S_OK, 31},
      {"TextAutomationHexadecimal", CComVariant(L"&h1F"), S_OK, 31},
      {"TextAllAutomationDigits", CComVariant(L"&hFFFFFFFF"), S_OK, 0xFFFFFFFF},
      {"TextThatDoesNotRead", CComVariant(L"abc"), S_OK, 0},
      {"TextNegativeIsNotConvertedButScanned", CComVariant(L"-1"), S_OK, 0xFFFFFFFF},
      {"TextEmpty", CComVariant(L""), S_OK, 0},
      {"NegativeShortIsSignExtended", CComVariant(short{-2}), S_OK, 0xFFFFFFFE},
      {"Short", CComVariant(short{5}), S_OK, 5},
      {"NegativeLongKeepsItsBits", CComVariant(-2), S_OK, 0xFFFFFFFE},
      {"DoubleTooLarge", CComVariant(1e10), E_INVALIDARG, 99},
      {"Object", object, E_INVALIDARG, 99},
  };
  for (const VariantCase& row : kCases) {
    SCOPED_TRACE(row.name);
    const Register cvar = Make({.defaultValue = 99});
    EXPECT_EQ(cvar->put_Value(row.value), row.result);
    EXPECT_EQ(Requested(cvar), row.written);
  }
}

TEST_F(RegisterTest, PutValueLeavesTheCallersVariantAsItIs) {
  const Register cvar = Make();
  CComVariant text(L"&h1F");
  EXPECT_EQ(cvar->put_Value(text), S_OK);
  EXPECT_EQ(text.vt, VT_BSTR);
  EXPECT_STREQ(text.bstrVal, L"&h1F");
}

TEST_F(RegisterTest, HardwareReportsANewContent) {
  const Register cvar = Make({.mask = 0x0F});
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->UpdateFromHardware(0x35), S_OK);
  EXPECT_EQ(cvar->UpdateFromHardware(0x45), S_OK) << "the same bits";
  EXPECT_EQ(Adapted(cvar), 5u);
  EXPECT_EQ(Requested(cvar), 0u);
  EXPECT_EQ(listener->masks, Masks{NOTIFY_VALUE});
  int adapted = 0;
  EXPECT_EQ(cvar->get_IsValueAdapted(&adapted), S_OK);
  EXPECT_EQ(adapted, 1);
}

/// Hardware that has its lowest bit always set.
class StuckRegister : public CCvarRegister {
 public:
  HRESULT UpdateFromHardware(unsigned int value) override {
    ++writes;
    return CCvarRegister::UpdateFromHardware(value | 1u);
  }
  int writes = 0;

 protected:
  StuckRegister() = default;
  ~StuckRegister() = default;
};

TEST_F(RegisterTest, AClassThatOverridesTheReadBackDecidesWhatTheRegisterHolds) {
  const CComPtr<CvarObject<StuckRegister>> cvar = CvarObject<StuckRegister>::Create();
  cvar->Initialize(L"Status", 4, ACCESSSTYLE_READWRITE, 0, 8, 0xFF, CVARFLAGS(0), nullptr, 0,
                   CVARREPLICATIONFLAGS(0), false);
  EXPECT_EQ(cvar->writes, 1);
  unsigned value = 0;
  EXPECT_EQ(cvar->GetAdaptedValue(&value), S_OK);
  EXPECT_EQ(value, 5u);
  EXPECT_EQ(cvar->SetRequestedValue(4), S_OK);
  EXPECT_EQ(cvar->writes, 2) << "an unchanged request is written too";
}

TEST_F(RegisterTest, SetToDefaultWritesTheDefault) {
  const Register cvar = Make({.defaultValue = 0x12});
  EXPECT_EQ(cvar->SetRequestedValue(1), S_OK);
  EXPECT_EQ(cvar->SetToDefault(), S_OK);
  EXPECT_EQ(Adapted(cvar), 0x12u);
  int isDefault = 0;
  EXPECT_EQ(cvar->IsDefault(&isDefault), S_OK);
  EXPECT_EQ(isDefault, 1);
}

// Attributes --------------------------------------------------------------------------------------

struct AttributeRow {
  const char* name;
  HRESULT (*set)(CCvarRegister& cvar);
  HRESULT result;
  Masks masks;
};

TEST_F(RegisterTest, AttributesNotifyTheirChanges) {
  const AttributeRow kRows[] = {
      {"Mask", [](CCvarRegister& c) { return c.SetMask(0x0F); }, S_OK, {NOTIFY_FLAGS}},
      {"MaskTheSame", [](CCvarRegister& c) { return c.SetMask(0xFF); }, S_FALSE, {}},
      {"MaskTheSameWithinTheWidth",
       [](CCvarRegister& c) { return c.SetMask(0xFFFF); },
       S_FALSE,
       {}},
      {"Width", [](CCvarRegister& c) { return c.SetNbOfBits(4); }, S_OK, {NOTIFY_FLAGS}},
      {"WidthTheSame", [](CCvarRegister& c) { return c.SetNbOfBits(8); }, S_FALSE, {}},
      {"Address", [](CCvarRegister& c) { return c.SetHardwareAddress(1); }, S_OK, {NOTIFY_FLAGS}},
      {"AddressTheSame", [](CCvarRegister& c) { return c.SetHardwareAddress(0x40); }, S_FALSE, {}},
      {"Style",
       [](CCvarRegister& c) { return c.SetAccessStyle(ACCESSSTYLE(3)); },
       S_OK,
       {NOTIFY_FLAGS}},
      {"StyleTheSameNotifiesToo",
       [](CCvarRegister& c) { return c.SetAccessStyle(ACCESSSTYLE_READWRITE); },
       S_OK,
       {NOTIFY_FLAGS}},
      {"StyleReadOnlyNotifiesTheFlagAndThenTheStyle",
       [](CCvarRegister& c) { return c.SetAccessStyle(ACCESSSTYLE_READONLY); },
       S_OK,
       {NOTIFY_FLAGS, NOTIFY_FLAGS}},
      {"Default", [](CCvarRegister& c) { return c.SetDefaultValue(1); }, S_OK, {NOTIFY_ATTRIBUTES}},
      {"DefaultTheSame", [](CCvarRegister& c) { return c.SetDefaultValue(0); }, S_FALSE, {}},
  };
  for (const AttributeRow& row : kRows) {
    SCOPED_TRACE(row.name);
    const Register cvar = Make({.bits = 8});
    const auto listener = Listen(cvar);
    EXPECT_EQ(row.set(*cvar), row.result);
    EXPECT_EQ(listener->masks, row.masks);
  }
}

TEST_F(RegisterTest, AttributesAreStored) {
  const Register cvar = Make();
  EXPECT_EQ(cvar->SetMask(0x0F), S_OK);
  EXPECT_EQ(Mask(cvar), 0x0Fu);
  EXPECT_EQ(cvar->SetHardwareAddress(0x80), S_OK);
  EXPECT_EQ(Address(cvar), 0x80u);
  EXPECT_EQ(cvar->SetDefaultValue(0x123), S_OK);
  EXPECT_EQ(Default(cvar), 0x123u);
  EXPECT_EQ(cvar->SetAccessStyle(ACCESSSTYLE_READONLY), S_OK);
  EXPECT_EQ(Style(cvar), ACCESSSTYLE_READONLY);
  EXPECT_TRUE(ReadOnly(cvar));
  EXPECT_EQ(cvar->SetAccessStyle(ACCESSSTYLE_READWRITE), S_OK);
  EXPECT_FALSE(ReadOnly(cvar));
}

TEST_F(RegisterTest, ANewWidthLeavesTheMaskAndTheNextMaskIsCutToIt) {
  const Register cvar = Make();
  EXPECT_EQ(cvar->SetNbOfBits(4), S_OK);
  EXPECT_EQ(Mask(cvar), 0xFFFFFFFFu);
  EXPECT_EQ(cvar->SetMask(0xFFFFFFFE), S_OK);
  EXPECT_EQ(Mask(cvar), 0xEu);
  for (const unsigned bits : {0u, 40u}) {
    EXPECT_EQ(cvar->SetNbOfBits(bits), bits == 0 ? S_OK : S_FALSE);
    EXPECT_EQ(Bits(cvar), 32u);
  }
  EXPECT_EQ(cvar->SetMask(0xFFFFFFFF), S_OK);
  EXPECT_EQ(Mask(cvar), 0xFFFFFFFFu);
}

// Fields ------------------------------------------------------------------------------------------

TEST_F(RegisterTest, TheFieldAddedFirstHasItsBits) {
  const Register cvar = Make();
  EXPECT_EQ(cvar->SetFieldDescription(0, 3, L"A"), S_OK);
  EXPECT_EQ(cvar->SetFieldDescription(2, 5, L"B"), S_OK);
  const FieldOf two = Field(cvar, 2);
  EXPECT_EQ(two.first, 0u);
  EXPECT_EQ(two.last, 3u);
  EXPECT_EQ(two.text, L"A");
  const FieldOf four = Field(cvar, 4);
  EXPECT_EQ(four.first, 2u);
  EXPECT_EQ(four.last, 5u);
  EXPECT_EQ(four.text, L"B");
}

TEST_F(RegisterTest, ABitWithoutFieldGivesZerosAndNoText) {
  const Register cvar = Make();
  EXPECT_EQ(cvar->SetFieldDescription(0, 3, L"A"), S_OK);
  const FieldOf nine = Field(cvar, 9);
  EXPECT_EQ(nine.first, 0u);
  EXPECT_EQ(nine.last, 0u);
  EXPECT_EQ(nine.text.m_str, nullptr);
  unsigned number = 55;
  EXPECT_EQ(cvar->GetFieldDescriptionFirstBit(9, &number), S_OK);
  EXPECT_EQ(number, 0u);
  number = 55;
  EXPECT_EQ(cvar->GetFieldDescriptionLastBit(9, &number), S_OK);
  EXPECT_EQ(number, 0u);
}

TEST_F(RegisterTest, ABitWithoutFieldLeavesTheCallersTextAndThatIsMeant) {
  const Register cvar = Make();
  wchar_t mine[] = L"mine";
  BSTR text = mine;
  EXPECT_EQ(cvar->GetFieldDescriptionString(9, &text), S_OK);
  EXPECT_EQ(text, mine);
}

TEST_F(RegisterTest, FieldsAreReadOneByOne) {
  const Register cvar = Make();
  EXPECT_EQ(cvar->SetFieldDescription(4, 7, L"Gain"), S_OK);
  EXPECT_EQ(cvar->SetFieldDescription(8, 9, nullptr), S_OK);
  unsigned number = 55;
  EXPECT_EQ(cvar->GetFieldDescriptionFirstBit(5, &number), S_OK);
  EXPECT_EQ(number, 4u);
  EXPECT_EQ(cvar->GetFieldDescriptionLastBit(5, &number), S_OK);
  EXPECT_EQ(number, 7u);
  CComBSTR text;
  EXPECT_EQ(cvar->GetFieldDescriptionString(5, &text), S_OK);
  EXPECT_EQ(text, L"Gain");
  EXPECT_EQ(cvar->GetFieldDescriptionString(8, &text), S_OK);
  EXPECT_EQ(text.m_str, nullptr);
  EXPECT_EQ(Field(cvar, 8).text.m_str, nullptr);
}

TEST_F(RegisterTest, NothingIsCheckedWhenAFieldIsAdded) {
  const Register cvar = Make();
  EXPECT_EQ(cvar->SetFieldDescription(7, 4, L"backwards"), S_OK);
  EXPECT_EQ(cvar->SetFieldDescription(40, 0xFFFFFFFF, L"outside"), S_OK);
  EXPECT_EQ(Field(cvar, 5).text.m_str, nullptr);
  EXPECT_EQ(Field(cvar, 50).text, L"outside");
}

// Texts -------------------------------------------------------------------------------------------

TEST_F(RegisterTest, TellsItsRangeAndSignature) {
  const Register cvar = Make({.defaultValue = 0x1F, .bits = 8});
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Range), L"Register 8 bit");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_RangeStringRemote), L"Register 8 bit");
  EXPECT_EQ(TextOf(*Make(), &IVorCvar::get_Range), L"Register 32 bit");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Signature),
            L"Type,Register,Adapt,0000001f,Default,0000001f,Flags,-,NbOfBits,8,HardwareAddress,"
            L"00000040");
}

TEST_F(RegisterTest, PropertiesAddTheValuesWidthAndAddress) {
  const Register cvar = Make({.defaultValue = 0x1F, .bits = 8});
  EXPECT_EQ(cvar->SetRequestedValue(0x1FF), S_OK);
  EXPECT_EQ(cvars::test::OwnPropertiesOf(*cvar),
            (cvars::test::Properties{{L"AdaptedValue", VT_UI4, L"255"},
                                     {L"AdaptedValueStringScreen", VT_BSTR, L"000000ff"},
                                     {L"Default", VT_UI4, L"31"},
                                     {L"HardwareAddress", VT_UI4, L"64"},
                                     {L"NbOfBits", VT_UI4, L"8"},
                                     {L"RequestedValue", VT_UI4, L"511"}}));
}

TEST_F(RegisterTest, LateUpdateRunsBeforeTheTypedReadsAndTheTexts) {
  const Register cvar = Make({.defaultValue = 3});
  cvar->SetFlags(CVARFLAG_LATEUPDATE, true);
  const auto listener = Listen(cvar);
  EXPECT_EQ(Adapted(cvar), 3u);
  EXPECT_EQ(static_cast<unsigned int>(*cvar), 3u);
  (void)TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen);
  (void)TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemote);
  EXPECT_EQ(listener->TakeMasks(), Masks(4, NOTIFY_LATEUPDATE));
  (void)Requested(cvar);
  CComVariant value;
  EXPECT_EQ(cvar->get_Value(&value), S_OK);
  EXPECT_EQ(listener->masks, Masks{});
}

TEST_F(RegisterTest, GivesTheRequestAsANumber) {
  const Register cvar = Make({.mask = 1});
  EXPECT_EQ(cvar->SetRequestedValue(0x80000000), S_OK);
  CComVariant value;
  EXPECT_EQ(cvar->GetRequestedVariantValue(&value), S_OK);
  EXPECT_EQ(value.vt, VT_UI4);
  EXPECT_EQ(value.ulVal, 0x80000000u);
}

TEST_F(RegisterTest, HasNoPositionInARange) {
  const Register cvar = Make({.defaultValue = 3});
  EXPECT_EQ(cvar->Increment(1), S_OK);
  EXPECT_EQ(cvar->SetRequestedValueNorm(0.5), S_OK);
  EXPECT_EQ(Adapted(cvar), 3u);
  double position = 55;
  EXPECT_EQ(cvar->GetAdaptedValueNorm(&position), E_NOTIMPL);
  EXPECT_EQ(position, 0.0);
  EXPECT_EQ(cvar->GetAdaptedValueNorm(nullptr), E_NOTIMPL);
  EXPECT_EQ(cvar->SetToMin(), E_NOTIMPL);
  EXPECT_EQ(cvar->SetToMax(), E_NOTIMPL);
}

TEST_F(RegisterTest, NullOutPointersAreRefused) {
  const Register cvar = Make();
  IVorCvarRegister& reg = *cvar;
  unsigned number = 55;
  BSTR text = nullptr;
  EXPECT_EQ(reg.GetAdaptedValue(nullptr), E_POINTER);
  EXPECT_EQ(reg.GetDefaultValue(nullptr), E_POINTER);
  EXPECT_EQ(reg.GetRequestedValue(nullptr), E_POINTER);
  EXPECT_EQ(reg.GetMask(nullptr), E_POINTER);
  EXPECT_EQ(reg.GetNbOfBits(nullptr), E_POINTER);
  EXPECT_EQ(reg.GetHardwareAddress(nullptr), E_POINTER);
  EXPECT_EQ(reg.GetAccessStyle(nullptr), E_POINTER);
  EXPECT_EQ(reg.GetFieldDescription(0, nullptr, &number, &text), E_POINTER);
  EXPECT_EQ(reg.GetFieldDescription(0, &number, nullptr, &text), E_POINTER);
  EXPECT_EQ(reg.GetFieldDescription(0, &number, &number, nullptr), E_POINTER);
  EXPECT_EQ(reg.GetFieldDescriptionFirstBit(0, nullptr), E_POINTER);
  EXPECT_EQ(reg.GetFieldDescriptionLastBit(0, nullptr), E_POINTER);
  EXPECT_EQ(reg.GetFieldDescriptionString(0, nullptr), E_POINTER);
  EXPECT_EQ(reg.get_Value(nullptr), E_POINTER);
  EXPECT_EQ(reg.get_Range(nullptr), E_POINTER);
  EXPECT_EQ(reg.get_Signature(nullptr), E_POINTER);
  EXPECT_EQ(reg.GetAdaptedValueStringScreen(nullptr), E_POINTER);
  EXPECT_EQ(reg.GetAdaptedValueStringRemote(nullptr), E_POINTER);
  EXPECT_EQ(number, 55u);
}

// Replication -------------------------------------------------------------------------------------

TEST_F(RegisterTest, AReplicaFollowsTheRequest) {
  const Register source = Make({.defaultValue = 0x11});
  const Register replica = Make();
  EXPECT_EQ(replica->StartCvarReplication(source, true, 0x1, kEverything), S_OK);
  EXPECT_EQ(Adapted(replica), 0x11u);
  EXPECT_EQ(source->SetRequestedValue(0x80000001), S_OK);
  EXPECT_EQ(Requested(replica), 0x80000001u);
  EXPECT_EQ(replica->StopAllCvarReplication(), S_OK);
}

TEST_F(RegisterTest, AReplicaOfTheAdaptedValueReadsItsText) {
  const Register source = Make({.mask = 0xF0000000});
  const Register replica = Make({.replication = REPLICATE_VALUE});
  EXPECT_EQ(replica->StartCvarReplication(source, true, 0x1, kEverything), S_OK);
  EXPECT_EQ(source->SetRequestedValue(0xABCDEF01), S_OK);
  EXPECT_EQ(Requested(replica), 0xA0000000u);
  EXPECT_EQ(replica->StopAllCvarReplication(), S_OK);
}

TEST_F(RegisterTest, AReplicaTakesTheDefaultInSilence) {
  const Register source = Make();
  const Register replica = Make({.replication = REPLICATE_DEFAULT});
  EXPECT_EQ(replica->StartCvarReplication(source, true, 0x1, NOTIFYTYPE(0)), S_OK);
  const auto listener = Listen(replica);
  EXPECT_EQ(source->SetDefaultValue(0x77), S_OK);
  EXPECT_EQ(Default(replica), 0x77u);
  EXPECT_EQ(listener->masks, Masks{});
  EXPECT_EQ(replica->StopAllCvarReplication(), S_OK);
}

TEST_F(RegisterTest, AReplicaWithoutTheDefaultBitKeepsItsDefault) {
  const Register source = Make({.defaultValue = 0x77});
  const Register replica = Make();
  EXPECT_EQ(replica->StartCvarReplication(source, true, 0x1, kEverything), S_OK);
  EXPECT_EQ(Default(replica), 0u);
  EXPECT_EQ(replica->StopAllCvarReplication(), S_OK);
}

TEST_F(RegisterTest, AReplicaTakesTheDescriptionInSilenceWhenItIsToldOfEverything) {
  const Register source =
      Make({.style = ACCESSSTYLE_READONLY, .address = 0x99, .bits = 8, .mask = 0x3F});
  source->SetFieldDescription(0, 0, L"Run");
  source->SetFieldDescription(1, 3, L"Gain");
  source->SetFieldDescription(2, 5, L"Hidden partly");
  source->SetFieldDescription(7, 7, L"Ready");
  const Register replica = Make({.replication = REPLICATE_DESCRIPTION});
  replica->SetFieldDescription(6, 6, L"Own");
  const auto listener = Listen(replica);
  EXPECT_EQ(replica->OnCvarNotify(source, NOTIFYTYPE(0x7FFFFFFF)), S_OK);
  EXPECT_EQ(Bits(replica), 32u) << "not everything";
  EXPECT_EQ(replica->OnCvarNotify(source, kEverything), S_OK);
  EXPECT_EQ(listener->masks, Masks{});
  EXPECT_EQ(Mask(replica), 0x3Fu);
  EXPECT_EQ(Bits(replica), 8u);
  EXPECT_EQ(Style(replica), ACCESSSTYLE_READONLY);
  EXPECT_FALSE(ReadOnly(replica)) << "only the style is taken";
  EXPECT_EQ(Address(replica), 0x99u);
  EXPECT_EQ(Field(replica, 0).text.m_str, nullptr) << "a field of bit 0 alone is not taken";
  EXPECT_EQ(Field(replica, 1).text, L"Gain");
  EXPECT_EQ(Field(replica, 3).text, L"Gain");
  EXPECT_EQ(Field(replica, 4).text, L"Hidden partly");
  EXPECT_EQ(Field(replica, 4).first, 2u);
  EXPECT_EQ(Field(replica, 6).text, L"Own");
  EXPECT_EQ(Field(replica, 7).text, L"Ready");
}

TEST_F(RegisterTest, TheScanStartsBehindEachRecordsLastBit) {
  const Register source = Make({.bits = 8});
  source->SetFieldDescription(0, 6, L"Wide");
  source->SetFieldDescription(3, 4, L"Covered");
  const Register replica = Make({.replication = REPLICATE_DESCRIPTION});
  EXPECT_EQ(replica->OnCvarNotify(source, kEverything), S_OK);
  replica->SetFieldDescription(0, 31, L"Rest");
  EXPECT_EQ(Field(replica, 3).text, L"Wide");
  EXPECT_EQ(Field(replica, 7).text, L"Rest");
}

TEST_F(RegisterTest, ARecordUpToTheLastBitOfAllEndsTheScan) {
  const Register source = Make({.bits = 8});
  source->SetFieldDescription(2, 0xFFFFFFFF, L"Endless");
  const Register replica = Make({.replication = REPLICATE_DESCRIPTION});
  EXPECT_EQ(replica->OnCvarNotify(source, kEverything), S_OK);
  EXPECT_EQ(Field(replica, 2).text, L"Endless");
  EXPECT_EQ(Field(replica, 2).last, 0xFFFFFFFFu);
}

TEST_F(RegisterTest, RepeatedCopiesAppendTheRecordsAgain) {
  const Register source = Make({.bits = 8});
  source->SetFieldDescription(1, 2, L"First");
  const Register replica = Make({.replication = REPLICATE_DESCRIPTION});
  EXPECT_EQ(replica->OnCvarNotify(source, kEverything), S_OK);
  source->SetFieldDescription(3, 4, L"Second");
  EXPECT_EQ(replica->OnCvarNotify(source, kEverything), S_OK);
  EXPECT_EQ(Field(replica, 1).text, L"First");
  EXPECT_EQ(Field(replica, 3).text, L"Second");
}

TEST_F(RegisterTest, OffersItsInterface) {
  const Register cvar = Make();
  CComPtr<IVorCvarRegister> offered;
  EXPECT_EQ(cvar->QueryInterface(IID_IVorCvarRegister, reinterpret_cast<void**>(&offered)), S_OK);
  EXPECT_EQ(offered.p, static_cast<IVorCvarRegister*>(cvar.p));
}

}  // namespace
