#include "instrument/remote/ScpiError.h"

#include <gtest/gtest.h>

namespace cvars::remote {
namespace {

struct TextCase {
  int number;
  const char* text;
};
constexpr TextCase kTextCases[] = {
    {0, "No error"},
    {-101, "Invalid character"},
    {-102, "Syntax error"},
    {-103, "Invalid separator"},
    {-104, "Data type error"},
    {-108, "Parameter not allowed"},
    {-109, "Missing parameter"},
    {-111, "Header separator error"},
    {-112, "Program mnemonic too long"},
    {-113, "Undefined header"},
    {-114, "Header suffix out of range"},
    {-131, "Invalid suffix"},
    {-138, "Suffix not allowed"},
    {-151, "Invalid string data"},
    {-161, "Invalid block data"},
    {-200, "Execution error"},
    {-203, "Command protected"},
    {-221, "Settings conflict;other settings rule this choice out"},
    {-222, "Data out of range"},
    {-224, "Illegal parameter value"},
    {-321, "Out of memory"},
    {-350, "Queue overflow"},
    {-363, "Input buffer overrun"},
    {-430, "Query DEADLOCKED"},
};

TEST(ScpiErrorTest, EveryNumberHasItsText) {
  for (const TextCase& row : kTextCases) {
    EXPECT_EQ(ErrorText(static_cast<ScpiError>(row.number)), row.text) << row.number;
  }
}

}  // namespace
}  // namespace cvars::remote
