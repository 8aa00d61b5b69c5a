// What a probe costs while no monitor listens, beside the one test that it is meant to cost.

#include <cstdlib>
#include <filesystem>
#include <string>

#include "TattlerClient.h"
#include "benchmarks/Cases.h"

namespace {

using cvars::TattlerClient;
using cvars::TattlerProbe;

// The work that probes stand around in the cases: one number kept.
void Work(std::uint64_t& number) { benchmark::DoNotOptimize(++number); }

void WithoutProbe(benchmark::State& state) {
  std::uint64_t number = 0;
  for (auto _ : state) Work(number);
}

// A flag that another thread may set is read and found unset, which no optimiser can foresee.
void OneTest(benchmark::State& state) {
  std::atomic<bool> enabled = false;
  benchmark::DoNotOptimize(&enabled);
  std::uint64_t number = 0;
  for (auto _ : state) {
    if (enabled.load(std::memory_order_acquire)) benchmark::DoNotOptimize(number += 2);
    Work(number);
  }
}

void ProbeOff(benchmark::State& state) {
  TattlerClient client;
  if (client.IsEnabled()) {
    state.SkipWithError("a monitor listens");
    return;
  }
  benchmark::DoNotOptimize(&client);
  std::uint64_t number = 0;
  for (auto _ : state) {
    const TattlerProbe probe(client, L"Benchmark", 1, 2, nullptr);
    Work(number);
  }
}

// A monitor is looked for at the first use only; this is what that look costs.
void FirstUse(benchmark::State& state) {
  for (auto _ : state) {
    TattlerClient client;
    if (client.IsEnabled()) {
      state.SkipWithError("a monitor listens");
      return;
    }
  }
}

// A home without monitor, whatever runs on this machine.
class EmptyHome {
 public:
  EmptyHome() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vortana-home-XXXXXX").string();
    if (mkdtemp(pattern.data()) != nullptr) {
      m_folder = pattern;
      setenv("VORTANA_HOME", pattern.c_str(), 1);
    }
  }
  ~EmptyHome() {
    std::error_code ignored;  // what stays is in the temporary folder
    if (!m_folder.empty()) std::filesystem::remove_all(m_folder, ignored);
  }
  EmptyHome(const EmptyHome&) = delete;
  EmptyHome& operator=(const EmptyHome&) = delete;

 private:
  std::filesystem::path m_folder;
};

}  // namespace

int main(int argc, char** argv) {
  const EmptyHome home;
  using benchmark::RegisterBenchmark;
  RegisterBenchmark("probe/none", WithoutProbe);
  RegisterBenchmark("probe/one_test", OneTest);
  RegisterBenchmark("probe/off", ProbeOff);
  RegisterBenchmark("probe/first_use", FirstUse);
  return cvars::benchmarks::RunBenchmarks(argc, argv);
}
