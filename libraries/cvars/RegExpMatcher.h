#pragma once

#include <atomic>

#include "CComPtr.h"
#include "Export.h"
#include "IVorRegExp.h"
#include "Relaxed.h"

namespace cvars {

/// Says whether texts match patterns, by a regular-expression component of its own.
///
/// The component is made with the matcher, and made again at the next use when that failed. Any
/// thread may use a matcher: each use takes the component out of it and puts it back, so that a
/// second user at the same time makes one for itself.
class CVARS_API RegExpMatcher {
 public:
  static constexpr unsigned kIgnoreCase = 1;
  static constexpr unsigned kGlobal = 2;

  /// @param options  kIgnoreCase and kGlobal.
  explicit RegExpMatcher(unsigned options);
  ~RegExpMatcher();
  RegExpMatcher(const RegExpMatcher&) = delete;
  RegExpMatcher& operator=(const RegExpMatcher&) = delete;

  /// @param pattern  borrowed.
  /// @param text     borrowed.
  /// @return whether the pattern matches anywhere in the text; false when there is no component.
  bool Matches(const wchar_t* pattern, const wchar_t* text);

  /// What the last step answered; the failure to make the component included.
  HRESULT LastResult() const noexcept { return m_result; }

 private:
  CComPtr<IVorRegExp> Make();
  void PutBack(CComPtr<IVorRegExp> component) noexcept;

  const unsigned m_options;
  std::atomic<IVorRegExp*> m_component{nullptr};  // one reference
  Relaxed<HRESULT> m_result{S_OK};
};

}  // namespace cvars
