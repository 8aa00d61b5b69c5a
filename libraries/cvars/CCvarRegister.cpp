#include "CCvarRegister.h"

#include <algorithm>

#include "CComPtr.h"
#include "IntegerText.h"
#include "SignatureText.h"

template class IVorCvarImpl<CCvarRegister, IVorCvarRegister, unsigned int>;

using cvars::platform::ScopedLock;

namespace {

constexpr std::size_t kDigits = 8;
constexpr NOTIFYTYPE kEverything = NOTIFYTYPE(0xFFFFFFFFu);

unsigned int WidthOf(unsigned int nbOfBits) {
  return nbOfBits > 0 && nbOfBits < CCvarRegister::kMaxNbOfBits ? nbOfBits
                                                                : CCvarRegister::kMaxNbOfBits;
}

/// The bits that a register of a width can have.
unsigned int BitsOf(unsigned int nbOfBits) {
  const unsigned int width = WidthOf(nbOfBits);
  return width == CCvarRegister::kMaxNbOfBits ? ~0u : (1u << width) - 1u;
}

std::wstring EightDigits(unsigned int value) {
  std::wstring text;
  cvars::AppendHexadecimal(text, value, kDigits, cvars::HexCase::kLower);
  return text;
}

}  // namespace

void CCvarRegister::Initialize(const wchar_t* name, unsigned int defaultValue,
                               ACCESSSTYLE accessStyle, unsigned int hardwareAddress,
                               unsigned int nbOfBits, unsigned int mask, CVARFLAGS flags,
                               const wchar_t* guiHints, unsigned int helpStringID,
                               CVARREPLICATIONFLAGS replicationFlags, bool notifyOnEveryUpdate) {
  const cvars::SilentScope silence(*this);
  SetGuiHints(guiHints);
  SetName(name);
  m_hardwareAddress = hardwareAddress;
  SetReplicationFlags(replicationFlags);
  m_nbOfBits = WidthOf(nbOfBits);
  m_mask = mask & BitsOf(nbOfBits);
  m_default = defaultValue & mask;
  m_notifyOnEveryUpdate = true;  // the first read-back always counts as a change
  (void)SetRequestedValue(m_default);
  m_accessStyle = accessStyle;
  const CVARFLAGS readOnly = accessStyle == ACCESSSTYLE_READONLY ? CVARFLAG_READONLY : CVARFLAGS(0);
  SetReadOnly(readOnly != 0);
  SetFlags(static_cast<long>(flags | readOnly));
  m_notifyOnEveryUpdate = notifyOnEveryUpdate;
  StoreHelpStringID(helpStringID);
}

// Values ------------------------------------------------------------------------------------------

HRESULT CCvarRegister::GetAdaptedValue(unsigned int* value) {
  if (value == nullptr) return E_POINTER;
  PerformLateUpdate();
  return Read(m_adapted, value);
}

CCvarRegister::operator unsigned int() {
  PerformLateUpdate();
  return m_adapted;
}

HRESULT CCvarRegister::SetRequestedValue(unsigned int value) {
  if (HasFlag(CVARFLAG_READONLY)) return S_OK;
  if (value != m_requested) {
    m_requested = value;
    AddPending(NOTIFY_REQUESTED);
  }
  return UpdateFromHardware(value);
}

HRESULT CCvarRegister::UpdateFromHardware(unsigned int value) {
  const unsigned int held = value & m_mask;
  const bool changed = held != m_adapted;
  m_adapted = held;
  if (changed || m_notifyOnEveryUpdate) AddPending(NOTIFY_VALUE);
  (void)NotifyClients(NOTIFY_ALL_CLIENTS, false);  // the hardware holds what it holds
  return S_OK;
}

template <class Value>
HRESULT CCvarRegister::Change(cvars::Relaxed<Value>& field, Value value, NOTIFYTYPE what) {
  if (field == value) return S_FALSE;
  field = value;
  return Notify(what);
}

HRESULT CCvarRegister::SetDefaultValue(unsigned int value) {
  return Change(m_default, value, NOTIFY_ATTRIBUTES);
}

HRESULT CCvarRegister::get_Value(VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  (void)VariantClear(value);
  std::wstring text = L"&h";
  cvars::AppendHexadecimal(text, m_adapted, 1, cvars::HexCase::kUpper);
  CComVariant given((CComBSTR(std::wstring_view(text))));
  return given.Detach(value);
}

HRESULT CCvarRegister::put_Value(VARIANT value) {
  if (value.vt == VT_BSTR && cvars::BstrView(value.bstrVal).starts_with(L'0')) {
    return SetRequestedValueFromString(value.bstrVal);
  }
  CComVariant number;
  if (SUCCEEDED(VariantChangeType(&number, &value, 0, VT_UI4))) {
    return SetRequestedValue(number.ulVal);
  }
  if (value.vt == VT_I2) return SetRequestedValue(static_cast<unsigned int>(int{value.iVal}));
  return value.vt == VT_BSTR ? SetRequestedValueFromString(value.bstrVal) : E_INVALIDARG;
}

HRESULT CCvarRegister::SetRequestedValueFromString(const wchar_t* text) {
  std::uint32_t value = 0;
  (void)cvars::ScanInteger(cvars::TextOrEmpty(text), &value);  // no number writes 0
  return SetRequestedValue(value);
}

HRESULT CCvarRegister::GetAdaptedValueNorm(double* position) {
  if (position != nullptr) *position = 0.0;
  return E_NOTIMPL;
}

// Attributes --------------------------------------------------------------------------------------

HRESULT CCvarRegister::SetMask(unsigned int mask) {
  return Change(m_mask, mask & BitsOf(m_nbOfBits), NOTIFY_FLAGS);
}

HRESULT CCvarRegister::SetNbOfBits(unsigned int count) {
  return Change(m_nbOfBits, WidthOf(count), NOTIFY_FLAGS);
}

HRESULT CCvarRegister::SetHardwareAddress(unsigned int address) {
  return Change(m_hardwareAddress, address, NOTIFY_FLAGS);
}

HRESULT CCvarRegister::SetAccessStyle(ACCESSSTYLE style) {
  m_accessStyle = style;
  SetReadOnly(style == ACCESSSTYLE_READONLY);
  return Notify(NOTIFY_FLAGS);
}

// Fields ------------------------------------------------------------------------------------------

HRESULT CCvarRegister::SetFieldDescription(unsigned int firstBit, unsigned int lastBit,
                                           const wchar_t* description) {
  const ScopedLock guard(m_lock);
  m_fields.push_back({firstBit, lastBit, CComBSTR(description)});
  return S_OK;
}

const CCvarRegister::Field* CCvarRegister::FindField(unsigned int bit) const {
  const auto found = std::find_if(m_fields.begin(), m_fields.end(), [bit](const Field& field) {
    return field.firstBit <= bit && bit <= field.lastBit;
  });
  return found == m_fields.end() ? nullptr : &*found;
}

HRESULT CCvarRegister::GetFieldDescription(unsigned int bit, unsigned int* firstBit,
                                           unsigned int* lastBit, BSTR* description) {
  if (firstBit == nullptr || lastBit == nullptr || description == nullptr) return E_POINTER;
  *firstBit = 0;
  *lastBit = 0;
  *description = nullptr;
  const ScopedLock guard(m_lock);
  const Field* const field = FindField(bit);
  if (field == nullptr) return S_OK;
  *firstBit = field->firstBit;
  *lastBit = field->lastBit;
  return field->description.CopyTo(description);
}

HRESULT CCvarRegister::GetFieldDescriptionFirstBit(unsigned int bit, unsigned int* firstBit) {
  if (firstBit == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  const Field* const field = FindField(bit);
  *firstBit = field == nullptr ? 0 : field->firstBit;
  return S_OK;
}

HRESULT CCvarRegister::GetFieldDescriptionLastBit(unsigned int bit, unsigned int* lastBit) {
  if (lastBit == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  const Field* const field = FindField(bit);
  *lastBit = field == nullptr ? 0 : field->lastBit;
  return S_OK;
}

HRESULT CCvarRegister::GetFieldDescriptionString(unsigned int bit, BSTR* description) {
  if (description == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  const Field* const field = FindField(bit);
  return field == nullptr ? S_OK : field->description.CopyTo(description);
}

// Replication -------------------------------------------------------------------------------------

HRESULT CCvarRegister::OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) {
  const CVARREPLICATIONFLAGS copies = ReplicationFlags();
  const bool takesDefault = (copies & REPLICATE_DEFAULT) != 0 && (what & NOTIFY_ATTRIBUTES) != 0;
  const bool takesDescription = (copies & REPLICATE_DESCRIPTION) != 0 && what == kEverything;
  if (source != nullptr && (takesDefault || takesDescription)) {
    CComPtr<IVorCvarRegister> other;
    (void)source->QueryInterface(IID_IVorCvarRegister, reinterpret_cast<void**>(&other));
    if (other != nullptr && takesDefault) {
      unsigned int value = 0;
      if (SUCCEEDED(other->GetDefaultValue(&value))) m_default = value;
    }
    if (other != nullptr && takesDescription) TakeDescription(*other);
  }
  return Base::OnCvarNotify(source, what);
}

void CCvarRegister::TakeDescription(IVorCvarRegister& source) {
  unsigned int number = 0;
  if (SUCCEEDED(source.GetMask(&number))) m_mask = number;
  if (SUCCEEDED(source.GetNbOfBits(&number))) m_nbOfBits = number;
  ACCESSSTYLE style = m_accessStyle;
  if (SUCCEEDED(source.GetAccessStyle(&style))) m_accessStyle = style;
  if (SUCCEEDED(source.GetHardwareAddress(&number))) m_hardwareAddress = number;

  const unsigned int width = m_nbOfBits;
  for (unsigned int bit = 0; bit < width; ++bit) {
    unsigned int first = 0;
    unsigned int last = 0;
    CComBSTR description;
    if (FAILED(source.GetFieldDescription(bit, &first, &last, &description))) continue;
    if (first == 0 && last == 0) continue;
    (void)SetFieldDescription(first, last, description);
    if (last >= width) break;
    bit = std::max(bit, last);
  }
}

// Texts -------------------------------------------------------------------------------------------

HRESULT CCvarRegister::GetAdaptedValueStringScreen(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  PerformLateUpdate();
  return cvars::CopyOut(EightDigits(m_adapted), text);
}

HRESULT CCvarRegister::get_Range(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  std::wstring range = L"Register ";
  cvars::AppendDecimal(range, m_nbOfBits.Get());
  return cvars::CopyOut(range + L" bit", text);
}

HRESULT CCvarRegister::get_Signature(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  CComBSTR adapted;
  const bool readable = SUCCEEDED(GetAdaptedValueStringRemote(&adapted));
  unsigned int defaultValue = 0;
  if (FAILED(GetDefaultValue(&defaultValue))) defaultValue = 1;
  return cvars::CopyOut(cvars::SignatureText(kTypeName)
                            .Add(L"Adapt", readable ? adapted.View() : L"???")
                            .Add(L"Default", EightDigits(defaultValue))
                            .Add(L"Flags", GetFlagsString())
                            .AddInteger(L"NbOfBits", m_nbOfBits.Get())
                            .Add(L"HardwareAddress", EightDigits(m_hardwareAddress))
                            .Text(),
                        text);
}

HRESULT CCvarRegister::FillCvarPropertiesMap(cvars::PropertiesMap& map) {
  const HRESULT filled = Base::FillCvarPropertiesMap(map);
  if (FAILED(filled)) return filled;
  map.Set(L"RequestedValue", CComVariant(m_requested.Get()));
  map.Set(L"AdaptedValue", CComVariant(m_adapted.Get()));
  const HRESULT screen = map.SetTextFrom(L"AdaptedValueStringScreen", [this](BSTR* text) {
    return GetAdaptedValueStringScreen(text);
  });
  if (FAILED(screen)) return screen;
  map.Set(L"Default", CComVariant(m_default.Get()));
  map.Set(L"NbOfBits", CComVariant(m_nbOfBits.Get()));
  map.Set(L"HardwareAddress", CComVariant(m_hardwareAddress.Get()));
  return S_OK;
}
