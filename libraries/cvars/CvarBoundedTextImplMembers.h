#pragma once

// The members of CvarBoundedTextImpl, for the sources of the classes that instantiate it.

#include "CvarBoundedTextImpl.h"
#include "CvarTextImplMembers.h"
#include "IVorCvarString.h"
#include "SignatureText.h"

template <class T, class Interface>
void* CvarBoundedTextImpl<T, Interface>::FindInterface(REFIID iid) {
  if (iid == IID_IVorCvarString) return static_cast<IVorCvarString*>(this);
  return Base::FindInterface(iid);
}

template <class T, class Interface>
HRESULT CvarBoundedTextImpl<T, Interface>::GetMaxLength(unsigned int* maxLength) {
  if (maxLength == nullptr) return E_POINTER;
  *maxLength = m_maxLength;
  return S_OK;
}

// The same text whatever the maximum length is.
template <class T, class Interface>
HRESULT CvarBoundedTextImpl<T, Interface>::get_Range(BSTR* text) {
  return cvars::CopyOut(L"Any number of characters", text);
}

template <class T, class Interface>
HRESULT CvarBoundedTextImpl<T, Interface>::get_Signature(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  // An unlimited length shows as -1.
  const auto maxLength = static_cast<std::int32_t>(m_maxLength.Get());
  return cvars::CopyOut(cvars::SignatureText(T::kTypeName)
                            .Add(L"Request", this->ReadField(this->m_requested).View())
                            .Add(L"Adapt", this->ReadField(this->m_adapted).View())
                            .Add(L"Default", this->ReadField(this->m_default).View())
                            .AddInteger(L"MaxLen", maxLength)
                            .Add(L"Flags", this->GetFlagsString())
                            .Text(),
                        text);
}

template <class T, class Interface>
void CvarBoundedTextImpl<T, Interface>::Initialize(const wchar_t* name, const wchar_t* defaultValue,
                                                   int maxLength, CVARFLAGS flags,
                                                   const wchar_t* guiHints,
                                                   unsigned int helpStringID,
                                                   CVARREPLICATIONFLAGS replicationFlags) {
  const cvars::SilentScope silence(*this);
  this->SetName(name);
  (void)this->SetRange(defaultValue, static_cast<unsigned int>(maxLength), guiHints, helpStringID);
  (void)this->SetRequestedValue(this->ReadField(this->m_default), true);
  this->SetReplicationFlags(replicationFlags);
  this->SetFlags(static_cast<long>(flags));
}

template <class T, class Interface>
HRESULT CvarBoundedTextImpl<T, Interface>::SetRange(const wchar_t* defaultValue,
                                                    unsigned int maxLength, const wchar_t* guiHints,
                                                    unsigned int helpStringID) {
  if (guiHints != nullptr) this->SetGuiHints(guiHints);
  if (helpStringID != 0) this->StoreHelpStringID(helpStringID);
  (void)this->StoreDefault(DefaultFrom(defaultValue));
  if (maxLength != m_maxLength) {
    m_maxLength = maxLength;
    this->AddPending(NOTIFY_RANGE);
  }
  return this->UpdateAdaptedValueAndNotify();
}

template <class T, class Interface>
CComBSTR CvarBoundedTextImpl<T, Interface>::Fit(const CComBSTR& request) {
  const unsigned int maxLength = m_maxLength;
  if (maxLength == cvars::kUnlimitedLength || request.Length() <= maxLength) return request;
  return CComBSTR(maxLength, request.m_str);
}

template <class T, class Interface>
HRESULT CvarBoundedTextImpl<T, Interface>::FillCvarPropertiesMap(cvars::PropertiesMap& map) {
  const HRESULT filled = Base::FillCvarPropertiesMap(map);
  if (FAILED(filled)) return filled;
  map.Set(L"MaxLen", CComVariant(static_cast<int>(m_maxLength.Get())));
  return S_OK;
}
