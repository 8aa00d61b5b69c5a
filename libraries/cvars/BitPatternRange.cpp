#include "BitPatternRange.h"

#include <algorithm>
#include <span>

#include "NumericText.h"

namespace cvars {
namespace {

constexpr int kByteBits = 8;

template <class Value>
HRESULT Store(Value& field, Value value) {
  if (field == value) return S_FALSE;
  field = value;
  return S_OK;
}

void AppendWord(std::wstring& text, std::wstring_view label, std::span<const wchar_t* const> words,
                std::size_t index) {
  text += label;
  text += index < words.size() ? words[index] : L"?";
}

}  // namespace

HRESULT BitPatternRange::SetMaxBits(int count) {
  if (count < 0 || count > kMostBits) return E_INVALIDARG;
  if (count == m_maxBits) return S_FALSE;
  m_maxBits = count;
  m_numBits = count;
  return S_OK;
}

HRESULT BitPatternRange::SetNumBits(int count) {
  if (count < 0 || count > kMostBits) return E_INVALIDARG;
  return Store(m_numBits, std::min(count, m_maxBits));
}

HRESULT BitPatternRange::SetNumBytes(int count) {
  if (count < 0 || count > kMostBytes) return E_INVALIDARG;
  return Store(m_numBits, std::min(count * kByteBits, m_maxBits));
}

HRESULT BitPatternRange::SetFormat(CVARBITPATTERNFORMAT format) {
  return format > BITPATTERN_FORMAT_HEX ? E_INVALIDARG : Store(m_format, format);
}

HRESULT BitPatternRange::SetPadAlign(CVARBITPATTERNPADALIGN align) {
  return align > BITPATTERN_PAD_RIGHT ? E_INVALIDARG : Store(m_padAlign, align);
}

HRESULT BitPatternRange::SetSizeAlign(CVARBITPATTERNSIZEALIGN align) {
  return align > BITPATTERN_SIZE_BIT_VAR ? E_INVALIDARG : Store(m_sizeAlign, align);
}

HRESULT BitPatternRange::SetAllowed(std::wstring_view characters) {
  std::wstring set = BitSetOf(characters);
  m_allowsDontCare = set.find(L'X') != set.npos;
  if (set == m_allowed) return S_FALSE;
  m_allowed = std::move(set);
  (void)SetPadding(static_cast<unsigned int>(m_padding));  // falls back when it is not allowed
  return S_OK;
}

HRESULT BitPatternRange::SetPadding(unsigned int character) {
  const auto wanted = std::find_if(
      kBitCharacters.begin(), kBitCharacters.end(),
      [character](wchar_t bit) { return static_cast<unsigned int>(bit) == character; });
  if (wanted == kBitCharacters.end()) return E_INVALIDARG;
  if (m_allowed.empty()) return S_FALSE;
  const bool allowed = m_allowed.find(*wanted) != m_allowed.npos;
  return Store(m_padding, allowed ? *wanted : m_allowed.front());
}

int BitPatternRange::NumBytes() const noexcept { return (m_numBits + kByteBits - 1) / kByteBits; }

HRESULT BitPatternRange::FollowRequest(std::size_t length) {
  const auto bits = static_cast<int>(std::min(length, static_cast<std::size_t>(m_maxBits)));
  switch (m_sizeAlign) {
    case BITPATTERN_SIZE_BYTE_VAR:
      // More than 32760 bits do not count as whole bytes any more and are refused; that is meant.
      return SetNumBytes((bits + kByteBits - 1) / kByteBits);
    case BITPATTERN_SIZE_BIT_VAR:
      return SetNumBits(bits);
    case BITPATTERN_SIZE_BIT_FIX:
      break;
  }
  return S_FALSE;
}

std::wstring BitPatternRange::Adapted(std::wstring_view request) const {
  const auto length = static_cast<std::size_t>(m_numBits);
  std::wstring bits = FitBits(request, length, m_padding, PaddedEnd());
  if (bits.find_first_not_of(m_allowed) != bits.npos) bits.assign(length, m_padding);
  return bits;
}

std::wstring BitPatternRange::Text() const {
  constexpr const wchar_t* kPadWords[] = {L"Left", L"Right"};
  constexpr const wchar_t* kSizeWords[] = {L"BitFix", L"ByteVar", L"BitVar"};
  constexpr const wchar_t* kFormatWords[] = {L"Ebin", L"Ehex"};
  std::wstring text = L"MaxBits=";
  AppendDecimal(text, m_maxBits);
  text += L" NumBits=";
  AppendDecimal(text, m_numBits);
  text += L" NumBytes=";
  AppendDecimal(text, NumBytes());
  text += L" AllowedBitValues=";
  text += m_allowed;
  text += L" PaddingChar=";
  text += m_padding;
  AppendWord(text, L" PadAlign=", kPadWords, m_padAlign);
  AppendWord(text, L" SizeAlign=", kSizeWords, m_sizeAlign);
  AppendWord(text, L" Format=", kFormatWords, m_format);
  return text;
}

}  // namespace cvars
