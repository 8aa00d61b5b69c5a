#include "CCvarDouble.h"

#include "CvarDoubleImplMembers.h"

template class IVorCvarImpl<CCvarDouble, IVorCvarDouble, double>;
template class cvars::NumericCvar<CCvarDouble, IVorCvarDouble, IVorCvarDouble, double>;
template class IVorCvarDoubleImpl<CCvarDouble, IVorCvarDouble>;

void CCvarDouble::Initialize(const wchar_t* name, double defaultValue, double min, double max,
                             double grain, const wchar_t* unit, CVARFLAGS flags,
                             const wchar_t* guiHints, unsigned int helpStringID,
                             CVARREPLICATIONFLAGS replicationFlags) {
  const cvars::SilentScope silence(*this);
  SetName(name);
  (void)SetRange(defaultValue, min, max, grain, unit, guiHints, helpStringID, true);
  FinishInitialize(defaultValue, flags, replicationFlags);
}

HRESULT CCvarDouble::SetRange(double defaultValue, double min, double max, double grain,
                              const wchar_t* unit, const wchar_t* guiHints,
                              unsigned int helpStringID, bool setDefault) {
  SetRangeAttributes(defaultValue, unit, guiHints, helpStringID, setDefault);
  if (max < min) min = max;
  if (grain != m_grain || min != m_min || max != m_max) {
    m_grain = grain;
    m_min = min;
    m_max = max;
    AddPending(NOTIFY_RANGE);
    if (UpdateAdaptedValue()) AddPending(NOTIFY_VALUE);
  }
  return NotifyClients(NOTIFY_ALL_CLIENTS, false);
}
