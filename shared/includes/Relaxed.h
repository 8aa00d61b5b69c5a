#pragma once

#include <atomic>

#if defined(__SANITIZE_THREAD__)
#define CVARS_CHECKED_FOR_RACES 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define CVARS_CHECKED_FOR_RACES 1
#endif
#endif

namespace cvars {

/// What Relaxed keeps its number in.
template <class T>
class RelaxedCell {
 public:
  constexpr RelaxedCell(T value) noexcept : m_value{value} {}
  T Load() const noexcept { return m_value.load(std::memory_order_relaxed); }
  void Store(T value) noexcept { m_value.store(value, std::memory_order_relaxed); }

 private:
  std::atomic<T> m_value;
};

#if (defined(__x86_64__) || defined(__aarch64__)) && !defined(CVARS_CHECKED_FOR_RACES)
/// A double that is read and written by one instruction each: these processors never tear one that
/// is aligned, and volatile keeps the compiler from reading or writing it in any other way.
///
/// A compiler moves an atomic double through an integer register, which made the set of a value
/// slower by a tenth. What checks for races is given the atomic, which says what is meant.
template <>
class RelaxedCell<double> {
 public:
  constexpr RelaxedCell(double value) noexcept : m_value{value} {}
  double Load() const noexcept { return m_value; }
  void Store(double value) noexcept { m_value = value; }

 private:
  alignas(8) volatile double m_value;
};
#endif

/// A number that threads may read and write at any time, with no order between them: a plain field
/// without undefined behaviour. Costs what the plain field costs.
template <class T>
class Relaxed {
 public:
  constexpr Relaxed() noexcept : m_cell{T{}} {}
  constexpr Relaxed(T value) noexcept : m_cell{value} {}  // NOLINT: stands for the plain field
  Relaxed(const Relaxed& other) noexcept : m_cell{other.Get()} {}
  Relaxed& operator=(const Relaxed& other) noexcept {
    Set(other.Get());
    return *this;
  }
  Relaxed& operator=(T value) noexcept {
    Set(value);
    return *this;
  }
  operator T() const noexcept { return Get(); }  // NOLINT: stands for the plain field
  T Get() const noexcept { return m_cell.Load(); }
  void Set(T value) noexcept { m_cell.Store(value); }

 private:
  RelaxedCell<T> m_cell;
};

}  // namespace cvars
