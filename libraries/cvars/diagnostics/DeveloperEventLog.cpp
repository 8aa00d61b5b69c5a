#include "DeveloperEventLog.h"

#include <atomic>
#include <string>

#include "CComBSTR.h"
#include "CComPtr.h"
#include "CComVariant.h"
#include "DeveloperEvents.h"
#include "EventLogClient.h"
#include "platform/Registry.h"

namespace {

constexpr long kWarning = 2;
constexpr long kInformation = 4;
constexpr DWORD kSwitchForInformation = 2;

DWORD ReadSwitch() {
  HKEY key = nullptr;
  if (RegOpenKeyEx(HKEY_CURRENT_USER, L"SOFTWARE\\Vortana\\Quillon", 0, KEY_READ, &key) !=
      ERROR_SUCCESS) {
    return 0;
  }
  DWORD type = 0;
  DWORD value = 0;
  DWORD size = sizeof(value);
  const LSTATUS status = RegQueryValueEx(key, L"EnableCvarDevLogging", nullptr, &type,
                                         reinterpret_cast<BYTE*>(&value), &size);
  RegCloseKey(key);
  return status == ERROR_SUCCESS && type == REG_DWORD && size == sizeof(value) ? value : 0;
}

// Without a lock: two first calls at once both read the registry, and read the same.
DWORD LogSwitch() {
  static std::atomic<bool> wasRead = false;
  static std::atomic<DWORD> value = 0;
  if (!wasRead.load(std::memory_order_acquire)) {
    value.store(ReadSwitch(), std::memory_order_relaxed);
    wasRead.store(true, std::memory_order_release);
  }
  return value.load(std::memory_order_relaxed);
}

// "Channel1.Gain", or "Gain" when there is no parent with a name.
std::wstring NameInContainer(IVorCvar* cvar) {
  CComPtr<IUnknown> parent;
  (void)cvar->get_Parent(&parent);  // no parent is no failure here
  std::wstring name = cvars::BagName(parent);
  if (!name.empty()) name += L'.';
  CComBSTR cvarName;
  if (SUCCEEDED(cvar->get_Name(&cvarName))) name += cvarName.View();
  return name;
}

}  // namespace

void g_KnobsetLogDeveloperEvent(const CVorComBSTR& message, IVorCvar* cvar) {
  const DWORD logSwitch = LogSwitch();
  if (logSwitch == 0) return;
  cvars::EventLogClient client(L"CvarDev");
  if (cvar == nullptr) return;
  const std::wstring messageText(message.View());
  const std::wstring text = L"cvar: " + NameInContainer(cvar) + L" (" + messageText + L")";
  const long eventType = logSwitch == kSwitchForInformation ? kInformation : kWarning;
  // An event that cannot be logged is lost; the user has been told.
  (void)client.LogEvent(messageText.c_str(), text.c_str(), eventType, text.c_str(), CComVariant());
}
