#include "CvarCore.h"

#include "CComBSTR.h"
#include "CComPtr.h"
#include "CComVariant.h"
#include "CvarBag.h"
#include "CvarExtras.h"
#include "CvarText.h"
#include "DeveloperEvents.h"
#include "FlagsString.h"
#include "platform/Modules.h"

namespace cvars {

using platform::ScopedLock;

namespace {

HINSTANCE ToModule(unsigned long module) noexcept { return reinterpret_cast<HINSTANCE>(module); }

unsigned long ToNumber(HINSTANCE module) noexcept {
  return static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(module));
}

std::wstring WithoutFirst(std::wstring text, std::wstring_view piece) {
  const std::size_t at = text.find(piece);
  if (at != std::wstring::npos) text.erase(at, piece.size());
  return text;
}

}  // namespace

CvarCore::CvarCore() noexcept = default;

CvarCore::~CvarCore() { delete m_extras.load(std::memory_order_relaxed); }

ULONG CvarCore::ReleaseHold() {
  const std::uint32_t notifications = m_listeners.LetGo();
  if (notifications == 0) Go();
  return notifications;
}

void CvarCore::Go() {
  m_references.store(kGoing | 1, std::memory_order_relaxed);
  m_listeners.Hold();  // so that no notification sent from here is the last holder
  FinalRelease();
  Destroy();
}

bool CvarCore::TryAddReference() noexcept {
  std::uint32_t count = m_references.load(std::memory_order_relaxed);
  while (count != 0 && (count & kGoing) == 0) {
    if (m_references.compare_exchange_weak(count, count + 1, std::memory_order_relaxed))
      return true;
  }
  return false;
}

void CvarCore::FinalRelease() {
  EndReplication();
  m_listeners.DetachAll(m_lock);
}

CvarExtras& CvarCore::Extras() {
  CvarExtras* extras = ExtrasIfAny();
  if (extras != nullptr) return *extras;
  auto* const made = new CvarExtras;
  if (m_extras.compare_exchange_strong(extras, made, std::memory_order_acq_rel)) return *made;
  delete made;
  return *extras;
}

// Flags ------------------------------------------------------------------------------------------

bool CvarCore::ChangeFlags(std::uint32_t word) {
  if (word == m_flags) return false;
  m_flags = word;
  (void)Notify(NOTIFY_FLAGS);  // the answer says whether the word changed, not what listeners say
  return true;
}

bool CvarCore::SetFlags(CVARFLAGS bits, bool on) {
  return ChangeFlags(on ? m_flags | bits : m_flags & ~static_cast<std::uint32_t>(bits));
}

bool CvarCore::SetFlags(long word) { return ChangeFlags(static_cast<std::uint32_t>(word)); }

bool CvarCore::ForcePublic(bool on) { return SetFlags(CVARFLAG_PUBLIC, on); }

bool CvarCore::ForcePrivate(bool on) { return SetFlags(CVARFLAG_PRIVATE, on); }

std::wstring CvarCore::GetFlagsString() const { return FlagsString(Flags()); }

HRESULT CvarCore::CoreGetFlagsString(BSTR* text) const {
  if (text == nullptr) return E_POINTER;
  return CopyOut(GetFlagsString(), text);
}

HRESULT CvarCore::CoreGetFlags(long* flags) const {
  if (flags == nullptr) return E_POINTER;
  *flags = static_cast<std::int32_t>(m_flags.Get());
  return S_OK;
}

HRESULT CvarCore::CoreIsFlagSet(CVARFLAGS bit, int* set) const {
  if (set == nullptr) return E_POINTER;
  *set = HasFlag(bit) ? 1 : 0;
  return S_OK;
}

// Names
// --------------------------------------------------------------------------------------------

// Replicas read names and hints on other threads, so these are under the object lock.

void CvarCore::SetName(const wchar_t* text) {
  const ScopedLock guard(m_lock);
  m_names.Set(TextOrEmpty(text));
}

void CvarCore::InitializeName(const BSTR& memberName) {
  const ScopedLock guard(m_lock);
  if (!m_names.Empty()) return;
  m_names.Set(WithoutFirst(WithoutFirst(std::wstring(TextOrEmpty(memberName)), L"m_cv"), L"m_pcv"));
}

HRESULT CvarCore::CoreGetName(BSTR* name) const {
  if (name == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  return m_names.CopyName(name);
}

HRESULT CvarCore::CoreGetNameRemote(BSTR* name) const {
  if (name == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  return m_names.CopyRemoteName(name);
}

HRESULT CvarCore::get_BagAndCvarName(BSTR* name) {
  if (name == nullptr) return E_POINTER;
  return CopyOut(BagAndCvarName(GetIVorCvar()), name);
}

// Help, hints, icon, parent
// ------------------------------------------------------------------------

void CvarCore::SetHelpStringID(unsigned int id) {
  if (id == m_helpStringId) return;
  m_helpStringId = id;
  (void)Notify(NOTIFY_ATTRIBUTES);  // the operation has no result
}

HRESULT CvarCore::CoreGetHelpStringID(unsigned int* id) const {
  if (id == nullptr) return E_POINTER;
  *id = m_helpStringId;
  return S_OK;
}

HRESULT CvarCore::CoreGetHelpString(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  std::wstring_view help;
  HINSTANCE module = nullptr;
  const unsigned int id = m_helpStringId;
  if (id != 0 && SUCCEEDED(GetParentModuleInstanceHandle(&module))) {
    const wchar_t* resource = nullptr;
    const int length = LoadString(module, id, reinterpret_cast<wchar_t*>(&resource), 0);
    if (length > 0) help = {resource, static_cast<std::size_t>(length)};
  }
  return CopyOut(help, text);
}

void CvarCore::SetGuiHints(const wchar_t* hints) {
  const std::wstring_view text = TextOrEmpty(hints);
  if (text.empty() && ExtrasIfAny() == nullptr) return;
  {
    const ScopedLock guard(m_lock);
    std::wstring& stored = Extras().guiHints;
    if (text == stored) return;
    stored = text;
  }
  (void)Notify(NOTIFY_GUIHINTS);  // the operation has no result
}

HRESULT CvarCore::CoreGetGuiHints(BSTR* hints) const {
  if (hints == nullptr) return E_POINTER;
  const CvarExtras* const extras = ExtrasIfAny();
  if (extras == nullptr) return CopyOut(L"", hints);
  const ScopedLock guard(m_lock);
  return CopyOut(extras->guiHints, hints);
}

void CvarCore::SetIcon(unsigned long id) {
  const CvarExtras* const extras = ExtrasIfAny();
  const auto wanted = static_cast<std::uint32_t>(id);
  if (wanted == (extras == nullptr ? 0 : extras->iconId)) return;
  Extras().iconId = wanted;
  (void)GetParentModuleInstanceHandle(&Extras().iconModule);  // without a parent there is no module
  (void)GetIVorCvar()->ForceNotification(NOTIFY_ATTRIBUTES);  // the operation has no result
}

void CvarCore::SetIcon(unsigned long id, unsigned long module) {
  const CvarExtras* const extras = ExtrasIfAny();
  const auto wanted = static_cast<std::uint32_t>(id);
  if (extras == nullptr ? wanted == 0 && module == 0
                        : wanted == extras->iconId && ToModule(module) == extras->iconModule) {
    return;
  }
  Extras().iconId = wanted;
  Extras().iconModule = ToModule(module);
  (void)GetIVorCvar()->ForceNotification(NOTIFY_ATTRIBUTES);  // the operation has no result
}

HRESULT CvarCore::CoreGetIconInfo(unsigned long* id, unsigned long* module) {
  if (id == nullptr || module == nullptr) return E_INVALIDARG;
  CvarExtras* const extras = ExtrasIfAny();
  *id = 0;
  *module = 0;
  if (extras == nullptr) return S_OK;
  if (extras->iconModule == nullptr && extras->iconId != 0) {
    (void)GetParentModuleInstanceHandle(&extras->iconModule);  // no module is no failure here
  }
  *id = extras->iconId;
  *module = ToNumber(extras->iconModule);
  return S_OK;
}

IUnknown* CvarCore::GetParent() { return nullptr; }

void CvarCore::SetParent(IUnknown*) {}

HRESULT CvarCore::CoreGetParent(IUnknown** parent) {
  if (parent == nullptr) return E_POINTER;
  *parent = nullptr;
  IUnknown* const container = GetParent();
  if (container == nullptr) return OLE_E_BLANK;
  CComPtr<CvarBag> bag;
  if (FAILED(container->QueryInterface(IID_CvarBag, reinterpret_cast<void**>(&bag))) ||
      FAILED(bag->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(parent)))) {
    return OLE_E_BLANK;
  }
  return S_OK;
}

HRESULT CvarCore::GetParentModuleInstanceHandle(HINSTANCE* module) {
  if (module == nullptr) return E_POINTER;
  *module = nullptr;
  CComPtr<IUnknown> parent;
  HRESULT result = GetIVorCvar()->get_Parent(&parent);
  if (FAILED(result)) return result;
  CComPtr<CvarBag> bag;
  result = parent->QueryInterface(IID_CvarBag, reinterpret_cast<void**>(&bag));
  if (FAILED(result)) return result;
  return bag->GetModuleInstanceHandle(module);
}

// Properties
// ---------------------------------------------------------------------------------------

void CvarCore::CoreFillProperties(PropertiesMap& map, const wchar_t* typeName) {
  ScopedLock guard(m_lock);
  IVorCvar* const cvar = GetIVorCvar();
  CComBSTR help;
  (void)cvar->get_HelpString(&help);  // no help is the empty text
  unsigned long iconId = 0;
  unsigned long iconModule = 0;
  (void)cvar->GetIconInfo(&iconId, &iconModule);  // fails for null pointers only
  CComBSTR hints;
  (void)cvar->GetGuiHints(&hints);  // fails for null pointers only

  map.SetText(L"Type", TextOrEmpty(typeName));
  map.SetText(L"Name", m_names.Name());
  map.Set(L"Flags", CComVariant(static_cast<int>(m_flags.Get())));
  map.SetText(L"FlagsString", GetFlagsString());
  map.SetText(L"HelpString", BstrView(help));
  map.SetText(L"GuiHints", BstrView(hints));
  CComVariant id;
  id.vt = VT_UI4;
  id.ulVal = static_cast<ULONG>(iconId);
  map.Set(L"IconID", std::move(id));
  map.Set(L"IconModuleInstance", CComVariant(static_cast<int>(iconModule)));
}

HRESULT CvarCore::CoreAutomationText(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  CComVariant value;
  HRESULT result = GetIVorCvar()->get_Value(&value);
  if (SUCCEEDED(result)) {
    result =
        VariantChangeTypeEx(&value, &value, LOCALE_ENGLISH_US, VARIANT_NOUSEROVERRIDE, VT_BSTR);
  }
  if (SUCCEEDED(result)) return CopyOut(BstrView(value.bstrVal), text);
  const HRESULT copied = CopyOut(L"", text);
  return FAILED(copied) ? copied : result;
}

}  // namespace cvars
