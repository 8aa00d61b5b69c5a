#pragma once

#include <atomic>

namespace cvars {

/// A number that threads may read and write at any time, with no order between them: a plain field
/// without undefined behaviour. Costs what the plain field costs.
template <class T>
class Relaxed {
 public:
  constexpr Relaxed() noexcept : m_value{} {}
  constexpr Relaxed(T value) noexcept : m_value{value} {}  // NOLINT: stands for the plain field
  Relaxed(const Relaxed& other) noexcept : m_value{other.Get()} {}
  Relaxed& operator=(const Relaxed& other) noexcept {
    Set(other.Get());
    return *this;
  }
  Relaxed& operator=(T value) noexcept {
    Set(value);
    return *this;
  }
  operator T() const noexcept { return Get(); }  // NOLINT: stands for the plain field
  T Get() const noexcept { return m_value.load(std::memory_order_relaxed); }
  void Set(T value) noexcept { m_value.store(value, std::memory_order_relaxed); }

 private:
  std::atomic<T> m_value;
};

}  // namespace cvars
