#pragma once

#include <string>
#include <vector>

#include "CComVariant.h"
#include "IVorEventLog.h"
#include "IVorEventLogMgr.h"
#include "platform/ComponentModule.h"
#include "platform/Components.h"
#include "platform/Registry.h"

namespace cvars::test {

/// One entry that a fake log was given.
struct LoggedEntry {
  std::wstring source;
  std::wstring message;
  std::wstring text;
  long eventType;
  std::wstring extraText;
  VARTYPE dataType;
};

/// What the fake manager and its logs have seen and what they answer.
struct FakeEventLogState {
  int managersMade = 0;
  int logsOpened = 0;
  HRESULT openResult = S_OK;
  bool givesLog = true;
  HRESULT logResult = S_OK;
  std::vector<LoggedEntry> entries;
};
inline FakeEventLogState fakeEventLog;

class FakeEventLog final
    : public platform::Component<platform::Offers<IVorEventLog, IID_IVorEventLog>> {
 public:
  explicit FakeEventLog(std::wstring source) : m_source(std::move(source)) {}
  HRESULT LogEvent(const wchar_t* message, const wchar_t* text, long eventType,
                   const wchar_t* extraText, VARIANT data) override {
    fakeEventLog.entries.push_back({m_source, message, text, eventType, extraText, data.vt});
    return fakeEventLog.logResult;
  }

 private:
  std::wstring m_source;
};

class FakeEventLogMgr final
    : public platform::Component<platform::Offers<IVorEventLogMgr, IID_IVorEventLogMgr>> {
 public:
  FakeEventLogMgr() { ++fakeEventLog.managersMade; }
  HRESULT GetEventLog(const wchar_t* sourceName, IVorEventLog** log) override {
    *log = nullptr;
    if (SUCCEEDED(fakeEventLog.openResult) && fakeEventLog.givesLog) {
      *log = new FakeEventLog(sourceName);
      ++fakeEventLog.logsOpened;
    }
    return fakeEventLog.openResult;
  }
};

/// Says which class a programmatic identifier stands for in the user's class hive.
inline void NameClass(const wchar_t* progId, const wchar_t* clsid) {
  platform::WriteRegistryText(HKEY_CLASSES_ROOT, (std::wstring(progId) + L"\\CLSID").c_str(), L"",
                              clsid);
}

/// Puts a class of a test in the place of a component as long as it lives.
template <class Made>
class RegisteredClass {
 public:
  RegisteredClass(const wchar_t* progId, REFCLSID clsid) {
    wchar_t text[39];
    StringFromGUID2(clsid, text, 39);
    NameClass(progId, text);
    CComPtr<platform::ClassFactory<Made>> factory;
    factory.Attach(new platform::ClassFactory<Made>);
    CoRegisterClassObject(clsid, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &m_cookie);
  }
  ~RegisteredClass() { CoRevokeClassObject(m_cookie); }
  RegisteredClass(const RegisteredClass&) = delete;
  RegisteredClass& operator=(const RegisteredClass&) = delete;

 private:
  DWORD m_cookie = 0;
};

/// A process whose class hive knows no event-log manager.
inline void ForgetEventLogManager() {
  NameClass(L"Vortana.EventLogMgr.1", L"{00000000-1111-2222-3333-444444444444}");
}

}  // namespace cvars::test
