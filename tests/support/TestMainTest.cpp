#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>

namespace {

bool RunIsUnderTestLocale() { return std::getenv("CVARS_TEST_LOCALE") != nullptr; }

std::string Printed(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

TEST(TestLocale, RunUnderACommaLocaleReallyHasTheComma) {
  const std::string expected = RunIsUnderTestLocale() ? "1,5" : "1.5";
  EXPECT_EQ(Printed(1.5), expected);

  std::ostringstream stream;
  stream << 1.5;
  EXPECT_EQ(stream.str(), expected);
}

TEST(TestLocale, StopOfTheNumberParserIsTheSeparatorOfTheLocale) {
  EXPECT_EQ(std::strtod("38.4", nullptr), RunIsUnderTestLocale() ? 38.0 : 38.4);
}

TEST(TestHome, IsAFolderOfThisRun) {
  const char* home = std::getenv("VORTANA_HOME");
  ASSERT_NE(home, nullptr);
  EXPECT_TRUE(std::filesystem::is_directory(home));
  EXPECT_TRUE(std::filesystem::is_empty(home));
}

}  // namespace
