// Replication between double cvars: how much a replica costs its source's writer, how many changes
// an asynchronous connection brings over, and how long each takes. The peer of the last two hands
// functions to a thread through a locked queue, which is what one would write without a notifier.
#include <benchmark/benchmark.h>

#include <deque>

#include "Cvars.h"
#include "benchmarks/Cases.h"

namespace {

using namespace cvars::benchmarks;
using Double = CComPtr<CvarObject<CCvarDouble>>;

constexpr NOTIFYTYPE kEverything = static_cast<NOTIFYTYPE>(0xFFFFFFFFu);

Double MakeCvar(double maximum = kMax, double grain = kGrain) {
  Double cvar = CvarObject<CCvarDouble>::Create();
  cvar->Initialize(L"Timebase", 1.0, kMin, maximum, grain, L"S", CVARFLAGS(0), L"", 0,
                   CVARREPLICATIONFLAGS(0x202));
  return cvar;
}

double Requested(const Double& cvar) {
  double value = 0;
  (void)cvar->GetRequestedValue(&value);
  return value;
}

void Follow(const Double& replica, const Double& source, CVARREPLICATIONCONNECTIONATTRIBUTES manner,
            benchmark::State& state) {
  const HRESULT started = replica->StartCvarReplication(source, manner, REPLICATIONCONNECTION_NONE,
                                                        REPLICATIONCOPY_FROM_OTHER, kEverything);
  if (FAILED(started)) state.SkipWithError("the replication does not start");
}

// One iteration = one change of the source, which has reached every replica when it returns.
void SetAndFollow(benchmark::State& state, const Double& source,
                  const std::vector<Double>& replicas) {
  const auto& values = Values();
  std::size_t i = 0;
  for (auto _ : state) {
    (void)source->SetRequestedValue(values[i & 1023]);
    ++i;
  }
  for (const Double& replica : replicas) {
    if (Requested(replica) != Requested(source)) state.SkipWithError("a replica does not follow");
  }
  if (replicas.empty()) return;
  state.counters["per_replica"] = benchmark::Counter(
      static_cast<double>(state.iterations()) * static_cast<double>(replicas.size()),
      benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void Alone(benchmark::State& state) { SetAndFollow(state, MakeCvar(), {}); }

void Pair(benchmark::State& state) {
  const Double source = MakeCvar();
  const std::vector<Double> replicas{MakeCvar()};
  Follow(replicas[0], source, REPLICATIONCONNECTION_SYNCHRONOUS, state);
  SetAndFollow(state, source, replicas);
}

void TwoWayPair(benchmark::State& state) {
  const Double source = MakeCvar();
  const std::vector<Double> replicas{MakeCvar()};
  (void)replicas[0]->StartCvarReplication(source, true, 0x11, kEverything);
  SetAndFollow(state, source, replicas);
}

void Chain(benchmark::State& state) {
  const Double source = MakeCvar();
  std::vector<Double> replicas;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    replicas.push_back(MakeCvar());
    Follow(replicas.back(), i == 0 ? source : replicas[static_cast<std::size_t>(i) - 1],
           REPLICATIONCONNECTION_SYNCHRONOUS, state);
  }
  SetAndFollow(state, source, replicas);
  // From the end, so that the members do not go one inside the other.
  while (!replicas.empty()) replicas.pop_back();
}

void Star(benchmark::State& state) {
  const Double source = MakeCvar();
  std::vector<Double> replicas;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    replicas.push_back(MakeCvar());
    Follow(replicas.back(), source, REPLICATIONCONNECTION_SYNCHRONOUS, state);
  }
  SetAndFollow(state, source, replicas);
}

/// Listens to a replica: counts its changes, and sees that each is newer than the one before.
class Follower final : public IVorCvarEventSink {
 public:
  HRESULT QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IVorCvarEventSink) return E_NOINTERFACE;
    *object = static_cast<IVorCvarEventSink*>(this);
    return S_OK;
  }
  ULONG AddRef() override { return 1; }  // owned by the benchmark
  ULONG Release() override { return 1; }
  HRESULT OnCvarNotify(IVorCvar*, NOTIFYTYPE) override {
    const double number = Requested(m_replica);
    if (number <= m_newest.load(std::memory_order_relaxed)) m_inOrder = false;
    ++m_copies;
    m_newest.store(number, std::memory_order_release);
    return S_OK;
  }

  void Attach(const Double& replica) {
    m_replica = replica;
    (void)m_replica->AttachCvarEventSink(this);
  }
  void Detach() { (void)m_replica->DetachCvarEventSink(this); }

  void WaitFor(double number) const {
    while (m_newest.load(std::memory_order_acquire) != number) std::this_thread::yield();
  }
  // For a thread that has waited for the last number.
  std::uint64_t Copies() const { return m_copies; }
  bool InOrder() const { return m_inOrder; }

 private:
  Double m_replica;
  std::atomic<double> m_newest{0};
  std::uint64_t m_copies = 0;
  bool m_inOrder = true;
};

constexpr std::int64_t kChanges = 200000;

// One iteration = range(1) changes, spread over range(0) sources with a replica each, until every
// replica has followed. Each change is a higher number. Every change arrives, alone or together
// with later ones of its source; where each source changes once, every one has a copy of its own.
void AsynchronousChanges(benchmark::State& state) {
  const auto pairs = static_cast<std::size_t>(state.range(0));
  const auto changes = static_cast<std::size_t>(state.range(1));
  constexpr double kHighest = 1e12;
  std::vector<Double> sources;
  std::vector<Double> replicas;
  std::vector<Follower> followers(pairs);
  for (std::size_t i = 0; i < pairs; ++i) {
    sources.push_back(MakeCvar(kHighest, 1));
    replicas.push_back(MakeCvar(kHighest, 1));
    Follow(replicas[i], sources[i], REPLICATIONCONNECTION_ASYNCHRONOUS, state);
    followers[i].Attach(replicas[i]);
  }
  double number = 1;  // of a new cvar
  for (auto _ : state) {
    const auto start = Clock::now();
    for (std::size_t i = 0; i < changes; ++i) (void)sources[i % pairs]->SetRequestedValue(++number);
    // The last one first: when it has followed, most others have.
    for (std::size_t i = pairs; i-- > 0;) followers[i].WaitFor(Requested(sources[i]));
    state.SetIterationTime(Seconds(start, Clock::now()));
  }
  const auto all = static_cast<double>(state.iterations()) * static_cast<double>(changes);
  std::uint64_t copies = 0;
  for (Follower& follower : followers) {
    if (!follower.InOrder()) state.SkipWithError("a replica went back to an older number");
    copies += follower.Copies();
    follower.Detach();
  }
  if (changes == pairs && static_cast<double>(copies) != all) {
    state.SkipWithError("not every change has a copy of its own");
  }
  state.counters["changes_per_s"] = benchmark::Counter(all, benchmark::Counter::kIsRate);
  state.counters["copies_per_s"] =
      benchmark::Counter(static_cast<double>(copies), benchmark::Counter::kIsRate);
}

/// Runs functions on a thread of its own, in the order they were handed over.
class FunctionQueue {
 public:
  FunctionQueue() : m_thread([this] { Run(); }) {}
  ~FunctionQueue() {
    Post(nullptr);
    m_thread.join();
  }
  void Post(std::function<void()> function) {
    {
      const std::lock_guard guard(m_lock);
      m_functions.push_back(std::move(function));
    }
    m_ready.notify_one();
  }

 private:
  void Run() {
    for (;;) {
      std::unique_lock guard(m_lock);
      m_ready.wait(guard, [this] { return !m_functions.empty(); });
      const std::function<void()> function = std::move(m_functions.front());
      m_functions.pop_front();
      guard.unlock();
      if (!function) return;
      function();
    }
  }

  std::mutex m_lock;
  std::condition_variable m_ready;
  std::deque<std::function<void()>> m_functions;
  std::thread m_thread;
};

void FunctionQueueChanges(benchmark::State& state) {
  const auto& values = Values();
  FunctionQueue queue;
  std::atomic<double> replica{0};
  std::atomic<std::uint64_t> done{0};
  for (auto _ : state) {
    done = 0;
    const auto start = Clock::now();
    for (std::int64_t i = 0; i < kChanges; ++i) {
      const double value = values[static_cast<std::size_t>(i) & 1023];
      queue.Post([&replica, &done, value] {
        replica.store(value, std::memory_order_relaxed);
        done.fetch_add(1, std::memory_order_release);
      });
    }
    while (done.load(std::memory_order_acquire) != std::uint64_t{kChanges})
      std::this_thread::yield();
    state.SetIterationTime(Seconds(start, Clock::now()));
  }
  state.counters["changes_per_s"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * static_cast<double>(kChanges),
                         benchmark::Counter::kIsRate);
}

// The times of single hand-overs, in microseconds, as percentiles.
template <class HandOver>
void Latencies(benchmark::State& state, HandOver handOver) {
  std::vector<double> times;
  for (auto _ : state) {
    // The other thread has gone to sleep by then.
    const auto quiet = Clock::now();
    while (Seconds(quiet, Clock::now()) < 300e-6) std::this_thread::yield();
    const auto start = Clock::now();
    handOver();
    times.push_back(Seconds(start, Clock::now()) * 1e6);
    state.SetIterationTime(times.back() * 1e-6);
  }
  std::sort(times.begin(), times.end());
  const auto at = [&times](double part) {
    return times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))];
  };
  state.counters["us_50%"] = at(0.5);
  state.counters["us_90%"] = at(0.9);
  state.counters["us_99%"] = at(0.99);
  state.counters["us_max"] = times.back();
}

void AsynchronousLatency(benchmark::State& state) {
  const Double source = MakeCvar();
  const Double replica = MakeCvar();
  Follow(replica, source, REPLICATIONCONNECTION_ASYNCHRONOUS, state);
  const auto& values = Values();
  std::size_t i = 0;
  Latencies(state, [&] {
    const double value = values[i++ & 1023];
    (void)source->SetRequestedValue(value);
    while (Requested(replica) != value) {
    }
  });
}

void FunctionQueueLatency(benchmark::State& state) {
  FunctionQueue queue;
  std::atomic<bool> done{false};
  Latencies(state, [&] {
    done.store(false, std::memory_order_relaxed);
    queue.Post([&done] { done.store(true, std::memory_order_release); });
    while (!done.load(std::memory_order_acquire)) {
    }
  });
}

void StartAndStop(benchmark::State& state) {
  const Double source = MakeCvar();
  const Double replica = MakeCvar();
  for (auto _ : state) {
    Follow(replica, source, REPLICATIONCONNECTION_SYNCHRONOUS, state);
    (void)replica->StopCvarReplication(source);
  }
}

}  // namespace

int main(int argc, char** argv) {
  using benchmark::RegisterBenchmark;
  RegisterBenchmark("replicate/alone", Alone);
  RegisterBenchmark("replicate/pair", Pair);
  RegisterBenchmark("replicate/two_way_pair", TwoWayPair);
  RegisterBenchmark("replicate/chain", Chain)->Arg(10);
  RegisterBenchmark("replicate/star", Star)->Arg(100);
  RegisterBenchmark("replicate/start_stop", StartAndStop);
  RegisterBenchmark("replicate/asynchronous", AsynchronousChanges)
      ->Args({1, kChanges})
      ->Args({100, kChanges})
      ->Args({1000, 1000})
      ->Args({50000, 50000})
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
  RegisterBenchmark("replicate/function_queue", FunctionQueueChanges)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
  RegisterBenchmark("latency/asynchronous", AsynchronousLatency)
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond)
      ->Iterations(2000);
  RegisterBenchmark("latency/function_queue", FunctionQueueLatency)
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond)
      ->Iterations(2000);
  return RunBenchmarks(argc, argv);
}
