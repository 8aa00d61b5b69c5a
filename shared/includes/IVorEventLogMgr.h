#pragma once

#include "IVorEventLog.h"
#include "Unknown.h"

/// {AF9EAD7B-BA4F-43CC-A370-D1B78DBE9D62}
inline constexpr IID IID_IVorEventLogMgr = {
    0xAF9EAD7B, 0xBA4F, 0x43CC, {0xA3, 0x70, 0xD1, 0xB7, 0x8D, 0xBE, 0x9D, 0x62}};
/// {6BDAD998-AE06-4FE4-B6F7-1AA313975FC4}, "Vortana.EventLogMgr.1"
inline constexpr CLSID CLSID_EventLogMgr = {
    0x6BDAD998, 0xAE06, 0x4FE4, {0xB6, 0xF7, 0x1A, 0xA3, 0x13, 0x97, 0x5F, 0xC4}};

/// Opens the logs of the instrument.
class IVorEventLogMgr : public IUnknown {
 public:
  /// Opens the log of a source, making it when it is new.
  ///
  /// @param sourceName  borrowed; "CvarDev", "CvarEnum", ...
  /// @param log         receives the log with one reference; null on every failure.
  /// @retval E_POINTER     log is null
  /// @retval E_INVALIDARG  the name is empty
  /// @retval E_FAIL        no place to write to
  /// @retval S_OK
  virtual HRESULT GetEventLog(const wchar_t* sourceName, IVorEventLog** log) = 0;  // 3

 protected:
  ~IVorEventLogMgr() = default;
};

template <>
struct cvars::InterfaceId<IVorEventLogMgr> {
  static constexpr IID value = IID_IVorEventLogMgr;
};
