#pragma once

#include <cmath>
#include <cstdint>

#include "Export.h"

namespace cvars {

/// Says whether two doubles are the same within a tolerance.
///
/// When either is not finite they are the same only if they compare equal, so not-a-number is
/// never the same as anything.
inline bool NearlyEqual(double left, double right, double tolerance) noexcept {
  const double difference = std::fabs(left - right);
  if (std::isnan(difference)) [[unlikely]] {
    return left == right;
  }
  return difference <= tolerance && std::isfinite(left) && std::isfinite(right);
}

/// Gives the tolerance within which a written value is the same as the one that is there.
inline double WriteTolerance(double reference) noexcept { return std::fabs(reference * 1e-15); }

/// Gives the nearest value inside [min, max].
///
/// With min above max, and for not-a-number, a value that is not below min gives max.
inline double ClampToRange(double value, double min, double max) noexcept {
  if (value >= min && value <= max) [[likely]] {
    return value;
  }
  return value < min ? min : max;
}

/// The step of a grain that is not above 0; see EffectiveStep.
CVARS_API double RelativeStep(double value, double grain) noexcept;

/// Gives the step that a grain means at a value.
///
/// A positive grain is the step itself. A grain of 0 is a step of 1e-7 of the value. A negative
/// grain -n means n significant digits, rounded to a whole number and limited to 1..18: at 1234.5
/// the grain -3 is a step of 12.345. Not-a-number passes through.
inline double EffectiveStep(double value, double grain) noexcept {
  return grain > 0.0 ? grain : RelativeStep(value, grain);
}

/// Rounds as RoundToStep does, where that is common and cheap.
/// @param[out] rounded  infinite where the result is too large; of no use when it was not cheap
/// @return whether it was
inline bool RoundQuickly(double value, double step, double& rounded) noexcept {
  if (!(step > 0.0)) return false;
  // From 2^52 on every double is a whole number; below, cutting is much cheaper than a call.
  constexpr double kAllWhole = 4503599627370496.0;
  const double count = value / step + 0.5;
  if (!(std::fabs(count) < kAllWhole)) return false;
  const auto cut = static_cast<double>(static_cast<std::int64_t>(count));
  rounded = (cut > count ? cut - 1.0 : cut) * step;
  return true;
}

/// Rounds to the nearest multiple of a step, counted from zero; ties go up.
///
/// A step that is not above 0, or a result too large for a double, leaves the value as it is.
inline double RoundToStep(double value, double step) noexcept {
  double rounded;
  if (!RoundQuickly(value, step, rounded)) {
    if (!(step > 0.0)) return value;
    rounded = std::floor(value / step + 0.5) * step;
  }
  return std::isinf(rounded) ? value : rounded;
}

/// Gives the number of significant digits of a negative grain, 1 to 18.
CVARS_API int SignificantDigits(double grain) noexcept;

}  // namespace cvars
