#pragma once

#include "CvarEnums.h"
#include "Unknown.h"

class IVorCvar;

/// {39699EE3-8587-40BC-855F-A260E04BFBA5}
inline constexpr IID IID_IVorCvarEventSink = {
    0x39699EE3, 0x8587, 0x40BC, {0x85, 0x5F, 0xA2, 0x60, 0xE0, 0x4B, 0xFB, 0xA5}};

/// A listener: told of the changes of the cvars it is attached to.
class CVARS_API IVorCvarEventSink : public IUnknown {
 public:
  /// Called on the changer's thread, with no lock of the cvar held.
  ///
  /// @param source  borrowed; the cvar that changed.
  /// @param what    every kind of change since the last notification.
  /// @return any code; the last failure goes back to whoever changed the cvar.
  virtual HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) = 0;  // 3

 protected:
  ~IVorCvarEventSink() = default;
};

template <>
struct cvars::InterfaceId<IVorCvarEventSink> {
  static constexpr IID value = IID_IVorCvarEventSink;
};
