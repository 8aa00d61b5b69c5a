#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "CComSafeArray.h"

namespace {

// Whole numbers of one line of the table by key.
bool Field(const std::string& line, const std::string& key, LONG& value) {
  const std::string mark = "\"" + key + "\":";
  const std::size_t at = line.find(mark);
  if (at == std::string::npos) return false;
  value = static_cast<LONG>(std::stol(line.substr(at + mark.size())));
  return true;
}

std::vector<std::string> LinesOf(const std::string& name) {
  std::ifstream file(CVARS_SOURCE_DIR "/tests/golden/safearray.jsonl");
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    if (line.find("{\"case\":\"" + name + "\"") == 0) lines.push_back(line);
  }
  return lines;
}

TEST(SafeArrays, IndicesOfTheTable) {
  SAFEARRAYBOUND bounds[] = {{2, 0}, {3, 0}};
  CComSafeArray<VARIANT> array;
  ASSERT_EQ(array.Create(bounds, 2), S_OK);
  const auto lines = LinesOf("index_2x3_lb0");
  ASSERT_EQ(lines.size(), 10u);
  for (const auto& line : lines) {
    LONG index[2] = {};
    ASSERT_TRUE(Field(line, "i", index[0]) && Field(line, "j", index[1])) << line;
    const bool good = line.find("\"put\":\"S_OK\"") != std::string::npos;
    EXPECT_EQ(array.MultiDimSetAt(index, CComVariant(1)), good ? S_OK : DISP_E_BADINDEX) << line;
    CComVariant element;
    EXPECT_EQ(array.MultiDimGetAt(index, element), good ? S_OK : DISP_E_BADINDEX) << line;
    EXPECT_EQ(element.vt, good ? VT_I4 : VT_EMPTY) << line;
  }
}

TEST(SafeArrays, MemoryOrderOfTheTable) {
  SAFEARRAYBOUND two[] = {{2, 0}, {3, 0}};
  SAFEARRAYBOUND three[] = {{2, 1}, {3, -1}, {4, 5}};
  CComSafeArray<double> plane;
  CComSafeArray<double> space;
  ASSERT_EQ(plane.Create(two, 2), S_OK);
  ASSERT_EQ(space.Create(three, 3), S_OK);
  std::size_t checked = 0;
  for (const char* name : {"memory_order", "memory_order3"}) {
    for (const auto& line : LinesOf(name)) {
      LONG index[3] = {};
      LONG position = 0;
      ASSERT_TRUE(Field(line, "i", index[0]) && Field(line, "j", index[1])) << line;
      SAFEARRAY* array = Field(line, "k", index[2]) ? space : plane;
      ASSERT_TRUE(Field(line, "memory_index", position)) << line;
      void* element = nullptr;
      ASSERT_EQ(SafeArrayPtrOfIndex(array, index, &element), S_OK) << line;
      EXPECT_EQ(static_cast<double*>(element) - static_cast<double*>(array->pvData), position)
          << line;
      ++checked;
    }
  }
  EXPECT_EQ(checked, 30u);
}

struct TypeCase {
  const char* name;
  VARTYPE type;
  UINT size;
  USHORT features;
};

TEST(SafeArrays, ElementSizesAndFeatures) {
  constexpr TypeCase kCases[] = {
      {"Variant", VT_VARIANT, 24, 2176}, {"Double", VT_R8, 8, 128},
      {"Text", VT_BSTR, 8, 384},         {"Byte", VT_UI1, 1, 128},
      {"Unknown", VT_UNKNOWN, 8, 576},   {"Dispatch", VT_DISPATCH, 8, 1088},
      {"Bool", VT_BOOL, 2, 128},         {"Decimal", VT_DECIMAL, 16, 128},
      {"LongLong", VT_I8, 8, 128}};
  for (const TypeCase& row : kCases) {
    SAFEARRAYBOUND bound = {2, 0};
    SAFEARRAY* array = SafeArrayCreate(row.type, 1, &bound);
    ASSERT_NE(array, nullptr) << row.name;
    EXPECT_EQ(SafeArrayGetElemsize(array), row.size) << row.name;
    EXPECT_EQ(array->fFeatures, row.features) << row.name;
    VARTYPE type = VT_EMPTY;
    EXPECT_EQ(SafeArrayGetVartype(array, &type), S_OK) << row.name;
    EXPECT_EQ(type, row.type) << row.name;
    EXPECT_EQ(SafeArrayDestroy(array), S_OK) << row.name;
  }
}

TEST(SafeArrays, BadTypesDimensionsAndSizesGiveNull) {
  SAFEARRAYBOUND bound = {2, 0};
  const int types[] = {VT_EMPTY, VT_NULL, VT_VARIANT | VT_BYREF, VT_VARIANT | VT_ARRAY, 255};
  for (const int type : types) {
    EXPECT_EQ(SafeArrayCreate(static_cast<VARTYPE>(type), 1, &bound), nullptr) << type;
  }
  EXPECT_EQ(SafeArrayCreate(VT_R8, 0, &bound), nullptr);
  SAFEARRAYBOUND huge[] = {{0xFFFFFFFF, -2147483647}, {0xFFFFFFFF, -2147483647}};
  EXPECT_EQ(SafeArrayCreate(VT_R8, 2, huge), nullptr);
}

TEST(SafeArrays, LockedArrayIsNotDestroyed) {
  CComSafeArray<double> array(2);
  void* data = nullptr;
  ASSERT_EQ(SafeArrayAccessData(array, &data), S_OK);
  EXPECT_EQ(array.Destroy(), DISP_E_ARRAYISLOCKED);
  ASSERT_EQ(SafeArrayUnaccessData(array), S_OK);
  EXPECT_EQ(SafeArrayUnaccessData(array), E_UNEXPECTED);
}

TEST(SafeArrays, BadVariantIsRefusedAndTheElementStays) {
  CComSafeArray<VARIANT> array(1);
  VARIANT bad{};
  bad.vt = 255;
  EXPECT_EQ(array.SetAt(0, bad), DISP_E_BADVARTYPE);
  EXPECT_EQ(array.GetAt(0).vt, VT_EMPTY);
}

TEST(SafeArrays, RedimKeepsWhatRemains) {
  CComSafeArray<BSTR> array;
  for (const wchar_t* text : {L"one", L"two", L"three"}) array.Add(CComBSTR(text).m_str);
  SAFEARRAYBOUND bound = {2, 7};
  ASSERT_EQ(SafeArrayRedim(array, &bound), S_OK);
  EXPECT_EQ(array.GetLowerBound(), 7);
  EXPECT_EQ(array.GetUpperBound(), 8);
  EXPECT_TRUE(std::wstring(array.GetAt(8)) == L"two");
}

}  // namespace
