// Texts of choices: three spellings, any case, in short and in long lists.
#include "CCvarEnum.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

#include "CvarObject.h"
#include "benchmarks/Cases.h"

namespace {

using Enum = CComPtr<CvarObject<CCvarEnum>>;

// "Choice_0007" on the screen, Choice0007 in scripts, CHOICE0007 for remote commands.
Enum MakeEnum(int count) {
  std::wstring values;
  for (int i = 0; i < count; ++i) {
    const std::string name = cvars::benchmarks::ChoiceName(i);
    if (i > 0) values += L',';
    values.append(name.begin(), name.end());
  }
  Enum cvar = CvarObject<CCvarEnum>::Create();
  cvar->Initialize(L"Choice", values.c_str(), 0, CVARFLAGS(0), nullptr, 0,
                   REPLICATE_VALUE | REPLICATE_REQUESTED, 0);
  return cvar;
}

std::vector<std::wstring> MakeQueries(int count) {
  std::vector<std::wstring> queries;
  std::uint64_t random = 99;
  for (int i = 0; i < 64; ++i) {
    random = random * 6364136223846793005ull + 1442695040888963407ull;
    const auto entry = static_cast<int>((random >> 33) % static_cast<std::uint64_t>(count));
    const std::string name = cvars::benchmarks::ChoiceName(entry);
    queries.emplace_back(name.begin(), name.end());
  }
  return queries;
}

// The look-up alone, through the interface.
void IndexOfText(benchmark::State& state) {
  const auto count = static_cast<int>(state.range(0));
  const Enum cvar = MakeEnum(count);
  IVorCvarEnum* const choice = cvar.p;
  const std::vector<std::wstring> queries = MakeQueries(count);
  int warm = -1;
  (void)choice->GetIndexOfStringName(queries[0].c_str(), &warm);  // makes the index of the list
  std::size_t i = 0;
  for (auto _ : state) {
    int index = -1;
    benchmark::DoNotOptimize(choice->GetIndexOfStringName(queries[i++ & 63].c_str(), &index));
    benchmark::DoNotOptimize(index);
  }
}

// A remote command that changes the choice.
void RequestText(benchmark::State& state) {
  const auto count = static_cast<int>(state.range(0));
  const Enum cvar = MakeEnum(count);
  IVorCvarEnum* const choice = cvar.p;
  const std::vector<std::wstring> queries = MakeQueries(count);
  int warm = -1;
  (void)choice->GetIndexOfStringName(queries[0].c_str(), &warm);  // makes the index of the list
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(choice->SetRequestedValueFromStringRemote(queries[i++ & 63].c_str()));
  }
}

// Making the list, the look-up included.
void MakeList(benchmark::State& state) {
  const auto count = static_cast<int>(state.range(0));
  for (auto _ : state) {
    const Enum cvar = MakeEnum(count);
    benchmark::DoNotOptimize(cvar->GetIndexOfStringValue(L"CHOICE_0000"));
  }
}

}  // namespace

int main(int argc, char** argv) {
  using benchmark::RegisterBenchmark;
  RegisterBenchmark("enum_from_string/index_of_text", IndexOfText)->Arg(10)->Arg(1000)->Arg(100000);
  RegisterBenchmark("enum_from_string/request_text", RequestText)->Arg(10)->Arg(1000)->Arg(100000);
  RegisterBenchmark("enum_make/list", MakeList)->Arg(10)->Arg(1000)->Arg(100000);
  return cvars::benchmarks::RunBenchmarks(argc, argv);
}
