#include <string>

#include "Cvars.h"
#include "instrument/model/Bags.h"
#include "instrument/model/DoubleCvars.h"

namespace cvars::model {
namespace {

// The scale is the voltage of one division; the position moves the trace by divisions.
constexpr DoubleRow kDoubles[] = {
    {L"Scale", 0.1, 0.001, 10, 0.001, L"V"},
    {L"Offset", 0, -10, 10, 0.001, L"V"},
    {L"Position", 0, -4, 4, 0.01, L"DIV"},
    {L"Probe Attenuation|probe", 1, 0.1, 1000, 0.1, L""},
    {L"Termination", 1e6, 50, 1e6, 50, L"OHM"},
    {L"Bandwidth", 500e6, 20e6, 500e6, 1e6, L"HZ"},
    {L"Deskew", 0, -100e-9, 100e-9, 1e-12, L"S"},
};

constexpr int kLongestLabel = 32;

void AddLabel(CCvarBag& bag) {
  const auto label = CvarObject<CCvarString>::Create();
  label->Initialize(L"Label", L"", kLongestLabel, CVARFLAGS(0), nullptr, 0,
                    REPLICATE_VALUE | REPLICATE_REQUESTED);
  (void)bag.Add(label);  // a new cvar has no parent yet
}

// The name of the channel's trace: "Trace 1" on the screen, Trace1 in scripts, TRACE1 for remote.
void AddTraceName(CCvarBag& bag, int number) {
  const auto name = CvarObject<CCvarObjectName>::Create();
  const std::wstring trace = L"Trace " + std::to_wstring(number);
  name->Initialize(L"Trace Name|trace", trace.c_str(), -1, CVARFLAGS(0), nullptr, 0,
                   REPLICATE_VALUE | REPLICATE_REQUESTED);
  (void)bag.Add(name);  // a new cvar has no parent yet
}

}  // namespace

CComPtr<CCvarBag> MakeChannelBag(int number) {
  const std::wstring name = L"Channel" + std::to_wstring(number);
  CComPtr<CCvarBag> bag = CCvarBag::Create(name.c_str(), nullptr);
  AddDoubleCvars(*bag, kDoubles);
  AddLabel(*bag);
  AddTraceName(*bag, number);
  return bag;
}

}  // namespace cvars::model
