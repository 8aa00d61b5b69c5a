#include "GrainRounding.h"

#include <algorithm>
#include <iterator>

namespace cvars {
namespace {

constexpr double kFractions[] = {1e0,  1e-1,  1e-2,  1e-3,  1e-4,  1e-5,  1e-6,  1e-7,  1e-8,
                                 1e-9, 1e-10, 1e-11, 1e-12, 1e-13, 1e-14, 1e-15, 1e-16, 1e-17};
constexpr int kMostDigits = static_cast<int>(std::size(kFractions));

}  // namespace

int SignificantDigits(double grain) noexcept {
  const double digits = std::floor(std::fabs(grain) + 0.5);
  return static_cast<int>(std::clamp(digits, 1.0, static_cast<double>(kMostDigits)));
}

double RelativeStep(double value, double grain) noexcept {
  if (grain == 0.0) return std::fabs(value) * 1e-7;
  if (grain < 0.0) return std::fabs(value) * kFractions[SignificantDigits(grain) - 1];
  return grain;
}

}  // namespace cvars
