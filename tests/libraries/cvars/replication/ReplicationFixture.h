#pragma once

#include <gtest/gtest.h>

#include "CComBSTR.h"
#include "CCvarBag.h"
#include "CCvarDouble.h"
#include "CvarObject.h"
#include "IsolatedHome.h"

namespace cvars::test {

using Double = CComPtr<CvarObject<CCvarDouble>>;

inline constexpr NOTIFYTYPE kEverything = static_cast<NOTIFYTYPE>(0xFFFFFFFFu);

/// A double from -1000 to 1000 in steps of 0.5.
inline Double MakeDouble(const wchar_t* name, double value = 0,
                         CVARREPLICATIONFLAGS copies = REPLICATE_VALUE | REPLICATE_REQUESTED) {
  Double cvar = CvarObject<CCvarDouble>::Create();
  cvar->Initialize(name, value, -1000.0, 1000.0, 0.5, L"V", CVARFLAGS(0), L"", 0, copies);
  return cvar;
}

inline double Requested(const Double& cvar) {
  double value = -12345;
  EXPECT_EQ(cvar->GetRequestedValue(&value), S_OK);
  return value;
}

inline double Adapted(const Double& cvar) {
  double value = -12345;
  EXPECT_EQ(cvar->GetAdaptedValue(&value), S_OK);
  return value;
}

inline long Listeners(IVorCvar* cvar) {
  long count = -1;
  EXPECT_EQ(cvar->get_EventSinkCount(&count), S_OK);
  return count;
}

inline long Flags(IVorCvar* cvar) {
  long flags = -1;
  EXPECT_EQ(cvar->get_Flags(&flags), S_OK);
  return flags;
}

inline std::wstring NameOf(IVorCvar* cvar) {
  CComBSTR name;
  EXPECT_EQ(cvar->get_Name(&name), S_OK);
  return std::wstring(name.m_str == nullptr ? L"" : name.m_str);
}

/// Checks that every cvar that a test makes is gone at its end.
class ReplicationFixture : public testing::Test {
 protected:
  ReplicationFixture()
      : m_alive(CvarBaseCpp::NumCvarsConstructed() - CvarBaseCpp::NumCvarsDestructed()) {}
  ~ReplicationFixture() override {
    EXPECT_EQ(CvarBaseCpp::NumCvarsConstructed() - CvarBaseCpp::NumCvarsDestructed(), m_alive);
  }

  IsolatedHome m_home;

 private:
  const int m_alive;
};

}  // namespace cvars::test
