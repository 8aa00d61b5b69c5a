#pragma once

#include "IVorCvar.h"

/// How the screen shows a bit pattern.
enum CVARBITPATTERNFORMAT : std::uint32_t {
  BITPATTERN_FORMAT_BIN = 0,  ///< groups of eight bits
  BITPATTERN_FORMAT_HEX = 1,
};

/// Where a short request is filled, and which side of a long one is cut off.
enum CVARBITPATTERNPADALIGN : std::uint32_t {
  BITPATTERN_PAD_LEFT = 0,
  BITPATTERN_PAD_RIGHT = 1,
};

/// Whether the length of the value follows the request.
enum CVARBITPATTERNSIZEALIGN : std::uint32_t {
  BITPATTERN_SIZE_BIT_FIX = 0,   ///< no
  BITPATTERN_SIZE_BYTE_VAR = 1,  ///< in whole bytes
  BITPATTERN_SIZE_BIT_VAR = 2,   ///< in bits
};

/// {2F6C1B0E-94A7-4D0B-8C55-6E1D3A7B9F42}
inline constexpr IID IID_IVorCvarBitPattern = {
    0x2F6C1B0E, 0x94A7, 0x4D0B, {0x8C, 0x55, 0x6E, 0x1D, 0x3A, 0x7B, 0x9F, 0x42}};

/// A setting whose value is a string of bit characters: "0", "1", "X" (do not care) and the symbols
/// "B", "F" and "R".
class CVARS_API IVorCvarBitPattern : public IVorCvar {
 public:
  virtual HRESULT GetAdaptedValue(BSTR* value) = 0;                     // 44
  virtual HRESULT GetDefaultValue(BSTR* value) = 0;                     // 45
  virtual HRESULT GetRequestedValue(BSTR* value) = 0;                   // 46
  virtual HRESULT SetRequestedValue(const wchar_t* value) = 0;          // 47
  virtual HRESULT get_DecimalValue(int* value) = 0;                     // 48
  virtual HRESULT GetSignedDecimalValue(int* value) = 0;                // 49
  virtual HRESULT put_DecimalValue(int value) = 0;                      // 50
  virtual HRESULT put_HexadecimalValue(const wchar_t* value) = 0;       // 51
  virtual HRESULT get_HexadecimalValue(BSTR* value) = 0;                // 52
  virtual HRESULT get_MinValue(BSTR* value) = 0;                        // 53
  virtual HRESULT get_MaxValue(BSTR* value) = 0;                        // 54
  virtual HRESULT get_NumBits(int* count) = 0;                          // 55
  virtual HRESULT get_NumBytes(int* count) = 0;                         // 56
  virtual HRESULT get_MaxNumBits(int* count) = 0;                       // 57
  virtual HRESULT get_Format(CVARBITPATTERNFORMAT* format) = 0;         // 58
  virtual HRESULT get_AllowedBitValues(BSTR* characters) = 0;           // 59
  virtual HRESULT get_PaddingChar(unsigned int* character) = 0;         // 60
  virtual HRESULT get_PadAlign(CVARBITPATTERNPADALIGN* align) = 0;      // 61
  virtual HRESULT get_SizeAlign(CVARBITPATTERNSIZEALIGN* align) = 0;    // 62
  virtual HRESULT put_MaxNumBits(int count) = 0;                        // 63
  virtual HRESULT put_NumBits(int count) = 0;                           // 64
  virtual HRESULT put_NumBytes(int count) = 0;                          // 65
  virtual HRESULT put_Format(CVARBITPATTERNFORMAT format) = 0;          // 66
  virtual HRESULT put_AllowedBitValues(const wchar_t* characters) = 0;  // 67
  virtual HRESULT put_PaddingChar(unsigned int character) = 0;          // 68
  virtual HRESULT put_PadAlign(CVARBITPATTERNPADALIGN align) = 0;       // 69
  virtual HRESULT put_SizeAlign(CVARBITPATTERNSIZEALIGN align) = 0;     // 70

 protected:
  ~IVorCvarBitPattern() = default;
};

template <>
struct cvars::InterfaceId<IVorCvarBitPattern> {
  static constexpr IID value = IID_IVorCvarBitPattern;
};
