#pragma once

#include "IVorCvar.h"

/// {E6B1A4B1-6C0B-4C0E-9A4E-0B1F5B7E2D31}
inline constexpr IID IID_IVorCvarDouble = {
    0xE6B1A4B1, 0x6C0B, 0x4C0E, {0x9A, 0x4E, 0x0B, 0x1F, 0x5B, 0x7E, 0x2D, 0x31}};

/// A setting whose value is a double, bounded by a minimum and a maximum and rounded to a grain.
class CVARS_API IVorCvarDouble : public IVorCvar {
 public:
  virtual HRESULT GetAdaptedValue(double* value) = 0;        // 44
  virtual HRESULT GetDefaultValue(double* value) = 0;        // 45
  virtual HRESULT GetGrainValue(double* value) = 0;          // 46
  virtual HRESULT GetMaxValue(double* value) = 0;            // 47
  virtual HRESULT GetMinValue(double* value) = 0;            // 48
  virtual HRESULT GetRequestedValue(double* value) = 0;      // 49
  virtual HRESULT GetUnitRemoteString(BSTR* unit) = 0;       // 50
  virtual HRESULT SetRequestedValue(double value) = 0;       // 51
  virtual HRESULT get_CoarseGrain(double* grain) = 0;        // 52
  virtual HRESULT put_CoarseGrain(double grain) = 0;         // 53
  virtual HRESULT get_NumberOfIncrement(double* count) = 0;  // 54

 protected:
  ~IVorCvarDouble() = default;
};

template <>
struct cvars::InterfaceId<IVorCvarDouble> {
  static constexpr IID value = IID_IVorCvarDouble;
};
