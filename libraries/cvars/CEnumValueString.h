#pragma once

#include <string>
#include <string_view>

#include "CComBSTR.h"
#include "Export.h"

/// The three spellings of one choice or one object: for the screen, for scripts and for remote
/// commands.
class CVARS_API CEnumValueString {
 public:
  /// What stands between the spellings in one text.
  static constexpr wchar_t kSeparator = L'|';

  /// Three empty spellings.
  CEnumValueString() noexcept = default;
  /// Makes the spellings from "screen", "screen|automation" or "screen|automation|remote".
  ///
  /// A missing automation spelling is the screen spelling, a missing remote spelling the automation
  /// spelling. The automation spelling keeps only ASCII letters, ASCII digits and ".", so that
  /// "Ch 1 (AC)" becomes "Ch1AC"; the remote spelling is upper-cased. Pieces after the third are
  /// ignored.
  ///
  /// @param text               copied.
  /// @param specialCharacters  keeps every character of the automation spelling.
  CEnumValueString(std::wstring_view text, bool specialCharacters);

  const CComBSTR& Screen() const noexcept { return m_screen; }
  const CComBSTR& Automation() const noexcept { return m_automation; }
  const CComBSTR& Remote() const noexcept { return m_remote; }

  /// Replaces one spelling as it is given, without cleaning it. @param text  copied.
  void SetScreen(std::wstring_view text) { m_screen = CComBSTR(text); }
  void SetAutomation(std::wstring_view text) { m_automation = CComBSTR(text); }
  void SetRemote(std::wstring_view text) { m_remote = CComBSTR(text); }

  /// Gives screen|automation|remote.
  std::wstring Joined() const;
  /// Appends screen|automation|remote to a text.
  void AppendJoined(std::wstring& text) const;

  /// Says whether all three spellings are the same but for their case.
  bool SameAnyCase(const CEnumValueString& other) const noexcept;

  /// Compares all three spellings, case counting.
  friend bool operator==(const CEnumValueString&, const CEnumValueString&) noexcept = default;

 private:
  CComBSTR m_screen;
  CComBSTR m_automation;
  CComBSTR m_remote;
};

namespace cvars {
/// Removes every character that is not an ASCII letter, an ASCII digit or ".".
CVARS_API std::wstring CleanedForScripts(std::wstring_view text);
}  // namespace cvars
