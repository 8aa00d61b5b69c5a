#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "Export.h"

namespace cvars {

/// Finds numbers by texts, whatever the case of their characters.
///
/// A look-up allocates nothing. Not locked; its owner serialises access, but for TryFind.
class CVARS_API FoldedTextIndex {
 public:
  /// What stands for no number.
  static constexpr int kNone = -1;

  FoldedTextIndex() noexcept;
  ~FoldedTextIndex();
  FoldedTextIndex(const FoldedTextIndex&) = delete;
  FoldedTextIndex& operator=(const FoldedTextIndex&) = delete;

  /// Adds a number, and withholds the index. A text that is there already keeps the number that it
  /// has.
  /// @param text    copied; may be empty and may hold any character.
  /// @param number  0 or above.
  void Add(std::wstring_view text, int number);

  /// Gives the number of a text, kNone when the text was never added.
  int Find(std::wstring_view text) const noexcept;

  /// Forgets every text, and withholds the index. Keeps its memory.
  void Clear() noexcept;

  /// Lets TryFind look until the index is withheld.
  void Publish() noexcept;
  /// Keeps TryFind from looking, as what is in the index is not all that counts any longer.
  void Withhold() noexcept;

  /// Looks up on any thread, whatever the owner does meanwhile, without a lock.
  /// @param[out] number  what Find gives
  /// @return whether it could be told: the index is published, and nothing changed during the look
  bool TryFind(std::wstring_view text, int& number) const noexcept;

 private:
  struct Table;

  bool IsPublished() const noexcept;
  void Grow(std::size_t blocks);

  // Odd while the index is withheld; one more for each time that it is published or withheld.
  std::atomic<std::uint64_t> m_version{1};
  std::atomic<Table*> m_table{nullptr};  // owned; what a look may still be in hangs on it
  std::size_t m_count = 0;
  std::size_t m_blockCount = 0;
};

}  // namespace cvars
