#pragma once

#include "Unknown.h"

/// {5C5132E5-0B48-496E-9912-F1D0808224EF}
inline constexpr IID IID_IVorPhysicalUnit = {
    0x5C5132E5, 0x0B48, 0x496E, {0x99, 0x12, 0xF1, 0xD0, 0x80, 0x82, 0x24, 0xEF}};
/// {6618F46D-AAE5-4A01-87F1-7B1A194ECE07}, "Vortana.PhysicalUnit"
inline constexpr CLSID CLSID_PhysicalUnit = {
    0x6618F46D, 0xAAE5, 0x4A01, {0x87, 0xF1, 0x7B, 0x1A, 0x19, 0x4E, 0xCE, 0x07}};

/// Knows the units of the instrument in their remote and screen spelling.
class IVorPhysicalUnit : public IUnknown {
 public:
  /// @param unit   borrowed; null reads as empty. The empty unit is valid.
  /// @param valid  receives VARIANT_TRUE or VARIANT_FALSE.
  virtual HRESULT IsValidUnit(const wchar_t* unit, VARIANT_BOOL* valid) = 0;  // 3

  /// Gives the screen spelling of a unit; a unit that is not known is given back as it stands.
  ///
  /// @param remoteUnit  borrowed; null reads as empty. A screen spelling stays as it is.
  /// @param option      0; other values are kept for later use (E_INVALIDARG).
  /// @param screenUnit  caller frees.
  virtual HRESULT GetScreenUnit(const wchar_t* remoteUnit, long option,
                                BSTR* screenUnit) = 0;  // 4

 protected:
  ~IVorPhysicalUnit() = default;
};

template <>
struct cvars::InterfaceId<IVorPhysicalUnit> {
  static constexpr IID value = IID_IVorPhysicalUnit;
};
