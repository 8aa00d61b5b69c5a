#include "DeveloperEvents.h"

#include <atomic>
#include <cwchar>
#include <iterator>

#include "CComBSTR.h"
#include "CComPtr.h"
#include "CComVariant.h"
#include "CvarBag.h"
#include "CvarText.h"
#include "DeveloperEventLog.h"
#include "platform/ResultMessage.h"

namespace cvars {
namespace {

std::atomic<DeveloperEventObserver> g_observer{nullptr};
std::atomic<void*> g_observerContext{nullptr};

constexpr wchar_t kSystemCategory[] = L"system";

std::wstring NameOf(IVorCvar* cvar) {
  CComBSTR name;
  if (cvar == nullptr || FAILED(cvar->get_Name(&name))) return {};
  return std::wstring(BstrView(name));
}

}  // namespace

void SetDeveloperEventObserver(DeveloperEventObserver observer, void* context) noexcept {
  g_observer.store(nullptr, std::memory_order_release);
  g_observerContext.store(context, std::memory_order_release);
  g_observer.store(observer, std::memory_order_release);
}

void ReportDeveloperEvent(const DeveloperEvent& event) {
  if (const DeveloperEventObserver observer = g_observer.load(std::memory_order_acquire)) {
    observer(event, g_observerContext.load(std::memory_order_acquire));
  }
  g_KnobsetLogDeveloperEvent(CVorComBSTR(std::wstring_view(event.message)), event.cvar);
}

std::wstring BagName(IUnknown* parent) {
  if (parent == nullptr) return {};
  CComPtr<CvarBag> bag;
  if (FAILED(parent->QueryInterface(IID_CvarBag, reinterpret_cast<void**>(&bag)))) return {};
  wchar_t property[] = L"Name";
  wchar_t* names[] = {property};
  DISPID id = DISPID_UNKNOWN;
  if (FAILED(bag->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id))) return {};
  DISPPARAMS noArguments = {};
  CComVariant name;
  if (FAILED(bag->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &noArguments,
                         &name, nullptr, nullptr)) ||
      FAILED(name.ChangeType(VT_BSTR))) {
    return {};
  }
  return std::wstring(BstrView(name.bstrVal));
}

std::wstring BagAndCvarName(IVorCvar* cvar) {
  CComPtr<IUnknown> parent;
  (void)cvar->get_Parent(&parent);
  return BagName(parent) + L"." + NameOf(cvar);
}

std::wstring DeveloperEventSource(IVorCvar* cvar) {
  return L"(CvarBag.Cvar) " + BagAndCvarName(cvar);
}

std::wstring DeveloperEventMessage(std::wstring_view text, IUnknown* target) {
  std::wstring message(text);
  if (target == nullptr) return message;
  CComPtr<CvarBag> bag;
  if (SUCCEEDED(target->QueryInterface(IID_CvarBag, reinterpret_cast<void**>(&bag)))) {
    return message + L" (target CvarBag: " + BagName(target) + L")";
  }
  CComPtr<IVorCvar> cvar;
  if (SUCCEEDED(target->QueryInterface(IID_IVorCvar, reinterpret_cast<void**>(&cvar)))) {
    return message + L" (target Cvar: " + NameOf(cvar) + L")";
  }
  return message + L" (target client unknown, possibly a widget)";
}

std::wstring DeveloperEventDetail(int line, std::wstring_view text) {
  return std::to_wstring(line) + L"\n" + std::wstring(text);
}

std::wstring ResultText(HRESULT result) {
  wchar_t code[16];
  std::swprintf(code, std::size(code), L"hr=0x%08x: ", static_cast<unsigned int>(result));
  std::wstring message(platform::ResultMessage(result));
  constexpr std::wstring_view kLineBreak = L"\r\n";
  const std::size_t lineBreak = message.find(kLineBreak);
  if (lineBreak != std::wstring::npos) message.erase(lineBreak, kLineBreak.size());
  return code + message;
}

DeveloperEvent WrapperFailure(HRESULT result, IVorCvar* cvar) {
  DeveloperEvent event;
  event.source = L"CVorCvarWrapper";
  event.message = ResultText(result);
  event.severity = 3;
  event.category = kSystemCategory;
  event.value = cvar != nullptr ? NameOf(cvar) : L"Null Cvar Ptr";
  event.cvar = cvar;
  return event;
}

DeveloperEvent EventAtLine(IVorCvar* cvar, std::wstring_view message, int line,
                           std::wstring_view text) {
  DeveloperEvent event;
  event.source = DeveloperEventSource(cvar);
  event.message = DeveloperEventMessage(message, nullptr);
  event.severity = 4;
  event.category = kSystemCategory;
  event.detail = DeveloperEventDetail(line, text);
  event.value = L"Null value";
  event.cvar = cvar;
  return event;
}

}  // namespace cvars
