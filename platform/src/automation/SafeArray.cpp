#include "SafeArray.h"

#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

constexpr USHORT kCreatedAsVector = 0x2000;

// The element tag stands in front of the descriptor, in a block of its own that keeps the
// descriptor aligned.
struct alignas(16) HiddenPrefix {
  VARTYPE type;
};

HiddenPrefix* PrefixOf(SAFEARRAY* array) { return reinterpret_cast<HiddenPrefix*>(array) - 1; }

ULONG ElementSize(VARTYPE type) {
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_R4:
    case VT_INT:
    case VT_UINT:
    case VT_ERROR:
      return 4;
    case VT_R8:
    case VT_DATE:
    case VT_CY:
    case VT_I8:
    case VT_UI8:
      return 8;
    case VT_BSTR:
    case VT_UNKNOWN:
    case VT_DISPATCH:
      return sizeof(void*);
    case VT_DECIMAL:
      return sizeof(DECIMAL);
    case VT_VARIANT:
      return sizeof(VARIANT);
    default:
      return 0;
  }
}

USHORT FeaturesOf(VARTYPE type) {
  switch (type) {
    case VT_BSTR:
      return FADF_BSTR | FADF_HAVEVARTYPE;
    case VT_VARIANT:
      return FADF_VARIANT | FADF_HAVEVARTYPE;
    case VT_UNKNOWN:
      return FADF_UNKNOWN | FADF_HAVEIID;
    case VT_DISPATCH:
      return FADF_DISPATCH | FADF_HAVEIID;
    default:
      return FADF_HAVEVARTYPE;
  }
}

// Bytes of all elements; false when they can not be counted in a descriptor's terms.
bool TotalBytes(const SAFEARRAY& array, std::size_t& bytes) {
  std::size_t total = array.cbElements;
  bool empty = false;
  for (UINT i = 0; i < array.cDims; ++i) {
    if (array.rgsabound[i].cElements == 0) empty = true;
  }
  if (!empty) {
    for (UINT i = 0; i < array.cDims; ++i) {
      if (__builtin_mul_overflow(total, std::size_t{array.rgsabound[i].cElements}, &total) ||
          total > std::size_t{std::numeric_limits<std::ptrdiff_t>::max()}) {
        return false;
      }
    }
  }
  bytes = empty ? 0 : total;
  return true;
}

bool BoundFits(const SAFEARRAYBOUND& bound) {
  return std::int64_t{bound.lLbound} + bound.cElements - 1 <= std::numeric_limits<LONG>::max();
}

void ClearElements(const SAFEARRAY& array, char* first, std::size_t bytes) {
  for (char* at = first; at < first + bytes; at += array.cbElements) {
    if ((array.fFeatures & FADF_VARIANT) != 0) {
      auto* element = reinterpret_cast<VARIANT*>(at);
      (void)VariantClear(element);  // an element that can not be cleared holds nothing of ours
    } else if ((array.fFeatures & FADF_BSTR) != 0) {
      SysFreeString(*reinterpret_cast<BSTR*>(at));
    } else if ((array.fFeatures & (FADF_UNKNOWN | FADF_DISPATCH)) != 0) {
      IUnknown* object = *reinterpret_cast<IUnknown**>(at);
      if (object != nullptr) object->Release();
    } else {
      return;
    }
  }
  if (bytes != 0) std::memset(first, 0, bytes);
}

// Copies one element into raw memory; the memory holds a valid element whatever the result.
HRESULT CopyElement(USHORT features, ULONG size, const void* source, void* raw) {
  std::memset(raw, 0, size);
  if ((features & FADF_VARIANT) != 0) {
    return VariantCopy(static_cast<VARIANT*>(raw), static_cast<const VARIANT*>(source));
  }
  if ((features & FADF_BSTR) != 0) {
    BSTR text = *static_cast<const BSTR*>(source);
    if (text == nullptr) return S_OK;
    BSTR copy = SysAllocStringByteLen(reinterpret_cast<const char*>(text), SysStringByteLen(text));
    std::memcpy(raw, &copy, sizeof(copy));
    return copy == nullptr ? E_OUTOFMEMORY : S_OK;
  }
  std::memcpy(raw, source, size);
  if ((features & (FADF_UNKNOWN | FADF_DISPATCH)) != 0) {
    IUnknown* object = *static_cast<IUnknown* const*>(source);
    if (object != nullptr) object->AddRef();
  }
  return S_OK;
}

bool SameShape(const SAFEARRAY& a, const SAFEARRAY& b) {
  if (a.cDims != b.cDims || a.cbElements != b.cbElements) return false;
  for (UINT i = 0; i < a.cDims; ++i) {
    if (a.rgsabound[i].cElements != b.rgsabound[i].cElements) return false;
  }
  return true;
}

HRESULT CheckDimension(const SAFEARRAY* array, UINT dimension, const LONG* bound) {
  if (array == nullptr || bound == nullptr) return E_INVALIDARG;
  return dimension == 0 || dimension > array->cDims ? DISP_E_BADINDEX : S_OK;
}

SAFEARRAY* AllocateDescriptor(VARTYPE type, UINT dimensions) {
  const std::size_t bytes =
      sizeof(HiddenPrefix) + sizeof(SAFEARRAY) + (dimensions - 1) * sizeof(SAFEARRAYBOUND);
  void* block = std::calloc(1, bytes);
  if (block == nullptr) return nullptr;
  auto* prefix = static_cast<HiddenPrefix*>(block);
  prefix->type = type;
  auto* array = reinterpret_cast<SAFEARRAY*>(prefix + 1);
  array->cDims = static_cast<USHORT>(dimensions);
  array->fFeatures = FeaturesOf(type);
  array->cbElements = ElementSize(type);
  return array;
}

bool AllocateData(SAFEARRAY& array) {
  std::size_t bytes = 0;
  if (!TotalBytes(array, bytes)) return false;
  array.pvData = std::calloc(1, bytes == 0 ? 1 : bytes);
  return array.pvData != nullptr;
}

}  // namespace

SAFEARRAY* SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds) {
  if (ElementSize(type) == 0 || dimensions == 0 || dimensions > 0xFFFF || bounds == nullptr) {
    return nullptr;
  }
  SAFEARRAY* array = AllocateDescriptor(type, dimensions);
  if (array == nullptr) return nullptr;
  bool fits = true;
  SAFEARRAYBOUND* stored = array->rgsabound;
  for (UINT i = 0; i < dimensions; ++i) {
    stored[dimensions - 1 - i] = bounds[i];
    fits = fits && BoundFits(bounds[i]);
  }
  if (fits && AllocateData(*array)) return array;
  std::free(PrefixOf(array));
  return nullptr;
}

SAFEARRAY* SafeArrayCreateVector(VARTYPE type, LONG lowerBound, ULONG elements) {
  SAFEARRAYBOUND bound = {elements, lowerBound};
  SAFEARRAY* array = SafeArrayCreate(type, 1, &bound);
  if (array != nullptr) array->fFeatures |= kCreatedAsVector;
  return array;
}

HRESULT SafeArrayDestroyData(SAFEARRAY* array) {
  if (array == nullptr) return E_INVALIDARG;
  if (array->cLocks != 0) return DISP_E_ARRAYISLOCKED;
  if (array->pvData == nullptr) return S_OK;
  std::size_t bytes = 0;
  if (!TotalBytes(*array, bytes)) return E_UNEXPECTED;
  ClearElements(*array, static_cast<char*>(array->pvData), bytes);
  if ((array->fFeatures & (FADF_STATIC | FADF_AUTO | FADF_EMBEDDED)) == 0) {
    std::free(array->pvData);
    array->pvData = nullptr;
  }
  return S_OK;
}

HRESULT SafeArrayDestroyDescriptor(SAFEARRAY* array) {
  if (array == nullptr) return S_OK;
  if (array->cLocks != 0) return DISP_E_ARRAYISLOCKED;
  std::free(PrefixOf(array));
  return S_OK;
}

HRESULT SafeArrayDestroy(SAFEARRAY* array) {
  if (array == nullptr) return S_OK;
  const HRESULT result = SafeArrayDestroyData(array);
  return FAILED(result) ? result : SafeArrayDestroyDescriptor(array);
}

HRESULT SafeArrayCopy(SAFEARRAY* source, SAFEARRAY** copy) {
  if (copy == nullptr) return E_INVALIDARG;
  *copy = nullptr;
  if (source == nullptr) return S_OK;
  SAFEARRAY* fresh = AllocateDescriptor(PrefixOf(source)->type, source->cDims);
  if (fresh == nullptr) return E_OUTOFMEMORY;
  fresh->fFeatures = static_cast<USHORT>(
      source->fFeatures & ~(FADF_AUTO | FADF_STATIC | FADF_EMBEDDED | FADF_FIXEDSIZE));
  std::memcpy(fresh->rgsabound, source->rgsabound, source->cDims * sizeof(SAFEARRAYBOUND));
  if (!AllocateData(*fresh)) {
    std::free(PrefixOf(fresh));
    return E_OUTOFMEMORY;
  }
  const HRESULT result = SafeArrayCopyData(source, fresh);
  if (FAILED(result)) {
    (void)SafeArrayDestroy(fresh);  // fresh, so unlocked
    return result;
  }
  *copy = fresh;
  return S_OK;
}

HRESULT SafeArrayCopyData(SAFEARRAY* source, SAFEARRAY* destination) {
  if (source == nullptr || destination == nullptr || !SameShape(*source, *destination) ||
      source->pvData == nullptr || destination->pvData == nullptr) {
    return E_INVALIDARG;
  }
  if (source == destination) return S_OK;
  std::size_t bytes = 0;
  if (!TotalBytes(*source, bytes)) return E_INVALIDARG;
  auto* to = static_cast<char*>(destination->pvData);
  ClearElements(*destination, to, bytes);
  const auto* from = static_cast<const char*>(source->pvData);
  for (std::size_t at = 0; at < bytes; at += source->cbElements) {
    const HRESULT result = CopyElement(source->fFeatures, source->cbElements, from + at, to + at);
    if (FAILED(result)) return result;
  }
  return S_OK;
}

HRESULT SafeArrayRedim(SAFEARRAY* array, SAFEARRAYBOUND* lastDimension) {
  if (array == nullptr || lastDimension == nullptr) return E_INVALIDARG;
  if ((array->fFeatures & FADF_FIXEDSIZE) != 0 || !BoundFits(*lastDimension)) return E_INVALIDARG;
  if (array->cLocks != 0) return DISP_E_ARRAYISLOCKED;
  const SAFEARRAYBOUND old = array->rgsabound[0];
  std::size_t oldBytes = 0;
  std::size_t newBytes = 0;
  if (!TotalBytes(*array, oldBytes)) return E_UNEXPECTED;
  array->rgsabound[0] = *lastDimension;
  void* data = nullptr;
  if (TotalBytes(*array, newBytes)) data = std::calloc(1, newBytes == 0 ? 1 : newBytes);
  if (data == nullptr) {
    array->rgsabound[0] = old;
    return E_OUTOFMEMORY;
  }
  auto* oldData = static_cast<char*>(array->pvData);
  const std::size_t kept = oldBytes < newBytes ? oldBytes : newBytes;
  if (oldData != nullptr) {
    // Elements move as they are: the last dimension runs slowest, so the kept ones come first.
    if (kept != 0) std::memcpy(data, oldData, kept);
    array->pvData = data;
    ClearElements(*array, oldData + kept, oldBytes - kept);
    std::free(oldData);
  } else {
    array->pvData = data;
  }
  return S_OK;
}

UINT SafeArrayGetDim(SAFEARRAY* array) { return array == nullptr ? 0 : array->cDims; }

UINT SafeArrayGetElemsize(SAFEARRAY* array) { return array == nullptr ? 0 : array->cbElements; }

HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  const HRESULT result = CheckDimension(array, dimension, bound);
  if (SUCCEEDED(result)) *bound = array->rgsabound[array->cDims - dimension].lLbound;
  return result;
}

HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  const HRESULT result = CheckDimension(array, dimension, bound);
  if (FAILED(result)) return result;
  const SAFEARRAYBOUND& stored = array->rgsabound[array->cDims - dimension];
  *bound = static_cast<LONG>(std::int64_t{stored.lLbound} + stored.cElements - 1);
  return S_OK;
}

HRESULT SafeArrayPtrOfIndex(SAFEARRAY* array, const LONG* indices, void** element) {
  if (array == nullptr || indices == nullptr || element == nullptr) return E_INVALIDARG;
  std::size_t position = 0;
  std::size_t span = 1;
  for (UINT i = 0; i < array->cDims; ++i) {
    const SAFEARRAYBOUND& bound = array->rgsabound[array->cDims - 1 - i];
    const std::int64_t offset = std::int64_t{indices[i]} - bound.lLbound;
    if (offset < 0 || offset >= std::int64_t{bound.cElements}) return DISP_E_BADINDEX;
    position += static_cast<std::size_t>(offset) * span;
    span *= bound.cElements;
  }
  if (array->pvData == nullptr) return E_INVALIDARG;
  *element = static_cast<char*>(array->pvData) + position * array->cbElements;
  return S_OK;
}

HRESULT SafeArrayGetElement(SAFEARRAY* array, const LONG* indices, void* element) {
  if (array == nullptr || indices == nullptr || element == nullptr) return E_INVALIDARG;
  void* stored = nullptr;
  const HRESULT result = SafeArrayPtrOfIndex(array, indices, &stored);
  if (FAILED(result)) return result;
  return CopyElement(array->fFeatures, array->cbElements, stored, element);
}

HRESULT SafeArrayPutElement(SAFEARRAY* array, const LONG* indices, void* element) {
  if (array == nullptr || indices == nullptr) return E_INVALIDARG;
  void* stored = nullptr;
  HRESULT result = SafeArrayPtrOfIndex(array, indices, &stored);
  if (FAILED(result)) return result;
  if ((array->fFeatures & FADF_VARIANT) != 0) {
    if (element == nullptr) return E_INVALIDARG;
    return VariantCopy(static_cast<VARIANT*>(stored), static_cast<const VARIANT*>(element));
  }
  if ((array->fFeatures & FADF_BSTR) != 0) {
    auto* text = static_cast<BSTR>(element);
    BSTR copy = SysAllocStringByteLen(reinterpret_cast<const char*>(text), SysStringByteLen(text));
    if (copy == nullptr) return E_OUTOFMEMORY;
    auto* slot = static_cast<BSTR*>(stored);
    BSTR old = *slot;
    *slot = copy;
    SysFreeString(old);
    return S_OK;
  }
  if ((array->fFeatures & (FADF_UNKNOWN | FADF_DISPATCH)) != 0) {
    auto* object = static_cast<IUnknown*>(element);
    auto* slot = static_cast<IUnknown**>(stored);
    if (object != nullptr) object->AddRef();
    IUnknown* old = *slot;
    *slot = object;
    if (old != nullptr) old->Release();
    return S_OK;
  }
  if (element == nullptr) return E_INVALIDARG;
  std::memcpy(stored, element, array->cbElements);
  return S_OK;
}

HRESULT SafeArrayLock(SAFEARRAY* array) {
  if (array == nullptr) return E_INVALIDARG;
  if (array->cLocks == 0xFFFF) return E_UNEXPECTED;
  ++array->cLocks;
  return S_OK;
}

HRESULT SafeArrayUnlock(SAFEARRAY* array) {
  if (array == nullptr) return E_INVALIDARG;
  if (array->cLocks == 0) return E_UNEXPECTED;
  --array->cLocks;
  return S_OK;
}

HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) {
  if (array == nullptr || data == nullptr) return E_INVALIDARG;
  const HRESULT result = SafeArrayLock(array);
  *data = SUCCEEDED(result) ? array->pvData : nullptr;
  return result;
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* array) { return SafeArrayUnlock(array); }

HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type) {
  if (array == nullptr || type == nullptr) return E_INVALIDARG;
  if ((array->fFeatures & FADF_DISPATCH) != 0) {
    *type = VT_DISPATCH;
  } else if ((array->fFeatures & FADF_UNKNOWN) != 0) {
    *type = VT_UNKNOWN;
  } else if ((array->fFeatures & FADF_HAVEVARTYPE) != 0) {
    *type = PrefixOf(array)->type;
  } else {
    return E_INVALIDARG;
  }
  return S_OK;
}
