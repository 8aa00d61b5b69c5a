#include "TattlerClient.h"

#include "DeveloperEvents.h"
#include "platform/Components.h"
#include "platform/NamedMutex.h"

namespace cvars {
namespace {

constexpr wchar_t kMonitorMutex[] = L"Vortana Tattler Enabled";

bool MonitorIsThere() {
  const HANDLE mutex = OpenMutex(MUTEX_ALL_ACCESS, 0, kMonitorMutex);
  if (mutex == nullptr) return false;
  CloseHandle(mutex);
  return true;
}

// The component when it wants reports, else null.
CComPtr<IVorTattlerClient> FindComponent() {
  CComPtr<IVorTattlerClient> component;
  if (!MonitorIsThere() ||
      FAILED(platform::CreateComponent(L"Vortana.TattlerClient", IID_IVorTattlerClient,
                                       reinterpret_cast<void**>(&component))) ||
      component == nullptr) {
    return nullptr;
  }
  VARIANT_BOOL enabled = VARIANT_FALSE;
  const HRESULT asked = component->IsMonitoringEnabled(&enabled);
  if (FAILED(asked) || enabled == VARIANT_FALSE) return nullptr;
  return component;
}

}  // namespace

TattlerClient::TattlerClient() = default;
TattlerClient::~TattlerClient() = default;

void TattlerClient::Initialise() {
  // Set first: what the component's creation runs may hold probes itself.
  m_initialised.store(true, std::memory_order_relaxed);
  CComPtr<IVorTattlerClient> component = FindComponent();
  if (component == nullptr) return;
  const std::lock_guard lock(m_lock);
  // Two first uses at once may both have made one.
  if (m_enabled.load(std::memory_order_relaxed)) return;
  m_component = component;
  m_enabled.store(true, std::memory_order_release);
}

ULONG TattlerClient::Identifier(const wchar_t* name, IUnknown* parent) {
  if (!IsEnabled()) return kNoProbe;
  std::wstring key = name != nullptr ? name : L"";
  {
    const std::lock_guard lock(m_lock);
    const auto found = m_identifiers.find(key);
    if (found != m_identifiers.end()) return found->second;
  }
  std::wstring qualifiedName = BagName(parent);
  if (!qualifiedName.empty()) qualifiedName += L"::";
  qualifiedName += key;
  ULONG identifier = kNoProbe;
  if (FAILED(m_component->RegisterProbe(qualifiedName.c_str(), &identifier))) return kNoProbe;
  if (identifier == kNoProbe) return kNoProbe;
  const std::lock_guard lock(m_lock);
  return m_identifiers.emplace(std::move(key), identifier).first->second;
}

HRESULT TattlerClient::RegisterName(const wchar_t* qualifiedName, ULONG* identifier) {
  if (identifier == nullptr) return E_POINTER;
  *identifier = kNoProbe;
  if (!IsEnabled()) return OLE_E_BLANK;
  return m_component->RegisterProbe(qualifiedName != nullptr ? qualifiedName : L"", identifier);
}

void TattlerClient::Report(ULONG identifier, ULONG firstValue, ULONG entryOrExit,
                           ULONG secondValue) {
  // A report that fails is lost: no probe fails its caller.
  (void)m_component->ReportProbe(identifier, firstValue, entryOrExit, secondValue);
}

void TattlerProbe::Enter(TattlerClient& client, const wchar_t* name, ULONG firstValue,
                         ULONG secondValue, IUnknown* parent) {
  m_client = &client;
  m_identifier = client.Identifier(name, parent);
  m_firstValue = firstValue;
  m_secondValue = secondValue;
  client.Report(m_identifier, m_firstValue, kProbeEntry, m_secondValue);
}

void TattlerProbe::Leave() noexcept {
  m_client->Report(m_identifier, m_firstValue, kProbeExit, m_secondValue);
}

}  // namespace cvars
