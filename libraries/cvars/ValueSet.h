#pragma once

#include <cstdint>
#include <iterator>
#include <set>
#include <string>
#include <type_traits>

#include "CvarEnums.h"
#include "NumericText.h"

namespace cvars {

/// Gives the name that signatures show; empty for a policy that is not known.
constexpr const wchar_t* AdaptPolicyName(AdaptPolicy policy) noexcept {
  switch (policy) {
    case ADAPT_CLOSEST_DOWN:
      return L"ClosestDown";
    case ADAPT_CLOSEST_UP:
      return L"ClosestUp";
    case ADAPT_DOWN:
      return L"Down";
    case ADAPT_UP:
      return L"Up";
  }
  return L"";
}

/// Gives the distance between two members, exactly for integers of any sign.
template <class T>
auto DistanceBetween(T low, T high) noexcept {
  if constexpr (std::is_floating_point_v<T>) {
    return high - low;
  } else {
    return static_cast<std::uint64_t>(high) - static_cast<std::uint64_t>(low);
  }
}

/// Fits a request to the members of a set.
///
/// An empty set keeps the request, a member keeps itself, and outside the members the nearest end
/// is taken whatever the policy. Between two members the policy decides; a policy that is not
/// known takes the nearer one and on a tie the lower.
template <class T>
T AdaptToSet(const std::set<T>& members, AdaptPolicy policy, T requested) {
  if (members.empty()) return requested;
  const auto above = members.lower_bound(requested);
  if (above == members.end()) return *members.rbegin();
  if (*above == requested || above == members.begin()) return *above;
  const T below = *std::prev(above);
  if (policy == ADAPT_UP) return *above;
  if (policy == ADAPT_DOWN) return below;
  const auto down = DistanceBetween(below, requested);
  const auto up = DistanceBetween(requested, *above);
  if (down == up) return policy == ADAPT_CLOSEST_UP ? *above : below;
  return down < up ? below : *above;
}

/// Moves a number of members up, or down when it is negative, and stops at the ends of the set.
///
/// A value that is no member stays as it is.
template <class T>
T StepInSet(const std::set<T>& members, T value, int steps) {
  auto at = members.find(value);
  if (at == members.end()) return value;
  for (; steps > 0 && std::next(at) != members.end(); --steps) ++at;
  for (; steps < 0 && at != members.begin(); ++steps) --at;
  return *at;
}

/// Gives the members in ascending order, "1,2.5,5"; doubles with six digits.
template <class T>
std::wstring MembersText(const std::set<T>& members) {
  std::wstring text;
  for (const T member : members) {
    if (!text.empty()) text += L',';
    AppendPlain(text, member);
  }
  return text;
}

}  // namespace cvars
