#include "EventLogClient.h"

#include <new>

#include "FatalErrorReport.h"
#include "platform/Components.h"

namespace cvars {
namespace {

const wchar_t* OrEmpty(const wchar_t* text) { return text != nullptr ? text : L""; }

}  // namespace

EventLogClient::EventLogClient(const wchar_t* sourceName) : m_sourceName(OrEmpty(sourceName)) {}
EventLogClient::~EventLogClient() = default;

HRESULT EventLogClient::Open(const wchar_t* message, const wchar_t* text,
                             const wchar_t* extraText) {
  const HRESULT created = platform::CreateComponent(L"Vortana.EventLogMgr.1", IID_IVorEventLogMgr,
                                                    reinterpret_cast<void**>(&m_manager));
  if (FAILED(created) || m_manager == nullptr) {
    m_manager = nullptr;
    ReportMissingEventLogManager(created, {message, text, extraText});
    return E_FAIL;
  }
  const HRESULT opened = m_manager->GetEventLog(m_sourceName.c_str(), &m_log);
  if (SUCCEEDED(opened) && m_log != nullptr) return S_OK;
  ReportMissingEventLog(opened);
  m_log = nullptr;
  m_manager = nullptr;
  return E_FAIL;
}

HRESULT EventLogClient::LogEvent(const wchar_t* message, const wchar_t* text, long eventType,
                                 const wchar_t* extraText, const VARIANT& data) {
  if (m_log == nullptr) {
    try {
      const HRESULT opened = Open(message, text, extraText);
      if (FAILED(opened)) return opened;
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    }
  }
  return m_log->LogEvent(OrEmpty(message), OrEmpty(text), eventType, OrEmpty(extraText), data);
}

}  // namespace cvars
