#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Export.h"

namespace cvars {

/// Splits a text at every separator.
///
/// The pieces keep their order, and empty ones stay: "a,,b" has three. A text without separator is
/// one piece, the empty text too.
///
/// @param text  borrowed; the pieces are views into it.
CVARS_API std::vector<std::wstring_view> SplitText(std::wstring_view text, wchar_t separator);

/// Puts pieces together, a separator between each two of them.
class TextJoiner {
 public:
  explicit TextJoiner(wchar_t separator) noexcept : m_separator(separator) {}
  /// Goes on behind a text that is there already, as if it were no piece.
  TextJoiner(std::wstring before, wchar_t separator) noexcept
      : m_text(std::move(before)), m_separator(separator) {}

  /// Begins a piece. @return where the caller appends its characters
  std::wstring& Begin() {
    if (m_hasPiece) m_text += m_separator;
    m_hasPiece = true;
    return m_text;
  }
  TextJoiner& Add(std::wstring_view piece) {
    Begin() += piece;
    return *this;
  }

  const std::wstring& Text() const noexcept { return m_text; }

 private:
  std::wstring m_text;
  wchar_t m_separator;
  bool m_hasPiece = false;
};

}  // namespace cvars
