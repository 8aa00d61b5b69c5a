#include "EnumTable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Randomness.h"
#include "TextPieces.h"

namespace {

using cvars::EnumTable;

EnumTable::Entry MakeEntry(std::wstring_view text) {
  return std::make_unique<CCvarEnumValue>(text, false);
}

EnumTable MakeTable(std::wstring_view values) {
  EnumTable table;
  for (const std::wstring_view piece : cvars::SplitText(values, L',')) {
    table.Insert(MakeEntry(piece), EnumTable::kNone);
  }
  return table;
}

// One character an entry: '1' enabled, '0' disabled.
EnumTable MakeStates(std::string_view states) {
  EnumTable table;
  for (std::size_t i = 0; i < states.size(); ++i) {
    table.Insert(MakeEntry(L"V" + std::to_wstring(i)), EnumTable::kNone);
    table.At(static_cast<int>(i)).m_enabled = states[i] == '1' ? 1 : 0;
  }
  return table;
}

std::wstring Screens(const EnumTable& table) {
  cvars::TextJoiner joiner(L',');
  for (int i = 0; i < table.Count(); ++i) joiner.Add(table.At(i).Strings().Screen().View());
  return joiner.Text();
}

TEST(EnumTableTest, AnEmptyTableHasNoValidIndex) {
  const EnumTable table;
  EXPECT_EQ(0, table.Count());
  EXPECT_EQ(-1, table.MaxIndex());
  EXPECT_FALSE(table.IsValid(-1));
  EXPECT_FALSE(table.IsValid(0));
  EXPECT_EQ(EnumTable::kNone, table.Find(L""));
}

TEST(EnumTableTest, InsertsBeforeAValidIndexAndElseAppends) {
  EnumTable table = MakeTable(L"A,B");
  table.Insert(MakeEntry(L"C"), 0);
  table.Insert(MakeEntry(L"D"), 2);
  table.Insert(MakeEntry(L"E"), 4);
  table.Insert(MakeEntry(L"F"), -1);
  EXPECT_EQ(L"C,A,D,B,E,F", Screens(table));
}

TEST(EnumTableTest, RemoveHandsTheEntryOut) {
  EnumTable table = MakeTable(L"A,B,C");
  const EnumTable::Entry removed = table.Remove(1);
  EXPECT_EQ(L"B", removed->Strings().Screen().View());
  EXPECT_EQ(L"A,C", Screens(table));
}

TEST(EnumTableTest, CountsTheEnabledEntries) {
  EXPECT_EQ(2, MakeStates("0101").CountEnabled());
  EXPECT_FALSE(MakeStates("0101").IsEnabled(0));
  EXPECT_TRUE(MakeStates("0101").IsEnabled(1));
  EXPECT_FALSE(MakeStates("0101").IsEnabled(4));
  EXPECT_FALSE(MakeStates("0101").IsEnabled(-1));
}

TEST(EnumTableTest, SpellingsAreComparedWithTheirCase) {
  EXPECT_TRUE(MakeTable(L"A,B").SameSpellings(MakeTable(L"A,B")));
  EXPECT_FALSE(MakeTable(L"A,B").SameSpellings(MakeTable(L"A,b")));
  EXPECT_FALSE(MakeTable(L"A,B").SameSpellings(MakeTable(L"B,A")));
  EXPECT_FALSE(MakeTable(L"A,B").SameSpellings(MakeTable(L"A")));
}

// Look-up
// -------------------------------------------------------------------------------------------

TEST(EnumTableFindTest, MatchesEverySpellingInAnyCase) {
  const EnumTable table = MakeTable(L"Off,DC 50|Dc50|D50");
  EXPECT_EQ(1, table.Find(L"dc 50"));
  EXPECT_EQ(1, table.Find(L"dc50"));
  EXPECT_EQ(1, table.Find(L"d50"));
  EXPECT_EQ(EnumTable::kNone, table.Find(L"DC 5"));
  EXPECT_EQ(EnumTable::kNone, table.Find(L" Off"));
  EXPECT_EQ(EnumTable::kNone, table.Find(L""));
}

TEST(EnumTableFindTest, TheFirstEntryWinsWhicheverSpellingMatches) {
  // "b" is the remote spelling of the second entry and the screen spelling of the first.
  EXPECT_EQ(0, MakeTable(L"b|x|y,c|d|b").Find(L"B"));
  EXPECT_EQ(0, MakeTable(L"c|d|b,b|x|y").Find(L"B"));
}

TEST(EnumTableFindTest, AnEmptySpellingMatchesTheEmptyText) {
  EXPECT_EQ(1, MakeTable(L"A,+").Find(L""));
}

TEST(EnumTableFindTest, ADuplicateIsFoundAgainWhenTheFirstGoes) {
  EnumTable table = MakeTable(L"A,B,A");
  EXPECT_EQ(0, table.Find(L"a"));
  (void)table.Remove(0);
  EXPECT_EQ(1, table.Find(L"a"));
}

TEST(EnumTableFindTest, AnEntryPutInFrontIsFoundFirst) {
  EnumTable table = MakeTable(L"A,B");
  EXPECT_EQ(1, table.Find(L"b"));
  table.Insert(MakeEntry(L"b"), 0);
  EXPECT_EQ(0, table.Find(L"B"));
}

TEST(EnumTableFindTest, AReplacedSpellingIsFoundAndTheOldOneNot) {
  EnumTable table = MakeTable(L"A,B");
  EXPECT_EQ(0, table.Find(L"a"));
  EXPECT_TRUE(table.SetSpelling(0, EnumTable::Spelling::kRemote, L"Q"));
  EXPECT_TRUE(table.SetSpelling(0, EnumTable::Spelling::kAutomation, L"R"));
  EXPECT_TRUE(table.SetSpelling(0, EnumTable::Spelling::kScreen, L"S"));
  for (const wchar_t* text : {L"q", L"r", L"s"}) EXPECT_EQ(0, table.Find(text));
  EXPECT_EQ(EnumTable::kNone, table.Find(L"a"));
}

TEST(EnumTableFindTest, TheSameSpellingAgainIsNoChange) {
  EnumTable table = MakeTable(L"A");
  EXPECT_FALSE(table.SetSpelling(0, EnumTable::Spelling::kScreen, L"A"));
  EXPECT_FALSE(table.SetSpelling(0, EnumTable::Spelling::kAutomation, L"A"));
  EXPECT_FALSE(table.SetSpelling(0, EnumTable::Spelling::kRemote, L"A"));
  EXPECT_TRUE(table.SetSpelling(0, EnumTable::Spelling::kScreen, L"a"));
}

TEST(EnumTableFindTest, ADuplicateNeedsAllThreeSpellings) {
  const EnumTable table = MakeTable(L"Off|off|OFF,1|11|1");
  EXPECT_TRUE(table.HasSameAnyCase(CEnumValueString(L"oFF|off|off", false)));
  EXPECT_FALSE(table.HasSameAnyCase(CEnumValueString(L"Off|off|0", false)));
  EXPECT_FALSE(table.HasSameAnyCase(CEnumValueString(L"11|1|1", false)));
}

// The rule as it stands, entry by entry.
int SlowFind(const EnumTable& table, const std::wstring& text) {
  const auto same = [&text](const CComBSTR& spelling) {
    return VarBstrCmp(CComBSTR(std::wstring_view(text)), spelling, LOCALE_USER_DEFAULT,
                      NORM_IGNORECASE) == VARCMP_EQ;
  };
  for (int i = 0; i < table.Count(); ++i) {
    const CEnumValueString& strings = table.At(i).Strings();
    if (same(strings.Remote()) || same(strings.Automation()) || same(strings.Screen())) return i;
  }
  return -1;
}

bool SlowHas(const EnumTable& table, const CEnumValueString& strings) {
  for (int i = 0; i < table.Count(); ++i) {
    if (table.At(i).Strings().SameAnyCase(strings)) return true;
  }
  return false;
}

TEST(EnumTablePropertyTest, FindsWhatTheWalkFindsUnderEveryChange) {
  cvars::test::Randomness random("EnumTableFind");
  constexpr wchar_t kCharacters[] = {L'a', L'A', L'b', L'\u00e4', L'\u00c4', L' ', L'|'};
  const auto anyText = [&](std::int64_t longest) {
    std::wstring text(static_cast<std::size_t>(random.Whole(0, longest)), L' ');
    for (wchar_t& c : text) c = random.Pick(kCharacters);
    return text;
  };
  constexpr EnumTable::Spelling kSpellings[] = {
      EnumTable::Spelling::kScreen, EnumTable::Spelling::kAutomation, EnumTable::Spelling::kRemote};
  for (int round = 0; round < 1000; ++round) {
    EnumTable table;
    EnumTable other;
    for (int change = 0; change < 25; ++change) {
      const auto anyIndex = [&] { return static_cast<int>(random.Whole(0, table.MaxIndex())); };
      switch (random.Whole(0, 9)) {
        case 0:
          if (table.Count() > 0) (void)table.Remove(anyIndex());
          break;
        case 1:
          if (table.Count() > 0) {
            (void)table.SetSpelling(anyIndex(), random.Pick(kSpellings), anyText(3));
          }
          break;
        case 2:
          table.Insert(std::make_unique<CCvarEnumValue>(anyText(5), random.Chance(0.5)),
                       static_cast<int>(random.Whole(-1, table.Count())));
          break;
        case 3:
          table.Swap(other);
          break;
        default:
          table.Insert(std::make_unique<CCvarEnumValue>(anyText(5), random.Chance(0.5)), -1);
      }
      for (int look = 0; look < 4; ++look) {
        const std::wstring text = anyText(3);
        ASSERT_EQ(SlowFind(table, text), table.Find(text));
      }
      const CEnumValueString strings(anyText(4), random.Chance(0.5));
      ASSERT_EQ(SlowHas(table, strings), table.HasSameAnyCase(strings));
    }
  }
}

// Rules of choosing
// ---------------------------------------------------------------------------------

struct AdaptedCase {
  const char* name;
  const char* states;
  int requested;
  bool wrapping;
  int adapted;
};

class EnumTableAdaptedTest : public testing::TestWithParam<AdaptedCase> {};

TEST_P(EnumTableAdaptedTest, FindsTheEnabledEntry) {
  const AdaptedCase& row = GetParam();
  EXPECT_EQ(row.adapted, MakeStates(row.states).Adapted(row.requested, row.wrapping));
}

constexpr AdaptedCase kAdaptedCases[] = {
    {"EmptyTable", "", 0, false, -1},
    {"EmptyTableWrapping", "", 0, true, -1},
    {"EnabledEntryItself", "1111", 2, false, 2},
    {"LastTwoDisabled", "1100", 2, false, 1},
    {"LastTwoDisabledWrapping", "1100", 2, true, 0},
    {"UpwardsFirst", "1001", 1, false, 3},
    {"DownwardsNearestFirst", "0110", 3, false, 2},
    {"WrappingFromTheFirst", "0110", 3, true, 1},
    {"AllDisabled", "000", 1, false, -1},
    {"AllDisabledWrapping", "000", 1, true, -1},
    {"BelowIsNoEntry", "111", -1, false, -1},
    {"FarBelowIsNoEntry", "111", -4, true, -1},
    {"AboveIsTheLast", "111", 9, false, 2},
    {"AboveWithTheLastDisabled", "110", 9, false, 1},
    {"AboveWithTheLastDisabledWrapping", "110", 9, true, 0},
    {"OneEntry", "1", 5, true, 0},
};
INSTANTIATE_TEST_SUITE_P(Table, EnumTableAdaptedTest, testing::ValuesIn(kAdaptedCases),
                         [](const auto& row) { return std::string(row.param.name); });

struct SteppedCase {
  const char* name;
  const char* states;
  int from;
  std::int64_t steps;
  bool wrapping;
  int reached;
};

class EnumTableSteppedTest : public testing::TestWithParam<SteppedCase> {};

TEST_P(EnumTableSteppedTest, Walks) {
  const SteppedCase& row = GetParam();
  EXPECT_EQ(row.reached, MakeStates(row.states).Stepped(row.from, row.steps, row.wrapping));
}

constexpr SteppedCase kSteppedCases[] = {
    {"NoStep", "111", 1, 0, false, 1},
    {"OneUp", "111", 0, 1, false, 1},
    {"OneDown", "111", 2, -1, false, 1},
    {"DisabledEntriesDoNotCount", "1011", 0, 2, false, 3},
    {"LastStays", "111", 2, 1, false, 2},
    {"LastWraps", "111", 2, 1, true, 0},
    {"FirstStays", "111", 0, -1, false, 0},
    {"FirstWraps", "111", 0, -1, true, 2},
    {"GivesUpAfterAsManyMovesAsEntries", "1111", 0, 6, true, 0},
    {"GivesUpWithoutWrappingAtTheLast", "1111", 0, 6, false, 3},
    {"GivesUpOnDisabledEntries", "0000", 1, 1, true, 1},
    {"NothingEnabledAbove", "1100", 1, 1, false, 1},
    {"FromNoEntryUp", "111", -1, 1, false, 0},
    {"FromNoEntryDown", "111", -1, -1, false, 0},
    {"FromNoEntryDownWrapping", "111", -1, -1, true, 2},
    {"EmptyTable", "", -1, 3, true, -1},
    {"SmallestIntegerTurned", "111", 0, 2147483648LL, false, 2},
    {"SmallestInteger", "111", 2, -2147483648LL, false, 0},
};
INSTANTIATE_TEST_SUITE_P(Table, EnumTableSteppedTest, testing::ValuesIn(kSteppedCases),
                         [](const auto& row) { return std::string(row.param.name); });

// The two rules over plain states, moved through one entry at a time.
struct SlowModel {
  std::vector<bool> enabled;
  bool wrapping;

  int Last() const { return static_cast<int>(enabled.size()) - 1; }
  bool Is(int index) const { return enabled[static_cast<std::size_t>(index)]; }
  int Next(int i) const { return i < Last() ? i + 1 : wrapping ? 0 : Last(); }
  int Previous(int i) const { return i > 0 ? i - 1 : wrapping ? Last() : 0; }

  int Adapted(int requested) const {
    const int candidate = requested < -1 ? -1 : requested > Last() ? Last() : requested;
    if (enabled.empty() || candidate == -1) return -1;
    std::vector<int> order;
    if (wrapping) {
      int at = candidate;
      for (std::size_t i = 0; i < enabled.size(); ++i, at = Next(at)) order.push_back(at);
    } else {
      for (int i = candidate; i <= Last(); ++i) order.push_back(i);
      for (int i = candidate - 1; i >= 0; --i) order.push_back(i);
    }
    for (const int index : order) {
      if (Is(index)) return index;
    }
    return -1;
  }

  int Stepped(int from, int steps) const {
    int landed = from;
    int at = from;
    int taken = 0;
    std::size_t moves = 0;
    while (taken != steps && moves != enabled.size()) {
      at = steps > 0 ? Next(at) : Previous(at);
      ++moves;
      if (Is(at)) {
        landed = at;
        taken += steps > 0 ? 1 : -1;
      }
    }
    return landed;
  }
};

TEST(EnumTablePropertyTest, AdaptsAndStepsAsTheSlowModelDoes) {
  cvars::test::Randomness random("EnumTableRules");
  for (int round = 0; round < 10000; ++round) {
    std::string states(static_cast<std::size_t>(random.Whole(0, 12)), '0');
    const double chance = random.Real(0.0, 1.0);
    SlowModel model;
    for (char& state : states) {
      state = random.Chance(chance) ? '1' : '0';
      model.enabled.push_back(state == '1');
    }
    const EnumTable table = MakeStates(states);
    for (const bool wrapping : {false, true}) {
      model.wrapping = wrapping;
      for (int request = -3; request <= table.Count() + 3; ++request) {
        const int adapted = table.Adapted(request, wrapping);
        ASSERT_EQ(model.Adapted(request), adapted)
            << states << ' ' << request << (wrapping ? " wrapping" : "");
        for (int steps = -15; steps <= 15; ++steps) {
          ASSERT_EQ(model.Stepped(adapted, steps), table.Stepped(adapted, steps, wrapping))
              << states << ' ' << adapted << ' ' << steps << (wrapping ? " wrapping" : "");
        }
      }
    }
  }
}

}  // namespace
