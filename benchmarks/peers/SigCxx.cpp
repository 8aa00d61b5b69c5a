// libsigc++ 2: a struct with range and a sigc::signal. Not thread-safe by design.
#include "benchmarks/Cases.h"

#include <sigc++/sigc++.h>

using namespace cvars::benchmarks;

namespace {

struct Obj {
  double value = 0, def = 0, min = kMin, max = kMax, grain = kGrain;
  std::wstring name = L"Trigger Level", remote = L"TRIGGER_LEVEL", unit = L"V";
  unsigned flags = 0;
  sigc::signal<int, Obj*, unsigned> changed;
  __attribute__((noinline)) int set(double v) {
    double c = v < min ? min : v > max ? max : v;
    double r = std::floor(c / grain + 0.5) * grain;
    if (r == value) return 0;
    value = r;
    return changed.emit(this, 2u);
  }
};
struct Listener : sigc::trackable {
  uint64_t* n;
  explicit Listener(uint64_t* p) : n(p) {}
  int on(Obj*, unsigned) {
    ++*n;
    return 0;
  }
};

struct Rig {
  uint64_t calls = 0;
  std::vector<std::unique_ptr<Listener>> l;
  Obj o;
  explicit Rig(int64_t n) {
    for (int64_t i = 0; i < n; ++i) {
      l.push_back(std::make_unique<Listener>(&calls));
      o.changed.connect(sigc::mem_fun(*l.back(), &Listener::on));
    }
  }
};
void sc(benchmark::State& s) {
  Rig r(s.range(0));
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
void create1(benchmark::State& s) {
  uint64_t n = 0;
  Listener l(&n);
  for (auto _ : s) {
    auto* o = new Obj;
    o->changed.connect(sigc::mem_fun(l, &Listener::on));
    benchmark::DoNotOptimize(o);
    delete o;
  }
}
void attach_detach(benchmark::State& s) {
  Rig r(s.range(0));
  Listener l(&r.calls);
  for (auto _ : s) {
    sigc::connection c = r.o.changed.connect(sigc::mem_fun(l, &Listener::on));
    c.disconnect();
  }
}
void scale0(benchmark::State& s) {
  Scale(
      s, [](size_t) { return new Obj; }, [](Obj* o, double v) { o->set(v); },
      [](Obj* o) { delete o; });
}
int free_slot(Obj*, unsigned) { return 0; }
void scale1(benchmark::State& s) {
  Scale(
      s,
      [](size_t) {
        auto* o = new Obj;
        o->changed.connect(sigc::ptr_fun(free_slot));
        return o;
      },
      [](Obj* o, double v) { o->set(v); }, [](Obj* o) { delete o; });
}

}  // namespace

int main(int argc, char** argv) {
  using benchmark::RegisterBenchmark;
  RegisterBenchmark("set_changed/signal", sc)->Arg(0)->Arg(1)->Arg(8);
  RegisterBenchmark("set_same/signal", ss);
  RegisterThreads("threads_1M/signal", th);
  RegisterBenchmark("create/0_listeners", create);
  RegisterBenchmark("create/1_listener", create1);
  RegisterBenchmark("attach_detach/direct", attach_detach)->Arg(0)->Arg(8)->Arg(1000);
  RegisterScale("scale/0_listeners", scale0);
  RegisterScale("scale/1_listener", scale1);
  return RunBenchmarks(argc, argv);
}
