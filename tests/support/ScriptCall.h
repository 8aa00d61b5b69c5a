#pragma once

#include <vector>

#include "CComVariant.h"
#include "Unknown.h"

namespace cvars::test {

/// Uses a member of an object by name, as a script does.
///
/// @param arguments  first argument first.
inline HRESULT CallByName(IDispatch& object, const wchar_t* name, WORD kind,
                          const std::vector<CComVariant>& arguments, VARIANT* result = nullptr) {
  wchar_t* names[] = {const_cast<wchar_t*>(name)};
  DISPID id = DISPID_UNKNOWN;
  const HRESULT found = object.GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(found)) return found;
  std::vector<VARIANT> lastFirst(arguments.rbegin(), arguments.rend());
  DISPID put = DISPID_PROPERTYPUT;
  const bool writes = kind == DISPATCH_PROPERTYPUT;
  DISPPARAMS parameters = {lastFirst.data(), writes ? &put : nullptr,
                           static_cast<UINT>(lastFirst.size()), writes ? 1u : 0u};
  return object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, result, nullptr,
                       nullptr);
}

}  // namespace cvars::test
