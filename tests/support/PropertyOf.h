#pragma once

#include <gtest/gtest.h>

#include <string_view>

#include "CComVariant.h"
#include "IVorCvar.h"
#include "SafeArray.h"

namespace cvars::test {

/// The property of a cvar that has a name; empty when there is none.
inline CComVariant PropertyOf(IVorCvar& cvar, std::wstring_view name) {
  CComVariant properties;
  EXPECT_EQ(S_OK, cvar.GetSignature(&properties));
  LONG last = -1;
  EXPECT_EQ(S_OK, SafeArrayGetUBound(properties.parray, 2, &last));
  for (LONG i = 0; i <= last; ++i) {
    const LONG keyPlace[] = {0, i};
    const LONG valuePlace[] = {1, i};
    CComVariant key;
    CComVariant value;
    EXPECT_EQ(S_OK, SafeArrayGetElement(properties.parray, keyPlace, &key));
    EXPECT_EQ(S_OK, SafeArrayGetElement(properties.parray, valuePlace, &value));
    if (key.vt == VT_BSTR && key.bstrVal == name) return value;
  }
  return {};
}

}  // namespace cvars::test
