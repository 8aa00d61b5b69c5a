#include <locale>
#include <mutex>
#include <optional>
#include <regex>
#include <string>

#include "Bstr.h"
#include "IVorRegExp.h"
#include "platform/ComponentModule.h"

namespace {

using cvars::platform::Component;
using cvars::platform::Offers;

// Compiles a pattern; nothing when it cannot be read.
std::optional<std::wregex> Compiled(const std::wstring& pattern, bool ignoreCase) {
  auto options = std::regex_constants::ECMAScript;
  if (ignoreCase) options |= std::regex_constants::icase;
  std::wregex compiled;
  compiled.imbue(std::locale::classic());
#ifdef __GLIBCXX__
  // The matcher whose stack does not grow with the text; it knows no back references.
  try {
    compiled.assign(pattern, options | std::regex_constants::__polynomial);
    return compiled;
  } catch (const std::regex_error& error) {
    if (error.code() != std::regex_constants::error_complexity) return std::nullopt;
  }
#endif
  try {
    compiled.assign(pattern, options);
    return compiled;
  } catch (const std::regex_error&) {
    return std::nullopt;
  }
}

HRESULT GiveBool(bool value, VARIANT_BOOL* out) {
  if (out == nullptr) return E_POINTER;
  *out = value ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

class RegExp final : public Component<Offers<IVorRegExp, IID_IVorRegExp>> {
 public:
  HRESULT get_Pattern(BSTR* pattern) override {
    if (pattern == nullptr) return E_POINTER;
    const std::lock_guard guard(m_lock);
    *pattern = SysAllocStringLen(m_pattern.data(), static_cast<UINT>(m_pattern.size()));
    return *pattern != nullptr ? S_OK : E_OUTOFMEMORY;
  }

  HRESULT put_Pattern(const wchar_t* pattern) override {
    std::wstring wanted(pattern != nullptr ? pattern : L"");
    const std::lock_guard guard(m_lock);
    std::optional<std::wregex> compiled = Compiled(wanted, m_ignoreCase);
    if (!compiled) return E_INVALIDARG;
    m_pattern = std::move(wanted);
    m_compiled = std::move(*compiled);
    return S_OK;
  }

  HRESULT get_IgnoreCase(VARIANT_BOOL* ignoreCase) override {
    const std::lock_guard guard(m_lock);
    return GiveBool(m_ignoreCase, ignoreCase);
  }

  HRESULT put_IgnoreCase(VARIANT_BOOL ignoreCase) override {
    const bool wanted = ignoreCase != VARIANT_FALSE;
    const std::lock_guard guard(m_lock);
    std::optional<std::wregex> compiled = Compiled(m_pattern, wanted);
    if (!compiled) return E_FAIL;
    m_compiled = std::move(*compiled);
    m_ignoreCase = wanted;
    return S_OK;
  }

  HRESULT get_Global(VARIANT_BOOL* global) override {
    const std::lock_guard guard(m_lock);
    return GiveBool(m_global, global);
  }

  HRESULT put_Global(VARIANT_BOOL global) override {
    const std::lock_guard guard(m_lock);
    m_global = global != VARIANT_FALSE;
    return S_OK;
  }

  HRESULT Test(const wchar_t* text, VARIANT_BOOL* found) override {
    if (found == nullptr) return E_POINTER;
    *found = VARIANT_FALSE;
    const std::lock_guard guard(m_lock);
    try {
      return GiveBool(std::regex_search(text != nullptr ? text : L"", m_compiled), found);
    } catch (const std::regex_error&) {
      return E_FAIL;  // a back reference that needs more steps than the matcher takes
    }
  }

 private:
  std::mutex m_lock;
  std::wstring m_pattern;                          // guarded by m_lock
  std::wregex m_compiled = *Compiled(L"", false);  // guarded by m_lock
  bool m_ignoreCase = false;                       // guarded by m_lock
  bool m_global = false;                           // guarded by m_lock; Test finds the same
};

}  // namespace

HRESULT DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  return cvars::platform::ClassObject<RegExp>(CLSID_RegExp, clsid, iid, object);
}
