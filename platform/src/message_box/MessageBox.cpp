#include "platform/MessageBox.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <string>

#include "DesktopDialog.h"
#include "MessageBoxButtons.h"
#include "platform/MessageBoxPresenter.h"
#include "platform/Utf8.h"

namespace cvars::platform {
namespace {

std::atomic<MessageBoxPresenter*> installedPresenter = nullptr;

}  // namespace

std::span<const int> ButtonsOf(UINT type) noexcept {
  static constexpr std::array kOk = {IDOK};
  static constexpr std::array kOkCancel = {IDOK, IDCANCEL};
  static constexpr std::array kAbortRetryIgnore = {IDABORT, IDRETRY, IDIGNORE};
  static constexpr std::array kYesNoCancel = {IDYES, IDNO, IDCANCEL};
  static constexpr std::array kYesNo = {IDYES, IDNO};
  static constexpr std::array kRetryCancel = {IDRETRY, IDCANCEL};
  switch (type & MB_TYPEMASK) {
    case MB_OKCANCEL:
      return kOkCancel;
    case MB_ABORTRETRYIGNORE:
      return kAbortRetryIgnore;
    case MB_YESNOCANCEL:
      return kYesNoCancel;
    case MB_YESNO:
      return kYesNo;
    case MB_RETRYCANCEL:
      return kRetryCancel;
    default:
      return kOk;
  }
}

const wchar_t* ButtonName(int button) noexcept {
  static constexpr const wchar_t* kNames[] = {L"",      L"OK",     L"Cancel", L"Abort",
                                              L"Retry", L"Ignore", L"Yes",    L"No"};
  return button > 0 && button <= IDNO ? kNames[button] : L"";
}

int DefaultButton(UINT type) noexcept {
  const std::span<const int> buttons = ButtonsOf(type);
  const std::size_t place = (type & MB_DEFMASK) / MB_DEFBUTTON2;
  return place < buttons.size() ? buttons[place] : buttons.front();
}

MessageBoxPresenter* SetMessageBoxPresenter(MessageBoxPresenter* presenter) noexcept {
  return installedPresenter.exchange(presenter);
}

int AskUser(HWND owner, const wchar_t* text, const wchar_t* caption, UINT type) {
  if (text == nullptr) text = L"";
  if (caption == nullptr) caption = L"Error";
  if (MessageBoxPresenter* const presenter = installedPresenter.load()) {
    if (const int button = presenter->Present(owner, text, caption, type)) return button;
  }
  return ShowDesktopDialog(ToUtf8(text), ToUtf8(caption), type);
}

void TellStandardError(const wchar_t* text, const wchar_t* caption) {
  const std::string line = ToUtf8(caption != nullptr ? caption : L"Error") + ": " +
                           ToUtf8(text != nullptr ? text : L"") + "\n";
  std::size_t written = 0;
  while (written < line.size()) {
    const ssize_t count = write(STDERR_FILENO, line.data() + written, line.size() - written);
    if (count < 0 && errno != EINTR) return;  // nobody left to tell
    written += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  }
}

}  // namespace cvars::platform

int MessageBox(HWND owner, const wchar_t* text, const wchar_t* caption, UINT type) {
  using namespace cvars::platform;
  if (const int button = AskUser(owner, text, caption, type)) return button;
  TellStandardError(text, caption);
  return DefaultButton(type);
}
