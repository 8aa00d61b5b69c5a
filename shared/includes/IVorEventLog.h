#pragma once

#include "Unknown.h"
#include "Variant.h"

/// {DBCFEEDB-1179-4929-8FFE-53DC6DD0643D}
inline constexpr IID IID_IVorEventLog = {
    0xDBCFEEDB, 0x1179, 0x4929, {0x8F, 0xFE, 0x53, 0xDC, 0x6D, 0xD0, 0x64, 0x3D}};

/// One open log of the instrument, found by its source name.
class IVorEventLog : public IUnknown {
 public:
  /// Appends one entry.
  ///
  /// @param message    borrowed; the short message.
  /// @param text       borrowed; the line that a reader is shown.
  /// @param eventType  1 error, 2 warning, 4 information; other values are stored as they stand.
  /// @param extraText  borrowed; more text for the details view.
  /// @param data       borrowed; VT_EMPTY when there is none. The log copies what it keeps.
  /// @retval S_OK          the entry is in the log
  /// @retval E_INVALIDARG  the data cannot be stored
  /// @retval E_FAIL        the log cannot be written
  virtual HRESULT LogEvent(const wchar_t* message, const wchar_t* text, long eventType,
                           const wchar_t* extraText, VARIANT data) = 0;  // 3

 protected:
  ~IVorEventLog() = default;
};

template <>
struct cvars::InterfaceId<IVorEventLog> {
  static constexpr IID value = IID_IVorEventLog;
};
