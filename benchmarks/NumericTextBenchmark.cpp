// Texts of numbers: what a screen refresh and a remote command pay for.
#include "NumericText.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <cwchar>
#include <string>

#include "GrainRounding.h"

namespace {

struct Number {
  double value;
  double grain;
  std::wstring text;
};

/// Values from 1e-6 to 1e4 with four significant digits.
const std::array<Number, 64>& Numbers() {
  static const std::array<Number, 64> numbers = [] {
    std::array<Number, 64> made;
    for (std::size_t i = 0; i < made.size(); ++i) {
      const int exponent = static_cast<int>(i % 10) - 6;
      const double grain = std::pow(10.0, exponent - 3);
      made[i].value = static_cast<double>(1000 + (i * 7919) % 9000) * grain;
      made[i].grain = grain;
      cvars::AppendNumber(made[i].text, made[i].value, grain, L"V", cvars::NumberStyle::kScreen,
                          cvars::kNumberWidth);
    }
    return made;
  }();
  return numbers;
}

void ScreenText(benchmark::State& state) {
  const auto style = static_cast<cvars::NumberStyle>(state.range(0));
  std::size_t i = 0;
  for (auto _ : state) {
    const Number& number = Numbers()[i++ & 63];
    BSTR text = nullptr;
    benchmark::DoNotOptimize(
        cvars::FormatNumber(number.value, number.grain, L"V", style, cvars::kNumberWidth, &text));
    benchmark::DoNotOptimize(text);
    SysFreeString(text);
  }
}
BENCHMARK(ScreenText)->Arg(0)->Arg(2)->Arg(3);

/// The allocation alone, without which no text leaves the library.
void StringOnly(benchmark::State& state) {
  for (auto _ : state) {
    BSTR text = SysAllocStringLen(L"12.345 mV", 9);
    benchmark::DoNotOptimize(text);
    SysFreeString(text);
  }
}
BENCHMARK(StringOnly);

/// The C library's share of a text: digits only, no prefix, no unit, no string.
void PrintfDigits(benchmark::State& state) {
  std::size_t i = 0;
  wchar_t text[64];
  for (auto _ : state) {
    std::swprintf(text, 64, L"%*.*f", 6, 3, Numbers()[i++ & 63].value);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(PrintfDigits);

void ParseScreen(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    double value = 0.0;
    benchmark::DoNotOptimize(
        cvars::ParseScreenNumber(Numbers()[i++ & 63].text.c_str(), L"V", &value));
    benchmark::DoNotOptimize(value);
  }
}
BENCHMARK(ParseScreen);

void ParseRemote(benchmark::State& state) {
  std::size_t i = 0;
  static const std::array<std::wstring, 4> texts = {L"1.5E-3 V", L"-2.25 V", L"100 MAV", L"12 MV"};
  for (auto _ : state) {
    double value = 0.0;
    benchmark::DoNotOptimize(
        cvars::ParseNumber(texts[i++ & 3].c_str(), L"V", cvars::kRemotePrefixes, &value));
    benchmark::DoNotOptimize(value);
  }
}
BENCHMARK(ParseRemote);

/// The C library's share of reading the same texts.
void StrtodAlone(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    double value = std::wcstod(Numbers()[i++ & 63].text.c_str(), nullptr);
    benchmark::DoNotOptimize(value);
  }
}
BENCHMARK(StrtodAlone);

void ClampAndRound(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    const double value = cvars::ClampToRange(Numbers()[i++ & 63].value, -10.0, 10.0);
    double rounded = cvars::RoundToStep(value, cvars::EffectiveStep(value, 0.01));
    benchmark::DoNotOptimize(rounded);
  }
}
BENCHMARK(ClampAndRound);

void GeneralText(benchmark::State& state) {
  std::size_t i = 0;
  std::wstring text;
  for (auto _ : state) {
    text.clear();
    cvars::AppendGeneral(text, Numbers()[i++ & 63].value);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(GeneralText);

}  // namespace
