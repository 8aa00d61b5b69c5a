#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

#include "Unknown.h"

// Of the component runtime; see platform/Components.h.
CVARS_API HRESULT CLSIDFromProgID(const wchar_t* progId, CLSID* clsid);
CVARS_API HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                                   void** object);

/// Owning pointer to a counted object: holds one reference, released with it.
template <class T>
class CComPtr {
 public:
  CComPtr() noexcept = default;
  CComPtr(std::nullptr_t) noexcept {}
  /// @param object  may be null; a reference is added.
  CComPtr(T* object) : p(object) {
    if (p != nullptr) p->AddRef();
  }
  CComPtr(const CComPtr& other) : CComPtr(other.p) {}
  CComPtr(CComPtr&& other) noexcept : p(std::exchange(other.p, nullptr)) {}
  template <class Q>
  requires std::is_convertible_v<Q*, T*> CComPtr(const CComPtr<Q>& other)
      : CComPtr(static_cast<T*>(other.p)) {}
  ~CComPtr() { Release(); }

  CComPtr& operator=(const CComPtr& other) {
    CComPtr(other).Swap(*this);
    return *this;
  }
  CComPtr& operator=(CComPtr&& other) noexcept {
    CComPtr(std::move(other)).Swap(*this);
    return *this;
  }
  template <class Q>
  requires std::is_convertible_v<Q*, T*> CComPtr& operator=(const CComPtr<Q>& other) {
    CComPtr(other).Swap(*this);
    return *this;
  }
  CComPtr& operator=(T* object) {
    CComPtr(object).Swap(*this);
    return *this;
  }
  CComPtr& operator=(std::nullptr_t) {
    Release();
    return *this;
  }

  operator T*() const noexcept { return p; }
  T* operator->() const noexcept { return p; }
  T& operator*() const noexcept { return *p; }
  bool operator!() const noexcept { return p == nullptr; }

  /// For an out-parameter: releases what is held first, so that nothing leaks.
  T** operator&() {
    Release();
    return &p;
  }

  /// Lets go of the object; the pointer is null before the object hears of it.
  void Release() {
    if (T* object = std::exchange(p, nullptr); object != nullptr) object->Release();
  }

  /// Takes over the caller's reference.
  void Attach(T* object) {
    T* old = std::exchange(p, object);
    if (old != nullptr) old->Release();
  }

  /// Hands the reference to the caller.
  [[nodiscard]] T* Detach() noexcept { return std::exchange(p, nullptr); }

  /// Gives another reference.
  /// @retval E_POINTER  destination is null
  HRESULT CopyTo(T** destination) const {
    if (destination == nullptr) return E_POINTER;
    *destination = p;
    if (p != nullptr) p->AddRef();
    return S_OK;
  }

  /// Asks the object for another interface, with one reference.
  /// @retval E_POINTER  result is null, or nothing is held
  template <class Q>
  HRESULT QueryInterface(Q** result) const {
    return QueryInterface(cvars::InterfaceId<Q>::value, result);
  }
  template <class Q>
  HRESULT QueryInterface(REFIID iid, Q** result) const {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    if (p == nullptr) return E_POINTER;
    void* found = nullptr;
    const HRESULT answer = p->QueryInterface(iid, &found);
    if (SUCCEEDED(answer)) *result = static_cast<Q*>(found);
    return answer;
  }

  /// Makes an object of a class and holds it in place of what was held.
  ///
  /// @param context  CLSCTX_ bits; every place a class can run at unless said.
  /// @return what the component runtime answered; nothing is held after a failure
  HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer = nullptr, DWORD context = kAnyContext) {
    Release();
    void* made = nullptr;
    const HRESULT result =
        ::CoCreateInstance(clsid, outer, context, cvars::InterfaceId<T>::value, &made);
    if (SUCCEEDED(result)) p = static_cast<T*>(made);
    return result;
  }
  /// As above for the class of a programmatic identifier ("Vortana.MessageBox").
  HRESULT CoCreateInstance(const wchar_t* progId, IUnknown* outer = nullptr,
                           DWORD context = kAnyContext) {
    Release();
    CLSID clsid = {};
    const HRESULT found = ::CLSIDFromProgID(progId, &clsid);
    return FAILED(found) ? found : CoCreateInstance(clsid, outer, context);
  }

  /// Tells whether both are the same object, whatever interface each pointer is of.
  bool IsEqualObject(IUnknown* other) const {
    if (p == nullptr || other == nullptr) return p == nullptr && other == nullptr;
    CComPtr<IUnknown> mine;
    CComPtr<IUnknown> theirs;
    void* found = nullptr;
    if (SUCCEEDED(p->QueryInterface(IID_IUnknown, &found))) {
      mine.Attach(static_cast<IUnknown*>(found));
    }
    found = nullptr;
    if (SUCCEEDED(other->QueryInterface(IID_IUnknown, &found))) {
      theirs.Attach(static_cast<IUnknown*>(found));
    }
    return mine.p != nullptr && mine.p == theirs.p;
  }

  void Swap(CComPtr& other) noexcept { std::swap(p, other.p); }

  /// The object itself; borrowed.
  T* p = nullptr;

 private:
  static constexpr DWORD kAnyContext = 0x17;
};
