#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "CComVariant.h"
#include "IVorCvar.h"
#include "SafeArray.h"

namespace cvars::test {

/// The properties map of a cvar, by name.
inline std::map<std::wstring, CComVariant> PropertiesOf(IVorCvar& cvar) {
  std::map<std::wstring, CComVariant> properties;
  CComVariant array;
  EXPECT_EQ(cvar.GetSignature(&array), S_OK);
  LONG last = -1;
  EXPECT_EQ(SafeArrayGetUBound(array.parray, 2, &last), S_OK);
  for (LONG i = 0; i <= last; ++i) {
    LONG at[2] = {0, i};
    CComVariant name;
    EXPECT_EQ(SafeArrayGetElement(array.parray, at, &name), S_OK);
    at[0] = 1;
    EXPECT_EQ(SafeArrayGetElement(array.parray, at, &properties[name.bstrVal]), S_OK);
  }
  return properties;
}

/// How many properties every cvar has.
inline constexpr std::size_t kCommonProperties = 8;

}  // namespace cvars::test
