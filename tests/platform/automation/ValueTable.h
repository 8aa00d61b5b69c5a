#pragma once

#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "CComVariant.h"
#include "ResultCodes.h"
#include "Unknown.h"

namespace cvars::test {

using nlohmann::json;

/// How the rows of one case of the table are checked, by the name of the case.
using ValueTableChecks = std::map<std::string, void (*)(const json& row)>;

/// The cases about arrays, and those about variants.
ValueTableChecks ArrayChecks();
ValueTableChecks VariantChecks();

/// The result code that a name of the table stands for.
inline HRESULT CodeOf(const std::string& name) {
  static const std::map<std::string, HRESULT> codes = {
      {"S_OK", S_OK},
      {"E_INVALIDARG", E_INVALIDARG},
      {"E_NOINTERFACE", E_NOINTERFACE},
      {"E_UNEXPECTED", E_UNEXPECTED},
      {"DISP_E_BADINDEX", DISP_E_BADINDEX},
      {"DISP_E_BADVARTYPE", DISP_E_BADVARTYPE},
      {"DISP_E_TYPEMISMATCH", DISP_E_TYPEMISMATCH}};
  return codes.at(name);
}
inline HRESULT Code(const json& row, const char* key) { return CodeOf(row.at(key)); }

/// The tag that names of the table stand for: "I4", "BYREF|I4".
inline int TagOf(const std::string& names) {
  static const std::map<std::string, int> tags = {
      {"EMPTY", VT_EMPTY},     {"NULL", VT_NULL},   {"I4", VT_I4},
      {"R8", VT_R8},           {"BSTR", VT_BSTR},   {"BOOL", VT_BOOL},
      {"ERROR", VT_ERROR},     {"BYREF", VT_BYREF}, {"DISPATCH", VT_DISPATCH},
      {"UNKNOWN", VT_UNKNOWN}, {"ARRAY", VT_ARRAY}, {"VARIANT", VT_VARIANT}};
  const std::size_t bar = names.find('|');
  const int first = tags.at(names.substr(0, bar));
  return bar == std::string::npos ? first : first | TagOf(names.substr(bar + 1));
}
inline int Tag(const json& row, const char* key) { return TagOf(row.at(key)); }

/// How many references the table counts at some point.
inline ULONG References(const json& row, const char* key) {
  return row.at(key).at("refs").get<ULONG>();
}

/// An object on the stack that counts its references and gives 12 as its value.
class ValueObject final : public IDispatch {
 public:
  explicit ValueObject(bool offersDispatch) : m_offersDispatch(offersDispatch) {}
  HRESULT QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid != IID_IUnknown && !(m_offersDispatch && iid == IID_IDispatch)) return E_NOINTERFACE;
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++references; }
  ULONG Release() override { return --references; }
  HRESULT GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT GetIDsOfNames(REFIID, wchar_t**, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  HRESULT Invoke(DISPID id, REFIID, LCID lcid, WORD flags, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                 UINT*) override {
    ++invokes;
    lastId = id;
    lastLocale = lcid;
    lastFlags = flags;
    return SUCCEEDED(answer) ? VariantCopy(result, &value) : answer;
  }

  /// The object in a variant that borrows it.
  VARIANT Borrowed() {
    VARIANT variant{};
    variant.vt = m_offersDispatch ? VT_DISPATCH : VT_UNKNOWN;
    variant.pdispVal = this;
    return variant;
  }

  ULONG references = 1;
  int invokes = 0;
  DISPID lastId = -999;
  LCID lastLocale = 0;
  WORD lastFlags = 0;
  CComVariant value{12};
  HRESULT answer = S_OK;

 private:
  const bool m_offersDispatch;
};

}  // namespace cvars::test
