#include "CCvarLongInt.h"

#include <gtest/gtest.h>

#include <limits>

#include "CvarObject.h"
#include "LiveCvars.h"
#include "ReadText.h"

namespace {

using cvars::test::TextOf;
using LongIntCvarTest = cvars::test::CvarTest;
using Limits = std::numeric_limits<std::int64_t>;

CComPtr<CvarObject<CCvarLongInt>> MakeWidest() {
  auto cvar = CvarObject<CCvarLongInt>::Create();
  cvar->Initialize(L"Depth", 0, Limits::min(), Limits::max(), 1, L"", CVARFLAGS(0), L"", 0,
                   REPLICATE_VALUE | REPLICATE_REQUESTED);
  return cvar;
}

TEST_F(LongIntCvarTest, ValuesBeyond32BitsAdaptAndPrintWithoutLoss) {
  const auto cvar = CvarObject<CCvarLongInt>::Create();
  cvar->SetMax(10000000000);
  cvar->SetMin(0);
  cvar->SetGrain(1000);
  EXPECT_EQ(cvar->SetRequestedValue(5000000499), S_OK);
  EXPECT_EQ(cvar->GetAdaptedValue(), 5000000000);
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen), L"5000000000");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Range), L"From 0 to 10000000000 step 1000");
  EXPECT_EQ(TextOf(*cvar, &IVorCvar::get_Signature),
            L"Type,Long Integer,Request,5000000499,Adapt,5000000000,Default,0,Min,0,"
            L"Max,10000000000,Grain,1000,Unit,,Flags,-");
}

constexpr std::int64_t kExactValues[] = {0,
                                         1,
                                         -1,
                                         5000000000,
                                         9007199254740993,
                                         -9007199254740993,
                                         1000000000000000001,
                                         Limits::max(),
                                         Limits::min(),
                                         Limits::max() - 1,
                                         Limits::min() + 1};

TEST_F(LongIntCvarTest, VariantsCarryEveryValueWithoutLoss) {
  for (const std::int64_t value : kExactValues) {
    const auto cvar = MakeWidest();
    CComVariant given;
    given.vt = VT_I8;
    given.llVal = value;
    EXPECT_EQ(cvar->put_Value(given), S_OK);
    CComVariant read;
    EXPECT_EQ(cvar->get_Value(&read), S_OK);
    EXPECT_EQ(read.vt, VT_I8);
    EXPECT_EQ(read.llVal, value);
  }
}

TEST_F(LongIntCvarTest, PrintedValuesAreReadBackWithoutLoss) {
  for (const std::int64_t value : kExactValues) {
    SCOPED_TRACE(value);
    const auto cvar = MakeWidest();
    cvar->SetRequestedValue(value);
    const std::wstring text = TextOf(*cvar, &IVorCvar::GetAdaptedValueStringRemote);
    EXPECT_EQ(text, std::to_wstring(value));
    const auto other = MakeWidest();
    EXPECT_EQ(other->SetRequestedValueFromStringRemote(text.c_str()), S_OK);
    EXPECT_EQ(other->GetAdaptedValue(), value);
    const auto third = MakeWidest();
    EXPECT_EQ(third->SetRequestedValueFromStringScreen(text.c_str()), S_OK);
    EXPECT_EQ(third->GetAdaptedValue(), value);
    const auto fourth = MakeWidest();
    EXPECT_EQ(fourth->put_Value(CComVariant(text.c_str())), S_OK);
    EXPECT_EQ(fourth->GetAdaptedValue(), value);
  }
}

struct TextRow {
  const wchar_t* text;
  HRESULT result;
  std::int64_t request;
};
constexpr TextRow kTextRows[] = {
    {L"9223372036854775808", DISP_E_OVERFLOW, 0},
    {L"-9223372036854775809", S_OK, Limits::min()},  // the nearest double is -2^63
    {L"1e19", DISP_E_OVERFLOW, 0},
    {L"9.5e18", DISP_E_OVERFLOW, 0},
    {L"1e18", S_OK, 1000000000000000000},
    {L"+9007199254740993", S_OK, 9007199254740993},
    {L"  9007199254740993 ", S_OK, 9007199254740993},
    {L"9007199254740993K", S_OK, 9007199254740992000},  // prefixes multiply doubles
    {L"-2.9", S_OK, -2},
};

TEST_F(LongIntCvarTest, TextsReachTheEndsOf64Bits) {
  for (const TextRow& row : kTextRows) {
    SCOPED_TRACE(row.text);
    const auto cvar = MakeWidest();
    EXPECT_EQ(cvar->SetRequestedValueFromStringRemote(row.text), row.result);
    EXPECT_EQ(cvar->GetRequested(), row.request);
  }
}

TEST_F(LongIntCvarTest, TheIncrementProductSaturates) {
  const auto cvar = MakeWidest();
  cvar->SetGrain(Limits::max());
  EXPECT_EQ(cvar->Increment(std::numeric_limits<int>::max()), S_OK);
  EXPECT_EQ(cvar->GetRequested(), Limits::max());
  EXPECT_EQ(cvar->Increment(std::numeric_limits<int>::min()), S_OK);
  EXPECT_EQ(cvar->GetRequested(), Limits::min());
}

}  // namespace
