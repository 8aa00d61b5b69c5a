#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "Cvars.h"

namespace cvars::diagnostics {

/// Source name of the instrument's entries in the event log.
inline constexpr wchar_t kLogSource[] = L"CvarScope";

/// Writes what happens to the instrument into the event log.
///
/// An entry that cannot be written is lost, never the instrument: after the first that finds no log
/// no more is tried, so that the user is told once. Not thread-safe.
class InstrumentLog {
 public:
  /// Refused settings that are logged of one client; a flood must not push out older entries.
  static constexpr int kMostRefusals = 100;

  void Started(std::string_view address, int port);
  void Stopped();
  /// @param client  address and port, in UTF-8 as all texts.
  void ClientConnected(std::string_view client);
  void ClientGone(const std::string& client);
  /// @param command  as the client wrote it.
  /// @param error    number and text.
  void SettingRefused(const std::string& client, std::string_view command, std::string_view error);
  /// @param dump  path of the mini-dump; empty when there is none.
  void Faulted(unsigned int code, std::uintptr_t address, std::wstring_view dump);

 private:
  /// Type of an entry, as the event log numbers them.
  enum class Type : long { kError = 1, kWarning = 2, kInformation = 4 };

  void Write(Type type, const std::wstring& message, const std::wstring& detail) noexcept;

  EventLogClient m_client{kLogSource};
  bool m_hasFailed = false;
  std::unordered_map<std::string, int> m_refusals;  // by client
};

}  // namespace cvars::diagnostics
