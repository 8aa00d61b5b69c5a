#include "Variant.h"

#include <cstring>

#include "SafeArray.h"
#include "VariantTags.h"

namespace cvars::platform {

bool IsValidTag(VARTYPE type) noexcept {
  if ((type & ~(VT_TYPEMASK | VT_ARRAY | VT_BYREF)) != 0) return false;
  const VARTYPE base = type & VT_TYPEMASK;
  const bool known = base <= VT_DECIMAL || (base >= VT_I1 && base <= VT_UINT) || base == VT_RECORD;
  if (!known) return false;
  // Nothing and null are no elements and can not be referred to.
  return base > VT_NULL || type == base;
}

}  // namespace cvars::platform

using cvars::platform::IsValidTag;

namespace {

// A byref variant may refer to a variant that is itself a reference to a plain value, no further.
HRESULT CopyValue(VARIANT& copy, const VARIANT& source) {
  if (!IsValidTag(source.vt) || source.vt == VT_VARIANT) return DISP_E_BADVARTYPE;
  copy = source;
  if ((source.vt & VT_BYREF) != 0) return S_OK;
  if ((source.vt & VT_ARRAY) != 0) {
    copy.parray = nullptr;
    return SafeArrayCopy(source.parray, &copy.parray);
  }
  switch (source.vt) {
    case VT_BSTR:
      if (source.bstrVal == nullptr) break;
      copy.bstrVal = SysAllocStringByteLen(reinterpret_cast<const char*>(source.bstrVal),
                                           SysStringByteLen(source.bstrVal));
      if (copy.bstrVal == nullptr) return E_OUTOFMEMORY;
      break;
    case VT_UNKNOWN:
      if (source.punkVal != nullptr) source.punkVal->AddRef();
      break;
    case VT_DISPATCH:
      if (source.pdispVal != nullptr) source.pdispVal->AddRef();
      break;
    default:
      break;
  }
  return S_OK;
}

// Puts a fresh value in place of the old one; gives the fresh one up when the old one stays.
HRESULT Replace(VARIANT* destination, VARIANT& fresh) {
  const HRESULT cleared = VariantClear(destination);
  if (FAILED(cleared)) {
    (void)VariantClear(&fresh);  // just made, so neither unknown nor locked
    return cleared;
  }
  *destination = fresh;
  return S_OK;
}

}  // namespace

namespace cvars::platform {

HRESULT Dereference(VARIANT& value, const VARIANT& source) noexcept {
  if ((source.vt & VT_BYREF) == 0) {
    value = source;
    return S_OK;
  }
  if (!IsValidTag(source.vt)) return DISP_E_BADVARTYPE;
  if (source.byref == nullptr) return DISP_E_TYPEMISMATCH;
  const VARTYPE type = source.vt & static_cast<VARTYPE>(~VT_BYREF);
  if (type == VT_VARIANT) {
    const VARIANT& inner = *source.pvarVal;
    if (inner.vt == (VT_BYREF | VT_VARIANT)) return E_INVALIDARG;
    return Dereference(value, inner);
  }
  value = VARIANT{};
  value.vt = type;
  if ((type & VT_ARRAY) != 0) {
    value.parray = *source.pparray;
    return S_OK;
  }
  switch (type) {
    case VT_I1:
    case VT_UI1:
      value.bVal = *source.pbVal;
      break;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      value.iVal = *source.piVal;
      break;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_ERROR:
      value.lVal = *source.plVal;
      break;
    case VT_R4:
      value.fltVal = *source.pfltVal;
      break;
    case VT_R8:
    case VT_DATE:
      value.dblVal = *source.pdblVal;
      break;
    case VT_I8:
    case VT_UI8:
      value.llVal = *source.pllVal;
      break;
    case VT_CY:
      value.cyVal = *source.pcyVal;
      break;
    case VT_BSTR:
      value.bstrVal = *source.pbstrVal;
      break;
    case VT_UNKNOWN:
      value.punkVal = *source.ppunkVal;
      break;
    case VT_DISPATCH:
      value.pdispVal = *source.ppdispVal;
      break;
    case VT_DECIMAL:
      SetDecimal(value, *source.pdecVal);
      break;
    case VT_RECORD:
      value.brecVal = source.brecVal;
      break;
    default:
      return DISP_E_BADVARTYPE;
  }
  return S_OK;
}

}  // namespace cvars::platform

void VariantInit(VARIANT* variant) {
  if (variant != nullptr) *variant = VARIANT{};
}

HRESULT VariantClear(VARIANT* variant) {
  if (variant == nullptr) return E_INVALIDARG;
  if (!IsValidTag(variant->vt)) return DISP_E_BADVARTYPE;
  if ((variant->vt & (VT_BYREF | VT_ARRAY)) == VT_ARRAY) {
    const HRESULT result = SafeArrayDestroy(variant->parray);
    if (FAILED(result)) return result;
    variant->vt = VT_EMPTY;
    return S_OK;
  }
  // Emptied before anything is released, because a release may come back to this variant.
  const VARIANT old = *variant;
  variant->vt = VT_EMPTY;
  switch (old.vt) {
    case VT_BSTR:
      SysFreeString(old.bstrVal);
      break;
    case VT_UNKNOWN:
      if (old.punkVal != nullptr) old.punkVal->Release();
      break;
    case VT_DISPATCH:
      if (old.pdispVal != nullptr) old.pdispVal->Release();
      break;
    default:
      break;
  }
  return S_OK;
}

HRESULT VariantCopy(VARIANT* destination, const VARIANT* source) {
  if (destination == nullptr || source == nullptr) return E_INVALIDARG;
  if (destination == source) return IsValidTag(source->vt) ? S_OK : DISP_E_BADVARTYPE;
  if (!IsValidTag(destination->vt)) return DISP_E_BADVARTYPE;
  VARIANT copy{};
  const HRESULT result = CopyValue(copy, *source);
  if (FAILED(result)) return result;
  return Replace(destination, copy);
}

HRESULT VariantCopyInd(VARIANT* destination, const VARIANT* source) {
  if (destination == nullptr || source == nullptr) return E_INVALIDARG;
  if ((source->vt & VT_BYREF) == 0) return VariantCopy(destination, source);
  if (!IsValidTag(destination->vt)) return DISP_E_BADVARTYPE;
  VARIANT value{};
  if (source->byref == nullptr && IsValidTag(source->vt)) return E_INVALIDARG;
  HRESULT result = cvars::platform::Dereference(value, *source);
  if (FAILED(result)) return result;
  VARIANT copy{};
  result = CopyValue(copy, value);
  if (FAILED(result)) return result;
  return Replace(destination, copy);
}
