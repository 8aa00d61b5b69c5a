#pragma once

#include "IVorCvar.h"

/// {2C8E5D17-94A3-4F6B-B1D0-7A3E96C4158F}
inline constexpr IID IID_IVorCvarInt = {
    0x2C8E5D17, 0x94A3, 0x4F6B, {0xB1, 0xD0, 0x7A, 0x3E, 0x96, 0xC4, 0x15, 0x8F}};

/// A setting whose value is a 32-bit integer, bounded and rounded to a grain counted from its
/// minimum.
class CVARS_API IVorCvarInt : public IVorCvar {
 public:
  virtual HRESULT GetAdaptedValue(int* value) = 0;           // 44
  virtual HRESULT GetDefaultValue(int* value) = 0;           // 45
  virtual HRESULT GetGrainValue(int* value) = 0;             // 46
  virtual HRESULT GetMaxValue(int* value) = 0;               // 47
  virtual HRESULT GetMinValue(int* value) = 0;               // 48
  virtual HRESULT GetRequestedValue(int* value) = 0;         // 49
  virtual HRESULT GetUnitRemoteString(BSTR* unit) = 0;       // 50
  virtual HRESULT SetRequestedValue(int value) = 0;          // 51
  virtual HRESULT get_CoarseGrain(double* grain) = 0;        // 52
  virtual HRESULT put_CoarseGrain(double grain) = 0;         // 53
  virtual HRESULT get_NumberOfIncrement(double* count) = 0;  // 54

 protected:
  ~IVorCvarInt() = default;
};

template <>
struct cvars::InterfaceId<IVorCvarInt> {
  static constexpr IID value = IID_IVorCvarInt;
};
