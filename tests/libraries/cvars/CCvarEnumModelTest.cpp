// An enum beside a plain one: the same operations in random order, the same answers.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "EnumCvarTest.h"
#include "Randomness.h"
#include "TextCase.h"
#include "TextPieces.h"

namespace {

using namespace cvars::test;

constexpr int kNone = -1;

struct PlainEntry {
  std::wstring screen;
  std::wstring automation;
  std::wstring remote;
  bool isEnabled = true;

  std::wstring Joined() const { return screen + L'|' + automation + L'|' + remote; }
};

/// The rules of an enum, step by step: every search walks the list, nothing is kept for later.
class PlainEnum {
 public:
  // What one operation sent.
  Masks TakeMasks() { return std::exchange(m_sent, {}); }

  bool SetFlag(unsigned bit, bool on) {
    const unsigned word = on ? m_flags | bit : m_flags & ~bit;
    if (word == m_flags) return false;
    m_flags = word;
    m_pending |= NOTIFY_FLAGS;
    (void)Notify();
    return true;
  }

  HRESULT AddValue(const std::wstring& text, int index) {
    const std::vector<std::wstring_view> pieces = cvars::SplitText(text, L',');
    bool isAdded = false;
    for (const std::wstring_view piece : pieces) {
      const PlainEntry entry = EntryOf(piece);
      if (piece.empty() || HasAnyCase(entry)) continue;
      Insert(entry, pieces.size() > 1 ? kNone : index);
      isAdded = true;
    }
    return isAdded ? ChangedRange() : E_INVALIDARG;
  }
  HRESULT AddChildPage(const std::wstring& name) {
    if (name.empty()) return E_INVALIDARG;
    const int index = Find(name);
    if (index != kNone) return Enable(index, true);
    Insert(EntryOf(name), kNone);
    return ChangedRange();
  }
  int DeleteValue(const std::wstring& text) {
    const int index = Find(text);
    if (index == kNone) return 0;
    m_entries.erase(m_entries.begin() + index);
    (void)ChangedRange();
    return 1;
  }
  HRESULT DeleteAllValues() {
    m_entries.clear();
    return ChangedRange();
  }
  void DeleteAllValuesNoNotify() { m_entries.clear(); }
  HRESULT SetRange(const std::wstring& values, int defaultIndex, bool setDefault) {
    std::vector<PlainEntry> entries;
    for (const std::wstring_view piece : cvars::SplitText(values, L',')) {
      if (!piece.empty()) entries.push_back(EntryOf(piece));
    }
    if (Joined(entries) != Joined(m_entries)) m_pending |= NOTIFY_RANGE;
    m_entries = entries;
    if (setDefault && m_default != defaultIndex) {
      m_default = defaultIndex;
      m_pending |= NOTIFY_ATTRIBUTES;
    }
    return Adapt();
  }
  bool ChangeSpelling(int index, std::wstring PlainEntry::*spelling, const std::wstring& text) {
    if (!IsValid(index) || At(index).*spelling == text) return false;
    At(index).*spelling = text;
    (void)ChangedRange();
    return true;
  }
  HRESULT Enable(int index, bool on) {
    if (!IsValid(index)) return E_INVALIDARG;
    if (At(index).isEnabled == on) return S_FALSE;
    At(index).isEnabled = on;
    return ChangedRange();
  }

  HRESULT Request(int index, bool force) {
    if (Has(CVARFLAG_READONLY) && !force) return E_ACCESSDENIED;
    m_pendingText.clear();
    if (m_requested != index) {
      m_requested = index;
      m_pending |= NOTIFY_REQUESTED;
    }
    return Has(CVARFLAG_D) && !IsEnabled(index) ? Notify() : Adapt();
  }
  HRESULT RequestText(const std::wstring& text, bool force) {
    const int index = Find(text);
    if (index != kNone) return Request(index, force);
    if (!m_entries.empty()) return E_INVALIDARG;
    if (!cvars::SameTextAnyCase(text, L"undef")) m_pendingText = text;
    return S_OK;
  }
  HRESULT RequestNorm(double position) {
    return Request(static_cast<int>(std::floor(Last() * position + 0.5)), false);
  }
  HRESULT Increment(int steps) {
    if (m_entries.empty()) return Request(m_requested, false);
    const bool isUp = (steps > 0) != Has(CVARFLAG_REVERSEINCREMENT);
    int reached = m_adapted;
    int index = m_adapted;
    int left = std::abs(steps);
    for (std::size_t moves = 0; moves < m_entries.size() && left > 0; ++moves) {
      index = isUp ? Next(index) : Previous(index);
      if (!IsEnabled(index)) continue;
      reached = index;
      --left;
    }
    return Request(reached, false);
  }

  int Find(const std::wstring& text) const {
    for (int i = 0; i <= Last(); ++i) {
      const PlainEntry& entry = m_entries[static_cast<std::size_t>(i)];
      for (const std::wstring* spelling : {&entry.remote, &entry.automation, &entry.screen}) {
        if (cvars::SameTextAnyCase(text, *spelling)) return i;
      }
    }
    return kNone;
  }
  std::wstring Signature(const std::wstring& flags) const {
    std::wstring text = L"Type,Enum,Request," + JoinedAt(m_requested) + L",Adapt," +
                        JoinedAt(m_adapted) + L",Default," + JoinedAt(m_default) + L",Flags," +
                        flags + L",Range,";
    for (int i = 0; i <= Last(); ++i) {
      if (i > 0) text += L',';
      text += IsEnabled(i) ? JoinedAt(i) : L'(' + JoinedAt(i) + L')';
    }
    return text;
  }

 private:
  bool Has(unsigned bit) const { return (m_flags & bit) != 0; }
  int Last() const { return static_cast<int>(m_entries.size()) - 1; }
  bool IsValid(int index) const { return index >= 0 && index <= Last(); }
  PlainEntry& At(int index) { return m_entries[static_cast<std::size_t>(index)]; }
  bool IsEnabled(int index) const {
    return IsValid(index) && m_entries[static_cast<std::size_t>(index)].isEnabled;
  }
  std::wstring JoinedAt(int index) const {
    return IsValid(index) ? m_entries[static_cast<std::size_t>(index)].Joined() : std::wstring();
  }
  static std::vector<std::wstring> Joined(const std::vector<PlainEntry>& entries) {
    std::vector<std::wstring> texts;
    for (const PlainEntry& entry : entries) texts.push_back(entry.Joined());
    return texts;
  }
  bool HasAnyCase(const PlainEntry& entry) const {
    for (const PlainEntry& other : m_entries) {
      if (cvars::SameTextAnyCase(entry.screen, other.screen) &&
          cvars::SameTextAnyCase(entry.automation, other.automation) &&
          cvars::SameTextAnyCase(entry.remote, other.remote)) {
        return true;
      }
    }
    return false;
  }
  void Insert(const PlainEntry& entry, int index) {
    m_entries.insert(IsValid(index) ? m_entries.begin() + index : m_entries.end(), entry);
  }

  PlainEntry EntryOf(std::wstring_view text) const {
    const std::vector<std::wstring_view> pieces = cvars::SplitText(text, L'|');
    PlainEntry entry;
    entry.screen = pieces[0];
    for (const wchar_t c : pieces.size() > 1 ? pieces[1] : pieces[0]) {
      const bool isPlain = (c >= L'0' && c <= L'9') || (c >= L'A' && c <= L'Z') ||
                           (c >= L'a' && c <= L'z') || c == L'.';
      if (isPlain || Has(CVARFLAG_SPECIALCHARS)) entry.automation += c;
    }
    entry.remote = cvars::UpperCased(pieces.size() > 2 ? pieces[2] : entry.automation);
    return entry;
  }

  int Next(int index) const {
    if (index < Last()) return index + 1;
    return Has(CVARFLAG_WRAPPING) ? 0 : Last();
  }
  int Previous(int index) const {
    if (index > 0) return index - 1;
    return Has(CVARFLAG_WRAPPING) ? Last() : 0;
  }

  HRESULT ChangedRange() {
    m_pending |= NOTIFY_RANGE;
    return Adapt();
  }
  HRESULT Adapt() {
    const int found = m_pendingText.empty() ? kNone : Find(m_pendingText);
    if (found != kNone) {
      m_requested = found;
      m_pendingText.clear();
    }
    const int adapted = Adapted();
    if (adapted != m_adapted) {
      m_adapted = adapted;
      m_pending |= NOTIFY_VALUE;
    }
    return Notify();
  }
  int Adapted() const {
    const int candidate = std::min(std::max(m_requested, kNone), Last());
    if (candidate == kNone) return kNone;
    if (Has(CVARFLAG_WRAPPING)) {
      int index = candidate;
      for (std::size_t i = 0; i < m_entries.size(); ++i, index = Next(index)) {
        if (IsEnabled(index)) return index;
      }
      return kNone;
    }
    for (int i = candidate; i <= Last(); ++i) {
      if (IsEnabled(i)) return i;
    }
    for (int i = candidate - 1; i >= 0; --i) {
      if (IsEnabled(i)) return i;
    }
    return kNone;
  }
  HRESULT Notify() {
    if (m_pending != 0) m_sent.push_back(static_cast<NOTIFYTYPE>(std::exchange(m_pending, 0)));
    return S_OK;
  }

  std::vector<PlainEntry> m_entries;
  std::wstring m_pendingText;
  int m_adapted = -2;
  int m_default = -3;
  int m_requested = -4;
  unsigned m_flags = 0;
  unsigned m_pending = 0;
  Masks m_sent;
};

constexpr const wchar_t* kTexts[] = {L"A",     L"b",
                                     L"B",     L"a b",
                                     L"Off",   L"off|x|y",
                                     L"A,B,C", L"A,,q 1,|",
                                     L"",      L"DC 50|Dc50|D50",
                                     L"x",     L"d50",
                                     L"UNDEF", L"y",
                                     L"b|",    L"C|A|B",
                                     L"||",    L"z,z,Z,\u00e4",
                                     L"\u00c4"};
constexpr CVARFLAGS kFlags[] = {CVARFLAG_READONLY, CVARFLAG_WRAPPING, CVARFLAG_REVERSEINCREMENT,
                                CVARFLAG_D, CVARFLAG_SPECIALCHARS};

struct Answers {
  long enumSays;
  long plainSays;
};

Answers DoAnything(const Enum& cvar, PlainEnum& plain, Randomness& random) {
  const wchar_t* const text = random.Pick(kTexts);
  const auto index = static_cast<int>(random.Whole(-2, 5));
  const bool on = random.Chance(0.5);
  switch (random.Whole(0, 14)) {
    case 0:
      return {cvar->AddChildPage(text, L"page", nullptr), plain.AddChildPage(text)};
    case 1:
      return {cvar->DeleteValue(text), plain.DeleteValue(text)};
    case 2:
      if (random.Chance(0.7)) return {};
      return {cvar->DeleteAllValues(), plain.DeleteAllValues()};
    case 3:
      if (random.Chance(0.7)) return {};
      cvar->DeleteAllValuesNoNotify();
      plain.DeleteAllValuesNoNotify();
      return {};
    case 4:
      if (random.Chance(0.5)) return {};
      return {cvar->SetRange(text, index, nullptr, 0, on), plain.SetRange(text, index, on)};
    case 5:
      return {cvar->ChangeStringScreenValue(CComVariant(index), text),
              plain.ChangeSpelling(index, &PlainEntry::screen, text)};
    case 6:
      return {cvar->ChangeStringAutomationValue(CComVariant(index), text),
              plain.ChangeSpelling(index, &PlainEntry::automation, text)};
    case 7:
      return {cvar->ChangeStringRemoteValue(CComVariant(index), text),
              plain.ChangeSpelling(index, &PlainEntry::remote, text)};
    case 8:
      return {cvar->Enable(index, on ? 2 : 0), plain.Enable(index, on)};
    case 9:
      return {cvar->SetRequestedValue(index, on), plain.Request(index, on)};
    case 10:
      return {cvar->SetRequestedValueFromString(text, on), plain.RequestText(text, on)};
    case 11:
      return {cvar->Increment(index), plain.Increment(index)};
    case 12:
      return {cvar->SetRequestedValueNorm(index / 4.0), plain.RequestNorm(index / 4.0)};
    case 13: {
      const CVARFLAGS flag = random.Pick(kFlags);
      return {cvar->SetFlags(flag, on), plain.SetFlag(flag, on)};
    }
    default:
      return {cvar->AddValue(text, 0, index), plain.AddValue(text, index)};
  }
}

TEST(EnumModelTest, AnswersTellsAndReadsAsThePlainOneDoes) {
  Randomness random("EnumModel");
  for (int round = 0; round < 400 && !testing::Test::HasFailure(); ++round) {
    const Enum cvar = CvarObject<CCvarEnum>::Create();
    const auto listener = Listen(cvar);
    PlainEnum plain;
    for (int i = 0; i < 60; ++i) {
      SCOPED_TRACE(i);
      const Answers answers = DoAnything(cvar, plain, random);
      ASSERT_EQ(answers.enumSays, answers.plainSays);
      ASSERT_EQ(listener->TakeMasks(), plain.TakeMasks());
      ASSERT_EQ(Text(cvar, &CCvarEnum::get_Signature), plain.Signature(cvar->GetFlagsString()));
      const wchar_t* const text = random.Pick(kTexts);
      ASSERT_EQ(cvar->GetIndexOfStringValue(text), plain.Find(text));
    }
  }
}

}  // namespace
