// "Vortana.TattlerClient": sends the probes of a program to the monitor of its home.

#include <errno.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "IVorTattlerClient.h"
#include "MonitorSocket.h"
#include "platform/ComponentModule.h"
#include "platform/Processes.h"
#include "platform/Utf8.h"

namespace cvars::components {
namespace {

std::uint64_t TimeNs(clockid_t clock) {
  timespec now = {};
  clock_gettime(clock, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000u +
         static_cast<std::uint64_t>(now.tv_nsec);
}

// The identifiers of this process: a digest of the name, so that a name has the same one in every
// program, or the next free one when two names share a digest.
class Identifiers {
 public:
  ULONG Of(const std::string& name) {
    const std::lock_guard lock(m_lock);
    const auto found = m_byName.find(name);
    if (found != m_byName.end()) return found->second;
    ULONG identifier = Digest(name);
    while (identifier == kNoProbe || !m_taken.insert(identifier).second) ++identifier;
    m_byName.emplace(name, identifier);
    return identifier;
  }

 private:
  static ULONG Digest(std::string_view name) {
    ULONG digest = 2166136261u;
    for (const char character : name) {
      digest = (digest ^ static_cast<unsigned char>(character)) * 16777619u;
    }
    return digest;
  }

  std::mutex m_lock;
  std::unordered_map<std::string, ULONG> m_byName;
  std::unordered_set<ULONG> m_taken;
};

Identifiers& ProcessIdentifiers() {
  static Identifiers identifiers;
  return identifiers;
}

class TattlerComponent final
    : public platform::Component<platform::Offers<IVorTattlerClient, IID_IVorTattlerClient>> {
 public:
  TattlerComponent() : m_connection(ConnectToMonitor()) {
    if (m_connection >= 0) Send(MakeMessage(MessageKind::kProgram), program_invocation_short_name);
  }

  HRESULT RegisterProbe(const wchar_t* qualifiedName, ULONG* identifier) override {
    if (identifier == nullptr) return E_POINTER;
    *identifier = kNoProbe;
    if (qualifiedName == nullptr || *qualifiedName == L'\0') return E_INVALIDARG;
    const std::string name = platform::ToUtf8(qualifiedName);
    if (name.size() > kLargestNameBytes) return E_INVALIDARG;
    Message message = MakeMessage(MessageKind::kName);
    message.identifier = ProcessIdentifiers().Of(name);
    if (!Send(message, name)) return E_FAIL;
    *identifier = message.identifier;
    return S_OK;
  }

  // A monitor that is busy or gone loses reports; the program never waits for it.
  HRESULT ReportProbe(ULONG identifier, ULONG firstValue, ULONG entryOrExit,
                      ULONG secondValue) override {
    Message message = MakeMessage(MessageKind::kReport);
    message.identifier = identifier;
    message.firstValue = firstValue;
    message.secondValue = secondValue;
    message.entryOrExit = entryOrExit;
    TellLost();
    if (Send(message, {})) return S_OK;
    m_lost.fetch_add(1, std::memory_order_relaxed);
    return S_FALSE;
  }

  HRESULT IsMonitoringEnabled(VARIANT_BOOL* enabled) override {
    if (enabled == nullptr) return E_POINTER;
    *enabled = m_connection >= 0 ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
  }

 private:
  ~TattlerComponent() override {
    if (m_connection >= 0) close(m_connection);
  }

  static Message MakeMessage(MessageKind kind) {
    Message message = {};
    message.kind = kind;
    message.thread = GetCurrentThreadId();
    message.realTimeNs = TimeNs(CLOCK_REALTIME);
    message.monotonicTimeNs = TimeNs(CLOCK_MONOTONIC);
    return message;
  }

  void TellLost() {
    const ULONG lost = m_lost.load(std::memory_order_relaxed);
    if (lost == 0) return;
    Message message = MakeMessage(MessageKind::kLost);
    message.firstValue = lost;
    if (Send(message, {})) m_lost.fetch_sub(lost, std::memory_order_relaxed);
  }

  bool Send(Message message, std::string_view name) const {
    iovec parts[] = {{&message, sizeof(message)}, {const_cast<char*>(name.data()), name.size()}};
    msghdr packet = {};
    packet.msg_iov = parts;
    packet.msg_iovlen = name.empty() ? 1 : 2;
    return m_connection >= 0 && sendmsg(m_connection, &packet, MSG_DONTWAIT | MSG_NOSIGNAL) >= 0;
  }

  int m_connection;
  std::atomic<ULONG> m_lost = 0;
};

}  // namespace
}  // namespace cvars::components

HRESULT DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  return cvars::platform::ClassObject<cvars::components::TattlerComponent>(CLSID_TattlerClient,
                                                                           clsid, iid, object);
}
