#pragma once

#include "IVorCvar.h"

/// {361C0E84-372A-4528-833E-2C5FCDBF66FE}
inline constexpr IID IID_IVorCvarBool = {
    0x361C0E84, 0x372A, 0x4528, {0x83, 0x3E, 0x2C, 0x5F, 0xCD, 0xBF, 0x66, 0xFE}};

/// A setting that is on or off: 0 is false, 1 is true.
///
/// A state may be disabled, which leaves the other one. A state that is neither 0 nor 1 gives
/// E_INVALIDARG; as a variant it is a number, a boolean or one of the state's texts.
class CVARS_API IVorCvarBool : public IVorCvar {
 public:
  virtual HRESULT GetAdaptedValue(int* value) = 0;             // 44
  virtual HRESULT GetDefaultValue(int* value) = 0;             // 45
  virtual HRESULT GetRequestedValue(int* value) = 0;           // 46
  virtual HRESULT SetRequestedValue(int value) = 0;            // 47
  virtual HRESULT Set() = 0;                                   // 48
  virtual HRESULT Clear() = 0;                                 // 49
  virtual HRESULT Get(int* value) = 0;                         // 50
  virtual HRESULT Enable(VARIANT state) = 0;                   // 51
  virtual HRESULT Disable(VARIANT state) = 0;                  // 52
  virtual HRESULT IsEnabled(VARIANT state, int* enabled) = 0;  // 53
  virtual HRESULT IsEnabled(int state, int* enabled) = 0;      // 54

 protected:
  ~IVorCvarBool() = default;
};

template <>
struct cvars::InterfaceId<IVorCvarBool> {
  static constexpr IID value = IID_IVorCvarBool;
};
