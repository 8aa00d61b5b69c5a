#include "RegExpMatcher.h"

#include "platform/Components.h"

namespace cvars {

RegExpMatcher::RegExpMatcher(unsigned options) : m_options(options) { PutBack(Make()); }

RegExpMatcher::~RegExpMatcher() {
  CComPtr<IVorRegExp> component;
  component.Attach(m_component.exchange(nullptr));
}

CComPtr<IVorRegExp> RegExpMatcher::Make() {
  CComPtr<IVorRegExp> component;
  m_result = platform::CreateComponent(L"VBScript.RegExp", IID_IVorRegExp,
                                       reinterpret_cast<void**>(&component));
  if (component == nullptr) return component;
  const auto option = [this](unsigned bit) {
    return (m_options & bit) != 0 ? VARIANT_TRUE : VARIANT_FALSE;
  };
  m_result = component->put_IgnoreCase(option(kIgnoreCase));
  if (SUCCEEDED(m_result)) m_result = component->put_Global(option(kGlobal));
  return component;
}

void RegExpMatcher::PutBack(CComPtr<IVorRegExp> component) noexcept {
  // A component that another user put back meanwhile goes.
  component.Attach(m_component.exchange(component.Detach()));
}

bool RegExpMatcher::Matches(const wchar_t* pattern, const wchar_t* text) {
  CComPtr<IVorRegExp> component;
  component.Attach(m_component.exchange(nullptr));
  if (component == nullptr) component = Make();
  if (component == nullptr) return false;
  VARIANT_BOOL found = VARIANT_FALSE;
  m_result = component->put_Pattern(pattern);
  if (SUCCEEDED(m_result)) m_result = component->Test(text, &found);
  PutBack(std::move(component));
  return SUCCEEDED(m_result.Get()) && found != VARIANT_FALSE;
}

}  // namespace cvars
