#include "CEnumValueString.h"

#include <vector>

#include "TextCase.h"
#include "TextPieces.h"

namespace cvars {
namespace {

bool IsScriptCharacter(wchar_t c) noexcept {
  return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z') || (c >= L'0' && c <= L'9') ||
         c == L'.';
}

}  // namespace

std::wstring CleanedForScripts(std::wstring_view text) {
  std::wstring cleaned;
  for (const wchar_t c : text) {
    if (IsScriptCharacter(c)) cleaned += c;
  }
  return cleaned;
}

}  // namespace cvars

CEnumValueString::CEnumValueString(std::wstring_view text, bool specialCharacters) {
  const std::vector<std::wstring_view> pieces = cvars::SplitText(text, kSeparator);
  const std::wstring_view given = pieces.size() > 1 ? pieces[1] : pieces[0];
  const std::wstring automation =
      specialCharacters ? std::wstring(given) : cvars::CleanedForScripts(given);
  SetScreen(pieces[0]);
  SetAutomation(automation);
  SetRemote(cvars::UpperCased(pieces.size() > 2 ? pieces[2] : std::wstring_view(automation)));
}

std::wstring CEnumValueString::Joined() const {
  std::wstring text;
  AppendJoined(text);
  return text;
}

void CEnumValueString::AppendJoined(std::wstring& text) const {
  text += m_screen.View();
  text += kSeparator;
  text += m_automation.View();
  text += kSeparator;
  text += m_remote.View();
}

bool CEnumValueString::SameAnyCase(const CEnumValueString& other) const noexcept {
  return cvars::SameTextAnyCase(m_remote.View(), other.m_remote.View()) &&
         cvars::SameTextAnyCase(m_automation.View(), other.m_automation.View()) &&
         cvars::SameTextAnyCase(m_screen.View(), other.m_screen.View());
}
