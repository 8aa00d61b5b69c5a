#include <gtest/gtest.h>

#include <string>

#include "CCvarBag.h"
#include "CCvarFileName.h"
#include "CCvarObjectName.h"
#include "CCvarString.h"
#include "CvarObject.h"
#include "instrument/remote/BagCommands.h"
#include "instrument/remote/Session.h"
#include "tests/support/IsolatedHome.h"

namespace cvars::remote {
namespace {

constexpr CVARREPLICATIONFLAGS kReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;

class TextAdapterTest : public testing::Test {
 protected:
  TextAdapterTest() {
    const CComPtr<CCvarBag> bag = CCvarBag::Create(L"Bag", nullptr);
    const auto label = CvarObject<CCvarString>::Create();
    label->Initialize(L"Label", L"none", 8, CVARFLAGS(0), nullptr, 0, kReplication);
    const auto trace = CvarObject<CCvarObjectName>::Create();
    trace->Initialize(L"Trace", L"Math 1", -1, CVARFLAGS(0), nullptr, 0, kReplication);
    const auto file = CvarObject<CCvarFileName>::Create();
    file->Initialize(L"File", L"D:\\a.trc", L"", L"", L"", L"fullfilename", 16, 0, 0, CVARFLAGS(0),
                     nullptr, 0, kReplication);
    const auto locked = CvarObject<CCvarString>::Create();
    locked->Initialize(L"Locked", L"fixed", 8, CVARFLAG_READONLY, nullptr, 0, kReplication);
    EXPECT_EQ(bag->Add(label), S_OK);
    EXPECT_EQ(bag->Add(trace), S_OK);
    EXPECT_EQ(bag->Add(file), S_OK);
    EXPECT_EQ(bag->Add(locked), S_OK);
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

struct TextCase {
  const char* command;
  const char* answer;
};
constexpr TextCase kTextCases[] = {
    {"BAG:LABEL?", "\"none\"\n"},
    {"BAG:LABEL 'clock in';LABEL?", "\"clock in\"\n"},
    {"BAG:LABEL \"a\"\"b\";LABEL?", "\"a\"\"b\"\n"},
    {"BAG:LABEL 'it''s';LABEL?", "\"it's\"\n"},
    {"BAG:LABEL '1234567890';LABEL?", "\"12345678\"\n"},
    {"BAG:LABEL '';LABEL?", "\"\"\n"},
    {"BAG:LABEL 'x';LABEL DEF;LABEL?", "\"none\"\n"},
    {"BAG:LABEL '\xc2\xb5V';LABEL?", "\"\xc2\xb5V\"\n"},
    {"BAG:TRACE?", "\"MATH1\"\n"},
    {"BAG:TRACE 'Sum';TRACE?", "\"SUM\"\n"},
    {"BAG:TRACE 'Sum of all|sumAll|sum';TRACE?", "\"SUM\"\n"},
    {"BAG:FILE?", "\"D:\\a.trc\"\n"},
    {"BAG:FILE 'C:\\x\\y.trc';FILE?", "\"C:\\x\\y.trc\"\n"},
    {"BAG:FILE 'z.trc';FILE?", "\"D:\\z.trc\"\n"},
};

TEST_F(TextAdapterTest, TextsTravelInQuotes) {
  for (const TextCase& row : kTextCases) {
    SCOPED_TRACE(row.command);
    Ask("BAG:LABEL DEF;TRACE DEF;FILE DEF");
    EXPECT_EQ(Ask(row.command), row.answer);
    EXPECT_EQ(TakeError(), 0);
  }
}

struct RefusedCase {
  const char* command;
  int error;
};
constexpr RefusedCase kRefusedCases[] = {
    {"BAG:LABEL clock", -104},   {"BAG:LABEL 5", -104},  {"BAG:LABEL", -109},
    {"BAG:LABEL 'a','b'", -108}, {"BAG:LABEL? 5", -108}, {"BAG:TRACE 'A|B'", -224},
    {"BAG:LOCKED 'x'", -203},
};

TEST_F(TextAdapterTest, RefusalsChangeNothing) {
  for (const RefusedCase& row : kRefusedCases) {
    SCOPED_TRACE(row.command);
    Ask(row.command);
    EXPECT_EQ(TakeError(), row.error);
    EXPECT_EQ(Ask("BAG:LABEL?;TRACE?;LOCKED?"), "\"none\";\"MATH1\";\"fixed\"\n");
  }
}

}  // namespace
}  // namespace cvars::remote
