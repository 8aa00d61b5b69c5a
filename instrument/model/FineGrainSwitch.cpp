#include "instrument/model/FineGrainSwitch.h"

#include <stdexcept>

namespace cvars::model {

FineGrainSwitch::FineGrainSwitch(CCvarBag& bag)
    : m_scale(bag.Find(L"Scale")), m_switch(CvarObject<CCvarBoolToFineGrainOn>::Create()) {
  auto* const scale = dynamic_cast<CCvarDoubleLockstep*>(m_scale.p);
  if (scale == nullptr) throw std::logic_error("the bag has no scale of fine grain");
  m_switch->Initialize(L"Fine Grain|fine", scale, L"Off,On", 0, CVARFLAGS(0), CComBSTR(), 0,
                       REPLICATE_VALUE | REPLICATE_REQUESTED);
  (void)bag.Add(m_switch);  // a new cvar has no parent yet
}

FineGrainSwitch::~FineGrainSwitch() { m_switch->CleanUp(); }

}  // namespace cvars::model
