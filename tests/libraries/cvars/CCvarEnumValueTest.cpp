#include "CCvarEnumValue.h"

#include <gtest/gtest.h>

namespace {

class CountedObject final : public IUnknown {
 public:
  HRESULT QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  ULONG AddRef() override { return ++m_references; }
  ULONG Release() override { return --m_references; }
  ULONG References() const { return m_references; }

 private:
  ULONG m_references = 0;
};

TEST(EnumValueTest, StartsEnabledWithoutIconObjectAndVariants) {
  const CCvarEnumValue value(L"DC 50|Dc50", false);
  EXPECT_EQ(L"DC 50|Dc50", value.SourceText().View());
  EXPECT_EQ(L"DC 50|Dc50|DC50", value.Strings().Joined());
  EXPECT_EQ(1, value.m_enabled);
  EXPECT_EQ(0u, value.m_iconId);
  EXPECT_EQ(nullptr, value.m_iconModule);
  EXPECT_EQ(nullptr, value.m_object.p);
  for (const CComVariant& variant : value.m_variants) EXPECT_EQ(VT_EMPTY, variant.vt);
}

TEST(EnumValueTest, OwnsItsObjectAndVariants) {
  CountedObject object;
  {
    CCvarEnumValue value(L"A", false);
    value.m_object = &object;
    value.m_variants[CCvarEnumValue::kValueSlot] = CComVariant(static_cast<IUnknown*>(&object));
    EXPECT_EQ(2u, object.References());
    const CCvarEnumValue copy = value;
    EXPECT_EQ(4u, object.References());
  }
  EXPECT_EQ(0u, object.References());
}

TEST(EnumValueTest, EqualityLooksAtEverythingButTheSourceText) {
  const CCvarEnumValue value(L"A", false);
  EXPECT_TRUE(value == CCvarEnumValue(L"A|A|A", false));
  EXPECT_FALSE(value == CCvarEnumValue(L"a", false));

  CCvarEnumValue other(L"A", false);
  EXPECT_TRUE(value == other);
  other.m_enabled = 0;
  EXPECT_FALSE(value == other);

  other = value;
  other.m_iconId = 7;
  EXPECT_FALSE(value == other);

  other = value;
  other.m_iconModule = reinterpret_cast<HINSTANCE>(3);
  EXPECT_FALSE(value == other);

  CountedObject object;
  other = value;
  other.m_object = &object;
  EXPECT_FALSE(value == other);

  for (std::size_t slot = 0; slot < CCvarEnumValue::kSlotCount; ++slot) {
    other = value;
    other.m_variants[slot] = CComVariant(1);
    EXPECT_FALSE(value == other) << slot;
  }
}

}  // namespace
