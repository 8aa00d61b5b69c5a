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
