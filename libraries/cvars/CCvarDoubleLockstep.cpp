#include "CCvarDoubleLockstep.h"

#include "CvarDoubleImplMembers.h"

template class IVorCvarImpl<CCvarDoubleLockstep, IVorCvarDoubleLockstep, double>;
template class cvars::NumericCvar<CCvarDoubleLockstep, IVorCvarDoubleLockstep, IVorCvarDouble,
                                  double>;
template class IVorCvarDoubleImpl<CCvarDoubleLockstep, IVorCvarDoubleLockstep>;

namespace {

/// The first failure, else the first code that is not S_OK.
HRESULT FirstOf(HRESULT first, HRESULT second) noexcept {
  if (FAILED(first)) return first;
  return FAILED(second) || first == S_OK ? second : first;
}

}  // namespace

void CCvarDoubleLockstep::Initialize(const wchar_t* name, double defaultValue, double min,
                                     double max, LOCKSTEP lockstep, const wchar_t* unit,
                                     int fineGrainAllowed, CVARFLAGS flags, const wchar_t* guiHints,
                                     unsigned int helpStringID,
                                     CVARREPLICATIONFLAGS replicationFlags) {
  const cvars::SilentScope silence(*this);
  m_lockstep = CLockstep(lockstep);
  m_fineGrainAllowed = fineGrainAllowed;
  m_fineGrainOn = 0;
  SetName(name);
  (void)SetRange(defaultValue, min, max, unit, guiHints, helpStringID, true);
  FinishInitialize(defaultValue, flags, replicationFlags);
}

HRESULT CCvarDoubleLockstep::SetRange(double defaultValue, double min, double max,
                                      const wchar_t* unit, const wchar_t* guiHints,
                                      unsigned int helpStringID, bool setDefault) {
  SetRangeAttributes(CLockstep::WithinBounds(defaultValue), unit, guiHints, helpStringID,
                     setDefault);
  m_lockstep.SetMin(min);
  m_lockstep.SetMax(max);
  const bool changed = m_min != m_lockstep.Min() || m_max != m_lockstep.Max();
  if (changed) {
    m_min = m_lockstep.Min();
    m_max = m_lockstep.Max();
    if (UpdateAdaptedValue()) AddPending(NOTIFY_VALUE);
  }
  if (UpdateGrain(0) == S_OK || changed) AddPending(NOTIFY_RANGE);
  return NotifyClients(NOTIFY_ALL_CLIENTS, false);
}

bool CCvarDoubleLockstep::UpdateAdaptedValue() {
  return SetAdapted(
      m_lockstep.Adapt(cvars::ClampToRange(m_requested, m_min, m_max), FineGrainOn()));
}

// Sequence and fine grain -------------------------------------------------------------------------

HRESULT CCvarDoubleLockstep::get_Lockstep(LOCKSTEP* lockstep) {
  return Read(m_lockstep.Lockstep(), lockstep);
}

HRESULT CCvarDoubleLockstep::put_Lockstep(LOCKSTEP lockstep) {
  if (CLockstep::Clamped(lockstep) == m_lockstep.Lockstep()) return S_FALSE;
  m_lockstep.SetLockstep(lockstep);
  return UpdateAdaptedValueAndNotifyRange();
}

HRESULT CCvarDoubleLockstep::SwitchFineGrain(cvars::Relaxed<int>& field, int value) {
  const bool before = FineGrainOn();
  field = value;
  return FineGrainOn() == before ? S_OK : UpdateAdaptedValueAndNotifyRange();
}

HRESULT CCvarDoubleLockstep::put_FineGrainAllowed(int allowed) {
  return SwitchFineGrain(m_fineGrainAllowed, allowed);
}

HRESULT CCvarDoubleLockstep::put_FineGrainOn(int on) { return SwitchFineGrain(m_fineGrainOn, on); }

HRESULT CCvarDoubleLockstep::UpdateGrain(int direction) {
  return SetGrain(m_lockstep.Fine(GetAdaptedValue(), direction));
}

// Steps -------------------------------------------------------------------------------------------

HRESULT CCvarDoubleLockstep::Increment(int steps) {
  if (FineGrainOn()) return IncrementFine(steps);
  return SetRequestedValue(m_lockstep.Stepped(GetAdaptedValue(), DirectedSteps(steps)));
}

HRESULT CCvarDoubleLockstep::IncrementFine(int steps) {
  if (!FineGrainOn()) return S_FALSE;
  if (UpdateGrain(DirectedSteps(steps)) == S_OK) AddPending(NOTIFY_RANGE);
  return Base::Increment(steps);
}

HRESULT CCvarDoubleLockstep::get_NumberOfIncrement(double* count) {
  if (count == nullptr) return E_POINTER;
  *count = m_lockstep.StepCount();
  return S_OK;
}

HRESULT CCvarDoubleLockstep::GetAdaptedValueNorm(double* position) {
  return Base::GetAdaptedValueNorm(position, std::log10(GetAdaptedValue()), std::log10(m_min),
                                   std::log10(m_max));
}

HRESULT CCvarDoubleLockstep::SetRequestedValueNorm(double position) {
  const double min = std::log10(m_min);
  return SetRequestedValue(std::pow(10.0, min + (std::log10(m_max) - min) * position));
}

// Range -------------------------------------------------------------------------------------------

HRESULT CCvarDoubleLockstep::SetMinValue(double min) {
  if (std::isnan(min)) return E_INVALIDARG;
  m_lockstep.SetMin(min);
  const HRESULT minSet = Base::SetMinValue(m_lockstep.Min());
  return FirstOf(minSet, Base::SetMaxValue(m_lockstep.Max()));
}

HRESULT CCvarDoubleLockstep::SetMaxValue(double max) {
  if (std::isnan(max)) return E_INVALIDARG;
  m_lockstep.SetMax(max);
  const HRESULT maxSet = Base::SetMaxValue(m_lockstep.Max());
  return FirstOf(maxSet, Base::SetMinValue(m_lockstep.Min()));
}

HRESULT CCvarDoubleLockstep::get_Range(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  CComBSTR range;
  const HRESULT made = Base::get_Range(&range);
  if (FAILED(made)) return made;
  std::wstring all(range.View());
  all += L", locked to";
  const wchar_t* separator = L" ";
  for (const double mantissa : CLockstep::Mantissas(m_lockstep.Lockstep())) {
    if (mantissa > 9.999999) break;
    all += separator;
    cvars::AppendGeneral(all, mantissa);
    separator = L", ";
  }
  all += L", fine grain allowed=";
  all += m_fineGrainAllowed != 0 ? L"true" : L"false";
  all += L", on=";
  all += m_fineGrainOn != 0 ? L"true" : L"false";
  return cvars::CopyOut(all, text);
}

void CCvarDoubleLockstep::CopyRange(IVorCvarDouble& source) {
  CComPtr<IVorCvarDoubleLockstep> theirs;
  (void)source.QueryInterface(IID_IVorCvarDoubleLockstep, reinterpret_cast<void**>(&theirs));
  if (theirs != nullptr) {
    LOCKSTEP lockstep{};
    int switched = 0;
    if (SUCCEEDED(theirs->get_Lockstep(&lockstep))) (void)put_Lockstep(lockstep);
    if (SUCCEEDED(theirs->get_FineGrainAllowed(&switched))) (void)put_FineGrainAllowed(switched);
    if (SUCCEEDED(theirs->get_FineGrainOn(&switched))) (void)put_FineGrainOn(switched);
  }
  Base::CopyRange(source);
}
