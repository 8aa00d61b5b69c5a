// The double cvar in the cases of the peers.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Cvars.h"
#include "benchmarks/Cases.h"

namespace {

using namespace cvars::benchmarks;
using DoubleCvar = CvarObject<CCvarDouble>;

/// Counts its calls.
class Counter final : public IVorCvarEventSink {
 public:
  explicit Counter(std::uint64_t* calls) : m_calls(calls) {}

  HRESULT QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IVorCvarEventSink) return E_NOINTERFACE;
    *object = static_cast<IVorCvarEventSink*>(this);
    AddRef();
    return S_OK;
  }
  // Counted as a component counts, but owned by the benchmark.
  ULONG AddRef() override { return m_references.fetch_add(1, std::memory_order_relaxed) + 1; }
  ULONG Release() override { return m_references.fetch_sub(1, std::memory_order_acq_rel) - 1; }
  HRESULT OnCvarNotify(IVorCvar*, NOTIFYTYPE) override {
    ++*m_calls;
    return S_OK;
  }

 private:
  std::atomic<ULONG> m_references{1};
  std::uint64_t* const m_calls;
};

CComPtr<DoubleCvar> MakeCvar(double grain = kGrain, double max = kMax) {
  CComPtr<DoubleCvar> cvar = DoubleCvar::Create();
  cvar->Initialize(L"Trigger Level", 1.0, kMin, max, grain, L"V", CVARFLAGS(0), L"", 0,
                   CVARREPLICATIONFLAGS(0x202));
  return cvar;
}

/// A cvar with listeners, in a bag or without one.
class Rig {
 public:
  Rig(std::int64_t listeners, bool inBag) : m_cvar(MakeCvar()) {
    if (inBag) {
      m_bag = CCvarBag::Create(L"Trigger", nullptr);
      (void)m_bag->Add(m_cvar);
    }
    for (std::int64_t i = 0; i < listeners; ++i) {
      m_listeners.push_back(std::make_unique<Counter>(&m_calls));
      (void)m_cvar->AttachCvarEventSink(m_listeners.back().get());
    }
  }
  Rig(const Rig&) = delete;
  Rig& operator=(const Rig&) = delete;
  ~Rig() {
    for (const auto& listener : m_listeners) (void)m_cvar->DetachCvarEventSink(listener.get());
  }

  // What a client holds: the call goes through the interface.
  IVorCvarDouble& Interface() { return *m_cvar; }
  DoubleCvar& Cvar() { return *m_cvar; }
  const std::uint64_t* Calls() const { return &m_calls; }

 private:
  std::uint64_t m_calls = 0;
  std::vector<std::unique_ptr<Counter>> m_listeners;
  CComPtr<CCvarBag> m_bag;
  CComPtr<DoubleCvar> m_cvar;
};

void Set(IVorCvarDouble& cvar, double value) {
  (void)cvar.SetRequestedValue(value);  // the peers' setters answer nothing
}

template <bool inBag>
void SetChangedCase(benchmark::State& state) {
  Rig rig(state.range(0), inBag);
  SetChanged(state, rig.Interface(), Set, rig.Calls(), static_cast<std::uint64_t>(state.range(0)));
}

// Sets one of many cvars after the other, once around.
void SetAmong(benchmark::State& state) {
  std::vector<CComPtr<DoubleCvar>> cvars(static_cast<std::size_t>(state.range(0)));
  for (CComPtr<DoubleCvar>& cvar : cvars) cvar = MakeCvar();
  std::size_t next = 0;
  std::size_t round = 0;
  for (auto _ : state) {
    Set(*cvars[next], Values()[round & 1023]);
    if (++next == cvars.size()) {
      next = 0;
      ++round;
    }
  }
}

void SetSameCase(benchmark::State& state) {
  Rig rig(1, true);
  SetSame(state, rig.Interface(), Set, rig.Calls());
}

void Batch10Case(benchmark::State& state) {
  Rig rig(1, true);
  Batch10(
      state, rig.Cvar(), [](DoubleCvar& cvar) { cvar.SuspendNotifications(1); },
      [](DoubleCvar& cvar, double value) { Set(cvar, value); },
      [](DoubleCvar& cvar) { cvar.SuspendNotifications(0); }, rig.Calls());
}

void ThreadsCase(benchmark::State& state) {
  Threads1M(
      state, [] { return std::make_unique<Rig>(1, false); },
      [](std::unique_ptr<Rig>& rig, double value) { Set(rig->Interface(), value); },
      [](std::unique_ptr<Rig>& rig) { rig.reset(); });
}

// What threads gain here that share nothing at all, by as much arithmetic as a set does.
void ArithmeticCase(benchmark::State& state) {
  Threads1M(
      state, [] { return std::make_unique<double>(1.0); },
      [](std::unique_ptr<double>& sum, double value) {
        for (int i = 0; i < 8; ++i) *sum = Fit(*sum + value) * 0.5;
        benchmark::DoNotOptimize(*sum);
      },
      [](std::unique_ptr<double>& sum) { sum.reset(); });
}

// A cvar for each of the text values, whose grain is that value's step.
std::vector<CComPtr<DoubleCvar>> TextCvars() {
  std::vector<CComPtr<DoubleCvar>> cvars;
  for (const TextValue& text : TextValues()) {
    cvars.push_back(MakeCvar(text.step, 1e6));
    (void)cvars.back()->SetRequestedValue(text.v);
  }
  return cvars;
}

template <HRESULT (IVorCvar::*read)(BSTR*)>
void ValueToText(benchmark::State& state) {
  const std::vector<CComPtr<DoubleCvar>> cvars = TextCvars();
  std::size_t i = 0;
  for (auto _ : state) {
    IVorCvar& cvar = *cvars[i++ & 63];
    BSTR text = nullptr;
    if ((cvar.*read)(&text) != S_OK) state.SkipWithError("no text");
    benchmark::DoNotOptimize(text);
    SysFreeString(text);
  }
}

void TextToValue(benchmark::State& state) {
  std::vector<std::wstring> texts;
  for (const CComPtr<DoubleCvar>& cvar : TextCvars()) {
    BSTR text = nullptr;
    if (cvar->GetAdaptedValueStringScreen(&text) != S_OK) state.SkipWithError("no text");
    texts.emplace_back(text, SysStringLen(text));
    SysFreeString(text);
  }
  const CComPtr<DoubleCvar> cvar = MakeCvar(1e-9, 1e6);
  IVorCvar& target = *cvar;
  std::size_t i = 0;
  for (auto _ : state)
    if (target.SetRequestedValueFromStringScreen(texts[i++ & 63].c_str()) != S_OK)
      state.SkipWithError("not taken");
}

void Create(benchmark::State& state) {
  for (auto _ : state) {
    CComPtr<DoubleCvar> cvar = MakeCvar();
    benchmark::DoNotOptimize(cvar);
  }
}

void CreateWithListener(benchmark::State& state) {
  std::uint64_t calls = 0;
  Counter listener(&calls);
  for (auto _ : state) {
    CComPtr<DoubleCvar> cvar = MakeCvar();
    (void)cvar->AttachCvarEventSink(&listener);
    benchmark::DoNotOptimize(cvar);
    (void)cvar->DetachCvarEventSink(&listener);
  }
}

void AttachDetach(benchmark::State& state) {
  Rig rig(state.range(0), false);
  std::uint64_t calls = 0;
  Counter listener(&calls);
  IVorCvar& cvar = rig.Interface();
  for (auto _ : state) {
    (void)cvar.AttachCvarEventSink(&listener);
    (void)cvar.DetachCvarEventSink(&listener);
  }
}

template <bool withListener>
void ScaleCase(benchmark::State& state) {
  std::uint64_t calls = 0;
  Counter listener(&calls);
  Scale(
      state,
      [&](std::size_t) {
        CComPtr<DoubleCvar> cvar = MakeCvar();
        if (withListener) (void)cvar->AttachCvarEventSink(&listener);
        return cvar;
      },
      [](CComPtr<DoubleCvar>& cvar, double value) { Set(*cvar, value); },
      [](CComPtr<DoubleCvar>& cvar) { cvar.Release(); });
}

}  // namespace

int main(int argc, char** argv) {
  using benchmark::RegisterBenchmark;
  RegisterBenchmark("set_changed/bag", SetChangedCase<true>)->Arg(0)->Arg(1)->Arg(8);
  RegisterBenchmark("set_changed/no_parent", SetChangedCase<false>)->Arg(0)->Arg(1)->Arg(8);
  RegisterBenchmark("set_among", SetAmong)->RangeMultiplier(10)->Range(10, 1000000);
  RegisterBenchmark("set_same/bag", SetSameCase);
  RegisterBenchmark("batch10/bag", Batch10Case);
  RegisterThreads("threads_1M/no_parent", ThreadsCase);
  RegisterThreads("threads_1M/arithmetic", ArithmeticCase);
  RegisterBenchmark("value_to_text_eng/screen",
                    ValueToText<&IVorCvar::GetAdaptedValueStringScreen>);
  RegisterBenchmark("value_to_text_eng/remote",
                    ValueToText<&IVorCvar::GetAdaptedValueStringRemote>);
  RegisterBenchmark("text_to_value_eng/screen", TextToValue);
  RegisterBenchmark("create/0_listeners", Create);
  RegisterBenchmark("create/1_listener", CreateWithListener);
  RegisterBenchmark("attach_detach/no_parent", AttachDetach)->Arg(0)->Arg(8)->Arg(1000);
  RegisterScale("scale/0_listeners", ScaleCase<false>);
  RegisterScale("scale/1_listener", ScaleCase<true>);
  return RunBenchmarks(argc, argv);
}
