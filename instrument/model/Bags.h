#pragma once

#include <span>

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
/// What the front panel shows of the channels: one read-only cvar a setting, which follows it.
///
/// The copies are made on another thread, so that a burst of changes is shown once; without a
/// notifier to do so they are made at once.
/// @param channels  the bags of the channels, in order.
CComPtr<CCvarBag> MakeDisplayBag(std::span<const CComPtr<CCvarBag>> channels);
/// The picture that the screen shows.
CComPtr<CCvarBag> MakeScreenBag();
/// Where waveforms and set-ups are saved.
CComPtr<CCvarBag> MakeStorageBag();

}  // namespace cvars::model
