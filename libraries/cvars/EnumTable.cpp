#include "EnumTable.h"

#include <algorithm>
#include <utility>

namespace cvars {

int EnumTable::CountEnabled() const noexcept {
  return static_cast<int>(std::count_if(m_entries.begin(), m_entries.end(),
                                        [](const Entry& entry) { return entry->m_enabled != 0; }));
}

// Changes -----------------------------------------------------------------------------------------

void EnumTable::Insert(Entry entry, int index) {
  if (!IsValid(index)) {
    m_names.Withhold();
    m_entries.push_back(std::move(entry));
    return;
  }
  m_entries.insert(m_entries.begin() + index, std::move(entry));
  ForgetLookUp();
}

EnumTable::Entry EnumTable::Remove(int index) {
  const auto place = m_entries.begin() + index;
  Entry removed = std::move(*place);
  m_entries.erase(place);
  ForgetLookUp();
  return removed;
}

bool EnumTable::SetSpelling(int index, Spelling spelling, std::wstring_view text) {
  CEnumValueString& strings = At(index).m_strings;
  switch (spelling) {
    case Spelling::kScreen:
      if (strings.Screen().View() == text) return false;
      strings.SetScreen(text);
      break;
    case Spelling::kAutomation:
      if (strings.Automation().View() == text) return false;
      strings.SetAutomation(text);
      break;
    case Spelling::kRemote:
      if (strings.Remote().View() == text) return false;
      strings.SetRemote(text);
      break;
  }
  ForgetLookUp();
  return true;
}

void EnumTable::Swap(EnumTable& other) noexcept {
  m_entries.swap(other.m_entries);
  ForgetLookUp();
  other.ForgetLookUp();
}

void EnumTable::ForgetLookUp() noexcept {
  m_names.Clear();
  m_triples.Clear();
  m_namedEntries = 0;
  m_tripledEntries = 0;
}

// Look-up -----------------------------------------------------------------------------------------

// What makes the three spellings one text, whatever characters they hold.
std::wstring EnumTable::TripleOf(const CEnumValueString& strings) {
  std::wstring text;
  for (const CComBSTR* spelling : {&strings.Screen(), &strings.Automation(), &strings.Remote()}) {
    text += std::to_wstring(spelling->Length());
    text += L':';
    text += spelling->View();
  }
  return text;
}

int EnumTable::Find(std::wstring_view text) const {
  // Adding in the order of the entries keeps the first match: a text that is there stays.
  for (; m_namedEntries < Count(); ++m_namedEntries) {
    const CEnumValueString& strings = At(m_namedEntries).Strings();
    m_names.Add(strings.Remote().View(), m_namedEntries);
    m_names.Add(strings.Automation().View(), m_namedEntries);
    m_names.Add(strings.Screen().View(), m_namedEntries);
  }
  m_names.Publish();
  return m_names.Find(text);
}

bool EnumTable::HasSameAnyCase(const CEnumValueString& strings) const {
  for (; m_tripledEntries < Count(); ++m_tripledEntries) {
    m_triples.Add(TripleOf(At(m_tripledEntries).Strings()), m_tripledEntries);
  }
  return m_triples.Find(TripleOf(strings)) != kNone;
}

bool EnumTable::SameSpellings(const EnumTable& other) const noexcept {
  return std::equal(m_entries.begin(), m_entries.end(), other.m_entries.begin(),
                    other.m_entries.end(),
                    [](const Entry& a, const Entry& b) { return a->Strings() == b->Strings(); });
}

// Rules of choosing
// ---------------------------------------------------------------------------------

int EnumTable::Adapted(int requested, bool wrapping) const noexcept {
  const int candidate = std::clamp(requested, kNone, MaxIndex());
  if (candidate == kNone) return kNone;
  for (int index = candidate; index < Count(); ++index) {
    if (IsEnabled(index)) return index;
  }
  if (wrapping) {
    for (int index = 0; index < candidate; ++index) {
      if (IsEnabled(index)) return index;
    }
  } else {
    for (int index = candidate - 1; index >= 0; --index) {
      if (IsEnabled(index)) return index;
    }
  }
  return kNone;
}

int EnumTable::Next(int index, bool wrapping) const noexcept {
  if (index < MaxIndex()) return index + 1;
  return wrapping ? 0 : MaxIndex();
}

int EnumTable::Previous(int index, bool wrapping) const noexcept {
  if (index > 0) return index - 1;
  return wrapping ? MaxIndex() : 0;
}

int EnumTable::Stepped(int from, std::int64_t steps, bool wrapping) const noexcept {
  int reached = from;
  int index = from;
  std::int64_t left = steps < 0 ? -steps : steps;
  for (int moves = 0; moves < Count() && left > 0; ++moves) {
    index = steps < 0 ? Previous(index, wrapping) : Next(index, wrapping);
    if (!IsEnabled(index)) continue;
    reached = index;
    --left;
  }
  return reached;
}

}  // namespace cvars
