// Holds every row of the table of arrays and variants.

#include "ValueTable.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>
#include <vector>

namespace {

using cvars::test::ArrayChecks;
using cvars::test::json;
using cvars::test::ValueTableChecks;
using cvars::test::VariantChecks;

/// Comparing two variants is no service of the platform; the library compares texts and numbers.
constexpr const char* kNotOffered = "varcmp";

std::vector<json> Rows() {
  std::ifstream file(CVARS_SOURCE_DIR "/tests/golden/safearray.jsonl");
  std::vector<json> rows;
  for (std::string line; std::getline(file, line);) rows.push_back(json::parse(line));
  return rows;
}

std::vector<std::string> Cases() {
  std::set<std::string> cases;
  for (const json& row : Rows()) cases.insert(row.at("case").get<std::string>());
  cases.erase(kNotOffered);
  return {cases.begin(), cases.end()};
}

ValueTableChecks Checks() {
  ValueTableChecks checks = ArrayChecks();
  checks.merge(VariantChecks());
  return checks;
}

class ValueTable : public testing::TestWithParam<std::string> {};

TEST_P(ValueTable, EveryRowHolds) {
  const ValueTableChecks checks = Checks();
  const auto check = checks.find(GetParam());
  ASSERT_TRUE(check != checks.end()) << "no check reads this case";
  for (const json& row : Rows()) {
    if (row.at("case") != GetParam()) continue;
    SCOPED_TRACE(row.dump());
    check->second(row);
  }
}

INSTANTIATE_TEST_SUITE_P(Case, ValueTable, testing::ValuesIn(Cases()),
                         [](const auto& row) { return row.param; });

TEST(ValueTableChecksTest, EveryCheckHasARow) {
  const std::vector<std::string> list = Cases();
  const std::set<std::string> cases(list.begin(), list.end());
  EXPECT_EQ(cases.size(), 38u);
  for (const auto& [name, check] : Checks()) EXPECT_TRUE(cases.contains(name)) << name;
}

}  // namespace
