// A service of the test's own stands in for the physical units, so this is a program of its own.

#include "NumericUnit.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "CComBSTR.h"
#include "CCvarDouble.h"
#include "CvarObject.h"
#include "IVorPhysicalUnit.h"
#include "SameObjectFactory.h"
#include "platform/Components.h"

namespace {

using cvars::NumericUnit;

/// Finds every unit valid and spells it in lower-case brackets, unless it is told to fail.
class FakeUnits final : public cvars::platform::Component<
                            cvars::platform::Offers<IVorPhysicalUnit, IID_IVorPhysicalUnit>> {
 public:
  HRESULT IsValidUnit(const wchar_t*, VARIANT_BOOL* valid) override {
    ++validations;
    *valid = isValid ? VARIANT_TRUE : VARIANT_FALSE;
    return validation;
  }
  HRESULT GetScreenUnit(const wchar_t* remoteUnit, long, BSTR* screenUnit) override {
    ++spellings;
    const HRESULT result = spelling;
    *screenUnit = SUCCEEDED(result)
                      ? SysAllocString((L"<" + std::wstring(remoteUnit) + L">").c_str())
                      : nullptr;
    return result;
  }

  std::atomic<bool> isValid{true};
  std::atomic<HRESULT> validation{S_OK};
  std::atomic<HRESULT> spelling{S_OK};
  std::atomic<int> validations{0};
  std::atomic<int> spellings{0};
};

/// The service of the process, which the library keeps once it has it.
FakeUnits& Units() {
  static FakeUnits* const units = [] {
    CComPtr<FakeUnits> made;
    made.Attach(new FakeUnits);
    DWORD cookie = 0;
    EXPECT_EQ(
        CoRegisterClassObject(CLSID_PhysicalUnit, cvars::test::SameObjectFactory::Create(made),
                              CLSCTX_ALL, REGCLS_MULTIPLEUSE, &cookie),
        S_OK);
    return made.p;
  }();
  return *units;
}

class NumericUnitTest : public testing::Test {
 protected:
  NumericUnitTest() {
    m_units.isValid = true;
    m_units.validation = S_OK;
    m_units.spelling = S_OK;
    m_units.validations = 0;
    m_units.spellings = 0;
  }
  FakeUnits& m_units = Units();
};

TEST_F(NumericUnitTest, KeepsTheSpellingOfTheService) {
  NumericUnit unit;
  bool changed = false;
  EXPECT_EQ(unit.Set(L"KEPT", &changed), S_OK);
  EXPECT_TRUE(changed);
  EXPECT_EQ(unit.Remote(), L"KEPT");
  EXPECT_EQ(unit.Screen(), L"<KEPT>");
  EXPECT_EQ(unit.Screen(), L"<KEPT>");
  NumericUnit other;
  EXPECT_EQ(other.Set(L"KEPT", &changed), S_OK);
  EXPECT_EQ(other.Screen(), L"<KEPT>");
  EXPECT_EQ(m_units.spellings, 1);
}

TEST_F(NumericUnitTest, ASpellingThatCouldNotBeGivenIsAskedForAgain) {
  m_units.spelling = E_FAIL;
  NumericUnit unit;
  bool changed = false;
  EXPECT_EQ(unit.Set(L"LATE", &changed), S_OK);
  EXPECT_TRUE(changed);
  EXPECT_EQ(unit.Remote(), L"LATE");
  EXPECT_EQ(unit.Screen(), L"");
  m_units.spelling = S_OK;
  EXPECT_EQ(unit.Screen(), L"<LATE>");
  const int asked = m_units.spellings;
  EXPECT_EQ(unit.Screen(), L"<LATE>");
  EXPECT_EQ(m_units.spellings, asked);
}

TEST_F(NumericUnitTest, ANumberIsWrittenWithoutUnitUntilTheSpellingIsThere) {
  m_units.spelling = E_FAIL;
  const auto level = CvarObject<CCvarDouble>::Create();
  level->Initialize(L"Level", 1.0, 0.0, 10.0, 0.5, L"TEXT", CVARFLAGS(0), L"", 0,
                    CVARREPLICATIONFLAGS(0x202));
  CComBSTR text;
  EXPECT_EQ(level->GetAdaptedValueStringScreen(&text), S_OK);
  EXPECT_STREQ(text, L"1.0");
  m_units.spelling = S_OK;
  text.Empty();
  EXPECT_EQ(level->GetAdaptedValueStringScreen(&text), S_OK);
  EXPECT_STREQ(text, L"1.0 <TEXT>");
}

TEST_F(NumericUnitTest, EveryChangeIsValidated) {
  NumericUnit first;
  NumericUnit second;
  bool changed = false;
  EXPECT_EQ(first.Set(L"SEEN", &changed), S_OK);
  m_units.isValid = false;
  changed = true;
  EXPECT_EQ(second.Set(L"SEEN", &changed), E_INVALIDARG);
  EXPECT_FALSE(changed);
  EXPECT_EQ(second.Remote(), L"");
  m_units.validation = E_UNEXPECTED;
  EXPECT_EQ(second.Set(L"SEEN", &changed), E_UNEXPECTED);
  EXPECT_EQ(m_units.validations, 3);
}

TEST_F(NumericUnitTest, TheSameUnitAgainAsksNobody) {
  NumericUnit unit;
  bool changed = false;
  EXPECT_EQ(unit.Set(L"SAME", &changed), S_OK);
  m_units.validation = E_FAIL;
  EXPECT_EQ(unit.Set(L"SAME", &changed), S_OK);
  EXPECT_FALSE(changed);
  EXPECT_EQ(m_units.validations, 1);
}

TEST_F(NumericUnitTest, ThreadsThatAskAtOnceGetOneSpelling) {
  m_units.spelling = E_FAIL;
  NumericUnit unit;
  bool changed = false;
  EXPECT_EQ(unit.Set(L"SHARED", &changed), S_OK);
  m_units.spelling = S_OK;
  std::vector<const wchar_t*> seen(4);
  {
    std::vector<std::jthread> threads;
    for (const wchar_t*& slot : seen) {
      threads.emplace_back([&unit, &slot] { slot = unit.Screen().data(); });
    }
  }
  for (const wchar_t* const spelling : seen) {
    EXPECT_STREQ(spelling, L"<SHARED>");
    EXPECT_EQ(spelling, seen.front());
  }
}

}  // namespace
