#pragma once

#include <mutex>
#include <thread>

#include "Cvars.h"

namespace cvars::diagnostics {

/// Writes a mini-dump and a log entry when the process faults, as long as it lives.
///
/// The process goes on when the fault came out of a listener; otherwise it ends as it would have.
/// Dump and entry are made by a thread that waits for faults, because the one that faulted may be
/// inside the allocator and has little stack. One per process.
class FaultReporter {
 public:
  /// Makes the folder of the dumps, starts the thread and installs the process's fault filter.
  /// @throws std::system_error  when the system has no descriptors or threads left
  FaultReporter();
  /// Puts back the filter that was installed before.
  ~FaultReporter();
  FaultReporter(const FaultReporter&) = delete;
  FaultReporter& operator=(const FaultReporter&) = delete;

 private:
  /// A fault that a thread waits to have reported.
  struct Fault {
    EXCEPTION_RECORD record;
    CONTEXT context;
    DWORD thread;
  };

  /// A pipe whose bytes are tokens.
  class Tokens {
   public:
    Tokens();
    ~Tokens();
    Tokens(const Tokens&) = delete;
    Tokens& operator=(const Tokens&) = delete;

    void Give() const noexcept;
    /// @return false when none comes in time, or none can come any more.
    bool Take(int timeoutMs) const noexcept;
    void End() noexcept;

   private:
    int m_ends[2];
  };

  static LONG Filter(EXCEPTION_POINTERS* pointers);
  LONG ReportAndWait(EXCEPTION_POINTERS* pointers) noexcept;
  void ReportFaults();
  static void Report(Fault& fault);

  std::mutex m_turn;     // threads that fault at once are reported one after the other
  Fault m_fault = {};    // of the thread that has its turn
  bool m_hangs = false;  // under m_turn; the report of a fault never ended
  Tokens m_requests;
  Tokens m_answers;
  LPTOP_LEVEL_EXCEPTION_FILTER m_previous = nullptr;
  std::thread m_thread;
};

}  // namespace cvars::diagnostics
