#include "instrument/remote/Session.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>
#include <vector>

#include "instrument/remote/StandardCommands.h"
#include "instrument/remote/Syntax.h"

namespace cvars::remote {
namespace {

/// Answers with its name and keeps what was set.
class NamedCommand final : public Command {
 public:
  NamedCommand(std::string name, std::vector<std::string>& sets)
      : m_name(std::move(name)), m_sets(sets) {}
  ScpiError Set(const CommandCall& call) const override {
    m_sets.push_back(m_name + "=" + std::string(Trim(call.unit.data)));
    return ScpiError::kNone;
  }
  ScpiError Query(const CommandCall&, std::string& answer) const override {
    answer += m_name;
    return ScpiError::kNone;
  }

 private:
  std::string m_name;
  std::vector<std::string>& m_sets;
};

/// Appends a lot and then fails, or does not.
class LargeCommand final : public Command {
 public:
  explicit LargeCommand(ScpiError result) : m_result(result) {}
  ScpiError Query(const CommandCall&, std::string& answer) const override {
    answer.append(1 << 20, 'x');
    return m_result;
  }

 private:
  ScpiError m_result;
};

/// Finds no memory, half-way through its answer.
class ExhaustedCommand final : public Command {
 public:
  ScpiError Query(const CommandCall&, std::string& answer) const override {
    answer += "half";
    throw std::bad_alloc();
  }
};

class SessionTest : public testing::Test {
 protected:
  SessionTest() {
    AddStandardCommands(table);
    for (const char* name : {"A:B", "A:C", "A:D:E", "A:D:F", "X", "C", "CH1:S", "CH2:S", "T:L"}) {
      table.AddVerbatim(name, std::make_shared<NamedCommand>(name, sets));
    }
    table.AddVerbatim("LARGE", std::make_shared<LargeCommand>(ScpiError::kNone));
    table.AddVerbatim("FAIL", std::make_shared<LargeCommand>(ScpiError::kExecutionError));
    table.AddVerbatim("EXHAUSTED", std::make_shared<ExhaustedCommand>());
  }

  std::string Ask(std::string_view line) { return session.Execute(line); }
  /// The numbers of all queued errors.
  std::vector<int> Errors() {
    std::vector<int> numbers;
    for (;;) {
      const ScpiError error = session.Status().TakeError();
      if (error == ScpiError::kNone) return numbers;
      numbers.push_back(static_cast<int>(error));
    }
  }

  int resets = 0;
  std::vector<std::string> sets;
  CommandTable table;
  Device device{"Maker,Model,0,1", [this] { ++resets; }, [] { return 3; }};
  Session session{table, device};
};

struct AnswerCase {
  const char* line;
  const char* answer;
};

constexpr AnswerCase kAnswerCases[] = {
    {"A:B?", "A:B\n"},
    {"a:b?", "A:B\n"},
    {":A:B?", "A:B\n"},
    {"A:B?;C?", "A:B;A:C\n"},
    {"A:B?;:X?", "A:B;X\n"},
    {"A:B?;:C?", "A:B;C\n"},
    {"A:B?;:C?;C?", "A:B;C;C\n"},
    {"A:B?;*OPC?;C?", "A:B;1;A:C\n"},
    {"A:B?;D:E?;F?", "A:B;A:D:E;A:D:F\n"},
    {"A:D:E?;:A:B?;C?", "A:D:E;A:B;A:C\n"},
    {"A:B?;\t C? \r", "A:B;A:C\n"},
    {";;A:B?;", "A:B\n"},
    {"CH:S?", "CH1:S\n"},
    {"CH1:S1?", "CH1:S\n"},
    {"CH2:S?", "CH2:S\n"},
    {"T1:L1?", "T:L\n"},
    {"", ""},
    {" ; ;\r", ""},
    {"A:B 1", ""},
    {"*IDN?", "Maker,Model,0,1\n"},
    {"*idn?", "Maker,Model,0,1\n"},
    {"*TST?", "3\n"},
    {"*WAI", ""},
    {"SYSTem:VERSion?", "1999.0\n"},
    {"syst:vers?", "1999.0\n"},
    {"SYST:ERR?;ERR:COUN?", "0,\"No error\";0\n"},
    {"SYSTEM:ERROR:NEXT?", "0,\"No error\"\n"},
    {"STAT:OPER?;OPER:COND?;ENAB?", "0;0;0\n"},
    {"STATUS:QUESTIONABLE:EVENT?", "0\n"},
};

TEST_F(SessionTest, AnswersByHeaderAndPath) {
  for (const AnswerCase& row : kAnswerCases) {
    EXPECT_EQ(Ask(row.line), row.answer) << row.line;
    EXPECT_EQ(Errors(), std::vector<int>{}) << row.line;
  }
}

TEST_F(SessionTest, EveryLineStartsAtTheRoot) {
  EXPECT_EQ(Ask("A:B?"), "A:B\n");
  EXPECT_EQ(Ask("C?"), "C\n");
}

struct RefusalCase {
  const char* line;
  std::vector<int> errors;
};

const RefusalCase kRefusalCases[] = {
    {"NOTHING", {-113}},   {"A:B?;:NOTHING?", {-113}},
    {"A:B?;X?", {-113}},   {"SYSTE:VERS?", {-113}},
    {"SYS:VERS?", {-113}}, {"*IDN", {-113}},
    {"*CLS?", {-113}},     {"A", {-113}},
    {"A:", {-113}},        {"CH3:S?", {-114}},
    {"*ESE", {-109}},      {"*ESE 1,2", {-108}},
    {"*IDN? 1", {-108}},   {"*CLS 1", {-108}},
    {"*ESE 256", {-222}},  {"*ESE ABC", {-104}},
    {"*SRE 'x'", {-104}},  {"STAT:OPER:ENAB 65536", {-222}},
    {"A:B? ,", {-102}},    {"\x01\xff\xfe", {-101}},
    {"FAIL?", {-200}},     {"NOTHING;A 1,;*ESE", {-113, -102, -109}},
};

TEST_F(SessionTest, ReportsWhatIsWrong) {
  for (const RefusalCase& row : kRefusalCases) {
    (void)Ask(row.line);
    EXPECT_EQ(Errors(), row.errors) << row.line;
  }
}

TEST_F(SessionTest, GoesOnAfterAnError) {
  EXPECT_EQ(Ask("A:B?;NOTHING?;C?"), "A:B;A:C\n");
  EXPECT_EQ(Ask("FAIL?;:A:B?"), "A:B\n");
  EXPECT_EQ(Ask("A:B?;:FAIL?"), "A:B\n");
}

TEST_F(SessionTest, HandsOverTheParametersAsWritten) {
  EXPECT_EQ(Ask("A:B 1.5 mV;C 'a;b'"), "");
  EXPECT_EQ(sets, (std::vector<std::string>{"A:B=1.5 mV", "A:C='a;b'"}));
}

TEST_F(SessionTest, HeaderThatGrowsWithoutEndIsRefused) {
  std::string line = "A:B";
  for (int count = 0; count < 300; ++count) line += ";A:B";
  (void)Ask(line);
  const std::vector<int> errors = Errors();
  ASSERT_FALSE(errors.empty());
  EXPECT_EQ(errors.front(), -113);
  EXPECT_EQ(errors.back(), -350);
  (void)Ask(std::string(600, 'A'));
  EXPECT_EQ(Errors(), std::vector<int>{-112});
}

TEST_F(SessionTest, MessageAvailableWhileAnAnswerWaits) {
  EXPECT_EQ(Ask("*STB?"), "0\n");
  EXPECT_EQ(Ask("*OPC?;*STB?"), "1;16\n");
  EXPECT_EQ(Ask("*SRE 16;*OPC?;*STB?"), "1;80\n");
}

TEST_F(SessionTest, RegistersByCommand) {
  EXPECT_EQ(Ask("*ESE 60;*SRE 32;*ESE?;*SRE?"), "60;32\n");
  EXPECT_EQ(Ask("NOTHING;*STB?"), "100\n");
  EXPECT_EQ(Ask("*ESR?;*ESR?;*STB?"), "32;0;20\n");
  EXPECT_EQ(Ask("SYST:ERR:COUNT?;NEXT?;:SYST:ERR?"),
            "1;-113,\"Undefined header\";0,\"No error\"\n");
  EXPECT_EQ(Ask("*OPC;*ESR?"), "1\n");
  EXPECT_EQ(Ask("STAT:OPER:ENAB #H10;ENAB?;:STAT:QUES:ENAB 65535;ENAB?"), "16;32767\n");
  EXPECT_EQ(Ask("STAT:PRES;OPER:ENAB?;:STAT:QUES:ENAB?"), "0;0\n");
  EXPECT_EQ(Ask("NOTHING;*CLS;*ESR?;:SYST:ERR:COUN?"), "0;0\n");
}

TEST_F(SessionTest, ARefusedCommandIsToldAndARefusedQueryIsNot) {
  std::vector<std::string> refused;
  Session told(table, device, [&refused](const ProgramUnit& unit, ScpiError error) {
    refused.push_back(std::string(unit.header) + "|" + std::string(unit.data) + "|" +
                      std::to_string(static_cast<int>(error)));
  });
  told.Execute("A:B 1;NONE 'x', 2;NONE?;FAIL?;*RST 5;EXHAUSTED?");
  EXPECT_EQ(refused, (std::vector<std::string>{"NONE| 'x', 2|-113", "*RST| 5|-108"}));
}

TEST_F(SessionTest, ResetCallsTheDevice) {
  EXPECT_EQ(Ask("*RST"), "");
  EXPECT_EQ(resets, 1);
}

TEST_F(SessionTest, TooLargeAResponseIsADeadlockAndAnswersNothing) {
  std::string line;
  for (int count = 0; count < 17; ++count) line += ":LARGE?;";
  EXPECT_EQ(Ask(line + "A:B 7"), "");
  EXPECT_EQ(Errors(), std::vector<int>{-430});
  EXPECT_EQ(sets, std::vector<std::string>{"A:B=7"});
  EXPECT_EQ(Ask("A:B?"), "A:B\n");
}

TEST_F(SessionTest, FailedAllocationIsAnErrorOfItsCommandOnly) {
  EXPECT_EQ(Ask("A:B?;:EXHAUSTED?;:X?"), "A:B;X\n");
  EXPECT_EQ(Errors(), std::vector<int>{-321});
}

TEST_F(SessionTest, LineCanBeRunInSteps) {
  session.Start("A:B?;C?;D:E?");
  std::size_t budget = 2;
  EXPECT_FALSE(session.Run(budget));
  EXPECT_EQ(budget, 0U);
  budget = 5;
  EXPECT_TRUE(session.Run(budget));
  EXPECT_EQ(budget, 4U);
  EXPECT_EQ(session.Response(), "A:B;A:C;A:D:E\n");
}

TEST(HeaderSpellingsTest, ExpandsFormsAndOptionalNodes) {
  EXPECT_EQ(HeaderSpellings("SYSTem:ERRor[:NEXT]"),
            (std::vector<std::string>{"SYSTEM:ERROR", "SYSTEM:ERR", "SYST:ERROR", "SYST:ERR",
                                      "SYSTEM:ERROR:NEXT", "SYSTEM:ERR:NEXT", "SYST:ERROR:NEXT",
                                      "SYST:ERR:NEXT"}));
  EXPECT_EQ(HeaderSpellings("*IDN"), std::vector<std::string>{"*IDN"});
  EXPECT_EQ(HeaderSpellings("[SOURce]:LEVel"),
            (std::vector<std::string>{"LEVEL", "LEV", "SOURCE:LEVEL", "SOURCE:LEV", "SOUR:LEVEL",
                                      "SOUR:LEV"}));
}

TEST(IsMnemonicTest, TakesTheShortAndTheLongFormOnly) {
  EXPECT_TRUE(IsMnemonic("MAXimum", "max"));
  EXPECT_TRUE(IsMnemonic("MAXimum", "MaXiMuM"));
  EXPECT_FALSE(IsMnemonic("MAXimum", "maxi"));
  EXPECT_FALSE(IsMnemonic("MAXimum", "ma"));
  EXPECT_FALSE(IsMnemonic("MAXimum", ""));
  EXPECT_TRUE(IsMnemonic("UP", "up"));
}

}  // namespace
}  // namespace cvars::remote
