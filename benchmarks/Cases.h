// Cases of the benchmarks, shared by the cvars and the peers.
// Every peer file defines its own static functions and registers them under the
// same case names, so that the JSON of different peers can be joined on the name.
#pragma once

#include <benchmark/benchmark.h>

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace cvars::benchmarks {

using Clock = std::chrono::steady_clock;

// The range of every test object: [0, 10], grain 0.001.
constexpr double kMin = 0.0, kMax = 10.0, kGrain = 0.001;

// 1024 values inside the range, each different from its neighbours after rounding.
inline const std::array<double, 1024>& Values() {
  static const std::array<double, 1024> t = [] {
    std::array<double, 1024> v{};
    uint64_t x = 88172645463325252ull;
    double last = -1;
    for (auto& d : v) {
      do {
        x ^= x << 13;
        x ^= x >> 7;
        x ^= x << 17;
        d = double(x % 9999 + 1) / 1000.0 + 0.0002;
      } while (std::fabs(d - last) < 0.002);
      last = d;
    }
    return v;
  }();
  return t;
}

inline double Fit(double v) {  // clamp and round, as every cvar does
  double c = v < kMin ? kMin : v > kMax ? kMax : v;
  double r = std::floor(c / kGrain + 0.5) * kGrain;
  return std::isfinite(r) ? r : c;
}

// glibc and libstdc++ take shortcuts (plain increments, no lock prefix in malloc)
// while a process has never had a second thread. Instrument software always has
// more, so one parked thread is kept for the whole run.
class Parked {
 public:
  Parked()
      : t_([this] {
          std::unique_lock<std::mutex> l(m_);
          c_.wait(l, [this] { return stop_; });
        }) {}
  ~Parked() {
    {
      std::lock_guard<std::mutex> l(m_);
      stop_ = true;
    }
    c_.notify_all();
    t_.join();
  }

 private:
  std::mutex m_;
  std::condition_variable c_;
  bool stop_ = false;
  std::thread t_;
};

inline double HeapBytes() {  // live bytes of all arenas, chunk headers included
  struct mallinfo2 m = mallinfo2();
  return double(m.uordblks) + double(m.hblkhd);
}
inline double ResidentBytes() {
  long a = 0, b = 0;
  if (FILE* f = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(f, "%ld %ld", &a, &b) != 2) b = 0;
    std::fclose(f);
  }
  return double(b) * double(sysconf(_SC_PAGESIZE));
}

inline double Seconds(Clock::time_point a, Clock::time_point b) {
  return std::chrono::duration<double>(b - a).count();
}

// ---- generic cases -------------------------------------------------------

// set(o, v) must change the value; *calls counts listener calls.
template <class O, class Set>
void SetChanged(benchmark::State& s, O& o, Set set, const uint64_t* calls, uint64_t listeners) {
  const auto& v = Values();
  set(o, v[1023]);
  uint64_t before = calls ? *calls : 0;
  size_t i = 0;
  for (auto _ : s) {
    set(o, v[i & 1023]);
    ++i;
  }
  benchmark::ClobberMemory();
  if (calls && *calls - before != listeners * uint64_t(s.iterations()))
    s.SkipWithError("listener calls do not add up");
}

template <class O, class Set>
void SetSame(benchmark::State& s, O& o, Set set, const uint64_t* calls) {
  double v = Values()[7];
  set(o, v);
  uint64_t before = calls ? *calls : 0;
  for (auto _ : s) {
    benchmark::DoNotOptimize(v);
    set(o, v);
  }
  benchmark::ClobberMemory();
  if (calls && *calls != before) s.SkipWithError("listener called without a change");
}

// The same, for peers which tell listeners even when nothing changed.
template <class O, class Set>
void SetSameUnfiltered(benchmark::State& s, O& o, Set set) {
  double v = Values()[7];
  for (auto _ : s) {
    benchmark::DoNotOptimize(v);
    set(o, v);
  }
}

// One iteration = a batch of 10 changes and one listener call.
template <class O, class Begin, class Set, class End>
void Batch10(benchmark::State& s, O& o, Begin b, Set set, End e, const uint64_t* calls) {
  const auto& v = Values();
  uint64_t before = calls ? *calls : 0;
  size_t i = 0;
  for (auto _ : s) {
    b(o);
    for (int k = 0; k < 10; ++k) {
      set(o, v[i & 1023]);
      ++i;
    }
    e(o);
  }
  if (calls && *calls - before != uint64_t(s.iterations()))
    s.SkipWithError("batch: listener calls do not add up");
}

// Live heap bytes and resident bytes per object, and time to make / set once each /
// destroy n objects. One iteration = all n objects; the time reported is "make".
template <class Make, class Set, class Kill>
void Scale(benchmark::State& s, Make make, Set set, Kill kill) {
  using P = decltype(make(size_t(0)));
  const size_t n = size_t(s.range(0));
  double hb = 0, rb = 0, t_set = 0, t_kill = 0, t_make = 0;
  const auto& v = Values();
  for (auto _ : s) {
    std::vector<P> all(n);
    for (auto& p : all) benchmark::DoNotOptimize(p);
    malloc_trim(0);
    double h0 = HeapBytes(), r0 = ResidentBytes();
    auto t0 = Clock::now();
    for (size_t i = 0; i < n; ++i) all[i] = make(i);
    auto t1 = Clock::now();
    // allocators keep freed blocks, so only the first round grows the heap by the full amount
    hb = std::max(hb, HeapBytes() - h0);
    rb = std::max(rb, ResidentBytes() - r0);
    auto t2 = Clock::now();
    for (size_t i = 0; i < n; ++i) set(all[i], v[i & 1023]);
    auto t3 = Clock::now();
    for (size_t i = 0; i < n; ++i) kill(all[i]);
    auto t4 = Clock::now();
    s.SetIterationTime(Seconds(t0, t1));
    t_make += Seconds(t0, t1);
    t_set += Seconds(t2, t3);
    t_kill += Seconds(t3, t4);
  }
  double k = 1e9 / double(n) / double(s.iterations());
  s.counters["bytes_per_obj"] = hb / double(n);
  s.counters["rss_per_obj"] = rb / double(n);
  s.counters["make_ns"] = t_make * k;
  s.counters["first_set_ns"] = t_set * k;
  s.counters["kill_ns"] = t_kill * k;
}

// Registers scale/<variant>/N for N = 1e3..1e6; small N repeat more often.
template <class F>
void RegisterScale(const std::string& name, F f, int64_t max_n = 1000000) {
  for (int64_t n = 1000; n <= max_n; n *= 10)
    benchmark::RegisterBenchmark(name.c_str(), f)
        ->Arg(n)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(n >= 1000000 ? 1 : 200000 / n);
}

// 1M sets in all, from range(0) threads, each on its own object (made on its thread,
// with one listener). One iteration = the whole million; the time is wall time
// from the common start to the last end.
template <class Make, class Set, class Kill>
void Threads1M(benchmark::State& s, Make make, Set set, Kill kill) {
  const int nt = int(s.range(0));
  const size_t per = 1000000 / size_t(nt);
  for (auto _ : s) {
    std::atomic<int> ready{0};
    std::atomic<bool> go{false};
    std::vector<Clock::time_point> end((size_t(nt)));
    std::vector<std::thread> ts;
    for (int t = 0; t < nt; ++t)
      ts.emplace_back([&, t] {
        auto o = make();
        const auto& v = Values();
        for (size_t i = 0; i < 1024; ++i) set(o, v[i & 1023]);
        ready.fetch_add(1);
        while (!go.load(std::memory_order_acquire)) {
        }
        for (size_t i = 0; i < per; ++i) set(o, v[i & 1023]);
        end[size_t(t)] = Clock::now();
        kill(o);
      });
    while (ready.load() != nt) std::this_thread::yield();
    auto t0 = Clock::now();
    go.store(true, std::memory_order_release);
    for (auto& t : ts) t.join();
    auto last = t0;
    for (auto& e : end)
      if (e > last) last = e;
    s.SetIterationTime(Seconds(t0, last));
  }
  s.counters["Msets_per_s"] =
      benchmark::Counter(double(s.iterations()), benchmark::Counter::kIsRate);
}

template <class F>
void RegisterThreads(const std::string& name, F f) {
  for (int n : {1, 2, 4})
    benchmark::RegisterBenchmark(name.c_str(), f)
        ->Arg(n)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

// ---- engineering text --------

struct Engineering {
  double mantissa;
  int int_digits;
  int decimals;
  int k;
};

inline Engineering ToEngineering(double v, double step) {
  double s = std::fabs(step);
  if (s == 0) s = std::fabs(v);
  int g = s > 0 ? int(std::floor(std::log10(s) + 1e-15)) : 0;
  if (v == 0) {
    int k = int(std::ceil(g / 3.0));
    return {0, 1, 3 * k - g, k};
  }
  double a = std::fabs(v);
  int e = int(std::floor(std::log10(a)));
  if (e < g) e = g;
  int digits = e - g + 1;
  if (digits < 1) digits = 1;
  if (digits > 18) digits = 18;
  int r = ((e % 3) + 3) % 3;
  int k = (e - r) / 3;
  if (k < -102) k = -102;
  double m = std::pow(1000.0, double(k));
  Engineering o{v / m, r + 1, digits - (r + 1) > 0 ? digits - (r + 1) : 0, k};
  if (o.int_digits == 3 && std::fabs(o.mantissa) + 0.5 * std::pow(10.0, -o.decimals) >= 1000) {
    o.mantissa /= 1000;
    o.k += 1;
    o.decimals += 3;
    o.int_digits = 0;
  }
  return o;
}

// Values for the text cases: 64 values 1e-6..1e4 with four significant digits.
struct TextValue {
  double v;
  double step;
};
inline const std::array<TextValue, 64>& TextValues() {
  static const std::array<TextValue, 64> t = [] {
    std::array<TextValue, 64> a{};
    uint64_t x = 1234567;
    for (size_t i = 0; i < a.size(); ++i) {
      x = x * 6364136223846793005ull + 1442695040888963407ull;
      int e = int(i % 10) - 6;
      double m = double((x >> 33) % 9000 + 1000) / 1000.0;
      a[i] = {m * std::pow(10.0, e), std::pow(10.0, e - 3)};
    }
    return a;
  }();
  return t;
}
inline const char* PrefixText(int k) {
  static const char* p[] = {" a", " f", " p", " n", " u", " m", " ", " k", " M", " G", " T"};
  return k >= -6 && k <= 4 ? p[k + 6] : "";
}

inline std::string ChoiceName(int i) {
  char b[32];
  std::snprintf(b, sizeof b, "Choice_%04d", i);
  return b;
}

inline int RunBenchmarks(int argc, char** argv) {
  Parked parked;
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

}  // namespace cvars::benchmarks
