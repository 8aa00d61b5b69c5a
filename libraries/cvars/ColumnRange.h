#pragma once

#include <string>
#include <vector>

#include "Export.h"
#include "Variant.h"

/// To what the elements of one column are adapted.
struct SColRangeDesc {
  ULONG elementType = VT_R8;  ///< A variant type code.
  double minimum = -1e38;
  double maximum = 1e38;
  double grain = 1e-38;  ///< As of a double cvar: a step, 0 relative, -n significant digits.

  friend bool operator==(const SColRangeDesc&, const SColRangeDesc&) = default;
};

namespace cvars {

bool IsFloatingPointType(ULONG type) noexcept;
bool IsSignedIntegerType(ULONG type) noexcept;
bool IsUnsignedIntegerType(ULONG type) noexcept;

/// Bounds of a numeric element type.
struct TypeBounds {
  double min = 0;
  double max = 0;
};
TypeBounds BoundsOfType(ULONG type) noexcept;

/// Converts a number into an element type and clamps it to the bounds of the type.
/// @param[out] result  cleared before it is filled; untouched on failure.
HRESULT AdaptToType(const VARIANT& value, ULONG type, VARIANT* result);

/// Fits a number into the range of its column.
/// @param[out] result  cleared before it is filled; untouched on failure.
HRESULT AdaptToColumn(const VARIANT& value, const SColRangeDesc& range, VARIANT* result);

}  // namespace cvars
