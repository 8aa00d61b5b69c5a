#pragma once

// The members of CvarTextImpl, for the sources of the classes that instantiate it.

#include "CvarTextImpl.h"

template <class T, class Interface>
HRESULT CvarTextImpl<T, Interface>::CopyField(const CComBSTR& field, BSTR* text) const {
  if (text == nullptr) return E_POINTER;
  const cvars::platform::ScopedLock guard(this->m_lock);
  return cvars::CopyOut(field.View(), text);
}

template <class T, class Interface>
void CvarTextImpl<T, Interface>::StoreRequested(const CComBSTR& text) {
  const cvars::platform::ScopedLock guard(this->m_lock);
  if (text == this->m_requested) return;
  this->m_requested = text;
  this->AddPending(NOTIFY_REQUESTED);
}

template <class T, class Interface>
bool CvarTextImpl<T, Interface>::StoreDefault(const CComBSTR& text) {
  const cvars::platform::ScopedLock guard(this->m_lock);
  if (text == this->m_default) return false;
  this->m_default = text;
  this->AddPending(NOTIFY_ATTRIBUTES);
  return true;
}

template <class T, class Interface>
HRESULT CvarTextImpl<T, Interface>::SetRequestedValue(const wchar_t* text, bool force) {
  if (!force && this->HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
  StoreRequested(CComBSTR(text));
  return this->UpdateAdaptedValueAndNotify();
}

template <class T, class Interface>
HRESULT CvarTextImpl<T, Interface>::SetDefaultValue(const wchar_t* text) {
  if (!StoreDefault(CComBSTR(text))) return S_FALSE;
  return this->NotifyClients(NOTIFY_ALL_CLIENTS, false);
}

template <class T, class Interface>
HRESULT CvarTextImpl<T, Interface>::SetToDefault() {
  return this->SetRequestedValue(this->ReadField(this->m_default));
}

template <class T, class Interface>
HRESULT CvarTextImpl<T, Interface>::get_Value(VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  (void)VariantClear(value);
  BSTR text = nullptr;
  const HRESULT read = this->GetAdaptedValue(&text);
  if (FAILED(read)) return read;
  value->vt = VT_BSTR;
  value->bstrVal = text;
  return S_OK;
}

template <class T, class Interface>
HRESULT CvarTextImpl<T, Interface>::put_Value(VARIANT value) {
  return value.vt == VT_BSTR ? this->SetRequestedValue(value.bstrVal) : E_INVALIDARG;
}

template <class T, class Interface>
HRESULT CvarTextImpl<T, Interface>::GetAdaptedValueNorm(double* position) {
  if (position == nullptr) return E_POINTER;
  *position = 0.0;
  return S_OK;
}

template <class T, class Interface>
HRESULT CvarTextImpl<T, Interface>::UpdateAdaptedValueAndNotify() {
  {
    const cvars::platform::ScopedLock guard(this->m_lock);
    CComBSTR adapted = this->Fit(this->m_requested);
    if (!(adapted == this->m_adapted)) this->AddPending(NOTIFY_VALUE);
    this->m_adapted = std::move(adapted);
  }
  return this->NotifyClients(NOTIFY_ALL_CLIENTS, false);
}

template <class T, class Interface>
HRESULT CvarTextImpl<T, Interface>::FillCvarPropertiesMap(cvars::PropertiesMap& map) {
  const HRESULT filled = Base::FillCvarPropertiesMap(map);
  if (FAILED(filled)) return filled;
  map.SetText(L"RequestedValue", this->ReadField(this->m_requested).View());
  map.SetText(L"AdaptedValue", this->ReadField(this->m_adapted).View());
  map.SetText(L"Default", this->ReadField(this->m_default).View());
  return S_OK;
}
