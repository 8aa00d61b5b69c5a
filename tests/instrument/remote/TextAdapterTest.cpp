#include "CCvarFileName.h"
#include "CCvarObjectName.h"
#include "CCvarString.h"
#include "CvarObject.h"
#include "tests/instrument/remote/SessionFixture.h"

namespace cvars::remote {
namespace {

constexpr CVARREPLICATIONFLAGS kReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;

class TextAdapterTest : public SessionFixture {
 protected:
  TextAdapterTest() {
    const auto label = CvarObject<CCvarString>::Create();
    label->Initialize(L"Label", L"none", 8, CVARFLAGS(0), nullptr, 0, kReplication);
    const auto trace = CvarObject<CCvarObjectName>::Create();
    trace->Initialize(L"Trace", L"Math 1", -1, CVARFLAGS(0), nullptr, 0, kReplication);
    const auto file = CvarObject<CCvarFileName>::Create();
    file->Initialize(L"File", L"D:\\a.trc", L"", L"", L"", L"fullfilename", 16, 0, 0, CVARFLAGS(0),
                     nullptr, 0, kReplication);
    const auto locked = CvarObject<CCvarString>::Create();
    locked->Initialize(L"Locked", L"fixed", 8, CVARFLAG_READONLY, nullptr, 0, kReplication);
    AddBag(L"Bag", {label, trace, file, locked});
  }
};

constexpr AnswerCase kTextCases[] = {
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
  ExpectAnswers(kTextCases, "BAG:LABEL DEF;TRACE DEF;FILE DEF");
}

constexpr RefusedCase kRefusedCases[] = {
    {"BAG:LABEL clock", -104},   {"BAG:LABEL 5", -104},  {"BAG:LABEL", -109},
    {"BAG:LABEL 'a','b'", -108}, {"BAG:LABEL? 5", -108}, {"BAG:TRACE 'A|B'", -224},
    {"BAG:LOCKED 'x'", -203},
};

TEST_F(TextAdapterTest, RefusalsChangeNothing) {
  ExpectRefusals(kRefusedCases, "BAG:LABEL?;TRACE?;LOCKED?", "\"none\";\"MATH1\";\"fixed\"\n");
}

}  // namespace
}  // namespace cvars::remote
