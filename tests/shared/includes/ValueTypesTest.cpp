#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "Cvars.h"

namespace {

static_assert(CVARFLAG_READONLY == 0x1 && CVARFLAG_HIDDEN == 0x2 && CVARFLAG_WRAPPING == 0x4 &&
              CVARFLAG_LATEUPDATE == 0x8 && CVARFLAG_GUIONLY == 0x10 && CVARFLAG_COMPACT == 0x20 &&
              CVARFLAG_NONVOLATILE == 0x40 && CVARFLAG_REVERSEINCREMENT == 0x80 &&
              CVARFLAG_A == 0x100 && CVARFLAG_M == 0x200 && CVARFLAG_GRAYED == 0x400 &&
              CVARFLAG_P == 0x800 && CVARFLAG_D == 0x1000 && CVARFLAG_PRIVATE == 0x2000 &&
              CVARFLAG_PUBLIC == 0x4000 && CVARFLAG_SPECIALCHARS == 0x10000);
static_assert(NOTIFY_FLAGS == 0x1 && NOTIFY_VALUE == 0x2 && NOTIFY_RANGE == 0x4 &&
              NOTIFY_LATEUPDATE == 0x8 && NOTIFY_UNIT == 0x40 && NOTIFY_ATTRIBUTES == 0x80 &&
              NOTIFY_REQUESTED == 0x100 && NOTIFY_GUIHINTS == 0x200);
static_assert(NOTIFY_ALL_CLIENTS == 1 && NOTIFY_FIRST_CLIENT_ONLY == 2);
static_assert(REPLICATE_FLAGS == 0x1 && REPLICATE_REQUESTED == 0x2 && REPLICATE_RANGE == 0x4 &&
              REPLICATE_NAME == 0x8 && REPLICATE_HELPID == 0x10 && REPLICATE_GUIHINTS == 0x20 &&
              REPLICATE_DEFAULT == 0x40 && REPLICATE_OVERRIDE_READONLY == 0x80 &&
              REPLICATE_UNIT == 0x100 && REPLICATE_VALUE == 0x200 &&
              REPLICATE_DESCRIPTION == 0x8000);
static_assert(REPLICATIONCONNECTION_NONE == 0 && REPLICATIONCONNECTION_SYNCHRONOUS == 1 &&
              REPLICATIONCONNECTION_ASYNCHRONOUS == 2 && REPLICATIONCONNECTION_UNCHANGED == 3);
static_assert(REPLICATIONCOPY_FROM_OTHER == 0 && REPLICATIONCOPY_TO_OTHER == 1);
static_assert(LOCKSTEP_1_2_25_5 == 0 && LOCKSTEP_1_2_4 == 1 && LOCKSTEP_1_2_4_5 == 2 &&
              LOCKSTEP_1_2_4_8 == 3 && LOCKSTEP_1_2_5 == 4 && LOCKSTEP_1_25_4_5 == 5 &&
              LOCKSTEP_1_25_5 == 6 && LOCKSTEP_1_3_5 == 7 && LOCKSTEP_1_33 == 8 &&
              LOCKSTEP_1 == 9 && LOCKSTEP_1_2 == 10 && LOCKSTEP_1_2_3_5 == 11 &&
              LOCKSTEP_1_5 == 12);
static_assert(ADAPT_CLOSEST_DOWN == 0 && ADAPT_CLOSEST_UP == 1 && ADAPT_DOWN == 2 && ADAPT_UP == 3);
static_assert(BITPATTERN_FORMAT_BIN == 0 && BITPATTERN_FORMAT_HEX == 1 &&
              BITPATTERN_PAD_LEFT == 0 && BITPATTERN_PAD_RIGHT == 1 &&
              BITPATTERN_SIZE_BIT_FIX == 0 && BITPATTERN_SIZE_BYTE_VAR == 1 &&
              BITPATTERN_SIZE_BIT_VAR == 2);
static_assert(ACCESSSTYLE_READWRITE == 1 && ACCESSSTYLE_READONLY == 2);
static_assert(EXTRAENUMDATA_ICONID == 1 && EXTRAENUMDATA_OBJECT == 2 &&
              EXTRAENUMDATA_VARIANT == 3 && EXTRAENUMDATA_EXTRA1 == 4 &&
              EXTRAENUMDATA_CHILDPAGE == 5 && EXTRAENUMDATA_EXTRA3 == 6);
static_assert(VT_EMPTY == 0 && VT_NULL == 1 && VT_I2 == 2 && VT_I4 == 3 && VT_R4 == 4 &&
              VT_R8 == 5 && VT_CY == 6 && VT_DATE == 7 && VT_BSTR == 8 && VT_DISPATCH == 9 &&
              VT_ERROR == 10 && VT_BOOL == 11 && VT_VARIANT == 12 && VT_UNKNOWN == 13 &&
              VT_DECIMAL == 14 && VT_I1 == 16 && VT_UI1 == 17 && VT_UI2 == 18 && VT_UI4 == 19 &&
              VT_I8 == 20 && VT_UI8 == 21 && VT_INT == 22 && VT_UINT == 23 && VT_ARRAY == 0x2000 &&
              VT_BYREF == 0x4000);

// Counts its references and lives on the stack.
class Counted final : public IUnknown {
 public:
  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = iid == IID_IUnknown ? this : nullptr;
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++references; }
  ULONG Release() override { return --references; }

  ULONG references = 0;
};

TEST(OwningPointer, BalancesReferences) {
  Counted object;
  {
    CComPtr<IUnknown> first(&object);
    CComPtr<IUnknown> second = first;
    EXPECT_EQ(object.references, 2u);
    CComPtr<IUnknown> moved = std::move(second);
    EXPECT_EQ(object.references, 2u);
    CComPtr<IUnknown> asked;
    EXPECT_EQ(first.QueryInterface(&asked), S_OK);
    EXPECT_EQ(object.references, 3u);
    EXPECT_TRUE(asked.IsEqualObject(moved));
    CComPtr<IDispatch> refused;
    EXPECT_EQ(first.QueryInterface(&refused), E_NOINTERFACE);
    moved.Attach(first.Detach());
    EXPECT_EQ(object.references, 2u);
  }
  EXPECT_EQ(object.references, 0u);
}

TEST(OwningString, CopiesMovesAndDetaches) {
  CComBSTR text(L"gain");
  CComBSTR copy = text;
  EXPECT_NE(copy.m_str, text.m_str);
  copy += L" dB";
  EXPECT_TRUE(copy == L"gain dB");
  CVorComBSTR other(copy);
  EXPECT_TRUE(other == copy);
  const CComBSTR moved = std::move(copy);
  EXPECT_FALSE(!moved);
  BSTR raw = text.Detach();
  EXPECT_TRUE(!text);
  text.Attach(raw);
  EXPECT_EQ(text.Length(), 4u);
}

TEST(OwningVariant, OwnsTextsAndInterfaces) {
  Counted object;
  {
    CComVariant value(static_cast<IUnknown*>(&object));
    CComVariant copy = value;
    EXPECT_EQ(object.references, 2u);
    value = L"text";
    EXPECT_EQ(object.references, 1u);
    const CComVariant moved = std::move(value);
    EXPECT_EQ(moved.vt, VT_BSTR);
    VARIANT raw{};
    ASSERT_EQ(copy.Detach(&raw), S_OK);
    EXPECT_EQ(object.references, 1u);
    ASSERT_EQ(copy.Attach(&raw), S_OK);
    EXPECT_EQ(raw.vt, VT_EMPTY);
  }
  EXPECT_EQ(object.references, 0u);
}

TEST(OwningVariant, TagsFollowTheArgument) {
  EXPECT_EQ(CComVariant(1).vt, VT_I4);
  EXPECT_EQ(CComVariant(1L).vt, VT_I4);
  EXPECT_EQ(CComVariant(LONGLONG{1} << 40, VT_I8).llVal, LONGLONG{1} << 40);
  EXPECT_EQ(CComVariant(true).boolVal, VARIANT_TRUE);
  EXPECT_EQ(CComVariant(1.0).vt, VT_R8);
  EXPECT_EQ(CComVariant(1u).vt, VT_UI4);
}

TEST(Variants, CurrencyIsReadWholeOrInHalves) {
  VARIANT value{};
  value.vt = VT_CY;
  value.cyVal.int64 = -15000;  // -1.5
  EXPECT_EQ(value.cyVal.Lo, 0xFFFFC568u);
  EXPECT_EQ(value.cyVal.Hi, -1);
  value.cyVal.Hi = 0;
  EXPECT_EQ(value.cyVal.int64, 0xFFFFC568);
  EXPECT_EQ(value.vt, VT_CY);
}

TEST(Variants, DecimalLiesOverTheTag) {
  VARIANT value{};
  value.decVal = {0, 2, 0x80, 0, 12345};
  value.vt = VT_DECIMAL;
  EXPECT_EQ(value.decVal.scale, 2);
  EXPECT_EQ(value.decVal.sign, 0x80);
  EXPECT_EQ(value.decVal.Lo64, 12345u);
  EXPECT_EQ(value.decVal.wReserved, VT_DECIMAL);
  CComVariant text(value);
  ASSERT_EQ(text.ChangeType(VT_BSTR), S_OK);
  EXPECT_STREQ(text.bstrVal, L"-123.45");
}

TEST(Variants, DateIsANumberOfDays) {
  VARIANT value{};
  value.vt = VT_DATE;
  value.date = 2.5;
  CComVariant number(value);
  ASSERT_EQ(number.ChangeType(VT_R8), S_OK);
  EXPECT_EQ(number.dblVal, 2.5);
}

TEST(OwningArray, CopiesAreIndependent) {
  CComSafeArray<VARIANT> array;
  ASSERT_EQ(array.Add(CComVariant(L"one")), S_OK);
  const CComSafeArray<VARIANT> copy = array;
  ASSERT_EQ(array.SetAt(0, CComVariant(2)), S_OK);
  EXPECT_EQ(copy.GetCount(), 1u);
  EXPECT_EQ(copy.GetAt(0).vt, VT_BSTR);
  CComSafeArray<double> wrong;
  EXPECT_EQ(wrong.CopyFrom(array), DISP_E_TYPEMISMATCH);
}

}  // namespace
