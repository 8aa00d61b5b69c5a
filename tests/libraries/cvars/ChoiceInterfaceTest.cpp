// What callers compiled apart rely on: slot order of the choice interfaces.

#include <gtest/gtest.h>

#include <string>

#include "CCvarBool.h"
#include "CCvarColor.h"
#include "CCvarEnum.h"
#include "CvarObject.h"
#include "LiveCvars.h"

namespace {

constexpr int kFirstSlot = 7;  // after IUnknown and IDispatch

// Calls a slot of an object by its number, as a caller does that knows only the table.
template <class Result, class... A>
Result CallSlot(void* object, int slot, A... arguments) {
  using Function = Result (*)(void*, A...);
  void** const table = *static_cast<void***>(object);
  return reinterpret_cast<Function>(table[kFirstSlot + slot])(object, arguments...);
}

int IntOf(void* object, int slot) {
  int value = -77;
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int*>(object, slot, &value))) << slot;
  return value;
}
std::wstring TextOf(void* object, int slot) {
  CComBSTR text;
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, BSTR*>(object, slot, &text))) << slot;
  return std::wstring(text.View());
}
std::wstring TextOf(void* object, int slot, int argument) {
  CComBSTR text;
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int, BSTR*>(object, slot, argument, &text))) << slot;
  return std::wstring(text.View());
}

using ChoiceSlots = cvars::test::CvarTest;

TEST_F(ChoiceSlots, OfTheEnum) {
  const auto cvar = CvarObject<CCvarEnum>::Create();
  cvar->Initialize(L"E", L"A a|Aa|R A,B,C", 1, CVARFLAG_WRAPPING, nullptr, 0, REPLICATE_VALUE, 0);
  void* const object = static_cast<IVorCvarEnum*>(cvar.p);
  EXPECT_EQ(1, IntOf(object, 44));
  EXPECT_EQ(1, IntOf(object, 45));
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int>(object, 47, 2)));
  EXPECT_EQ(2, IntOf(object, 46));
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int, bool>(object, 48, 0, true)));
  EXPECT_EQ(0, IntOf(object, 44));
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, const wchar_t*, bool>(object, 49, L"b", false)));
  EXPECT_EQ(1, IntOf(object, 44));
  EXPECT_EQ(3, IntOf(object, 50));
  EXPECT_EQ(3, CallSlot<int>(object, 51));
  EXPECT_EQ(0, IntOf(object, 52));
  EXPECT_EQ(2, IntOf(object, 53));
  EXPECT_EQ(L"A a", TextOf(object, 54, 0));
  EXPECT_EQ(L"Aa", TextOf(object, 55, 0));
  EXPECT_EQ(L"R A", TextOf(object, 56, 0));
  int value = -1;
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, const wchar_t*, int*>(object, 57, L"C", &value)));
  EXPECT_EQ(2, value);
  const auto isEnabled = [&] {
    EXPECT_EQ(S_OK, (CallSlot<HRESULT, int, int*>(object, 63, 2, &value)));
    int again = -1;
    EXPECT_EQ(S_OK, (CallSlot<HRESULT, VARIANT, int*>(object, 64, CComVariant(2), &again)));
    EXPECT_EQ(value, again);
    return value;
  };
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int, int>(object, 58, 2, 0)));
  EXPECT_EQ(0, isEnabled());
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, VARIANT>(object, 59, CComVariant(2))));
  EXPECT_EQ(1, isEnabled());
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, VARIANT, int>(object, 60, CComVariant(2), 0)));
  EXPECT_EQ(0, isEnabled());
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int, int>(object, 58, 2, 1)));
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int>(object, 61, 2)));
  EXPECT_EQ(0, isEnabled());
  EXPECT_EQ(S_FALSE, (CallSlot<HRESULT, VARIANT>(object, 62, CComVariant(2))));
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int, VARIANT>(object, 66, 0, CComVariant(5))));
  CComVariant variant;
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int, VARIANT*>(object, 65, 0, &variant)));
  EXPECT_EQ(5, variant.lVal);
  IUnknown* entryObject = nullptr;
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int, IUnknown**>(object, 67, 0, &entryObject)));
  EXPECT_EQ(nullptr, entryObject);
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int, unsigned long, HINSTANCE>(object, 68, 0, 8ul, nullptr)));
  unsigned long icon = 0;
  unsigned long module = 9;
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int, unsigned long*, unsigned long*>(object, 69, 0, &icon,
                                                                          &module)));
  EXPECT_EQ(8u, icon);
  EXPECT_EQ(0u, module);
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int, EXTRAENUMDATA, VARIANT>(
                      object, 70, 0, EXTRAENUMDATA_EXTRA3, CComVariant(6))));
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int, EXTRAENUMDATA, VARIANT*>(
                      object, 71, 0, EXTRAENUMDATA_EXTRA3, &variant)));
  EXPECT_EQ(6, variant.lVal);
  EXPECT_EQ(1, IntOf(object, 72));
  EXPECT_EQ(L"A a,B", TextOf(object, 73));
  EXPECT_EQ(L"R A,B", TextOf(object, 74));
  EXPECT_EQ(L"A a|Aa|R A,B|B|B,C|C|C", TextOf(object, 75, 1));
}

TEST_F(ChoiceSlots, OfTheBool) {
  const auto cvar = CvarObject<CCvarBool>::Create();
  cvar->Initialize(L"B", L"Off,On", 1, CVARFLAGS(0), nullptr, 0, REPLICATE_VALUE);
  void* const object = static_cast<IVorCvarBool*>(cvar.p);
  EXPECT_EQ(1, IntOf(object, 44));
  EXPECT_EQ(1, IntOf(object, 45));
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int>(object, 47, 0)));
  EXPECT_EQ(0, IntOf(object, 46));
  EXPECT_EQ(S_OK, CallSlot<HRESULT>(object, 48));
  EXPECT_EQ(1, IntOf(object, 50));
  EXPECT_EQ(S_OK, CallSlot<HRESULT>(object, 49));
  EXPECT_EQ(0, IntOf(object, 50));
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, VARIANT>(object, 52, CComVariant(0))));
  int enabled = -1;
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, VARIANT, int*>(object, 53, CComVariant(0), &enabled)));
  EXPECT_EQ(0, enabled);
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, VARIANT>(object, 51, CComVariant(0))));
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int, int*>(object, 54, 0, &enabled)));
  EXPECT_EQ(1, enabled);
}

TEST_F(ChoiceSlots, OfTheColor) {
  const auto cvar = CvarObject<CCvarColor>::Create();
  cvar->Initialize(L"C", 5, CVARFLAGS(0), nullptr, 0, REPLICATE_VALUE);
  void* const object = static_cast<IVorCvarColor*>(cvar.p);
  EXPECT_EQ(5, IntOf(object, 44));
  EXPECT_EQ(5, IntOf(object, 45));
  EXPECT_EQ(S_OK, (CallSlot<HRESULT, int>(object, 47, 6)));
  EXPECT_EQ(6, IntOf(object, 46));
  EXPECT_EQ(L"000000..ffffff", TextOf(object, 48));
  EXPECT_EQ(0, IntOf(object, 49));
  EXPECT_EQ(0xFFFFFF, IntOf(object, 50));
}

}  // namespace
