#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "ResultCodes.h"

namespace cvars {

/// Gives the integer at a position between two others: lowest + floor(span * position + 0.5).
///
/// A position outside 0 to 1 gives an integer outside the two, as far as integers go.
///
/// @param[out] index  untouched on failure.
/// @retval E_INVALIDARG  the result is not finite
inline HRESULT IndexAt(double position, int lowest, int highest, int* index) noexcept {
  const double span = static_cast<double>(highest) - static_cast<double>(lowest);
  const double place = lowest + std::floor(span * position + 0.5);
  if (!std::isfinite(place)) return E_INVALIDARG;
  constexpr double kSmallest = std::numeric_limits<int>::min();
  constexpr double kLargest = std::numeric_limits<int>::max();
  *index = static_cast<int>(std::clamp(place, kSmallest, kLargest));
  return S_OK;
}

}  // namespace cvars
