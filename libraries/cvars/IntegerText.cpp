#include "IntegerText.h"

#include "NumberScan.h"

namespace cvars {
namespace {

constexpr std::uint32_t kNoDigit = 99;

std::uint32_t DigitOf(wchar_t character) noexcept {
  if (character >= L'0' && character <= L'9') return static_cast<std::uint32_t>(character - L'0');
  if (character >= L'a' && character <= L'f')
    return static_cast<std::uint32_t>(character - L'a') + 10;
  if (character >= L'A' && character <= L'F')
    return static_cast<std::uint32_t>(character - L'A') + 10;
  return kNoDigit;
}

}  // namespace

bool ScanInteger(std::wstring_view text, std::uint32_t* value) noexcept {
  const auto at = [&text](std::size_t index) { return index < text.size() ? text[index] : L'\0'; };
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  const bool negative = at(0) == L'-';
  if (negative || at(0) == L'+') text.remove_prefix(1);
  std::uint32_t base = 10;
  if (at(0) == L'0') {
    base = 8;
    if (at(1) == L'x' || at(1) == L'X') {
      base = 16;
      text.remove_prefix(2);
    }
  }
  if (DigitOf(at(0)) >= base) return false;
  std::uint32_t number = 0;
  for (; DigitOf(at(0)) < base; text.remove_prefix(1)) number = number * base + DigitOf(at(0));
  *value = negative ? 0u - number : number;
  return true;
}

void AppendHexadecimal(std::wstring& text, std::uint32_t value, std::size_t leastDigits,
                       HexCase letters) {
  const std::wstring_view digits =
      letters == HexCase::kUpper ? L"0123456789ABCDEF" : L"0123456789abcdef";
  const std::size_t end = text.size();
  for (; value != 0 || text.size() - end < leastDigits; value >>= 4) {
    text.insert(end, 1, digits[value & 0xFu]);
  }
  if (text.size() == end) text += L'0';
}

}  // namespace cvars
