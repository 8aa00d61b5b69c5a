#include "instrument/remote/ProgramMessage.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace cvars::remote {
namespace {

using Kind = Parameter::Kind;

ProgramUnit Read(std::string_view line, ScpiError expected = ScpiError::kNone) {
  ProgramMessage message(line);
  ProgramUnit unit;
  EXPECT_FALSE(message.AtEnd()) << line;
  EXPECT_EQ(message.Next(unit), expected) << line;
  return unit;
}

TEST(ProgramMessageTest, SplitsALineAtSemicolons) {
  ProgramMessage message(" *CLS ; CHANNEL1:SCALE 1;:X?;;OFFSET? MIN ;\r");
  ProgramUnit unit;
  std::vector<std::string> headers;
  while (!message.AtEnd()) {
    EXPECT_EQ(message.Next(unit), ScpiError::kNone);
    headers.emplace_back(unit.header);
  }
  EXPECT_EQ(headers, (std::vector<std::string>{"*CLS", "CHANNEL1:SCALE", "X", "OFFSET"}));
}

TEST(ProgramMessageTest, TellsTheFormsOfAHeaderApart) {
  EXPECT_TRUE(Read("*IDN?").isCommon);
  EXPECT_TRUE(Read("*IDN?").isQuery);
  EXPECT_FALSE(Read("*IDN?").isAbsolute);
  EXPECT_TRUE(Read(":A:B 1").isAbsolute);
  EXPECT_FALSE(Read(":A:B 1").isQuery);
  EXPECT_FALSE(Read("A:B 1").isAbsolute);
}

struct ParameterCase {
  const char* line;
  Kind kind;
  const char* text;
};

constexpr ParameterCase kParameterCases[] = {
    {"A 1.5 MV", Kind::kNumber, "1.5 MV"},
    {"A -3", Kind::kNumber, "-3"},
    {"A .5\r", Kind::kNumber, ".5"},
    {"A #H1F", Kind::kNonDecimal, "#H1F"},
    {"A MAX", Kind::kWord, "MAX"},
    {"A 'it''s; fine, too'", Kind::kString, "'it''s; fine, too'"},
    {"A \"a\"\"b\"", Kind::kString, "\"a\"\"b\""},
    {"A #15a;b,c", Kind::kBlock, "a;b,c"},
    {"A #0rest", Kind::kBlock, "rest"},
    {"A (1,2)", Kind::kExpression, "(1,2)"},
};

TEST(ProgramMessageTest, ReadsEveryKindOfParameter) {
  for (const ParameterCase& row : kParameterCases) {
    const ProgramUnit unit = Read(row.line);
    ASSERT_EQ(unit.parameters.size(), 1U) << row.line;
    EXPECT_EQ(unit.parameters[0].kind, row.kind) << row.line;
    EXPECT_EQ(unit.parameters[0].text, row.text) << row.line;
  }
}

TEST(ProgramMessageTest, SplitsParametersAtCommas) {
  const ProgramUnit unit = Read("A 1 , 'x,y',#12,;,MAX");
  ASSERT_EQ(unit.parameters.size(), 4U);
  EXPECT_EQ(unit.parameters[0].text, "1");
  EXPECT_EQ(unit.parameters[1].text, "'x,y'");
  EXPECT_EQ(unit.parameters[2].text, ",;");
  EXPECT_EQ(unit.parameters[3].text, "MAX");
}

struct ErrorCase {
  const char* line;
  ScpiError error;
};

constexpr ErrorCase kErrorCases[] = {
    {"?", ScpiError::kSyntaxError},
    {":", ScpiError::kSyntaxError},
    {":*IDN?", ScpiError::kSyntaxError},
    {"A 1,", ScpiError::kSyntaxError},
    {"A ,1", ScpiError::kSyntaxError},
    {"A 1,,2", ScpiError::kSyntaxError},
    {"\x80\xff", ScpiError::kInvalidCharacter},
    {"A\xff 1", ScpiError::kInvalidCharacter},
    {"A !", ScpiError::kInvalidCharacter},
    {"A?1", ScpiError::kHeaderSeparatorError},
    {"A 'open", ScpiError::kInvalidStringData},
    {"A 'a''", ScpiError::kInvalidStringData},
    {"A 'a' b", ScpiError::kInvalidSeparator},
    {"A #15abc", ScpiError::kInvalidBlockData},
    {"A #2x5abc", ScpiError::kInvalidBlockData},
    {"A #13abcd", ScpiError::kInvalidSeparator},
};

TEST(ProgramMessageTest, NamesWhatIsWrong) {
  for (const ErrorCase& row : kErrorCases) (void)Read(row.line, row.error);
}

TEST(ProgramMessageTest, GoesOnBehindAnError) {
  ProgramMessage message("A 1,;B?");
  ProgramUnit unit;
  EXPECT_EQ(message.Next(unit), ScpiError::kSyntaxError);
  EXPECT_EQ(message.Next(unit), ScpiError::kNone);
  EXPECT_EQ(unit.header, "B");
  EXPECT_TRUE(message.AtEnd());
}

TEST(ProgramMessageTest, UnquotesTexts) {
  EXPECT_EQ(Unquote("'it''s'"), "it's");
  EXPECT_EQ(Unquote("\"a\"\"b'c\""), "a\"b'c");
  EXPECT_EQ(Unquote("''"), "");
}

}  // namespace
}  // namespace cvars::remote
