#pragma once

#include "CCvarBool.h"

class CCvarDoubleLockstep;

/// A switch that shows and sets the fine grain of a lockstep cvar, and holds no value of its own.
///
/// It listens to that cvar, which therefore holds a reference to it until CleanUp; CleanUp has to
/// run before the lockstep cvar goes. Without a lockstep cvar it reads 0 and only stores requests.
class CVARS_API CCvarBoolToFineGrainOn : public CCvarBool {
 public:
  using CCvarBool::GetAdaptedValue;

  /// Names and configures the cvar, and binds it to a lockstep cvar, which gets the default.
  ///
  /// @param target  weak; null for none.
  /// @param values  copied; "false text,true text", as for CCvarBool.
  void Initialize(const CComBSTR& name, CCvarDoubleLockstep* target, const CComBSTR& values,
                  int defaultValue, CVARFLAGS flags, const CComBSTR& guiHints,
                  unsigned int helpStringID, CVARREPLICATIONFLAGS replicationFlags);
  /// Ends the binding.
  void CleanUp();

  /// Whether fine grain is switched on; 0 without a lockstep cvar.
  int GetAdaptedValue() override;
  /// Stores the request and hands it to the lockstep cvar, whose answer is given back.
  /// @retval E_ACCESSDENIED  read-only
  HRESULT SetRequestedValue(int value) override;
  /// A change of range of the lockstep cvar is passed on as a change of range and value; what else
  /// it tells is not. Every other source is that of a replica.
  HRESULT OnCvarNotify(IVorCvar* sender, NOTIFYTYPE what) override;

 protected:
  ~CCvarBoolToFineGrainOn() = default;

 private:
  CCvarDoubleLockstep* Target() const;

  CCvarDoubleLockstep* m_target CVARS_GUARDED_BY(m_lock) = nullptr;  // weak
};
