#include "instrument/remote/NumericParameter.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace cvars::remote {
namespace {

struct SplitCase {
  const char* text;
  const char* number;
  const char* suffix;
};

constexpr SplitCase kSplitCases[] = {
    {"1.5", "1.5", ""},        {"1.5 mV", "1.5", "MV"},
    {"1.5mV", "1.5", "MV"},    {"-2.E+3 Hz", "-2.E+3", "HZ"},
    {"+.5", "+.5", ""},        {"1 e 3 V", "1E3", "V"},
    {"1 E - 3", "1", "E - 3"}, {"2 EXV", "2", "EXV"},
    {"0x10", "0", "X10"},      {"1.2.3", "1.2", ".3"},
    {"5 V/DIV", "5", "V/DIV"},
};

TEST(SplitDecimalTest, SeparatesNumberAndSuffix) {
  for (const SplitCase& row : kSplitCases) {
    std::string number;
    std::string suffix;
    EXPECT_EQ(SplitDecimal(row.text, number, suffix), ScpiError::kNone) << row.text;
    EXPECT_EQ(number, row.number) << row.text;
    EXPECT_EQ(suffix, row.suffix) << row.text;
  }
}

TEST(SplitDecimalTest, RefusesWhatIsNoNumber) {
  for (const char* text : {"", "+", ".", "-.E3", "V", "E3", "- 5"}) {
    std::string number;
    std::string suffix;
    EXPECT_EQ(SplitDecimal(text, number, suffix), ScpiError::kDataTypeError) << text;
  }
}

struct WholeCase {
  Parameter::Kind kind;
  const char* text;
  ScpiError error;
  unsigned value;
};

using Kind = Parameter::Kind;
constexpr unsigned kUntouched = 77;
constexpr WholeCase kWholeCases[] = {
    {Kind::kNumber, "32", ScpiError::kNone, 32},
    {Kind::kNumber, "+3.2E1", ScpiError::kNone, 32},
    {Kind::kNumber, "1.5", ScpiError::kNone, 2},
    {Kind::kNumber, "255.4", ScpiError::kNone, 255},
    {Kind::kNumber, "255.5", ScpiError::kDataOutOfRange, kUntouched},
    {Kind::kNumber, "-1", ScpiError::kDataOutOfRange, kUntouched},
    {Kind::kNumber, "1E999", ScpiError::kDataOutOfRange, kUntouched},
    {Kind::kNumber, "5 V", ScpiError::kSuffixNotAllowed, kUntouched},
    {Kind::kNonDecimal, "#HfF", ScpiError::kNone, 255},
    {Kind::kNonDecimal, "#q17", ScpiError::kNone, 15},
    {Kind::kNonDecimal, "#B101", ScpiError::kNone, 5},
    {Kind::kNonDecimal, "#H100", ScpiError::kDataOutOfRange, kUntouched},
    {Kind::kNonDecimal, "#H10000000000000000", ScpiError::kDataOutOfRange, kUntouched},
    {Kind::kNonDecimal, "#B12", ScpiError::kDataTypeError, kUntouched},
    {Kind::kNonDecimal, "#H", ScpiError::kDataTypeError, kUntouched},
    {Kind::kNonDecimal, "#X1", ScpiError::kDataTypeError, kUntouched},
    {Kind::kWord, "MAX", ScpiError::kDataTypeError, kUntouched},
    {Kind::kString, "'32'", ScpiError::kDataTypeError, kUntouched},
};

TEST(ReadWholeNumberTest, RoundsAndChecksTheRange) {
  for (const WholeCase& row : kWholeCases) {
    unsigned value = kUntouched;
    EXPECT_EQ(ReadWholeNumber({row.kind, row.text}, 255, value), row.error) << row.text;
    EXPECT_EQ(value, row.value) << row.text;
  }
}

struct WrittenCase {
  double value;
  const char* text;
};

constexpr WrittenCase kWrittenCases[] = {
    {0, "0"},
    {-0.0, "0"},
    {1, "1"},
    {12.5, "12.5"},
    {-100, "-100"},
    {1000, "1E+3"},
    {0.001, "1E-3"},
    {0.05, "50E-3"},
    {1.5e-9, "1.5E-9"},
    {2.5e10, "25E+9"},
    {1e300, "1E+300"},
    {1e-300, "1E-300"},
    {1234567, "1.234567E+6"},
    {std::numeric_limits<double>::infinity(), "9.9E37"},
    {-std::numeric_limits<double>::infinity(), "-9.9E37"},
    {std::numeric_limits<double>::quiet_NaN(), "9.91E37"},
};

TEST(AppendNumberTest, WritesEngineeringExponents) {
  for (const WrittenCase& row : kWrittenCases) {
    std::string text;
    AppendNumber(row.value, text);
    EXPECT_EQ(text, row.text);
  }
}

}  // namespace
}  // namespace cvars::remote
