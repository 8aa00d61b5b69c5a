#include "CCvarBitPattern.h"

#include <gtest/gtest.h>

#include <thread>
#include <utility>

#include "CvarObject.h"
#include "LiveCvars.h"
#include "ReadProperties.h"
#include "ReadText.h"
#include "RecordingListener.h"

namespace {

using cvars::test::RecordingListener;
using cvars::test::TextOf;

using Pattern = CComPtr<CvarObject<CCvarBitPattern>>;
using Masks = std::vector<NOTIFYTYPE>;

constexpr NOTIFYTYPE kRequestedAndValue = NOTIFY_REQUESTED | NOTIFY_VALUE;
constexpr NOTIFYTYPE kRangeAndValue = NOTIFY_RANGE | NOTIFY_VALUE;

struct Setup {
  const wchar_t* defaultValue = L"";
  int maxBits = 16;
  int numBits = 16;
  CVARBITPATTERNFORMAT format = BITPATTERN_FORMAT_BIN;
  const wchar_t* allowed = L"01X";
  unsigned padding = L'0';
  CVARBITPATTERNPADALIGN padAlign = BITPATTERN_PAD_LEFT;
  CVARBITPATTERNSIZEALIGN sizeAlign = BITPATTERN_SIZE_BIT_FIX;
  CVARFLAGS flags = CVARFLAGS(0);
};

void Initialize(const Pattern& cvar, const Setup& setup) {
  cvar->Initialize(L"Trigger Pattern|pattern", setup.defaultValue, setup.maxBits, setup.numBits,
                   setup.format, setup.allowed, setup.padding, setup.padAlign, setup.sizeAlign,
                   setup.flags, L"hint", 7, CVARREPLICATIONFLAGS(0x202));
}

Pattern Make(const Setup& setup = {}) {
  Pattern cvar = CvarObject<CCvarBitPattern>::Create();
  Initialize(cvar, setup);
  return cvar;
}

/// A pattern of a length.
Pattern MakeBits(int bits, const wchar_t* value = L"", const wchar_t* allowed = L"01X") {
  return Make({.defaultValue = value, .maxBits = bits, .numBits = bits, .allowed = allowed});
}

std::wstring Adapted(const Pattern& cvar) {
  return TextOf(*cvar, &IVorCvarBitPattern::GetAdaptedValue);
}
std::wstring Requested(const Pattern& cvar) {
  return TextOf(*cvar, &IVorCvarBitPattern::GetRequestedValue);
}
std::wstring RangeOf(const Pattern& cvar) { return TextOf(*cvar, &IVorCvar::get_Range); }
std::wstring Hexadecimal(const Pattern& cvar) {
  return TextOf(*cvar, &IVorCvarBitPattern::get_HexadecimalValue);
}
std::wstring Screen(const Pattern& cvar) {
  return TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen);
}

CComPtr<RecordingListener> Listen(const Pattern& cvar) {
  CComPtr<RecordingListener> listener = RecordingListener::Create();
  EXPECT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  return listener;
}

class BitPatternTest : public cvars::test::CvarTest {};

// Defaults ----------------------------------------------------------------------------------------

TEST_F(BitPatternTest, NewOneHasSixteenBitsOfNumbersAndDontCares) {
  const Pattern cvar = CvarObject<CCvarBitPattern>::Create();
  EXPECT_EQ(RangeOf(cvar),
            L"MaxBits=16 NumBits=16 NumBytes=2 AllowedBitValues=01X PaddingChar=0 PadAlign=Left "
            L"SizeAlign=BitFix Format=Ebin");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Type), L"BitPattern");
}

TEST_F(BitPatternTest, AnEmptyRequestAdaptsToSixteenZeros) {
  const Pattern cvar = CvarObject<CCvarBitPattern>::Create();
  EXPECT_EQ(cvar->SetRequestedValue(L""), S_OK);
  EXPECT_EQ(Adapted(cvar), L"0000000000000000");
}

TEST_F(BitPatternTest, InitializeConfiguresEverythingAndTellsNobody) {
  const Pattern cvar = CvarObject<CCvarBitPattern>::Create();
  const auto listener = Listen(cvar);
  Initialize(cvar, {.defaultValue = L"10",
                    .maxBits = 32,
                    .numBits = 8,
                    .format = BITPATTERN_FORMAT_HEX,
                    .allowed = L"01",
                    .padding = L'1',
                    .padAlign = BITPATTERN_PAD_RIGHT,
                    .sizeAlign = BITPATTERN_SIZE_BIT_FIX,
                    .flags = CVARFLAG_HIDDEN});
  EXPECT_EQ(listener->masks, Masks{});
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Name), L"Trigger Pattern");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_NameRemote), L"PATTERN");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetGuiHints), L"hint");
  EXPECT_EQ(TextOf(*cvar, &IVorCvarBitPattern::GetDefaultValue), L"10");
  EXPECT_EQ(Requested(cvar), L"10");
  EXPECT_EQ(Adapted(cvar), L"10111111");
  EXPECT_EQ(RangeOf(cvar),
            L"MaxBits=32 NumBits=8 NumBytes=1 AllowedBitValues=01 PaddingChar=1 PadAlign=Right "
            L"SizeAlign=BitFix Format=Ehex");
  unsigned int id = 0;
  EXPECT_EQ(cvar->get_HelpStringID(&id), S_OK);
  EXPECT_EQ(id, 7u);
  long flags = 0;
  EXPECT_EQ(cvar->get_Flags(&flags), S_OK);
  EXPECT_EQ(flags, 2);
  EXPECT_EQ(cvar->ReplicationFlags(), CVARREPLICATIONFLAGS(0x202));
  EXPECT_EQ(cvar->ForceNotification(NOTIFY_UNIT), S_OK);
  EXPECT_EQ(listener->masks, Masks{NOTIFY_UNIT}) << "nothing is left over";
}

TEST_F(BitPatternTest, ASecondInitializeOfAReadOnlyOneKeepsTheRequest) {
  const Pattern cvar = Make({.defaultValue = L"1", .maxBits = 4, .numBits = 4});
  cvar->SetReadOnly(1);
  Initialize(cvar, {.defaultValue = L"0", .maxBits = 4, .numBits = 4});
  EXPECT_EQ(Requested(cvar), L"1");
}

// Requests ----------------------------------------------------------------------------------------

TEST_F(BitPatternTest, PaddedOnTheLeftARequestLosesItsLeftmostBits) {
  const Pattern cvar = MakeBits(4);
  EXPECT_EQ(cvar->SetRequestedValue(L"110011"), S_OK);
  EXPECT_EQ(Adapted(cvar), L"0011");
  EXPECT_EQ(Requested(cvar), L"110011");
  EXPECT_EQ(cvar->SetRequestedValue(L"1"), S_OK);
  EXPECT_EQ(Adapted(cvar), L"0001");
}

TEST_F(BitPatternTest, PaddedOnTheRightARequestLosesItsRightmostBits) {
  const Pattern cvar = MakeBits(4);
  EXPECT_EQ(cvar->put_PadAlign(BITPATTERN_PAD_RIGHT), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(L"110011"), S_OK);
  EXPECT_EQ(Adapted(cvar), L"1100");
  EXPECT_EQ(cvar->SetRequestedValue(L"1"), S_OK);
  EXPECT_EQ(Adapted(cvar), L"1000");
}

TEST_F(BitPatternTest, BlanksAndCaseOfARequestDoNotCount) {
  const Pattern cvar = MakeBits(4);
  EXPECT_EQ(cvar->SetRequestedValue(L"1 0 1x"), S_OK);
  EXPECT_EQ(Requested(cvar), L"101X");
}

TEST_F(BitPatternTest, ACharacterThatIsNotAllowedIsRefusedAndChangesNothing) {
  const Pattern cvar = MakeBits(4, L"0110", L"01");
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->SetRequestedValue(L"1 0 1x"), E_INVALIDARG);
  EXPECT_EQ(Requested(cvar), L"0110");
  EXPECT_EQ(listener->masks, Masks{});
}

TEST_F(BitPatternTest, NullReadsAsEmpty) {
  const Pattern cvar = MakeBits(4, L"1111");
  EXPECT_EQ(cvar->SetRequestedValue(nullptr), S_OK);
  EXPECT_EQ(Adapted(cvar), L"0000");
}

TEST_F(BitPatternTest, AReadOnlyOneRefusesUnlessForced) {
  const Pattern cvar = MakeBits(4);
  cvar->SetReadOnly(1);
  EXPECT_EQ(cvar->SetRequestedValue(L"1"), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetRequestedValue(L"junk"), E_ACCESSDENIED);
  EXPECT_EQ(Adapted(cvar), L"0000");
  EXPECT_EQ(cvar->SetRequestedValue(L"1", true), S_OK);
  EXPECT_EQ(Adapted(cvar), L"0001");
}

TEST_F(BitPatternTest, NotifiesRequestAndValueOnceAndAnEqualRequestNobody) {
  const Pattern cvar = MakeBits(4);
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->SetRequestedValue(L"1"), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(L"01"), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(L"0 1"), S_OK);
  EXPECT_EQ(listener->masks, (Masks{kRequestedAndValue, NOTIFY_REQUESTED}));
}

TEST_F(BitPatternTest, GivesBackWhatTheListenersAnswer) {
  const Pattern cvar = MakeBits(4);
  const auto listener = RecordingListener::Create(E_UNEXPECTED);
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetRequestedValue(L"1"), E_UNEXPECTED);
  EXPECT_EQ(cvar->put_NumBits(3), E_UNEXPECTED);
}

TEST_F(BitPatternTest, ListenersRunOutsideTheLock) {
  const Pattern cvar = MakeBits(4);
  const auto listener = Listen(cvar);
  std::wstring seen;
  listener->onNotify = [&](IVorCvar*, NOTIFYTYPE) {
    std::jthread([&] { seen = Adapted(cvar); }).join();
  };
  EXPECT_EQ(cvar->SetRequestedValue(L"11"), S_OK);
  EXPECT_EQ(seen, L"0011");
}

TEST_F(BitPatternTest, EveryTextSetterEndsInTheRequest) {
  const Pattern cvar = MakeBits(4);
  EXPECT_EQ(cvar->SetRequestedValueFromString(L"1"), S_OK);
  EXPECT_EQ(Requested(cvar), L"1");
  EXPECT_EQ(cvar->SetRequestedValueFromStringScreen(L"1 0"), S_OK);
  EXPECT_EQ(Requested(cvar), L"10");
  EXPECT_EQ(cvar->SetRequestedValueFromStringRemote(L"x0"), S_OK);
  EXPECT_EQ(Requested(cvar), L"X0");
  EXPECT_EQ(cvar->SetRequestedValueFromStringRemote(L"2"), E_INVALIDARG);
}

// Length follows the request ----------------------------------------------------------------------

TEST_F(BitPatternTest, LengthInWholeBytesFollowsTheRequest) {
  const Pattern cvar = Make({.maxBits = 32,
                             .numBits = 8,
                             .padAlign = BITPATTERN_PAD_LEFT,
                             .sizeAlign = BITPATTERN_SIZE_BYTE_VAR});
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->SetRequestedValue(L"111111111"), S_OK);
  int bits = 0;
  EXPECT_EQ(cvar->get_NumBits(&bits), S_OK);
  EXPECT_EQ(bits, 16);
  EXPECT_EQ(Adapted(cvar), L"0000000111111111");
  EXPECT_EQ(listener->masks, Masks{kRequestedAndValue | NOTIFY_RANGE});
}

TEST_F(BitPatternTest, LengthInBitsFollowsTheRequest) {
  const Pattern cvar = Make({.maxBits = 32, .numBits = 8, .sizeAlign = BITPATTERN_SIZE_BIT_VAR});
  EXPECT_EQ(cvar->SetRequestedValue(L"111111111"), S_OK);
  int bits = 0;
  EXPECT_EQ(cvar->get_NumBits(&bits), S_OK);
  EXPECT_EQ(bits, 9);
  EXPECT_EQ(Adapted(cvar), L"111111111");
  EXPECT_EQ(cvar->SetRequestedValue(std::wstring(40, L'1').c_str()), S_OK);
  EXPECT_EQ(Adapted(cvar), std::wstring(32, L'1'));
}

TEST_F(BitPatternTest, MoreWholeBytesThanCountAreRefusedButTheRequestStays) {
  const Pattern cvar =
      Make({.maxBits = 32767, .numBits = 8, .sizeAlign = BITPATTERN_SIZE_BYTE_VAR});
  const std::wstring longest(32760, L'1');
  EXPECT_EQ(cvar->SetRequestedValue(longest.c_str()), S_OK);
  EXPECT_EQ(Adapted(cvar).size(), 32760u);
  const auto listener = Listen(cvar);
  const std::wstring tooLong(32761, L'1');
  EXPECT_EQ(cvar->SetRequestedValue(tooLong.c_str()), E_INVALIDARG);
  EXPECT_EQ(Requested(cvar), tooLong);
  EXPECT_EQ(Adapted(cvar), longest);
  EXPECT_EQ(listener->masks, Masks{});
}

// Default -----------------------------------------------------------------------------------------

TEST_F(BitPatternTest, DefaultIsStoredAsWrittenAndNotifiesOnce) {
  const Pattern cvar = MakeBits(4);
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->SetDefaultValue(L"1 x"), S_OK);
  EXPECT_EQ(cvar->SetDefaultValue(L"1 x"), S_FALSE);
  EXPECT_EQ(TextOf(*cvar, &IVorCvarBitPattern::GetDefaultValue), L"1 x");
  EXPECT_EQ(listener->masks, Masks{NOTIFY_ATTRIBUTES});
  EXPECT_EQ(cvar->SetDefaultValue(L"1 X"), S_OK) << "case counts";
}

TEST_F(BitPatternTest, SetToDefaultRequestsTheDefault) {
  const Pattern cvar = MakeBits(4, L"1 x");
  EXPECT_EQ(cvar->SetRequestedValue(L"0"), S_OK);
  EXPECT_EQ(cvar->SetToDefault(), S_OK);
  EXPECT_EQ(Requested(cvar), L"1X");
  cvar->SetReadOnly(1);
  EXPECT_EQ(cvar->SetToDefault(), E_ACCESSDENIED);
}

TEST_F(BitPatternTest, KnowsWhetherItIsDefaultAndWhetherItWasAdapted) {
  const Pattern cvar = MakeBits(4, L"0101");
  int answer = 55;
  EXPECT_EQ(cvar->IsDefault(&answer), S_OK);
  EXPECT_EQ(answer, 1);
  EXPECT_EQ(cvar->get_IsValueAdapted(&answer), S_OK);
  EXPECT_EQ(answer, 0);
  EXPECT_EQ(cvar->SetRequestedValue(L"1"), S_OK);
  EXPECT_EQ(cvar->IsDefault(&answer), S_OK);
  EXPECT_EQ(answer, 0);
  EXPECT_EQ(cvar->get_IsValueAdapted(&answer), S_OK);
  EXPECT_EQ(answer, 1);
}

// Variants ----------------------------------------------------------------------------------------

TEST_F(BitPatternTest, TakesTextVariantsOnly) {
  const Pattern cvar = MakeBits(4);
  EXPECT_EQ(cvar->put_Value(CComVariant(L"1x")), S_OK);
  EXPECT_EQ(Requested(cvar), L"1X");
  EXPECT_EQ(cvar->put_Value(CComVariant(1)), E_INVALIDARG);
  EXPECT_EQ(cvar->put_Value(CComVariant()), E_INVALIDARG);
  EXPECT_EQ(Requested(cvar), L"1X");
}

TEST_F(BitPatternTest, GivesItsTextOrTheNumberThatTheCallerPreset) {
  const Pattern cvar = MakeBits(8, L"1011");
  CComVariant value;
  EXPECT_EQ(cvar->get_Value(&value), S_OK);
  EXPECT_EQ(value.vt, VT_BSTR);
  EXPECT_STREQ(value.bstrVal, L"00001011");
  CComVariant number(55);
  EXPECT_EQ(cvar->get_Value(&number), S_OK);
  EXPECT_EQ(number.vt, VT_I4);
  EXPECT_EQ(number.lVal, 11);
  EXPECT_EQ(cvar->SetRequestedValue(L"1X"), S_OK);
  EXPECT_EQ(cvar->get_Value(&number), E_INVALIDARG);
  EXPECT_EQ(number.lVal, 11) << "untouched";
  EXPECT_EQ(cvar->get_Value(nullptr), E_POINTER);
}

TEST_F(BitPatternTest, GivesTheRequestAsATextVariant) {
  const Pattern cvar = MakeBits(8, L"1011");
  CComVariant value;
  EXPECT_EQ(cvar->GetRequestedVariantValue(&value), S_OK);
  EXPECT_EQ(value.vt, VT_BSTR);
  EXPECT_STREQ(value.bstrVal, L"1011");
  EXPECT_EQ(cvar->GetRequestedVariantValue(nullptr), E_POINTER);
}

// Numbers -----------------------------------------------------------------------------------------

TEST_F(BitPatternTest, DecimalIsTheUnsignedNumber) {
  const Pattern cvar = MakeBits(32, L"11111111111111111111111111111110", L"01");
  int value = 0;
  EXPECT_EQ(cvar->get_DecimalValue(&value), S_OK);
  EXPECT_EQ(value, -2) << "32 bits in the 32 bits of the result";
  EXPECT_EQ(cvar->SetRequestedValue(L"1110"), S_OK);
  EXPECT_EQ(cvar->get_DecimalValue(&value), S_OK);
  EXPECT_EQ(value, 14);
}

TEST_F(BitPatternTest, DecimalOfMoreThan32CharactersOrOfOtherBitsIsRefused) {
  int value = 55;
  EXPECT_EQ(MakeBits(33, L"1")->get_DecimalValue(&value), E_INVALIDARG);
  EXPECT_EQ(MakeBits(33, L"1")->GetSignedDecimalValue(&value), E_INVALIDARG);
  EXPECT_EQ(MakeBits(4, L"X1")->get_DecimalValue(&value), E_INVALIDARG);
  EXPECT_EQ(MakeBits(4, L"X1")->GetSignedDecimalValue(&value), E_INVALIDARG);
  EXPECT_EQ(value, 55);
}

TEST_F(BitPatternTest, SignedDecimalExtendsTheSignFromTheLength) {
  int value = 0;
  const Pattern four = MakeBits(4, L"1110");
  EXPECT_EQ(four->GetSignedDecimalValue(&value), S_OK);
  EXPECT_EQ(value, -2);
  const Pattern all = MakeBits(32, L"10000000000000000000000000000000");
  EXPECT_EQ(all->GetSignedDecimalValue(&value), S_OK);
  EXPECT_EQ(value, -1) << "meant";
  const Pattern none = MakeBits(0);
  EXPECT_EQ(none->GetSignedDecimalValue(&value), S_OK);
  EXPECT_EQ(value, 0);
}

TEST_F(BitPatternTest, WritesADecimalAs32BitsThatThePaddingSideCuts) {
  const Pattern left = MakeBits(8);
  EXPECT_EQ(left->put_DecimalValue(5), S_OK);
  EXPECT_EQ(Adapted(left), L"00000101");
  EXPECT_EQ(Requested(left), L"00000000000000000000000000000101");
  const Pattern right = MakeBits(8);
  EXPECT_EQ(right->put_PadAlign(BITPATTERN_PAD_RIGHT), S_OK);
  EXPECT_EQ(right->put_DecimalValue(5), S_OK);
  EXPECT_EQ(Adapted(right), L"00000000");
  EXPECT_EQ(left->put_DecimalValue(-1), S_OK);
  EXPECT_EQ(Adapted(left), L"11111111");
}

TEST_F(BitPatternTest, ReadsHexadecimal) {
  EXPECT_EQ(Hexadecimal(MakeBits(3, L"101")), L"5");
  EXPECT_EQ(Hexadecimal(MakeBits(8, L"XXXX0001")), L"X1");
  EXPECT_EQ(Hexadecimal(MakeBits(4, L"X001")), L"$");
  EXPECT_EQ(Hexadecimal(MakeBits(4, L"BFR1", L"01BFR")), L"$");
  const Pattern right = MakeBits(3, L"101");
  EXPECT_EQ(right->put_PadAlign(BITPATTERN_PAD_RIGHT), S_OK);
  EXPECT_EQ(Hexadecimal(right), L"A");
}

TEST_F(BitPatternTest, HexadecimalOfPaddingThatIsNotAllowedIsRefused) {
  const Pattern cvar = MakeBits(4, L"", nullptr);
  EXPECT_EQ(Adapted(cvar), L"0000");
  BSTR text = nullptr;
  EXPECT_EQ(cvar->get_HexadecimalValue(&text), E_INVALIDARG);
  EXPECT_EQ(text, nullptr);
}

TEST_F(BitPatternTest, WritesHexadecimal) {
  const Pattern cvar = MakeBits(16);
  EXPECT_EQ(cvar->put_HexadecimalValue(L"a5x"), S_OK);
  EXPECT_EQ(Requested(cvar), L"10100101XXXX");
  EXPECT_EQ(cvar->put_HexadecimalValue(L"g"), E_INVALIDARG);
  EXPECT_EQ(cvar->put_HexadecimalValue(L"A 5"), E_INVALIDARG);
  EXPECT_EQ(Requested(cvar), L"10100101XXXX");
  EXPECT_EQ(cvar->put_HexadecimalValue(nullptr), S_OK);
  EXPECT_EQ(Requested(cvar), L"");
}

TEST_F(BitPatternTest, HexadecimalXIsRefusedWhereItIsNotAllowed) {
  const Pattern cvar = MakeBits(16, L"1", L"01");
  EXPECT_EQ(cvar->put_HexadecimalValue(L"x"), E_INVALIDARG);
  EXPECT_EQ(Requested(cvar), L"1");
  EXPECT_EQ(cvar->put_AllowedBitValues(L"x01"), S_OK);
  EXPECT_EQ(cvar->put_HexadecimalValue(L"x"), S_OK);
  EXPECT_EQ(Requested(cvar), L"XXXX");
}

TEST_F(BitPatternTest, MinimumAndMaximumExistForBinaryPatternsOnly) {
  const Pattern binary = MakeBits(4, L"", L"10");
  EXPECT_EQ(TextOf(*binary, &IVorCvarBitPattern::get_MinValue), L"0000");
  EXPECT_EQ(TextOf(*binary, &IVorCvarBitPattern::get_MaxValue), L"1111");
  EXPECT_EQ(binary->SetToMax(), S_OK);
  EXPECT_EQ(Requested(binary), L"1111");
  EXPECT_EQ(binary->SetToMin(), S_OK);
  EXPECT_EQ(Requested(binary), L"0000");
  const Pattern other = MakeBits(4, L"11");
  EXPECT_EQ(TextOf(*other, &IVorCvarBitPattern::get_MinValue), L"");
  EXPECT_EQ(TextOf(*other, &IVorCvarBitPattern::get_MaxValue), L"");
  EXPECT_EQ(other->SetToMax(), S_OK);
  EXPECT_EQ(Requested(other), L"");
}

TEST_F(BitPatternTest, MinimumAndMaximumRefuseNullAsAnInvalidArgumentAndThatIsMeant) {
  const Pattern cvar = MakeBits(4);
  EXPECT_EQ(cvar->get_MinValue(nullptr), E_INVALIDARG);
  EXPECT_EQ(cvar->get_MaxValue(nullptr), E_INVALIDARG);
}

// Texts -------------------------------------------------------------------------------------------

TEST_F(BitPatternTest, ScreenGroupsEightBitsOrShowsHexadecimal) {
  const Pattern cvar = MakeBits(10, L"1111000011");
  EXPECT_EQ(Screen(cvar), L"11 11000011");
  EXPECT_EQ(cvar->put_Format(BITPATTERN_FORMAT_HEX), S_OK);
  EXPECT_EQ(Screen(cvar), L"3C3");
  EXPECT_EQ(Screen(MakeBits(8, L"11110000")), L"11110000");
}

TEST_F(BitPatternTest, RemoteAndAutomationTextsAreNotGrouped) {
  const Pattern cvar = MakeBits(10, L"xx11000011");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemote), L"XX11000011");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemoteNoUnit), L"XX11000011");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringAutomation), L"XX11000011");
}

TEST_F(BitPatternTest, LateUpdateRunsBeforeTheTypedReadAndTheRemoteText) {
  const Pattern cvar = MakeBits(4);
  cvar->SetFlags(CVARFLAG_LATEUPDATE, true);
  const auto listener = Listen(cvar);
  (void)Adapted(cvar);
  (void)TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemote);
  (void)Requested(cvar);
  (void)Screen(cvar);
  EXPECT_EQ(listener->masks, (Masks{NOTIFY_LATEUPDATE, NOTIFY_LATEUPDATE}));
}

TEST_F(BitPatternTest, SignatureNamesTheMaximumLength) {
  const Pattern cvar = Make({.defaultValue = L"1x", .maxBits = 8, .numBits = 4});
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Signature),
            L"Type,BitPattern,Request,1X,Adapt,001X,Default,1x,MaxLen,8,Flags,-");
}

TEST_F(BitPatternTest, PropertiesAddTheValuesAndTheMaximumLength) {
  const Pattern cvar = Make({.defaultValue = L"1x", .maxBits = 16, .numBits = 10});
  EXPECT_EQ(cvars::test::OwnPropertiesOf(*cvar),
            (cvars::test::Properties{{L"AdaptedValue", VT_BSTR, L"000000001X"},
                                     {L"AdaptedValueStringScreen", VT_BSTR, L"00 0000001X"},
                                     {L"Default", VT_BSTR, L"1x"},
                                     {L"MaxBits", VT_I4, L"16"},
                                     {L"RequestedValue", VT_BSTR, L"1X"}}));
}

// Range -------------------------------------------------------------------------------------------

TEST_F(BitPatternTest, AllowedSetIsTakenInAnyCaseAndOrder) {
  const Pattern cvar = MakeBits(4);
  EXPECT_EQ(cvar->put_AllowedBitValues(L"10"), S_OK);
  EXPECT_EQ(TextOf(*cvar, &IVorCvarBitPattern::get_AllowedBitValues), L"01");
  EXPECT_EQ(cvar->put_AllowedBitValues(L"rx 1?0"), S_OK);
  EXPECT_EQ(TextOf(*cvar, &IVorCvarBitPattern::get_AllowedBitValues), L"01RX");
  EXPECT_EQ(cvar->put_AllowedBitValues(L"XR01"), S_FALSE);
}

TEST_F(BitPatternTest, NarrowingTheSetMovesThePaddingAndReplacesTheWholeValue) {
  const Pattern cvar = Make({.defaultValue = L"11", .maxBits = 4, .numBits = 4, .padding = L'X'});
  EXPECT_EQ(Adapted(cvar), L"XX11");
  EXPECT_EQ(cvar->SetRequestedValue(L"X111"), S_OK);
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->put_AllowedBitValues(L"10"), S_OK);
  unsigned padding = 0;
  EXPECT_EQ(cvar->get_PaddingChar(&padding), S_OK);
  EXPECT_EQ(padding, unsigned{L'0'});
  EXPECT_EQ(Adapted(cvar), L"0000");
  EXPECT_EQ(Requested(cvar), L"X111");
  EXPECT_EQ(listener->masks, Masks{kRangeAndValue});
}

TEST_F(BitPatternTest, AnEmptySetLeavesThePadding) {
  const Pattern cvar = Make({.defaultValue = L"1", .maxBits = 4, .numBits = 4, .padding = L'1'});
  EXPECT_EQ(cvar->put_AllowedBitValues(nullptr), S_OK);
  EXPECT_EQ(TextOf(*cvar, &IVorCvarBitPattern::get_AllowedBitValues), L"");
  unsigned padding = 0;
  EXPECT_EQ(cvar->get_PaddingChar(&padding), S_OK);
  EXPECT_EQ(padding, unsigned{L'1'});
  EXPECT_EQ(Adapted(cvar), L"1111");
  EXPECT_EQ(cvar->put_PaddingChar(L'0'), S_FALSE);
  EXPECT_EQ(cvar->SetRequestedValue(L"1"), E_INVALIDARG);
  EXPECT_EQ(cvar->SetRequestedValue(L" "), S_OK);
}

struct RangeRow {
  const char* name;
  HRESULT (*set)(CCvarBitPattern& cvar);
  HRESULT result;
  const wchar_t* range;  // null: as before
};
constexpr RangeRow kRangeRows[] = {
    {"MaxBitsRaisesTheLength", [](CCvarBitPattern& c) { return c.put_MaxNumBits(20); }, S_OK,
     L"MaxBits=20 NumBits=20 NumBytes=3 AllowedBitValues=01X PaddingChar=0 PadAlign=Left "
     L"SizeAlign=BitFix Format=Ebin"},
    {"MaxBitsLowersTheLength", [](CCvarBitPattern& c) { return c.put_MaxNumBits(0); }, S_OK,
     L"MaxBits=0 NumBits=0 NumBytes=0 AllowedBitValues=01X PaddingChar=0 PadAlign=Left "
     L"SizeAlign=BitFix Format=Ebin"},
    {"MaxBitsTheSame", [](CCvarBitPattern& c) { return c.put_MaxNumBits(16); }, S_FALSE, nullptr},
    {"MaxBitsAbove32767", [](CCvarBitPattern& c) { return c.put_MaxNumBits(32768); }, E_INVALIDARG,
     nullptr},
    {"MaxBitsNegative", [](CCvarBitPattern& c) { return c.put_MaxNumBits(-1); }, E_INVALIDARG,
     nullptr},
    {"NumBits", [](CCvarBitPattern& c) { return c.put_NumBits(9); }, S_OK,
     L"MaxBits=16 NumBits=9 NumBytes=2 AllowedBitValues=01X PaddingChar=0 PadAlign=Left "
     L"SizeAlign=BitFix Format=Ebin"},
    {"NumBitsTheSame", [](CCvarBitPattern& c) { return c.put_NumBits(8); }, S_FALSE, nullptr},
    {"NumBitsAboveTheMaximumAreCut", [](CCvarBitPattern& c) { return c.put_NumBits(99); }, S_OK,
     L"MaxBits=16 NumBits=16 NumBytes=2 AllowedBitValues=01X PaddingChar=0 PadAlign=Left "
     L"SizeAlign=BitFix Format=Ebin"},
    {"NumBitsAbove32767", [](CCvarBitPattern& c) { return c.put_NumBits(32768); }, E_INVALIDARG,
     nullptr},
    {"NumBitsNegative", [](CCvarBitPattern& c) { return c.put_NumBits(-1); }, E_INVALIDARG,
     nullptr},
    {"NumBytes", [](CCvarBitPattern& c) { return c.put_NumBytes(2); }, S_OK,
     L"MaxBits=16 NumBits=16 NumBytes=2 AllowedBitValues=01X PaddingChar=0 PadAlign=Left "
     L"SizeAlign=BitFix Format=Ebin"},
    {"NumBytesTheSame", [](CCvarBitPattern& c) { return c.put_NumBytes(1); }, S_FALSE, nullptr},
    {"NumBytes4095AreCut", [](CCvarBitPattern& c) { return c.put_NumBytes(4095); }, S_OK,
     L"MaxBits=16 NumBits=16 NumBytes=2 AllowedBitValues=01X PaddingChar=0 PadAlign=Left "
     L"SizeAlign=BitFix Format=Ebin"},
    {"NumBytes4096", [](CCvarBitPattern& c) { return c.put_NumBytes(4096); }, E_INVALIDARG,
     nullptr},
    {"NumBytesNegative", [](CCvarBitPattern& c) { return c.put_NumBytes(-1); }, E_INVALIDARG,
     nullptr},
    {"Format", [](CCvarBitPattern& c) { return c.put_Format(BITPATTERN_FORMAT_HEX); }, S_OK,
     L"MaxBits=16 NumBits=8 NumBytes=1 AllowedBitValues=01X PaddingChar=0 PadAlign=Left "
     L"SizeAlign=BitFix Format=Ehex"},
    {"FormatTheSame", [](CCvarBitPattern& c) { return c.put_Format(BITPATTERN_FORMAT_BIN); },
     S_FALSE, nullptr},
    {"FormatUnknown", [](CCvarBitPattern& c) { return c.put_Format(CVARBITPATTERNFORMAT(2)); },
     E_INVALIDARG, nullptr},
    {"FormatNegative",
     [](CCvarBitPattern& c) { return c.put_Format(CVARBITPATTERNFORMAT(0xFFFFFFFF)); },
     E_INVALIDARG, nullptr},
    {"PadAlign", [](CCvarBitPattern& c) { return c.put_PadAlign(BITPATTERN_PAD_RIGHT); }, S_OK,
     L"MaxBits=16 NumBits=8 NumBytes=1 AllowedBitValues=01X PaddingChar=0 PadAlign=Right "
     L"SizeAlign=BitFix Format=Ebin"},
    {"PadAlignUnknown",
     [](CCvarBitPattern& c) { return c.put_PadAlign(CVARBITPATTERNPADALIGN(2)); }, E_INVALIDARG,
     nullptr},
    {"SizeAlignByte", [](CCvarBitPattern& c) { return c.put_SizeAlign(BITPATTERN_SIZE_BYTE_VAR); },
     S_OK,
     L"MaxBits=16 NumBits=8 NumBytes=1 AllowedBitValues=01X PaddingChar=0 PadAlign=Left "
     L"SizeAlign=ByteVar Format=Ebin"},
    {"SizeAlignBit", [](CCvarBitPattern& c) { return c.put_SizeAlign(BITPATTERN_SIZE_BIT_VAR); },
     S_OK,
     L"MaxBits=16 NumBits=8 NumBytes=1 AllowedBitValues=01X PaddingChar=0 PadAlign=Left "
     L"SizeAlign=BitVar Format=Ebin"},
    {"SizeAlignUnknown",
     [](CCvarBitPattern& c) { return c.put_SizeAlign(CVARBITPATTERNSIZEALIGN(3)); }, E_INVALIDARG,
     nullptr},
    {"Padding", [](CCvarBitPattern& c) { return c.put_PaddingChar(L'X'); }, S_OK,
     L"MaxBits=16 NumBits=8 NumBytes=1 AllowedBitValues=01X PaddingChar=X PadAlign=Left "
     L"SizeAlign=BitFix Format=Ebin"},
    {"PaddingTheSame", [](CCvarBitPattern& c) { return c.put_PaddingChar(L'0'); }, S_FALSE,
     nullptr},
    {"PaddingNotAllowedIsTheFirstAllowedOne",
     [](CCvarBitPattern& c) { return c.put_PaddingChar(L'B'); }, S_FALSE, nullptr},
    {"PaddingLowerCase", [](CCvarBitPattern& c) { return c.put_PaddingChar(L'x'); }, E_INVALIDARG,
     nullptr},
    {"PaddingZero", [](CCvarBitPattern& c) { return c.put_PaddingChar(0); }, E_INVALIDARG, nullptr},
    {"PaddingAbove16Bits", [](CCvarBitPattern& c) { return c.put_PaddingChar(0x10000 + L'1'); },
     E_INVALIDARG, nullptr},
};

TEST_F(BitPatternTest, EverySetterOfTheRangeChecksComparesAndStores) {
  for (const RangeRow& row : kRangeRows) {
    SCOPED_TRACE(row.name);
    const Pattern cvar = Make({.numBits = 8});
    const std::wstring before = RangeOf(cvar);
    const auto listener = Listen(cvar);
    EXPECT_EQ(row.set(*cvar), row.result);
    EXPECT_EQ(RangeOf(cvar), row.range == nullptr ? before : row.range);
    EXPECT_EQ(listener->masks.size(), row.result == S_OK ? 1u : 0u);
    for (const NOTIFYTYPE mask : listener->masks) EXPECT_EQ(mask & NOTIFY_RANGE, NOTIFY_RANGE);
  }
}

TEST_F(BitPatternTest, ReadsItsRangeBack) {
  const Pattern cvar = Make({.maxBits = 32,
                             .numBits = 9,
                             .format = BITPATTERN_FORMAT_HEX,
                             .padding = L'X',
                             .padAlign = BITPATTERN_PAD_RIGHT,
                             .sizeAlign = BITPATTERN_SIZE_BYTE_VAR});
  int number = 0;
  unsigned character = 0;
  CVARBITPATTERNFORMAT format{};
  CVARBITPATTERNPADALIGN padAlign{};
  CVARBITPATTERNSIZEALIGN sizeAlign{};
  EXPECT_EQ(cvar->get_MaxNumBits(&number), S_OK);
  EXPECT_EQ(number, 32);
  EXPECT_EQ(cvar->get_NumBits(&number), S_OK);
  EXPECT_EQ(number, 9);
  EXPECT_EQ(cvar->get_NumBytes(&number), S_OK);
  EXPECT_EQ(number, 2);
  EXPECT_EQ(cvar->get_Format(&format), S_OK);
  EXPECT_EQ(format, BITPATTERN_FORMAT_HEX);
  EXPECT_EQ(cvar->get_PaddingChar(&character), S_OK);
  EXPECT_EQ(character, unsigned{L'X'});
  EXPECT_EQ(cvar->get_PadAlign(&padAlign), S_OK);
  EXPECT_EQ(padAlign, BITPATTERN_PAD_RIGHT);
  EXPECT_EQ(cvar->get_SizeAlign(&sizeAlign), S_OK);
  EXPECT_EQ(sizeAlign, BITPATTERN_SIZE_BYTE_VAR);
}

TEST_F(BitPatternTest, SetRangePassesOverWhatIsOutOfBounds) {
  const Pattern cvar = Make({.defaultValue = L"1", .numBits = 8});
  const std::wstring before = RangeOf(cvar);
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->SetRange(L"1", 32768, 32768, CVARBITPATTERNFORMAT(2), L"01X", L'x',
                           CVARBITPATTERNPADALIGN(2), CVARBITPATTERNSIZEALIGN(3), nullptr, 0),
            S_OK);
  EXPECT_EQ(cvar->SetRange(L"1", -1, -1, CVARBITPATTERNFORMAT(2), L"01X", 0,
                           CVARBITPATTERNPADALIGN(2), CVARBITPATTERNSIZEALIGN(3), nullptr, 0),
            S_OK);
  EXPECT_EQ(RangeOf(cvar), before);
  EXPECT_EQ(listener->masks, Masks{});
}

TEST_F(BitPatternTest, SetRangeNotifiesADefaultAsARangeAndNotAsAnAttribute) {
  const Pattern cvar = Make({.defaultValue = L"1", .numBits = 8});
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->SetRange(L"0", 16, 8, BITPATTERN_FORMAT_BIN, L"01X", L'0', BITPATTERN_PAD_LEFT,
                           BITPATTERN_SIZE_BIT_FIX, nullptr, 0),
            S_OK);
  EXPECT_EQ(listener->masks, Masks{NOTIFY_RANGE});
  EXPECT_EQ(TextOf(*cvar, &IVorCvarBitPattern::GetDefaultValue), L"0");
}

TEST_F(BitPatternTest, SetRangeTellsHintsAtOnceAndHelpAtTheEndWithoutARangeChange) {
  const Pattern cvar = Make({.defaultValue = L"1", .numBits = 8});
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->SetRange(L"1", 16, 8, BITPATTERN_FORMAT_BIN, L"01X", L'0', BITPATTERN_PAD_LEFT,
                           BITPATTERN_SIZE_BIT_FIX, L"new hint", 8),
            S_OK);
  EXPECT_EQ(listener->masks, (Masks{NOTIFY_GUIHINTS, NOTIFY_ATTRIBUTES}));
}

// What a pattern does not have --------------------------------------------------------------------

TEST_F(BitPatternTest, HasNoPositionInARange) {
  const Pattern cvar = MakeBits(4, L"11");
  const auto listener = Listen(cvar);
  EXPECT_EQ(cvar->Increment(1), S_OK);
  EXPECT_EQ(cvar->SetRequestedValueNorm(0.5), S_OK);
  double position = 55;
  EXPECT_EQ(cvar->GetAdaptedValueNorm(&position), S_OK);
  EXPECT_EQ(position, 0.0);
  EXPECT_EQ(Adapted(cvar), L"0011");
  EXPECT_EQ(listener->masks, Masks{});
}

TEST_F(BitPatternTest, NullOutPointersAreRefused) {
  const Pattern cvar = MakeBits(4);
  IVorCvarBitPattern& pattern = *cvar;
  EXPECT_EQ(pattern.GetAdaptedValue(nullptr), E_POINTER);
  EXPECT_EQ(pattern.GetDefaultValue(nullptr), E_POINTER);
  EXPECT_EQ(pattern.GetRequestedValue(nullptr), E_POINTER);
  EXPECT_EQ(pattern.get_DecimalValue(nullptr), E_POINTER);
  EXPECT_EQ(pattern.GetSignedDecimalValue(nullptr), E_POINTER);
  EXPECT_EQ(pattern.get_HexadecimalValue(nullptr), E_POINTER);
  EXPECT_EQ(pattern.get_NumBits(nullptr), E_POINTER);
  EXPECT_EQ(pattern.get_NumBytes(nullptr), E_POINTER);
  EXPECT_EQ(pattern.get_MaxNumBits(nullptr), E_POINTER);
  EXPECT_EQ(pattern.get_Format(nullptr), E_POINTER);
  EXPECT_EQ(pattern.get_AllowedBitValues(nullptr), E_POINTER);
  EXPECT_EQ(pattern.get_PaddingChar(nullptr), E_POINTER);
  EXPECT_EQ(pattern.get_PadAlign(nullptr), E_POINTER);
  EXPECT_EQ(pattern.get_SizeAlign(nullptr), E_POINTER);
  EXPECT_EQ(pattern.get_Range(nullptr), E_POINTER);
  EXPECT_EQ(pattern.get_Signature(nullptr), E_POINTER);
  EXPECT_EQ(pattern.GetAdaptedValueStringScreen(nullptr), E_POINTER);
  EXPECT_EQ(pattern.GetAdaptedValueStringRemote(nullptr), E_POINTER);
  EXPECT_EQ(pattern.GetAdaptedValueNorm(nullptr), E_POINTER);
  EXPECT_EQ(pattern.IsDefault(nullptr), E_POINTER);
  EXPECT_EQ(pattern.get_IsValueAdapted(nullptr), E_POINTER);
}

TEST_F(BitPatternTest, OffersItsInterface) {
  const Pattern cvar = MakeBits(4);
  CComPtr<IVorCvarBitPattern> pattern;
  EXPECT_EQ(cvar->QueryInterface(IID_IVorCvarBitPattern, reinterpret_cast<void**>(&pattern)), S_OK);
  EXPECT_EQ(pattern.p, static_cast<IVorCvarBitPattern*>(cvar.p));
}

TEST_F(BitPatternTest, ReplicatesItsRequest) {
  const Pattern source = MakeBits(4, L"10");
  const Pattern replica = MakeBits(4);
  EXPECT_EQ(replica->StartCvarReplication(source, true, 0x1, NOTIFYTYPE(~0u)), S_OK);
  EXPECT_EQ(Adapted(replica), L"0010");
  EXPECT_EQ(source->SetRequestedValue(L"x1"), S_OK);
  EXPECT_EQ(Adapted(replica), L"00X1");
  EXPECT_EQ(replica->StopAllCvarReplication(), S_OK);
}

}  // namespace
