#pragma once

#include "Cvars.h"

namespace cvars::model {

/// The time scale of the zoomed window, which may track the main one.
class WindowScale {
 public:
  /// Adds "Window Scale" to the bag whose "Scale" it can track.
  explicit WindowScale(CCvarBag& horizontal);

  bool Tracks() const noexcept { return m_tracks; }
  /// Ties the window's scale to the main one, or frees it. Once tied it takes the main scale at
  /// once and with each change; what is set to the window's own scale lasts until the main one
  /// changes.
  void SetTracks(bool tracks);

 private:
  CComPtr<CvarObject<CCvarDouble>> m_scale;
  CComPtr<IVorCvar> m_main;
  bool m_tracks = false;
};

}  // namespace cvars::model
