#include "instrument/model/Bags.h"
#include "instrument/model/DoubleCvars.h"

namespace cvars::model {
namespace {

// Times in seconds; the position is the part of the record before the trigger.
constexpr DoubleRow kDoubles[] = {
    {L"Scale", 1e-3, 1e-9, 100, -3, L"S"},
    {L"Delay", 0, -1000, 1000, 1e-9, L"S"},
    {L"Position", 50, 0, 100, 0.1, L"PCT"},
    {L"Sample Rate", 1e9, 1e3, 5e9, -4, L"HZ"},
};

}  // namespace

CComPtr<CCvarBag> MakeHorizontalBag() {
  CComPtr<CCvarBag> bag = CCvarBag::Create(L"Horizontal", nullptr);
  AddDoubleCvars(*bag, kDoubles);
  return bag;
}

}  // namespace cvars::model
