#include "instrument/model/Bags.h"
#include "instrument/model/DoubleCvars.h"

namespace cvars::model {
namespace {

constexpr DoubleRow kDoubles[] = {
    {L"Level", 0, -10, 10, 0.001, L"V"},
    {L"Hysteresis", 0.3, 0.1, 5, 0.1, L"DIV"},
    {L"Hold Off", 0, 0, 10, 1e-9, L"S"},
    {L"Auto Timeout|timeout", 0.1, 0.001, 10, 0.001, L"S"},
};

}  // namespace

CComPtr<CCvarBag> MakeTriggerBag() {
  CComPtr<CCvarBag> bag = CCvarBag::Create(L"Trigger", nullptr);
  AddDoubleCvars(*bag, kDoubles);
  return bag;
}

}  // namespace cvars::model
