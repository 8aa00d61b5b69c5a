#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <unordered_map>

#include "CComPtr.h"
#include "Export.h"
#include "IVorTattlerClient.h"

namespace cvars {

/// Knows whether probes are wanted, and their identifiers.
///
/// Whether the monitoring tool is there is found out once, at the first use: a client made before
/// the tool never reports. From then on a probe without the tool costs one test.
class CVARS_API TattlerClient {
 public:
  TattlerClient();
  ~TattlerClient();
  TattlerClient(const TattlerClient&) = delete;
  TattlerClient& operator=(const TattlerClient&) = delete;

  /// Children of the same name of two parents share the identifier of the first that was asked
  /// for: it is kept under the name alone.
  ///
  /// @param name    borrowed; null reads as empty.
  /// @param parent  may be null; a bag gives its name as a prefix.
  /// @return the identifier, kNoProbe when monitoring is off or the name was refused.
  ULONG Identifier(const wchar_t* name, IUnknown* parent);

  /// @retval E_POINTER    identifier is null
  /// @retval OLE_E_BLANK  monitoring is off; the identifier is kNoProbe
  /// @return otherwise what the component answered
  HRESULT RegisterName(const wchar_t* qualifiedName, ULONG* identifier);

  /// Says whether probes are reported; finds it out at the first call.
  bool IsEnabled() {
    if (!m_initialised.load(std::memory_order_relaxed)) Initialise();
    return m_enabled.load(std::memory_order_acquire);
  }

  /// Hands a report to the component. Only while IsEnabled().
  void Report(ULONG identifier, ULONG firstValue, ULONG entryOrExit, ULONG secondValue);

 private:
  void Initialise();

  std::atomic<bool> m_enabled = false;
  std::atomic<bool> m_initialised = false;
  // Stored before m_enabled is set and never changed afterwards.
  CComPtr<IVorTattlerClient> m_component;
  std::mutex m_lock;
  std::unordered_map<std::wstring, ULONG> m_identifiers;  // under m_lock
};

/// Reports the entry when it is made and the exit when it goes.
class CVARS_API TattlerProbe {
 public:
  TattlerProbe(TattlerClient& client, const wchar_t* name, ULONG firstValue, ULONG secondValue,
               IUnknown* parent) {
    if (client.IsEnabled()) Enter(client, name, firstValue, secondValue, parent);
  }
  ~TattlerProbe() {
    if (m_client != nullptr) Leave();
  }
  TattlerProbe(const TattlerProbe&) = delete;
  TattlerProbe& operator=(const TattlerProbe&) = delete;

 private:
  void Enter(TattlerClient& client, const wchar_t* name, ULONG firstValue, ULONG secondValue,
             IUnknown* parent);
  void Leave() noexcept;

  ULONG m_identifier = kNoProbe;
  TattlerClient* m_client = nullptr;  // null while monitoring is off
  ULONG m_firstValue = 0;
  ULONG m_secondValue = 0;
};

}  // namespace cvars
