#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <random>

namespace cvars::test {

/// Random numbers of a property test; says its seed, and takes it from CVARS_TEST_SEED when set.
class Randomness {
 public:
  explicit Randomness(const char* what) {
    const char* given = std::getenv("CVARS_TEST_SEED");
    const std::uint64_t seed =
        given != nullptr ? std::strtoull(given, nullptr, 10) : std::random_device{}();
    std::cout << what << ": CVARS_TEST_SEED=" << seed << '\n';
    m_engine.seed(seed);
  }

  std::uint64_t Bits() { return m_engine(); }

  /// Gives a whole number from `low` to `high`.
  std::int64_t Whole(std::int64_t low, std::int64_t high) {
    return std::uniform_int_distribution<std::int64_t>(low, high)(m_engine);
  }

  double Real(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(m_engine);
  }

  bool Chance(double probability) { return Real(0.0, 1.0) < probability; }

  /// Gives a double of any bit pattern, infinities and not-a-number included.
  double AnyDouble() {
    const std::uint64_t bits = Bits();
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
  }

  template <class Container>
  const auto& Pick(const Container& choices) {
    return choices[static_cast<std::size_t>(
        Whole(0, static_cast<std::int64_t>(std::size(choices)) - 1))];
  }

 private:
  std::mt19937_64 m_engine;
};

}  // namespace cvars::test
