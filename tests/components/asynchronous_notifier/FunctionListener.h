#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <utility>

#include "CComPtr.h"
#include "IVorCvar.h"
#include "IVorCvarEventSink.h"
#include "platform/ComponentModule.h"

namespace cvars::test {

/// Longest time, in milliseconds, that a test waits for what must happen.
inline constexpr unsigned kDeadlineMs = 20000;

/// A listener that runs a function; counts how many of its kind live.
class FunctionListener final
    : public platform::Component<platform::Offers<IVorCvarEventSink, IID_IVorCvarEventSink>> {
 public:
  using Function = std::function<HRESULT(IVorCvar* source, NOTIFYTYPE what)>;

  static CComPtr<FunctionListener> Make(Function function) {
    CComPtr<FunctionListener> listener;
    listener.Attach(new FunctionListener(std::move(function)));
    return listener;
  }

  static int Live() { return s_live.load(); }

  HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) override {
    return m_function(source, what);
  }

 private:
  explicit FunctionListener(Function function) : m_function(std::move(function)) {
    s_live.fetch_add(1);
  }
  ~FunctionListener() { s_live.fetch_sub(1); }

  static inline std::atomic<int> s_live{0};
  const Function m_function;
};

/// Opens once; threads wait for it up to the deadline.
class Gate {
 public:
  void Open() {
    {
      std::lock_guard guard(m_lock);
      m_open = true;
    }
    m_opened.notify_all();
  }
  /// @return false when the deadline passed first.
  bool Wait() {
    std::unique_lock guard(m_lock);
    return m_opened.wait_for(guard, std::chrono::milliseconds(kDeadlineMs),
                             [this] { return m_open; });
  }

 private:
  std::mutex m_lock;
  std::condition_variable m_opened;
  bool m_open = false;
};

}  // namespace cvars::test
