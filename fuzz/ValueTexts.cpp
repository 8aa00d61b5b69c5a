// The texts that lists of choices are made from. The first byte picks the flags and the order of
// the calls; the rest is the text, a byte a character and every fourth byte from 0xF0 on a wide
// one.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "CCvarEnum.h"
#include "CvarObject.h"
#include "WideText.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

// Whatever the text was, the list must hang together.
void Check(CCvarEnum& cvar) {
  const int last = cvar.MaxValueIndex();
  int adapted = 0;
  Require(cvar.GetAdaptedValue(&adapted) == S_OK);
  Require(adapted >= -2 && adapted <= last);
  for (int index = 0; index <= last; ++index) {
    for (const auto get : {&CCvarEnum::GetValueStringRemote, &CCvarEnum::GetValueStringAutomation,
                           &CCvarEnum::GetValueStringScreen}) {
      CComBSTR text;
      Require((cvar.*get)(index, &text) == S_OK);
      const int found = cvar.GetIndexOfStringValue(text);
      Require(found >= 0 && found <= index);
    }
  }
  CComBSTR signature;
  Require(cvar.get_Signature(&signature) == S_OK);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::wstring text = cvars::fuzz::WideText(data + 1, size - 1);
  const auto cvar = CvarObject<CCvarEnum>::Create();
  cvar->SetFlags((data[0] & 1) != 0 ? CVARFLAG_SPECIALCHARS : CVARFLAG_WRAPPING, true);
  const int index = data[0] >> 4;
  if ((data[0] & 2) != 0) (void)cvar->SetRequestedValueFromString(text.c_str());
  const HRESULT added = cvar->AddValue(text.c_str(), 0, index);
  Require(added == S_OK || added == E_INVALIDARG);
  Require((added == S_OK) == (cvar->MaxValueIndex() >= 0));
  Check(*cvar);
  // The second time every piece is there already.
  Require(cvar->AddValue(text.c_str(), 0, index) == E_INVALIDARG);
  (void)cvar->Disable(index);
  (void)cvar->Increment(index - 8);
  Check(*cvar);
  Require(cvar->SetRange(text.c_str(), index, nullptr, 0, (data[0] & 4) != 0) == S_OK);
  Check(*cvar);
  (void)cvar->DeleteValue(text.c_str());
  Check(*cvar);
  return 0;
}
