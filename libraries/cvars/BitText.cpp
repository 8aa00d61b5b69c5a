#include "BitText.h"

#include <algorithm>
#include <utility>

#include "TextCase.h"

namespace cvars {
namespace {

constexpr std::wstring_view kDigits = L"0123456789ABCDEF";
constexpr std::size_t kDigitBits = 4;
constexpr std::size_t kGroupBits = 8;

wchar_t DigitOf(std::wstring_view bits) {
  if (bits.find_first_not_of(L'X') == bits.npos) return L'X';
  if (bits.find_first_not_of(L"01") != bits.npos) return L'$';
  return kDigits[BitsToNumber(bits)];
}

}  // namespace

std::wstring BitSetOf(std::wstring_view text) {
  std::wstring set;
  for (const wchar_t candidate : kBitCharacters) {
    const bool occurs = std::any_of(text.begin(), text.end(), [candidate](wchar_t character) {
      return FoldedCharacter(character) == candidate;
    });
    if (occurs) set += candidate;
  }
  return set;
}

HRESULT NormalizeBits(std::wstring_view text, std::wstring_view allowed, std::wstring* bits) {
  std::wstring normal;
  normal.reserve(text.size());
  for (const wchar_t character : text) {
    if (character == L' ') continue;
    const wchar_t bit = FoldedCharacter(character);
    if (allowed.find(bit) == allowed.npos) return E_INVALIDARG;
    normal += bit;
  }
  *bits = std::move(normal);
  return S_OK;
}

std::wstring FitBits(std::wstring_view bits, std::size_t length, wchar_t padding, BitEnd end) {
  if (bits.size() >= length) {
    return std::wstring(end == BitEnd::kLeft ? bits.substr(bits.size() - length)
                                             : bits.substr(0, length));
  }
  std::wstring fitted(bits);
  fitted.insert(end == BitEnd::kLeft ? 0 : fitted.size(), length - bits.size(), padding);
  return fitted;
}

std::uint32_t BitsToNumber(std::wstring_view bits) noexcept {
  std::uint32_t number = 0;
  for (const wchar_t bit : bits) number = number << 1 | (bit == L'1' ? 1u : 0u);
  return number;
}

std::wstring NumberToBits(std::uint32_t number, std::size_t count) {
  std::wstring bits(std::min(count, kNumberBits), L'0');
  for (std::size_t place = 0; place < bits.size(); ++place) {
    if ((number >> (bits.size() - 1 - place) & 1u) != 0) bits[place] = L'1';
  }
  return bits;
}

std::int32_t SignExtended(std::uint32_t number, std::uint32_t width) noexcept {
  constexpr std::uint32_t kCountMask = kNumberBits - 1;
  const std::uint32_t sign = 1u << ((width - 1u) & kCountMask);
  if ((number & sign) != 0) number |= 0u - (1u << (width & kCountMask));
  return static_cast<std::int32_t>(number);
}

HRESULT HexadecimalToBits(std::wstring_view text, std::wstring* bits) {
  std::wstring written;
  written.reserve(text.size() * kDigitBits);
  for (const wchar_t character : text) {
    const wchar_t digit = FoldedCharacter(character);
    if (digit == L'X') {
      written.append(kDigitBits, L'X');
      continue;
    }
    const std::size_t value = kDigits.find(digit);
    if (value == kDigits.npos) return E_INVALIDARG;
    written += NumberToBits(static_cast<std::uint32_t>(value), kDigitBits);
  }
  *bits = std::move(written);
  return S_OK;
}

std::wstring BitsToHexadecimal(std::wstring_view bits, wchar_t padding, BitEnd end) {
  const bool fillsWithX =
      end == BitEnd::kLeft && padding == L'X' && !bits.empty() && bits.front() == L'X';
  const std::size_t digits = (bits.size() + kDigitBits - 1) / kDigitBits;
  const std::wstring whole = FitBits(bits, digits * kDigitBits, fillsWithX ? L'X' : L'0', end);
  std::wstring text;
  text.reserve(digits);
  for (std::size_t digit = 0; digit < digits; ++digit) {
    text += DigitOf(std::wstring_view(whole).substr(digit * kDigitBits, kDigitBits));
  }
  return text;
}

std::wstring GroupedBits(std::wstring_view bits) {
  std::wstring text;
  text.reserve(bits.size() + bits.size() / kGroupBits);
  for (std::size_t place = 0; place < bits.size(); ++place) {
    if (place != 0 && (bits.size() - place) % kGroupBits == 0) text += L' ';
    text += bits[place];
  }
  return text;
}

}  // namespace cvars
