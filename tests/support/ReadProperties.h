#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "CComVariant.h"
#include "IVorCvar.h"
#include "SafeArray.h"

namespace cvars::test {

/// A property of a cvar: its name, the tag of its value, and the value as text.
struct Property {
  std::wstring name;
  VARTYPE type;
  std::wstring text;  ///< empty for an array
  bool operator==(const Property&) const = default;
};
inline void PrintTo(const Property& property, std::ostream* out) {
  for (const std::wstring_view part : {std::wstring_view(property.name), std::wstring_view(L"="),
                                       std::wstring_view(property.text)}) {
    for (const wchar_t character : part) *out << static_cast<char>(character);
  }
  *out << " (" << property.type << ')';
}

using Properties = std::vector<Property>;

/// All properties of a cvar, in the order of the array that it gives.
inline Properties PropertiesOf(IVorCvar& cvar) {
  CComVariant array;
  EXPECT_EQ(cvar.GetSignature(&array), S_OK);
  EXPECT_EQ(array.vt, VT_ARRAY | VT_VARIANT);
  if (array.vt != (VT_ARRAY | VT_VARIANT)) return {};
  EXPECT_EQ(SafeArrayGetDim(array.parray), 2u);
  LONG bounds[4] = {9, 9, 9, -1};
  EXPECT_EQ(SafeArrayGetLBound(array.parray, 1, &bounds[0]), S_OK);
  EXPECT_EQ(SafeArrayGetUBound(array.parray, 1, &bounds[1]), S_OK);
  EXPECT_EQ(SafeArrayGetLBound(array.parray, 2, &bounds[2]), S_OK);
  EXPECT_EQ(SafeArrayGetUBound(array.parray, 2, &bounds[3]), S_OK);
  EXPECT_EQ(bounds[0], 0);
  EXPECT_EQ(bounds[1], 1);
  EXPECT_EQ(bounds[2], 0);
  Properties properties;
  for (LONG i = 0; i <= bounds[3]; ++i) {
    const LONG nameAt[] = {0, i};
    const LONG valueAt[] = {1, i};
    CComVariant name;
    CComVariant value;
    EXPECT_EQ(SafeArrayGetElement(array.parray, nameAt, &name), S_OK);
    EXPECT_EQ(SafeArrayGetElement(array.parray, valueAt, &value), S_OK);
    EXPECT_EQ(name.vt, VT_BSTR);
    if (name.vt != VT_BSTR) continue;
    const VARTYPE type = value.vt;
    const bool isText = (type & VT_ARRAY) == 0 && value.ChangeType(VT_BSTR) == S_OK;
    properties.push_back({name.bstrVal, type, isText ? value.bstrVal : L""});
  }
  return properties;
}

/// The properties that the class of a cvar adds to those of every cvar.
inline Properties OwnPropertiesOf(IVorCvar& cvar) {
  constexpr std::array<std::wstring_view, 8> kCommon = {
      L"Flags",  L"FlagsString",        L"GuiHints", L"HelpString",
      L"IconID", L"IconModuleInstance", L"Name",     L"Type"};
  Properties properties = PropertiesOf(cvar);
  const auto removed = std::erase_if(properties, [&](const Property& property) {
    return std::find(kCommon.begin(), kCommon.end(), property.name) != kCommon.end();
  });
  EXPECT_EQ(removed, kCommon.size());
  return properties;
}

}  // namespace cvars::test
