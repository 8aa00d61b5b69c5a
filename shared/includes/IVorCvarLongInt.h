#pragma once

#include "IVorCvar.h"

/// {91F4A6B2-3D5C-4E87-A02B-C86F1D7E4039}
inline constexpr IID IID_IVorCvarLongInt = {
    0x91F4A6B2, 0x3D5C, 0x4E87, {0xA0, 0x2B, 0xC8, 0x6F, 0x1D, 0x7E, 0x40, 0x39}};

/// A setting whose value is a 64-bit integer, bounded and rounded to a grain counted from its
/// minimum.
class CVARS_API IVorCvarLongInt : public IVorCvar {
 public:
  virtual HRESULT GetAdaptedValue(std::int64_t* value) = 0;    // 44
  virtual HRESULT GetDefaultValue(std::int64_t* value) = 0;    // 45
  virtual HRESULT GetGrainValue(std::int64_t* value) = 0;      // 46
  virtual HRESULT GetMaxValue(std::int64_t* value) = 0;        // 47
  virtual HRESULT GetMinValue(std::int64_t* value) = 0;        // 48
  virtual HRESULT GetRequestedValue(std::int64_t* value) = 0;  // 49
  virtual HRESULT GetUnitRemoteString(BSTR* unit) = 0;         // 50
  virtual HRESULT SetRequestedValue(std::int64_t value) = 0;   // 51
  virtual HRESULT get_CoarseGrain(double* grain) = 0;          // 52
  virtual HRESULT put_CoarseGrain(double grain) = 0;           // 53
  virtual HRESULT get_NumberOfIncrement(double* count) = 0;    // 54

 protected:
  ~IVorCvarLongInt() = default;
};

template <>
struct cvars::InterfaceId<IVorCvarLongInt> {
  static constexpr IID value = IID_IVorCvarLongInt;
};
