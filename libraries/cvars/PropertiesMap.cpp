#include "PropertiesMap.h"

#include "CComBSTR.h"
#include "SafeArray.h"

namespace cvars {

bool PropertiesMap::ByCodePoint::operator()(const CComVariant& a, const CComVariant& b) const {
  return VarBstrCmp(a.bstrVal, b.bstrVal, LOCALE_USER_DEFAULT, 0) == VARCMP_LT;
}

void PropertiesMap::Set(const wchar_t* name, CComVariant value) {
  m_properties.insert_or_assign(CComVariant(name), std::move(value));
}

void PropertiesMap::SetText(const wchar_t* name, std::wstring_view text) {
  CComVariant value;
  value.bstrVal =
      SysAllocStringLen(text.empty() ? L"" : text.data(), static_cast<UINT>(text.size()));
  if (value.bstrVal == nullptr) throw std::bad_alloc();
  value.vt = VT_BSTR;
  Set(name, std::move(value));
}

const VARIANT* PropertiesMap::Find(const wchar_t* name) const {
  const auto found = m_properties.find(CComVariant(name));
  return found == m_properties.end() ? nullptr : &found->second;
}

HRESULT PropertiesMap::MoveToArray(VARIANT* array) {
  SAFEARRAYBOUND bounds[2] = {{2, 0}, {static_cast<ULONG>(m_properties.size()), 0}};
  SAFEARRAY* const pairs = SafeArrayCreate(VT_VARIANT, 2, bounds);
  if (pairs == nullptr) return E_OUTOFMEMORY;
  void* data = nullptr;
  const HRESULT accessed = SafeArrayAccessData(pairs, &data);
  if (FAILED(accessed)) {
    (void)SafeArrayDestroy(pairs);
    return accessed;
  }
  auto* element = static_cast<VARIANT*>(data);
  while (!m_properties.empty()) {
    auto property = m_properties.extract(m_properties.begin());
    (void)property.key().Detach(element++);
    (void)property.mapped().Detach(element++);
  }
  (void)SafeArrayUnaccessData(pairs);
  (void)VariantClear(array);
  array->vt = VT_ARRAY | VT_VARIANT;
  array->parray = pairs;
  return S_OK;
}

}  // namespace cvars
