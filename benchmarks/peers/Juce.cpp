// JUCE 7.0.5: AudioParameterFloat with NormalisableRange, listeners, text; AudioParameterChoice.
#include "benchmarks/Cases.h"

#include <juce_audio_processors/juce_audio_processors.h>

using namespace cvars::benchmarks;

namespace {

using P = juce::AudioParameterFloat;
using Base = juce::AudioProcessorParameter;

P* make() {
  return new P(juce::ParameterID{"TRIGGER_LEVEL", 1}, "Trigger Level",
               juce::NormalisableRange<float>(float(kMin), float(kMax), float(kGrain)), 1.0f,
               juce::AudioParameterFloatAttributes().withLabel("V"));
}
struct L final : Base::Listener {
  uint64_t* n;
  explicit L(uint64_t* p) : n(p) {}
  void parameterValueChanged(int, float) override { ++*n; }
  void parameterGestureChanged(int, bool) override {}
};
struct Rig {
  uint64_t calls = 0;
  std::vector<std::unique_ptr<L>> l;
  std::unique_ptr<P> p{make()};
  explicit Rig(int64_t n) {
    for (int64_t i = 0; i < n; ++i) {
      l.push_back(std::make_unique<L>(&calls));
      p->addListener(l.back().get());
    }
  }
};
void set_norm(P& p, double v) {
  static_cast<Base&>(p).setValueNotifyingHost(float(v * 0.1));
}  // no test for a change
void set_assign(P& p, double v) { p = float(v); }  // tests for a change
template <void (*F)(P&, double)>
void sc(benchmark::State& s) {
  Rig r(s.range(0));
  SetChanged(s, *r.p, F, &r.calls, uint64_t(s.range(0)));
}
void ss_assign(benchmark::State& s) {
  Rig r(1);
  float f = 0.5f * 10;
  set_assign(*r.p, f);
  uint64_t before = r.calls;
  f = r.p->get();
  for (auto _ : s) {
    benchmark::DoNotOptimize(f);
    *r.p = f;
  }
  if (r.calls != before) s.SkipWithError("listener called without a change");
}
void ss_norm(benchmark::State& s) {
  Rig r(1);
  SetSameUnfiltered(s, *r.p, set_norm);
}
void th(benchmark::State& s) {
  Threads1M(
      s, [] { return std::make_unique<Rig>(1); },
      [](std::unique_ptr<Rig>& r, double v) { set_norm(*r->p, v); },
      [](std::unique_ptr<Rig>& r) { r.reset(); });
}

void vt(benchmark::State& s) {
  std::unique_ptr<P> p(make());
  Base& b = *p;
  size_t i = 0;
  for (auto _ : s) {
    juce::String t = b.getText(float(Values()[i++ & 1023] * 0.1), 32);
    benchmark::DoNotOptimize(t);
  }
}
void vt_eng(
    benchmark::State& s) {  // getText with a user text function which writes prefix and unit
  size_t i = 0;
  for (auto _ : s) {
    auto& x = TextValues()[i++ & 63];
    Engineering e = ToEngineering(x.v, x.step);
    juce::String t(e.mantissa, e.decimals);
    t << PrefixText(e.k) << "V";
    benchmark::DoNotOptimize(t);
  }
}
void tv(benchmark::State& s) {
  std::unique_ptr<P> p(make());
  Base& b = *p;
  std::vector<juce::String> t;
  for (size_t i = 0; i < 64; ++i) t.push_back(b.getText(float(Values()[i] * 0.1), 32));
  size_t i = 0;
  for (auto _ : s) {
    float f = b.getValueForText(t[i++ & 63]);
    benchmark::DoNotOptimize(f);
  }
}
void en(benchmark::State& s) {
  juce::StringArray a;
  for (int i = 0; i < s.range(0); ++i) a.add(ChoiceName(i));
  juce::AudioParameterChoice c(juce::ParameterID{"C", 1}, "C", a, 0);
  Base& b = c;
  std::vector<juce::String> q;
  uint64_t x = 99;
  for (int i = 0; i < 64; ++i) {
    x = x * 6364136223846793005ull + 1442695040888963407ull;
    q.push_back(ChoiceName(int((x >> 33) % uint64_t(s.range(0)))));
  }
  size_t i = 0;
  for (auto _ : s) {
    float f = b.getValueForText(q[i++ & 63]);
    benchmark::DoNotOptimize(f);
  }
}
void create(benchmark::State& s) {
  for (auto _ : s) {
    P* p = make();
    benchmark::DoNotOptimize(p);
    delete p;
  }
}
void create1(benchmark::State& s) {
  uint64_t n = 0;
  L l(&n);
  for (auto _ : s) {
    P* p = make();
    p->addListener(&l);
    benchmark::DoNotOptimize(p);
    p->removeListener(&l);
    delete p;
  }
}
void attach_detach(benchmark::State& s) {
  Rig r(s.range(0));
  L l(&r.calls);
  for (auto _ : s) {
    r.p->addListener(&l);
    r.p->removeListener(&l);
  }
}
uint64_t g_n;
void scale0(benchmark::State& s) {
  Scale(
      s, [](size_t) { return make(); }, [](P* p, double v) { set_norm(*p, v); },
      [](P* p) { delete p; });
}
L& shared_l() {
  static L l(&g_n);
  return l;
}
void scale1(benchmark::State& s) {
  Scale(
      s,
      [](size_t) {
        P* p = make();
        p->addListener(&shared_l());
        return p;
      },
      [](P* p, double v) { set_norm(*p, v); },
      [](P* p) {
        p->removeListener(&shared_l());
        delete p;
      });
}

}  // namespace

int main(int argc, char** argv) {
  using benchmark::RegisterBenchmark;
  RegisterBenchmark("set_changed/notifying_host", sc<set_norm>)->Arg(0)->Arg(1)->Arg(8);
  RegisterBenchmark("set_changed/assign", sc<set_assign>)->Arg(0)->Arg(1)->Arg(8);
  RegisterBenchmark("set_same/assign", ss_assign);
  RegisterBenchmark("set_same/notifying_host_calls_listener", ss_norm);
  RegisterThreads("threads_1M/notifying_host", th);
  RegisterBenchmark("value_to_text/getText", vt);
  RegisterBenchmark("value_to_text_eng/String", vt_eng);
  RegisterBenchmark("text_to_value/getValueForText", tv);
  RegisterBenchmark("enum_from_string/choice", en)->Arg(10)->Arg(1000);
  RegisterBenchmark("create/0_listeners", create);
  RegisterBenchmark("create/1_listener", create1);
  RegisterBenchmark("attach_detach/direct", attach_detach)->Arg(0)->Arg(8)->Arg(1000);
  RegisterScale("scale/0_listeners", scale0);
  RegisterScale("scale/1_listener", scale1);
  return RunBenchmarks(argc, argv);
}
