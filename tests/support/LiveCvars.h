#pragma once

#include <gtest/gtest.h>

#include "CvarBaseCpp.h"

namespace cvars::test {

/// Number of cvars that live in this process.
inline int LiveCvars() {
  return CvarBaseCpp::NumCvarsConstructed() - CvarBaseCpp::NumCvarsDestructed();
}

/// Fails a test that leaves cvars behind. Tests hold their cvars in local variables.
class CvarTest : public testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(LiveCvars(), m_before) << "cvars were left behind"; }

 private:
  const int m_before = LiveCvars();
};

}  // namespace cvars::test
