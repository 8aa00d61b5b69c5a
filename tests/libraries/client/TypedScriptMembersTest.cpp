// Cvars of every class as scripts see them: the members of their own, by name.

#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "Cvars.h"
#include "IsolatedHome.h"
#include "LiveCvars.h"
#include "RecordingListener.h"
#include "ScriptCall.h"

namespace {

using cvars::test::CallByName;
using Arguments = std::vector<CComVariant>;

constexpr CVARREPLICATIONFLAGS kReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;

/// Reads a property, or what a method gives back, as text.
template <class Cvar>
std::wstring Read(const Cvar& cvar, const wchar_t* name, const Arguments& arguments = {}) {
  CComVariant value;
  const HRESULT read =
      CallByName(*cvar->GetIVorCvar(), name, DISPATCH_PROPERTYGET, arguments, &value);
  EXPECT_EQ(read, S_OK) << std::string(name, name + std::wcslen(name));
  EXPECT_EQ(value.ChangeType(VT_BSTR), S_OK) << std::string(name, name + std::wcslen(name));
  return value.vt == VT_BSTR && value.bstrVal != nullptr ? value.bstrVal : L"";
}
template <class Cvar>
VARTYPE TypeOf(const Cvar& cvar, const wchar_t* name) {
  CComVariant value;
  EXPECT_EQ(CallByName(*cvar->GetIVorCvar(), name, DISPATCH_PROPERTYGET, {}, &value), S_OK);
  return value.vt;
}
template <class Cvar>
HRESULT Put(const Cvar& cvar, const wchar_t* name, const CComVariant& value) {
  return CallByName(*cvar->GetIVorCvar(), name, DISPATCH_PROPERTYPUT, {value});
}
template <class Cvar>
HRESULT Call(const Cvar& cvar, const wchar_t* name, const Arguments& arguments = {}) {
  return CallByName(*cvar->GetIVorCvar(), name, DISPATCH_METHOD, arguments);
}

struct ReadCase {
  const wchar_t* name;
  const wchar_t* text;
};
template <class Cvar, std::size_t kCount>
void ExpectReads(const Cvar& cvar, const ReadCase (&rows)[kCount]) {
  for (const ReadCase& row : rows) {
    EXPECT_EQ(Read(cvar, row.name), row.text)
        << std::string(row.name, row.name + std::wcslen(row.name));
  }
}

class TypedScriptMembers : public cvars::test::CvarTest {
 private:
  cvars::test::IsolatedHome m_home;
};

// Seven points: 1, 2, 5, 10, 20, 50, 100.
TEST_F(TypedScriptMembers, OfALockstep) {
  const auto cvar = CvarObject<CCvarDoubleLockstep>::Create();
  cvar->Initialize(L"Scale", 5, 1, 100, LOCKSTEP(4), L"", 1, CVARFLAGS(0), nullptr, 0,
                   kReplication);
  ExpectReads(cvar, {{L"Type", L"DoubleLockstep"},
                     {L"Value", L"5"},
                     {L"Default", L"5"},
                     {L"Min", L"1"},
                     {L"Max", L"100"},
                     {L"CoarseGrain", L"0"},
                     {L"NumberOfIncrement", L"6"},
                     {L"Lockstep", L"4"},
                     {L"FineGrainAllowed", L"1"},
                     {L"FineGrainOn", L"0"}});
  EXPECT_EQ(Call(cvar, L"IncrementFine", {CComVariant(1)}), S_FALSE);
  EXPECT_EQ(Put(cvar, L"Value", CComVariant(3)), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"2");  // 3 is 1.5 times 2, and 5 is more than that of 3
  EXPECT_EQ(Call(cvar, L"Increment", {CComVariant(1)}), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"5");

  EXPECT_EQ(Put(cvar, L"Lockstep", CComVariant(10)), S_OK);  // 1, 2, 10
  EXPECT_EQ(Read(cvar, L"Lockstep"), L"10");
  EXPECT_EQ(Read(cvar, L"Value"), L"10");  // 5 is 2.5 times 2 and half of 10
  EXPECT_EQ(Put(cvar, L"Lockstep", CComVariant(10)), S_FALSE);
  EXPECT_EQ(Put(cvar, L"Lockstep", CComVariant(99)), S_OK);
  EXPECT_EQ(Read(cvar, L"Lockstep"), L"12");

  // 1, 5, 10: upward from 10 a fine step is a hundredth of 50.
  EXPECT_EQ(Put(cvar, L"FineGrainOn", CComVariant(1)), S_OK);
  EXPECT_EQ(Put(cvar, L"Value", CComVariant(10)), S_OK);
  EXPECT_EQ(Call(cvar, L"IncrementFine", {CComVariant(2)}), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"11");
  EXPECT_EQ(Put(cvar, L"FineGrainAllowed", CComVariant(0)), S_OK);
  EXPECT_EQ(Read(cvar, L"FineGrainOn"), L"1");
  EXPECT_EQ(Read(cvar, L"Value"), L"10");
}

TEST_F(TypedScriptMembers, OfASetOfDoubles) {
  const auto cvar = CvarObject<CCvarDoubleSet>::Create();
  cvar->Initialize(L"Rate", 2, {1, 2, 5}, ADAPT_DOWN, 0, false, 0, L"", CVARFLAGS(0), nullptr, 0,
                   kReplication);
  ExpectReads(cvar,
              {{L"Type", L"Double"}, {L"Value", L"2"}, {L"Default", L"2"}, {L"Range", L"1,2,5"}});
  EXPECT_EQ(Put(cvar, L"Value", CComVariant(4.9)), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"2");
  EXPECT_EQ(Read(cvar, L"RequestedValue"), L"4.9");
  EXPECT_EQ(Read(cvar, L"IsValueAdapted"), L"1");
  EXPECT_EQ(Call(cvar, L"Increment", {CComVariant(1)}), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"5");
  EXPECT_EQ(Read(cvar, L"Signature"),
            L"Type,Double,Request,5,Adapt,5,Default,2,AdaptPolicy,Down,Values,(1,2,5),Unit,,"
            L"Flags,-");
}

TEST_F(TypedScriptMembers, OfSetsOfIntegers) {
  const auto cvar = CvarObject<CCvarIntSet>::Create();
  cvar->Initialize(L"Averages", 10, {10, 20, 50}, ADAPT_CLOSEST_UP, false, 1, L"", CVARFLAGS(0),
                   nullptr, 0, kReplication);
  EXPECT_EQ(TypeOf(cvar, L"Value"), VT_I4);
  EXPECT_EQ(Put(cvar, L"Value", CComVariant(35)), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"50");
  EXPECT_EQ(Read(cvar, L"Range"), L"10,20,50");

  const auto wide = CvarObject<CCvarLongIntSet>::Create();
  wide->Initialize(L"Memory", 1, {1, 5000000000}, ADAPT_UP, false, 1, L"", CVARFLAGS(0), nullptr, 0,
                   kReplication);
  EXPECT_EQ(Put(wide, L"Value", CComVariant(2)), S_OK);
  EXPECT_EQ(Read(wide, L"Value"), L"5000000000");
  EXPECT_EQ(Read(wide, L"Range"), L"1,5000000000");
}

TEST_F(TypedScriptMembers, OfIntegers) {
  const auto cvar = CvarObject<CCvarInt>::Create();
  cvar->Initialize(L"Points", 20, 0, 100, 10, L"", CVARFLAGS(0), nullptr, 0, kReplication);
  ExpectReads(cvar, {{L"Type", L"Integer"},
                     {L"Value", L"20"},
                     {L"Default", L"20"},
                     {L"Min", L"0"},
                     {L"Max", L"100"},
                     {L"Grain", L"10"},
                     {L"NumberOfIncrement", L"10"},
                     {L"Unit", L""},
                     {L"ValueNorm", L"0.2"}});
  EXPECT_EQ(TypeOf(cvar, L"Max"), VT_I4);
  EXPECT_EQ(Put(cvar, L"Value", CComVariant(L"35")), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"40");
  EXPECT_EQ(Put(cvar, L"CoarseGrain", CComVariant(25)), S_OK);
  EXPECT_EQ(Read(cvar, L"CoarseGrain"), L"25");

  const auto wide = CvarObject<CCvarLongInt>::Create();
  wide->Initialize(L"Samples", 0, 0, 10000000000, 1000, L"", CVARFLAGS(0), nullptr, 0,
                   kReplication);
  EXPECT_EQ(Read(wide, L"Max"), L"10000000000");
  EXPECT_EQ(TypeOf(wide, L"Max"), VT_I8);
  EXPECT_EQ(TypeOf(wide, L"Min"), VT_I4);  // what fits is a plain integer
  EXPECT_EQ(Put(wide, L"Value", CComVariant(5e9)), S_OK);
  EXPECT_EQ(Read(wide, L"Value"), L"5000000000");
}

TEST_F(TypedScriptMembers, OfAnEnum) {
  const auto cvar = CvarObject<CCvarEnum>::Create();
  cvar->Initialize(L"Mode", L"A,B b|Bee|BEE,C", 0, CVARFLAGS(0), nullptr, 0, kReplication, 7);
  ExpectReads(cvar, {{L"Type", L"Enum"},
                     {L"Value", L"A"},
                     {L"Default", L"0"},
                     {L"Index", L"0"},
                     {L"Count", L"3"},
                     {L"Min", L"0"},
                     {L"Max", L"2"},
                     {L"IsWrapModeOn", L"0"}});
  EXPECT_EQ(Read(cvar, L"ValueStringScreen", {CComVariant(1)}), L"B b");
  EXPECT_EQ(Read(cvar, L"ValueStringAutomation", {CComVariant(1)}), L"Bee");
  EXPECT_EQ(Read(cvar, L"ValueStringRemote", {CComVariant(1)}), L"BEE");
  EXPECT_EQ(Read(cvar, L"IndexOf", {CComVariant(L"b B")}), L"1");
  EXPECT_EQ(Read(cvar, L"IndexOf", {CComVariant(L"D")}), L"-1");

  EXPECT_EQ(Put(cvar, L"Index", CComVariant(2)), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"C");
  EXPECT_EQ(Call(cvar, L"Disable", {CComVariant(L"C")}), S_OK);
  EXPECT_EQ(Read(cvar, L"Index"), L"1");
  EXPECT_EQ(Read(cvar, L"IsEnabled", {CComVariant(2)}), L"0");
  EXPECT_EQ(Read(cvar, L"FullRange", {CComVariant(0)}), L"A|A|A,B b|Bee|BEE");
  EXPECT_EQ(Read(cvar, L"FullRange", {CComVariant(1)}), L"A|A|A,B b|Bee|BEE,C|C|C");
  EXPECT_EQ(Call(cvar, L"Disable", {CComVariant(3)}), E_INVALIDARG);
  EXPECT_EQ(Call(cvar, L"Enable", {CComVariant(2)}), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"C");

  EXPECT_EQ(Call(cvar, L"SetVariant", {CComVariant(1), CComVariant(2.5)}), S_OK);
  EXPECT_EQ(Read(cvar, L"Variant", {CComVariant(1)}), L"2.5");
  EXPECT_EQ(Read(cvar, L"ExtraData", {CComVariant(1), CComVariant(EXTRAENUMDATA_VARIANT)}), L"2.5");
  EXPECT_EQ(Call(cvar, L"SetExtraData",
                 {CComVariant(0), CComVariant(EXTRAENUMDATA_CHILDPAGE), CComVariant(L"page")}),
            S_OK);
  EXPECT_EQ(Read(cvar, L"ExtraData", {CComVariant(0), CComVariant(EXTRAENUMDATA_CHILDPAGE)}),
            L"page");
  EXPECT_EQ(Put(cvar, L"Value", CComVariant(L"none of them")), E_INVALIDARG);
}

TEST_F(TypedScriptMembers, OfABool) {
  const auto cvar = CvarObject<CCvarBool>::Create();
  cvar->Initialize(L"Invert", L"Off,On", 0, CVARFLAGS(0), nullptr, 0, kReplication);
  ExpectReads(cvar, {{L"Type", L"Bool"}, {L"Value", L"0"}, {L"Default", L"0"}});
  EXPECT_EQ(Call(cvar, L"Set"), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"1");
  EXPECT_EQ(Read(cvar, L"StringAutomation"), L"True");
  EXPECT_EQ(Call(cvar, L"Disable", {CComVariant(1)}), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"0");
  EXPECT_EQ(Read(cvar, L"IsEnabled", {CComVariant(L"On")}), L"0");
  EXPECT_EQ(Call(cvar, L"Enable", {CComVariant(1)}), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"1");
  EXPECT_EQ(Call(cvar, L"Clear"), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"0");
}

TEST_F(TypedScriptMembers, OfAColor) {
  const auto cvar = CvarObject<CCvarColor>::Create();
  cvar->Initialize(L"Color", 0x10, CVARFLAGS(0), nullptr, 0, kReplication);
  ExpectReads(cvar, {{L"Type", L"Color"},
                     {L"Value", L"16"},
                     {L"Default", L"16"},
                     {L"Min", L"0"},
                     {L"Max", L"16777215"},
                     {L"StringAutomation", L"RGB(16,0,0)"}});
  EXPECT_EQ(Put(cvar, L"Value", CComVariant(0x1000000)), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"16777215");
}

TEST_F(TypedScriptMembers, OfAString) {
  const auto cvar = CvarObject<CCvarString>::Create();
  cvar->Initialize(L"Label", L"none", 8, CVARFLAGS(0), nullptr, 0, kReplication);
  ExpectReads(
      cvar,
      {{L"Type", L"String"}, {L"Value", L"none"}, {L"Default", L"none"}, {L"MaxLength", L"8"}});
  EXPECT_EQ(Put(cvar, L"Value", CComVariant(L"1234567890")), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"12345678");
  EXPECT_EQ(Put(cvar, L"Value", CComVariant(5)), E_INVALIDARG);
}

TEST_F(TypedScriptMembers, OfAnObjectName) {
  const auto cvar = CvarObject<CCvarObjectName>::Create();
  cvar->Initialize(L"Trace", L"Math 1", -1, CVARFLAGS(0), nullptr, 0, kReplication);
  ExpectReads(cvar, {{L"Type", L"ObjectName"},
                     {L"Value", L"Math 1|Math1|MATH1"},
                     {L"Default", L"Math 1|Math1|MATH1"},
                     {L"NamesJoined", L"Math 1|Math1|MATH1"},
                     {L"MaxLength", L"4294967295"}});
  EXPECT_EQ(Call(cvar, L"SetNameScreen", {CComVariant(L"Sum of all")}), S_OK);
  EXPECT_EQ(Call(cvar, L"SetNameAutomation", {CComVariant(L"sum-All")}), S_OK);
  EXPECT_EQ(Call(cvar, L"SetNameRemote", {CComVariant(L"s_um")}), S_OK);
  EXPECT_EQ(Read(cvar, L"NamesJoined"), L"Sum of all|sumAll|SUM");
}

TEST_F(TypedScriptMembers, OfAFileName) {
  const auto cvar = CvarObject<CCvarFileName>::Create();
  cvar->Initialize(L"File", L"D:\\Data\\a.trc", L"D:\\", L"", L"*.trc", L"fullfilename", 16, 0, 0,
                   CVARFLAGS(0), nullptr, 0, kReplication);
  ExpectReads(cvar, {{L"Type", L"FileName"},
                     {L"Value", L"D:\\Data\\a.trc"},
                     {L"Default", L"D:\\Data\\a.trc"},
                     {L"Root", L"D:\\"},
                     {L"Path", L"D:\\Data"},
                     {L"FileName", L"a.trc"},
                     {L"Filters", L"*.trc"},
                     {L"AdaptedValueFormat", L"fullfilename"},
                     {L"DirectoryOnly", L"0"},
                     {L"FileMustExist", L"0"},
                     {L"FullFileName", L"D:\\Data\\a.trc"},
                     {L"Extension", L"trc"}});
  EXPECT_EQ(Put(cvar, L"FileName", CComVariant(L"b.txt")), S_OK);
  EXPECT_EQ(Put(cvar, L"Path", CComVariant(L"C:\\Setups")), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"C:\\Setups\\b.txt");
  EXPECT_EQ(Put(cvar, L"AdaptedValueFormat", CComVariant(L"filename")), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"b.txt");
  EXPECT_EQ(Put(cvar, L"Root", CComVariant(L"C:\\")), S_OK);
  EXPECT_EQ(Read(cvar, L"Root"), L"C:\\");
  EXPECT_EQ(Put(cvar, L"Filters", CComVariant(L"*.txt")), S_OK);
  EXPECT_EQ(Read(cvar, L"Filters"), L"*.txt");
  EXPECT_EQ(Put(cvar, L"FileMustExist", CComVariant(1)), S_OK);
  EXPECT_EQ(Read(cvar, L"FileMustExist"), L"1");
  EXPECT_EQ(Put(cvar, L"DirectoryOnly", CComVariant(1)), S_OK);
  EXPECT_EQ(Read(cvar, L"AdaptedValueFormat"), L"path");
  EXPECT_EQ(Read(cvar, L"FullFileName"), L"C:\\Setups\\");
}

TEST_F(TypedScriptMembers, OfABitPattern) {
  const auto cvar = CvarObject<CCvarBitPattern>::Create();
  cvar->Initialize(L"Pattern", L"1101", 8, 4, BITPATTERN_FORMAT_BIN, L"01X", L'0',
                   BITPATTERN_PAD_LEFT, BITPATTERN_SIZE_BIT_FIX, CVARFLAGS(0), nullptr, 0,
                   kReplication);
  ExpectReads(cvar, {{L"Type", L"BitPattern"},
                     {L"Value", L"1101"},
                     {L"Default", L"1101"},
                     {L"DecimalValue", L"13"},
                     {L"SignedDecimalValue", L"-3"},
                     {L"HexadecimalValue", L"D"},
                     {L"Min", L""},
                     {L"Max", L""},
                     {L"NumBits", L"4"},
                     {L"NumBytes", L"1"},
                     {L"MaxNumBits", L"8"},
                     {L"Format", L"0"},
                     {L"AllowedBitValues", L"01X"},
                     {L"PaddingChar", L"48"},
                     {L"PadAlign", L"0"},
                     {L"SizeAlign", L"0"}});
  EXPECT_EQ(Put(cvar, L"DecimalValue", CComVariant(5)), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"0101");
  EXPECT_EQ(Put(cvar, L"HexadecimalValue", CComVariant(L"E")), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"1110");
  EXPECT_EQ(Put(cvar, L"NumBits", CComVariant(6)), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"001110");
  EXPECT_EQ(Put(cvar, L"PadAlign", CComVariant(BITPATTERN_PAD_RIGHT)), S_OK);
  EXPECT_EQ(Put(cvar, L"PaddingChar", CComVariant(L'X')), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"1110XX");
  EXPECT_EQ(Put(cvar, L"AllowedBitValues", CComVariant(L"10")), S_OK);
  EXPECT_EQ(Read(cvar, L"PaddingChar"), L"48");
  EXPECT_EQ(Read(cvar, L"Max"), L"111111");
  EXPECT_EQ(Put(cvar, L"NumBytes", CComVariant(1)), S_OK);
  EXPECT_EQ(Read(cvar, L"NumBits"), L"8");
  EXPECT_EQ(Put(cvar, L"MaxNumBits", CComVariant(16)), S_OK);
  EXPECT_EQ(Read(cvar, L"NumBits"), L"16");
  EXPECT_EQ(Put(cvar, L"Format", CComVariant(BITPATTERN_FORMAT_HEX)), S_OK);
  EXPECT_EQ(Read(cvar, L"StringScreen"), L"E000");
  EXPECT_EQ(Put(cvar, L"SizeAlign", CComVariant(3)), E_INVALIDARG);
}

TEST_F(TypedScriptMembers, OfARegister) {
  const auto cvar = CvarObject<CCvarRegister>::Create();
  cvar->Initialize(L"Control", 0x1FF, ACCESSSTYLE_READWRITE, 0x40, 8, 0xFFFF, CVARFLAGS(0), nullptr,
                   0, kReplication, false);
  ExpectReads(cvar, {{L"Type", L"Register"},
                     {L"Value", L"&hFF"},
                     {L"Default", L"511"},
                     {L"Mask", L"255"},
                     {L"NbOfBits", L"8"},
                     {L"HardwareAddress", L"64"},
                     {L"AccessStyle", L"1"}});
  EXPECT_EQ(Put(cvar, L"Value", CComVariant(L"&h1F")), S_OK);
  EXPECT_EQ(Read(cvar, L"StringScreen"), L"0000001f");
  EXPECT_EQ(Call(cvar, L"UpdateFromHardware", {CComVariant(0xA)}), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"&hA");
  EXPECT_EQ(Put(cvar, L"Mask", CComVariant(0xF0F)), S_OK);
  EXPECT_EQ(Read(cvar, L"Mask"), L"15");
  EXPECT_EQ(Put(cvar, L"NbOfBits", CComVariant(40)), S_OK);
  EXPECT_EQ(Read(cvar, L"NbOfBits"), L"32");
  EXPECT_EQ(Put(cvar, L"HardwareAddress", CComVariant(4294967295.0)), S_OK);
  EXPECT_EQ(Read(cvar, L"HardwareAddress"), L"4294967295");
  EXPECT_EQ(Put(cvar, L"Default", CComVariant(3)), S_OK);
  EXPECT_EQ(Call(cvar, L"SetToDefault"), S_OK);
  EXPECT_EQ(Read(cvar, L"Value"), L"&h3");

  EXPECT_EQ(Call(cvar, L"SetFieldDescription", {CComVariant(1), CComVariant(3), CComVariant(L"A")}),
            S_OK);
  EXPECT_EQ(Read(cvar, L"FieldDescriptionFirstBit", {CComVariant(2)}), L"1");
  EXPECT_EQ(Read(cvar, L"FieldDescriptionLastBit", {CComVariant(2)}), L"3");
  EXPECT_EQ(Read(cvar, L"FieldDescriptionString", {CComVariant(2)}), L"A");
  EXPECT_EQ(Read(cvar, L"FieldDescriptionString", {CComVariant(9)}), L"");

  EXPECT_EQ(Put(cvar, L"AccessStyle", CComVariant(ACCESSSTYLE_READONLY)), S_OK);
  EXPECT_EQ(Read(cvar, L"IsReadOnly"), L"1");
  EXPECT_EQ(Put(cvar, L"Value", CComVariant(1)), S_OK);  // passed over
  EXPECT_EQ(Read(cvar, L"Value"), L"&h3");
}

TEST_F(TypedScriptMembers, OfAnAction) {
  const auto cvar = CvarObject<CCvarAction>::Create();
  cvar->Initialize(L"Single", CVARFLAGS(0), nullptr, 0, 0, kReplication);
  const auto listener = cvars::test::RecordingListener::Create();
  EXPECT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(Read(cvar, L"Type"), L"Action");
  EXPECT_EQ(Call(cvar, L"ActNow"), S_OK);
  EXPECT_EQ(listener->TakeMasks(), std::vector<NOTIFYTYPE>{NOTIFY_VALUE});
  cvar->SetReadOnly(1);
  (void)listener->TakeMasks();
  EXPECT_EQ(Call(cvar, L"ActNow"), E_ACCESSDENIED);
  EXPECT_TRUE(listener->masks.empty());
}

TEST_F(TypedScriptMembers, OfAnImage) {
  const auto cvar = CvarObject<CCvarImage>::Create();
  cvar->Initialize(L"Screen", 0, CVARFLAGS(0), nullptr, 0, kReplication);
  EXPECT_EQ(Read(cvar, L"Type"), L"Image");
  EXPECT_EQ(Read(cvar, L"Value"), L"<image>");
  HBITMAP bitmap = nullptr;
  ASSERT_EQ(cvar->CreateBitmap(2, 1, &bitmap), S_OK);
  const std::vector<std::byte> bytes = cvars::platform::BitmapFileBytes(bitmap);
  std::ofstream(cvars::platform::HostPath(L"C:\\picture.bmp"), std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));

  EXPECT_EQ(Call(cvar, L"LoadFromFile", {CComVariant(L"C:\\none.bmp")}), S_OK);
  EXPECT_EQ(cvar->GetBitmapHandle(&bitmap), S_OK);
  EXPECT_EQ(bitmap, nullptr);
  EXPECT_EQ(Call(cvar, L"LoadFromFile", {CComVariant(L"C:\\picture.bmp")}), S_OK);
  EXPECT_EQ(cvar->GetBitmapHandle(&bitmap), S_OK);
  BITMAP description = {};
  ASSERT_NE(GetObject(bitmap, sizeof(description), &description), 0);
  EXPECT_EQ(description.bmWidth, 2);
  EXPECT_EQ(Call(cvar, L"LoadFromBitmapResource", {CComVariant(1)}), S_OK);  // has no parent
  EXPECT_EQ(cvar->GetBitmapHandle(&bitmap), S_OK);
  EXPECT_EQ(bitmap, nullptr);
  EXPECT_EQ(Put(cvar, L"Value", CComVariant(L"x")), E_NOTIMPL);
}

TEST_F(TypedScriptMembers, OfATable) {
  const auto cvar = CvarObject<CCvarSafeArray>::Create();
  cvar->Initialize(L"Points", L"0,1;2,3", L"", CVARFLAGS(0));
  EXPECT_EQ(Read(cvar, L"Type"), L"SafeArray");
  EXPECT_EQ(TypeOf(cvar, L"Value"), VT_ARRAY | VT_VARIANT);
  EXPECT_EQ(Put(cvar, L"Value", CComVariant(L"4,5")), S_OK);
  EXPECT_EQ(Read(cvar, L"StringScreen"), L"4,5");
}

/// Every name stands for one way of reading and one of writing.
template <class Interface>
void ExpectNamesToBeUnique() {
  std::set<std::pair<std::wstring, bool>> names;
  for (const cvars::ScriptMember& member : cvars::TypedScriptMembers<Interface>()) {
    EXPECT_TRUE(names.emplace(member.name, member.kind == DISPATCH_PROPERTYPUT).second)
        << std::string(member.name, member.name + std::wcslen(member.name));
  }
}

TEST(ScriptMemberTables, HaveEveryNameOnce) {
  ExpectNamesToBeUnique<IVorCvarDouble>();
  ExpectNamesToBeUnique<IVorCvarDoubleLockstep>();
  ExpectNamesToBeUnique<IVorCvarInt>();
  ExpectNamesToBeUnique<IVorCvarLongInt>();
  ExpectNamesToBeUnique<IVorCvarEnum>();
  ExpectNamesToBeUnique<IVorCvarBool>();
  ExpectNamesToBeUnique<IVorCvarColor>();
  ExpectNamesToBeUnique<IVorCvarString>();
  ExpectNamesToBeUnique<IVorCvarObjectName>();
  ExpectNamesToBeUnique<IVorCvarFileName>();
  ExpectNamesToBeUnique<IVorCvarBitPattern>();
  ExpectNamesToBeUnique<IVorCvarRegister>();
  ExpectNamesToBeUnique<IVorCvarAction>();
  ExpectNamesToBeUnique<IVorCvarImage>();
}

}  // namespace
