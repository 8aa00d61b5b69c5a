#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

namespace cvars::test {

/// The place of a virtual function in the table of its class, from 0: the ABI keeps it, in bytes
/// and one more, in the first word of a pointer to the function.
template <class Function>
std::size_t SlotOf(Function function) {
  std::ptrdiff_t place = 0;
  std::memcpy(&place, &function, sizeof(place));
  EXPECT_EQ(place % 2, 1) << "not a virtual function";
  return static_cast<std::size_t>(place - 1) / sizeof(void*);
}

}  // namespace cvars::test
