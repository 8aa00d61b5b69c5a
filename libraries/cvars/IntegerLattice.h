#pragma once

#include <algorithm>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>

#include "ResultCodes.h"

namespace cvars {

/// Integers that are wide enough for every difference and every multiple of a 64-bit value.
__extension__ typedef __int128 WideInteger;

/// Rounds to a multiple of a grain, counted from zero.
///
/// Works on the magnitude: a remainder of at least grain / 2, cut to a whole number, rounds away
/// from zero. With an odd grain a remainder just below the half thus rounds away too, on purpose:
/// with grain 5 the value 2 gives 5. A grain of 1 or below leaves the value as it is.
constexpr WideInteger RoundToGrain(std::int64_t value, std::int64_t grain) noexcept {
  if (grain <= 1) return value;
  const auto bits = static_cast<std::uint64_t>(value);
  const std::uint64_t magnitude = value < 0 ? 0 - bits : bits;
  const auto step = static_cast<std::uint64_t>(grain);
  const std::uint64_t rest = magnitude % step;
  std::uint64_t rounded = magnitude - rest;
  if (rest != 0 && rest >= step / 2) rounded += step;  // 2^63 and a step still fit
  return value < 0 ? -WideInteger{rounded} : WideInteger{rounded};
}

/// The values that an integer setting can take: multiples of a grain, shifted by an origin.
///
/// The origin is min - RoundToGrain(min, grain); who keeps a lattice decides when it is
/// recomputed.
template <std::signed_integral T>
struct IntegerLattice {
  T min;
  T max;
  T grain;  ///< never below 1
  std::int64_t origin;

  /// Gives the shift of the lattice for a minimum and a grain.
  static constexpr std::int64_t Origin(T min, T grain) noexcept {
    if (grain <= 1) return 0;
    return static_cast<std::int64_t>(WideInteger{min} - RoundToGrain(min, grain));
  }

  constexpr void RecomputeOrigin() noexcept { origin = Origin(min, grain); }

  /// Fits a request to range and grain.
  ///
  /// The grain rounds the value itself and the origin is added afterwards, so with min 1 and
  /// grain 5 a request of 7 gives 11. The result is limited to the range again.
  constexpr T Adapt(T requested) const noexcept {
    if (requested < min) requested = min;
    if (requested > max) requested = max;
    if (grain <= 1) return requested;
    const WideInteger rounded = RoundToGrain(requested, grain) + origin;
    if (rounded < min) return min;
    return rounded > max ? max : static_cast<T>(rounded);
  }

  /// Gives the request of an increment: that many grains away, inside the range.
  ///
  /// For 32 bits the product of steps and grain wraps as 32 bits do; for 64 bits it saturates.
  constexpr T Stepped(T adapted, int steps) const noexcept {
    WideInteger distance = 0;
    if constexpr (sizeof(T) == sizeof(std::int32_t)) {
      const auto wrapped = static_cast<std::uint32_t>(steps) * static_cast<std::uint32_t>(grain);
      distance = static_cast<std::int32_t>(wrapped);
    } else {
      distance = WideInteger{steps} * grain;
    }
    distance = std::min(distance, WideInteger{max} - adapted);
    distance = std::max(distance, WideInteger{min} - adapted);
    const WideInteger target = adapted + distance;
    return static_cast<T>(std::clamp(target, WideInteger{std::numeric_limits<T>::min()},
                                     WideInteger{std::numeric_limits<T>::max()}));
  }

  /// Gives the number of grains between min and max, with its fraction.
  constexpr double StepCount() const noexcept {
    return static_cast<double>(WideInteger{max} - min) / static_cast<double>(grain);
  }
};

/// Cuts a number to an integer, towards zero.
///
/// @param[out] integer  untouched on failure.
/// @retval E_INVALIDARG     the number is not finite
/// @retval DISP_E_OVERFLOW  the integer does not fit
/// @retval S_OK
template <std::signed_integral T>
[[nodiscard]] HRESULT CutToInteger(double number, T* integer) noexcept {
  if (!std::isfinite(number)) return E_INVALIDARG;
  const double cut = std::trunc(number);
  // The smallest value is a power of two, so it and its negation are exact doubles of any width.
  constexpr auto kSmallest = static_cast<double>(std::numeric_limits<T>::min());
  if (cut < kSmallest || cut >= -kSmallest) return DISP_E_OVERFLOW;
  *integer = static_cast<T>(cut);
  return S_OK;
}

}  // namespace cvars
