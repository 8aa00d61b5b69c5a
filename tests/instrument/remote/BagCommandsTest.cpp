#include "instrument/remote/BagCommands.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "CComPtr.h"
#include "CCvarDouble.h"
#include "CvarObject.h"
#include "instrument/remote/CvarAdapter.h"
#include "tests/instrument/remote/SessionFixture.h"

namespace cvars::remote {
namespace {

using Double = CvarObject<CCvarDouble>;

CComPtr<Double> MakeDouble(const wchar_t* name, double min, double max, double grain,
                           const wchar_t* unit, int flags = 0) {
  CComPtr<Double> cvar = Double::Create();
  cvar->Initialize(name, 1, min, max, grain, unit, static_cast<CVARFLAGS>(flags), L"", 0,
                   CVARREPLICATIONFLAGS(0x202));
  return cvar;
}

class BagCommandsTest : public SessionFixture {
 protected:
  BagCommandsTest() {
    AddBag(L"My Bag", {MakeDouble(L"Voltage", -5, 5, 0.01, L"V"),
                       MakeDouble(L"Trigger Level|trig level", 0, 10, 1, L""),
                       MakeDouble(L"Resistance", 1, 1e9, 1, L"OHM"),
                       MakeDouble(L"Frequency", 0, 1e9, 1, L"HZ"),
                       MakeDouble(L"Screen Unit", 0, 1e9, 1, L"Hz"),
                       MakeDouble(L"Locked", 0, 10, 1, L"V", CVARFLAG_READONLY),
                       MakeDouble(L"Panel", 0, 10, 1, L"V", CVARFLAG_GUIONLY),
                       MakeDouble(L"Hidden", 0, 10, 1, L"V", CVARFLAG_HIDDEN)});
  }
};

// Steps: 0.01 for the voltage, 1 for everything else.
constexpr AnswerCase kAnswerCases[] = {
    {"MY_BAG:VOLTAGE 2.5;VOLTAGE?", "2.5\n"},
    {"my_bag:voltage 2.5;Voltage?", "2.5\n"},
    {"MY_BAG:VOLTAGE 1.234 V;VOLTAGE?", "1.23\n"},
    {"MY_BAG:VOLTAGE 1500mv;VOLTAGE?", "1.5\n"},
    {"MY_BAG:VOLTAGE 0.000002 MAV;VOLTAGE?", "2\n"},
    {"MY_BAG:VOLTAGE 0.002 KV;VOLTAGE?", "2\n"},
    {"MY_BAG:VOLTAGE 1 E 0 V;VOLTAGE?", "1\n"},
    {"MY_BAG:VOLTAGE -100;VOLTAGE?", "-5\n"},
    {"MY_BAG:VOLTAGE .5;VOLTAGE?", "500E-3\n"},
    {"MY_BAG:VOLTAGE MIN;VOLTAGE?", "-5\n"},
    {"MY_BAG:VOLTAGE maximum;VOLTAGE?", "5\n"},
    {"MY_BAG:VOLTAGE DEF;VOLTAGE?", "1\n"},
    {"MY_BAG:VOLTAGE DEF;VOLTAGE UP;VOLTAGE UP;VOLTAGE?", "1.02\n"},
    {"MY_BAG:VOLTAGE DEF;VOLTAGE DOWN;VOLTAGE?", "990E-3\n"},
    {"MY_BAG:VOLTAGE? MIN;VOLTAGE? MAX;VOLTAGE? DEF", "-5;5;1\n"},
    {"MY_BAG:VOLTAGE? minimum", "-5\n"},
    {"MY_BAG:TRIG_LEVEL 7;TRIG_LEVEL?", "7\n"},
    {"MY_BAG:TRIG_LEVEL #HA;TRIG_LEVEL?", "10\n"},
    {"MY_BAG:TRIG_LEVEL 5000 M;TRIG_LEVEL?", "5\n"},
    {"MY_BAG:RESISTANCE 2 MOHM;RESISTANCE?", "2E+6\n"},
    {"MY_BAG:RESISTANCE 100 mohm;RESISTANCE?", "100E+6\n"},
    {"MY_BAG:RESISTANCE 3 KOHM;RESISTANCE?", "3E+3\n"},
    {"MY_BAG:FREQUENCY 2 MHZ;FREQUENCY?", "2E+6\n"},
    {"MY_BAG:SCREEN_UNIT 2 khz;SCREEN_UNIT?", "2E+3\n"},
    {"MY_BAG:HIDDEN 4;HIDDEN?", "4\n"},
};

TEST_F(BagCommandsTest, SetAndQuery) { ExpectAnswers(kAnswerCases); }

constexpr RefusedCase kRefusedCases[] = {
    {"MY_BAG:NOTHING 1", -113},      {"NO_BAG:VOLTAGE 1", -113},
    {"MY_BAG:PANEL 1", -113},        {"MY_BAG:PANEL?", -113},
    {"MY_BAG2:VOLTAGE 1", -114},     {"MY_BAG:VOLTAGE", -109},
    {"MY_BAG:VOLTAGE 1,2", -108},    {"MY_BAG:VOLTAGE? MIN,MAX", -108},
    {"MY_BAG:VOLTAGE abc", -104},    {"MY_BAG:VOLTAGE 'a'", -104},
    {"MY_BAG:VOLTAGE #13abc", -104}, {"MY_BAG:VOLTAGE (1)", -104},
    {"MY_BAG:VOLTAGE -", -104},      {"MY_BAG:VOLTAGE MAXI", -104},
    {"MY_BAG:VOLTAGE 1 A", -131},    {"MY_BAG:VOLTAGE 1 XV", -131},
    {"MY_BAG:VOLTAGE 0x10", -131},   {"MY_BAG:VOLTAGE 1.2.3", -131},
    {"MY_BAG:VOLTAGE INF", -224},    {"MY_BAG:VOLTAGE NINFinity", -224},
    {"MY_BAG:VOLTAGE NAN", -224},    {"MY_BAG:VOLTAGE 1E400", -224},
    {"MY_BAG:VOLTAGE? UP", -224},    {"MY_BAG:VOLTAGE? 5", -104},
    {"MY_BAG:LOCKED 5", -203},       {"MY_BAG:LOCKED MAX", -203},
    {"MY_BAG:LOCKED UP", -203},
};

TEST_F(BagCommandsTest, RefusalChangesNothing) {
  ExpectRefusals(kRefusedCases, "MY_BAG:VOLTAGE?;LOCKED?", "1;1\n");
}

struct ResultCase {
  HRESULT result;
  ScpiError error;
};

constexpr ResultCase kResultCases[] = {
    {S_OK, ScpiError::kNone},
    {S_FALSE, ScpiError::kNone},
    {E_ACCESSDENIED, ScpiError::kCommandProtected},
    {E_INVALIDARG, ScpiError::kIllegalParameterValue},
    {DISP_E_OVERFLOW, ScpiError::kDataOutOfRange},
    {DISP_E_TYPEMISMATCH, ScpiError::kDataTypeError},
    {E_FAIL, ScpiError::kExecutionError},
    {E_NOTIMPL, ScpiError::kExecutionError},
};

TEST(ErrorOfTest, GivesTheStandardErrorOfAResultCode) {
  for (const ResultCase& row : kResultCases) EXPECT_EQ(ErrorOf(row.result), row.error);
}

/// Without an adapter of its own a type is spoken to by its remote text.
TEST(CvarAdapterTest, HandsOverTheRemoteText) {
  const test::IsolatedHome home;
  const CComPtr<Double> cvar = MakeDouble(L"Voltage", -5, 5, 0.01, L"V");
  const CvarAdapter& adapter = AdapterOf(L"NoSuchType");
  StatusModel status;
  const Device device;
  ProgramUnit unit;
  std::string answer;

  EXPECT_EQ(adapter.Set(*cvar, {unit, status, device, false}), ScpiError::kMissingParameter);
  unit.parameters = {{Parameter::Kind::kString, "'2.5 MV'"}};
  EXPECT_EQ(adapter.Set(*cvar, {unit, status, device, false}), ScpiError::kNone);
  unit.parameters = {{Parameter::Kind::kNumber, "3 V"}};
  EXPECT_EQ(adapter.Set(*cvar, {unit, status, device, false}), ScpiError::kNone);
  unit.parameters.clear();
  EXPECT_EQ(adapter.Query(*cvar, {unit, status, device, false}, answer), ScpiError::kNone);
  EXPECT_EQ(answer, "3");
}

}  // namespace
}  // namespace cvars::remote
