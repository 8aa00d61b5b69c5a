#include "DeliveryWorker.h"

#include <cxxabi.h>
#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "NotificationQueue.h"

namespace cvars {

namespace {

constexpr ULONG kNoLimit = 0xFFFFFFFFu;

// While deliveries come in bursts the worker looks for the next one this often before it sleeps:
// going to sleep and being woken costs both threads more than the delivery itself.
constexpr unsigned kBurst = 8;
constexpr unsigned kLooksBeforeSleep = 2000;

void Pause() noexcept {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#endif
}

// Most contention is with a thread that holds the lock for some ten nanoseconds.
std::unique_lock<std::mutex> LockSoon(std::mutex& mutex) {
  constexpr unsigned kLongestPause = 16;
  constexpr unsigned kTries = 64;
  unsigned pause = 1;
  for (unsigned i = 0; i < kTries; ++i) {
    std::unique_lock<std::mutex> guard(mutex, std::try_to_lock);
    if (guard.owns_lock()) return guard;
    for (unsigned j = 0; j < pause; ++j) Pause();
    pause = std::min(pause * 2, kLongestPause);
  }
  return std::unique_lock<std::mutex>(mutex);
}

void Deliver(const Notification& notification) {
  try {
    (void)notification.listener->OnCvarNotify(notification.source, notification.what);
  } catch (abi::__forced_unwind&) {
    throw;
  } catch (...) {
    // Nobody waits for the outcome; the next listener is not to suffer from this one.
  }
}

// A thread that takes no signals: those of the process stay with the host's own threads.
template <class Function>
std::thread StartQuietThread(Function&& function) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP}) sigdelset(&all, fault);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  struct Restore {
    const sigset_t& mask;
    ~Restore() { pthread_sigmask(SIG_SETMASK, &mask, nullptr); }
  } const restore{before};
  std::thread thread(std::forward<Function>(function));
  pthread_setname_np(thread.native_handle(), "cvar-notifier");
  return thread;
}

}  // namespace

class DeliveryWorker::State {
 public:
  explicit State(std::size_t bound) : m_bound(bound) {}

  static void Start(const std::shared_ptr<State>& state) {
    std::lock_guard guard(state->m_lock);
    state->m_thread = StartQuietThread([state] { state->Run(); });
    state->m_threadId = state->m_thread.get_id();
  }

  bool OnWorkerThread() const noexcept {
    return m_threadId.load(std::memory_order_relaxed) == std::this_thread::get_id();
  }

  HRESULT Post(IVorCvar* source, NOTIFYTYPE what, IVorCvarEventSink* listener) {
    // Made and let go outside the lock, because references are the objects' own code; most posts of
    // a burst are merged and need none.
    Notification notification;
    bool wake = false;
    {
      std::unique_lock guard = LockSoon(m_lock);
      for (;;) {
        if (m_stopping) return E_UNEXPECTED;
        if (m_queue.Merge(source, listener, what)) return S_FALSE;
        if (notification.source == nullptr) {
          guard.unlock();
          notification = {source, listener, what};
          guard = LockSoon(m_lock);
          continue;
        }
        if (m_queue.Size() < m_bound || OnWorkerThread()) break;
        ++m_waitingForRoom;
        m_room.wait(guard);
        --m_waitingForRoom;
      }
      m_queue.Append(std::move(notification));
      m_appended.store(m_appended.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
      wake = std::exchange(m_asleep, false);
    }
    if (wake) m_work.notify_one();
    return S_OK;
  }

  HRESULT Drain(ULONG timeoutMs) {
    if (OnWorkerThread()) return E_UNEXPECTED;
    std::unique_lock guard = LockSoon(m_lock);
    const std::uint64_t target = m_appended.load(std::memory_order_relaxed);
    const auto over = [&] { return m_delivered >= target || m_ended; };
    ++m_draining;
    if (timeoutMs == kNoLimit) {
      m_progress.wait(guard, over);
    } else {
      m_progress.wait_until(
          guard, std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs), over);
    }
    --m_draining;
    return m_delivered >= target ? S_OK : S_FALSE;
  }

  // Gives the thread to end to whoever stops first; nobody else gets one.
  std::optional<std::thread> Stop() {
    NotificationQueue dropped;
    std::thread thread;
    {
      std::lock_guard guard(m_lock);
      if (std::exchange(m_stopping, true)) return std::nullopt;
      thread = std::move(m_thread);
      std::swap(dropped, m_queue);
    }
    m_work.notify_all();
    m_room.notify_all();
    return thread;
  }

  bool WaitForEnd(std::chrono::milliseconds longest) {
    std::unique_lock guard(m_lock);
    return m_progress.wait_until(guard, std::chrono::steady_clock::now() + longest,
                                 [this] { return m_ended; });
  }

 private:
  void Run() {
    std::unique_lock guard(m_lock);
    unsigned burst = 0;
    while (!m_stopping) {
      if (m_queue.Empty()) {
        if (burst >= kBurst) {
          const std::uint64_t seen = m_appended.load(std::memory_order_relaxed);
          guard.unlock();
          if (!LookForMore(seen)) burst = 0;
          guard = LockSoon(m_lock);
        } else {
          burst = 0;
          m_asleep = true;
          m_work.wait(guard, [this] { return !m_asleep || m_stopping; });
        }
        continue;
      }
      {
        const Notification next = m_queue.TakeFirst();
        if (m_waitingForRoom != 0) m_room.notify_all();
        guard.unlock();
        Deliver(next);
      }
      guard = LockSoon(m_lock);
      ++burst;
      ++m_delivered;
      if (m_draining != 0) m_progress.notify_all();
    }
    m_ended = true;
    m_progress.notify_all();
  }

  bool LookForMore(std::uint64_t seen) const noexcept {
    for (unsigned i = 0; i < kLooksBeforeSleep; ++i) {
      if (m_appended.load(std::memory_order_relaxed) != seen) return true;
      Pause();
    }
    return false;
  }

  const std::size_t m_bound;
  std::mutex m_lock;
  std::condition_variable m_work;      // for the worker
  std::condition_variable m_room;      // for posts beyond the bound
  std::condition_variable m_progress;  // for drains and for the end
  NotificationQueue m_queue;
  std::thread m_thread;
  std::atomic<std::thread::id> m_threadId{};
  std::atomic<std::uint64_t> m_appended{0};  // written under the lock, looked at without
  std::uint64_t m_delivered = 0;
  unsigned m_waitingForRoom = 0;
  unsigned m_draining = 0;
  bool m_asleep = false;
  bool m_stopping = false;
  bool m_ended = false;
};

// Every worker of the module, so that none runs on when the module goes.
class DeliveryWorker::LiveStates {
 public:
  ~LiveStates() {
    std::vector<std::shared_ptr<State>> states;
    std::vector<Leaving> leaving;
    {
      std::lock_guard guard(m_lock);
      states.swap(m_states);
      leaving.swap(m_leaving);
    }
    for (std::shared_ptr<State>& state : states) {
      if (std::optional<std::thread> thread = state->Stop()) {
        leaving.push_back({std::move(state), std::move(*thread)});
      }
    }
    // A listener may be the one that ends the process, or wait for what never comes any more.
    for (Leaving& one : leaving) {
      if (!one.state->OnWorkerThread() &&
          one.state->WaitForEnd(std::chrono::milliseconds(kExitGraceMs))) {
        one.thread.join();
      } else {
        one.thread.detach();
      }
    }
  }

  void Add(std::shared_ptr<State> state) {
    JoinEnded();
    std::lock_guard guard(m_lock);
    m_states.push_back(std::move(state));
  }

  void Remove(const std::shared_ptr<State>& state) {
    std::lock_guard guard(m_lock);
    std::erase(m_states, state);
  }

  // Keeps a thread that cannot be joined yet, because it is the one that asks.
  void Leave(std::shared_ptr<State> state, std::thread thread) {
    std::lock_guard guard(m_lock);
    m_leaving.push_back({std::move(state), std::move(thread)});
  }

 private:
  struct Leaving {
    std::shared_ptr<State> state;
    std::thread thread;
  };

  void JoinEnded() {
    std::vector<Leaving> ended;
    {
      std::lock_guard guard(m_lock);
      const auto middle =
          std::partition(m_leaving.begin(), m_leaving.end(), [](const Leaving& one) {
            return one.state->OnWorkerThread() ||
                   !one.state->WaitForEnd(std::chrono::milliseconds(0));
          });
      std::move(middle, m_leaving.end(), std::back_inserter(ended));
      m_leaving.erase(middle, m_leaving.end());
    }
    for (Leaving& one : ended) one.thread.join();
  }

  std::mutex m_lock;
  std::vector<std::shared_ptr<State>> m_states;
  std::vector<Leaving> m_leaving;
};

// Goes when the process ends or the module is unloaded, before the code that the workers run.
DeliveryWorker::LiveStates& DeliveryWorker::Live() {
  static LiveStates live;
  return live;
}

DeliveryWorker::DeliveryWorker(std::size_t queueBound)
    : m_state(std::make_shared<State>(queueBound)) {
  Live().Add(m_state);
  try {
    State::Start(m_state);
  } catch (...) {
    Live().Remove(m_state);
    throw;
  }
}

DeliveryWorker::~DeliveryWorker() { (void)Stop(); }

HRESULT DeliveryWorker::Post(IVorCvar* source, NOTIFYTYPE what, IVorCvarEventSink* listener) {
  return m_state->Post(source, what, listener);
}

HRESULT DeliveryWorker::Drain(ULONG timeoutMs) { return m_state->Drain(timeoutMs); }

HRESULT DeliveryWorker::Stop() {
  std::optional<std::thread> thread = m_state->Stop();
  if (!thread) return S_FALSE;
  if (m_state->OnWorkerThread()) {
    Live().Leave(m_state, std::move(*thread));
  } else {
    thread->join();
  }
  Live().Remove(m_state);
  return S_OK;
}

}  // namespace cvars
