#include "Cvars.h"
#include "instrument/model/Bags.h"
#include "instrument/model/DoubleCvars.h"
#include "instrument/model/EnumCvars.h"

namespace cvars::model {
namespace {

constexpr DoubleRow kDoubles[] = {
    {L"Level", 0, -10, 10, 0.001, L"V"},
    {L"Hysteresis", 0.3, 0.1, 5, 0.1, L"DIV"},
    {L"Hold Off", 0, 0, 10, 1e-9, L"S"},
    {L"Auto Timeout|timeout", 0.1, 0.001, 10, 0.001, L"S"},
};

constexpr EnumRow kEnums[] = {
    {L"Mode", L"Auto,Normal|Normal|NORM,Single|Single|SINGLE,Stop", 0},
    {L"Source", L"Channel 1|C1,Channel 2|C2,Channel 3|C3,Channel 4|C4,External|Ext|EXT,Line", 0},
};

// One bit a channel, channel 4 first: 1 above its level, 0 below, X either.
void AddPattern(CCvarBag& bag) {
  constexpr int kChannels = 4;
  const auto pattern = CvarObject<CCvarBitPattern>::Create();
  pattern->Initialize(L"Pattern", L"XXXX", kChannels, kChannels, BITPATTERN_FORMAT_BIN, L"01X",
                      L'X', BITPATTERN_PAD_LEFT, BITPATTERN_SIZE_BIT_FIX, CVARFLAGS(0), nullptr, 0,
                      REPLICATE_VALUE | REPLICATE_REQUESTED);
  (void)bag.Add(pattern);  // a new cvar has no parent yet
}

// Triggers that are passed over before the next one counts.
void AddHoldOffEvents(CCvarBag& bag) {
  constexpr std::int64_t kMost = 1'000'000'000'000;
  const auto events = CvarObject<CCvarLongInt>::Create();
  events->Initialize(L"Hold Off Events|events", 0, 0, kMost, 1, L"", CVARFLAGS(0), nullptr, 0,
                     REPLICATE_VALUE | REPLICATE_REQUESTED);
  (void)bag.Add(events);  // a new cvar has no parent yet
}

}  // namespace

CComPtr<CCvarBag> MakeTriggerBag() {
  CComPtr<CCvarBag> bag = CCvarBag::Create(L"Trigger", nullptr);
  AddDoubleCvars(*bag, kDoubles);
  AddEnumCvars(*bag, kEnums);
  AddPattern(*bag);
  AddHoldOffEvents(*bag);
  return bag;
}

}  // namespace cvars::model
