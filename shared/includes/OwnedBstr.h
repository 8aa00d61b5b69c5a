#pragma once

#include <cwchar>
#include <new>
#include <string_view>
#include <utility>

#include "Bstr.h"

namespace cvars {

/// What the owning string classes share: holds one `BSTR`, freed with it.
///
/// Null reads as empty. A failed allocation throws std::bad_alloc and leaves the old text.
class CVARS_API OwnedBstr {
 public:
  OwnedBstr() noexcept = default;
  /// @param text  copied up to its terminator; null gives null.
  OwnedBstr(const wchar_t* text) : m_str(Checked(SysAllocString(text), text != nullptr)) {}
  explicit OwnedBstr(std::wstring_view text) : OwnedBstr(Length(text), text.data()) {}
  /// @param length  in characters.
  /// @param text    copied; null gives zero characters.
  OwnedBstr(UINT length, const wchar_t* text)
      : m_str(Checked(SysAllocStringLen(text, length), true)) {}
  OwnedBstr(const OwnedBstr& other) : m_str(other.Copy()) {}
  OwnedBstr(OwnedBstr&& other) noexcept : m_str(other.Detach()) {}
  ~OwnedBstr() { SysFreeString(m_str); }

  OwnedBstr& operator=(const OwnedBstr& other) {
    if (m_str != other.m_str) Attach(other.Copy());
    return *this;
  }
  OwnedBstr& operator=(OwnedBstr&& other) noexcept {
    if (m_str != other.m_str) Attach(other.Detach());
    return *this;
  }
  OwnedBstr& operator=(const wchar_t* text) {
    if (text != m_str || text == nullptr) Attach(Checked(SysAllocString(text), text != nullptr));
    return *this;
  }

  operator BSTR() const noexcept { return m_str; }
  bool operator!() const noexcept { return m_str == nullptr; }

  /// For an out-parameter: frees what is held first, so that nothing leaks.
  BSTR* operator&() noexcept {
    Empty();
    return &m_str;
  }

  /// Length in characters.
  [[nodiscard]] UINT Length() const noexcept { return SysStringLen(m_str); }
  [[nodiscard]] UINT ByteLength() const noexcept { return SysStringByteLen(m_str); }
  /// The characters, zeros among them included; borrowed.
  [[nodiscard]] std::wstring_view View() const noexcept {
    return m_str == nullptr ? std::wstring_view() : std::wstring_view(m_str, Length());
  }

  /// Frees the text; null afterwards.
  void Empty() noexcept { SysFreeString(std::exchange(m_str, nullptr)); }
  /// Takes over the caller's text.
  void Attach(BSTR text) noexcept {
    if (text != m_str) SysFreeString(std::exchange(m_str, text));
  }
  /// Hands the text to the caller, who frees it.
  [[nodiscard]] BSTR Detach() noexcept { return std::exchange(m_str, nullptr); }
  /// @return a copy, caller frees; null for null.
  [[nodiscard]] BSTR Copy() const {
    return m_str == nullptr ? nullptr : Checked(SysAllocStringLen(m_str, Length()), true);
  }
  /// @param text  receives a copy; caller frees.
  /// @retval E_POINTER      text is null
  /// @retval E_OUTOFMEMORY  the copy failed; *text is null
  HRESULT CopyTo(BSTR* text) const noexcept {
    if (text == nullptr) return E_POINTER;
    *text = m_str == nullptr ? nullptr : SysAllocStringLen(m_str, Length());
    return m_str != nullptr && *text == nullptr ? E_OUTOFMEMORY : S_OK;
  }

  HRESULT Append(std::wstring_view text) {
    const std::wstring_view old = View();
    if (text.size() >= kLimit - old.size()) throw std::bad_alloc();
    BSTR joined = Checked(SysAllocStringLen(nullptr, Length(old) + Length(text)), true);
    if (!old.empty()) std::wmemcpy(joined, old.data(), old.size());
    if (!text.empty()) std::wmemcpy(joined + old.size(), text.data(), text.size());
    Attach(joined);
    return S_OK;
  }
  HRESULT Append(const wchar_t* text) {
    return text == nullptr ? S_OK : Append(std::wstring_view(text));
  }
  HRESULT Append(const OwnedBstr& text) { return Append(text.View()); }
  OwnedBstr& operator+=(const wchar_t* text) {
    Append(text);
    return *this;
  }
  OwnedBstr& operator+=(const OwnedBstr& text) {
    Append(text);
    return *this;
  }

  friend bool operator==(const OwnedBstr& a, const OwnedBstr& b) noexcept {
    return a.View() == b.View();
  }
  friend bool operator==(const OwnedBstr& a, const wchar_t* b) noexcept {
    return a.View() == (b == nullptr ? std::wstring_view() : std::wstring_view(b));
  }
  friend bool operator<(const OwnedBstr& a, const OwnedBstr& b) noexcept {
    return a.View() < b.View();
  }

  /// The text itself; borrowed.
  BSTR m_str = nullptr;

 private:
  static constexpr std::size_t kLimit = std::size_t{1} << 30;

  static BSTR Checked(BSTR text, bool needed) {
    if (needed && text == nullptr) throw std::bad_alloc();
    return text;
  }
  static UINT Length(std::wstring_view text) {
    if (text.size() >= kLimit) throw std::bad_alloc();
    return static_cast<UINT>(text.size());
  }
};

}  // namespace cvars
