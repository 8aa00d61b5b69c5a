#include "CvarListeners.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "CComPtr.h"

namespace cvars {

using platform::RecursiveLock;
using platform::ScopedLock;

CvarListeners::Block* CvarListeners::Block::Make(std::uint32_t capacity) {
  const std::size_t bytes =
      sizeof(Block) + std::size_t{capacity} * (2 * sizeof(void*) + sizeof(std::uint32_t));
  void* memory = std::malloc(bytes);
  if (memory == nullptr) throw std::bad_alloc();
  Block* block = new (memory) Block;
  block->capacity = capacity;
  return block;
}

void CvarListeners::Block::Destroy(Block* block) noexcept {
  if (block == nullptr) return;
  const std::uint32_t count = block->count.load(std::memory_order_relaxed);
  for (std::uint32_t i = 0; i < count; ++i) block->Sinks()[i]->Release();
  block->~Block();
  std::free(block);
}

void CvarListeners::Block::Append(IVorCvarEventSink* sink, IUnknown* identity) noexcept {
  const std::uint32_t index = count.load(std::memory_order_relaxed);
  Sinks()[index] = sink;
  Identities()[index] = identity;
  Tags()[index] = TagOf(identity);
  // Whoever reads the new count finds the listener. One that reads the old one took its snapshot
  // before the listener was attached.
  count.store(index + 1, std::memory_order_release);
}

// From the end: what was attached last is detached first as a rule.
std::uint32_t CvarListeners::Block::Find(IUnknown* identity) noexcept {
  using Tags4 [[gnu::vector_size(16)]] = std::uint32_t;
  constexpr std::uint32_t kStride = 16;
  const std::uint32_t tag = TagOf(identity);
  const Tags4 wanted = {tag, tag, tag, tag};
  const std::uint32_t n = count.load(std::memory_order_relaxed);
  std::uint32_t end = n;
  for (; end >= kStride; end -= kStride) {
    Tags4 group[4];
    std::memcpy(group, Tags() + (end - kStride), sizeof group);
    const auto here =
        (group[0] == wanted) | (group[1] == wanted) | (group[2] == wanted) | (group[3] == wanted);
    std::uint64_t halves[2];
    std::memcpy(halves, &here, sizeof halves);
    if ((halves[0] | halves[1]) == 0) continue;
    for (std::uint32_t i = end; i > end - kStride; --i) {
      if (Identities()[i - 1] == identity) return i - 1;
    }
  }
  for (; end > 0; --end) {
    if (Identities()[end - 1] == identity) return end - 1;
  }
  return n;
}

CvarListeners::~CvarListeners() {
  if (Block* block = BlockOf(m_word.load(std::memory_order_acquire))) Block::Destroy(block);
}

// Puts another block in place of the current one. Gives the old one when the caller is to destroy
// it, once its locks are left; otherwise the last snapshot that is given back does. Once there was
// a block there always is one, so that a snapshot taken before the first can tell.
CvarListeners::Block* CvarListeners::Replace(Block* block) noexcept {
  const std::uint64_t address = (reinterpret_cast<std::uintptr_t>(block) >> 4) << kBlockShift;
  std::uint64_t word = m_word.load(std::memory_order_relaxed);
  while (!m_word.compare_exchange_weak(word, address | (word & kHoldersMask),
                                       std::memory_order_acq_rel, std::memory_order_relaxed)) {
  }
  Block* const old = BlockOf(word);
  if (old == nullptr) return nullptr;
  const auto taken = static_cast<std::int64_t>(word & kTakenMask);
  return old->out.fetch_add(taken, std::memory_order_acq_rel) + taken == 0 ? old : nullptr;
}

HRESULT CvarListeners::Attach(IUnknown* sink, RecursiveLock& lock) {
  if (sink == nullptr) return E_POINTER;
  CComPtr<IUnknown> identity;
  if (FAILED(sink->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&identity)))) {
    return E_INVALIDARG;
  }
  CComPtr<IVorCvarEventSink> listener;
  (void)sink->QueryInterface(IID_IVorCvarEventSink, reinterpret_cast<void**>(&listener));

  Block* replaced = nullptr;
  {
    ScopedLock guard(lock);
    const std::uint64_t word = m_word.load(std::memory_order_acquire);
    Block* const block = BlockOf(word);
    const std::uint32_t count = block == nullptr ? 0 : block->count.load(std::memory_order_relaxed);
    if (block != nullptr && block->Find(identity) != count) return S_OK;
    if (listener == nullptr) return E_INVALIDARG;

    // While no snapshot is out the block may grow in place: one taken from now on reads its own
    // count.
    if (block != nullptr && count < block->capacity && (word & kTakenMask) == 0) {
      block->Append(listener.Detach(), identity);
      return S_OK;
    }
    Block* const larger = Block::Make(count == 0 ? 1 : std::max(count + 1, count + count / 2));
    for (std::uint32_t i = 0; i < count; ++i) {
      block->Sinks()[i]->AddRef();
      larger->Append(block->Sinks()[i], block->Identities()[i]);
    }
    larger->Append(listener.Detach(), identity);
    replaced = Replace(larger);
  }
  Block::Destroy(replaced);
  return S_OK;
}

HRESULT CvarListeners::Detach(IUnknown* sink, RecursiveLock& lock) {
  if (sink == nullptr) return E_POINTER;
  CComPtr<IUnknown> identity;
  if (FAILED(sink->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&identity)))) {
    return E_INVALIDARG;
  }
  CComPtr<IVorCvarEventSink> removed;
  Block* replaced = nullptr;
  {
    ScopedLock guard(lock);
    Block* const block = BlockOf(m_word.load(std::memory_order_acquire));
    if (block == nullptr) return E_INVALIDARG;
    const std::uint32_t count = block->count.load(std::memory_order_relaxed);
    const std::uint32_t index = block->Find(identity);
    if (index == count) return E_INVALIDARG;

    if (index == count - 1) {
      // Shorten first, look for snapshots second: one taken in between already has the new count.
      block->count.store(count - 1, std::memory_order_seq_cst);
      if ((m_word.load(std::memory_order_seq_cst) & kTakenMask) == 0) {
        removed.Attach(block->Sinks()[index]);
        return S_OK;
      }
      block->count.store(count, std::memory_order_seq_cst);
    }
    Block* const smaller = Block::Make(std::max(count - 1, 1u));
    for (std::uint32_t i = 0; i < count; ++i) {
      if (i == index) continue;
      block->Sinks()[i]->AddRef();
      smaller->Append(block->Sinks()[i], block->Identities()[i]);
    }
    removed = block->Sinks()[index];
    replaced = Replace(smaller);
  }
  Block::Destroy(replaced);
  return S_OK;
}

std::uint32_t CvarListeners::Count(RecursiveLock& lock) const {
  ScopedLock guard(lock);
  Block* const block = BlockOf(m_word.load(std::memory_order_acquire));
  return block == nullptr ? 0 : block->count.load(std::memory_order_relaxed);
}

IVorCvarEventSink* CvarListeners::At(long index, RecursiveLock& lock) const {
  ScopedLock guard(lock);
  Block* const block = BlockOf(m_word.load(std::memory_order_acquire));
  if (block == nullptr || index < 0 ||
      index >= static_cast<long>(block->count.load(std::memory_order_relaxed))) {
    return nullptr;
  }
  IVorCvarEventSink* const sink = block->Sinks()[index];
  sink->AddRef();
  return sink;
}

void CvarListeners::DetachAll(RecursiveLock& lock) {
  if (Empty()) return;
  Block* replaced = nullptr;
  {
    ScopedLock guard(lock);
    replaced = Replace(nullptr);
  }
  Block::Destroy(replaced);
}

// The word changed since the snapshot was taken: by other notifications, or because the block was
// replaced, in which case the block itself counts its snapshots.
bool CvarListeners::GiveBackSlowly(Block* block) noexcept {
  std::uint64_t word = m_word.load(std::memory_order_relaxed);
  for (;;) {
    const bool current = BlockOf(word) == block;
    const std::uint64_t next = word - kHolder - (current ? kTake : 0);
    if (!m_word.compare_exchange_weak(word, next, std::memory_order_acq_rel,
                                      std::memory_order_relaxed)) {
      continue;
    }
    // From here on only the last holder may touch the cvar.
    if (!current && block != nullptr && block->out.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      Block::Destroy(block);
    }
    return HoldersOf(next) == 0;
  }
}

}  // namespace cvars
