#pragma once

#include "IVorCvar.h"

/// {C7158AA1-8C89-4C1A-A08A-E451877E805E}
inline constexpr IID IID_IVorCvarColor = {
    0xC7158AA1, 0x8C89, 0x4C1A, {0xA0, 0x8A, 0xE4, 0x51, 0x87, 0x7E, 0x80, 0x5E}};

/// A setting that is a colour, 0x00BBGGRR: red in the lowest byte.
class CVARS_API IVorCvarColor : public IVorCvar {
 public:
  virtual HRESULT GetAdaptedValue(int* value) = 0;       // 44
  virtual HRESULT GetDefaultValue(int* value) = 0;       // 45
  virtual HRESULT GetRequestedValue(int* value) = 0;     // 46
  virtual HRESULT SetRequestedValue(int value) = 0;      // 47
  virtual HRESULT GetRangeStringRemote(BSTR* text) = 0;  // 48
  virtual HRESULT GetMin(int* value) = 0;                // 49
  virtual HRESULT GetMax(int* value) = 0;                // 50

 protected:
  ~IVorCvarColor() = default;
};

template <>
struct cvars::InterfaceId<IVorCvarColor> {
  static constexpr IID value = IID_IVorCvarColor;
};
