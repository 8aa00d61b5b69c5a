#include "CLockstep.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "GrainRounding.h"

namespace {

struct Sequence {
  std::size_t count;
  double mantissas[5];
};

constexpr Sequence kSequences[] = {
    {5, {1, 2, 2.5, 5, 10}}, {4, {1, 2, 4, 10}},
    {5, {1, 2, 4, 5, 10}},   {5, {1, 2, 4, 8, 10}},
    {4, {1, 2, 5, 10}},      {5, {1, 2.5, 4, 5, 10}},
    {4, {1, 2.5, 5, 10}},    {4, {1, 3, 5, 10}},
    {3, {1, 3.3, 10}},       {2, {1, 10}},
    {3, {1, 2, 10}},         {5, {1, 2, 3, 5, 10}},
    {3, {1, 5, 10}},
};
constexpr auto kLastSequence = static_cast<std::int32_t>(std::size(kSequences)) - 1;

/// What rounding may take away from a value that lies on a point.
constexpr double kOnPoint = 2e-14;

double DecadeOf(double value) noexcept { return std::pow(10.0, std::floor(std::log10(value))); }

}  // namespace

CLockstep::CLockstep(LOCKSTEP lockstep) noexcept : m_lockstep(Clamped(lockstep)) {}

LOCKSTEP CLockstep::Clamped(LOCKSTEP lockstep) noexcept {
  const auto number = static_cast<std::int32_t>(lockstep);
  return static_cast<LOCKSTEP>(std::clamp(number, 0, kLastSequence));
}

double CLockstep::WithinBounds(double bound) noexcept {
  return bound > kSmallest ? std::min(bound, kLargest) : kSmallest;
}

std::span<const double> CLockstep::Mantissas(LOCKSTEP lockstep) noexcept {
  const Sequence& sequence = kSequences[Clamped(lockstep)];
  return {sequence.mantissas, sequence.count};
}

void CLockstep::SetMin(double min) noexcept {
  m_min = WithinBounds(min);
  m_max = std::max(m_max, m_min);
}

void CLockstep::SetMax(double max) noexcept {
  m_max = WithinBounds(max);
  m_min = std::min(m_min, m_max);
}

double CLockstep::Point(double value, bool up, bool clampToRange) const noexcept {
  if (!(value > 0.0)) value = 1.0;
  const double decade = DecadeOf(value);
  const double mantissa = value / decade;
  const std::span<const double> mantissas = Mantissas(m_lockstep);
  double chosen = up ? mantissas.back() : mantissas.front();
  if (up) {
    for (const double candidate : mantissas) {
      if (candidate > mantissa - kOnPoint) {
        chosen = candidate;
        break;
      }
    }
  } else {
    for (const double candidate : mantissas) {
      if (candidate <= mantissa + kOnPoint) chosen = candidate;
    }
  }
  const double point = decade * chosen;
  if (!clampToRange) return point;
  if (point < m_min) return m_min;
  return point > m_max ? m_max : point;
}

double CLockstep::Nearest(double value) const noexcept {
  if (!(value > 0.0)) value = 1.0;
  const double above = Point(value, true, true);
  const double below = Point(value, false, true);
  return value / below <= above / value ? below : above;
}

double CLockstep::Fine(double value, int direction) const noexcept {
  double point = Point(value, true, false);
  if (cvars::NearlyEqual(value, point, 1e-4 * point)) {
    point = Point(point * (direction < 1 ? 0.999 : 1.001), true, true);
  }
  return point * 0.01;
}

double CLockstep::Adapt(double value, bool fineGrain) const noexcept {
  const double point = fineGrain ? value : Nearest(value);
  const double step = Fine(point, 0);
  if (std::fabs(m_max - m_min) <= step) return point;
  const double rounded = cvars::RoundToStep(point, step);
  if (rounded > m_max + kOnPoint * step) return rounded - step;
  return rounded < m_min - kOnPoint * step ? rounded + step : rounded;
}

int CLockstep::StepCount() const noexcept {
  int count = 0;
  for (double value = m_min; value < m_max; ++count) {
    const double next = Stepped(value, 1);
    if (next == value) break;
    value = next;
  }
  return count;
}

double CLockstep::Stepped(double value, int steps) const noexcept {
  const bool up = steps > 0;
  const double factor = up ? 1.1 : 0.9;
  for (int left = steps; left != 0; left += up ? -1 : 1) {
    const double next = Point(value * factor, up, true);
    if (next == value) break;
    value = next;
  }
  return value;
}
