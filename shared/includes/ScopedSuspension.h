#pragma once

#include "CvarBaseCpp.h"

namespace cvars {

/// Suspends the notifications of a cvar for a scope.
class ScopedSuspension {
 public:
  explicit ScopedSuspension(CvarBaseCpp& cvar) : m_cvar(cvar) { m_cvar.SuspendNotifications(1); }
  ~ScopedSuspension() { m_cvar.SuspendNotifications(0); }
  ScopedSuspension(const ScopedSuspension&) = delete;
  ScopedSuspension& operator=(const ScopedSuspension&) = delete;

 private:
  CvarBaseCpp& m_cvar;
};

}  // namespace cvars
