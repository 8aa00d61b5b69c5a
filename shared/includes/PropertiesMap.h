#pragma once

#include <map>
#include <string_view>

#include "CComVariant.h"
#include "Export.h"

namespace cvars {

/// Named properties of a cvar, ordered by the code points of their names.
class CVARS_API PropertiesMap {
 public:
  /// Adds a property, replacing one of the same name.
  void Set(const wchar_t* name, CComVariant value);
  /// Adds a text property.
  void SetText(const wchar_t* name, std::wstring_view text);

  /// Adds the text that an operation hands out; when it fails the entry holds the code instead.
  ///
  /// @param get  called as HRESULT(BSTR*).
  /// @return what `get` answered
  template <class Get>
  HRESULT SetTextFrom(const wchar_t* name, Get get) {
    CComVariant value;
    value.vt = VT_BSTR;
    value.bstrVal = nullptr;
    const HRESULT result = get(&value.bstrVal);
    if (FAILED(result)) {
      value.vt = VT_ERROR;
      value.scode = result;
    }
    Set(name, std::move(value));
    return result;
  }

  std::size_t Count() const noexcept { return m_properties.size(); }
  /// @return borrowed; null when there is no such property.
  const VARIANT* Find(const wchar_t* name) const;

  /// Moves all properties into an array of 2 x Count() variants: (0, i) the name, (1, i) the value.
  /// @param array  its old content is cleared; VT_ARRAY | VT_VARIANT afterwards, caller frees.
  /// @retval E_OUTOFMEMORY  the array cannot be made; the properties stay
  HRESULT MoveToArray(VARIANT* array);

 private:
  struct ByCodePoint {
    bool operator()(const CComVariant& a, const CComVariant& b) const;
  };
  std::map<CComVariant, CComVariant, ByCodePoint> m_properties;
};

}  // namespace cvars
