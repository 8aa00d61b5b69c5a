#pragma once

#include <span>

#include "CvarEnums.h"
#include "Export.h"
#include "Relaxed.h"

/// The points of a sequence that repeats in every decade, limited to a range.
///
/// Its owner serialises changes; any thread may read which sequence it is.
class CVARS_API CLockstep {
 public:
  using LOCKSTEP = ::LOCKSTEP;

  /// Bounds of every lockstep range.
  static constexpr double kSmallest = 1e-301;
  static constexpr double kLargest = 1e301;

  /// Starts with the widest range.
  ///
  /// @param lockstep  limited to the known sequences, as Clamped does.
  explicit CLockstep(LOCKSTEP lockstep) noexcept;

  /// Gives the nearest known sequence: 0 to 12, read as a signed number.
  static LOCKSTEP Clamped(LOCKSTEP lockstep) noexcept;

  /// Mantissas of one decade, ascending, from 1 to 10.
  static std::span<const double> Mantissas(LOCKSTEP lockstep) noexcept;

  /// Limits a bound to kSmallest..kLargest. NaN reads as kSmallest.
  static double WithinBounds(double bound) noexcept;

  LOCKSTEP Lockstep() const noexcept { return m_lockstep; }
  void SetLockstep(LOCKSTEP lockstep) noexcept { m_lockstep = Clamped(lockstep); }

  double Min() const noexcept { return m_min; }
  double Max() const noexcept { return m_max; }
  /// Limits the bound as WithinBounds does; a min above max raises max.
  void SetMin(double min) noexcept;
  /// Limits the bound as WithinBounds does; a max below min lowers min.
  void SetMax(double max) noexcept;

  /// Gives the smallest point at or above a value, or the largest at or below it.
  ///
  /// @param value         0, a negative number and not-a-number read as 1.
  /// @param clampToRange  limits the point to min and max, which need not be points.
  double Point(double value, bool up, bool clampToRange) const noexcept;

  /// Gives the point whose ratio to the value is nearest to 1, inside the range; ties go down.
  double Nearest(double value) const noexcept;

  /// Gives 1 % of the point at or above a value.
  ///
  /// On a point itself the step is that of the decade part which the direction leads into:
  /// below 1 the part under the point, else the part over it.
  double Fine(double value, int direction) const noexcept;

  /// Fits a value of the range to the nearest point, or with fine grain to its fine steps.
  double Adapt(double value, bool fineGrain) const noexcept;

  /// Gives how many points lie on the way up from min to max, with max itself.
  int StepCount() const noexcept;

  /// Moves up by a number of points, or down when it is negative, and stops at the range ends.
  double Stepped(double value, int steps) const noexcept;

 private:
  cvars::Relaxed<LOCKSTEP> m_lockstep;
  double m_min = kSmallest;
  double m_max = kLargest;
};
