#pragma once

#include "CvarEnums.h"
#include "Export.h"
#include "PendingMask.h"

class IVorCvar;

/// The plain base of every cvar: what in-process callers reach without the component interface.
class CVARS_API CvarBaseCpp {
 public:
  /// The cvar's interface. @return borrowed
  virtual IVorCvar* GetIVorCvar() = 0;  // 0
  /// Non-zero suspends notifications, zero resumes them; pairs nest. The resume that ends the
  /// suspension sends what gathered meanwhile in one notification.
  /// @return 0
  virtual int SuspendNotifications(int suspend) = 0;  // 1
  /// Sets or clears bits. Sets NOTIFY_FLAGS when the word changes.
  /// @return whether the word changed
  virtual bool SetFlags(CVARFLAGS bits, bool on) = 0;  // 2
  /// Sets or clears CVARFLAG_PUBLIC, which a replica keeps. @return whether the word changed
  virtual bool ForcePublic(bool on) = 0;  // 3
  /// Sets or clears CVARFLAG_PRIVATE, which a replica keeps. @return whether the word changed
  virtual bool ForcePrivate(bool on) = 0;  // 4

  /// Number of cvars made by this process so far.
  static int NumCvarsConstructed();
  /// Number of cvars destroyed by this process so far.
  static int NumCvarsDestructed();

  CvarBaseCpp(const CvarBaseCpp&) = delete;
  CvarBaseCpp& operator=(const CvarBaseCpp&) = delete;

 protected:
  CvarBaseCpp() noexcept;
  ~CvarBaseCpp();

  cvars::PendingMask m_pending;
};
