#pragma once

#include "Unknown.h"

/// {889575B5-3969-433E-9214-0ED80A860FB8}
inline constexpr IID IID_IVorRegExp = {
    0x889575B5, 0x3969, 0x433E, {0x92, 0x14, 0x0E, 0xD8, 0x0A, 0x86, 0x0F, 0xB8}};
/// {E27BA3E9-A748-441A-BC55-1094A25F1589}, "VBScript.RegExp"
inline constexpr CLSID CLSID_RegExp = {
    0xE27BA3E9, 0xA748, 0x441A, {0xBC, 0x55, 0x10, 0x94, 0xA2, 0x5F, 0x15, 0x89}};

/// Searches texts for a pattern. A new one has an empty pattern and both options off.
class IVorRegExp : public IUnknown {
 public:
  /// @param pattern  caller frees.
  virtual HRESULT get_Pattern(BSTR* pattern) = 0;  // 3
  /// @param pattern  borrowed; null reads as empty.
  /// @retval E_INVALIDARG  the pattern cannot be read; the old one stays
  virtual HRESULT put_Pattern(const wchar_t* pattern) = 0;       // 4
  virtual HRESULT get_IgnoreCase(VARIANT_BOOL* ignoreCase) = 0;  // 5
  virtual HRESULT put_IgnoreCase(VARIANT_BOOL ignoreCase) = 0;   // 6
  virtual HRESULT get_Global(VARIANT_BOOL* global) = 0;          // 7
  virtual HRESULT put_Global(VARIANT_BOOL global) = 0;           // 8
  /// Says whether the pattern matches anywhere in the text.
  ///
  /// @param text   borrowed; null reads as empty.
  /// @param found  receives VARIANT_TRUE or VARIANT_FALSE.
  virtual HRESULT Test(const wchar_t* text, VARIANT_BOOL* found) = 0;  // 9

 protected:
  ~IVorRegExp() = default;
};

template <>
struct cvars::InterfaceId<IVorRegExp> {
  static constexpr IID value = IID_IVorRegExp;
};
