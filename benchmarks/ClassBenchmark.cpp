// What every class of cvars costs through the common interface: a set, texts, variants, signature
// and properties; and notifications to many listeners.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Cvars.h"
#include "benchmarks/Cases.h"

namespace {

using Cvar = CComPtr<IVorCvar>;

constexpr auto kNoFlags = CVARFLAGS(0);
constexpr auto kCopies = CVARREPLICATIONFLAGS(0x202);

template <class T, class... Arguments>
Cvar Make(Arguments... arguments) {
  CComPtr<CvarObject<T>> cvar = CvarObject<T>::Create();
  cvar->Initialize(arguments...);
  return Cvar(cvar);
}

/// What of the common interface a class has, signature and properties apart, which all have.
enum Operations : unsigned {
  kSetText = 1,
  kScreenText = 2,
  kGetVariant = 4,
  kPutVariant = 8,
  kSteps = 16,
  kAll = 31,
  kNoSteps = kAll & ~kSteps,
};

/// How a class is made, what it has, and what its cvar takes in turn.
struct Class {
  const char* name;
  std::function<Cvar()> make;
  std::wstring texts[2];  ///< remote texts
  unsigned has = kAll;
  std::function<CComVariant()> makeValue = nullptr;  ///< where no text gives a value
};

Cvar MakeBits(int bits) {
  return Make<CCvarBitPattern>(L"Pattern", L"0", bits, bits, BITPATTERN_FORMAT_BIN, L"01",
                               unsigned{L'0'}, BITPATTERN_PAD_LEFT, BITPATTERN_SIZE_BIT_FIX,
                               kNoFlags, L"", 0u, kCopies);
}

// Stands in front of a plain double, and holds it.
Cvar MakeIndirect() {
  const auto target = CvarObject<CCvarDouble>::Create();
  target->Initialize(L"Level", 1.0, 0.0, 10.0, 0.001, L"V", kNoFlags, L"", 0u, kCopies);
  const auto cvar = CvarObject<CCvarDoubleIndirect>::Create();
  cvar->Initialize(CComBSTR(L"Level"), nullptr, target, 10.0, 0.0, 10.0, 0.0, 100.0, 0.01,
                   CComBSTR(L"V"), kNoFlags, CComBSTR());
  return Cvar(cvar);  // kept to the end of the process: the target listens to nobody else
}

std::wstring TableText(int rows, wchar_t first) {
  std::wstring text;
  for (int row = 0; row < rows; ++row) {
    if (row > 0) text += L';';
    text += first;
    text += L".25,2,3,4";
  }
  return text;
}

const std::vector<Class>& Classes() {
  static const std::vector<Class> classes = {
      {"double",
       [] {
         return Make<CCvarDouble>(L"Level", 1.0, 0.0, 10.0, 0.001, L"V", kNoFlags, L"", 0u,
                                  kCopies);
       },
       {L"2.5", L"7.25"}},
      {"int",
       [] { return Make<CCvarInt>(L"Count", 1, 0, 1000, 1, L"", kNoFlags, L"", 0u, kCopies); },
       {L"25", L"725"}},
      {"long_int",
       [] {
         using Number = std::int64_t;
         return Make<CCvarLongInt>(L"Depth", Number{1}, Number{0}, Number{1} << 40, Number{1}, L"",
                                   kNoFlags, L"", 0u, kCopies);
       },
       {L"25", L"725"}},
      {"lockstep",
       [] {
         return Make<CCvarDoubleLockstep>(L"Scale", 1.0, 1e-3, 100.0, LOCKSTEP_1_2_5, L"V", 0,
                                          kNoFlags, L"", 0u, kCopies);
       },
       {L"2", L"5"}},
      {"double_set",
       [] {
         return Make<CCvarDoubleSet>(L"Rate", 1.0, std::set<double>{1, 2, 5, 10, 20, 50, 100},
                                     ADAPT_CLOSEST_DOWN, 0.0, false, 0.0, L"HZ", kNoFlags, L"", 0u,
                                     kCopies);
       },
       {L"2", L"50"}},
      {"indirect", MakeIndirect, {L"25", L"72.5"}},
      {"int_set",
       [] {
         return Make<CCvarIntSet>(L"Segments", 1, std::set<int>{1, 2, 5, 10, 20, 50, 100},
                                  ADAPT_CLOSEST_DOWN, false, 1, L"", kNoFlags, L"", 0u, kCopies);
       },
       {L"2", L"50"}},
      {"long_int_set",
       [] {
         using Number = std::int64_t;
         return Make<CCvarLongIntSet>(
             L"Depth", Number{1}, std::set<Number>{1, 2, 5, 10, 20, 50, 100}, ADAPT_CLOSEST_DOWN,
             false, Number{1}, L"", kNoFlags, L"", 0u, kCopies);
       },
       {L"2", L"50"}},
      {"enum",
       [] {
         return Make<CCvarEnum>(L"Mode", L"Auto,Normal,Single,Stop", 0, kNoFlags, L"", 0u, kCopies,
                                0ul);
       },
       {L"NORMAL", L"STOP"}},
      {"file_name",
       [] {
         return Make<CCvarFileName>(L"File", L"", L"", L"", L"", L"fullfilename", 260, 0, 0,
                                    kNoFlags, L"", 0u, kCopies);
       },
       {L"D:\\Data\\a.trc", L"D:\\Data\\b.trc"},
       kNoSteps},
      {"register",
       [] {
         return Make<CCvarRegister>(L"Control", 0u, ACCESSSTYLE_READWRITE, 0x100u, 16u, 0xFFFFu,
                                    kNoFlags, L"", 0u, kCopies, false);
       },
       {L"0x1F", L"0x2E"},
       kNoSteps},
      {"bool",
       [] { return Make<CCvarBool>(L"View", L"Off,On", 0, kNoFlags, L"", 0u, kCopies); },
       {L"OFF", L"ON"}},
      {"color",
       [] { return Make<CCvarColor>(L"Trace", 1, kNoFlags, L"", 0u, kCopies); },
       {L"255", L"65280"}},
      {"string",
       [] { return Make<CCvarString>(L"Label", L"", 64, kNoFlags, L"", 0u, kCopies); },
       {L"first trace", L"second trace"},
       kNoSteps},
      {"object_name",
       [] { return Make<CCvarObjectName>(L"Trace", L"", 64, kNoFlags, L"", 0u, kCopies); },
       {L"first trace", L"second trace"},
       kNoSteps},
      {"bit_pattern_64",
       [] { return MakeBits(64); },
       {std::wstring(64, L'0'), std::wstring(64, L'1')},
       kNoSteps},
      {"bit_pattern_4096",
       [] { return MakeBits(4096); },
       {std::wstring(4096, L'0'), std::wstring(4096, L'1')},
       kNoSteps},
      {"array_1000x4",
       [] {
         CComPtr<CvarObject<CCvarSafeArray>> cvar = CvarObject<CCvarSafeArray>::Create();
         cvar->Initialize(L"Mask", TableText(1000, L'1').c_str(), L"", kNoFlags);
         (void)cvar->SetRange(std::vector<SColRangeDesc>(4, {VT_R8, -10.0, 10.0, 0.001}));
         return Cvar(cvar);
       },
       {TableText(1000, L'1'), TableText(1000, L'2')},
       kNoSteps},
      {"image",
       [] {
         const auto cvar = CvarObject<CCvarImage>::Create();
         cvar->Initialize(L"Icon", 0, kNoFlags, L"", 0u, kCopies);
         HBITMAP bitmap = nullptr;  // the cvar's
         (void)cvar->CreateBitmap(64, 64, &bitmap);
         return Cvar(cvar);
       },
       {},
       kScreenText | kGetVariant},
      {"action",
       [] { return Make<CCvarAction>(L"Clear", kNoFlags, L"", 0u, 0ul, kCopies); },
       {L"", L""},
       kSetText},
      {"object",
       [] { return Make<CCvarObject<IUnknown>>(L"Source", kNoFlags, true, kCopies); },
       {},
       kGetVariant | kPutVariant,
       [] { return CComVariant(static_cast<IUnknown*>(MakeBits(1).p)); }},
  };
  return classes;
}

/// Counts its calls.
class Counter final : public IVorCvarEventSink {
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
    ++m_calls;
    return S_OK;
  }
  std::uint64_t Calls() const { return m_calls; }

 private:
  std::uint64_t m_calls = 0;
};

template <HRESULT (IVorCvar::*read)(BSTR*)>
void ReadText(benchmark::State& state, const Class& kind) {
  const Cvar cvar = kind.make();
  for (auto _ : state) {
    BSTR text = nullptr;
    if ((cvar->*read)(&text) != S_OK) state.SkipWithError("no text");
    benchmark::DoNotOptimize(text);
    SysFreeString(text);
  }
}

void SetText(benchmark::State& state, const Class& kind) {
  const Cvar cvar = kind.make();
  std::size_t i = 0;
  for (auto _ : state) {
    if (FAILED(cvar->SetRequestedValueFromStringRemote(kind.texts[i++ & 1].c_str()))) {
      state.SkipWithError("not taken");
    }
  }
  Counter listener;
  (void)cvar->AttachCvarEventSink(&listener);
  (void)cvar->SetRequestedValueFromStringRemote(kind.texts[i & 1].c_str());
  if (listener.Calls() == 0) state.SkipWithError("the texts change nothing");
  (void)cvar->DetachCvarEventSink(&listener);
}

void ReadVariant(benchmark::State& state, const Class& kind) {
  const Cvar cvar = kind.make();
  for (auto _ : state) {
    CComVariant value;
    if (FAILED(cvar->get_Value(&value))) state.SkipWithError("no value");
    benchmark::DoNotOptimize(value);
  }
}

void SetVariant(benchmark::State& state, const Class& kind) {
  const Cvar cvar = kind.make();
  CComVariant values[2];
  for (std::size_t i = 0; i < 2; ++i) {
    if (kind.makeValue) {
      values[i] = kind.makeValue();
    } else {
      (void)cvar->SetRequestedValueFromStringRemote(kind.texts[i].c_str());
      (void)cvar->get_Value(&values[i]);
    }
  }
  std::size_t i = 0;
  for (auto _ : state) {
    if (FAILED(cvar->put_Value(values[i++ & 1]))) state.SkipWithError("not taken");
  }
}

void ReadProperties(benchmark::State& state, const Class& kind) {
  const Cvar cvar = kind.make();
  for (auto _ : state) {
    CComVariant map;
    if (FAILED(cvar->GetSignature(&map))) state.SkipWithError("no properties");
    benchmark::DoNotOptimize(map);
  }
}

// Up and down in turn, so that every step is a change.
void Step(benchmark::State& state, const Class& kind) {
  const Cvar cvar = kind.make();
  (void)cvar->SetRequestedValueFromStringRemote(kind.texts[0].c_str());
  int direction = 1;
  for (auto _ : state) {
    if (FAILED(cvar->Increment(direction))) state.SkipWithError("no step");
    direction = -direction;
  }
}

// One iteration = one notification; the counter is the time of each listener.
void FanOut(benchmark::State& state) {
  const Cvar cvar = Classes().front().make();
  std::vector<Counter> listeners(static_cast<std::size_t>(state.range(0)));
  for (Counter& listener : listeners) (void)cvar->AttachCvarEventSink(&listener);
  for (auto _ : state) (void)cvar->ForceNotification(NOTIFY_VALUE);
  if (listeners.back().Calls() != static_cast<std::uint64_t>(state.iterations())) {
    state.SkipWithError("listener calls do not add up");
  }
  for (Counter& listener : listeners) (void)cvar->DetachCvarEventSink(&listener);
  state.counters["per_listener"] = benchmark::Counter(
      static_cast<double>(state.iterations()) * static_cast<double>(state.range(0)),
      benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

}  // namespace

int main(int argc, char** argv) {
  for (const Class& kind : Classes()) {
    const auto add = [&kind](const char* what, void (*run)(benchmark::State&, const Class&)) {
      benchmark::RegisterBenchmark((std::string(what) + "/" + kind.name).c_str(),
                                   [run, &kind](benchmark::State& state) { run(state, kind); });
    };
    if (kind.has & kSetText) add("class_set_text", SetText);
    if (kind.has & kSteps) add("class_increment", Step);
    if (kind.has & kScreenText)
      add("class_screen_text", ReadText<&IVorCvar::GetAdaptedValueStringScreen>);
    if (kind.has & kGetVariant) add("class_get_variant", ReadVariant);
    if (kind.has & kPutVariant) add("class_put_variant", SetVariant);
    add("class_signature", ReadText<&IVorCvar::get_Signature>);
    add("class_properties", ReadProperties);
  }
  auto* const fanOut = benchmark::RegisterBenchmark("fan_out", FanOut);
  for (const std::int64_t listeners : {1, 10, 100, 1000, 10000}) fanOut->Arg(listeners);
  return cvars::benchmarks::RunBenchmarks(argc, argv);
}
