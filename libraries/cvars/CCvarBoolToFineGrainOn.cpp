#include "CCvarBoolToFineGrainOn.h"

#include <utility>

#include "CComPtr.h"
#include "CCvarDoubleLockstep.h"

using cvars::platform::ScopedLock;

CCvarDoubleLockstep* CCvarBoolToFineGrainOn::Target() const {
  const ScopedLock guard(m_lock);
  return m_target;
}

void CCvarBoolToFineGrainOn::Initialize(const CComBSTR& name, CCvarDoubleLockstep* target,
                                        const CComBSTR& values, int defaultValue, CVARFLAGS flags,
                                        const CComBSTR& guiHints, unsigned int helpStringID,
                                        CVARREPLICATIONFLAGS replicationFlags) {
  CleanUp();
  {
    const ScopedLock guard(m_lock);
    m_target = target;
  }
  CCvarBool::Initialize(name, values, defaultValue, flags, guiHints, helpStringID,
                        replicationFlags);
  // A listener of this kind is never refused.
  if (target != nullptr) {
    (void)target->AttachCvarEventSink(static_cast<IVorCvarEventSink*>(this));
  }
}

void CCvarBoolToFineGrainOn::CleanUp() {
  CCvarDoubleLockstep* target = nullptr;
  {
    const ScopedLock guard(m_lock);
    std::swap(target, m_target);
  }
  // It may have been detached already.
  if (target != nullptr) {
    (void)target->DetachCvarEventSink(static_cast<IVorCvarEventSink*>(this));
  }
}

int CCvarBoolToFineGrainOn::GetAdaptedValue() {
  CCvarDoubleLockstep* const target = Target();
  int on = 0;
  return target != nullptr && target->get_FineGrainOn(&on) == S_OK && on != 0 ? 1 : 0;
}

HRESULT CCvarBoolToFineGrainOn::SetRequestedValue(int value) {
  if (HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
  m_requested = value != 0 ? 1 : 0;
  CCvarDoubleLockstep* const target = Target();
  return target == nullptr ? S_OK : target->put_FineGrainOn(m_requested);
}

HRESULT CCvarBoolToFineGrainOn::OnCvarNotify(IVorCvar* sender, NOTIFYTYPE what) {
  const CComPtr<IVorCvar> held(sender);
  CCvarDoubleLockstep* const target = Target();
  if (target == nullptr || !held.IsEqualObject(target->GetIVorCvar())) {
    return CCvarBool::OnCvarNotify(sender, what);
  }
  return (what & NOTIFY_RANGE) != 0 ? Notify(what | NOTIFY_VALUE) : S_OK;
}
