#pragma once

#include <string>
#include <string_view>

#include "BitText.h"
#include "Export.h"
#include "IVorCvarBitPattern.h"

namespace cvars {

/// The length, characters and alignments that the values of a bit pattern keep to.
///
/// Each setter answers S_OK for a change, S_FALSE for none and E_INVALIDARG for an argument that is
/// out of bounds, which changes nothing.
class CVARS_API BitPatternRange {
 public:
  static constexpr int kMostBits = 32767;
  static constexpr int kMostBytes = 4095;

  /// Upper bound of the length; a change of it makes the length the same.
  HRESULT SetMaxBits(int count);
  /// Length of the value; cut down to the upper bound.
  HRESULT SetNumBits(int count);
  HRESULT SetNumBytes(int count);
  HRESULT SetFormat(CVARBITPATTERNFORMAT format);
  /// @param characters  other characters than those of bit patterns are passed over. When the
  /// padding
  ///                    character is not among them any more, the first of them takes its place; an
  ///                    empty set leaves it.
  HRESULT SetAllowed(std::wstring_view characters);
  /// A bit character that is not allowed counts as the first allowed one.
  HRESULT SetPadding(unsigned int character);
  HRESULT SetPadAlign(CVARBITPATTERNPADALIGN align);
  HRESULT SetSizeAlign(CVARBITPATTERNSIZEALIGN align);

  int MaxBits() const noexcept { return m_maxBits; }
  int NumBits() const noexcept { return m_numBits; }
  int NumBytes() const noexcept;
  CVARBITPATTERNFORMAT Format() const noexcept { return m_format; }
  const std::wstring& Allowed() const noexcept { return m_allowed; }
  wchar_t Padding() const noexcept { return m_padding; }
  CVARBITPATTERNPADALIGN PadAlign() const noexcept { return m_padAlign; }
  CVARBITPATTERNSIZEALIGN SizeAlign() const noexcept { return m_sizeAlign; }
  bool AllowsDontCare() const noexcept { return m_allowsDontCare; }
  BitEnd PaddedEnd() const noexcept {
    return m_padAlign == BITPATTERN_PAD_RIGHT ? BitEnd::kRight : BitEnd::kLeft;
  }

  /// Lets the length follow a request of `length` characters, when it does so.
  HRESULT FollowRequest(std::size_t length);
  /// Brings a request to the length, and to padding characters when it holds one that is not
  /// allowed.
  std::wstring Adapted(std::wstring_view request) const;
  /// "MaxBits=16 NumBits=16 NumBytes=2 AllowedBitValues=01X PaddingChar=0 PadAlign=Left
  /// SizeAlign=BitFix Format=Ebin"
  std::wstring Text() const;

 private:
  int m_maxBits = 16;
  int m_numBits = 16;
  CVARBITPATTERNFORMAT m_format = BITPATTERN_FORMAT_BIN;
  std::wstring m_allowed = L"01X";
  wchar_t m_padding = L'0';
  CVARBITPATTERNPADALIGN m_padAlign = BITPATTERN_PAD_LEFT;
  CVARBITPATTERNSIZEALIGN m_sizeAlign = BITPATTERN_SIZE_BIT_FIX;
  bool m_allowsDontCare = true;
};

}  // namespace cvars
