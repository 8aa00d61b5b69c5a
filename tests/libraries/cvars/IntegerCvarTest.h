#pragma once

#include <gtest/gtest.h>

#include "CCvarInt.h"
#include "CCvarLongInt.h"
#include "CvarObject.h"
#include "LiveCvars.h"

namespace cvars::test {

/// Makes and reads the integer cvars of one width.
template <class Class>
class IntegerCvarTest : public CvarTest {
 protected:
  using Number = typename Class::Value_t;
  using Cvar = CComPtr<CvarObject<Class>>;
  static constexpr bool kWide = sizeof(Number) == 8;

  static Cvar Make(Number min, Number max, Number grain, Number defaultValue = 0,
                   const wchar_t* unit = nullptr, CVARFLAGS flags = CVARFLAGS(0)) {
    Cvar cvar = CvarObject<Class>::Create();
    cvar->Initialize(L"Count", defaultValue, min, max, grain, unit, flags, nullptr, 0,
                     REPLICATE_VALUE | REPLICATE_REQUESTED);
    return cvar;
  }
  static Number Adapted(const Cvar& cvar) {
    Number value = -1;
    EXPECT_EQ(cvar->GetAdaptedValue(&value), S_OK);
    return value;
  }
  static Number Requested(const Cvar& cvar) {
    Number value = -1;
    EXPECT_EQ(cvar->GetRequestedValue(&value), S_OK);
    return value;
  }
};
using IntegerWidths = testing::Types<CCvarInt, CCvarLongInt>;

}  // namespace cvars::test
