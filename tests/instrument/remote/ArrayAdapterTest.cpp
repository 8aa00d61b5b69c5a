#include <gtest/gtest.h>

#include <string>

#include "CCvarBag.h"
#include "CCvarSafeArray.h"
#include "CvarObject.h"
#include "instrument/remote/BagCommands.h"
#include "instrument/remote/Session.h"
#include "tests/support/IsolatedHome.h"

namespace cvars::remote {
namespace {

class ArrayAdapterTest : public testing::Test {
 protected:
  ArrayAdapterTest() {
    const CComPtr<CCvarBag> bag = CCvarBag::Create(L"Mask", nullptr);
    const auto points = CvarObject<CCvarSafeArray>::Create();
    points->Initialize(L"Points", L"0,1;2,3", L"5,0,10,0.5;3,0,5,1", CVARFLAGS(0));
    EXPECT_EQ(bag->Add(points), S_OK);
    EXPECT_EQ(AddBagCommands(m_table, *bag), S_OK);
  }

  std::string Ask(const std::string& line) { return m_session.Execute(line); }
  int TakeError() { return static_cast<int>(m_session.Status().TakeError()); }

 private:
  test::IsolatedHome m_home;
  CommandTable m_table;
  Device m_device;
  Session m_session{m_table, m_device};
};

struct TableCase {
  const char* command;
  const char* answer;
};
// Columns: doubles in [0, 10] by 0.5, integers in [0, 5].
constexpr TableCase kTableCases[] = {
    {"MASK:POINTS?", "\"0,1;2,3\"\n"},
    {"MASK:POINTS '1.3,9;11,2';POINTS?", "\"1.5,5;10,2\"\n"},
    {"MASK:POINTS #15 4,4 ;POINTS?", "\"4,4\"\n"},
    {"MASK:POINTS #134,4;POINTS?", "\"4,4\"\n"},
    {"MASK:POINTS '';POINTS?", "\"\"\n"},
    {"MASK:POINTS '4,4';POINTS DEF;POINTS?", "\"0,1;2,3\"\n"},
    {"MASK:POINTS? BLOCK", "#170,1;2,3\n"},
    {"MASK:POINTS? bloc", "#170,1;2,3\n"},
};

TEST_F(ArrayAdapterTest, TablesTravelInQuotesOrInBlocks) {
  for (const TableCase& row : kTableCases) {
    SCOPED_TRACE(row.command);
    Ask("MASK:POINTS DEF");
    EXPECT_EQ(Ask(row.command), row.answer);
    EXPECT_EQ(TakeError(), 0);
  }
}

struct RefusedCase {
  const char* command;
  int error;
};
constexpr RefusedCase kRefusedCases[] = {
    {"MASK:POINTS 5", -104},       {"MASK:POINTS abc", -104},  {"MASK:POINTS", -109},
    {"MASK:POINTS '1','2'", -108}, {"MASK:POINTS? 'x'", -104}, {"MASK:POINTS? WORD", -224},
};

TEST_F(ArrayAdapterTest, RefusalsChangeNothing) {
  for (const RefusedCase& row : kRefusedCases) {
    SCOPED_TRACE(row.command);
    Ask(row.command);
    EXPECT_EQ(TakeError(), row.error);
    EXPECT_EQ(Ask("MASK:POINTS?"), "\"0,1;2,3\"\n");
  }
}

}  // namespace
}  // namespace cvars::remote
