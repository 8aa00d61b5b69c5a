#pragma once

#include "IVorCvar.h"

/// {2C9E2B5D-1E0F-4F5B-9B7C-70A3B2D94E11}
inline constexpr IID IID_IVorCvarString = {
    0x2C9E2B5D, 0x1E0F, 0x4F5B, {0x9B, 0x7C, 0x70, 0xA3, 0xB2, 0xD9, 0x4E, 0x11}};

/// A setting whose value is a free text, cut to a maximum length.
class CVARS_API IVorCvarString : public IVorCvar {
 public:
  virtual HRESULT GetAdaptedValue(BSTR* text) = 0;             // 44
  virtual HRESULT GetDefaultValue(BSTR* text) = 0;             // 45
  virtual HRESULT GetRequestedValue(BSTR* text) = 0;           // 46
  virtual HRESULT SetRequestedValue(const wchar_t* text) = 0;  // 47
  virtual HRESULT GetMaxLength(unsigned int* maxLength) = 0;   // 48

 protected:
  ~IVorCvarString() = default;
};

template <>
struct cvars::InterfaceId<IVorCvarString> {
  static constexpr IID value = IID_IVorCvarString;
};
