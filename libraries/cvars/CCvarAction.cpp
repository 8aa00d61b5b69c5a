#include "CCvarAction.h"

#include "CComPtr.h"
#include "CDLLVersions.h"
#include "SignatureText.h"

template class IVorCvarImpl<CCvarAction, IVorCvarAction, char>;

namespace {

constexpr NOTIFYTYPE kEverything = NOTIFYTYPE(0xFFFFFFFFu);

/// Takes the busy flag back at its end, whatever ended it.
class BusyScope {
 public:
  explicit BusyScope(std::atomic<bool>& busy) : m_busy(busy) {}
  ~BusyScope() { m_busy.exchange(false); }
  BusyScope(const BusyScope&) = delete;
  BusyScope& operator=(const BusyScope&) = delete;

 private:
  std::atomic<bool>& m_busy;
};

}  // namespace

void CCvarAction::Initialize(const wchar_t* name, CVARFLAGS flags, const wchar_t* guiHints,
                             unsigned int helpStringID, unsigned long icon,
                             CVARREPLICATIONFLAGS replicationFlags) {
  const cvars::SilentScope silence(*this);
  SetGuiHints(guiHints);
  StoreHelpStringID(helpStringID);
  SetName(name);
  SetReplicationFlags(replicationFlags);
  SetFlags(static_cast<long>(flags));
  SetIcon(icon);
}

HRESULT CCvarAction::ActNow(bool force) {
  if (!force && HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
  if (m_busy.exchange(true)) return S_FALSE;
  const CComPtr<IVorCvar> keeper(this);  // a listener may let go of the last other reference
  const BusyScope busy(m_busy);
  return Notify(NOTIFY_VALUE);
}

HRESULT CCvarAction::SetAndLoadIcon(unsigned long icon, HINSTANCE module) {
  const cvars::TattlerProbe probe(cvars::ProcessDllVersions().ProbeClient(),
                                  L"CCvarAction::SetAndLoadIcon", 0, 0, GetIVorCvar());
  SetIcon(icon, static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(module)));
  return S_OK;
}

HRESULT CCvarAction::OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) {
  // The initial copy of a connection tells of everything. Nobody has acted then.
  const bool acts = what != kEverything;
  return Base::OnCvarNotify(source, acts ? what : what & ~(NOTIFY_VALUE | NOTIFY_REQUESTED));
}

HRESULT CCvarAction::get_Signature(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  return cvars::CopyOut(cvars::SignatureText(kTypeName).Add(L"Flags", GetFlagsString()).Text(),
                        text);
}
