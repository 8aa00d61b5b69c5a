#include "instrument/model/SimulatedBus.h"

namespace cvars::model {

void SimulatedBus::Write(unsigned address, unsigned value) noexcept {
  m_busyUs += kTransferUs;
  if (address != kControlAddress) return;
  m_control = value & ~kForce;
  m_triggered = (value & kForce) != 0;
  // A single acquisition ends with its trigger.
  if (m_triggered && (value & kSingle) != 0) m_control &= ~(kRun | kSingle);
}

unsigned SimulatedBus::Read(unsigned address) noexcept {
  m_busyUs += kTransferUs;
  if (address == kControlAddress) return m_control;
  if (address != kStatusAddress) return 0;
  return kReady | ((m_control & kRun) != 0 ? kArmed : 0u) | (m_triggered ? kTriggered : 0u);
}

}  // namespace cvars::model
