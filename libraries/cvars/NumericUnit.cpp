#include "NumericUnit.h"

#include <memory>
#include <string>

#include "CvarText.h"
#include "PhysicalUnits.h"

namespace cvars {

struct NumericUnit::Record {
  explicit Record(std::wstring_view unit) : remote(unit) {}

  // Two threads may ask at once; the first answer stays.
  const std::wstring* AskForScreen() const {
    std::wstring answer;
    if (FAILED(ScreenUnit(remote.c_str(), &answer))) return nullptr;
    auto made = std::make_unique<const std::wstring>(std::move(answer));
    const std::wstring* known = nullptr;
    if (!screen.compare_exchange_strong(known, made.get(), std::memory_order_acq_rel)) return known;
    return made.release();
  }

  const std::wstring remote;
  mutable std::atomic<const std::wstring*> screen{nullptr};  // null until the service gave it
  const Record* next = nullptr;
};

// Every unit that was found valid, in buckets of lists that only grow.
class NumericUnit::Vocabulary {
 public:
  static const Record* Find(std::wstring_view remote) noexcept {
    for (const Record* record = Bucket(remote).load(std::memory_order_acquire); record != nullptr;
         record = record->next) {
      if (record->remote == remote) return record;
    }
    return nullptr;
  }

  // Two threads may add the same unit; either record serves.
  static const Record* Add(std::wstring_view remote) {
    auto made = std::make_unique<Record>(remote);
    (void)made->AskForScreen();  // so that the first text need not; a later one asks again
    Record* const record = made.release();
    std::atomic<const Record*>& bucket = Bucket(remote);
    const Record* first = bucket.load(std::memory_order_relaxed);
    do {
      record->next = first;
    } while (!bucket.compare_exchange_weak(first, record, std::memory_order_release,
                                           std::memory_order_relaxed));
    return record;
  }

 private:
  static constexpr std::size_t kBuckets = 256;

  static std::atomic<const Record*>& Bucket(std::wstring_view remote) noexcept {
    std::size_t hash = remote.size();
    for (const wchar_t character : remote) hash = hash * 31 + static_cast<std::size_t>(character);
    return s_buckets[hash % kBuckets];
  }

  static std::atomic<const Record*> s_buckets[kBuckets];
};

constinit std::atomic<const NumericUnit::Record*>
    NumericUnit::Vocabulary::s_buckets[NumericUnit::Vocabulary::kBuckets] = {};

HRESULT NumericUnit::Set(const wchar_t* remoteUnit, bool* changed) {
  *changed = false;
  const std::wstring_view unit = TextOrEmpty(remoteUnit);
  if (unit == Remote()) return S_OK;
  if (const HRESULT result = ValidateUnit(remoteUnit); FAILED(result)) return result;
  const Record* record = Vocabulary::Find(unit);
  if (record == nullptr) record = Vocabulary::Add(unit);
  m_record.store(record, std::memory_order_release);
  *changed = true;
  return S_OK;
}

std::wstring_view NumericUnit::Remote() const noexcept {
  const Record* const record = m_record.load(std::memory_order_acquire);
  return record == nullptr ? std::wstring_view() : std::wstring_view(record->remote);
}

std::wstring_view NumericUnit::Screen() const {
  const Record* const record = m_record.load(std::memory_order_acquire);
  if (record == nullptr) return {};
  const std::wstring* screen = record->screen.load(std::memory_order_acquire);
  if (screen == nullptr) screen = record->AskForScreen();
  return screen == nullptr ? std::wstring_view() : std::wstring_view(*screen);
}

}  // namespace cvars
