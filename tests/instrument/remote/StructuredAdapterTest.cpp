#include <gtest/gtest.h>

#include <string>

#include "CCvarAction.h"
#include "CCvarBitPattern.h"
#include "CCvarObject.h"
#include "CCvarRegister.h"
#include "CvarObject.h"
#include "instrument/remote/StandardCommands.h"
#include "tests/instrument/remote/SessionFixture.h"
#include "tests/support/RecordingListener.h"

namespace cvars::remote {
namespace {

constexpr CVARREPLICATIONFLAGS kReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;

class StructuredAdapterTest : public SessionFixture {
 protected:
  StructuredAdapterTest() {
    AddStandardCommands(m_table);
    const auto pattern = CvarObject<CCvarBitPattern>::Create();
    pattern->Initialize(L"Pattern", L"X10X", 8, 4, BITPATTERN_FORMAT_BIN, L"01X", L'0',
                        BITPATTERN_PAD_LEFT, BITPATTERN_SIZE_BIT_FIX, CVARFLAGS(0), nullptr, 0,
                        kReplication);
    const auto control = CvarObject<CCvarRegister>::Create();
    control->Initialize(L"Control", 0x10, ACCESSSTYLE_READWRITE, 0, 16, 0xFFFF, CVARFLAGS(0),
                        nullptr, 0, kReplication, false);
    const auto status = CvarObject<CCvarRegister>::Create();
    status->Initialize(L"Status", 0x81, ACCESSSTYLE_READONLY, 0, 8, 0xFF, CVARFLAGS(0), nullptr, 0,
                       kReplication, false);
    const auto locked = CvarObject<CCvarAction>::Create();
    locked->Initialize(L"Locked", CVARFLAG_READONLY, nullptr, 0, 0, kReplication);
    m_action->Initialize(L"Act", CVARFLAGS(0), nullptr, 0, 0, kReplication);
    EXPECT_EQ(m_action->AttachCvarEventSink(m_listener), S_OK);
    const auto object = CvarObject<CCvarObject<IUnknown>>::Create();
    object->Initialize(L"Object", CVARFLAGS(0), true, kReplication);
    EXPECT_EQ(object->put_Value(CComVariant(static_cast<IUnknown*>(m_listener.p))), S_OK);
    AddBag(L"Bag", {pattern, control, status, locked, m_action, object});
  }

  CComPtr<test::RecordingListener> m_listener = test::RecordingListener::Create();
  CComPtr<CvarObject<CCvarAction>> m_action = CvarObject<CCvarAction>::Create();
};

constexpr AnswerCase kAnswerCases[] = {
    {"BAG:PATTERN?", "\"X10X\"\n"},
    {"BAG:PATTERN '1x0 x';PATTERN?", "\"1X0X\"\n"},
    {"BAG:PATTERN \"1100\";PATTERN?", "#B1100\n"},
    {"BAG:PATTERN #B11;PATTERN?", "#B0011\n"},
    {"BAG:PATTERN #HA;PATTERN?", "#B1010\n"},
    {"BAG:PATTERN #hx;PATTERN?", "\"XXXX\"\n"},
    {"BAG:PATTERN #Q17;PATTERN?", "#B1111\n"},
    {"BAG:PATTERN 5;PATTERN?", "#B0101\n"},
    {"BAG:PATTERN 0;PATTERN DEF;PATTERN?", "\"X10X\"\n"},
    {"BAG:CONTROL?", "#H10\n"},
    {"BAG:CONTROL #H1F;CONTROL?", "#H1F\n"},
    {"BAG:CONTROL #Q17;CONTROL?", "#HF\n"},
    {"BAG:CONTROL #B101;CONTROL?", "#H5\n"},
    {"BAG:CONTROL 255;CONTROL?", "#HFF\n"},
    {"BAG:CONTROL &h1f;CONTROL?", "#H1F\n"},
    {"BAG:CONTROL '&hAB';CONTROL?", "#HAB\n"},
    {"BAG:CONTROL #H12345;CONTROL?", "#H2345\n"},
    {"BAG:CONTROL 0;CONTROL?", "#H0\n"},
    {"BAG:CONTROL 0;CONTROL DEFault;CONTROL?", "#H10\n"},
    {"BAG:STATUS?", "#H81\n"},
};

TEST_F(StructuredAdapterTest, PatternsAndRegistersTravelAsTextsOrNumbers) {
  ExpectAnswers(kAnswerCases, "BAG:PATTERN DEF;CONTROL DEF");
}

constexpr RefusedCase kRefusedCases[] = {
    {"BAG:PATTERN '12'", -224},
    {"BAG:PATTERN", -109},
    {"BAG:PATTERN 1,2", -108},
    {"BAG:PATTERN? 1", -108},
    {"BAG:PATTERN X10X", -104},
    {"BAG:PATTERN -1", -222},
    {"BAG:PATTERN 4294967296", -222},
    {"BAG:PATTERN #HG", -224},
    {"BAG:PATTERN #B12", -224},
    {"BAG:PATTERN #B", -104},
    {"BAG:PATTERN #", -104},
    {"BAG:PATTERN &h1", -104},
    {"BAG:CONTROL -1", -222},
    {"BAG:CONTROL 4294967296", -222},
    {"BAG:CONTROL 'abc'", -104},
    {"BAG:CONTROL &hG", -104},
    {"BAG:CONTROL MAX", -104},
    {"BAG:CONTROL", -109},
    {"BAG:CONTROL 1,2", -108},
    {"BAG:CONTROL? 1", -108},
    {"BAG:STATUS 1", -203},
    {"BAG:STATUS DEF", -203},
    {"BAG:ACT 1", -108},
    {"BAG:ACT?", -113},
    {"BAG:LOCKED", -203},
    {"BAG:OBJECT 0", -200},
    {"BAG:OBJECT?", -200},
};

TEST_F(StructuredAdapterTest, RefusalsChangeNothing) {
  ExpectRefusals(kRefusedCases, "BAG:PATTERN?;CONTROL?;STATUS?", "\"X10X\";#H10;#H81\n");
  EXPECT_TRUE(m_listener->masks.empty());
}

TEST_F(StructuredAdapterTest, AnActionIsDoneWhenOperationCompleteAnswers) {
  std::string order;
  m_listener->onNotify = [&](IVorCvar*, NOTIFYTYPE) { order += "done "; };
  order += Ask("BAG:ACT;*OPC?");
  EXPECT_EQ(order, "done 1\n");
  EXPECT_EQ(Ask("BAG:ACT"), "");
  EXPECT_EQ(m_listener->masks, (std::vector<NOTIFYTYPE>{NOTIFY_VALUE, NOTIFY_VALUE}));
  EXPECT_EQ(TakeError(), 0);
}

TEST_F(StructuredAdapterTest, AnActionThatFailsIsReported) {
  m_listener->answer = E_FAIL;
  Ask("BAG:ACT");
  EXPECT_EQ(TakeError(), -200);
}

TEST_F(StructuredAdapterTest, AnObjectIsTakenOutByDefault) {
  const ULONG references = m_listener->References();
  Ask("BAG:OBJECT DEF");
  EXPECT_EQ(TakeError(), 0);
  EXPECT_EQ(m_listener->References(), references - 1);
}

}  // namespace
}  // namespace cvars::remote
