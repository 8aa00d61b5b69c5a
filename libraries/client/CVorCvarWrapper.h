#pragma once

#include <utility>

#include "CComPtr.h"
#include "Export.h"
#include "IVorCvar.h"

/// Calls a cvar and reports every call that fails as a developer event.
///
/// For code that has no better use for a failure than to tell the developer: a call through an
/// empty wrapper is such a failure, so the cvar need not be tested for null first.
///
/// @code
/// const CVorCvarWrapper level(bag->Find(L"Trigger Level"));
/// if (FAILED(level.Call(&IVorCvar::SetRequestedValueFromString, L"1.5 V"))) return;
/// @endcode
class CVARS_API CVorCvarWrapper {
 public:
  CVorCvarWrapper() noexcept = default;
  /// @param cvar  may be null; a reference is kept.
  explicit CVorCvarWrapper(IVorCvar* cvar) : m_cvar(cvar) {}

  /// Runs an operation of the cvar.
  ///
  /// @retval E_POINTER  the wrapper holds no cvar
  /// @return otherwise what the operation returned
  template <class... Parameters, class... Arguments>
  HRESULT Call(HRESULT (IVorCvar::*operation)(Parameters...), Arguments&&... arguments) const {
    return Report(m_cvar != nullptr ? ((*m_cvar).*operation)(std::forward<Arguments>(arguments)...)
                                    : E_POINTER);
  }

  /// Gives the cvar: borrowed; null when there is none.
  IVorCvar* Cvar() const noexcept { return m_cvar; }

 private:
  HRESULT Report(HRESULT result) const;

  CComPtr<IVorCvar> m_cvar;
};
