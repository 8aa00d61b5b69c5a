#pragma once

#include <span>
#include <vector>

#include "CComPtr.h"
#include "CCvarBag.h"

namespace cvars::model {

/// A small simulated oscilloscope: the bags that hold its settings.
///
/// Belongs to one thread, as cvars do.
class Oscilloscope {
 public:
  static constexpr int kChannelCount = 4;

  Oscilloscope();

  /// Every bag, in the order in which a user meets them.
  std::span<const CComPtr<CCvarBag>> Bags() const noexcept { return m_bags; }
  /// Puts every setting that can be written back to its default.
  void Reset();

 private:
  std::vector<CComPtr<CCvarBag>> m_bags;
};

}  // namespace cvars::model
