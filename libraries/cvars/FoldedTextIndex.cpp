#include "FoldedTextIndex.h"

#include <algorithm>
#include <cstring>

#include "TextCase.h"

namespace cvars {
namespace {

constexpr std::size_t kFirstSlots = 16;
constexpr std::size_t kBlockCharacters = 2;
static_assert(sizeof(std::uint64_t) == kBlockCharacters * sizeof(wchar_t));

/// The same number for both characters of a block.
constexpr std::uint64_t Both(std::uint32_t number) noexcept {
  return number * std::uint64_t{0x1'0000'0001};
}

constexpr bool IsAscii(std::uint64_t block) noexcept {
  return (block & Both(~std::uint32_t{0x7F})) == 0;
}

/// Folds two characters of ASCII at once.
constexpr std::uint64_t FoldedAscii(std::uint64_t block) noexcept {
  // Adding carries into bit 7 from 'a' on, and once more from the character behind 'z' on.
  constexpr std::uint32_t kBit = 0x80;
  const std::uint64_t fromA = block + Both(kBit - L'a');
  const std::uint64_t behindZ = block + Both(kBit - L'z' - 1);
  return block - ((fromA & ~behindZ & Both(kBit)) >> 2);
}

std::uint64_t Folded(std::uint64_t block) noexcept {
  if (IsAscii(block)) return FoldedAscii(block);
  wchar_t characters[kBlockCharacters];
  std::memcpy(characters, &block, sizeof(block));
  for (wchar_t& c : characters) c = FoldedCharacter(c);
  std::memcpy(&block, characters, sizeof(block));
  return block;
}

/// A sum of products, so that none waits for another; the multipliers are odd and differ from place
/// to place.
class Hasher {
 public:
  explicit Hasher(std::size_t length) noexcept : m_sum(length * kSpread) {}
  void Add(std::uint64_t block) noexcept {
    m_sum += block * m_multiplier;
    m_multiplier += kStep;
  }
  std::uint32_t Value() const noexcept {
    return static_cast<std::uint32_t>((m_sum ^ (m_sum >> 29)) * kSpread >> 32);
  }

 private:
  static constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15u;
  static constexpr std::uint64_t kStep = 0xD6E8FEB86659FD92u;
  std::uint64_t m_sum;
  std::uint64_t m_multiplier = kSpread;
};

/// A text as it is looked up: folded without a copy on the heap.
///
/// Short texts of ASCII, which nearly all are, are folded once and kept; others are folded again
/// when they are compared.
class FoldedText {
 public:
  explicit FoldedText(std::wstring_view text) noexcept : m_text(text) {
    if (!KeepAscii()) FoldAny();
  }

  std::uint32_t Hash() const noexcept { return m_hash; }
  std::size_t Length() const noexcept { return m_text.size(); }
  std::size_t BlockCount() const noexcept {
    return (m_text.size() + kBlockCharacters - 1) / kBlockCharacters;
  }
  std::uint64_t BlockAt(std::size_t i) const noexcept { return Folded(RawBlock(i)); }

  /// Compares with as many blocks.
  bool Is(const std::uint64_t* stored) const noexcept {
    const std::size_t count = BlockCount();
    std::uint64_t different = 0;
    if (m_isKept) {
      for (std::size_t i = 0; i < count; ++i) different |= stored[i] ^ m_kept[i];
    } else {
      for (std::size_t i = 0; i < count; ++i) different |= stored[i] ^ BlockAt(i);
    }
    return different == 0;
  }

 private:
  static constexpr std::size_t kKeptBlocks = 24;

  bool KeepAscii() noexcept {
    const std::size_t pairs = m_text.size() / kBlockCharacters;
    if (pairs >= kKeptBlocks) return false;
    Hasher hasher(m_text.size());
    std::uint64_t every = 0;
    std::size_t i = 0;
    const auto keep = [&](std::uint64_t block) noexcept {
      every |= block;
      hasher.Add(m_kept[i] = FoldedAscii(block));
    };
    for (; i < pairs; ++i) keep(RawPair(i));
    if (m_text.size() % kBlockCharacters != 0) keep(static_cast<std::uint32_t>(m_text.back()));
    m_hash = hasher.Value();
    m_isKept = IsAscii(every);
    return m_isKept;
  }

  void FoldAny() noexcept {
    Hasher hasher(m_text.size());
    for (std::size_t i = 0; i < BlockCount(); ++i) hasher.Add(BlockAt(i));
    m_hash = hasher.Value();
  }

  std::uint64_t RawPair(std::size_t i) const noexcept {
    std::uint64_t block;
    std::memcpy(&block, m_text.data() + i * kBlockCharacters, sizeof(block));
    return block;
  }
  /// Never reads behind the end of the text.
  std::uint64_t RawBlock(std::size_t i) const noexcept {
    if (i * kBlockCharacters + 1 != m_text.size()) return RawPair(i);
    return static_cast<std::uint32_t>(m_text.back());
  }

  std::wstring_view m_text;
  std::uint32_t m_hash = 0;
  bool m_isKept = false;
  std::uint64_t m_kept[kKeptBlocks];
};

/// Gives the place of the slot that holds the text, or of the free one where it belongs. There is
/// always a free one.
template <class Slots>
std::size_t PlaceOf(const Slots& slots, const std::uint64_t* blocks,
                    const FoldedText& text) noexcept {
  const std::size_t mask = slots.size() - 1;
  for (std::size_t at = text.Hash() & mask;; at = (at + 1) & mask) {
    const auto& slot = slots[at];
    if (slot.number == FoldedTextIndex::kNone) return at;
    if (slot.hash == text.Hash() && slot.length == text.Length() &&
        text.Is(blocks + slot.firstBlock)) {
      return at;
    }
  }
}

}  // namespace

void FoldedTextIndex::Grow() {
  std::vector<Slot> old(std::max(kFirstSlots, m_slots.size() * 2));
  old.swap(m_slots);
  const std::size_t mask = m_slots.size() - 1;
  for (const Slot& slot : old) {
    if (slot.number == kNone) continue;
    std::size_t at = slot.hash & mask;
    while (m_slots[at].number != kNone) at = (at + 1) & mask;
    m_slots[at] = slot;
  }
}

void FoldedTextIndex::Add(std::wstring_view text, int number) {
  if ((m_count + 1) * 2 > m_slots.size()) Grow();
  const FoldedText folded(text);
  Slot& slot = m_slots[PlaceOf(m_slots, m_blocks.data(), folded)];
  if (slot.number != kNone) return;
  const std::size_t firstBlock = m_blocks.size();
  for (std::size_t i = 0; i < folded.BlockCount(); ++i) m_blocks.push_back(folded.BlockAt(i));
  slot = {folded.Hash(), static_cast<std::uint32_t>(text.size()),
          static_cast<std::uint32_t>(firstBlock), number};
  ++m_count;
}

int FoldedTextIndex::Find(std::wstring_view text) const noexcept {
  if (m_count == 0) return kNone;
  return m_slots[PlaceOf(m_slots, m_blocks.data(), FoldedText(text))].number;
}

void FoldedTextIndex::Clear() noexcept {
  m_slots.clear();
  m_blocks.clear();
  m_count = 0;
}

}  // namespace cvars
