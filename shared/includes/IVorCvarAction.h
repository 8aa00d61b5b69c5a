#pragma once

#include "IVorCvar.h"

/// {C7A1E3D4-5B28-4F96-8E0D-17F2A94C6B53}
inline constexpr IID IID_IVorCvarAction = {
    0xC7A1E3D4, 0x5B28, 0x4F96, {0x8E, 0x0D, 0x17, 0xF2, 0xA9, 0x4C, 0x6B, 0x53}};

/// A command: it has no value, and its listeners do the work.
class CVARS_API IVorCvarAction : public IVorCvar {
 public:
  virtual HRESULT ActNow() = 0;  // 44

 protected:
  ~IVorCvarAction() = default;
};

template <>
struct cvars::InterfaceId<IVorCvarAction> {
  static constexpr IID value = IID_IVorCvarAction;
};
