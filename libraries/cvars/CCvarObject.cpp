#include "CCvarObject.h"

#include <utility>

using cvars::platform::ScopedLock;

namespace {

/// The object that a variant stands for: one with the interface, or none.
HRESULT ObjectOf(const VARIANT& value, REFIID iid, void** object) {
  *object = nullptr;
  CComVariant converted;
  if (SUCCEEDED(VariantChangeType(&converted, &value, 0, VT_UNKNOWN))) {
    return converted.punkVal == nullptr ? S_OK : converted.punkVal->QueryInterface(iid, object);
  }
  const HRESULT number = VariantChangeType(&converted, &value, 0, VT_I4);
  if (FAILED(number)) return number;
  return converted.lVal == 0 ? S_OK : E_INVALIDARG;
}

CComPtr<IUnknown> IdentityOf(IUnknown* object) {
  CComPtr<IUnknown> identity;
  if (object != nullptr) {
    (void)object->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&identity));
  }
  return identity;
}

}  // namespace

template <class I>
CCvarObject<I>::~CCvarObject() {
  if (!m_holdsReference) return;
  CComPtr<I> held;
  held.Attach(m_object);
}

template <class I>
void CCvarObject<I>::Initialize(const wchar_t* name, CVARFLAGS flags, bool holdsReference,
                                CVARREPLICATIONFLAGS replicationFlags) {
  CComPtr<I> released;  // goes after the lock
  {
    const ScopedLock guard(this->m_lock);
    if (m_holdsReference && !holdsReference) {
      released.Attach(m_object);
    } else if (!m_holdsReference && holdsReference) {
      (void)CComPtr<I>(m_object).Detach();  // the reference that is held from now on
    }
    m_holdsReference = holdsReference;
  }
  this->SetName(name);
  this->SetReplicationFlags(replicationFlags);
  this->SetFlags(static_cast<long>(flags));
}

template <class I>
CComPtr<I> CCvarObject<I>::Object() const {
  const ScopedLock guard(this->m_lock);
  return CComPtr<I>(m_object);
}

template <class I>
HRESULT CCvarObject<I>::put_Value(VARIANT value) {
  if (this->HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
  const CComPtr<I> current = Object();
  CComPtr<I> wanted;
  const HRESULT found =
      ObjectOf(value, cvars::InterfaceId<I>::value, reinterpret_cast<void**>(&wanted));
  if (FAILED(found)) return found;
  if (IdentityOf(current).p == IdentityOf(wanted).p) return found;

  CComPtr<I> replaced;  // its last reference goes after the lock and the listeners
  {
    const ScopedLock guard(this->m_lock);
    if (m_holdsReference) {
      replaced.Attach(m_object);
      m_object = CComPtr<I>(wanted).Detach();
    } else {
      m_object = wanted;
    }
  }
  (void)this->Notify(NOTIFY_VALUE | NOTIFY_REQUESTED);  // the object is there whatever they answer
  return found;
}

template <class I>
HRESULT CCvarObject<I>::get_Value(VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  this->PerformLateUpdate();
  const CComPtr<I> object = Object();
  (void)VariantClear(value);
  CComPtr<IDispatch> dispatch;
  if (object != nullptr) {
    (void)object->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&dispatch));
  }
  if (dispatch != nullptr) {
    value->vt = VT_DISPATCH;
    value->pdispVal = dispatch.Detach();
  } else {
    value->vt = VT_UNKNOWN;
    value->punkVal = IdentityOf(object).Detach();
  }
  return S_OK;
}

template <class I>
HRESULT CCvarObject<I>::GetTypedInterface(I** object) {
  if (object == nullptr) return E_POINTER;
  this->PerformLateUpdate();
  *object = Object().Detach();
  return S_OK;
}

template <class I>
HRESULT CCvarObject<I>::IsDefault(int* isDefault) {
  if (isDefault == nullptr) return E_POINTER;
  const ScopedLock guard(this->m_lock);
  *isDefault = m_object == nullptr ? 1 : 0;
  return S_OK;
}

template class IVorCvarImpl<CCvarObject<IUnknown>, IVorCvar, char>;
template class IVorCvarImpl<CCvarObject<IDispatch>, IVorCvar, char>;
template class IVorCvarImpl<CCvarObject<IStream>, IVorCvar, char>;
template class IVorCvarImpl<CCvarObject<IVorCvar>, IVorCvar, char>;
template class IVorCvarImpl<CCvarObject<IVorProbe>, IVorCvar, char>;
template class IVorCvarImpl<CCvarObject<IVorResult>, IVorCvar, char>;
template class IVorCvarImpl<CCvarObject<IVorResultProcessorOutputPin>, IVorCvar, char>;
template class CCvarObject<IUnknown>;
template class CCvarObject<IDispatch>;
template class CCvarObject<IStream>;
template class CCvarObject<IVorCvar>;
template class CCvarObject<IVorProbe>;
template class CCvarObject<IVorResult>;
template class CCvarObject<IVorResultProcessorOutputPin>;
