#include "Cvars.h"
#include "instrument/model/Bags.h"

namespace cvars::model {
namespace {

// Time in divisions and voltage in divisions of each point, in rows of two.
constexpr wchar_t kPoints[] = L"0,0;1,2;3,2;4,0";
constexpr wchar_t kRanges[] = L"5,-5,5,0.01;5,-4,4,0.01";

}  // namespace

CComPtr<CCvarBag> MakeMaskBag() {
  CComPtr<CCvarBag> bag = CCvarBag::Create(L"Mask", nullptr);
  const auto points = CvarObject<CCvarSafeArray>::Create();
  points->Initialize(L"Points", kPoints, kRanges, CVARFLAG_NONVOLATILE);
  (void)bag->Add(points);  // a new cvar has no parent yet
  return bag;
}

}  // namespace cvars::model
