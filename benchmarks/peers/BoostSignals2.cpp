// Boost.Signals2 1.74: a struct with range and a thread-safe signal (default
// boost::signals2::mutex).
#include "benchmarks/Cases.h"

#include <boost/signals2.hpp>
#include <boost/signals2/dummy_mutex.hpp>

using namespace cvars::benchmarks;
namespace bs2 = boost::signals2;

namespace {

// Result merged as a cvar merges it: the last failure wins.
struct LastFailure {
  using result_type = int;
  template <class It>
  int operator()(It a, It b) const {
    int r = 0;
    for (; a != b; ++a) {
      int h = *a;
      if (h < 0)
        r = h;
      else if (r >= 0 && h)
        r = h;
    }
    return r;
  }
};
struct Obj;
using Safe = bs2::signal<int(Obj*, unsigned), LastFailure>;
struct Obj {
  double value = 0, def = 0, min = kMin, max = kMax, grain = kGrain;
  std::wstring name = L"Trigger Level", remote = L"TRIGGER_LEVEL", unit = L"V";
  unsigned flags = 0;
  Safe changed;
  __attribute__((noinline)) int set(double v) {
    double c = v < min ? min : v > max ? max : v;
    double r = std::floor(c / grain + 0.5) * grain;
    if (r == value) return 0;
    value = r;
    return changed(this, 2u);
  }
};
struct Listener {
  uint64_t* n;
  explicit Listener(uint64_t* p) : n(p) {}
  int on(Obj*, unsigned) {
    ++*n;
    return 0;
  }
};

struct Rig {
  uint64_t calls = 0;
  std::vector<std::shared_ptr<Listener>> l;
  Obj o;
  explicit Rig(int64_t n, bool tracked = false) {
    for (int64_t i = 0; i < n; ++i) {
      l.push_back(std::make_shared<Listener>(&calls));
      Listener* p = l.back().get();
      Safe::slot_type slot([p](Obj* a, unsigned b) { return p->on(a, b); });
      if (tracked)
        slot.track_foreign(l.back());  // holds the listener during the call, as a cvar does
      o.changed.connect(slot);
    }
  }
};
void sc(benchmark::State& s) {
  Rig r(s.range(0));
  SetChanged(
      s, r.o, [](Obj& o, double v) { o.set(v); }, &r.calls, uint64_t(s.range(0)));
}
void sct(benchmark::State& s) {
  Rig r(s.range(0), true);
  SetChanged(
      s, r.o, [](Obj& o, double v) { o.set(v); }, &r.calls, uint64_t(s.range(0)));
}
void ss(benchmark::State& s) {
  Rig r(1);
  SetSame(
      s, r.o, [](Obj& o, double v) { o.set(v); }, &r.calls);
}
void th(benchmark::State& s) {
  Threads1M(
      s, [] { return std::make_unique<Rig>(1); },
      [](std::unique_ptr<Rig>& r, double v) { r->o.set(v); },
      [](std::unique_ptr<Rig>& r) { r.reset(); });
}
void create(benchmark::State& s) {
  for (auto _ : s) {
    auto* o = new Obj;
    benchmark::DoNotOptimize(o);
    delete o;
  }
}
int free_slot(Obj*, unsigned) { return 0; }
void create1(benchmark::State& s) {
  for (auto _ : s) {
    auto* o = new Obj;
    o->changed.connect(&free_slot);
    benchmark::DoNotOptimize(o);
    delete o;
  }
}
void attach_detach(benchmark::State& s) {
  Rig r(s.range(0));
  for (auto _ : s) {
    auto c = r.o.changed.connect(&free_slot);
    c.disconnect();
  }
}
void scale0(benchmark::State& s) {
  Scale(
      s, [](size_t) { return new Obj; }, [](Obj* o, double v) { o->set(v); },
      [](Obj* o) { delete o; });
}
void scale1(benchmark::State& s) {
  Scale(
      s,
      [](size_t) {
        auto* o = new Obj;
        o->changed.connect(&free_slot);
        return o;
      },
      [](Obj* o, double v) { o->set(v); }, [](Obj* o) { delete o; });
}

}  // namespace

int main(int argc, char** argv) {
  using benchmark::RegisterBenchmark;
  RegisterBenchmark("set_changed/signal", sc)->Arg(0)->Arg(1)->Arg(8);
  RegisterBenchmark("set_changed/signal_tracked", sct)->Arg(1)->Arg(8);
  RegisterBenchmark("set_same/signal", ss);
  RegisterThreads("threads_1M/signal", th);
  RegisterBenchmark("create/0_listeners", create);
  RegisterBenchmark("create/1_listener", create1);
  RegisterBenchmark("attach_detach/direct", attach_detach)->Arg(0)->Arg(8)->Arg(1000);
  RegisterScale("scale/0_listeners", scale0);
  RegisterScale("scale/1_listener", scale1);
  return RunBenchmarks(argc, argv);
}
