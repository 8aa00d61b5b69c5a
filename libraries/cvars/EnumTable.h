#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "CCvarEnumValue.h"
#include "Export.h"
#include "FoldedTextIndex.h"

namespace cvars {

/// The ordered list of the entries of an enum. The index of an entry is its position.
///
/// Not locked; its owner serialises access, that of reads too: a look-up may rebuild what it looks
/// into. Only TryFind may run on any thread.
class CVARS_API EnumTable {
 public:
  using Entry = std::unique_ptr<CCvarEnumValue>;
  /// What stands for no entry.
  static constexpr int kNone = FoldedTextIndex::kNone;

  enum class Spelling { kScreen, kAutomation, kRemote };

  EnumTable() = default;
  /// Takes the entries.
  EnumTable(EnumTable&& other) noexcept { Swap(other); }

  int Count() const noexcept { return static_cast<int>(m_entries.size()); }
  /// Index of the last entry; -1 when there is none.
  int MaxIndex() const noexcept { return Count() - 1; }
  bool IsValid(int index) const noexcept { return index >= 0 && index < Count(); }
  /// Entry at a valid index.
  CCvarEnumValue& At(int index) noexcept { return *m_entries[static_cast<std::size_t>(index)]; }
  const CCvarEnumValue& At(int index) const noexcept {
    return *m_entries[static_cast<std::size_t>(index)];
  }
  /// Says whether the index is valid and its entry enabled.
  bool IsEnabled(int index) const noexcept { return IsValid(index) && At(index).m_enabled != 0; }
  int CountEnabled() const noexcept;

  // Changes ------------------------------------------------------------------------------------

  /// Puts an entry before the one at a valid index, and behind all others for every other index.
  void Insert(Entry entry, int index);
  /// Takes the entry at a valid index out.
  [[nodiscard]] Entry Remove(int index);
  /// Replaces one spelling of the entry at a valid index.
  /// @return whether it differed, case counting
  bool SetSpelling(int index, Spelling spelling, std::wstring_view text);
  /// Exchanges the entries.
  void Swap(EnumTable& other) noexcept;

  // Look-up ------------------------------------------------------------------------------------

  /// Gives the first entry that has a spelling which is the text but for its case, else kNone.
  ///
  /// The whole text has to be the same. The entries are gone through in order, each with its
  /// remote, automation and screen spelling; a hash gives the same answer without the walk, and
  /// allocates nothing unless entries changed since the last look-up.
  int Find(std::wstring_view text) const;
  /// The same without serialised access, whatever changes meanwhile.
  /// @return whether it could be told; not so from a change of the spellings to the next Find
  bool TryFind(std::wstring_view text, int& index) const noexcept {
    return m_names.TryFind(text, index);
  }
  /// Says whether an entry has the same three spellings but for their case.
  bool HasSameAnyCase(const CEnumValueString& strings) const;
  /// Says whether both tables have the same spellings in the same order, case counting.
  bool SameSpellings(const EnumTable& other) const noexcept;

  // Rules of choosing --------------------------------------------------------------------------

  /// Fits a requested index to the enabled entry that stands for it; kNone when there is none.
  ///
  /// An index above the table counts as its last entry, one below 0 as no entry. From there the
  /// next enabled entry upwards counts; behind the last one the search goes on at the first
  /// (wrapping) or downwards from the request (not wrapping).
  int Adapted(int requested, bool wrapping) const noexcept;
  /// Index after another one; at the end the first (wrapping) or the last again.
  int Next(int index, bool wrapping) const noexcept;
  /// Index before another one; at the start the last (wrapping) or the first again.
  int Previous(int index, bool wrapping) const noexcept;
  /// Walks from an index to the enabled entry that lies a number of enabled entries further on.
  ///
  /// Gives up after as many moves as there are entries.
  /// @param steps  negative walks down.
  /// @return the last enabled entry that was reached, else `from`
  int Stepped(int from, std::int64_t steps, bool wrapping) const noexcept;

 private:
  void ForgetLookUp() noexcept;
  static std::wstring TripleOf(const CEnumValueString& strings);

  std::vector<Entry> m_entries;

  // Both are made when a look-up needs them; an entry that comes last is added to what is there,
  // any other change of spellings or positions empties them. The names are published while they are
  // those of all entries.
  mutable FoldedTextIndex m_names;
  mutable FoldedTextIndex m_triples;
  mutable int m_namedEntries = 0;    // entries whose spellings are in m_names
  mutable int m_tripledEntries = 0;  // entries whose spellings are in m_triples
};

}  // namespace cvars
