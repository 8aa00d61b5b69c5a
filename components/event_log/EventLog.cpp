// "Vortana.EventLogMgr.1": the instrument's logs in the system's journal, or in files below the
// platform's home where there is no journal or it does not take an entry.

#include <ctime>
#include <string>

#include "CComBSTR.h"
#include "CComVariant.h"
#include "IVorEventLog.h"
#include "IVorEventLogMgr.h"
#include "Journal.h"
#include "LogFile.h"
#include "SafeArray.h"
#include "platform/ComponentModule.h"
#include "platform/JsonLine.h"
#include "platform/Processes.h"
#include "platform/Utf8.h"

namespace cvars::components {
namespace {

using platform::JsonLine;

constexpr long kError = 1;
constexpr long kWarning = 2;

const wchar_t* OrEmpty(const wchar_t* text) { return text != nullptr ? text : L""; }

// "2026-11-21T09:58:03.123456Z"
std::string TimeNow() {
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  tm parts = {};
  gmtime_r(&now.tv_sec, &parts);
  char date[32];
  std::strftime(date, sizeof(date), "%Y-%m-%dT%H:%M:%S", &parts);
  char text[64];
  std::snprintf(text, sizeof(text), "%s.%06ldZ", date, now.tv_nsec / 1000);
  return text;
}

std::string Hexadecimal(const BYTE* bytes, std::size_t count) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (std::size_t index = 0; index < count; ++index) {
    text += kDigits[bytes[index] >> 4];
    text += kDigits[bytes[index] & 0xF];
  }
  return text;
}

// Bytes are the one kind of array that the log keeps.
HRESULT AddBytes(JsonLine& line, SAFEARRAY* array) {
  LONG first = 0;
  LONG last = -1;
  void* bytes = nullptr;
  if (array == nullptr || SafeArrayGetDim(array) != 1 ||
      FAILED(SafeArrayGetLBound(array, 1, &first)) || FAILED(SafeArrayGetUBound(array, 1, &last)) ||
      FAILED(SafeArrayAccessData(array, &bytes))) {
    return E_INVALIDARG;
  }
  line.Text("data", Hexadecimal(static_cast<const BYTE*>(bytes),
                                static_cast<std::size_t>(std::int64_t{last} - first + 1)));
  SafeArrayUnaccessData(array);
  return S_OK;
}

HRESULT AddData(JsonLine& line, const VARIANT& given) {
  CComVariant data;
  if (FAILED(VariantCopyInd(&data, &given))) return E_INVALIDARG;
  switch (data.vt) {
    case VT_EMPTY:
    case VT_NULL:
      return S_OK;
    case VT_I1:
    case VT_I2:
    case VT_I4:
    case VT_I8:
    case VT_INT:
    case VT_UI1:
    case VT_UI2:
      if (FAILED(data.ChangeType(VT_I8))) return E_INVALIDARG;
      line.Number("data", std::int64_t{data.llVal});
      return S_OK;
    case VT_UI4:
    case VT_UI8:
    case VT_UINT:
      if (FAILED(data.ChangeType(VT_UI8))) return E_INVALIDARG;
      line.Number("data", std::uint64_t{data.ullVal});
      return S_OK;
    case VT_R4:
    case VT_R8:
      if (FAILED(data.ChangeType(VT_R8))) return E_INVALIDARG;
      line.Number("data", data.dblVal);
      return S_OK;
    case VT_BOOL:
      line.Flag("data", data.boolVal != VARIANT_FALSE);
      return S_OK;
    case VT_ARRAY | VT_UI1:
      return AddBytes(line, data.parray);
    default:
      // Dates, currencies, decimals and texts have a text; objects and other arrays have none.
      if (data.vt == VT_UNKNOWN || data.vt == VT_DISPATCH || FAILED(data.ChangeType(VT_BSTR))) {
        return E_INVALIDARG;
      }
      line.Text("data", std::wstring_view(OrEmpty(data.bstrVal)));
      return S_OK;
  }
}

// Levels of the journal.
const char* PriorityOf(long eventType) {
  if (eventType == kError) return "3";
  return eventType == kWarning ? "4" : "6";
}

class EventLog final
    : public platform::Component<platform::Offers<IVorEventLog, IID_IVorEventLog>> {
 public:
  explicit EventLog(const wchar_t* source)
      : m_source(source), m_journal(JournalSocket()), m_file(HomeLogFile()) {}

  HRESULT LogEvent(const wchar_t* message, const wchar_t* text, long eventType,
                   const wchar_t* extraText, VARIANT data) override {
    JsonLine line;
    line.Text("time", TimeNow())
        .Text("source", m_source)
        .Number("type", std::int64_t{eventType})
        .Text("message", std::wstring_view(OrEmpty(message)))
        .Text("text", std::wstring_view(OrEmpty(text)))
        .Text("extra", std::wstring_view(OrEmpty(extraText)));
    if (FAILED(AddData(line, data))) return E_INVALIDARG;
    line.Text("program", std::string_view(program_invocation_short_name))
        .Number("process", std::uint64_t{GetCurrentProcessId()})
        .Number("thread", std::uint64_t{GetCurrentThreadId()});
    if (!m_journal.empty() && SendToJournal(m_journal, JournalFields(line, text, eventType))) {
      return S_OK;
    }
    return m_file.Append(line.Line()) ? S_OK : E_FAIL;
  }

 private:
  std::vector<std::pair<std::string, std::string>> JournalFields(const JsonLine& line,
                                                                 const wchar_t* text,
                                                                 long eventType) const {
    return {{"MESSAGE", platform::ToUtf8(OrEmpty(text))},
            {"PRIORITY", PriorityOf(eventType)},
            {"SYSLOG_IDENTIFIER", kJournalIdentifier},
            {"VORTANA_SOURCE", platform::ToUtf8(m_source)},
            {"VORTANA_TYPE", std::to_string(eventType)},
            {kJournalEntryField, line.Line()}};
  }

  std::wstring m_source;
  std::string m_journal;
  LogFile m_file;
};

class EventLogMgr final
    : public platform::Component<platform::Offers<IVorEventLogMgr, IID_IVorEventLogMgr>> {
 public:
  HRESULT GetEventLog(const wchar_t* sourceName, IVorEventLog** log) override {
    if (log == nullptr) return E_POINTER;
    *log = nullptr;
    if (sourceName == nullptr || *sourceName == L'\0') return E_INVALIDARG;
    if (JournalSocket().empty()) {
      std::error_code error;
      std::filesystem::create_directories(HomeLogFile().Folder(), error);
      if (error) return E_FAIL;
    }
    *log = new EventLog(sourceName);
    return S_OK;
  }
};

}  // namespace
}  // namespace cvars::components

HRESULT DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  return cvars::platform::ClassObject<cvars::components::EventLogMgr>(CLSID_EventLogMgr, clsid, iid,
                                                                      object);
}
