#include "CCvarSafeArray.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>

#include "CvarObject.h"
#include "ReadProperties.h"
#include "RecordingListener.h"
#include "SafeArray.h"
#include "TableText.h"

namespace {

using cvars::VariantTable;
using cvars::test::RecordingListener;
using Array = CComPtr<CvarObject<CCvarSafeArray>>;
using Masks = std::vector<NOTIFYTYPE>;

Array MakeArray(const wchar_t* value, const wchar_t* ranges, CVARFLAGS flags = CVARFLAGS(0)) {
  Array cvar = CvarObject<CCvarSafeArray>::Create();
  cvar->Initialize(L"Points", value, ranges, flags);
  return cvar;
}

std::wstring Text(IVorCvar* cvar, HRESULT (IVorCvar::*get)(BSTR*)) {
  CComBSTR text;
  EXPECT_EQ((cvar->*get)(&text), S_OK);
  return std::wstring(text.View());
}

std::wstring Adapted(const Array& cvar) {
  return Text(cvar, &IVorCvar::GetAdaptedValueStringRemote);
}

// The element at a column and a row of the adapted table.
CComVariant At(const Array& cvar, LONG column, LONG row) {
  CComVariant value;
  EXPECT_EQ(cvar->get_Value(&value), S_OK);
  const LONG indices[] = {column, row};
  CComVariant element;
  EXPECT_EQ(SafeArrayGetElement(value.parray, indices, &element), S_OK);
  return element;
}

struct AdaptCase {
  const char* name;
  const wchar_t* ranges;
  const wchar_t* value;
  const wchar_t* adapted;
};
constexpr AdaptCase kAdaptCases[] = {
    {"IntegersAreClamped", L"3,0,10,1", L"12;-4", L"10;0"},
    {"IntegersHaveNoGrain", L"3,0,10,5", L"3", L"3"},
    {"IntegersRoundTiesToEven", L"3,0,10,1", L"2.5,0", L"2,0"},
    {"QuarterGrain", L"5,0,1,0.25;5,0,1,0.25;5,0,1,0.25;5,0,1,0.25", L"0.6,0.63,0.62,1.7",
     L"500E-3,750E-3,500E-3,1"},
    {"UnsignedBelowZero", L"19,-5,10,1", L"-3", L"0"},
    {"BoundsRoundHalfAway", L"3,-1.5,1.5,1;3,-1.5,1.5,1", L"-9,9", L"-2,2"},
    {"BoundsBeyondTheTypeAreThoseOfTheType", L"16,-1e9,1e9,1", L"1000", L"127"},
    {"ColumnsBeyondTheRangesStay", L"3,0,10,1", L"99,99", L"10,99"},
    {"TextThatIsNoNumberStays", L"3,0,10,1", L"abc", L"abc"},
    {"NoRanges", L"", L"1.5,abc", L"1.5,abc"},
    {"NotANumberStays", L"5,0,10,1;5,0,10,0;5,0,10,-3;4,0,10,1", L"nan,nan,nan,nan",
     L"UNDEF,UNDEF,UNDEF,UNDEF"},
    {"InfinitiesAreClamped", L"5,-2,3,1;5,-2,3,1", L"-inf,inf", L"-2,3"},
    {"NotANumberIsNoInteger", L"3,0,10,1", L"nan", L"UNDEF"},
    {"DigitsFollowTheGrainOfTheColumn", L"5,0,10000,0.5", L"1234.25,1234567",
     L"1.2345E+3,1.23457e+06"},
    {"TextColumn", L"8,0,0,0", L"5", L"5"},
};

TEST(ArrayAdaptation, FitsEachColumnToItsRange) {
  for (const AdaptCase& row : kAdaptCases) {
    SCOPED_TRACE(row.name);
    const Array cvar = MakeArray(L"", row.ranges);
    EXPECT_EQ(cvar->SetRequestedValueFromString(row.value), S_OK);
    EXPECT_EQ(Adapted(cvar), row.adapted);
  }
}

TEST(ArrayAdaptation, QuarterGrainOnEachOfTheFourValues) {
  for (const auto& [request, adapted] : std::initializer_list<std::pair<double, double>>{
           {0.6, 0.5}, {0.63, 0.75}, {0.62, 0.5}, {1.7, 1}}) {
    CComVariant result;
    EXPECT_EQ(CCvarSafeArray::AdaptToRange(CComVariant(request), {VT_R8, 0, 1, 0.25}, &result),
              S_OK);
    EXPECT_EQ(result.vt, VT_R8);
    EXPECT_EQ(result.dblVal, adapted);
  }
}

TEST(ArrayAdaptation, ThreeSignificantDigitsStepByAHundredthOfTheValue) {
  CComVariant result;
  EXPECT_EQ(CCvarSafeArray::AdaptToRange(CComVariant(123.456), {VT_R8, 0, 1000, -3}, &result),
            S_OK);
  EXPECT_DOUBLE_EQ(result.dblVal, 100 * 1.23456);
}

TEST(ArrayAdaptation, NullOutputComesFirst) {
  EXPECT_EQ(CCvarSafeArray::AdaptToRange(CComVariant(L"x"), {VT_R8, 0, 1, 0.25}, nullptr),
            E_POINTER);
  EXPECT_EQ(CCvarSafeArray::AdaptToMinMaxForVarType(CComVariant(1), VT_I4, nullptr), E_POINTER);
}

TEST(ArrayAdaptation, ConversionErrorLeavesTheResult) {
  CComVariant result(7);
  EXPECT_EQ(CCvarSafeArray::AdaptToRange(CComVariant(L"x"), {VT_R8, 0, 1, 0.25}, &result),
            DISP_E_TYPEMISMATCH);
  EXPECT_EQ(result.vt, VT_I4);
  EXPECT_EQ(result.lVal, 7);
}

struct TypeCase {
  ULONG type;
  bool floating, isSigned, isUnsigned;
  double min, max;
};
constexpr TypeCase kTypeCases[] = {
    {VT_R4, true, false, false, -3.4028234663852886e38, 3.4028234663852886e38},
    {VT_R8, true, false, false, -1.7976931348623157e308, 1.7976931348623157e308},
    {VT_I1, false, true, false, -128, 127},
    {VT_I2, false, true, false, -32768, 32767},
    {VT_I4, false, true, false, -2147483648.0, 2147483647},
    {VT_INT, false, true, false, -2147483648.0, 2147483647},
    {VT_UI1, false, false, true, 0, 255},
    {VT_UI2, false, false, true, 0, 65535},
    {VT_UI4, false, false, true, 0, 4294967295},
    {VT_UINT, false, false, true, 0, 4294967295},
    {VT_BSTR, false, false, false, 0, 0},
    {VT_I8, false, false, false, 0, 0},
};

TEST(ArrayTypes, HaveTheirKindAndBounds) {
  for (const TypeCase& row : kTypeCases) {
    SCOPED_TRACE(row.type);
    EXPECT_EQ(CCvarSafeArray::IsFloatingPointVarType(row.type), row.floating);
    EXPECT_EQ(CCvarSafeArray::IsSignedIntegerVarType(row.type), row.isSigned);
    EXPECT_EQ(CCvarSafeArray::IsUnsignedIntegerVarType(row.type), row.isUnsigned);
    EXPECT_EQ(CCvarSafeArray::IsNumericVarType(row.type),
              row.floating || row.isSigned || row.isUnsigned);
    double min = 9;
    double max = 9;
    EXPECT_EQ(CCvarSafeArray::GetMinMaxForSignedIntegerVarType(row.type, &min, &max),
              row.isSigned ? S_OK : E_INVALIDARG);
    EXPECT_EQ(min, row.isSigned ? row.min : 0);
    EXPECT_EQ(max, row.isSigned ? row.max : 0);
    EXPECT_EQ(CCvarSafeArray::GetMinMaxForUnsignedIntegerVarType(row.type, &min, &max),
              row.isUnsigned ? S_OK : E_INVALIDARG);
    EXPECT_EQ(max, row.isUnsigned ? row.max : 0);
  }
}

// The answer is E_INVALIDARG although the bounds are given; that is meant.
TEST(ArrayTypes, FloatingPointBoundsAnswerInvalidArgumentInEveryCase) {
  double min = 0;
  double max = 0;
  EXPECT_EQ(CCvarSafeArray::GetMinMaxForFloatingPointVarType(VT_R4, &min, &max), E_INVALIDARG);
  EXPECT_EQ(min, -3.4028234663852886e38);
  EXPECT_EQ(max, 3.4028234663852886e38);
  EXPECT_EQ(CCvarSafeArray::GetMinMaxForFloatingPointVarType(VT_I4, &min, &max), E_INVALIDARG);
  EXPECT_EQ(CCvarSafeArray::GetMinMaxForFloatingPointVarType(VT_R4, nullptr, &max), E_POINTER);
}

TEST(ArrayRanges, TextRoundTrip) {
  const Array cvar = MakeArray(L"", L"3,0,10,1");
  EXPECT_EQ(Text(cvar, &IVorCvar::get_Range), L"3,0,10,1");
  EXPECT_EQ(cvar->SetRange(L"5,0,1K,0.5;2,-5,5,1"), S_OK);
  EXPECT_EQ(Text(cvar, &IVorCvar::get_Range), L"5,0,1000,0.5;2,-5,5,1");
}

struct RangeCase {
  const wchar_t* text;
  const wchar_t* normalised;
};
constexpr RangeCase kRangeCases[] = {
    {L"3,0,10", L"5,-1e+38,1e+38,1e-38"},
    {L"3,0,10,1,2", L"5,-1e+38,1e+38,1e-38"},
    {L"x,0,10,1", L"5,0,10,1"},
    {L"3,a,10,b", L"3,-1e+38,10,1e-38"},
    {L"3,0,1K,1", L"3,0,1000,1"},
    {L"3,0,10,1;", L"3,0,10,1;5,-1e+38,1e+38,1e-38"},
    {L"", L""},
};

TEST(ArrayRanges, UnreadableFieldsKeepTheirDefaults) {
  for (const RangeCase& row : kRangeCases) {
    EXPECT_EQ(cvars::TextFromRanges(cvars::RangesFromText(row.text)), row.normalised);
  }
}

struct ShapeCase {
  const wchar_t* text;
  UINT dimensions;
  LONG columns, rows;
};
constexpr ShapeCase kShapeCases[] = {
    {L"", 1, 0, 0},        {L"1", 1, 1, 0},      {L"1,2,3", 1, 3, 0}, {L"1,2;3,4", 2, 2, 2},
    {L"1;2,3,4", 2, 3, 2}, {L"1,2;;3", 2, 2, 2}, {L"1;", 2, 1, 1},    {L";", 1, 0, 0},
    {L",", 1, 0, 0},       {L",;,", 1, 0, 0},
};

TEST(ArrayText, GivesTheShape) {
  for (const ShapeCase& row : kShapeCases) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(row.text)));
    const VariantTable table = cvars::TableFromText(row.text);
    SAFEARRAY* const array = table;
    ASSERT_EQ(SafeArrayGetDim(array), row.dimensions);
    LONG last = 0;
    ASSERT_EQ(SafeArrayGetUBound(array, 1, &last), S_OK);
    EXPECT_EQ(last, row.columns - 1);
    if (row.dimensions == 2) {
      ASSERT_EQ(SafeArrayGetUBound(array, 2, &last), S_OK);
      EXPECT_EQ(last, row.rows - 1);
    }
  }
}

TEST(ArrayText, FirstIndexIsTheColumn) {
  const Array cvar = MakeArray(L"1,2,3;4,5,6", L"");
  EXPECT_EQ(At(cvar, 2, 0).dblVal, 3);
  EXPECT_EQ(At(cvar, 0, 1).dblVal, 4);
  EXPECT_EQ(Adapted(cvar), L"1,2,3;4,5,6");
}

TEST(ArrayText, ShortRowsEndInEmptyElementsWhichPrintAsZero) {
  const Array cvar = MakeArray(L"1;2,3", L"");
  EXPECT_EQ(At(cvar, 1, 0).vt, VT_EMPTY);
  EXPECT_EQ(Adapted(cvar), L"1,0;2,3");
}

TEST(ArrayText, NumbersAreStoredAsDoublesAndTheRestAsText) {
  const Array cvar = MakeArray(L"1.5,abc, 7 ,5m", L"");
  CComVariant value;
  ASSERT_EQ(cvar->get_Value(&value), S_OK);
  ASSERT_EQ(value.vt, VT_ARRAY | VT_VARIANT);
  void* data = nullptr;
  ASSERT_EQ(SafeArrayAccessData(value.parray, &data), S_OK);
  const auto* element = static_cast<VARIANT*>(data);
  EXPECT_EQ(element[0].vt, VT_R8);
  EXPECT_EQ(element[0].dblVal, 1.5);
  EXPECT_EQ(element[1].vt, VT_BSTR);
  EXPECT_EQ(element[2].dblVal, 7);
  EXPECT_EQ(element[3].vt, VT_BSTR);  // remote prefixes are upper case
  ASSERT_EQ(SafeArrayUnaccessData(value.parray), S_OK);
  EXPECT_EQ(Text(MakeArray(L"1.5,abc", L""), &IVorCvar::GetAdaptedValueStringAutomation),
            L"1.5,abc");
}

TEST(ArrayText, ElementsThatAreNoTextAreNamedByTheirType) {
  VariantTable table(ULONG{1});
  CComVariant object(static_cast<IUnknown*>(cvars::test::PlainObject::Create()));
  ASSERT_EQ(table.SetAt(0, object), S_OK);
  EXPECT_EQ(cvars::TextFromTable(table, {}), L"unsupported-variant-type(0x0000000d)");
}

TEST(ArrayText, MoreThanTwoDimensionsGiveTheEmptyText) {
  const SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}, {2, 0}};
  VariantTable table;
  ASSERT_EQ(table.Create(bounds, 3), S_OK);
  const Array cvar = MakeArray(L"", L"3,0,10,1");
  CComVariant value = cvars::ToVariant(table);
  EXPECT_EQ(cvar->put_Value(value), S_OK);
  EXPECT_EQ(Adapted(cvar), L"");
  CComVariant back;
  ASSERT_EQ(cvar->get_Value(&back), S_OK);
  EXPECT_EQ(SafeArrayGetDim(back.parray), 3u);
}

TEST(ArrayRequest, NotifiesOnceAndNotForAnEqualArray) {
  const Array cvar = MakeArray(L"1,2", L"3,0,10,1");
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->put_Value(CComVariant(L"1,3")), S_OK);
  EXPECT_EQ(cvar->put_Value(CComVariant(L"1,3")), S_OK);
  EXPECT_EQ(cvar->put_Value(CComVariant(L"11,3")), S_OK);
  EXPECT_EQ(cvar->put_Value(CComVariant(L"12,3")), S_OK);
  EXPECT_EQ(listener->masks, (Masks{NOTIFY_REQUESTED | NOTIFY_VALUE,
                                    NOTIFY_REQUESTED | NOTIFY_VALUE, NOTIFY_REQUESTED}));
}

TEST(ArrayRequest, TakesOtherElementTypesAndReferences) {
  const Array cvar = MakeArray(L"", L"");
  SAFEARRAY* longs = SafeArrayCreateVector(VT_I4, 1, 2);
  const LONG values[] = {7, 8};
  for (LONG i = 0; i < 2; ++i) {
    const LONG index = i + 1;
    ASSERT_EQ(SafeArrayPutElement(longs, &index, const_cast<LONG*>(&values[i])), S_OK);
  }
  VARIANT value;
  VariantInit(&value);
  value.vt = VT_ARRAY | VT_I4 | VT_BYREF;
  value.pparray = &longs;
  EXPECT_EQ(cvar->put_Value(value), S_OK);
  EXPECT_EQ(Adapted(cvar), L"7,8");
  ASSERT_EQ(SafeArrayLock(longs), S_OK);
  value.vt = VT_ARRAY | VT_I4;
  value.parray = longs;
  EXPECT_EQ(cvar->put_Value(value), S_OK);
  ASSERT_EQ(SafeArrayUnlock(longs), S_OK);
  ASSERT_EQ(SafeArrayDestroy(longs), S_OK);
  BSTR text = SysAllocString(L"5;6");
  value.vt = VT_BSTR | VT_BYREF;
  value.pbstrVal = &text;
  EXPECT_EQ(cvar->put_Value(value), S_OK);
  SysFreeString(text);
  EXPECT_EQ(Adapted(cvar), L"5;6");
}

TEST(ArrayRequest, EmptyIsNoArrayAndOtherVariantsAreRefused) {
  const Array cvar = MakeArray(L"1", L"");
  EXPECT_EQ(cvar->put_Value(CComVariant(5)), E_INVALIDARG);
  EXPECT_EQ(cvar->put_Value(CComVariant(true)), E_INVALIDARG);
  EXPECT_EQ(Adapted(cvar), L"1");
  EXPECT_EQ(cvar->put_Value(CComVariant()), S_OK);
  EXPECT_EQ(Adapted(cvar), L"");
}

TEST(ArrayRequest, ReadOnlyRefusesUnlessForcedTextsIncluded) {
  const Array cvar = MakeArray(L"1", L"", CVARFLAG_READONLY);
  EXPECT_EQ(cvar->put_Value(CComVariant(L"2")), E_ACCESSDENIED);
  EXPECT_EQ(cvar->put_Value(CComVariant(5)), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetRequestedValueFromString(L"2"), E_ACCESSDENIED);
  EXPECT_EQ(cvar->SetToDefault(), E_ACCESSDENIED);
  EXPECT_EQ(cvar->put_Value(CComVariant(L"2"), true), S_OK);
  EXPECT_EQ(Adapted(cvar), L"2");
}

TEST(ArrayRequest, ArraysAreCopiedInAndOut) {
  VariantTable table(ULONG{1});
  ASSERT_EQ(table.SetAt(0, CComVariant(1.0)), S_OK);
  const Array cvar = MakeArray(L"", L"");
  VARIANT value;
  VariantInit(&value);
  value.vt = VT_ARRAY | VT_VARIANT;
  value.parray = table;
  ASSERT_EQ(cvar->put_Value(value), S_OK);
  ASSERT_EQ(table.SetAt(0, CComVariant(2.0)), S_OK);
  EXPECT_EQ(Adapted(cvar), L"1");
  SAFEARRAY* out = nullptr;
  ASSERT_EQ(cvar->GetAdaptedValue(&out), S_OK);
  const LONG zero = 0;
  CComVariant three(3.0);
  ASSERT_EQ(SafeArrayPutElement(out, &zero, &three), S_OK);
  EXPECT_EQ(Adapted(cvar), L"1");
  ASSERT_EQ(SafeArrayDestroy(out), S_OK);
}

TEST(ArrayRequest, AnotherShapeOfTheSameElementsIsAChange) {
  const Array cvar = MakeArray(L"1,2", L"");
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->put_Value(CComVariant(L"1;2")), S_OK);
  EXPECT_EQ(listener->masks, Masks{NOTIFY_REQUESTED | NOTIFY_VALUE});
}

TEST(ArrayEquality, IgnoresLowerBounds) {
  VariantTable a(ULONG{1}, 0);
  VariantTable b(ULONG{1}, 5);
  EXPECT_TRUE(CCvarSafeArray::AreCComSafeArraysEqual(a, b));
  ASSERT_EQ(a.SetAt(0, CComVariant(1)), S_OK);
  EXPECT_FALSE(CCvarSafeArray::AreCComSafeArraysEqual(a, b));
  ASSERT_EQ(b.SetAt(5, CComVariant(1.0)), S_OK);
  EXPECT_FALSE(CCvarSafeArray::AreCComSafeArraysEqual(a, b));  // another type
}

TEST(ArrayRange, SetRangeAdaptsAgainAndNotifies) {
  const Array cvar = MakeArray(L"50", L"");
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetRange(L"3,0,10,1"), S_OK);
  EXPECT_EQ(cvar->SetRange(L"3,0,20,1"), S_OK);
  EXPECT_EQ(cvar->SetRange(L"3,0,20,1;3,0,1,1"), S_OK);
  EXPECT_EQ(listener->masks,
            (Masks{NOTIFY_RANGE | NOTIFY_VALUE, NOTIFY_RANGE | NOTIFY_VALUE, NOTIFY_RANGE}));
  EXPECT_EQ(Adapted(cvar), L"20");
}

TEST(ArrayRange, TheSameRangesAreNoChange) {
  const Array cvar = MakeArray(L"50", L"3,0,10,1;5,0,1,0.5");
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetRange(L"3,0,10,1;5,0,1,0.5"), S_FALSE);
  EXPECT_EQ(cvar->SetRange(std::vector<SColRangeDesc>{{VT_I4, 0, 10, 1}, {VT_R8, 0, 1, 0.5}}),
            S_FALSE);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(cvar->SetRange(L"3,0,10,1"), S_OK);
  EXPECT_EQ(cvar->SetRange(L"3,0,10,2"), S_OK);
  EXPECT_EQ(cvar->SetRange(L""), S_OK);
  EXPECT_EQ(cvar->SetRange(L""), S_FALSE);
  EXPECT_EQ(listener->masks, (Masks{NOTIFY_RANGE, NOTIFY_RANGE, NOTIFY_RANGE | NOTIFY_VALUE}));
}

TEST(ArrayDefault, IsCopiedAskedForAndRequested) {
  const Array cvar = MakeArray(L"1,2", L"");
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->SetDefault(L"1,2"), S_FALSE);
  EXPECT_EQ(cvar->SetDefault(L"3"), S_OK);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_ATTRIBUTES});
  int isDefault = 1;
  EXPECT_EQ(cvar->IsDefault(&isDefault), S_OK);
  EXPECT_EQ(isDefault, 0);
  EXPECT_EQ(cvar->SetToDefault(), S_OK);
  EXPECT_EQ(cvar->IsDefault(&isDefault), S_OK);
  EXPECT_EQ(isDefault, 1);
  SAFEARRAY* out = nullptr;
  EXPECT_EQ(cvar->GetDefault(nullptr), E_POINTER);
  ASSERT_EQ(cvar->GetDefault(&out), S_OK);
  EXPECT_EQ(SafeArrayDestroy(out), S_OK);
}

TEST(ArrayTexts, SignatureAndProperties) {
  const Array cvar = MakeArray(L"12;-4", L"3,0,10,1");
  EXPECT_EQ(Text(cvar, &IVorCvar::get_Signature),
            L"Type,SafeArray,Request,12;-4,Adapt,10;0,Default,12;-4,Range,3,0,10,1,Flags,-");
  EXPECT_EQ(cvars::test::OwnPropertiesOf(*cvar),
            (cvars::test::Properties{{L"AdaptedValue", VT_ARRAY | VT_VARIANT, L""},
                                     {L"Range", VT_BSTR, L"3,0,10,1"},
                                     {L"RequestedValue", VT_ARRAY | VT_VARIANT, L""}}));
  int adapted = 0;
  EXPECT_EQ(cvar->get_IsValueAdapted(&adapted), S_OK);
  EXPECT_EQ(adapted, 1);
}

TEST(ArrayNorm, IsNotImplemented) {
  const Array cvar = MakeArray(L"1", L"");
  double position = 0;
  EXPECT_EQ(cvar->GetAdaptedValueNorm(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetAdaptedValueNorm(&position), E_NOTIMPL);
  EXPECT_EQ(cvar->SetRequestedValueNorm(0.5), E_NOTIMPL);
  EXPECT_EQ(cvar->Increment(1), E_NOTIMPL);
}

TEST(ArrayRequest, AReferenceToAVariantIsFollowedOnce) {
  const Array cvar = MakeArray(L"1", L"");
  CComVariant text(L"4,5");
  VARIANT reference{};
  reference.vt = VT_BYREF | VT_VARIANT;
  reference.pvarVal = &text;
  EXPECT_EQ(cvar->put_Value(reference), S_OK);
  EXPECT_EQ(Adapted(cvar), L"4,5");
  CComVariant table(VT_EMPTY);
  EXPECT_EQ(MakeArray(L"6;7", L"")->get_Value(&table), S_OK);
  reference.pvarVal = &table;
  EXPECT_EQ(cvar->put_Value(reference), S_OK);
  EXPECT_EQ(Adapted(cvar), L"6;7");

  VARIANT twice{};
  twice.vt = VT_BYREF | VT_VARIANT;
  twice.pvarVal = &reference;
  EXPECT_EQ(cvar->put_Value(twice), E_INVALIDARG);
  CComVariant number(8);
  reference.pvarVal = &number;
  EXPECT_EQ(cvar->put_Value(reference), E_INVALIDARG);
  EXPECT_EQ(Adapted(cvar), L"6;7");
}

TEST(ArrayConversion, TextsBecomeTablesAndBack) {
  VariantTable table;
  EXPECT_EQ(CCvarSafeArray::ConvertStrToSafeArray(L"1.5,abc", &table), S_OK);
  EXPECT_EQ(SafeArrayGetDim(table), 1u);
  EXPECT_EQ(table.GetAt(0).vt, VT_R8);
  EXPECT_EQ(table.GetAt(1).vt, VT_BSTR);
  CComBSTR text;
  EXPECT_EQ(CCvarSafeArray::ConvertSafeArrayToStr(table, {}, &text), S_OK);
  EXPECT_STREQ(text, L"1.5,abc");
  EXPECT_EQ(CCvarSafeArray::ConvertStrToSafeArray(nullptr, &table), S_OK);
  EXPECT_EQ(SafeArrayGetDim(table), 1u);
  EXPECT_EQ(table.GetCount(), 0u);
  EXPECT_EQ(CCvarSafeArray::ConvertStrToSafeArray(L"1", nullptr), E_POINTER);
  EXPECT_EQ(CCvarSafeArray::ConvertSafeArrayToStr(table, {}, nullptr), E_POINTER);
}

TEST(ArrayConversion, TextsBecomeRangesAndBack) {
  std::vector<SColRangeDesc> ranges;
  EXPECT_EQ(CCvarSafeArray::ConvertRangeStrToRangeDescVector(L"3,0,10,1;5,1,2", &ranges), S_OK);
  ASSERT_EQ(ranges.size(), 2u);
  EXPECT_EQ(ranges[0].elementType, ULONG{VT_I4});
  EXPECT_EQ(ranges[0].maximum, 10);
  EXPECT_EQ(ranges[1].elementType, ULONG{VT_R8});  // three fields: the column keeps its defaults
  EXPECT_EQ(ranges[1].minimum, -1e38);
  EXPECT_EQ(ranges[1].maximum, 1e38);
  EXPECT_EQ(ranges[1].grain, 1e-38);
  CComBSTR text;
  EXPECT_EQ(CCvarSafeArray::ConvertRangeDescVectorToRangeStr(ranges, &text), S_OK);
  EXPECT_STREQ(text, L"3,0,10,1;5,-1e+38,1e+38,1e-38");
  EXPECT_EQ(CCvarSafeArray::ConvertRangeStrToRangeDescVector(nullptr, &ranges), S_OK);
  EXPECT_TRUE(ranges.empty());
  EXPECT_EQ(CCvarSafeArray::ConvertRangeStrToRangeDescVector(L"", nullptr), E_POINTER);
  EXPECT_EQ(CCvarSafeArray::ConvertRangeDescVectorToRangeStr(ranges, nullptr), E_POINTER);
}

}  // namespace
