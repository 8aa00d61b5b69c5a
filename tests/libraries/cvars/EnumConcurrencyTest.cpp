// One enum in the hands of threads that rebuild its list, disable its entries, set and read it.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <barrier>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "CCvarEnum.h"
#include "CvarObject.h"
#include "ReadText.h"
#include "RecordingListener.h"
#include "TextPieces.h"

namespace {

using cvars::test::TextOf;
using Enum = CComPtr<CvarObject<CCvarEnum>>;

constexpr int kRounds = 3000;
constexpr const wchar_t* kLists[] = {L"A,B,C", L"D,E,F,G", L"B,D", L"C"};
const std::set<std::wstring> kChoices = {L"A", L"B", L"C", L"D", L"E", L"F", L"G"};

bool IsChoiceOrNone(const std::wstring& text) { return text.empty() || kChoices.contains(text); }

// What a signature says of the list at one moment:
// "Type,Enum,Request,r,Adapt,a,Default,d,Flags,f,Range,e,(e),...".
struct Moment {
  std::wstring requested;
  std::wstring adapted;
  std::vector<std::wstring> entries;  // the disabled ones in parentheses
};
Moment MomentOf(IVorCvar& cvar) {
  const std::wstring signature = TextOf(cvar, &IVorCvar::get_Signature);
  const std::vector<std::wstring_view> fields = cvars::SplitText(signature, L',');
  constexpr std::size_t kFirstEntry = 11;
  if (fields.size() <= kFirstEntry) return {};
  return {std::wstring(fields[3]), std::wstring(fields[5]),
          std::vector<std::wstring>(fields.begin() + kFirstEntry, fields.end())};
}

// What is adapted is an enabled entry of the same list. There always is one: the test leaves the
// first entry of each list alone, and so never steps from no entry to no entry.
bool IsConsistent(const Moment& moment) {
  return std::count(moment.entries.begin(), moment.entries.end(), moment.adapted) != 0;
}

// The same, where there is none while no entry is enabled, or when none was requested, as a step
// does that starts from none.
bool IsConsistentOrNone(const Moment& moment) {
  if (!moment.adapted.empty()) return IsConsistent(moment);
  const bool noneEnabled =
      std::all_of(moment.entries.begin(), moment.entries.end(),
                  [](const std::wstring& entry) { return entry.starts_with(L'('); });
  return noneEnabled || moment.requested.empty();
}

TEST(EnumConcurrency, ReadersSeeOnlyWhatWasValidAtSomeMoment) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  cvar->Initialize(L"Choice", kLists[0], 0, CVARFLAGS(0), nullptr, 0,
                   REPLICATE_VALUE | REPLICATE_REQUESTED, 0);
  std::atomic<int> working{3};
  std::atomic<int> wrong{0};
  std::barrier start(4);
  {
    std::vector<std::jthread> threads;
    threads.emplace_back([&] {
      start.arrive_and_wait();
      for (int i = 0; i < kRounds; ++i) {
        (void)cvar->SetRange(kLists[i % 4], 0, nullptr, 0, false);
        if (i % 7 == 0) (void)cvar->DeleteValue(L"G");
        if (i % 5 == 0) (void)cvar->AddValue(L"E", 0, 0);
      }
      --working;
    });
    threads.emplace_back([&] {
      start.arrive_and_wait();
      for (int i = 0; i < kRounds; ++i) {
        (void)cvar->Enable(1 + i % 3, i % 4 == 0 ? 1 : 0);
        (void)cvar->SetVariant(i % 3, CComVariant(L"variant"));
      }
      --working;
    });
    threads.emplace_back([&] {
      start.arrive_and_wait();
      for (int i = 0; i < kRounds; ++i) {
        (void)cvar->SetRequestedValue(i % 5);
        (void)cvar->SetRequestedValueFromString(i % 2 == 0 ? L"b" : L"F");
        (void)cvar->Increment(i % 3);
      }
      --working;
    });
    threads.emplace_back([&] {
      start.arrive_and_wait();
      while (working.load() != 0) {
        if (!IsChoiceOrNone(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen))) ++wrong;
        if (!IsConsistent(MomentOf(*cvar))) ++wrong;
        CComVariant value;
        if (cvar->get_Value(&value) != S_OK || !IsChoiceOrNone(value.bstrVal)) ++wrong;
        const std::wstring range = TextOf(*cvar, &IVorCvar::get_RangeStringScreen);
        for (const std::wstring_view entry : cvars::SplitText(range, L',')) {
          if (!IsChoiceOrNone(std::wstring(entry))) ++wrong;
        }
        (void)cvar->GetNumberOfEnabledValueStates();
        (void)cvar->GetIndexOfStringValue(L"g");
      }
    });
  }
  EXPECT_EQ(0, wrong.load());
}

// A look-up takes no lock once the names were looked up; what it answers still is true of one list.
TEST(EnumConcurrency, LookUpsAnswerFromOneList) {
  constexpr int kLong = 200;
  std::wstring longList;
  for (int i = 0; i < kLong; ++i) longList += L"Long" + std::to_wstring(i) + L",";
  longList += L"Ac";
  const std::wstring lists[] = {L"Ac,Dc", longList, L"Dc,Ac"};
  const std::set<int> placesOfAc = {0, 1, kLong};
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  cvar->Initialize(L"Choice", lists[0].c_str(), 0, CVARFLAGS(0), nullptr, 0,
                   REPLICATE_VALUE | REPLICATE_REQUESTED, 0);
  std::atomic<bool> changing{true};
  std::atomic<int> wrong{0};
  std::barrier start(3);
  {
    std::vector<std::jthread> threads;
    for (int reader = 0; reader < 2; ++reader) {
      threads.emplace_back([&] {
        start.arrive_and_wait();
        while (changing.load()) {
          if (!placesOfAc.contains(cvar->GetIndexOfStringValue(L"AC"))) ++wrong;
          const int place = cvar->GetIndexOfStringValue(L"LONG117");
          if (place != 117 && place != -1) ++wrong;
          if (cvar->GetIndexOfStringValue(L"Long") != -1) ++wrong;
        }
      });
    }
    start.arrive_and_wait();
    for (int i = 0; i < 1000; ++i) {
      (void)cvar->SetRange(lists[i % 3].c_str(), 0, nullptr, 0, false);
      (void)cvar->AddValue(L"Last", 0, -1);
      for (int look = 0; look < 20; ++look) {
        if (!placesOfAc.contains(cvar->GetIndexOfStringValue(L"ac"))) ++wrong;
      }
    }
    changing = false;
  }
  EXPECT_EQ(0, wrong.load());
}

TEST(EnumConcurrency, EveryEntryIsDisabledAndEnabledAgain) {
  constexpr int kEntries = 3;
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  cvar->Initialize(L"Choice", L"A,B,C", 0, CVARFLAGS(0), nullptr, 0,
                   REPLICATE_VALUE | REPLICATE_REQUESTED, 0);
  std::atomic<int> working{3};
  std::atomic<int> wrong{0};
  std::barrier start(4);
  {
    std::vector<std::jthread> threads;
    threads.emplace_back([&] {
      start.arrive_and_wait();
      for (int i = 0; i < kRounds; ++i) {
        for (int entry = 0; entry < kEntries; ++entry) (void)cvar->Disable(entry);
        for (int entry = 0; entry < kEntries; ++entry) (void)cvar->Enable(entry, 1);
      }
      --working;
    });
    threads.emplace_back([&] {
      start.arrive_and_wait();
      for (int i = 0; i < kRounds; ++i) (void)cvar->Enable(i % kEntries, i % 2);
      --working;
    });
    threads.emplace_back([&] {
      start.arrive_and_wait();
      for (int i = 0; i < kRounds; ++i) {
        (void)cvar->SetRequestedValue(i % kEntries);
        (void)cvar->Increment(i % 2 == 0 ? 1 : -1);
        (void)cvar->SetRequestedValueFromString(L"b");
        if (i % 8 == 0) (void)cvar->SetWrapModeOn(i % 16 == 0 ? 1 : 0);
      }
      --working;
    });
    threads.emplace_back([&] {
      start.arrive_and_wait();
      while (working.load() != 0) {
        if (!IsConsistentOrNone(MomentOf(*cvar))) ++wrong;
        if (!IsChoiceOrNone(TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen))) ++wrong;
        const int enabled = cvar->GetNumberOfEnabledValueStates();
        if (enabled < 0 || enabled > kEntries) ++wrong;
        int index = kEntries;
        if (cvar->GetAdaptedValue(&index) != S_OK || index < -1 || index >= kEntries) ++wrong;
      }
    });
  }
  EXPECT_EQ(0, wrong.load());

  // The end is as if one thread had done it all.
  (void)cvar->SetWrapModeOn(0);
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(0));
  for (int entry = 0; entry < kEntries; ++entry) EXPECT_GE(cvar->Disable(entry), S_OK);
  EXPECT_EQ(L"", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen));
  EXPECT_EQ(S_OK, cvar->Enable(2, 1));
  EXPECT_EQ(L"C", TextOf(*cvar, &IVorCvar::GetAdaptedValueStringScreen));
}

TEST(EnumConcurrency, ListenersAreCalledOutsideTheLock) {
  const Enum cvar = CvarObject<CCvarEnum>::Create();
  cvar->Initialize(L"Choice", L"A,B,C", 0, CVARFLAGS(0), nullptr, 0,
                   REPLICATE_VALUE | REPLICATE_REQUESTED, 0);
  const auto listener = cvars::test::RecordingListener::Create();
  ASSERT_EQ(S_OK, cvar->AttachCvarEventSink(listener));
  std::atomic<int> reads{0};
  // Another thread gets at the list while the listener runs; it would wait forever under the lock.
  listener->onNotify = [&](IVorCvar*, NOTIFYTYPE) {
    std::jthread([&] { reads += cvar->MaxValueIndex() >= 0 ? 1 : 0; }).join();
  };
  EXPECT_EQ(S_OK, cvar->SetRequestedValue(2));
  EXPECT_EQ(S_OK, cvar->Disable(2));
  EXPECT_EQ(S_OK, cvar->AddValue(L"D", 0, -1));
  EXPECT_EQ(1, cvar->DeleteValue(L"A"));
  EXPECT_TRUE(cvar->ChangeStringScreenValue(CComVariant(0), L"X"));
  EXPECT_EQ(S_OK, cvar->SetVariant(0, CComVariant(1)));
  EXPECT_EQ(S_OK, cvar->SetRange(L"P,Q", 0, nullptr, 0, false));
  EXPECT_EQ(7, reads.load());
}

}  // namespace
