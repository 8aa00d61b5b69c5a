#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "Export.h"

namespace cvars {

/// Finds numbers by texts, whatever the case of their characters.
///
/// A look-up allocates nothing. Not locked; its owner serialises access.
class CVARS_API FoldedTextIndex {
 public:
  /// What stands for no number.
  static constexpr int kNone = -1;

  /// Adds a number. A text that is there already keeps the number that it has.
  /// @param text    copied; may be empty and may hold any character.
  /// @param number  0 or above.
  void Add(std::wstring_view text, int number);

  /// Gives the number of a text, kNone when the text was never added.
  int Find(std::wstring_view text) const noexcept;

  /// Forgets every text.
  void Clear() noexcept;

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t length = 0;      // of the text, in characters
    std::uint32_t firstBlock = 0;  // place of the folded text in m_blocks
    int number = kNone;
  };
  // Two folded characters; a zero behind the end of a text with an odd number of them.
  using Block = std::uint64_t;

  void Grow();

  std::vector<Slot> m_slots;  // a power of two of them, at most half of them taken; or none
  std::vector<Block> m_blocks;
  std::size_t m_count = 0;
};

}  // namespace cvars
