#include "CCvarDoubleIndirect.h"

#include <mutex>
#include <utility>

void CCvarDoubleIndirect::Initialize(const CComBSTR& name, CCvarDouble* nativeTarget,
                                     IVorCvarDouble* interfaceTarget, double scale, double offset,
                                     double defaultValue, double min, double max, double grain,
                                     const CComBSTR& unit, CVARFLAGS flags,
                                     const CComBSTR& guiHints) {
  Link link{nativeTarget, CComPtr<IVorCvarDouble>(interfaceTarget), scale, offset};
  {
    const std::lock_guard guard(m_lock);
    std::swap(m_link, link);
  }
  CCvarDouble::Initialize(name, defaultValue, min, max, grain, unit, flags, guiHints, 0,
                          REPLICATE_VALUE | REPLICATE_REQUESTED);
  IUnknown* const self = static_cast<IVorCvarEventSink*>(this);
  if (nativeTarget != nullptr) (void)nativeTarget->AttachCvarEventSink(self);
  if (interfaceTarget != nullptr) (void)interfaceTarget->AttachCvarEventSink(self);
}

void CCvarDoubleIndirect::CleanUp() {
  Link link;
  {
    const std::lock_guard guard(m_lock);
    link.native = std::exchange(m_link.native, nullptr);
    link.target.Attach(m_link.target.Detach());
  }
  // Both may be the same cvar, which then listens once; the second answer does not matter.
  IUnknown* const self = static_cast<IVorCvarEventSink*>(this);
  if (link.native != nullptr) (void)link.native->DetachCvarEventSink(self);
  if (link.target != nullptr) (void)link.target->DetachCvarEventSink(self);
}

CCvarDoubleIndirect::Link CCvarDoubleIndirect::CopyLink() const {
  const std::lock_guard guard(m_lock);
  return m_link;
}

double CCvarDoubleIndirect::GetAdaptedValue() {
  const Link link = CopyLink();
  double value = 0;
  if (link.native != nullptr) {
    value = link.native->GetAdaptedValue();
  } else if (link.target != nullptr && FAILED(link.target->GetAdaptedValue(&value))) {
    value = 0;
  }
  return link.scale * value + link.offset;
}

HRESULT CCvarDoubleIndirect::SetRequestedValue(double value, bool force) {
  const Link link = CopyLink();
  const double request = (value - link.offset) / link.scale;
  if (link.native != nullptr) {
    return force ? link.native->SetRequestedValue(request, true)
                 : link.native->SetRequestedValue(request);
  }
  return link.target == nullptr ? S_OK : link.target->SetRequestedValue(request);
}

HRESULT CCvarDoubleIndirect::IsDefault(int* isDefault) {
  if (isDefault == nullptr) return E_POINTER;
  *isDefault = GetAdaptedValue() == m_default ? 1 : 0;
  return S_OK;
}

HRESULT CCvarDoubleIndirect::OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) {
  bool ours = false;
  {
    const std::lock_guard guard(m_lock);
    ours = source != nullptr && (source == static_cast<IVorCvar*>(m_link.native) ||
                                 source == static_cast<IVorCvar*>(m_link.target.p));
  }
  return ours ? Notify(what) : CCvarDouble::OnCvarNotify(source, what);
}
