#include "instrument/diagnostics/InstrumentLog.h"

#include <cstdint>
#include <cwchar>
#include <exception>
#include <iterator>

namespace cvars::diagnostics {
namespace {

constexpr std::size_t kLongestCommand = 200;

bool IsPrintable(wchar_t character) {
  const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
  const bool isBrokenByte = character >= 0xD800 && character < 0xE000;
  return !isControl && !isBrokenByte;
}

// Clients send what they like; the log shows it on one line and leaves terminals alone.
std::wstring Printable(std::string_view text) {
  std::wstring printable = platform::FromUtf8(text);
  if (printable.size() > kLongestCommand) printable = printable.substr(0, kLongestCommand) + L"...";
  for (wchar_t& character : printable) {
    if (!IsPrintable(character)) character = L'\uFFFD';
  }
  return printable;
}

}  // namespace

void InstrumentLog::Started(std::string_view address, int port) {
  Write(Type::kInformation, L"Started",
        L"listens on " + Printable(address) + L" port " + std::to_wstring(port));
}

void InstrumentLog::Stopped() { Write(Type::kInformation, L"Stopped", L""); }

void InstrumentLog::ClientConnected(std::string_view client) {
  Write(Type::kInformation, L"Client connected", Printable(client));
}

void InstrumentLog::ClientGone(const std::string& client) {
  m_refusals.erase(client);
  Write(Type::kInformation, L"Client gone", Printable(client));
}

void InstrumentLog::SettingRefused(const std::string& client, std::string_view command,
                                   std::string_view error) {
  const int number = ++m_refusals[client];
  if (number > kMostRefusals) return;
  Write(Type::kWarning, L"Setting refused",
        Printable(command) + L" of " + Printable(client) + L": " + Printable(error));
  if (number == kMostRefusals) {
    Write(Type::kWarning, L"Settings refused",
          L"no more are told of " + Printable(client) + L" until it is gone");
  }
}

void InstrumentLog::Faulted(unsigned int code, std::uintptr_t address, std::wstring_view dump) {
  wchar_t what[64];
  std::swprintf(what, std::size(what), L"0x%08x at 0x%llx", code,
                static_cast<unsigned long long>(address));
  Write(Type::kError, L"Fault",
        what + (dump.empty() ? L", no mini-dump" : L", mini-dump " + std::wstring(dump)));
}

void InstrumentLog::Write(Type type, const std::wstring& message,
                          const std::wstring& detail) noexcept {
  if (m_hasFailed) return;
  try {
    const std::wstring text = detail.empty() ? message : message + L": " + detail;
    m_hasFailed = FAILED(m_client.LogEvent(message.c_str(), text.c_str(), static_cast<long>(type),
                                           detail.c_str(), CComVariant()));
  } catch (const std::exception&) {
    m_hasFailed = true;
  }
}

}  // namespace cvars::diagnostics
