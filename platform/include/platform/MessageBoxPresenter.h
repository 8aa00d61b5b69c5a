#pragma once

#include "BasicTypes.h"
#include "Export.h"

namespace cvars::platform {

/// Shows message boxes in place of the desktop; the panel of an instrument installs one.
class MessageBoxPresenter {
 public:
  /// Shows the box on the calling thread and returns when it is closed.
  ///
  /// @param owner    null when the box has no owner window.
  /// @param text     borrowed.
  /// @param caption  borrowed.
  /// @param type     the MB_ flags of the call, unchanged.
  /// @return the button chosen (IDOK = 1, ...); 0 passes the box on to the next way of showing it.
  virtual int Present(HWND owner, const wchar_t* text, const wchar_t* caption, UINT type) = 0;

 protected:
  ~MessageBoxPresenter() = default;
};

/// Installs the presenter that MessageBox asks first; null uninstalls.
///
/// @param presenter  weak; must outlive its installation.
/// @return the presenter installed before, or null.
CVARS_API MessageBoxPresenter* SetMessageBoxPresenter(MessageBoxPresenter* presenter) noexcept;

}  // namespace cvars::platform
