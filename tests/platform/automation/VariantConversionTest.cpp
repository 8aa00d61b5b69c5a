#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "CComBSTR.h"
#include "CComSafeArray.h"
#include "CComVariant.h"
#include "GoldenTable.h"
#include "PlainLocale.h"
#include "ValueTable.h"

namespace {

using cvars::test::Bits;
using cvars::test::GoldenRow;
using cvars::test::ReadTable;
using cvars::test::Unquote;

const std::map<std::string, VARTYPE>& Tags() {
  static const std::map<std::string, VARTYPE> tags = {{"EMPTY", VT_EMPTY},
                                                      {"NULL", VT_NULL},
                                                      {"I1", VT_I1},
                                                      {"UI1", VT_UI1},
                                                      {"I2", VT_I2},
                                                      {"UI2", VT_UI2},
                                                      {"I4", VT_I4},
                                                      {"UI4", VT_UI4},
                                                      {"I8", VT_I8},
                                                      {"UI8", VT_UI8},
                                                      {"INT", VT_INT},
                                                      {"UINT", VT_UINT},
                                                      {"R4", VT_R4},
                                                      {"R8", VT_R8},
                                                      {"BOOL", VT_BOOL},
                                                      {"CY", VT_CY},
                                                      {"DATE", VT_DATE},
                                                      {"BSTR", VT_BSTR},
                                                      {"ERROR", VT_ERROR},
                                                      {"DISPATCH", VT_DISPATCH},
                                                      {"UNKNOWN", VT_UNKNOWN},
                                                      {"0xff", 0xFF},
                                                      {"0xf", 0xF},
                                                      {"VOID(0x18)", VT_VOID},
                                                      {"DECIMAL", VT_DECIMAL},
                                                      {"RECORD(0x24)", VT_RECORD}};
  return tags;
}

const std::map<std::string, HRESULT>& Results() {
  static const std::map<std::string, HRESULT> results = {
      {"S_OK", S_OK},
      {"DISP_E_OVERFLOW", DISP_E_OVERFLOW},
      {"DISP_E_TYPEMISMATCH", DISP_E_TYPEMISMATCH},
      {"DISP_E_BADVARTYPE", DISP_E_BADVARTYPE},
      {"E_INVALIDARG", E_INVALIDARG}};
  return results;
}

double PlainNumber(const std::string& text) {
  const cvars::test::PlainLocale plain;
  return std::stod(text);
}

// A value of a table and what it refers to.
struct TableValue {
  VARIANT value{};
  VARIANT referred{};
  CComBSTR text;
  CComSafeArray<BYTE> bytes;
  CComSafeArray<VARIANT> variants;
  CComSafeArray<double> doubles;
};

void FillPlain(VARIANT& value, CComBSTR& text, const std::string& type, const std::string& column) {
  value.vt = Tags().at(type);
  switch (value.vt) {
    case VT_EMPTY:
    case VT_NULL:
    case VT_UNKNOWN:
    case VT_DISPATCH:
    case VT_RECORD:
    case VT_VOID:
    case 0xFF:
    case 0xF:
      break;
    case VT_R4:
      value.fltVal = std::bit_cast<float>(static_cast<std::uint32_t>(Bits(column)));
      break;
    case VT_R8:
    case VT_DATE:
      value.dblVal = column.find(':') == std::string::npos ? PlainNumber(column)
                                                           : std::bit_cast<double>(Bits(column));
      break;
    case VT_BSTR:
      if (column == "null") break;
      text = CComBSTR(std::wstring_view(Unquote(column)));
      value.bstrVal = text;
      break;
    case VT_ERROR:
      value.ulVal = static_cast<ULONG>(Bits(column));
      break;
    case VT_DECIMAL: {
      DECIMAL decimal{};
      std::string digits = column;
      if (digits[0] == '-') {
        decimal.sign = 0x80;
        digits.erase(0, 1);
      }
      const std::size_t point = digits.find('.');
      decimal.scale = static_cast<BYTE>(digits.size() - point - 1);
      digits.erase(point, 1);
      for (const char digit : digits) {
        // Ten times the 96 bits, in two steps of 48.
        const std::uint64_t low =
            (decimal.Lo64 & 0xFFFFFFFF) * 10 + static_cast<std::uint64_t>(digit - '0');
        const std::uint64_t high = (decimal.Lo64 >> 32) * 10 + (low >> 32);
        decimal.Lo64 = high << 32 | (low & 0xFFFFFFFF);
        decimal.Hi32 = static_cast<ULONG>(decimal.Hi32 * 10 + (high >> 32));
      }
      cvars::SetDecimal(value, decimal);
      break;
    }
    case VT_UI8:
      value.ullVal = std::stoull(column);
      break;
    default:
      value.llVal = std::stoll(column);
      break;
  }
}

void Fill(TableValue& made, const std::string& type, const std::string& column) {
  if (type.rfind("ARRAY|", 0) == 0) {
    made.value.vt = VT_ARRAY | VT_VARIANT;
    if (column == "null") return;
    if (type == "ARRAY|UI1") {
      made.value.vt = VT_ARRAY | VT_UI1;
      for (const int byte : {0x41, 0, 0x42, 0}) made.bytes.Add(static_cast<BYTE>(byte));
      made.value.parray = made.bytes;
    } else if (type == "ARRAY|R8") {
      made.value.vt = VT_ARRAY | VT_R8;
      made.doubles.Add(1.0);
      made.value.parray = made.doubles;
    } else {
      made.variants.Create(2);
      made.value.parray = made.variants;
    }
    return;
  }
  if (type.rfind("BYREF|", 0) != 0) {
    FillPlain(made.value, made.text, type, column);
    return;
  }
  const std::string inner = type.substr(6);
  if (column == "null") {
    made.value.vt = VT_BYREF | Tags().at(inner);
    return;
  }
  const std::string shown = column.substr(2);
  if (inner == "VARIANT") {
    const std::size_t blank = shown.find(' ');
    FillPlain(made.referred, made.text, shown.substr(0, blank),
              blank == std::string::npos ? "" : shown.substr(blank + 1));
    made.value.vt = VT_BYREF | VT_VARIANT;
    made.value.pvarVal = &made.referred;
    return;
  }
  FillPlain(made.referred, made.text, inner, shown);
  made.value.vt = VT_BYREF | Tags().at(inner);
  made.value.byref = &made.referred.llVal;
}

std::string Where(const GoldenRow& row) {
  std::string text = "line " + std::to_string(row.line);
  for (const std::string& column : row.columns) text += " | " + column;
  return text;
}

void CheckRow(const GoldenRow& row, USHORT flags) {
  TableValue source;
  Fill(source, row.columns[0], row.columns[1]);
  const VARIANT before = source.value;
  CComVariant result(LONG{4711});
  const VARTYPE type = Tags().at(row.columns[2]);
  const HRESULT wanted = Results().at(row.columns[4]);
  ASSERT_EQ(VariantChangeTypeEx(&result, &source.value, 1033, flags, type), wanted) << Where(row);
  EXPECT_EQ(std::memcmp(&before, &source.value, sizeof(before)), 0) << Where(row);
  if (FAILED(wanted)) {
    EXPECT_EQ(result.vt, VT_I4) << Where(row);
    EXPECT_EQ(result.lVal, 4711) << Where(row);
    return;
  }
  ASSERT_EQ(result.vt, type) << Where(row);
  if (type == VT_BSTR) {
    const std::wstring text = Unquote(row.columns[5]);
    EXPECT_TRUE(std::wstring_view(result.bstrVal, SysStringLen(result.bstrVal)) == text)
        << Where(row);
    return;
  }
  TableValue expected;
  FillPlain(expected.value, expected.text, row.columns[2], row.columns[5]);
  const std::map<VARTYPE, std::size_t> sizes = {{VT_I1, 1},   {VT_UI1, 1}, {VT_I2, 2},  {VT_UI2, 2},
                                                {VT_BOOL, 2}, {VT_I8, 8},  {VT_UI8, 8}, {VT_R8, 8}};
  const auto size = sizes.find(type);
  EXPECT_EQ(
      std::memcmp(&expected.value.llVal, &result.llVal, size == sizes.end() ? 4 : size->second), 0)
      << Where(row) << " gave " << result.llVal;
}

TEST(VariantConversions, EveryRowOfTheTable) {
  const auto rows = ReadTable("variant_conversions.tsv");
  EXPECT_EQ(rows.size(), 7389u);
  for (const GoldenRow& row : rows) {
    if (row.columns[3] != "alphabool") CheckRow(row, 0);
    if (row.columns[3] != "plain") {
      CheckRow(row, VARIANT_ALPHABOOL);
      CheckRow(row, VARIANT_NOUSEROVERRIDE);
    }
  }
}

TEST(VariantConversions, EveryDoublePrintsAsInTheTable) {
  const auto rows = ReadTable("double_to_text.tsv");
  EXPECT_EQ(rows.size(), 336u);
  for (const GoldenRow& row : rows) {
    CComVariant value(std::bit_cast<double>(Bits(row.columns[0])));
    ASSERT_EQ(value.ChangeType(VT_BSTR), S_OK) << Where(row);
    EXPECT_TRUE(std::wstring(value.bstrVal) == Unquote(row.columns[1])) << Where(row);
  }
}

TEST(VariantConversions, EveryFloatPrintsAsInTheTable) {
  const auto rows = ReadTable("float_to_text.tsv");
  EXPECT_EQ(rows.size(), 255u);
  for (const GoldenRow& row : rows) {
    CComVariant value(std::bit_cast<float>(static_cast<std::uint32_t>(Bits(row.columns[0]))));
    ASSERT_EQ(value.ChangeType(VT_BSTR), S_OK) << Where(row);
    EXPECT_TRUE(std::wstring(value.bstrVal) == Unquote(row.columns[1])) << Where(row);
  }
}

TEST(VariantConversions, ByteArrayReadsAsUtf16LittleEndian) {
  CComSafeArray<BYTE> bytes;
  for (const int byte : {0x3D, 0xD8, 0x00, 0xDE, 0xB5, 0x03}) bytes.Add(static_cast<BYTE>(byte));
  VARIANT source{};
  source.vt = VT_ARRAY | VT_UI1;
  source.parray = bytes;
  CComVariant text;
  ASSERT_EQ(text.ChangeType(VT_BSTR, &source), S_OK);
  EXPECT_TRUE(std::wstring(text.bstrVal) == L"\U0001F600\u03B5");
}

TEST(VariantConversions, FailedConversionInPlaceKeepsTheText) {
  CComVariant value(L"12abc");
  EXPECT_EQ(value.ChangeType(VT_I4), DISP_E_TYPEMISMATCH);
  ASSERT_EQ(value.vt, VT_BSTR);
  EXPECT_TRUE(std::wstring(value.bstrVal) == L"12abc");
}

TEST(VariantConversions, DecimalAndCurrencyAndDateRoundTrip) {
  CComVariant value(L"-12.345");
  ASSERT_EQ(value.ChangeType(VT_DECIMAL), S_OK);
  EXPECT_EQ(cvars::GetDecimal(value).scale, 3);
  ASSERT_EQ(value.ChangeType(VT_CY), S_OK);
  EXPECT_EQ(value.cyVal.int64, -123450);
  ASSERT_EQ(value.ChangeType(VT_BSTR), S_OK);
  EXPECT_TRUE(std::wstring(value.bstrVal) == L"-12.345");
  CComVariant date(L"1/1/2000 12:00:00 PM");
  ASSERT_EQ(date.ChangeType(VT_DATE), S_OK);
  EXPECT_EQ(date.date, 36526.5);
}

TEST(VariantConversions, ReferencesAreFollowedThroughOneVariant) {
  LONG number = 77;
  VARIANT inner{};
  inner.vt = VT_BYREF | VT_I4;
  inner.plVal = &number;
  VARIANT outer{};
  outer.vt = VT_BYREF | VT_VARIANT;
  outer.pvarVal = &inner;
  CComVariant copy;
  ASSERT_EQ(VariantCopyInd(&copy, &outer), S_OK);
  EXPECT_EQ(copy.vt, VT_I4);
  EXPECT_EQ(copy.lVal, 77);
  VARIANT twice{};
  twice.vt = VT_BYREF | VT_VARIANT;
  twice.pvarVal = &outer;
  EXPECT_EQ(VariantCopyInd(&copy, &twice), E_INVALIDARG);
  EXPECT_EQ(copy.lVal, 77);
}

struct ExactCase {
  const char* name;
  CComVariant from;
  VARTYPE to;
  const wchar_t* text;
};

TEST(VariantConversions, NumbersBecomeCurrenciesDecimalsAndDates) {
  const ExactCase kExactCases[] = {
      {"IntegerToCurrency", CComVariant(-5), VT_CY, L"-5"},
      {"IntegerToDecimal", CComVariant(-5), VT_DECIMAL, L"-5"},
      {"LargeIntegerToDecimal", CComVariant(9'000'000'000'000'000'001LL), VT_DECIMAL,
       L"9000000000000000001"},
      {"RealToCurrencyKeepsFourDecimals", CComVariant(1.23456), VT_CY, L"1.2346"},
      {"RealToDecimal", CComVariant(-0.125), VT_DECIMAL, L"-0.125"},
  };
  for (const ExactCase& row : kExactCases) {
    SCOPED_TRACE(row.name);
    CComVariant exact;
    ASSERT_EQ(exact.ChangeType(row.to, &row.from), S_OK);
    EXPECT_EQ(exact.vt, row.to);
    ASSERT_EQ(exact.ChangeType(VT_BSTR), S_OK);
    EXPECT_STREQ(exact.bstrVal, row.text);
  }
  CComVariant date;
  const CComVariant day(2);
  ASSERT_EQ(date.ChangeType(VT_DATE, &day), S_OK);
  EXPECT_EQ(date.date, 2.0);
  const CComVariant noon(2.5);
  ASSERT_EQ(date.ChangeType(VT_DATE, &noon), S_OK);
  EXPECT_EQ(date.date, 2.5);
}

TEST(VariantConversions, WhatACurrencyOrDateCannotHoldOverflows) {
  CComVariant kept(7);
  const CComVariant infinite(std::numeric_limits<double>::infinity());
  const CComVariant large(1e300);
  const CComVariant amount(922'337'203'685'478LL);  // 2^63 is 922337203685477.5808 x 10000
  EXPECT_EQ(kept.ChangeType(VT_CY, &infinite), DISP_E_OVERFLOW);
  EXPECT_EQ(kept.ChangeType(VT_DECIMAL, &infinite), DISP_E_OVERFLOW);
  EXPECT_EQ(kept.ChangeType(VT_CY, &large), DISP_E_OVERFLOW);
  EXPECT_EQ(kept.ChangeType(VT_DECIMAL, &large), DISP_E_OVERFLOW);
  EXPECT_EQ(kept.ChangeType(VT_DATE, &large), DISP_E_OVERFLOW);
  EXPECT_EQ(kept.ChangeType(VT_CY, &amount), DISP_E_OVERFLOW);
  EXPECT_EQ(kept.lVal, 7);
}

TEST(Variants, ReferencesToEveryTypeAreFollowed) {
  cvars::test::ValueObject object(true);
  BSTR const text = SysAllocString(L"text");
  std::vector<VARIANT> held;
  const auto add = [&held](VARTYPE type, auto VARIANT::*member, auto value) {
    VARIANT variant{};
    variant.vt = type;
    variant.*member = value;
    held.push_back(variant);
  };
  add(VT_I1, &VARIANT::cVal, static_cast<char>(-3));
  add(VT_UI1, &VARIANT::bVal, BYTE{3});
  add(VT_I2, &VARIANT::iVal, SHORT{-300});
  add(VT_UI2, &VARIANT::uiVal, USHORT{300});
  add(VT_BOOL, &VARIANT::boolVal, VARIANT_TRUE);
  add(VT_I4, &VARIANT::lVal, LONG{-70000});
  add(VT_UI4, &VARIANT::ulVal, ULONG{70000});
  add(VT_INT, &VARIANT::intVal, -70000);
  add(VT_UINT, &VARIANT::uintVal, 70000u);
  add(VT_ERROR, &VARIANT::scode, E_FAIL);
  add(VT_R4, &VARIANT::fltVal, 0.5f);
  add(VT_R8, &VARIANT::dblVal, 0.25);
  add(VT_DATE, &VARIANT::date, 2.5);
  add(VT_I8, &VARIANT::llVal, LONGLONG{-5'000'000'000});
  add(VT_UI8, &VARIANT::ullVal, ULONGLONG{5'000'000'000});
  add(VT_CY, &VARIANT::cyVal, CY{15000});
  add(VT_BSTR, &VARIANT::bstrVal, text);
  add(VT_UNKNOWN, &VARIANT::punkVal, static_cast<IUnknown*>(&object));
  add(VT_DISPATCH, &VARIANT::pdispVal, static_cast<IDispatch*>(&object));
  VARIANT decimal{};
  decimal.decVal = {0, 2, 0x80, 0, 12345};
  decimal.vt = VT_DECIMAL;
  held.push_back(decimal);
  for (VARIANT& value : held) {
    SCOPED_TRACE(value.vt);
    VARIANT reference{};
    reference.vt = static_cast<VARTYPE>(value.vt | VT_BYREF);
    // A decimal lies over the tag; all other values start behind it.
    reference.byref = value.vt == VT_DECIMAL ? static_cast<void*>(&value.decVal)
                                             : static_cast<void*>(&value.llVal);
    CComVariant copy;
    EXPECT_EQ(VariantCopyInd(&copy, &reference), S_OK);
    ASSERT_EQ(copy.vt, value.vt);
    if (value.vt == VT_BSTR) {
      EXPECT_STREQ(copy.bstrVal, L"text");
    } else if (value.vt == VT_DECIMAL) {
      EXPECT_EQ(std::memcmp(&copy.decVal, &value.decVal, sizeof(DECIMAL)), 0);
    } else {
      EXPECT_EQ(copy.llVal, value.llVal);
    }
  }
  EXPECT_EQ(object.references, 1u);
  SysFreeString(text);
}

TEST(Variants, AReferenceToNothingIsRefused) {
  CComVariant kept(7);
  VARIANT reference{};
  reference.vt = VT_BYREF | VT_VECTOR;
  EXPECT_EQ(VariantCopyInd(&kept, &reference), DISP_E_BADVARTYPE);
  EXPECT_EQ(kept.lVal, 7);
}

TEST(Variants, UnknownTagIsRefusedAndKept) {
  VARIANT value{};
  value.vt = 255;
  EXPECT_EQ(VariantClear(&value), DISP_E_BADVARTYPE);
  EXPECT_EQ(value.vt, 255);
  CComVariant other(4);
  EXPECT_EQ(VariantCopy(&other, &value), DISP_E_BADVARTYPE);
  EXPECT_EQ(other.lVal, 4);
}

}  // namespace
