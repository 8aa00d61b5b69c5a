#include "FoldedTextIndex.h"

#include <algorithm>
#include <memory>

#include "TextCase.h"

namespace cvars {
namespace {

constexpr std::size_t kFirstSlots = 16;
constexpr std::size_t kFirstBlocks = 64;
// Characters in a block of a text that is folded to ASCII, and of any other text.
constexpr std::size_t kPackedCharacters = 8;
constexpr std::size_t kWideCharacters = 2;
static_assert(sizeof(std::uint64_t) == kWideCharacters * sizeof(wchar_t));

/// Folds eight characters of ASCII at once.
constexpr std::uint64_t FoldedAscii(std::uint64_t block) noexcept {
  constexpr std::uint64_t kEach = 0x0101'0101'0101'0101;
  constexpr std::uint64_t kBit = 0x80;
  // Adding carries into bit 7 from 'a' on, and once more from the character behind 'z' on.
  const std::uint64_t fromA = block + kEach * (kBit - 'a');
  const std::uint64_t behindZ = block + kEach * (kBit - 'z' - 1);
  return block - ((fromA & ~behindZ & kEach * kBit) >> 2);
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

// What TryFind reads while the owner writes. Whoever reads something newer than the version that it
// began with finds another version afterwards: a write is ordered behind the change of the version,
// a read before the second look at it.
using Word = std::atomic<std::uint64_t>;

std::uint64_t Read(const Word& word) noexcept { return word.load(std::memory_order_acquire); }
void Write(Word& word, std::uint64_t value) noexcept {
  word.store(value, std::memory_order_release);
}

constexpr std::uint64_t Joined(std::uint32_t high, std::uint32_t low) noexcept {
  return std::uint64_t{high} << 32 | low;
}
constexpr std::uint32_t HighOf(std::uint64_t word) noexcept {
  return static_cast<std::uint32_t>(word >> 32);
}
constexpr std::uint32_t LowOf(std::uint64_t word) noexcept {
  return static_cast<std::uint32_t>(word);
}

/// A text as it is looked up: folded without a copy on the heap.
///
/// Texts that are short and folded to ASCII, which nearly all are, are packed once; others are
/// folded again when they are compared.
class FoldedText {
 public:
  explicit FoldedText(std::wstring_view text) noexcept : m_text(text) {
    // Few characters besides those of ASCII are folded to one of them.
    if (Pack([](wchar_t c) { return c; }) || Pack(FoldedCharacter)) return;
    Hasher hasher(m_text.size());
    for (std::size_t i = 0; i < BlockCount(); ++i) hasher.Add(WideBlock(i));
    m_hash = hasher.Value();
  }

  std::uint32_t Hash() const noexcept { return m_hash; }
  /// Differs between texts that differ in hash, length or the kind of their blocks.
  std::uint64_t Key() const noexcept {
    return Joined(m_hash, static_cast<std::uint32_t>(m_text.size() * 2 + (m_isPacked ? 1 : 0)));
  }
  std::size_t BlockCount() const noexcept {
    const std::size_t characters = m_isPacked ? kPackedCharacters : kWideCharacters;
    return (m_text.size() + characters - 1) / characters;
  }
  std::uint64_t BlockAt(std::size_t i) const noexcept {
    return m_isPacked ? m_packed[i] : WideBlock(i);
  }

  /// Compares with the blocks of a text that has the same key.
  bool Is(const Word* stored) const noexcept {
    const std::size_t count = BlockCount();
    std::uint64_t different = 0;
    if (m_isPacked) {
      for (std::size_t i = 0; i < count; ++i) different |= Read(stored[i]) ^ m_packed[i];
    } else {
      for (std::size_t i = 0; i < count; ++i) different |= Read(stored[i]) ^ WideBlock(i);
    }
    return different == 0;
  }

 private:
  static constexpr std::size_t kPackedBlocks = 16;

  /// Packs the text, folded by the function and then as ASCII. @return whether it could be packed
  template <class Fold>
  bool Pack(Fold fold) noexcept {
    std::size_t left = m_text.size();
    if (left > kPackedBlocks * kPackedCharacters) return false;
    Hasher hasher(left);
    std::uint32_t every = 0;
    const wchar_t* next = m_text.data();
    std::uint64_t* block = m_packed;
    const auto pack = [&](std::size_t count) noexcept {
      std::uint64_t packed = 0;
      for (std::size_t i = 0; i < count; ++i) {
        const auto character = static_cast<std::uint32_t>(fold(next[i]));
        every |= character;
        packed |= std::uint64_t{character} << (8 * i);
      }
      *block = FoldedAscii(packed);
      hasher.Add(*block++);
    };
    for (; left >= kPackedCharacters; left -= kPackedCharacters, next += kPackedCharacters) {
      pack(kPackedCharacters);
    }
    if (left > 0) pack(left);
    m_hash = hasher.Value();
    m_isPacked = every < 0x80;
    return m_isPacked;
  }

  std::uint64_t WideBlock(std::size_t i) const noexcept {
    const std::size_t first = i * kWideCharacters;
    const auto low = static_cast<std::uint32_t>(FoldedCharacter(m_text[first]));
    if (first + 1 == m_text.size()) return low;
    return Joined(static_cast<std::uint32_t>(FoldedCharacter(m_text[first + 1])), low);
  }

  std::wstring_view m_text;
  std::uint32_t m_hash = 0;
  bool m_isPacked = false;
  std::uint64_t m_packed[kPackedBlocks];
};

struct Slot {
  Word key{0};    // of the text
  Word place{0};  // place of the folded text in the blocks, and number + 1; 0 while free

  bool IsFree() const noexcept { return Read(place) == 0; }
};

}  // namespace

/// Slots and texts. One that is outgrown stays as it is until the index goes.
struct FoldedTextIndex::Table {
  Table(std::size_t slotCount, std::size_t blockCapacity)
      : slotMask(slotCount - 1),
        blockCount(blockCapacity),
        slots(std::make_unique<Slot[]>(slotCount)),
        blocks(std::make_unique<Word[]>(blockCapacity)) {}

  /// Gives the slot that holds the text, or the free one where it belongs; null when neither shows,
  /// which happens only while the owner changes the index.
  Slot* SlotOf(const FoldedText& text) const noexcept {
    const std::uint64_t key = text.Key();
    std::size_t at = text.Hash() & slotMask;
    for (std::size_t left = slotMask + 1; left > 0; --left, at = (at + 1) & slotMask) {
      Slot& slot = slots[at];
      const std::uint64_t place = Read(slot.place);
      if (place == 0 || (Read(slot.key) == key && Holds(HighOf(place), text))) return &slot;
    }
    return nullptr;
  }

  bool Holds(std::size_t firstBlock, const FoldedText& text) const noexcept {
    const std::size_t count = text.BlockCount();
    if (firstBlock > blockCount || count > blockCount - firstBlock) return false;
    return text.Is(&blocks[firstBlock]);
  }

  /// Takes a text over; its blocks must be in place.
  void Put(std::uint64_t key, std::uint64_t place) noexcept {
    std::size_t at = HighOf(key) & slotMask;
    while (!slots[at].IsFree()) at = (at + 1) & slotMask;
    Write(slots[at].key, key);
    Write(slots[at].place, place);
  }

  const std::size_t slotMask;
  const std::size_t blockCount;
  const std::unique_ptr<Slot[]> slots;
  const std::unique_ptr<Word[]> blocks;
  std::unique_ptr<Table> outgrown;
};

FoldedTextIndex::FoldedTextIndex() noexcept = default;

FoldedTextIndex::~FoldedTextIndex() { delete m_table.load(std::memory_order_relaxed); }

bool FoldedTextIndex::IsPublished() const noexcept {
  return m_version.load(std::memory_order_relaxed) % 2 == 0;
}

void FoldedTextIndex::Publish() noexcept {
  if (!IsPublished()) m_version.fetch_add(1, std::memory_order_release);
}

void FoldedTextIndex::Withhold() noexcept {
  if (IsPublished()) m_version.fetch_add(1, std::memory_order_relaxed);
}

// Makes room for one text more.
void FoldedTextIndex::Grow(std::size_t blocks) {
  Table* const old = m_table.load(std::memory_order_relaxed);
  const std::size_t slots = old == nullptr ? 0 : old->slotMask + 1;
  const std::size_t room = old == nullptr ? 0 : old->blockCount;
  const bool slotsDo = (m_count + 1) * 2 <= slots;
  const bool blocksDo = m_blockCount + blocks <= room;
  if (slotsDo && blocksDo) return;
  auto table = std::make_unique<Table>(
      slotsDo ? slots : std::max(kFirstSlots, slots * 2),
      blocksDo ? room : std::max({kFirstBlocks, room * 2, m_blockCount + blocks}));
  for (std::size_t i = 0; i < m_blockCount; ++i) Write(table->blocks[i], Read(old->blocks[i]));
  for (std::size_t i = 0; i < slots; ++i) {
    const Slot& slot = old->slots[i];
    if (!slot.IsFree()) table->Put(Read(slot.key), Read(slot.place));
  }
  // Nobody else can be in a table of an index that was never published.
  if (m_version.load(std::memory_order_relaxed) == 1) {
    delete old;
  } else {
    table->outgrown.reset(old);
  }
  m_table.store(table.release(), std::memory_order_release);
}

void FoldedTextIndex::Add(std::wstring_view text, int number) {
  Withhold();
  const FoldedText folded(text);
  Grow(folded.BlockCount());
  Table& table = *m_table.load(std::memory_order_relaxed);
  Slot* const slot = table.SlotOf(folded);  // there always is one: half of them are free
  if (!slot->IsFree()) return;
  const auto firstBlock = static_cast<std::uint32_t>(m_blockCount);
  for (std::size_t i = 0; i < folded.BlockCount(); ++i) {
    Write(table.blocks[m_blockCount++], folded.BlockAt(i));
  }
  Write(slot->key, folded.Key());
  Write(slot->place, Joined(firstBlock, static_cast<std::uint32_t>(number) + 1));
  ++m_count;
}

int FoldedTextIndex::Find(std::wstring_view text) const noexcept {
  const Table* const table = m_table.load(std::memory_order_acquire);
  if (table == nullptr) return kNone;
  const Slot* const slot = table->SlotOf(FoldedText(text));
  return slot == nullptr ? kNone : static_cast<int>(LowOf(Read(slot->place))) - 1;
}

bool FoldedTextIndex::TryFind(std::wstring_view text, int& number) const noexcept {
  const std::uint64_t version = m_version.load(std::memory_order_acquire);
  if (version % 2 != 0) return false;
  number = Find(text);
  return m_version.load(std::memory_order_relaxed) == version;
}

void FoldedTextIndex::Clear() noexcept {
  Withhold();
  Table* const table = m_table.load(std::memory_order_relaxed);
  for (std::size_t i = 0; m_count != 0 && i <= table->slotMask; ++i) {
    Write(table->slots[i].place, 0);
  }
  m_count = 0;
  m_blockCount = 0;
}

}  // namespace cvars
