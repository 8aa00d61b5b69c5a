// The numbers behind the result codes, which callers compiled apart and logs know.

#include "ResultCodes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <regex>
#include <set>
#include <string>

namespace {

struct CodeCase {
  const char* name;
  HRESULT value;
  std::uint32_t pattern;
};
constexpr CodeCase kCodeCases[] = {
    {"S_OK", S_OK, 0},
    {"S_FALSE", S_FALSE, 1},
    {"E_NOTIMPL", E_NOTIMPL, 0x80004001},
    {"E_NOINTERFACE", E_NOINTERFACE, 0x80004002},
    {"E_POINTER", E_POINTER, 0x80004003},
    {"E_ABORT", E_ABORT, 0x80004004},
    {"E_FAIL", E_FAIL, 0x80004005},
    {"E_UNEXPECTED", E_UNEXPECTED, 0x8000FFFF},
    {"E_ACCESSDENIED", E_ACCESSDENIED, 0x80070005},
    {"E_HANDLE", E_HANDLE, 0x80070006},
    {"E_OUTOFMEMORY", E_OUTOFMEMORY, 0x8007000E},
    {"E_INVALIDARG", E_INVALIDARG, 0x80070057},
    {"OLE_E_BLANK", OLE_E_BLANK, 0x80040007},
    {"CLASS_E_NOAGGREGATION", CLASS_E_NOAGGREGATION, 0x80040110},
    {"CLASS_E_CLASSNOTAVAILABLE", CLASS_E_CLASSNOTAVAILABLE, 0x80040111},
    {"REGDB_E_CLASSNOTREG", REGDB_E_CLASSNOTREG, 0x80040154},
    {"CO_E_NOTINITIALIZED", CO_E_NOTINITIALIZED, 0x800401F0},
    {"CO_E_CLASSSTRING", CO_E_CLASSSTRING, 0x800401F3},
    {"CO_E_DLLNOTFOUND", CO_E_DLLNOTFOUND, 0x800401F8},
    {"CO_E_ERRORINDLL", CO_E_ERRORINDLL, 0x800401F9},
    {"CO_E_OBJNOTREG", CO_E_OBJNOTREG, 0x800401FB},
    {"DISP_E_UNKNOWNINTERFACE", DISP_E_UNKNOWNINTERFACE, 0x80020001},
    {"DISP_E_MEMBERNOTFOUND", DISP_E_MEMBERNOTFOUND, 0x80020003},
    {"DISP_E_PARAMNOTFOUND", DISP_E_PARAMNOTFOUND, 0x80020004},
    {"DISP_E_TYPEMISMATCH", DISP_E_TYPEMISMATCH, 0x80020005},
    {"DISP_E_UNKNOWNNAME", DISP_E_UNKNOWNNAME, 0x80020006},
    {"DISP_E_NONAMEDARGS", DISP_E_NONAMEDARGS, 0x80020007},
    {"DISP_E_BADVARTYPE", DISP_E_BADVARTYPE, 0x80020008},
    {"DISP_E_EXCEPTION", DISP_E_EXCEPTION, 0x80020009},
    {"DISP_E_OVERFLOW", DISP_E_OVERFLOW, 0x8002000A},
    {"DISP_E_BADINDEX", DISP_E_BADINDEX, 0x8002000B},
    {"DISP_E_ARRAYISLOCKED", DISP_E_ARRAYISLOCKED, 0x8002000D},
    {"DISP_E_BADPARAMCOUNT", DISP_E_BADPARAMCOUNT, 0x8002000E},
    {"DISP_E_DIVBYZERO", DISP_E_DIVBYZERO, 0x80020012},
};

TEST(ResultCodes, NeverChange) {
  for (const CodeCase& row : kCodeCases) {
    EXPECT_EQ(static_cast<std::uint32_t>(row.value), row.pattern) << row.name;
  }
}

TEST(ResultCodes, AreFailuresWhenTheTopBitIsSet) {
  for (const CodeCase& row : kCodeCases) {
    EXPECT_EQ(FAILED(row.value), row.pattern >= 0x80000000) << row.name;
    EXPECT_EQ(SUCCEEDED(row.value), row.pattern < 0x80000000) << row.name;
    EXPECT_EQ(row.value < 0, FAILED(row.value)) << row.name;
  }
}

TEST(ResultCodes, OfTheHeaderAreInTheTable) {
  std::set<std::string> known;
  for (const CodeCase& row : kCodeCases) known.insert(row.name);
  EXPECT_EQ(known.size(), std::size(kCodeCases));
  std::ifstream file(CVARS_SOURCE_DIR "/shared/includes/ResultCodes.h");
  const std::regex constant("inline constexpr HRESULT (\\w+) =");
  std::size_t found = 0;
  for (std::string line; std::getline(file, line);) {
    std::smatch match;
    if (!std::regex_search(line, match, constant)) continue;
    ++found;
    EXPECT_TRUE(known.contains(match[1])) << match[1];
  }
  EXPECT_EQ(found, known.size());
}

}  // namespace
