#pragma once

#include "CComBSTR.h"
#include "CComPtr.h"
#include "CCvarDouble.h"

/// A double that stands in front of another one and shows scale x target + offset.
///
/// The value lives in the target: every reader of the adapted value reads it there, every writer
/// writes it there, whatever the flags of this cvar. The request that this cvar reports is the
/// default of its Initialize, so a replica of it has to copy the value (REPLICATE_VALUE alone).
class CVARS_API CCvarDoubleIndirect : public CCvarDouble {
 public:
  /// Names and configures the cvar and listens to its targets; writes to none of them and tells
  /// nobody. CleanUp comes before a second Initialize with other targets.
  ///
  /// @param nativeTarget     weak, CleanUp forgets it; null for none. Read and written first.
  /// @param interfaceTarget  held; null for none.
  /// @param scale            units of this cvar for one of the target; 0 cannot be written.
  /// @param offset           shown for a target of 0.
  void Initialize(const CComBSTR& name, CCvarDouble* nativeTarget, IVorCvarDouble* interfaceTarget,
                  double scale, double offset, double defaultValue, double min, double max,
                  double grain, const CComBSTR& unit, CVARFLAGS flags, const CComBSTR& guiHints);

  /// Stops listening and forgets the targets. The targets hold this cvar until then.
  void CleanUp();

  using CCvarDouble::GetAdaptedValue;
  /// What the target shows here; the offset without a target.
  double GetAdaptedValue() override;
  using CCvarDouble::SetRequestedValue;
  /// Requests (value - offset) / scale of the target. @retval S_OK  also without a target
  HRESULT SetRequestedValue(double value, bool force) override;
  HRESULT IsDefault(int* isDefault) override;
  /// Passes what changed in a target on to the listeners.
  HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) override;

 protected:
  CCvarDoubleIndirect() = default;
  ~CCvarDoubleIndirect() = default;

 private:
  struct Link {
    CCvarDouble* native = nullptr;  // weak
    CComPtr<IVorCvarDouble> target;
    double scale = 1.0;
    double offset = 0.0;
  };
  Link CopyLink() const;

  Link m_link;  // guarded by the object lock, which is never held while a target is called
};
