#pragma once

#include <new>

#include "CComPtr.h"
#include "Relaxed.h"
#include "ScriptMembers.h"
#include "ScriptMembersChoice.h"
#include "ScriptMembersNumeric.h"
#include "ScriptMembersStructured.h"
#include "ScriptMembersText.h"

/// The counted concrete object of a cvar class.
///
/// Completes a class of the library with what the library leaves to its clients: the reference
/// count, the ways to its interfaces, access by name for scripts, and the container it lives in.
///
/// @tparam T  a cvar class, for example CCvarDouble.
template <class T>
class CvarObject final : public T {
 public:
  /// Makes a cvar with one reference.
  static CComPtr<CvarObject> Create() {
    CComPtr<CvarObject> object;
    auto* const made = new CvarObject;
    made->AddReference();
    object.Attach(made);
    return object;
  }

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = this->FindInterface(iid);
    if (*object == nullptr) return E_NOINTERFACE;
    this->AddReference();
    return S_OK;
  }
  ULONG AddRef() override { return this->AddReference(); }
  ULONG Release() override { return this->ReleaseReference(); }

  HRESULT GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  HRESULT GetTypeInfo(UINT, LCID, ITypeInfo** typeInfo) override {
    if (typeInfo == nullptr) return E_POINTER;
    *typeInfo = nullptr;
    return E_NOTIMPL;
  }
  HRESULT GetIDsOfNames(REFIID, wchar_t** names, UINT nameCount, LCID, DISPID* ids) override {
    return cvars::FindScriptMembers(Members(), names, nameCount, ids);
  }
  HRESULT Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                 EXCEPINFO* exception, UINT* argumentError) override {
    return cvars::InvokeScriptMember(Members(), this, id, flags, parameters, result, exception,
                                     argumentError);
  }

  IUnknown* GetParent() override { return m_parent; }
  /// @param parent  weak; the container, which must take itself back before it goes. Null for none.
  void SetParent(IUnknown* parent) override { m_parent = parent; }

 private:
  CvarObject() = default;
  ~CvarObject() = default;

  static std::span<const cvars::ScriptMember> Members() noexcept {
    return cvars::TypedScriptMembers<typename T::Interface_t>();
  }

  void Destroy() override { delete this; }

  cvars::Relaxed<IUnknown*> m_parent{nullptr};
};
