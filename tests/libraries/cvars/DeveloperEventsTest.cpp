#include "DeveloperEvents.h"

#include <gtest/gtest.h>

#include "CCvarBag.h"
#include "CCvarDouble.h"
#include "CvarObject.h"
#include "LiveCvars.h"
#include "NumericText.h"

namespace {

using DeveloperEvents = cvars::test::CvarTest;

struct ResultTextCase {
  const char* name;
  HRESULT result;
  const wchar_t* text;
};

constexpr ResultTextCase kResultTexts[] = {
    {"LettersAreSmall", E_NOTIMPL, L"hr=0x80004001: This operation is not offered here."},
    {"EightDigits", S_FALSE, L"hr=0x00000001: There was nothing to do."},
    {"NeverSignExtended", E_UNEXPECTED,
     L"hr=0x8000ffff: The operation came at a moment that does not allow it."},
    {"NoNumber", cvars::kNoNumber, L"hr=0x80040512: The text does not start with a number."},
    {"UnknownSuffix", cvars::kUnknownSuffix,
     L"hr=0x80040513: The number is followed by an unknown unit or prefix."},
    {"Unknown", cvars::ResultCode(0x8004ABCD),
     L"hr=0x8004abcd: There is no description of this result code."},
};

TEST_F(DeveloperEvents, AResultCodeIsTextOnOneLine) {
  for (const ResultTextCase& row : kResultTexts) {
    EXPECT_EQ(cvars::ResultText(row.result), row.text) << row.name;
  }
}

TEST_F(DeveloperEvents, AnEventAtALineTellsBothAndHasNoValue) {
  const CComPtr<CvarObject<CCvarDouble>> gain = CvarObject<CCvarDouble>::Create();
  gain->SetName(L"Gain");
  const CComPtr<CCvarBag> bag = CCvarBag::Create(L"Channel1", nullptr);
  ASSERT_EQ(bag->Add(gain), S_OK);
  const cvars::DeveloperEvent event =
      cvars::EventAtLine(gain->GetIVorCvar(), L"80004001", 42, L"shared/includes/CvarImpl");
  EXPECT_EQ(event.source, L"(CvarBag.Cvar) Channel1.Gain");
  EXPECT_EQ(event.message, L"80004001");
  EXPECT_EQ(event.severity, 4);
  EXPECT_EQ(event.category, L"system");
  EXPECT_EQ(event.detail, L"42\nshared/includes/CvarImpl");
  EXPECT_EQ(event.value, L"Null value");
  EXPECT_EQ(event.cvar, gain->GetIVorCvar());
}

}  // namespace
