#pragma once

#include "Bstr.h"
#include "Unknown.h"

using VARTYPE = std::uint16_t;

enum VARENUM : VARTYPE {
  VT_EMPTY = 0,
  VT_NULL = 1,
  VT_I2 = 2,
  VT_I4 = 3,
  VT_R4 = 4,
  VT_R8 = 5,
  VT_CY = 6,
  VT_DATE = 7,
  VT_BSTR = 8,
  VT_DISPATCH = 9,
  VT_ERROR = 10,
  VT_BOOL = 11,
  VT_VARIANT = 12,
  VT_UNKNOWN = 13,
  VT_DECIMAL = 14,
  VT_I1 = 16,
  VT_UI1 = 17,
  VT_UI2 = 18,
  VT_UI4 = 19,
  VT_I8 = 20,
  VT_UI8 = 21,
  VT_INT = 22,
  VT_UINT = 23,
  VT_VOID = 24,
  VT_HRESULT = 25,
  VT_RECORD = 36,
  VT_VECTOR = 0x1000,
  VT_ARRAY = 0x2000,
  VT_BYREF = 0x4000,
  VT_TYPEMASK = 0xFFF,
};

struct SAFEARRAY;

/// Currency: 64-bit integer scaled by 10000.
union CY {
  LONGLONG int64;
  __extension__ struct {
    ULONG Lo;
    LONG Hi;
  };
};

/// Decimal: 96-bit magnitude, sign 0 or 0x80, scale 0 to 28 (power of ten divisor).
struct DECIMAL {
  USHORT wReserved;  ///< Overlays VARIANT::vt.
  BYTE scale;
  BYTE sign;
  ULONG Hi32;
  ULONGLONG Lo64;
};

/// A record and what describes it; carried, never interpreted.
struct RecordReference {
  void* pvRecord;
  void* pRecInfo;
};

/// Tagged value. `vt` says which member holds it; texts, arrays and interfaces are owned. A decimal
/// lies over the whole of the first 16 bytes, `vt` included: set `decVal` first and `vt` after it.
struct CVARS_API VARIANT {
  __extension__ union {
    __extension__ struct {
      VARTYPE vt;
      WORD wReserved1;
      WORD wReserved2;
      WORD wReserved3;
      union {
        LONGLONG llVal;
        LONG lVal;
        BYTE bVal;
        SHORT iVal;
        float fltVal;
        double dblVal;
        VARIANT_BOOL boolVal;
        SCODE scode;
        CY cyVal;
        DATE date;
        BSTR bstrVal;
        IUnknown* punkVal;
        IDispatch* pdispVal;
        SAFEARRAY* parray;
        char cVal;
        USHORT uiVal;
        ULONG ulVal;
        ULONGLONG ullVal;
        INT intVal;
        UINT uintVal;
        void* byref;
        BYTE* pbVal;
        SHORT* piVal;
        LONG* plVal;
        LONGLONG* pllVal;
        float* pfltVal;
        double* pdblVal;
        VARIANT_BOOL* pboolVal;
        SCODE* pscode;
        CY* pcyVal;
        DATE* pdate;
        BSTR* pbstrVal;
        IUnknown** ppunkVal;
        IDispatch** ppdispVal;
        SAFEARRAY** pparray;
        VARIANT* pvarVal;
        DECIMAL* pdecVal;
        char* pcVal;
        USHORT* puiVal;
        ULONG* pulVal;
        ULONGLONG* pullVal;
        INT* pintVal;
        UINT* puintVal;
        RecordReference brecVal;
      };
    };
    DECIMAL decVal;
  };
};
static_assert(sizeof(VARIANT) == 24);

namespace cvars {
/// The decimal that a VT_DECIMAL variant holds.
inline DECIMAL GetDecimal(const VARIANT& variant) noexcept {
  DECIMAL value = variant.decVal;
  value.wReserved = 0;
  return value;
}
/// Makes a variant hold a decimal, without freeing what it held.
inline void SetDecimal(VARIANT& variant, const DECIMAL& value) noexcept {
  variant.decVal = value;
  variant.vt = VT_DECIMAL;
}
}  // namespace cvars

/// Flags of VariantChangeType; 2 and 4 both ask for "True"/"False" in place of "-1"/"0".
inline constexpr USHORT VARIANT_NOVALUEPROP = 0x01;
inline constexpr USHORT VARIANT_ALPHABOOL = 0x02;
inline constexpr USHORT VARIANT_NOUSEROVERRIDE = 0x04;
inline constexpr USHORT VARIANT_LOCALBOOL = 0x10;

/// Makes a variant empty without freeing what it held.
CVARS_API void VariantInit(VARIANT* variant);
/// Frees what a variant holds (never what it refers to by VT_BYREF) and makes it empty.
/// @retval DISP_E_BADVARTYPE     unknown tag; nothing changes
/// @retval DISP_E_ARRAYISLOCKED  a locked array; nothing changes
CVARS_API HRESULT VariantClear(VARIANT* variant);
/// Clears the destination and copies the source into it; references stay references.
CVARS_API HRESULT VariantCopy(VARIANT* destination, const VARIANT* source);
/// As VariantCopy, following VT_BYREF to the value.
CVARS_API HRESULT VariantCopyInd(VARIANT* destination, const VARIANT* source);
/// Converts; a failure leaves source and destination as they were. Source may be the destination.
CVARS_API HRESULT VariantChangeType(VARIANT* destination, const VARIANT* source, USHORT flags,
                                    VARTYPE type);
CVARS_API HRESULT VariantChangeTypeEx(VARIANT* destination, const VARIANT* source, LCID locale,
                                      USHORT flags, VARTYPE type);
