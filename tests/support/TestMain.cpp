// Entry of every test program: a fresh home folder, and the locale of CVARS_TEST_LOCALE.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <optional>
#include <stdexcept>
#include <string>

#include "IsolatedHome.h"

namespace {

// Puts the C library and the streams of C++ into the locale that the run asks for.
bool EnterTestLocale() {
  const char* name = std::getenv("CVARS_TEST_LOCALE");
  if (name == nullptr) return true;
  try {
    std::locale::global(std::locale(name));
  } catch (const std::runtime_error&) {
    std::fprintf(stderr, "CVARS_TEST_LOCALE: no locale \"%s\"\n", name);
    return false;
  }
  if (std::setlocale(LC_NUMERIC, nullptr) != std::string(name)) {
    std::fprintf(stderr, "CVARS_TEST_LOCALE: \"%s\" does not reach the C library\n", name);
    return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  // A death test, or a child that runs a test program again, keeps the home that it inherits.
  std::optional<cvars::test::IsolatedHome> home;
  if (std::getenv("CVARS_TEST_HOME") == nullptr) {
    home.emplace();
    setenv("CVARS_TEST_HOME", home->Folder().c_str(), 1);
  }
  testing::InitGoogleMock(&argc, argv);
  if (!EnterTestLocale()) return 1;
  return RUN_ALL_TESTS();
}
