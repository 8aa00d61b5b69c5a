#include <string>

#include "Cvars.h"
#include "instrument/model/Bags.h"
#include "instrument/model/DoubleCvars.h"
#include "instrument/model/EnumCvars.h"
#include "instrument/model/LockstepCvars.h"

namespace cvars::model {
namespace {

// The voltage of one division.
constexpr LockstepRow kScale = {L"Scale", 0.1, 0.001, 10, LOCKSTEP_1_2_5, L"V", false};

// The position moves the trace by divisions.
constexpr DoubleRow kDoubles[] = {
    {L"Offset", 0, -10, 10, 0.001, L"V"},
    {L"Position", 0, -4, 4, 0.01, L"DIV"},
    {L"Probe Attenuation|probe", 1, 0.1, 1000, 0.1, L""},
    {L"Termination", 1e6, 50, 1e6, 50, L"OHM"},
    {L"Bandwidth", 500e6, 20e6, 500e6, 1e6, L"HZ"},
    {L"Deskew", 0, -100e-9, 100e-9, 1e-12, L"S"},
};

constexpr EnumRow kEnums[] = {
    {L"Coupling", L"DC,AC,Ground|Gnd|GND", 0},
    {L"Bandwidth Limit|limit", L"Off,20 MHz|BW20|BW20,200 MHz|BW200|BW200", 0},
};

// 0xBBGGRR: yellow, magenta, cyan, green.
constexpr int kTraceColors[] = {0x00FFFF, 0xFF00FF, 0xFFFF00, 0x00FF00};

// Keeps AC coupling out of the choices while the input is terminated for high frequencies.
void ApplyCouplingRule(CCvarBag& bag) {
  CComPtr<IVorCvarEnum> coupling;
  if (bag.Find(L"Coupling").QueryInterface(&coupling) != S_OK) return;
  const auto rule = [coupling](IVorCvar* termination, NOTIFYTYPE what) {
    if ((what & NOTIFY_VALUE) == 0) return S_OK;
    constexpr double kLeastForAc = 1000;  // ohms
    CComVariant resistance;
    const HRESULT read = termination->get_Value(&resistance);
    if (read != S_OK) return read;
    const HRESULT set = coupling->Enable(CComVariant(L"AC"), resistance.dblVal >= kLeastForAc);
    return set == S_FALSE ? S_OK : set;  // nothing new is no news
  };
  (void)bag.Find(L"Termination")->AttachCvarEventSink(FunctionListener::Create(rule));
}

void AddTraceColor(CCvarBag& bag, int number) {
  const auto color = CvarObject<CCvarColor>::Create();
  color->Initialize(L"Trace Color|color", kTraceColors[number - 1], CVARFLAGS(0), nullptr, 0,
                    REPLICATE_VALUE | REPLICATE_REQUESTED);
  (void)bag.Add(color);  // a new cvar has no parent yet
}

void AddInvert(CCvarBag& bag) {
  const auto invert = CvarObject<CCvarBool>::Create();
  invert->Initialize(L"Invert", L"Off,On", 0, CVARFLAGS(0), nullptr, 0,
                     REPLICATE_VALUE | REPLICATE_REQUESTED);
  (void)bag.Add(invert);  // a new cvar has no parent yet
}

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
  AddLockstepCvar(*bag, kScale);
  AddDoubleCvars(*bag, kDoubles);
  AddEnumCvars(*bag, kEnums);
  ApplyCouplingRule(*bag);
  AddInvert(*bag);
  AddTraceColor(*bag, number);
  AddLabel(*bag);
  AddTraceName(*bag, number);
  return bag;
}

}  // namespace cvars::model
