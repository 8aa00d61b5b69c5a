#pragma once

#include "BasicTypes.h"

/// 128-bit identifier of an interface or class.
struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];

  friend constexpr bool operator==(const GUID&, const GUID&) = default;
};
using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

inline constexpr GUID GUID_NULL = {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};
inline constexpr IID IID_NULL = GUID_NULL;

constexpr bool IsEqualGUID(REFGUID a, REFGUID b) noexcept { return a == b; }
constexpr bool IsEqualIID(REFIID a, REFIID b) noexcept { return a == b; }
constexpr bool IsEqualCLSID(REFCLSID a, REFCLSID b) noexcept { return a == b; }

namespace cvars {
/// Gives the identifier of an interface type: `InterfaceId<IUnknown>::value`. Specialised beside
/// the interface it belongs to.
template <class Interface>
struct InterfaceId;
}  // namespace cvars
