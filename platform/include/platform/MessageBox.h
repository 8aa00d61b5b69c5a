#pragma once

#include <string>

#include "BasicTypes.h"
#include "Export.h"

/// Buttons of a box.
inline constexpr UINT MB_OK = 0x0;
inline constexpr UINT MB_OKCANCEL = 0x1;
inline constexpr UINT MB_ABORTRETRYIGNORE = 0x2;
inline constexpr UINT MB_YESNOCANCEL = 0x3;
inline constexpr UINT MB_YESNO = 0x4;
inline constexpr UINT MB_RETRYCANCEL = 0x5;
/// Its icon.
inline constexpr UINT MB_ICONERROR = 0x10;
inline constexpr UINT MB_ICONQUESTION = 0x20;
inline constexpr UINT MB_ICONWARNING = 0x30;
inline constexpr UINT MB_ICONINFORMATION = 0x40;
/// Which button is the default one.
inline constexpr UINT MB_DEFBUTTON1 = 0x0;
inline constexpr UINT MB_DEFBUTTON2 = 0x100;
inline constexpr UINT MB_DEFBUTTON3 = 0x200;

inline constexpr UINT MB_TYPEMASK = 0xF;
inline constexpr UINT MB_ICONMASK = 0xF0;
inline constexpr UINT MB_DEFMASK = 0xF00;

/// Buttons as replies.
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDABORT = 3;
inline constexpr int IDRETRY = 4;
inline constexpr int IDIGNORE = 5;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

/// Shows a message and returns when it is answered.
///
/// The installed presenter is asked first, then a dialog of the desktop where there is one. A
/// process without a user never waits: the message goes to standard error and the default button
/// is the answer.
///
/// @param owner    may be null.
/// @param text     borrowed; null reads as empty.
/// @param caption  borrowed; null reads as "Error".
/// @param type     MB_ flags.
/// @return the button chosen.
CVARS_API int MessageBox(HWND owner, const wchar_t* text, const wchar_t* caption, UINT type);

namespace cvars::platform {

/// Shows a message to the user, if there is one.
///
/// @return the button chosen; 0 when nobody saw the message.
CVARS_API int AskUser(HWND owner, const wchar_t* text, const wchar_t* caption, UINT type);

/// Writes "<caption>: <text>" and a line feed to standard error.
CVARS_API void TellStandardError(const wchar_t* text, const wchar_t* caption);

/// Gives the English name of a button ("OK", "Cancel", "Yes", ...); "" for other numbers.
CVARS_API const wchar_t* ButtonName(int button) noexcept;

/// Gives the button that MB_DEFBUTTON names among those of a box.
CVARS_API int DefaultButton(UINT type) noexcept;

}  // namespace cvars::platform
