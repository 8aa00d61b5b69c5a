#include <string>

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

}  // namespace

CComPtr<CCvarBag> MakeChannelBag(int number) {
  const std::wstring name = L"Channel" + std::to_wstring(number);
  CComPtr<CCvarBag> bag = CCvarBag::Create(name.c_str(), nullptr);
  AddDoubleCvars(*bag, kDoubles);
  return bag;
}

}  // namespace cvars::model
