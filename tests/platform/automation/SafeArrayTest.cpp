#include <gtest/gtest.h>

#include <string>

#include "CComSafeArray.h"

namespace {

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
