#pragma once

#include <atomic>
#include <cstdint>

#include "Export.h"
#include "IVorCvarEventSink.h"
#include "platform/RecursiveLock.h"

namespace cvars {

/// The listeners of a cvar, and how deep its notifications are nested.
///
/// The listeners stand in a block that notifications share: taking a snapshot and counting the
/// depth is one atomic addition, giving it back another, whatever the number of listeners. Attach
/// and detach build a new block while a notification looks at the old one, and change it in place
/// while none does.
class CVARS_API CvarListeners {
 public:
  struct Block;

  CvarListeners() noexcept = default;
  ~CvarListeners();
  CvarListeners(const CvarListeners&) = delete;
  CvarListeners& operator=(const CvarListeners&) = delete;

  /// True while nobody was ever attached and no notification is on its way.
  bool Empty() const noexcept { return m_word.load(std::memory_order_relaxed) == 0; }

  /// @retval E_POINTER     sink is null
  /// @retval E_INVALIDARG  sink is no listener
  /// @retval S_OK          attached, also when it was attached before
  HRESULT Attach(IUnknown* sink, platform::RecursiveLock& lock);
  /// @retval E_POINTER     sink is null
  /// @retval E_INVALIDARG  not attached
  HRESULT Detach(IUnknown* sink, platform::RecursiveLock& lock);
  std::uint32_t Count(platform::RecursiveLock& lock) const;
  /// @return the listener at a position with one reference, or null.
  IVorCvarEventSink* At(long index, platform::RecursiveLock& lock) const;
  /// Releases every listener; no notification may be on its way.
  void DetachAll(platform::RecursiveLock& lock);

  /// The listeners attached at one moment, held for as long as this lives; counts one level of
  /// nesting while it lives.
  class Snapshot {
   public:
    explicit Snapshot(CvarListeners& listeners) noexcept;
    ~Snapshot();
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    /// Nested notifications of this cvar, this one included.
    std::uint32_t Depth() const noexcept { return m_depth; }
    IVorCvarEventSink* const* begin() const noexcept { return m_begin; }
    IVorCvarEventSink* const* end() const noexcept { return m_begin + m_count; }

   private:
    CvarListeners& m_listeners;
    Block* m_block;
    std::uint64_t m_word;
    IVorCvarEventSink* const* m_begin = nullptr;
    std::uint32_t m_count = 0;
    std::uint32_t m_depth;
  };

 private:
  static Block* BlockOf(std::uint64_t word) noexcept;
  Block* Replace(Block* block) noexcept;
  void GiveBackSlowly(Block* block) noexcept;

  // Address of the block divided by 16 in the upper 44 bits, nesting depth in the middle 10, number
  // of snapshots taken from this very block in the low 10.
  std::atomic<std::uint64_t> m_word{0};
};

}  // namespace cvars
