#include "CCvarSafeArray.h"
#include "CvarObject.h"
#include "tests/instrument/remote/SessionFixture.h"

namespace cvars::remote {
namespace {

class ArrayAdapterTest : public SessionFixture {
 protected:
  ArrayAdapterTest() {
    const auto points = CvarObject<CCvarSafeArray>::Create();
    points->Initialize(L"Points", L"0,1;2,3", L"5,0,10,0.5;3,0,5,1", CVARFLAGS(0));
    AddBag(L"Mask", {points});
  }
};

// Columns: doubles in [0, 10] by 0.5, integers in [0, 5].
constexpr AnswerCase kTableCases[] = {
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
  ExpectAnswers(kTableCases, "MASK:POINTS DEF");
}

constexpr RefusedCase kRefusedCases[] = {
    {"MASK:POINTS 5", -104},       {"MASK:POINTS abc", -104},  {"MASK:POINTS", -109},
    {"MASK:POINTS '1','2'", -108}, {"MASK:POINTS? 'x'", -104}, {"MASK:POINTS? WORD", -224},
};

TEST_F(ArrayAdapterTest, RefusalsChangeNothing) {
  ExpectRefusals(kRefusedCases, "MASK:POINTS?", "\"0,1;2,3\"\n");
}

}  // namespace
}  // namespace cvars::remote
