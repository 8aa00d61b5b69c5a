#pragma once

#include <new>
#include <type_traits>
#include <utility>

#include "CComBSTR.h"
#include "CComVariant.h"
#include "SafeArray.h"

namespace cvars {
/// The tag of an array element type.
template <class T>
inline constexpr VARTYPE kElementType = VT_EMPTY;
template <>
inline constexpr VARTYPE kElementType<VARIANT> = VT_VARIANT;
template <>
inline constexpr VARTYPE kElementType<BSTR> = VT_BSTR;
template <>
inline constexpr VARTYPE kElementType<double> = VT_R8;
template <>
inline constexpr VARTYPE kElementType<float> = VT_R4;
template <>
inline constexpr VARTYPE kElementType<BYTE> = VT_UI1;
template <>
inline constexpr VARTYPE kElementType<SHORT> = VT_I2;
template <>
inline constexpr VARTYPE kElementType<USHORT> = VT_UI2;
template <>
inline constexpr VARTYPE kElementType<LONG> = VT_I4;
template <>
inline constexpr VARTYPE kElementType<ULONG> = VT_UI4;
template <>
inline constexpr VARTYPE kElementType<LONGLONG> = VT_I8;
template <>
inline constexpr VARTYPE kElementType<ULONGLONG> = VT_UI8;
}  // namespace cvars

/// Owning array: copied with it and destroyed with it. The dimensions count from 0 here.
template <class T, VARTYPE kType = cvars::kElementType<T>>
class CVARS_API CComSafeArray {
  static_assert(kType != VT_EMPTY, "name the element tag of this type");

 public:
  CComSafeArray() noexcept = default;
  explicit CComSafeArray(ULONG elements, LONG lowerBound = 0) {
    if (FAILED(Create(elements, lowerBound))) throw std::bad_alloc();
  }
  /// @param array  copied; null gives null.
  explicit CComSafeArray(const SAFEARRAY* array) {
    if (array != nullptr && CopyFrom(array) == E_OUTOFMEMORY) throw std::bad_alloc();
  }
  CComSafeArray(const CComSafeArray& other) : CComSafeArray(other.m_psa) {}
  CComSafeArray(CComSafeArray&& other) noexcept : m_psa(other.Detach()) {}
  ~CComSafeArray() { (void)Destroy(); }  // nobody is left to hear of a locked array

  CComSafeArray& operator=(const CComSafeArray& other) {
    CComSafeArray(other).Swap(*this);
    return *this;
  }
  CComSafeArray& operator=(CComSafeArray&& other) noexcept {
    CComSafeArray(std::move(other)).Swap(*this);
    return *this;
  }

  operator SAFEARRAY*() const noexcept { return m_psa; }
  [[nodiscard]] bool IsNull() const noexcept { return m_psa == nullptr; }

  /// Makes an array of one dimension in place of the old one.
  HRESULT Create(ULONG elements = 0, LONG lowerBound = 0) {
    SAFEARRAYBOUND bound = {elements, lowerBound};
    return Create(&bound, 1);
  }
  /// @param bounds  borrowed; first dimension first.
  /// @retval DISP_E_ARRAYISLOCKED  the old array is locked and stays
  HRESULT Create(const SAFEARRAYBOUND* bounds, UINT dimensions) {
    if (bounds == nullptr || dimensions == 0) return E_INVALIDARG;
    if (const HRESULT result = Destroy(); FAILED(result)) return result;
    m_psa = SafeArrayCreate(kType, dimensions, const_cast<SAFEARRAYBOUND*>(bounds));
    return m_psa == nullptr ? E_OUTOFMEMORY : S_OK;
  }
  HRESULT Destroy() {
    if (m_psa == nullptr) return S_OK;
    const HRESULT result = SafeArrayDestroy(m_psa);
    if (SUCCEEDED(result)) m_psa = nullptr;
    return result;
  }

  /// Takes over the caller's array.
  /// @retval DISP_E_TYPEMISMATCH  its elements are of another type; nothing changes
  HRESULT Attach(SAFEARRAY* array) {
    if (array == m_psa) return S_OK;
    if (const HRESULT result = Check(array); FAILED(result)) return result;
    if (const HRESULT result = Destroy(); FAILED(result)) return result;
    m_psa = array;
    return S_OK;
  }
  /// Hands the array to the caller, who destroys it.
  [[nodiscard]] SAFEARRAY* Detach() noexcept { return std::exchange(m_psa, nullptr); }
  /// Replaces the content by a copy. A failure changes nothing.
  HRESULT CopyFrom(const SAFEARRAY* array) {
    if (const HRESULT result = Check(array); FAILED(result)) return result;
    SAFEARRAY* copy = nullptr;
    if (const HRESULT result = SafeArrayCopy(const_cast<SAFEARRAY*>(array), &copy);
        FAILED(result)) {
      return result;
    }
    const HRESULT result = Destroy();
    if (FAILED(result)) {
      (void)SafeArrayDestroy(copy);  // fresh, so unlocked
      return result;
    }
    m_psa = copy;
    return S_OK;
  }
  HRESULT CopyTo(SAFEARRAY** array) const {
    if (array == nullptr) return E_POINTER;
    *array = nullptr;
    return m_psa == nullptr ? S_OK : SafeArrayCopy(m_psa, array);
  }

  /// Appends to an array of one dimension, made when there is none.
  HRESULT Add(const T& value) {
    if (m_psa == nullptr) {
      if (const HRESULT result = Create(); FAILED(result)) return result;
    }
    if (GetDimensions() != 1) return E_INVALIDARG;
    SAFEARRAYBOUND bound = m_psa->rgsabound[0];
    const LONG index =
        static_cast<LONG>(static_cast<std::int64_t>(bound.lLbound) + bound.cElements);
    ++bound.cElements;
    if (const HRESULT result = SafeArrayRedim(m_psa, &bound); FAILED(result)) return result;
    return SetAt(index, value);
  }

  HRESULT SetAt(LONG index, const T& value) { return MultiDimSetAt(&index, value); }
  /// @param indices  borrowed; first dimension first.
  HRESULT MultiDimSetAt(const LONG* indices, const T& value) {
    if constexpr (std::is_same_v<T, BSTR>) {
      return SafeArrayPutElement(m_psa, indices, value);
    } else {
      return SafeArrayPutElement(m_psa, indices, const_cast<T*>(&value));
    }
  }

  /// A copy of an element: the caller owns what it holds.
  HRESULT MultiDimGetAt(const LONG* indices, T& value) const {
    return SafeArrayGetElement(m_psa, indices, &value);
  }
  /// An element of a one-dimensional array; borrowed, zero beyond the bounds.
  [[nodiscard]] T GetAt(LONG index) const {
    void* element = nullptr;
    if (m_psa == nullptr || GetDimensions() != 1 ||
        FAILED(SafeArrayPtrOfIndex(m_psa, &index, &element))) {
      return T{};
    }
    return *static_cast<T*>(element);
  }

  [[nodiscard]] UINT GetDimensions() const { return SafeArrayGetDim(m_psa); }
  [[nodiscard]] ULONG GetCount(UINT dimension = 0) const {
    if (dimension >= GetDimensions()) return 0;
    return m_psa->rgsabound[GetDimensions() - 1 - dimension].cElements;
  }
  [[nodiscard]] LONG GetLowerBound(UINT dimension = 0) const {
    LONG bound = 0;
    (void)SafeArrayGetLBound(m_psa, dimension + 1, &bound);  // no such dimension reads as 0
    return bound;
  }
  [[nodiscard]] LONG GetUpperBound(UINT dimension = 0) const {
    LONG bound = -1;
    (void)SafeArrayGetUBound(m_psa, dimension + 1, &bound);  // no such dimension reads as empty
    return bound;
  }

  void Swap(CComSafeArray& other) noexcept { std::swap(m_psa, other.m_psa); }

  /// The array itself; borrowed.
  SAFEARRAY* m_psa = nullptr;

 private:
  static HRESULT Check(const SAFEARRAY* array) {
    if (array == nullptr) return E_INVALIDARG;
    VARTYPE type = VT_EMPTY;
    const HRESULT result = SafeArrayGetVartype(const_cast<SAFEARRAY*>(array), &type);
    if (FAILED(result)) return result;
    return type == kType ? S_OK : DISP_E_TYPEMISMATCH;
  }
};
