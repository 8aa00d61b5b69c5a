#pragma once

#include "Unknown.h"

/// {CD041425-BDD6-466A-A1F9-BE2B3393BB8C}
inline constexpr IID IID_IVorMessageBox = {
    0xCD041425, 0xBDD6, 0x466A, {0xA1, 0xF9, 0xBE, 0x2B, 0x33, 0x93, 0xBB, 0x8C}};
/// {BBA42A1A-7DDF-4AD1-A9B4-C4BE12DCABA6}, "Vortana.MessageBox"
inline constexpr CLSID CLSID_MessageBox = {
    0xBBA42A1A, 0x7DDF, 0x4AD1, {0xA9, 0xB4, 0xC4, 0xBE, 0x12, 0xDC, 0xAB, 0xA6}};

/// Shows a message to the user of the instrument and waits for the reply.
class IVorMessageBox : public IUnknown {
 public:
  /// @param message       borrowed; may hold line feeds.
  /// @param caption       borrowed; empty takes the application's name.
  /// @param style         the platform's MB_ flags; 0 is one OK button without an icon.
  /// @param level         1 is shown at once; larger numbers may be held back by the panel.
  /// @param defaultReply  borrowed; the reply when nobody can answer ("OK").
  /// @param source        borrowed; who asks, for the log ("CvarObjectName::SetRequestedValue").
  /// @param reply         receives the chosen reply ("OK", "Cancel", "Yes", ...), caller frees.
  /// @retval E_POINTER      reply is null
  /// @retval E_OUTOFMEMORY  the reply could not be copied out
  /// @retval S_OK
  virtual HRESULT ShowMessage(const wchar_t* message, const wchar_t* caption, long style,
                              long level, const wchar_t* defaultReply, const wchar_t* source,
                              BSTR* reply) = 0;  // 3

 protected:
  ~IVorMessageBox() = default;
};

template <>
struct cvars::InterfaceId<IVorMessageBox> {
  static constexpr IID value = IID_IVorMessageBox;
};
