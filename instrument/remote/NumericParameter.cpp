#include "instrument/remote/NumericParameter.h"

#include <charconv>
#include <cmath>
#include <string_view>
#include <system_error>

#include "instrument/remote/Syntax.h"

namespace cvars::remote {
namespace {

std::size_t SkipDigits(std::string_view text, std::size_t index) noexcept {
  while (index < text.size() && IsDigit(text[index])) ++index;
  return index;
}

std::size_t SkipBlanks(std::string_view text, std::size_t index) noexcept {
  while (index < text.size() && IsBlank(text[index])) ++index;
  return index;
}

bool IsSign(char character) noexcept { return character == '+' || character == '-'; }

int NonDecimalBase(char letter) noexcept {
  switch (ToUpper(letter)) {
    case 'H':
      return 16;
    case 'Q':
      return 8;
    case 'B':
      return 2;
    default:
      return 0;
  }
}

ScpiError ReadNonDecimal(std::string_view text, double& value) {
  const int base = text.size() < 3 ? 0 : NonDecimalBase(text[1]);
  if (base == 0) return ScpiError::kDataTypeError;
  unsigned long long number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data() + 2, end, number, base);
  if (error == std::errc::result_out_of_range) return ScpiError::kDataOutOfRange;
  if (error != std::errc() || stop != end) return ScpiError::kDataTypeError;
  value = static_cast<double>(number);
  return ScpiError::kNone;
}

ScpiError ReadDecimal(std::string_view text, double& value) {
  std::string number;
  std::string suffix;
  if (const ScpiError error = SplitDecimal(text, number, suffix); error != ScpiError::kNone) {
    return error;
  }
  if (!suffix.empty()) return ScpiError::kSuffixNotAllowed;
  const char* begin = number.data();
  if (*begin == '+') ++begin;
  const auto result = std::from_chars(begin, number.data() + number.size(), value);
  return result.ec == std::errc::result_out_of_range ? ScpiError::kDataOutOfRange
                                                     : ScpiError::kNone;
}

}  // namespace

ScpiError ReadWholeNumber(const Parameter& parameter, unsigned most, unsigned& value) {
  double number = 0;
  ScpiError error = ScpiError::kDataTypeError;
  if (parameter.kind == Parameter::Kind::kNonDecimal)
    error = ReadNonDecimal(parameter.text, number);
  if (parameter.kind == Parameter::Kind::kNumber) error = ReadDecimal(parameter.text, number);
  if (error != ScpiError::kNone) return error;
  number = std::round(number);
  if (number < 0 || number > most) return ScpiError::kDataOutOfRange;
  value = static_cast<unsigned>(number);
  return ScpiError::kNone;
}

ScpiError SplitDecimal(std::string_view text, std::string& number, std::string& suffix) {
  std::size_t index = 0;
  if (index < text.size() && IsSign(text[index])) ++index;
  const std::size_t wholeEnd = SkipDigits(text, index);
  std::size_t end = wholeEnd;
  std::size_t digitCount = wholeEnd - index;
  if (end < text.size() && text[end] == '.') {
    const std::size_t fractionEnd = SkipDigits(text, end + 1);
    digitCount += fractionEnd - end - 1;
    end = fractionEnd;
  }
  if (digitCount == 0) return ScpiError::kDataTypeError;
  number.assign(text.substr(0, end));

  const std::size_t letter = SkipBlanks(text, end);
  if (letter < text.size() && ToUpper(text[letter]) == 'E') {
    const std::size_t sign = SkipBlanks(text, letter + 1);
    const std::size_t digits = sign < text.size() && IsSign(text[sign]) ? sign + 1 : sign;
    const std::size_t exponentEnd = SkipDigits(text, digits);
    if (exponentEnd != digits) {
      number.push_back('E');
      number.append(text.substr(sign, exponentEnd - sign));
      end = exponentEnd;
    }
  }
  suffix.clear();
  for (const char character : Trim(text.substr(end))) suffix.push_back(ToUpper(character));
  return ScpiError::kNone;
}

void AppendNumber(double value, std::string& text) {
  if (!std::isfinite(value)) {
    // The numbers that stand for these on the wire.
    text += std::isnan(value) ? "9.91E37" : value > 0 ? "9.9E37" : "-9.9E37";
    return;
  }
  char buffer[40];
  const auto result =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific);
  std::string_view written(buffer, static_cast<std::size_t>(result.ptr - buffer));
  if (written.front() == '-') {
    if (value != 0) text.push_back('-');
    written.remove_prefix(1);
  }
  const std::size_t letter = written.find('e');
  int exponent = 0;
  const std::size_t digitsAt = letter + (written[letter + 1] == '+' ? 2 : 1);
  std::from_chars(written.data() + digitsAt, written.data() + written.size(), exponent);
  std::string digits(1, written.front());
  if (letter > 2) digits += written.substr(2, letter - 2);

  const int wholeDigits = ((exponent % 3) + 3) % 3 + 1;
  exponent -= wholeDigits - 1;
  while (digits.size() < static_cast<std::size_t>(wholeDigits)) digits.push_back('0');
  text.append(digits, 0, static_cast<std::size_t>(wholeDigits));
  if (digits.size() > static_cast<std::size_t>(wholeDigits)) {
    text.push_back('.');
    text.append(digits, static_cast<std::size_t>(wholeDigits));
  }
  if (exponent == 0) return;
  text.push_back('E');
  if (exponent > 0) text.push_back('+');
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, exponent).ptr;
  text.append(buffer, end);
}

}  // namespace cvars::remote
