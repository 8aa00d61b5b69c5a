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
#include <span>
#include <thread>
#include <utility>
#include <vector>

#include "NotificationQueue.h"

namespace cvars {

namespace {

constexpr ULONG kNoLimit = 0xFFFFFFFFu;

// How long the worker looks for the next post before it sleeps. Being woken takes about as long,
// and keeps the poster from its work meanwhile.
constexpr std::chrono::microseconds kLookBeforeSleep{40};

// A queue that is shorter than this is left alone for a moment before the worker looks at it again.
// Every look takes from the posters what they write with each post; so they post sooner, and the
// worker finds several posts at once, or merged.
constexpr std::uint64_t kFew = 8;
constexpr std::chrono::microseconds kMoment{2};

constexpr std::size_t kCacheLine = 64;

void Pause() noexcept {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#endif
}

void LetPostsGather() {
  const auto end = std::chrono::steady_clock::now() + kMoment;
  do {
    std::this_thread::yield();  // the poster may wait for this very processor
  } while (std::chrono::steady_clock::now() < end);
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
        if (HasRoom() || OnWorkerThread()) break;
        WaitForRoom(guard);
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
    std::thread thread;
    {
      std::lock_guard guard(m_lock);
      if (m_stopping.exchange(true)) return std::nullopt;
      thread = std::move(m_thread);
    }
    m_work.notify_all();
    m_room.notify_all();
    m_queue.LetGo();  // nobody appends or removes any more
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
    bool lookedInVain = false;
    while (!m_stopping) {
      m_queue.RemoveTaken();
      if (!m_queue.Empty()) {
        DeliverOldest(guard);
        lookedInVain = false;
      } else if (!lookedInVain) {
        lookedInVain = !LookForMore(guard);
      } else {
        m_asleep = true;
        m_work.wait(guard, [this] { return !m_asleep || m_stopping; });
        lookedInVain = false;
      }
    }
    m_ended = true;
    m_progress.notify_all();
  }

  // Delivers several to one locking, and leaves the lock meanwhile. But whoever drains is told of
  // each, so that a drain does not wait for what is queued later.
  void DeliverOldest(std::unique_lock<std::mutex>& guard) {
    std::span<NotificationQueue::Place> places = m_queue.Oldest();
    if (m_draining != 0) places = places.first(1);
    const bool few = m_queue.Size() < kFew;
    guard.unlock();
    std::uint64_t delivered = 0;
    for (NotificationQueue::Place& place : places) {
      if (m_stopping) break;
      const Notification next = place.Take();
      if (next.source == nullptr) break;  // the stop has dropped it
      m_taken.store(m_taken.load(std::memory_order_relaxed) + 1);
      if (m_waitingForRoom != 0) TellOfRoom();
      Deliver(next);
      ++delivered;
    }
    if (few && m_draining == 0) LetPostsGather();
    guard = LockSoon(m_lock);
    m_delivered += delivered;
    if (m_draining != 0) m_progress.notify_all();
  }

  // Leaves the lock meanwhile. @return false when it has taken long and nothing came
  bool LookForMore(std::unique_lock<std::mutex>& guard) {
    const std::uint64_t seen = m_appended.load(std::memory_order_relaxed);
    const auto more = [&] { return m_appended.load(std::memory_order_relaxed) != seen; };
    guard.unlock();
    const auto end = std::chrono::steady_clock::now() + kLookBeforeSleep;
    do {
      LetPostsGather();
    } while (!more() && !m_stopping && std::chrono::steady_clock::now() < end);
    guard = LockSoon(m_lock);
    return more();
  }

  // The worker's own count is looked at only where the older one does not tell.
  bool HasRoom() const {
    const std::uint64_t appended = m_appended.load(std::memory_order_relaxed);
    return appended - m_delivered < m_bound || appended - m_taken < m_bound;
  }

  void WaitForRoom(std::unique_lock<std::mutex>& guard) {
    ++m_waitingForRoom;
    // The worker counts what it takes before it looks who waits: what is not seen here it tells of.
    if (!HasRoom()) m_room.wait(guard);
    --m_waitingForRoom;
  }

  void TellOfRoom() {
    { const std::lock_guard guard(m_lock); }  // whoever has looked for room waits by then
    m_room.notify_all();
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
  bool m_asleep = false;
  bool m_ended = false;
  // What the worker looks at for every delivery, apart from what every post writes. All but its own
  // count are written under the lock.
  alignas(kCacheLine) std::atomic<std::uint64_t> m_taken{0};
  std::atomic<unsigned> m_waitingForRoom{0};
  std::atomic<unsigned> m_draining{0};
  std::atomic<bool> m_stopping{false};
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
