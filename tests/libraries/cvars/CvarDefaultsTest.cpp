// What a class inherits that says nothing else: values, texts, range, signature and properties.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>

#include "CComSafeArray.h"
#include "LiveCvars.h"
#include "ReadProperties.h"
#include "ReadText.h"
#include "RecordingListener.h"
#include "SampleCvars.h"

namespace {

using cvars::test::PlainCvar;
using cvars::test::RecordingListener;
using cvars::test::SampleCvar;
using cvars::test::TextOf;

using Plain = CComPtr<CvarObject<PlainCvar>>;
using Sample = CComPtr<CvarObject<SampleCvar>>;

class CvarDefaults : public cvars::test::CvarTest {
 protected:
  const Plain plain = CvarObject<PlainCvar>::Create();
  const Sample sample = CvarObject<SampleCvar>::Create();

  void TearDown() override {
    const_cast<Plain&>(plain) = nullptr;
    const_cast<Sample&>(sample) = nullptr;
    CvarTest::TearDown();
  }
};

TEST_F(CvarDefaults, AllFourRangeTextsAreNotAvailable) {
  for (const auto range :
       {&IVorCvar::get_Range, &IVorCvar::get_RangeStringScreen, &IVorCvar::get_RangeStringRemote,
        &IVorCvar::get_RangeStringAutomation}) {
    EXPECT_EQ(TextOf(*plain, range), L"n/a");
    EXPECT_EQ((plain->*range)(nullptr), E_POINTER);
  }
}

TEST_F(CvarDefaults, WhatAClassWithoutRangeCannotDo) {
  EXPECT_EQ(plain->SetToMin(), E_NOTIMPL);
  EXPECT_EQ(plain->SetToMax(), E_NOTIMPL);
  EXPECT_EQ(plain->Dummy1(), E_NOTIMPL);
  CComVariant value(5);
  EXPECT_EQ(plain->Dummy3(&value), E_NOTIMPL);
  EXPECT_EQ(plain->Dummy4(CComVariant(), &value), E_NOTIMPL);
  EXPECT_EQ(value.lVal, 5);
}

TEST_F(CvarDefaults, SignatureIsNotImplemented) {
  EXPECT_EQ(TextOf(*plain, &IVorCvar::get_Signature), L"notimpl");
  EXPECT_EQ(plain->get_Signature(nullptr), E_POINTER);
}

TEST_F(CvarDefaults, AMissingTypeNameIsANullText) {
  wchar_t before[] = L"before";
  BSTR type = before;
  EXPECT_EQ(plain->get_Type(&type), S_OK);
  EXPECT_EQ(type, nullptr);
  EXPECT_EQ(TextOf(*sample, &IVorCvar::get_Type), L"Sample");
}

TEST_F(CvarDefaults, ValuesAreComparedExactly) {
  struct {
    int adapted, defaultValue, requested, isDefault, isAdapted;
  } constexpr kRows[] = {{0, 0, 0, 1, 0}, {1, 0, 1, 0, 0}, {1, 1, 2, 1, 1}, {-1, 1, 1, 0, 1}};
  for (const auto& row : kRows) {
    sample->SetValues(row.adapted, row.defaultValue, row.requested);
    int answer = 9;
    EXPECT_EQ(sample->IsDefault(&answer), S_OK);
    EXPECT_EQ(answer, row.isDefault);
    EXPECT_EQ(sample->get_IsValueAdapted(&answer), S_OK);
    EXPECT_EQ(answer, row.isAdapted);
  }
  EXPECT_EQ(sample->IsDefault(nullptr), E_POINTER);
  EXPECT_EQ(sample->get_IsValueAdapted(nullptr), E_POINTER);
}

TEST_F(CvarDefaults, TypedGettersCopyTheirField) {
  sample->SetValues(1, 2, 3);
  int value = 0;
  EXPECT_EQ(sample->GetAdaptedValue(&value), S_OK);
  EXPECT_EQ(value, 1);
  EXPECT_EQ(sample->GetDefaultValue(&value), S_OK);
  EXPECT_EQ(value, 2);
  EXPECT_EQ(sample->GetRequestedValue(&value), S_OK);
  EXPECT_EQ(value, 3);
  EXPECT_EQ(sample->GetAdaptedValue(), 1);
  EXPECT_EQ(static_cast<int>(*sample), 1);
  EXPECT_EQ(sample->GetAdaptedValue(nullptr), E_POINTER);
  EXPECT_EQ(sample->GetDefaultValue(nullptr), E_POINTER);
  EXPECT_EQ(sample->GetRequestedValue(static_cast<int*>(nullptr)), E_POINTER);
}

TEST_F(CvarDefaults, RequestedVariantClearsWhatWasThere) {
  sample->SetValues(1, 2, 3);
  CComVariant value(L"old text");
  EXPECT_EQ(sample->GetRequestedVariantValue(&value), S_OK);
  EXPECT_EQ(value.vt, VT_I4);
  EXPECT_EQ(value.lVal, 3);
  EXPECT_EQ(sample->GetRequestedVariantValue(nullptr), E_POINTER);
}

TEST_F(CvarDefaults, TextsFallBackToTheCommonOnes) {
  EXPECT_EQ(TextOf(*sample, &IVorCvar::GetAdaptedValueStringRemoteNoUnit), L"REMOTE");
  EXPECT_EQ(sample->SetRequestedValueFromStringScreen(L"a"), S_FALSE);
  EXPECT_EQ(sample->lastText, L"a");
  EXPECT_EQ(sample->SetRequestedValueFromStringRemote(L"b"), S_FALSE);
  EXPECT_EQ(sample->lastText, L"b");
}

// Automation text ---------------------------------------------------------------------------------

TEST_F(CvarDefaults, AutomationTextIsTheConvertedValue) {
  struct {
    const char* name;
    CComVariant value;
    const wchar_t* text;
  } const rows[] = {{"Number", CComVariant(1.5), L"1.5"}, {"Text", CComVariant(L"a b"), L"a b"},
                    {"True", CComVariant(true), L"True"}, {"False", CComVariant(false), L"False"},
                    {"Integer", CComVariant(-7), L"-7"},  {"Nothing", CComVariant(), L""}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    sample->valueToGive = row.value;
    EXPECT_EQ(TextOf(*sample, &IVorCvar::GetAdaptedValueStringAutomation), row.text);
  }
  EXPECT_EQ(sample->GetAdaptedValueStringAutomation(nullptr), E_POINTER);
}

TEST_F(CvarDefaults, AutomationTextIsEmptyWhenTheValueFails) {
  sample->valueResult = E_ACCESSDENIED;
  CComBSTR text;
  EXPECT_EQ(sample->GetAdaptedValueStringAutomation(&text), E_ACCESSDENIED);
  ASSERT_NE(text.m_str, nullptr);
  EXPECT_EQ(text.Length(), 0u);
}

TEST_F(CvarDefaults, AutomationTextIsEmptyWhenTheConversionFails) {
  sample->valueToGive.vt = VT_NULL;
  CComBSTR text;
  EXPECT_EQ(sample->GetAdaptedValueStringAutomation(&text), DISP_E_TYPEMISMATCH);
  ASSERT_NE(text.m_str, nullptr);
  EXPECT_EQ(text.Length(), 0u);
}

// Normalised value --------------------------------------------------------------------------------

// Reaches the position of a value in a range.
class NormCvar : public PlainCvar {
 public:
  using IVorCvarImpl<PlainCvar, IVorCvar, char>::GetAdaptedValueNorm;

 protected:
  ~NormCvar() = default;
};

TEST_F(CvarDefaults, NormalisedValueIsThePositionInTheRange) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  struct {
    const char* name;
    double value, min, max, position;
  } constexpr kRows[] = {{"Middle", 5, 0, 10, 0.5},
                         {"Outside", 15, 0, 10, 1.5},
                         {"NegativeSpanCountsAsOne", 5, 10, 0, -5},
                         {"NoSpanAbove", 5, 3, 3, kInfinity},
                         {"NoSpanBelow", 1, 3, 3, -kInfinity}};
  const CComPtr<CvarObject<NormCvar>> cvar = CvarObject<NormCvar>::Create();
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    double position = 99;
    EXPECT_EQ(cvar->GetAdaptedValueNorm(&position, row.value, row.min, row.max), S_OK);
    EXPECT_EQ(position, row.position);
  }
  double position = 99;
  EXPECT_EQ(cvar->GetAdaptedValueNorm(&position, 3, 3, 3), S_OK);
  EXPECT_TRUE(std::isnan(position));
  EXPECT_EQ(cvar->GetAdaptedValueNorm(&position, 5, 2, std::nan("")), S_OK);
  EXPECT_EQ(position, 3.0);  // a span that is not a number counts as 1
  EXPECT_EQ(cvar->GetAdaptedValueNorm(nullptr, 5, 0, 10), E_POINTER);
}

// Properties --------------------------------------------------------------------------------------

using cvars::test::Properties;
using cvars::test::PropertiesOf;

TEST_F(CvarDefaults, PropertiesOfAPlainCvarAreTheEightCommonOnesByName) {
  EXPECT_EQ(PropertiesOf(*plain), (Properties{{L"Flags", VT_I4, L"0"},
                                              {L"FlagsString", VT_BSTR, L"-"},
                                              {L"GuiHints", VT_BSTR, L""},
                                              {L"HelpString", VT_BSTR, L""},
                                              {L"IconID", VT_UI4, L"0"},
                                              {L"IconModuleInstance", VT_I4, L"0"},
                                              {L"Name", VT_BSTR, L"(unnamedCvar)"},
                                              {L"Type", VT_BSTR, L""}}));
}

TEST_F(CvarDefaults, AClassAddsItsPropertiesInTheirPlace) {
  sample->SetName(L"Mode|MODE");
  (void)sample->SetFlags(static_cast<long>(static_cast<std::int32_t>(0x80000003)));
  sample->SetGuiHints(L"Knob");
  sample->SetIcon(0xFFFFFFFF, 7);
  EXPECT_EQ(PropertiesOf(*sample), (Properties{{L"Added", VT_I4, L"7"},
                                               {L"Flags", VT_I4, L"-2147483645"},
                                               {L"FlagsString", VT_BSTR, L"RH"},
                                               {L"GuiHints", VT_BSTR, L"Knob"},
                                               {L"HelpString", VT_BSTR, L""},
                                               {L"IconID", VT_UI4, L"4294967295"},
                                               {L"IconModuleInstance", VT_I4, L"7"},
                                               {L"Name", VT_BSTR, L"Mode"},
                                               {L"Type", VT_BSTR, L"Sample"}}));
}

// Notes, when its help text is read, whether another thread could take its lock.
class WatchedCvar : public SampleCvar {
 public:
  HRESULT get_HelpString(BSTR* text) override {
    std::thread([this] {
      lockWasFree = false;
      if (m_lock.try_lock()) {
        lockWasFree = true;
        m_lock.unlock();
      }
    }).join();
    return SampleCvar::get_HelpString(text);
  }

  bool lockWasFree = false;

 protected:
  ~WatchedCvar() = default;
};

TEST_F(CvarDefaults, PropertiesAreGatheredUnderTheLock) {
  const CComPtr<CvarObject<WatchedCvar>> cvar = CvarObject<WatchedCvar>::Create();
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_HelpString), L"");
  EXPECT_TRUE(cvar->lockWasFree);
  EXPECT_EQ(PropertiesOf(*cvar).size(), 9u);  // the eight common ones and "Added"
  EXPECT_FALSE(cvar->lockWasFree);
}

TEST_F(CvarDefaults, PropertiesThatFailLeaveAnEmptyVariant) {
  sample->propertyResult = E_UNEXPECTED;
  CComVariant properties(L"old text");
  EXPECT_EQ(sample->GetSignature(&properties), E_UNEXPECTED);
  EXPECT_EQ(properties.vt, VT_EMPTY);
  EXPECT_EQ(sample->GetSignature(nullptr), E_POINTER);
}

TEST_F(CvarDefaults, APropertyThatFailsHoldsItsCode) {
  sample->propertyResult = E_UNEXPECTED;
  cvars::PropertiesMap map;
  EXPECT_EQ(sample->FillCvarPropertiesMap(map), E_UNEXPECTED);
  const VARIANT* const broken = map.Find(L"Broken");
  ASSERT_NE(broken, nullptr);
  EXPECT_EQ(broken->vt, VT_ERROR);
  EXPECT_EQ(broken->scode, E_UNEXPECTED);
  EXPECT_EQ(map.Count(), 10u);
}

TEST(PropertiesMapTest, APropertyOfTheSameNameIsReplacedAndCaseCounts) {
  cvars::PropertiesMap map;
  map.SetText(L"Name", L"a");
  map.Set(L"Name", CComVariant(5));
  map.SetText(L"NAME", L"b");
  EXPECT_EQ(map.Count(), 2u);
  EXPECT_EQ(map.Find(L"Name")->lVal, 5);
  EXPECT_EQ(map.Find(L"name"), nullptr);
}

TEST(PropertiesMapTest, AnEmptyMapGivesAnArrayWithoutPairs) {
  cvars::PropertiesMap map;
  CComVariant array;
  EXPECT_EQ(map.MoveToArray(&array), S_OK);
  LONG upper = 5;
  EXPECT_EQ(SafeArrayGetUBound(array.parray, 2, &upper), S_OK);
  EXPECT_EQ(upper, -1);
}

}  // namespace
