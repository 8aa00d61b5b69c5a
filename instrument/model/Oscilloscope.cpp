#include "instrument/model/Oscilloscope.h"

#include "CComVariant.h"
#include "IVorCvar.h"
#include "instrument/model/Bags.h"

namespace cvars::model {

Oscilloscope::Oscilloscope() {
  m_bags.push_back(MakeHorizontalBag());
  m_fineGrain.emplace(*m_bags.front());
  m_window.emplace(*m_bags.front());
  for (int number = 1; number <= kChannelCount; ++number) {
    m_bags.push_back(MakeChannelBag(number));
    m_probes.emplace_back(*m_bags.back());
  }
  m_bags.push_back(MakeTriggerBag());
  const std::span<const CComPtr<CCvarBag>> bags(m_bags);
  m_acquisition.emplace(
      Acquisition::Settings{*bags.front(), *bags.back(), bags.subspan(1, kChannelCount)},
      [this] { Reset(); });
  m_bags.push_back(m_acquisition->Bag());
  m_bags.push_back(MakeMaskBag());
  m_bags.push_back(MakeScreenBag());
  m_bags.push_back(MakeStorageBag());
  m_display = MakeDisplayBag(std::span(m_bags).subspan(1, kChannelCount));
  m_bags.push_back(m_display);
}

void Oscilloscope::Reset() {
  m_window->SetTracks(false);
  for (const CComPtr<CCvarBag>& bag : m_bags) {
    if (bag == m_display) continue;
    long count = 0;
    if (bag->get_Count(&count) != S_OK) continue;
    for (long index = 0; index < count; ++index) {
      CComPtr<IVorCvar> cvar;
      if (bag->get_Item(CComVariant(index), &cvar) != S_OK) continue;
      (void)cvar->SetToDefault();  // what is read-only or has no default stays as it is
    }
  }
}

}  // namespace cvars::model
