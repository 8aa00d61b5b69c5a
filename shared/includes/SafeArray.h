#pragma once

#include "Variant.h"

/// One dimension: number of elements and lowest index.
struct SAFEARRAYBOUND {
  ULONG cElements;
  LONG lLbound;
};

inline constexpr USHORT FADF_AUTO = 0x1;
inline constexpr USHORT FADF_STATIC = 0x2;
inline constexpr USHORT FADF_EMBEDDED = 0x4;
inline constexpr USHORT FADF_FIXEDSIZE = 0x10;
inline constexpr USHORT FADF_HAVEIID = 0x40;
inline constexpr USHORT FADF_HAVEVARTYPE = 0x80;
inline constexpr USHORT FADF_BSTR = 0x100;
inline constexpr USHORT FADF_UNKNOWN = 0x200;
inline constexpr USHORT FADF_DISPATCH = 0x400;
inline constexpr USHORT FADF_VARIANT = 0x800;

/// Array of n dimensions, the first index running fastest in memory. `rgsabound` holds the
/// dimensions in reverse order: the last dimension first.
struct SAFEARRAY {
  USHORT cDims;
  USHORT fFeatures;
  ULONG cbElements;
  ULONG cLocks;
  void* pvData;
  SAFEARRAYBOUND rgsabound[1];
};

/// @param bounds  borrowed; one entry a dimension, first dimension first. @return null on failure.
CVARS_API SAFEARRAY* SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds);
CVARS_API SAFEARRAY* SafeArrayCreateVector(VARTYPE type, LONG lowerBound, ULONG elements);
/// @retval DISP_E_ARRAYISLOCKED  nothing is freed
CVARS_API HRESULT SafeArrayDestroy(SAFEARRAY* array);
CVARS_API HRESULT SafeArrayDestroyData(SAFEARRAY* array);
CVARS_API HRESULT SafeArrayDestroyDescriptor(SAFEARRAY* array);
CVARS_API HRESULT SafeArrayCopy(SAFEARRAY* source, SAFEARRAY** copy);
CVARS_API HRESULT SafeArrayCopyData(SAFEARRAY* source, SAFEARRAY* destination);
CVARS_API HRESULT SafeArrayRedim(SAFEARRAY* array, SAFEARRAYBOUND* lastDimension);
CVARS_API UINT SafeArrayGetDim(SAFEARRAY* array);
CVARS_API UINT SafeArrayGetElemsize(SAFEARRAY* array);
/// @param dimension  from 1.
CVARS_API HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound);
CVARS_API HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound);
/// @param indices  borrowed; one index a dimension, first dimension first.
/// @param element  receives a copy; its old content is not freed.
CVARS_API HRESULT SafeArrayGetElement(SAFEARRAY* array, const LONG* indices, void* element);
/// Copies `element` in; for VT_BSTR, VT_UNKNOWN, VT_DISPATCH it is the text or interface itself.
CVARS_API HRESULT SafeArrayPutElement(SAFEARRAY* array, const LONG* indices, void* element);
CVARS_API HRESULT SafeArrayPtrOfIndex(SAFEARRAY* array, const LONG* indices, void** element);
CVARS_API HRESULT SafeArrayLock(SAFEARRAY* array);
CVARS_API HRESULT SafeArrayUnlock(SAFEARRAY* array);
CVARS_API HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data);
CVARS_API HRESULT SafeArrayUnaccessData(SAFEARRAY* array);
CVARS_API HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type);
