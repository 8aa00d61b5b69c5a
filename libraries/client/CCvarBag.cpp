#include "CCvarBag.h"

#include <algorithm>

#include "CComBSTR.h"
#include "CComVariant.h"
#include "CvarText.h"

using cvars::CvarCore;

namespace {

constexpr DISPID kNameId = 1;
constexpr DISPID kCountId = 2;
constexpr DISPID kItemId = DISPID_VALUE;
constexpr DISPID kFirstCvarId = 100;

bool SameName(std::wstring_view a, std::wstring_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](wchar_t x, wchar_t y) {
    return cvars::UpperCase(x) == cvars::UpperCase(y);
  });
}

}  // namespace

CComPtr<CCvarBag> CCvarBag::Create(const wchar_t* name, HINSTANCE module) {
  CComPtr<CCvarBag> bag;
  bag.Attach(new CCvarBag(name, module));
  return bag;
}

CCvarBag::CCvarBag(const wchar_t* name, HINSTANCE module)
    : m_name(cvars::TextOrEmpty(name)), m_module(module) {}

CCvarBag::~CCvarBag() {
  // All before the first goes: what its end sets off may change the others, which must not find a
  // parent without references.
  for (CvarCore* const cvar : m_cvars) cvar->SetParent(nullptr);
  for (CvarCore* const cvar : m_cvars) cvar->ReleaseReference();
}

HRESULT CCvarBag::Add(CvarCore* cvar) {
  if (cvar == nullptr) return E_POINTER;
  if (cvar->GetParent() != nullptr) return E_INVALIDARG;
  const std::lock_guard guard(m_lock);
  m_cvars.push_back(cvar);
  cvar->AddReference();
  cvar->SetParent(this);
  return S_OK;
}

HRESULT CCvarBag::Remove(CvarCore* cvar) {
  {
    const std::lock_guard guard(m_lock);
    const auto found = std::find(m_cvars.begin(), m_cvars.end(), cvar);
    if (found == m_cvars.end()) return S_FALSE;
    m_cvars.erase(found);
  }
  cvar->SetParent(nullptr);
  cvar->ReleaseReference();
  return S_OK;
}

std::size_t CCvarBag::IndexOf(const wchar_t* name) const {
  const std::wstring_view wanted = cvars::TextOrEmpty(name);
  for (std::size_t index = 0;; ++index) {
    const CComPtr<IVorCvar> cvar = At(index);
    if (cvar == nullptr) return static_cast<std::size_t>(-1);
    CComBSTR text;
    if (SUCCEEDED(cvar->get_Name(&text)) && SameName(cvars::BstrView(text), wanted)) return index;
    CComBSTR remote;
    if (SUCCEEDED(cvar->get_NameRemote(&remote)) && SameName(cvars::BstrView(remote), wanted)) {
      return index;
    }
  }
}

CComPtr<IVorCvar> CCvarBag::Find(const wchar_t* name) const { return At(IndexOf(name)); }

CComPtr<IVorCvar> CCvarBag::At(std::size_t index) const {
  const std::lock_guard guard(m_lock);
  if (index >= m_cvars.size()) return {};
  return CComPtr<IVorCvar>(m_cvars[index]->GetIVorCvar());
}

std::size_t CCvarBag::Count() const {
  const std::lock_guard guard(m_lock);
  return m_cvars.size();
}

HRESULT CCvarBag::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (iid != IID_IUnknown && iid != IID_IDispatch && iid != IID_CvarBag) return E_NOINTERFACE;
  *object = static_cast<CvarBag*>(this);
  AddRef();
  return S_OK;
}

ULONG CCvarBag::AddRef() { return m_references.fetch_add(1, std::memory_order_relaxed) + 1; }

ULONG CCvarBag::Release() {
  const ULONG left = m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
  if (left == 0) delete this;
  return left;
}

HRESULT CCvarBag::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

HRESULT CCvarBag::GetTypeInfo(UINT, LCID, ITypeInfo** typeInfo) {
  if (typeInfo == nullptr) return E_POINTER;
  *typeInfo = nullptr;
  return E_NOTIMPL;
}

HRESULT CCvarBag::GetIDsOfNames(REFIID, wchar_t** names, UINT nameCount, LCID, DISPID* ids) {
  if (names == nullptr || ids == nullptr) return E_POINTER;
  if (nameCount == 0) return E_INVALIDARG;
  for (UINT i = 0; i < nameCount; ++i) ids[i] = DISPID_UNKNOWN;
  const std::wstring_view name = cvars::TextOrEmpty(names[0]);
  if (SameName(name, L"Name")) {
    ids[0] = kNameId;
  } else if (SameName(name, L"Count")) {
    ids[0] = kCountId;
  } else if (SameName(name, L"Item")) {
    ids[0] = kItemId;
  } else if (const std::size_t index = IndexOf(names[0]); index != static_cast<std::size_t>(-1)) {
    ids[0] = kFirstCvarId + static_cast<DISPID>(index);
  }
  return ids[0] == DISPID_UNKNOWN || nameCount > 1 ? DISP_E_UNKNOWNNAME : S_OK;
}

HRESULT CCvarBag::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                         VARIANT* result, EXCEPINFO* exception, UINT* argumentError) {
  if (exception != nullptr) *exception = {};
  if (argumentError != nullptr) *argumentError = 0;
  if (result != nullptr) VariantInit(result);
  if (parameters == nullptr) return E_POINTER;
  if ((flags & (DISPATCH_PROPERTYGET | DISPATCH_METHOD)) == 0) return DISP_E_MEMBERNOTFOUND;
  if (parameters->cNamedArgs != 0) return DISP_E_NONAMEDARGS;
  if (parameters->cArgs != (id == kItemId ? 1u : 0u)) return DISP_E_BADPARAMCOUNT;

  CComVariant given;
  if (id == kNameId) {
    given = CComVariant(m_name.c_str());
  } else if (id == kCountId) {
    given = CComVariant(static_cast<int>(Count()));
  } else {
    CComPtr<IVorCvar> cvar;
    if (id == kItemId) {
      const HRESULT found = get_Item(parameters->rgvarg[0], &cvar);
      if (FAILED(found)) return found;
    } else if (id >= kFirstCvarId) {
      cvar = At(static_cast<std::size_t>(id - kFirstCvarId));
    }
    if (cvar == nullptr) return DISP_E_MEMBERNOTFOUND;
    given = CComVariant(static_cast<IDispatch*>(cvar.p));
  }
  return result == nullptr ? S_OK : given.Detach(result);
}

HRESULT CCvarBag::GetModuleInstanceHandle(HINSTANCE* module) {
  if (module == nullptr) return E_POINTER;
  *module = m_module;
  return S_OK;
}

HRESULT CCvarBag::get_Item(VARIANT key, IVorCvar** cvar) {
  if (cvar == nullptr) return E_POINTER;
  *cvar = nullptr;
  CComPtr<IVorCvar> found;
  CComVariant value;
  HRESULT converted = VariantCopyInd(&value, &key);
  if (FAILED(converted)) return converted;
  if (value.vt == VT_BSTR) {
    found = Find(value.bstrVal);
  } else {
    converted = VariantChangeType(&value, &value, 0, VT_I4);
    if (FAILED(converted)) return converted;
    if (value.lVal >= 0) found = At(static_cast<std::size_t>(value.lVal));
  }
  if (found == nullptr) return DISP_E_BADINDEX;
  *cvar = found.Detach();
  return S_OK;
}

HRESULT CCvarBag::get_Count(long* count) {
  if (count == nullptr) return E_POINTER;
  *count = static_cast<long>(Count());
  return S_OK;
}
