#pragma once

#include <string>
#include <string_view>

#include "CvarText.h"
#include "NumericText.h"

namespace cvars {

/// The one-line description of a cvar: labels and values in turn, joined by commas.
class SignatureText {
 public:
  /// Begins with "Type" and the type name.
  explicit SignatureText(std::wstring_view typeName) : m_text(L"Type,") { m_text += typeName; }

  SignatureText& Add(std::wstring_view label, std::wstring_view value) {
    Label(label) += value;
    return *this;
  }
  /// Adds a number as AppendPlain writes it.
  template <class Number>
  SignatureText& AddNumber(std::wstring_view label, Number value) {
    AppendPlain(Label(label), value);
    return *this;
  }

  /// Adds an integer of any width in decimal.
  SignatureText& AddInteger(std::wstring_view label, std::int64_t value) {
    return AddNumber(label, value);
  }

  const std::wstring& Text() const noexcept { return m_text; }

 private:
  std::wstring& Label(std::wstring_view label) {
    m_text += L',';
    m_text += label;
    m_text += L',';
    return m_text;
  }

  std::wstring m_text;
};

}  // namespace cvars
