// What in-process callers compiled apart rely on: slot order, identity and null checks.

#include <gtest/gtest.h>

#include <cmath>

#include "CCvarDouble.h"
#include "CvarBag.h"
#include "CvarObject.h"
#include "LiveCvars.h"
#include "ReadText.h"
#include "RecordingListener.h"

namespace {

using cvars::test::RecordingListener;
using cvars::test::TextOf;

using Double = CComPtr<CvarObject<CCvarDouble>>;

constexpr int kFirstSlot = 7;  // after IUnknown and IDispatch

// Calls a slot of an object by its number, as a caller does that knows only the table.
template <class... A>
HRESULT CallSlot(void* object, int slot, A... arguments) {
  using Function = HRESULT (*)(void*, A...);
  void** const table = *static_cast<void***>(object);
  return reinterpret_cast<Function>(table[kFirstSlot + slot])(object, arguments...);
}

class CvarSlots : public cvars::test::CvarTest {
 protected:
  CvarSlots() {
    cvar->Initialize(L"Level|LVL", 4.0, 0.0, 10.0, 2.0, nullptr, CVARFLAGS(0), L"Knob", 23,
                     REPLICATE_VALUE);
    object = static_cast<IVorCvar*>(cvar.p);
  }
  void TearDown() override {
    cvar = nullptr;
    CvarTest::TearDown();
  }

  std::wstring TextOfSlot(int slot) {
    CComBSTR text;
    EXPECT_EQ(CallSlot<BSTR*>(object, slot, &text), S_OK);
    return std::wstring(text.View());
  }
  double NumberOfSlot(int slot) {
    double number = std::nan("");
    EXPECT_EQ(CallSlot<double*>(object, slot, &number), S_OK);
    return number;
  }
  int IntOfSlot(int slot) {
    int number = -1;
    EXPECT_EQ(CallSlot<int*>(object, slot, &number), S_OK);
    return number;
  }
  double Requested() { return cvar->GetRequested(); }

  Double cvar = CvarObject<CCvarDouble>::Create();
  void* object = nullptr;
};

TEST_F(CvarSlots, 0_1_22_23_AreTheListeners) {
  const auto listener = RecordingListener::Create();
  EXPECT_EQ(CallSlot<IUnknown*>(object, 0, listener.p), S_OK);
  long count = 0;
  EXPECT_EQ(CallSlot<long*>(object, 22, &count), S_OK);
  EXPECT_EQ(count, 1);
  CComPtr<IUnknown> first;
  EXPECT_EQ((CallSlot<long, IUnknown**>(object, 23, 0L, &first)), S_OK);
  EXPECT_TRUE(first.IsEqualObject(listener));
  EXPECT_EQ(CallSlot<IUnknown*>(object, 1, listener.p), S_OK);
  EXPECT_EQ(CallSlot<IUnknown*>(object, 1, listener.p), E_INVALIDARG);
}

TEST_F(CvarSlots, 2_13_AreTheNormalisedValue) {
  EXPECT_EQ(NumberOfSlot(2), 0.4);
  EXPECT_EQ(CallSlot<double>(object, 13, 0.6), S_OK);
  EXPECT_EQ(Requested(), 6.0);
}

TEST_F(CvarSlots, 3_4_36_37_AreTheTextsOfTheValue) {
  EXPECT_EQ(CallSlot<double>(object, 51, 2000.0), S_OK);  // adapted to 10
  EXPECT_EQ(cvar->SetMaxValue(5000.0), S_OK);
  EXPECT_EQ(TextOfSlot(3), L"2.000e+3");
  EXPECT_EQ(TextOfSlot(4), L"2E+3");
  EXPECT_EQ(TextOfSlot(36), L"2000");
  EXPECT_EQ(TextOfSlot(37), L"2E+3");
}

TEST_F(CvarSlots, 5_To_9_15_AreHintsHelpNamesAndType) {
  EXPECT_EQ(TextOfSlot(5), L"Knob");
  EXPECT_EQ(TextOfSlot(6), L"");
  unsigned int help = 0;
  EXPECT_EQ(CallSlot<unsigned int*>(object, 7, &help), S_OK);
  EXPECT_EQ(help, 23u);
  EXPECT_EQ(TextOfSlot(8), L"LVL");
  EXPECT_EQ(TextOfSlot(9), L"Level");
  EXPECT_EQ(TextOfSlot(15), L"Double");
}

TEST_F(CvarSlots, 10_12_14_27_28_41_42_Request) {
  EXPECT_EQ(CallSlot<int>(object, 10, 2), S_OK);
  EXPECT_EQ(Requested(), 8.0);
  EXPECT_EQ(CallSlot<const wchar_t*>(object, 12, L"3"), S_OK);
  EXPECT_EQ(Requested(), 3.0);
  EXPECT_EQ(CallSlot<const wchar_t*>(object, 27, L"1 k"), S_OK);
  EXPECT_EQ(Requested(), 1000.0);
  EXPECT_EQ(CallSlot<const wchar_t*>(object, 28, L"1 K"), S_OK);  // the same: nothing happens
  EXPECT_EQ(CallSlot<const wchar_t*>(object, 28, L"2 K"), S_OK);
  EXPECT_EQ(Requested(), 2000.0);
  EXPECT_EQ(CallSlot(object, 14), S_OK);
  EXPECT_EQ(Requested(), 4.0);
  EXPECT_EQ(CallSlot(object, 41), S_OK);
  EXPECT_EQ(Requested(), 0.0);
  EXPECT_EQ(CallSlot(object, 42), S_OK);
  EXPECT_EQ(Requested(), 10.0);
}

TEST_F(CvarSlots, 11_16_19_21_25_40_AreTheFlags) {
  struct {
    int slot;
    CVARFLAGS flag;
  } constexpr kRows[] = {{11, CVARFLAG_READONLY},
                         {16, CVARFLAG_HIDDEN},
                         {19, CVARFLAG_GUIONLY},
                         {21, CVARFLAG_NONVOLATILE}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.slot);
    EXPECT_EQ(IntOfSlot(row.slot), 0);
    (void)cvar->SetFlags(row.flag, true);
    EXPECT_EQ(IntOfSlot(row.slot), 1);
  }
  long flags = 0;
  EXPECT_EQ(CallSlot<long*>(object, 25, &flags), S_OK);
  EXPECT_EQ(flags, 0x53);
  EXPECT_EQ(TextOfSlot(40), L"RHGN");
}

TEST_F(CvarSlots, 17_18_29_AreTheValueAsVariant) {
  CComVariant value;
  EXPECT_EQ(CallSlot<VARIANT*>(object, 17, &value), S_OK);
  EXPECT_EQ(value.vt, VT_R8);
  EXPECT_EQ(value.dblVal, 4.0);
  EXPECT_EQ((CallSlot<VARIANT>(object, 18, CComVariant(7.1))), S_OK);
  EXPECT_EQ(CallSlot<VARIANT*>(object, 29, &value), S_OK);
  EXPECT_EQ(value.dblVal, 7.1);
  EXPECT_EQ(NumberOfSlot(44), 8.0);
}

TEST_F(CvarSlots, 20_30_31_32_AreTheRange) {
  for (const int slot : {20, 30, 31, 32}) {
    EXPECT_EQ(TextOfSlot(slot), L"From 0 to 10 step 2") << slot;
  }
}

TEST_F(CvarSlots, 24_ForcesANotification) {
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(CallSlot<NOTIFYTYPE>(object, 24, NOTIFYTYPE(0x40000200)), S_OK);
  EXPECT_EQ(listener->masks, std::vector<NOTIFYTYPE>{NOTIFYTYPE(0x40000200)});
}

TEST_F(CvarSlots, 26_IsTheParent) {
  IUnknown* parent = cvar->GetIVorCvar();
  EXPECT_EQ(CallSlot<IUnknown**>(object, 26, &parent), OLE_E_BLANK);
  EXPECT_EQ(parent, nullptr);
}

TEST_F(CvarSlots, 33_38_CompareTheValues) {
  EXPECT_EQ(IntOfSlot(33), 0);
  EXPECT_EQ(IntOfSlot(38), 1);
  EXPECT_EQ(cvar->SetRequestedValue(7.1), S_OK);
  EXPECT_EQ(IntOfSlot(33), 1);
  EXPECT_EQ(IntOfSlot(38), 0);
}

TEST_F(CvarSlots, 34_35_39_43_DescribeTheCvar) {
  EXPECT_EQ(TextOfSlot(34).substr(0, 12), L"Type,Double,");
  unsigned long id = 9;
  unsigned long module = 9;
  EXPECT_EQ((CallSlot<unsigned long*, unsigned long*>(object, 35, &id, &module)), S_OK);
  EXPECT_EQ(id + module, 0u);
  CComVariant result(3);
  EXPECT_EQ((CallSlot<VARIANT, VARIANT*>(object, 39, CComVariant(), &result)), E_NOTIMPL);
  EXPECT_EQ(result.lVal, 3);
  CComVariant properties;
  EXPECT_EQ(CallSlot<VARIANT*>(object, 43, &properties), S_OK);
  EXPECT_EQ(properties.vt, VT_ARRAY | VT_VARIANT);
}

TEST_F(CvarSlots, 44_To_54_AreTheDouble) {
  cvar->Initialize(L"Level", 4.0, 1.0, 10.0, 3.0, nullptr, CVARFLAGS(0), nullptr, 0,
                   REPLICATE_VALUE);
  EXPECT_EQ(CallSlot<double>(object, 51, 7.5), S_OK);
  EXPECT_EQ(NumberOfSlot(44), 9.0);
  EXPECT_EQ(NumberOfSlot(45), 4.0);
  EXPECT_EQ(NumberOfSlot(46), 3.0);
  EXPECT_EQ(NumberOfSlot(47), 10.0);
  EXPECT_EQ(NumberOfSlot(48), 1.0);
  EXPECT_EQ(NumberOfSlot(49), 7.5);
  EXPECT_EQ(TextOfSlot(50), L"");
  EXPECT_EQ(CallSlot<double>(object, 53, 0.25), S_OK);
  EXPECT_EQ(NumberOfSlot(52), 0.25);
  EXPECT_EQ(NumberOfSlot(54), 3.0);
}

// Calls a slot of the native side by its number.
template <class Result, class... A>
Result CallNativeSlot(CvarBaseCpp* native, int slot, A... arguments) {
  using Function = Result (*)(void*, A...);
  void** const table = *reinterpret_cast<void***>(native);
  return reinterpret_cast<Function>(table[slot])(native, arguments...);
}

TEST_F(CvarSlots, NativeTableHasFiveOperationsInOrder) {
  CvarBaseCpp* const native = cvar.p;
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(CallNativeSlot<IVorCvar*>(native, 0), static_cast<IVorCvar*>(cvar.p));
  EXPECT_EQ(cvar->AddRef(), 2u);  // slot 0 added none
  EXPECT_EQ(cvar->Release(), 1u);
  EXPECT_EQ((CallNativeSlot<int, int>(native, 1, 1)), 0);
  EXPECT_TRUE((CallNativeSlot<bool, CVARFLAGS, bool>(native, 2, CVARFLAG_GRAYED, true)));
  EXPECT_TRUE((CallNativeSlot<bool, bool>(native, 3, true)));
  EXPECT_TRUE((CallNativeSlot<bool, bool>(native, 4, true)));
  EXPECT_EQ(cvar->Flags(), CVARFLAG_GRAYED | CVARFLAG_PUBLIC | CVARFLAG_PRIVATE);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ((CallNativeSlot<int, int>(native, 1, 0)), 0);
  EXPECT_EQ(listener->masks, std::vector<NOTIFYTYPE>{NOTIFY_FLAGS});
}

// Identity -------------------------------------------------------------------------------------

TEST_F(CvarSlots, EveryInterfaceOfACvarLeadsToTheSameIdentity) {
  CComPtr<IUnknown> identity;
  ASSERT_EQ(cvar->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&identity)), S_OK);
  for (const IID& iid : {IID_IDispatch, IID_IVorCvar, IID_IVorCvarDouble, IID_IVorCvarEventSink}) {
    CComPtr<IUnknown> other;
    ASSERT_EQ(cvar->QueryInterface(iid, reinterpret_cast<void**>(&other)), S_OK);
    CComPtr<IUnknown> again;
    ASSERT_EQ(other->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&again)), S_OK);
    EXPECT_EQ(again.p, identity.p);
  }
  EXPECT_EQ(cvar->AddRef(), 3u);
  EXPECT_EQ(cvar->Release(), 2u);
}

TEST_F(CvarSlots, AnInterfaceThatIsNotOfferedIsRefused) {
  void* other = this;
  EXPECT_EQ(cvar->QueryInterface(IID_CvarBag, &other), E_NOINTERFACE);
  EXPECT_EQ(other, nullptr);
  EXPECT_EQ(cvar->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

// Null pointers -----------------------------------------------------------------------------------

TEST_F(CvarSlots, EveryOperationRefusesANullPointer) {
  (void)cvar->SetFlags(CVARFLAG_READONLY, true);  // the pointer is looked at first
  for (const int slot : {0, 1}) {
    EXPECT_EQ(CallSlot<IUnknown*>(object, slot, nullptr), E_POINTER) << slot;
  }
  for (const int slot :
       {2,  3,  4,  5,  6,  7,  8,  9,  11, 15, 16, 17, 19, 20, 21, 22, 25, 26, 29,
        30, 31, 32, 33, 34, 36, 37, 38, 40, 43, 44, 45, 46, 47, 48, 49, 50, 52, 54}) {
    EXPECT_EQ(CallSlot<void*>(object, slot, nullptr), E_POINTER) << slot;
  }
  EXPECT_EQ((CallSlot<long, IUnknown**>(object, 23, -1L, nullptr)), E_POINTER);
  EXPECT_EQ((CallSlot<void*, void*>(object, 35, nullptr, nullptr)), E_INVALIDARG);
  EXPECT_EQ(cvar->get_BagAndCvarName(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetRequestedValue(static_cast<VARIANT*>(nullptr)), E_POINTER);
  EXPECT_EQ(cvar->GetParentModuleInstanceHandle(nullptr), E_POINTER);
}

}  // namespace
