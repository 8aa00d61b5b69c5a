#pragma once

#include "IVorCvarString.h"

/// {9A1C7F06-3D58-4B8A-8E4C-5C1E0DA7B622}
inline constexpr IID IID_IVorCvarObjectName = {
    0x9A1C7F06, 0x3D58, 0x4B8A, {0x8E, 0x4C, 0x5C, 0x1E, 0x0D, 0xA7, 0xB6, 0x22}};

/// A text setting that names an object for the screen, for scripts and for remote commands.
class CVARS_API IVorCvarObjectName : public IVorCvarString {
 public:
  virtual HRESULT SetRequestedValueStringScreen(const wchar_t* name) = 0;      // 49
  virtual HRESULT SetRequestedValueStringAutomation(const wchar_t* name) = 0;  // 50
  virtual HRESULT SetRequestedValueStringRemote(const wchar_t* name) = 0;      // 51
  virtual HRESULT GetAdaptedValueNamesJoined(BSTR* names) = 0;                 // 52

 protected:
  ~IVorCvarObjectName() = default;
};

template <>
struct cvars::InterfaceId<IVorCvarObjectName> {
  static constexpr IID value = IID_IVorCvarObjectName;
};
