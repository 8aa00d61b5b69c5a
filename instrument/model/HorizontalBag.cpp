#include "Cvars.h"
#include "instrument/model/Bags.h"
#include "instrument/model/DoubleCvars.h"
#include "instrument/model/LockstepCvars.h"

namespace cvars::model {
namespace {

// Times in seconds; the position is the part of the record before the trigger.
constexpr DoubleRow kDoubles[] = {
    {L"Delay", 0, -1000, 1000, 1e-9, L"S"},
    {L"Position", 50, 0, 100, 0.1, L"PCT"},
};

// The time of one division.
constexpr LockstepRow kScale = {L"Scale", 1e-3, 1e-9, 100, LOCKSTEP_1_2_5, L"S", true};

constexpr CVARREPLICATIONFLAGS kCopies = REPLICATE_VALUE | REPLICATE_REQUESTED;

/// Samples per second: what the clock divider gives.
void AddSampleRate(CCvarBag& bag) {
  const auto rate = CvarObject<CCvarDoubleSet>::Create();
  std::set<double> rates;
  for (double decade = 1e3; decade <= 1e9; decade *= 10) {
    rates.insert({decade, 2.5 * decade, 5 * decade});
  }
  (void)rate->SetMaxValue(*rates.rbegin());  // nobody listens yet
  (void)rate->SetMinValue(*rates.begin());
  rate->Initialize(L"Sample Rate", 1e9, rates, ADAPT_CLOSEST_DOWN, 1000, false, 1, L"HZ",
                   CVARFLAG_COMPACT, nullptr, 0, kCopies);
  (void)bag.Add(rate);  // a new cvar has no parent yet
}

/// Samples of one record: what the memory can be divided into.
void AddMemoryDepth(CCvarBag& bag) {
  const auto depth = CvarObject<CCvarLongIntSet>::Create();
  const std::set<std::int64_t> depths = {1'000,      10'000,      100'000,       1'000'000,
                                         10'000'000, 100'000'000, 1'000'000'000, 8'000'000'000};
  depth->SetMax(*depths.rbegin());
  depth->SetMin(*depths.begin());
  depth->Initialize(L"Memory Depth|depth", 1'000'000, depths, ADAPT_UP, false, 1, L"", CVARFLAGS(0),
                    nullptr, 0, kCopies);
  (void)bag.Add(depth);  // a new cvar has no parent yet
}

/// Sweeps that are put together to one waveform.
void AddAverages(CCvarBag& bag) {
  const auto averages = CvarObject<CCvarInt>::Create();
  averages->Initialize(L"Averages", 1, 1, 65'536, 1, L"SWEEP", CVARFLAGS(0), nullptr, 0, kCopies);
  (void)bag.Add(averages);  // a new cvar has no parent yet
}

/// Pieces that the memory is divided into, one a trigger.
void AddSegments(CCvarBag& bag) {
  const auto segments = CvarObject<CCvarIntSet>::Create();
  const std::set<int> counts = {1, 2, 5, 10, 20, 50, 100, 200, 500, 1000};
  segments->SetMax(*counts.rbegin());
  segments->SetMin(*counts.begin());
  segments->Initialize(L"Segments", 1, counts, ADAPT_CLOSEST_UP, false, 1, L"", CVARFLAGS(0),
                       nullptr, 0, kCopies);
  (void)bag.Add(segments);  // a new cvar has no parent yet
}

}  // namespace

CComPtr<CCvarBag> MakeHorizontalBag() {
  CComPtr<CCvarBag> bag = CCvarBag::Create(L"Horizontal", nullptr);
  AddLockstepCvar(*bag, kScale);
  AddDoubleCvars(*bag, kDoubles);
  AddSampleRate(*bag);
  AddMemoryDepth(*bag);
  AddAverages(*bag);
  AddSegments(*bag);
  return bag;
}

}  // namespace cvars::model
