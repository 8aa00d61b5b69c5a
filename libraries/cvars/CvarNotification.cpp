#include <cxxabi.h>

#include "CComBSTR.h"
#include "CComPtr.h"
#include "CComVariant.h"
#include "CvarCore.h"
#include "DeveloperEvents.h"
#include "platform/FaultGuard.h"

namespace cvars {
namespace {

// Nested notifications of one cvar at which it is reported and muted.
constexpr std::uint32_t kRecursionLimit = 20;

// The last failure wins over any success code, the last success code over S_OK.
void Combine(HRESULT& result, HRESULT next) noexcept {
  if (next < 0 || (result >= 0 && next != 0)) result = next;
}

struct GuardedListener {
  IVorCvarEventSink* listener;
  IVorCvar* source;
  NOTIFYTYPE what;

  static HRESULT Call(void* context) {
    const auto* call = static_cast<GuardedListener*>(context);
    return call->listener->OnCvarNotify(call->source, call->what);
  }
};

}  // namespace

// What is sent, to whom, and what stays alive meanwhile: the cvar, and the container that must not
// vanish under it.
class CvarCore::Notification {
 public:
  explicit Notification(CvarCore& cvar)
      : m_cvar(cvar),
        m_parent(Kept(cvar.GetParent())),
        what(cvar.m_pending.Take()),
        listeners(cvar.m_listeners) {}
  ~Notification() {
    // The cvar may be gone after this.
    if (listeners.GiveBack()) m_cvar.Go();
    if (m_parent != nullptr) m_parent->Release();
  }
  Notification(const Notification&) = delete;
  Notification& operator=(const Notification&) = delete;

  bool TooDeep() const noexcept {
    if (listeners.Holders() < kRecursionLimit) [[likely]] {
      return false;
    }
    const bool referenced = m_cvar.m_references.load(std::memory_order_relaxed) != 0;
    return listeners.Holders() - (referenced ? 1 : 0) == kRecursionLimit &&
           !m_cvar.m_recursionReported.load(std::memory_order_relaxed);
  }

 private:
  static IUnknown* Kept(IUnknown* parent) {
    if (parent != nullptr) parent->AddRef();
    return parent;
  }

  CvarCore& m_cvar;
  IUnknown* const m_parent;

 public:
  // Taken before the listeners: a listener that is not among them was attached after the change.
  const NOTIFYTYPE what;
  CvarListeners::Snapshot listeners;
};

HRESULT CvarCore::SendPending(NOTIFYCLIENTS which) {
  Notification notification(*this);
  if (notification.TooDeep()) ReportRecursion();

  const NOTIFYTYPE what = notification.what;
  const CvarListeners::Snapshot& listeners = notification.listeners;
  IVorCvar* const source = GetIVorCvar();
  HRESULT result = S_OK;
  auto next = listeners.begin();
  const auto end =
      which == NOTIFY_FIRST_CLIENT_ONLY && next != listeners.end() ? next + 1 : listeners.end();
  while (next != end) {
    try {
      while (next != end) {
        IVorCvarEventSink* const listener = *next++;
        if (m_recursionReported.load(std::memory_order_relaxed)) {
          Combine(result, E_FAIL);
        } else if (platform::FaultFilterInstalled()) {
          GuardedListener call = {listener, source, what};
          Combine(result, platform::CallGuarded(&GuardedListener::Call, &call));
        } else {
          Combine(result, listener->OnCvarNotify(source, what));
        }
      }
    } catch (abi::__forced_unwind&) {
      throw;  // the thread is being cancelled
    } catch (...) {
      Combine(result, E_FAIL);
    }
  }
  return result;
}

int CvarCore::SuspendNotifications(int suspend) {
  if (suspend != 0) {
    m_suspensions.fetch_add(1, std::memory_order_relaxed);
    return 0;
  }
  const std::int32_t left = m_suspensions.fetch_sub(1, std::memory_order_relaxed) - 1;
  if (left == 0 && !m_pending.Empty()) {
    (void)NotifyClients(NOTIFY_ALL_CLIENTS, true);  // the operation always answers 0
  } else if (left < 0) {
    m_suspensions.store(0, std::memory_order_relaxed);  // more resumes than suspensions
  }
  return 0;
}

void CvarCore::SendLateUpdate() {
  if (!HasFlag(CVARFLAG_LATEUPDATE)) return;
  m_pending.Add(NOTIFY_LATEUPDATE);
  (void)NotifyClients(NOTIFY_FIRST_CLIENT_ONLY, false);  // a read goes on whatever listeners say
}

void CvarCore::ReportRecursion() {
  DeveloperEvent event;
  event.source = DeveloperEventSource(GetIVorCvar());
  event.message = DeveloperEventMessage(L"Recursive Notification", nullptr);
  event.severity = 4;
  event.category = L"system";
  event.cvar = GetIVorCvar();
  ReportDeveloperEvent(event);
  m_recursionReported.store(true, std::memory_order_relaxed);
}

HRESULT CvarCore::CoreGetEventSinkCount(long* count) const {
  if (count == nullptr) return E_POINTER;
  *count = static_cast<long>(m_listeners.Count(m_lock));
  return S_OK;
}

HRESULT CvarCore::CoreGetEventSink(long index, IUnknown** sink) const {
  if (sink == nullptr) return E_POINTER;
  CComPtr<IVorCvarEventSink> listener;
  listener.Attach(m_listeners.At(index, m_lock));
  if (listener == nullptr) return E_INVALIDARG;
  return listener->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(sink));
}

}  // namespace cvars
