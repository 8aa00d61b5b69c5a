#pragma once

#include "CvarDoubleImpl.h"

/// A floating-point setting: a request is clamped to [min, max] and rounded to the grain.
///
/// The request is kept as written, so a wider range later brings the value back to what was asked.
class CVARS_API CCvarDouble : public IVorCvarDoubleImpl<CCvarDouble, IVorCvarDouble> {
 public:
  static constexpr const wchar_t* kTypeName = L"Double";

  /// Names and configures the cvar and requests its default; tells nobody.
  ///
  /// @param name          copied; "name" or "name|remote name"; null reads as empty.
  /// @param defaultValue  in base units of `unit`, as min, max and grain.
  /// @param grain         > 0 a step, 0 a relative step of 1e-7, -n means n significant digits.
  /// @param unit          copied; remote spelling ("V"); null keeps the unit, one that is not valid
  ///                      too.
  /// @param guiHints      copied; null keeps the hints.
  void Initialize(const wchar_t* name, double defaultValue, double min, double max, double grain,
                  const wchar_t* unit, CVARFLAGS flags, const wchar_t* guiHints,
                  unsigned int helpStringID, CVARREPLICATIONFLAGS replicationFlags);

  /// Changes several attributes at once. Sets NOTIFY_UNIT, NOTIFY_GUIHINTS, NOTIFY_ATTRIBUTES,
  /// NOTIFY_RANGE and NOTIFY_VALUE for what changed.
  ///
  /// Numbers are taken as they are, not-a-number included. A maximum below the minimum lowers the
  /// minimum.
  HRESULT SetRange(double defaultValue, double min, double max, double grain, const wchar_t* unit,
                   const wchar_t* guiHints, unsigned int helpStringID, bool setDefault);

 protected:
  CCvarDouble() = default;
  ~CCvarDouble() = default;
};

extern template class IVorCvarImpl<CCvarDouble, IVorCvarDouble, double>;
extern template class cvars::NumericCvar<CCvarDouble, IVorCvarDouble, IVorCvarDouble, double>;
extern template class IVorCvarDoubleImpl<CCvarDouble, IVorCvarDouble>;
