#pragma once

#include "IVorCvarDouble.h"

/// {5A7D0E93-B64F-4C21-8E1A-F3926D80C74B}
inline constexpr IID IID_IVorCvarDoubleLockstep = {
    0x5A7D0E93, 0xB64F, 0x4C21, {0x8E, 0x1A, 0xF3, 0x92, 0x6D, 0x80, 0xC7, 0x4B}};

/// A positive double that moves in the steps of a decade, and between them with fine grain.
class CVARS_API IVorCvarDoubleLockstep : public IVorCvarDouble {
 public:
  virtual HRESULT get_Lockstep(LOCKSTEP* lockstep) = 0;    // 55
  virtual HRESULT get_LockStep(LOCKSTEP* lockstep) = 0;    // 56
  virtual HRESULT put_Lockstep(LOCKSTEP lockstep) = 0;     // 57
  virtual HRESULT IncrementFine(int steps) = 0;            // 58
  virtual HRESULT get_FineGrainAllowed(int* allowed) = 0;  // 59
  virtual HRESULT put_FineGrainAllowed(int allowed) = 0;   // 60
  virtual HRESULT get_FineGrainOn(int* on) = 0;            // 61
  virtual HRESULT put_FineGrainOn(int on) = 0;             // 62

 protected:
  ~IVorCvarDoubleLockstep() = default;
};

template <>
struct cvars::InterfaceId<IVorCvarDoubleLockstep> {
  static constexpr IID value = IID_IVorCvarDoubleLockstep;
};
