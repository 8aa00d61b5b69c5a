#include <gtest/gtest.h>

#include <string>

#include "CComBSTR.h"
#include "CComPtr.h"
#include "IVorPhysicalUnit.h"
#include "platform/Components.h"

namespace {

class PhysicalUnitTest : public testing::Test {
 protected:
  void SetUp() override {
    void* object = nullptr;
    ASSERT_EQ(S_OK, cvars::platform::CreateComponent(L"Vortana.PhysicalUnit", IID_IVorPhysicalUnit,
                                                     &object));
    m_units.Attach(static_cast<IVorPhysicalUnit*>(object));
  }

  bool IsValid(const wchar_t* unit) {
    VARIANT_BOOL valid = 7;
    EXPECT_EQ(S_OK, m_units->IsValidUnit(unit, &valid));
    EXPECT_TRUE(valid == VARIANT_TRUE || valid == VARIANT_FALSE);
    return valid == VARIANT_TRUE;
  }

  std::wstring Screen(const wchar_t* unit) {
    CComBSTR screen;
    EXPECT_EQ(S_OK, m_units->GetScreenUnit(unit, 0, &screen));
    EXPECT_NE(nullptr, static_cast<BSTR>(screen));
    return std::wstring(screen.View());
  }

  CComPtr<IVorPhysicalUnit> m_units;
};

struct UnitCase {
  const wchar_t* remote;
  const wchar_t* screen;
};

constexpr UnitCase kUnitCases[] = {
    {L"V", L"V"},
    {L"HZ", L"Hz"},
    {L"S", L"s"},
    {L"OHM", L"\u03a9"},
    {L"DB", L"dB"},
    {L"DBM", L"dBm"},
    {L"DEG", L"\u00b0"},
    {L"PCT", L"%"},
    {L"DIV", L"div"},
    {L"SWEEP", L"sweep"},
    {L"DECADE", L"decade"},
    {L"HOUR", L"hour"},
    {L"DAY", L"day"},
    {L"WK", L"wk"},
    {L"BIT", L"bit"},
    {L"BYTE", L"byte"},
    {L"VPP", L"Vpp"},
    {L"VRMS", L"Vrms"},
    {L"CEL", L"\u00b0C"},
    {L"PA", L"Pa"},
    {L"M", L"m"},
    {L"V/DIV", L"V/div"},
    {L"S/DIV", L"s/div"},
    {L"V/S", L"V/s"},
    {L"S/S", L"S/s"},
    {L"1/S", L"1/s"},
    {L"DB/OCTAVE", L"dB/octave"},
    {L"V/RTHZ", L"V/\u221aHz"},
};

TEST_F(PhysicalUnitTest, KnowsTheRemoteSpelling) {
  for (const UnitCase& row : kUnitCases) {
    EXPECT_TRUE(IsValid(row.remote)) << testing::PrintToString(row.remote);
    EXPECT_EQ(row.screen, Screen(row.remote));
  }
}

TEST_F(PhysicalUnitTest, AScreenSpellingIsValidAndStays) {
  for (const UnitCase& row : kUnitCases) {
    EXPECT_TRUE(IsValid(row.screen)) << testing::PrintToString(row.screen);
    EXPECT_EQ(row.screen, Screen(row.screen));
  }
}

TEST_F(PhysicalUnitTest, TheEmptyUnitIsValid) {
  EXPECT_TRUE(IsValid(L""));
  EXPECT_TRUE(IsValid(nullptr));
  EXPECT_EQ(L"", Screen(L""));
  EXPECT_EQ(L"", Screen(nullptr));
}

TEST_F(PhysicalUnitTest, UnknownUnitsStayAsTheyStand) {
  for (const wchar_t* unit : {L"volts", L"v", L"MV", L"mV", L"kHz", L" V", L"V ", L"/", L"V/",
                              L"/S", L"1/", L"1", L"V/X", L"X/V", L"V/S/S", L"V/1", L"DBX"}) {
    EXPECT_FALSE(IsValid(unit)) << testing::PrintToString(unit);
    EXPECT_EQ(unit, Screen(unit));
  }
}

TEST_F(PhysicalUnitTest, PrefixesAreNoPartOfAUnit) {
  EXPECT_FALSE(IsValid(L"MHZ"));
  EXPECT_FALSE(IsValid(L"KV"));
  EXPECT_FALSE(IsValid(L"uV"));
}

TEST_F(PhysicalUnitTest, ChecksItsArguments) {
  EXPECT_EQ(E_POINTER, m_units->IsValidUnit(L"V", nullptr));
  EXPECT_EQ(E_POINTER, m_units->GetScreenUnit(L"V", 1, nullptr));
  BSTR screen = nullptr;
  EXPECT_EQ(E_INVALIDARG, m_units->GetScreenUnit(L"V", 1, &screen));
  EXPECT_EQ(nullptr, screen);
}

TEST_F(PhysicalUnitTest, IsMadeByItsClassIdentifierToo) {
  CComPtr<IVorPhysicalUnit> made;
  EXPECT_EQ(S_OK, CoCreateInstance(CLSID_PhysicalUnit, nullptr, CLSCTX_ALL, IID_IVorPhysicalUnit,
                                   reinterpret_cast<void**>(&made)));
}

}  // namespace
