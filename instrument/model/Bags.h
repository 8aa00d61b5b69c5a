#pragma once

#include "CComPtr.h"
#include "CCvarBag.h"

namespace cvars::model {

// The bags of the oscilloscope, one per file. A bag comes filled with its cvars.

CComPtr<CCvarBag> MakeHorizontalBag();
/// @param number  1 to Oscilloscope::kChannelCount; the bag is named after it.
CComPtr<CCvarBag> MakeChannelBag(int number);
CComPtr<CCvarBag> MakeTriggerBag();
/// Points of the mask that waveforms are tested against.
CComPtr<CCvarBag> MakeMaskBag();
/// Where waveforms and set-ups are saved.
CComPtr<CCvarBag> MakeStorageBag();

}  // namespace cvars::model
