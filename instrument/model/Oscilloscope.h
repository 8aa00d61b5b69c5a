#pragma once

#include <list>
#include <optional>
#include <span>
#include <vector>

#include "CComPtr.h"
#include "CCvarBag.h"
#include "instrument/model/Acquisition.h"
#include "instrument/model/FineGrainSwitch.h"
#include "instrument/model/ProbeScale.h"
#include "instrument/model/WindowScale.h"

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
  /// The time scale of the window; a reset frees it.
  WindowScale& Window() noexcept { return *m_window; }

 private:
  std::vector<CComPtr<CCvarBag>> m_bags;
  std::optional<FineGrainSwitch> m_fineGrain;
  std::optional<WindowScale> m_window;
  std::list<ProbeScale> m_probes;  // one a channel
  CComPtr<CCvarBag> m_display;     // one of the bags; it shows settings and has none
  std::optional<Acquisition> m_acquisition;
};

}  // namespace cvars::model
