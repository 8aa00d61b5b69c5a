#pragma once

#include <string>

#include "CComPtr.h"
#include "Export.h"
#include "IVorEventLog.h"
#include "IVorEventLogMgr.h"

namespace cvars {

/// Writes entries under one source name; opens the log at the first entry and keeps it.
class CVARS_API EventLogClient {
 public:
  /// @param sourceName  copied; null reads as empty.
  explicit EventLogClient(const wchar_t* sourceName);
  ~EventLogClient();
  EventLogClient(const EventLogClient&) = delete;
  EventLogClient& operator=(const EventLogClient&) = delete;

  /// @param message, text, extraText  borrowed; null reads as empty.
  /// @param eventType                 1 error, 2 warning, 4 information.
  /// @param data                      borrowed; VT_EMPTY when there is none.
  /// @retval E_FAIL         the log could not be opened; a message box told so
  /// @retval E_OUTOFMEMORY  the text of that box could not be made
  /// @return otherwise what the log answered
  HRESULT LogEvent(const wchar_t* message, const wchar_t* text, long eventType,
                   const wchar_t* extraText, const VARIANT& data);

 private:
  HRESULT Open(const wchar_t* message, const wchar_t* text, const wchar_t* extraText);

  std::wstring m_sourceName;
  CComPtr<IVorEventLogMgr> m_manager;
  CComPtr<IVorEventLog> m_log;
};

}  // namespace cvars
