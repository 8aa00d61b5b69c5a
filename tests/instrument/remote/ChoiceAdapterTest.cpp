#include "CCvarBool.h"
#include "CCvarColor.h"
#include "CCvarEnum.h"
#include "CvarObject.h"
#include "tests/instrument/model/ScopeFixture.h"

namespace cvars::remote {
namespace {

constexpr CVARREPLICATIONFLAGS kReplication = REPLICATE_VALUE | REPLICATE_REQUESTED;

class ChoiceAdapterTest : public SessionFixture {
 protected:
  ChoiceAdapterTest() {
    m_mode->Initialize(L"Mode", L"Auto,Normal|Norm|NORM,20 MHz|20MHz|20MHZ,a b|a|A B", 0,
                       CVARFLAGS(0), nullptr, 0, kReplication, 0);
    m_switch->Initialize(L"Switch", L"Aus,Ein", 0, CVARFLAGS(0), nullptr, 0, kReplication);
    m_color->Initialize(L"Color", 0x00AB10, CVARFLAGS(0), nullptr, 0, kReplication);
    AddBag(L"Bag", {m_mode, m_switch, m_color});
  }

  const CComPtr<CvarObject<CCvarEnum>> m_mode = CvarObject<CCvarEnum>::Create();
  const CComPtr<CvarObject<CCvarBool>> m_switch = CvarObject<CCvarBool>::Create();
  const CComPtr<CvarObject<CCvarColor>> m_color = CvarObject<CCvarColor>::Create();
};

constexpr AnswerCase kAnswerCases[] = {
    {"BAG:MODE?", "AUTO\n"},
    {"BAG:MODE NORM;MODE?", "NORM\n"},
    {"BAG:MODE normal;MODE?", "NORM\n"},
    {"BAG:MODE 'Normal';MODE?", "NORM\n"},
    {"BAG:MODE 20MHZ;MODE?", "\"20MHZ\"\n"},
    {"BAG:MODE '20 MHz';MODE?", "\"20MHZ\"\n"},
    {"BAG:MODE \"a b\";MODE?", "\"A B\"\n"},
    {"BAG:MODE UP;MODE?", "NORM\n"},
    {"BAG:MODE NORM;MODE DOWN;MODE?", "AUTO\n"},
    {"BAG:MODE NORM;MODE DEF;MODE?", "AUTO\n"},
    {"BAG:SWITCH?", "0\n"},
    {"BAG:SWITCH ON;SWITCH?", "1\n"},
    {"BAG:SWITCH on;SWITCH?", "1\n"},
    {"BAG:SWITCH 1;SWITCH?", "1\n"},
    {"BAG:SWITCH 1;SWITCH OFF;SWITCH?", "0\n"},
    {"BAG:SWITCH 1;SWITCH 0;SWITCH?", "0\n"},
    {"BAG:SWITCH 1;SWITCH DEFault;SWITCH?", "0\n"},
    {"BAG:SWITCH #B1;SWITCH?", "1\n"},
    {"BAG:COLOR?", "#H00AB10\n"},
    {"BAG:COLOR #HFF0000;COLOR?", "#HFF0000\n"},
    {"BAG:COLOR 255;COLOR?", "#H0000FF\n"},
    {"BAG:COLOR '1f';COLOR?", "#H00001F\n"},
    {"BAG:COLOR 1;COLOR DEF;COLOR?", "#H00AB10\n"},
};

TEST_F(ChoiceAdapterTest, ClientsWriteAndReadTheirOwnSpelling) {
  ExpectAnswers(kAnswerCases, "BAG:MODE DEF;SWITCH DEF;COLOR DEF");
}

constexpr RefusedCase kRefusedCases[] = {
    {"BAG:MODE FAST", -224},     {"BAG:MODE 'fast'", -224}, {"BAG:MODE 7", -224},
    {"BAG:MODE", -109},          {"BAG:MODE AUTO,1", -108}, {"BAG:MODE #H1", -104},
    {"BAG:MODE? 1", -108},       {"BAG:SWITCH EIN", -224},  {"BAG:SWITCH TRUE", -224},
    {"BAG:SWITCH 2", -224},      {"BAG:SWITCH -1", -224},   {"BAG:SWITCH 'ON'", -104},
    {"BAG:SWITCH", -109},        {"BAG:SWITCH? 1", -108},   {"BAG:COLOR RED", -224},
    {"BAG:COLOR 'green'", -224}, {"BAG:COLOR -1", -222},    {"BAG:COLOR #H1000000", -222},
    {"BAG:COLOR 00FF00", -138},  {"BAG:COLOR", -109},       {"BAG:COLOR? 1", -108},
};

TEST_F(ChoiceAdapterTest, RefusalsChangeNothing) {
  ExpectRefusals(kRefusedCases, "BAG:MODE?;SWITCH?;COLOR?", "AUTO;0;#H00AB10\n");
}

TEST_F(ChoiceAdapterTest, ADisabledChoiceIsASettingsConflict) {
  EXPECT_EQ(m_mode->Disable(1), S_OK);
  EXPECT_EQ(m_switch->Enable(1, false), S_OK);
  Ask("BAG:MODE NORM");
  EXPECT_EQ(TakeError(), -221);
  Ask("BAG:SWITCH ON");
  EXPECT_EQ(TakeError(), -221);
  EXPECT_EQ(Ask("BAG:MODE?;SWITCH?"), "AUTO;0\n");
}

TEST_F(ChoiceAdapterTest, AReadOnlySettingIsProtected) {
  for (CvarCore* cvar : {static_cast<CvarCore*>(m_mode.p), static_cast<CvarCore*>(m_switch.p),
                         static_cast<CvarCore*>(m_color.p)}) {
    EXPECT_TRUE(cvar->SetReadOnly(1));
  }
  for (const char* command : {"BAG:MODE NORM", "BAG:SWITCH ON", "BAG:COLOR 1"}) {
    Ask(command);
    EXPECT_EQ(TakeError(), -203) << command;
  }
}

TEST_F(ChoiceAdapterTest, AChoiceThatIsCalledLikeAWordIsChosenByIt) {
  EXPECT_EQ(m_mode->SetRange(L"Low,Up,Def", 0, nullptr, 0, true), S_OK);
  EXPECT_EQ(Ask("BAG:MODE DEF;MODE?;MODE DEFAULT;MODE?"), "DEF;LOW\n");
  EXPECT_EQ(Ask("BAG:MODE UP;MODE?;MODE UP;MODE?"), "UP;UP\n");
  EXPECT_EQ(TakeError(), 0);
}

TEST_F(ChoiceAdapterTest, NoChoiceAtAllIsAnsweredByAWord) {
  EXPECT_EQ(m_mode->DeleteAllValues(), S_OK);
  EXPECT_EQ(Ask("BAG:MODE?"), "NONE\n");
}

using ScopeChoicesTest = model::ScopeFixture;

TEST_F(ScopeChoicesTest, EveryChoiceOfTheScopeIsACommand) {
  EXPECT_EQ(Ask("TRIGGER:MODE NORM;SOURCE C3;MODE?;SOURCE?"), "NORM;C3\n");
  EXPECT_EQ(Ask("CHANNEL2:COUPLING GND;LIMIT BW20;COUPLING?;LIMIT?"), "GND;BW20\n");
  EXPECT_EQ(Ask("CHANNEL1:COLOR?;:CHANNEL2:COLOR?"), "#H00FFFF;#HFF00FF\n");
  EXPECT_EQ(Ask("CHANNEL4:INVERT ON;INVERT?"), "1\n");
  EXPECT_EQ(TakeError(), 0);
}

TEST_F(ScopeChoicesTest, ALowTerminationRulesAcCouplingOut) {
  EXPECT_EQ(Ask("CHANNEL1:COUPLING AC;COUPLING?"), "AC\n");
  EXPECT_EQ(Ask("CHANNEL1:TERMINATION 50;COUPLING?"), "GND\n");
  Ask("CHANNEL1:COUPLING AC");
  EXPECT_EQ(TakeError(), -221);
  EXPECT_EQ(Ask("CHANNEL1:TERMINATION 1E6;COUPLING?"), "AC\n");
  EXPECT_EQ(TakeError(), 0);
}

TEST_F(ScopeChoicesTest, TheFineGrainSwitchLetsTheScaleTakeFinerValues) {
  EXPECT_EQ(Ask("HORIZONTAL:FINE?;SCALE 3E-3;SCALE?"), "0;2E-3\n");
  EXPECT_EQ(Ask("HORIZONTAL:FINE ON;FINE?;SCALE?"), "1;3E-3\n");
  EXPECT_EQ(Ask("HORIZONTAL:FINE OFF;FINE?;SCALE?"), "0;2E-3\n");
  EXPECT_EQ(TakeError(), 0);
}

}  // namespace
}  // namespace cvars::remote
