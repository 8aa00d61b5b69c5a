#include "instrument/diagnostics/FaultReporter.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <system_error>

#include "instrument/diagnostics/InstrumentLog.h"

namespace cvars::diagnostics {
namespace {

constexpr ULONG kLargestDumpCount = 1000;
/// Longest wait for a report; a dump takes milliseconds, a hanging file system for ever.
constexpr int kReportTimeoutMs = 30'000;
constexpr int kForEver = -1;

// The one that the filter reports to.
std::atomic<FaultReporter*> g_reporter{nullptr};
thread_local bool t_isReporting = false;

}  // namespace

FaultReporter::Tokens::Tokens() {
  if (pipe2(m_ends, O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "faults cannot be reported");
  }
}

FaultReporter::Tokens::~Tokens() {
  close(m_ends[0]);
  End();
}

void FaultReporter::Tokens::Give() const noexcept {
  const char token = 1;
  (void)!write(m_ends[1], &token, 1);  // the taker's time limit ends a wait for a lost one
}

bool FaultReporter::Tokens::Take(int timeoutMs) const noexcept {
  pollfd waiting = {m_ends[0], POLLIN, 0};
  int ready = 0;
  do {
    ready = poll(&waiting, 1, timeoutMs);
  } while (ready < 0 && errno == EINTR);
  char token = 0;
  return ready > 0 && read(m_ends[0], &token, 1) == 1;
}

void FaultReporter::Tokens::End() noexcept {
  if (m_ends[1] >= 0) close(m_ends[1]);
  m_ends[1] = -1;
}

FaultReporter::FaultReporter() {
  std::error_code ignored;  // without the folder, dumps go to the current one
  std::filesystem::create_directories(platform::HostPath(L"C:\\Vortana\\Quillon\\Logs"), ignored);
  m_thread = std::thread([this] { ReportFaults(); });
  g_reporter.store(this);
  m_previous = SetUnhandledExceptionFilter(&Filter);
}

FaultReporter::~FaultReporter() {
  SetUnhandledExceptionFilter(m_previous);
  g_reporter.store(nullptr);
  m_requests.End();
  m_thread.join();
}

LONG FaultReporter::Filter(EXCEPTION_POINTERS* pointers) {
  FaultReporter* const reporter = g_reporter.load();
  // A fault of the reporting itself ends the process: there is nobody to report it.
  if (reporter == nullptr || t_isReporting) return EXCEPTION_CONTINUE_SEARCH;
  return reporter->ReportAndWait(pointers);
}

LONG FaultReporter::ReportAndWait(EXCEPTION_POINTERS* pointers) noexcept {
  const std::lock_guard turn(m_turn);
  if (m_hangs) return EXCEPTION_EXECUTE_HANDLER;
  m_fault = {*pointers->ExceptionRecord, *pointers->ContextRecord, GetCurrentThreadId()};
  m_requests.Give();
  m_hangs = !m_answers.Take(kReportTimeoutMs);
  return EXCEPTION_EXECUTE_HANDLER;
}

void FaultReporter::ReportFaults() {
  t_isReporting = true;
  while (m_requests.Take(kForEver)) {
    Report(m_fault);
    m_answers.Give();
  }
}

void FaultReporter::Report(Fault& fault) {
  MiniDumpWriter writer(L"VorMiniDump", L"%LOGS%", kLargestDumpCount,
                        MiniDumpWithProcessThreadData | MiniDumpWithIndirectlyReferencedMemory);
  EXCEPTION_POINTERS pointers = {&fault.record, &fault.context};
  CComBSTR path;
  // Without a dump the entry is written all the same.
  (void)writer.WriteDump(&pointers, &path, nullptr, 0, fault.thread);
  InstrumentLog().Faulted(fault.record.ExceptionCode,
                          reinterpret_cast<std::uintptr_t>(fault.record.ExceptionAddress),
                          path.View());
}

}  // namespace cvars::diagnostics
