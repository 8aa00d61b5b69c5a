#pragma once

#include <atomic>
#include <cstdint>

#include "Export.h"
#include "IVorCvarEventSink.h"
#include "platform/RecursiveLock.h"

namespace cvars {

/// The listeners of a cvar, and how many hold the cvar: each notification that is under way, and
/// all references together as one more.
///
/// The listeners stand in a block that notifications share. A notification takes its snapshot and
/// its hold with one atomic addition and gives both back with one exchange, whatever the number of
/// listeners. Attach and detach build a new block while a notification looks at the old one, and
/// change it in place while none does.
class CVARS_API CvarListeners {
 public:
  // Sinks first, then the identity of each, then its tag; the arrays have room for `capacity`.
  struct alignas(16) Block {
    std::atomic<std::int64_t> out{0};  // snapshots taken less those given back, once it is replaced
    std::atomic<std::uint32_t> count{0};
    std::uint32_t capacity = 0;

    IVorCvarEventSink** Sinks() noexcept { return reinterpret_cast<IVorCvarEventSink**>(this + 1); }
    IUnknown** Identities() noexcept { return reinterpret_cast<IUnknown**>(Sinks() + capacity); }
    // Four of them are compared at once while a long list is searched.
    std::uint32_t* Tags() noexcept {
      return reinterpret_cast<std::uint32_t*>(Identities() + capacity);
    }
    static std::uint32_t TagOf(const IUnknown* identity) noexcept {
      return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(identity) >> 3);
    }

    static Block* Make(std::uint32_t capacity);
    /// A block that is left goes with its references.
    static void Destroy(Block* block) noexcept;
    void Append(IVorCvarEventSink* sink, IUnknown* identity) noexcept;
    std::uint32_t Find(IUnknown* identity) noexcept;
  };

  CvarListeners() noexcept = default;
  ~CvarListeners();
  CvarListeners(const CvarListeners&) = delete;
  CvarListeners& operator=(const CvarListeners&) = delete;

  /// True while nobody was ever attached.
  bool Empty() const noexcept { return m_word.load(std::memory_order_relaxed) < kOneBlock; }

  /// How many hold the cvar.
  std::uint32_t Holders() const noexcept {
    return HoldersOf(m_word.load(std::memory_order_relaxed));
  }
  /// Adds the hold of the references. The first hold of all must come before anybody else knows the
  /// cvar.
  void Hold() noexcept {
    const std::uint64_t word = m_word.load(std::memory_order_relaxed);
    if ((word & kHoldersMask) == 0) {
      m_word.store(word + kHolder, std::memory_order_relaxed);
    } else {
      m_word.fetch_add(kHolder, std::memory_order_relaxed);
    }
  }
  /// Gives a hold back. @return how many are left; with none the cvar is to go
  std::uint32_t LetGo() noexcept {
    return HoldersOf(m_word.fetch_sub(kHolder, std::memory_order_acq_rel)) - 1;
  }

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

  /// The listeners attached at one moment, and a hold on their cvar. Whoever takes one gives it
  /// back, exactly once.
  class Snapshot {
   public:
    explicit Snapshot(CvarListeners& listeners) noexcept
        : m_listeners(listeners),
          m_word(listeners.m_word.fetch_add(kHolder + kTake, std::memory_order_seq_cst) + kHolder +
                 kTake) {
      if (Block* const block = BlockOf(m_word)) {
        m_begin = block->Sinks();
        m_end = m_begin + block->count.load(std::memory_order_seq_cst);
      }
    }
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    /// @return whether nobody else holds the cvar, which then is to go; otherwise it may be gone
    [[nodiscard]] bool GiveBack() noexcept {
      std::uint64_t word = m_word;
      if (HoldersOf(word) > 1 &&
          m_listeners.m_word.compare_exchange_strong(
              word, word - kHolder - kTake, std::memory_order_acq_rel, std::memory_order_relaxed)) {
        return false;
      }
      return m_listeners.GiveBackSlowly(BlockOf(m_word));
    }

    /// How many held the cvar when it was taken, itself included.
    std::uint32_t Holders() const noexcept { return HoldersOf(m_word); }
    IVorCvarEventSink* const* begin() const noexcept { return m_begin; }
    IVorCvarEventSink* const* end() const noexcept { return m_end; }

   private:
    CvarListeners& m_listeners;
    const std::uint64_t m_word;
    IVorCvarEventSink* const* m_begin = nullptr;
    IVorCvarEventSink* const* m_end = nullptr;
  };

 private:
  static constexpr unsigned kHoldersShift = 10;
  static constexpr unsigned kBlockShift = 20;
  static constexpr std::uint64_t kTake = 1;
  static constexpr std::uint64_t kHolder = std::uint64_t{1} << kHoldersShift;
  static constexpr std::uint64_t kOneBlock = std::uint64_t{1} << kBlockShift;
  static constexpr std::uint64_t kTakenMask = kHolder - 1;
  static constexpr std::uint64_t kHoldersMask = (kOneBlock - 1) & ~kTakenMask;

  static std::uint32_t HoldersOf(std::uint64_t word) noexcept {
    return static_cast<std::uint32_t>((word & kHoldersMask) >> kHoldersShift);
  }
  static Block* BlockOf(std::uint64_t word) noexcept {
    return reinterpret_cast<Block*>((word >> kBlockShift) << 4);
  }
  Block* Replace(Block* block) noexcept;
  bool GiveBackSlowly(Block* block) noexcept;

  // Address of the block divided by 16 in the upper 44 bits, number of holders in the middle 10,
  // number of snapshots taken from this very block in the low 10.
  std::atomic<std::uint64_t> m_word{0};
};

}  // namespace cvars
