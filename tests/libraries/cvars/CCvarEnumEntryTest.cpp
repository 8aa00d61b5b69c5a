#include "EnumCvarTest.h"

namespace {

using namespace cvars::test;

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

}  // namespace
