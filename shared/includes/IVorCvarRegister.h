#pragma once

#include "IVorCvar.h"

/// Who may write a register; clients give other values a meaning of their own.
enum ACCESSSTYLE : std::uint32_t {
  ACCESSSTYLE_READWRITE = 1,
  ACCESSSTYLE_READONLY = 2,
};

/// {9B3D5A17-60C8-4E2F-9A71-C4E85D0B2F16}
inline constexpr IID IID_IVorCvarRegister = {
    0x9B3D5A17, 0x60C8, 0x4E2F, {0x9A, 0x71, 0xC4, 0xE8, 0x5D, 0x0B, 0x2F, 0x16}};

/// A mirror of one hardware register of up to 32 bits, with names for fields of its bits.
class CVARS_API IVorCvarRegister : public IVorCvar {
 public:
  virtual HRESULT GetAdaptedValue(unsigned int* value) = 0;       // 44
  virtual HRESULT GetDefaultValue(unsigned int* value) = 0;       // 45
  virtual HRESULT GetRequestedValue(unsigned int* value) = 0;     // 46
  virtual HRESULT SetRequestedValue(unsigned int value) = 0;      // 47
  virtual HRESULT UpdateFromHardware(unsigned int value) = 0;     // 48
  virtual HRESULT GetMask(unsigned int* mask) = 0;                // 49
  virtual HRESULT GetNbOfBits(unsigned int* count) = 0;           // 50
  virtual HRESULT GetHardwareAddress(unsigned int* address) = 0;  // 51
  virtual HRESULT GetAccessStyle(ACCESSSTYLE* style) = 0;         // 52
  virtual HRESULT SetMask(unsigned int mask) = 0;                 // 53
  virtual HRESULT SetNbOfBits(unsigned int count) = 0;            // 54
  virtual HRESULT SetHardwareAddress(unsigned int address) = 0;   // 55
  virtual HRESULT SetAccessStyle(ACCESSSTYLE style) = 0;          // 56
  virtual HRESULT SetDefaultValue(unsigned int value) = 0;        // 57
  virtual HRESULT SetFieldDescription(unsigned int firstBit, unsigned int lastBit,
                                      const wchar_t* description) = 0;  // 58
  virtual HRESULT GetFieldDescription(unsigned int bit, unsigned int* firstBit,
                                      unsigned int* lastBit, BSTR* description) = 0;          // 59
  virtual HRESULT GetFieldDescriptionFirstBit(unsigned int bit, unsigned int* firstBit) = 0;  // 60
  virtual HRESULT GetFieldDescriptionLastBit(unsigned int bit, unsigned int* lastBit) = 0;    // 61
  virtual HRESULT GetFieldDescriptionString(unsigned int bit, BSTR* description) = 0;         // 62

 protected:
  ~IVorCvarRegister() = default;
};

template <>
struct cvars::InterfaceId<IVorCvarRegister> {
  static constexpr IID value = IID_IVorCvarRegister;
};
