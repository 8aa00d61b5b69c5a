#pragma once

#include <array>
#include <string_view>

#include "CComBSTR.h"
#include "CComPtr.h"
#include "CComVariant.h"
#include "CEnumValueString.h"
#include "Export.h"

namespace cvars {
class EnumTable;
}

/// One entry of an enum's table. Owns everything it holds; a copy shares the entry's object and
/// copies the rest.
class CVARS_API CCvarEnumValue {
 public:
  /// Places of the variants.
  enum Slot : std::size_t {
    kValueSlot = 0,
    kSpareSlot = 1,
    kFirstExtraSlot = 2,
    kChildPageSlot = 3,
    kLastExtraSlot = 4,
    kSlotCount = 5,
  };

  /// Makes an enabled entry without icon, object and variants.
  /// @param text  copied; the spellings are made from it as CEnumValueString says.
  CCvarEnumValue(std::wstring_view text, bool specialCharacters)
      : m_sourceText(text), m_strings(text, specialCharacters) {}

  /// The text that the entry was made from.
  const CComBSTR& SourceText() const noexcept { return m_sourceText; }
  /// The spellings; the table changes them, because it finds entries by them.
  const CEnumValueString& Strings() const noexcept { return m_strings; }

  /// Says whether the entries have the same spellings, state, icon, variants and object. The texts
  /// they were made from may differ.
  friend CVARS_API bool operator==(const CCvarEnumValue& left, const CCvarEnumValue& right);

 private:
  friend class cvars::EnumTable;
  CComBSTR m_sourceText;
  CEnumValueString m_strings;

 public:
  int m_enabled = 1;                 ///< Non-zero for enabled.
  unsigned int m_iconId = 0;         ///< Resource of the entry's icon; 0 for none.
  HINSTANCE m_iconModule = nullptr;  ///< Where the icon is.
  std::array<CComVariant, kSlotCount> m_variants;
  CComPtr<IUnknown> m_object;  ///< Null for none.
};
