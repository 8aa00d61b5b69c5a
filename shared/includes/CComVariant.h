#pragma once

#include <new>
#include <utility>

#include "OwnedBstr.h"
#include "Variant.h"

/// Owning `VARIANT`: copied with it and cleared with it. A copy that cannot be allocated throws
/// std::bad_alloc; any other failed copy leaves VT_ERROR with the code.
class CVARS_API CComVariant : public VARIANT {
 public:
  CComVariant() noexcept { Start(VT_EMPTY); }
  CComVariant(const CComVariant& other) : CComVariant(static_cast<const VARIANT&>(other)) {}
  CComVariant(CComVariant&& other) noexcept : VARIANT(other) { other.Start(VT_EMPTY); }
  /// @param other  copied; a reference (VT_BYREF) stays one.
  CComVariant(const VARIANT& other) {
    Start(VT_EMPTY);
    Take(VariantCopy(this, &other));
  }
  /// @param type  VT_I4, VT_INT or VT_ERROR.
  CComVariant(int value, VARTYPE type = VT_I4) noexcept {
    Start(type);
    lVal = value;
  }
  /// @param type  VT_I4 (`long` carries 32 bits in the interfaces), VT_INT, VT_ERROR, or VT_I8 for
  ///              the whole of a LONGLONG.
  CComVariant(long value, VARTYPE type = VT_I4) noexcept {
    Start(type);
    if (type == VT_I8) {
      llVal = value;
    } else {
      lVal = static_cast<LONG>(value);
    }
  }
  CComVariant(long long value) noexcept {
    Start(VT_I8);
    llVal = value;
  }
  CComVariant(unsigned value, VARTYPE type = VT_UI4) noexcept {
    Start(type);
    ulVal = value;
  }
  /// @param type  VT_UI4, VT_UINT, or VT_UI8 for the whole of a ULONGLONG.
  CComVariant(unsigned long value, VARTYPE type = VT_UI4) noexcept {
    Start(type);
    if (type == VT_UI8) {
      ullVal = value;
    } else {
      ulVal = static_cast<ULONG>(value);
    }
  }
  CComVariant(unsigned long long value) noexcept {
    Start(VT_UI8);
    ullVal = value;
  }
  CComVariant(short value) noexcept {
    Start(VT_I2);
    iVal = value;
  }
  CComVariant(unsigned short value) noexcept {
    Start(VT_UI2);
    uiVal = value;
  }
  CComVariant(unsigned char value) noexcept {
    Start(VT_UI1);
    bVal = value;
  }
  CComVariant(char value) noexcept {
    Start(VT_I1);
    cVal = value;
  }
  CComVariant(bool value) noexcept {
    Start(VT_BOOL);
    boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  }
  CComVariant(float value) noexcept {
    Start(VT_R4);
    fltVal = value;
  }
  /// @param type  VT_R8 or VT_DATE.
  CComVariant(double value, VARTYPE type = VT_R8) noexcept {
    Start(type);
    dblVal = value;
  }
  CComVariant(CY value) noexcept {
    Start(VT_CY);
    cyVal = value;
  }
  /// @param text  copied up to its terminator; null gives a null text.
  CComVariant(const wchar_t* text) {
    Start(VT_BSTR);
    bstrVal = SysAllocString(text);
    if (text != nullptr && bstrVal == nullptr) throw std::bad_alloc();
  }
  CComVariant(const cvars::OwnedBstr& text) {
    Start(VT_BSTR);
    bstrVal = text.Copy();
  }
  CComVariant(IUnknown* object) {
    Start(VT_UNKNOWN);
    punkVal = object;
    if (object != nullptr) object->AddRef();
  }
  CComVariant(IDispatch* object) {
    Start(VT_DISPATCH);
    pdispVal = object;
    if (object != nullptr) object->AddRef();
  }
  /// No pointer becomes a boolean in silence.
  CComVariant(const void*) = delete;
  ~CComVariant() { (void)Clear(); }  // nobody is left to hear of a locked array

  CComVariant& operator=(const CComVariant& other) {
    CComVariant(other).Swap(*this);
    return *this;
  }
  CComVariant& operator=(CComVariant&& other) noexcept {
    CComVariant(std::move(other)).Swap(*this);
    return *this;
  }
  template <class Value>
  requires std::is_constructible_v<CComVariant, const Value&> CComVariant& operator=(
      const Value& value) {
    CComVariant(value).Swap(*this);
    return *this;
  }

  /// Frees what is held. @retval DISP_E_ARRAYISLOCKED  nothing changes
  HRESULT Clear() { return VariantClear(this); }
  HRESULT Copy(const VARIANT* source) { return VariantCopy(this, source); }

  /// Converts in place, or from `source`. A failure changes nothing.
  HRESULT ChangeType(VARTYPE type, const VARIANT* source = nullptr) {
    return VariantChangeType(this, source == nullptr ? this : source, 0, type);
  }

  /// Takes over what `source` holds and leaves it empty.
  HRESULT Attach(VARIANT* source) {
    if (source == nullptr) return E_INVALIDARG;
    if (source == this) return S_OK;
    if (const HRESULT result = Clear(); FAILED(result)) return result;
    static_cast<VARIANT&>(*this) = *source;
    source->vt = VT_EMPTY;
    return S_OK;
  }
  /// Hands what is held to `destination`, which is cleared first; caller frees.
  HRESULT Detach(VARIANT* destination) {
    if (destination == nullptr) return E_POINTER;
    if (destination == this) return S_OK;
    if (const HRESULT result = VariantClear(destination); FAILED(result)) return result;
    *destination = *this;
    Start(VT_EMPTY);
    return S_OK;
  }

  void Swap(CComVariant& other) noexcept {
    std::swap(static_cast<VARIANT&>(*this), static_cast<VARIANT&>(other));
  }

 private:
  void Start(VARTYPE type) noexcept {
    static_cast<VARIANT&>(*this) = VARIANT{};
    vt = type;
  }
  void Take(HRESULT copied) {
    if (copied == E_OUTOFMEMORY) throw std::bad_alloc();
    if (FAILED(copied)) {
      Start(VT_ERROR);
      scode = copied;
    }
  }
};
