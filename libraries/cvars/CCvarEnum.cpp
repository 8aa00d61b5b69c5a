#include "CCvarEnum.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "EventLogClient.h"
#include "IndexRequest.h"
#include "SignatureText.h"
#include "TextCase.h"
#include "TextPieces.h"
#include "VariantEquality.h"

template class IVorCvarImpl<CCvarEnum, IVorCvarEnum, int>;

using cvars::EnumTable;
using cvars::TextOrEmpty;
using cvars::platform::ScopedLock;

namespace {

constexpr int kAdaptedBeforeFirst = -2;
constexpr int kDefaultBeforeFirst = -3;
constexpr int kRequestedBeforeFirst = -4;
constexpr wchar_t kEntrySeparator = L',';

HINSTANCE ModuleOf(unsigned long handle) {
  return reinterpret_cast<HINSTANCE>(static_cast<std::uintptr_t>(handle));
}

HRESULT CopyVariantOut(const VARIANT& source, VARIANT* value) {
  return VariantCopy(value, &source);
}

}  // namespace

CCvarEnum::CCvarEnum() {
  m_adapted = kAdaptedBeforeFirst;
  m_default = kDefaultBeforeFirst;
  m_requested = kRequestedBeforeFirst;
}

void CCvarEnum::Initialize(const wchar_t* name, const wchar_t* values, int defaultIndex,
                           CVARFLAGS flags, const wchar_t* guiHints, unsigned int helpStringID,
                           CVARREPLICATIONFLAGS replicationFlags, unsigned long iconId) {
  const cvars::SilentScope silence(*this);
  SetName(name);
  SetFlags(static_cast<long>(flags));
  SetReplicationFlags(replicationFlags);
  SetIcon(iconId);
  (void)SetRange(values, defaultIndex, guiHints, helpStringID, true);  // nobody listens
  (void)SetRequestedValue(defaultIndex, true);                         // nobody listens
}

// Building the list

EnumTable::Entry CCvarEnum::MakeEntry(std::wstring_view text) const {
  return std::make_unique<CCvarEnumValue>(text, HasFlag(CVARFLAG_SPECIALCHARS));
}

/// Changes the list and adapts the value under one lock, so that no reader sees the value of the
/// old list in the new one; then tells the listeners.
///
/// @param change  called as HRESULT(EnumTable&) under the lock; anything but S_OK says that nothing
///                changed.
template <class Change>
HRESULT CCvarEnum::ChangeTable(Change change) {
  {
    const ScopedLock guard(m_lock);
    const HRESULT changed = change(m_table);
    if (changed != S_OK) return changed;
    AddPending(NOTIFY_RANGE);
    Adapt();
  }
  return NotifyClients(NOTIFY_ALL_CLIENTS, false);
}

HRESULT CCvarEnum::AddValue(const wchar_t* text, int iconId, int index) {
  HINSTANCE module = nullptr;
  if (iconId != 0) {
    unsigned long ownIcon = 0;
    unsigned long handle = 0;
    if (SUCCEEDED(GetIconInfo(&ownIcon, &handle))) module = ModuleOf(handle);
  }
  const std::vector<std::wstring_view> pieces =
      cvars::SplitText(TextOrEmpty(text), kEntrySeparator);
  const int place = pieces.size() > 1 ? EnumTable::kNone : index;
  return ChangeTable([&](EnumTable& table) {
    bool added = false;
    for (const std::wstring_view piece : pieces) {
      EnumTable::Entry entry = MakeEntry(piece);
      if (table.HasSameAnyCase(entry->Strings())) continue;
      entry->m_iconId = static_cast<unsigned int>(iconId);
      entry->m_iconModule = module;
      added = AddValueIfValid(entry.release(), place) || added;
    }
    return added ? S_OK : E_INVALIDARG;
  });
}

HRESULT CCvarEnum::AddEntry(EnumTable::Entry entry, int index) {
  return ChangeTable([&](EnumTable& table) {
    if (table.HasSameAnyCase(entry->Strings())) return E_INVALIDARG;
    return AddValueIfValid(entry.release(), index) ? S_OK : E_INVALIDARG;
  });
}

HRESULT CCvarEnum::AddValueAndIconInfo(const wchar_t* text, unsigned long iconId, HINSTANCE module,
                                       int index) {
  EnumTable::Entry entry = MakeEntry(TextOrEmpty(text));
  entry->m_iconId = static_cast<unsigned int>(iconId);
  entry->m_iconModule = module;
  return AddEntry(std::move(entry), index);
}

HRESULT CCvarEnum::AddValueWithVariant(const wchar_t* text, VARIANT value, IUnknown* object,
                                       int index) {
  EnumTable::Entry entry = MakeEntry(TextOrEmpty(text));
  entry->m_variants[CCvarEnumValue::kValueSlot] = CComVariant(value);
  entry->m_object = object;
  return AddEntry(std::move(entry), index);
}

bool CCvarEnum::AddValueIfValid(CCvarEnumValue* entry, int index) {
  EnumTable::Entry owned(entry);
  if (owned == nullptr || owned->SourceText().Length() == 0) return false;
  const ScopedLock guard(m_lock);
  m_table.Insert(std::move(owned), index);
  return true;
}

HRESULT CCvarEnum::AddChildPage(CComBSTR name, CComBSTR page, IUnknown* object) {
  return AddPage(name, page, CComVariant(), DLGPAGE_CHILD, object);
}

HRESULT CCvarEnum::AddPage(const wchar_t* name, const wchar_t* page, CComVariant value,
                           DLGPAGETYPE type, IUnknown* object) {
  if (TextOrEmpty(name).empty()) return E_INVALIDARG;
  EnumTable::Entry entry = MakeEntry(TextOrEmpty(name));
  entry->m_variants[CCvarEnumValue::kValueSlot] = std::move(value);
  entry->m_variants[CCvarEnumValue::kSpareSlot] = CComVariant(static_cast<unsigned int>(type));
  entry->m_variants[CCvarEnumValue::kChildPageSlot] = CComVariant(page);
  entry->m_object = object;
  return ChangeTable([&](EnumTable& table) {
    const int index = table.Find(TextOrEmpty(name));
    if (index != EnumTable::kNone) return SetEnabled(table, index, true);
    return AddValueIfValid(entry.release(), EnumTable::kNone) ? S_OK : E_INVALIDARG;
  });
}

HRESULT CCvarEnum::GetPageType(int index, DLGPAGETYPE* type) {
  if (type == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  if (!m_table.IsValid(index)) return E_INVALIDARG;
  const VARIANT& kept = m_table.At(index).m_variants[CCvarEnumValue::kSpareSlot];
  *type = kept.vt == VT_UI4 ? static_cast<DLGPAGETYPE>(kept.ulVal) : DLGPAGE_CHILD;
  return S_OK;
}

int CCvarEnum::DeleteValue(const wchar_t* text) {
  EnumTable::Entry removed;                  // goes after the lock: its objects may be anybody's
  (void)ChangeTable([&](EnumTable& table) {  // how many went is the answer
    const int index = table.Find(TextOrEmpty(text));
    if (index == EnumTable::kNone) return S_FALSE;
    removed = table.Remove(index);
    return S_OK;
  });
  return removed == nullptr ? 0 : 1;
}

void CCvarEnum::DeleteAllValuesNoNotify() {
  EnumTable removed;  // goes after the lock
  const ScopedLock guard(m_lock);
  m_table.Swap(removed);
}

HRESULT CCvarEnum::DeleteAllValues() {
  EnumTable removed;  // goes after the lock
  return ChangeTable([&](EnumTable& table) {
    table.Swap(removed);
    return S_OK;
  });
}

void CCvarEnum::AppendPieces(EnumTable& table, std::wstring_view values, int enabled) const {
  for (const std::wstring_view piece : cvars::SplitText(values, kEntrySeparator)) {
    if (piece.empty()) continue;
    EnumTable::Entry entry = MakeEntry(piece);
    entry->m_enabled = enabled;
    table.Insert(std::move(entry), EnumTable::kNone);
  }
}

void CCvarEnum::SetValueStringVectors(const wchar_t* values, int enabled) {
  const ScopedLock guard(m_lock);
  AppendPieces(m_table, TextOrEmpty(values), enabled);
}

HRESULT CCvarEnum::SetRange(const wchar_t* values, int defaultIndex, const wchar_t* guiHints,
                            unsigned int helpStringID, bool setDefault) {
  if (guiHints != nullptr) SetGuiHints(guiHints);
  EnumTable table;  // holds the old entries at the end, which go after the lock
  AppendPieces(table, TextOrEmpty(values), 1);
  m_pending.Remove(NOTIFY_ATTRIBUTES);
  if (setDefault && m_default != defaultIndex) {
    m_default = defaultIndex;
    AddPending(NOTIFY_ATTRIBUTES);
  }
  if (helpStringID != 0) StoreHelpStringID(helpStringID);
  {
    const ScopedLock guard(m_lock);
    if (!m_table.SameSpellings(table)) AddPending(NOTIFY_RANGE);
    m_table.Swap(table);
    Adapt();
  }
  return NotifyClients(NOTIFY_ALL_CLIENTS, false);
}

const CComBSTR& CCvarEnum::SpellingOf(const CCvarEnumValue& entry, Spelling spelling) noexcept {
  switch (spelling) {
    case Spelling::kAutomation:
      return entry.Strings().Automation();
    case Spelling::kRemote:
      return entry.Strings().Remote();
    case Spelling::kScreen:
      break;
  }
  return entry.Strings().Screen();
}

bool CCvarEnum::ChangeSpelling(const CComVariant& which, Spelling spelling, const CComBSTR& text) {
  bool differed = false;
  (void)ChangeTable([&](EnumTable& table) {  // whether it differed is the answer
    const int index = GetIndexOfVariant(which);
    differed = table.IsValid(index) && table.SetSpelling(index, spelling, text.View());
    return differed ? S_OK : S_FALSE;
  });
  return differed;
}

bool CCvarEnum::ChangeStringScreenValue(const CComVariant& which, const CComBSTR& text) {
  return ChangeSpelling(which, Spelling::kScreen, text);
}
bool CCvarEnum::ChangeStringAutomationValue(const CComVariant& which, const CComBSTR& text) {
  return ChangeSpelling(which, Spelling::kAutomation, text);
}
bool CCvarEnum::ChangeStringRemoteValue(const CComVariant& which, const CComBSTR& text) {
  return ChangeSpelling(which, Spelling::kRemote, text);
}

HRESULT CCvarEnum::SetDefaultValue(int index) {
  if (m_default == index) return S_FALSE;
  m_default = index;
  return Notify(NOTIFY_ATTRIBUTES);
}

// Looking at the list

int CCvarEnum::MaxValueIndex() {
  const ScopedLock guard(m_lock);
  return m_table.MaxIndex();
}

bool CCvarEnum::IsValidIndex(int index) {
  const ScopedLock guard(m_lock);
  return m_table.IsValid(index);
}

int CCvarEnum::GetIndexOfStringValue(const wchar_t* text) {
  const std::wstring_view wanted = TextOrEmpty(text);
  int index;
  if (TryFind(wanted, index)) return index;
  const ScopedLock guard(m_lock);
  return m_table.Find(wanted);
}

int CCvarEnum::GetIndexOfVariant(const VARIANT& which) {
  switch (which.vt) {
    case VT_BSTR:
      return GetIndexOfStringValue(which.bstrVal);
    case VT_I2:
    case VT_I4:
    case VT_I8:
    case VT_UI2:
    case VT_UI4:
    case VT_UI8: {
      CComVariant number;
      const HRESULT converted = VariantChangeType(&number, &which, 0, VT_I4);
      return FAILED(converted) ? EnumTable::kNone : number.lVal;
    }
    default:
      return EnumTable::kNone;
  }
}

int CCvarEnum::NextValue(int index) {
  const ScopedLock guard(m_lock);
  return m_table.Next(index, HasFlag(CVARFLAG_WRAPPING));
}

int CCvarEnum::PrevValue(int index) {
  const ScopedLock guard(m_lock);
  return m_table.Previous(index, HasFlag(CVARFLAG_WRAPPING));
}

HRESULT CCvarEnum::LogCvarEnumEvent(const CComBSTR& text, long level) {
  CComBSTR names;
  const HRESULT named = get_BagAndCvarName(&names);
  if (FAILED(named)) return named;
  cvars::EventLogClient client(L"CvarEnum");
  return client.LogEvent(text, names, level, nullptr, CComVariant());
}

HRESULT CCvarEnum::GetNumberOfValueStates(int* count) {
  if (count == nullptr) return E_POINTER;
  *count = MaxValueIndex() + 1;
  return S_OK;
}

int CCvarEnum::GetNumberOfEnabledValueStates() {
  const ScopedLock guard(m_lock);
  return m_table.CountEnabled();
}

HRESULT CCvarEnum::GetMin(int* index) {
  if (index == nullptr) return E_POINTER;
  *index = 0;
  return S_OK;
}

HRESULT CCvarEnum::GetMax(int* index) {
  if (index == nullptr) return E_POINTER;
  *index = MaxValueIndex();
  return S_OK;
}

HRESULT CCvarEnum::GetIndexOfStringName(const wchar_t* text, int* index) {
  if (index == nullptr) return E_POINTER;
  *index = GetIndexOfStringValue(text);
  return S_OK;
}

// Texts

HRESULT CCvarEnum::CopySpelling(int index, Spelling spelling, BSTR* text) {
  if (text == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  if (!m_table.IsValid(index)) return E_INVALIDARG;
  return cvars::CopyOut(SpellingOf(m_table.At(index), spelling).View(), text);
}

HRESULT CCvarEnum::CopyAdaptedSpelling(Spelling spelling, BSTR* text) {
  const ScopedLock guard(m_lock);
  const HRESULT copied = CopySpelling(m_adapted, spelling, text);
  return copied == E_INVALIDARG ? cvars::CopyOut({}, text) : copied;
}

HRESULT CCvarEnum::GetValueStringScreen(int index, BSTR* text) {
  return CopySpelling(index, Spelling::kScreen, text);
}
HRESULT CCvarEnum::GetValueStringAutomation(int index, BSTR* text) {
  return CopySpelling(index, Spelling::kAutomation, text);
}
HRESULT CCvarEnum::GetValueStringRemote(int index, BSTR* text) {
  return CopySpelling(index, Spelling::kRemote, text);
}
HRESULT CCvarEnum::GetAdaptedValueStringScreen(BSTR* text) {
  return CopyAdaptedSpelling(Spelling::kScreen, text);
}
HRESULT CCvarEnum::GetAdaptedValueStringRemote(BSTR* text) {
  return CopyAdaptedSpelling(Spelling::kRemote, text);
}

HRESULT CCvarEnum::CopyRange(Spelling spelling, BSTR* text) {
  if (text == nullptr) return E_POINTER;
  cvars::TextJoiner joiner(kEntrySeparator);
  {
    const ScopedLock guard(m_lock);
    for (int i = 0; i < m_table.Count(); ++i) {
      if (m_table.IsEnabled(i)) joiner.Add(SpellingOf(m_table.At(i), spelling).View());
    }
  }
  return cvars::CopyOut(joiner.Text(), text);
}

HRESULT CCvarEnum::get_RangeStringScreen(BSTR* text) { return CopyRange(Spelling::kScreen, text); }
HRESULT CCvarEnum::get_RangeStringRemote(BSTR* text) { return CopyRange(Spelling::kRemote, text); }
HRESULT CCvarEnum::get_RangeStringAutomation(BSTR* text) {
  return CopyRange(Spelling::kAutomation, text);
}

HRESULT CCvarEnum::GetFullRangeString(int includeDisabled, BSTR* text) {
  if (text == nullptr) return E_POINTER;
  cvars::TextJoiner joiner(kEntrySeparator);
  {
    const ScopedLock guard(m_lock);
    for (int i = 0; i < m_table.Count(); ++i) {
      if (includeDisabled == 0 && !m_table.IsEnabled(i)) continue;
      m_table.At(i).Strings().AppendJoined(joiner.Begin());
    }
  }
  return cvars::CopyOut(joiner.Text(), text);
}

std::wstring CCvarEnum::JoinedOf(int index) const {
  const ScopedLock guard(m_lock);
  return m_table.IsValid(index) ? m_table.At(index).Strings().Joined() : std::wstring();
}

HRESULT CCvarEnum::get_Signature(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);  // all of it from one moment
  cvars::SignatureText signature(kTypeName);
  signature.Add(L"Request", JoinedOf(m_requested))
      .Add(L"Adapt", JoinedOf(m_adapted))
      .Add(L"Default", JoinedOf(m_default))
      .Add(L"Flags", GetFlagsString())
      .Add(L"Range", L"");
  cvars::TextJoiner joiner(signature.Text(), kEntrySeparator);
  for (int i = 0; i < m_table.Count(); ++i) {
    const CEnumValueString& strings = m_table.At(i).Strings();
    std::wstring& entry = joiner.Begin();
    if (!m_table.IsEnabled(i)) entry += L'(';
    strings.AppendJoined(entry);
    if (!m_table.IsEnabled(i)) entry += L')';
  }
  return cvars::CopyOut(joiner.Text(), text);
}

HRESULT CCvarEnum::FillCvarPropertiesMap(cvars::PropertiesMap& map) {
  const HRESULT filled = Base::FillCvarPropertiesMap(map);
  if (FAILED(filled)) return filled;
  map.Set(L"RequestedValue", CComVariant(m_requested.Get()));
  map.Set(L"AdaptedValue", CComVariant(m_adapted.Get()));
  const HRESULT screen = map.SetTextFrom(L"AdaptedValueStringScreen", [this](BSTR* text) {
    return GetAdaptedValueStringScreen(text);
  });
  if (FAILED(screen)) return screen;
  map.Set(L"Default", CComVariant(m_default.Get()));
  return map.SetTextFrom(L"Range", [this](BSTR* text) { return get_Range(text); });
}

// What belongs to an entry

HRESULT CCvarEnum::SetEnabled(EnumTable& table, int index, bool enabled) {
  if (!table.IsValid(index)) return E_INVALIDARG;
  if (table.IsEnabled(index) == enabled) return S_FALSE;
  table.At(index).m_enabled = enabled ? 1 : 0;
  return S_OK;
}

HRESULT CCvarEnum::Enable(int index, int enable) {
  return ChangeTable([&](EnumTable& table) { return SetEnabled(table, index, enable != 0); });
}

HRESULT CCvarEnum::Enable(VARIANT entry, int enable) {
  return ChangeTable(
      [&](EnumTable& table) { return SetEnabled(table, GetIndexOfVariant(entry), enable != 0); });
}

HRESULT CCvarEnum::IsEnabled(int index, int* enabled) {
  if (enabled == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  if (!m_table.IsValid(index)) return E_INVALIDARG;
  *enabled = m_table.IsEnabled(index) ? 1 : 0;
  return S_OK;
}

/// @param exchange  called as bool(CCvarEnumValue&) under the lock; puts the new in place of the
/// old
///                  and says whether they differ. It must keep the old, which goes after the lock.
template <class Exchange>
HRESULT CCvarEnum::ChangeEntry(int index, Exchange exchange) {
  return ChangeTable([&](EnumTable& table) {
    if (!table.IsValid(index)) return E_INVALIDARG;
    return exchange(table.At(index)) ? S_OK : S_FALSE;
  });
}

HRESULT CCvarEnum::ExchangeVariant(int index, std::size_t slot, const VARIANT& value) {
  CComVariant kept(value);
  return ChangeEntry(index, [&](CCvarEnumValue& entry) {
    entry.m_variants[slot].Swap(kept);
    return !cvars::SameVariant(entry.m_variants[slot], kept);
  });
}

HRESULT CCvarEnum::GetVariant(int index, VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  if (!m_table.IsValid(index)) return E_INVALIDARG;
  return CopyVariantOut(m_table.At(index).m_variants[CCvarEnumValue::kValueSlot], value);
}

HRESULT CCvarEnum::SetVariant(int index, VARIANT value) {
  return ExchangeVariant(index, CCvarEnumValue::kValueSlot, value);
}

HRESULT CCvarEnum::GetEnumIUnknown(int index, IUnknown** object) {
  if (object == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  if (!m_table.IsValid(index)) return E_INVALIDARG;
  *object = CComPtr<IUnknown>(m_table.At(index).m_object).Detach();
  return S_OK;
}

HRESULT CCvarEnum::SetEnumValueIconInfo(int index, unsigned long iconId, HINSTANCE module) {
  return ChangeEntry(index, [&](CCvarEnumValue& entry) {
    const auto id = static_cast<unsigned int>(iconId);
    const bool differs = entry.m_iconId != id || entry.m_iconModule != module;
    entry.m_iconId = id;
    entry.m_iconModule = module;
    return differs;
  });
}

HRESULT CCvarEnum::GetEnumValueIconInfo(int index, unsigned long* iconId, unsigned long* module) {
  if (iconId == nullptr || module == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  if (!m_table.IsValid(index)) return E_INVALIDARG;
  const CCvarEnumValue& entry = m_table.At(index);
  *iconId = entry.m_iconId;
  *module = static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(entry.m_iconModule));
  return S_OK;
}

HRESULT CCvarEnum::SetExtraEnumData(int index, EXTRAENUMDATA kind, VARIANT value) {
  switch (kind) {
    case EXTRAENUMDATA_ICONID: {
      CComVariant number;
      const HRESULT converted = VariantChangeType(&number, &value, 0, VT_I4);
      if (!IsValidIndex(index)) return E_INVALIDARG;
      if (FAILED(converted)) return converted;
      return ChangeEntry(index, [&](CCvarEnumValue& entry) {
        return std::exchange(entry.m_iconId, number.ulVal) != number.ulVal;
      });
    }
    case EXTRAENUMDATA_OBJECT: {
      CComVariant object;
      const HRESULT converted = VariantChangeType(&object, &value, 0, VT_UNKNOWN);
      if (!IsValidIndex(index)) return E_INVALIDARG;
      if (FAILED(converted)) return converted;
      CComPtr<IUnknown> kept(object.punkVal);
      return ChangeEntry(index, [&](CCvarEnumValue& entry) {
        std::swap(entry.m_object.p, kept.p);
        return entry.m_object.p != kept.p;
      });
    }
    case EXTRAENUMDATA_VARIANT:
      return ExchangeVariant(index, CCvarEnumValue::kValueSlot, value);
    case EXTRAENUMDATA_EXTRA1:
      return ExchangeVariant(index, CCvarEnumValue::kFirstExtraSlot, value);
    case EXTRAENUMDATA_CHILDPAGE:
      return ExchangeVariant(index, CCvarEnumValue::kChildPageSlot, value);
    case EXTRAENUMDATA_EXTRA3:
      return ExchangeVariant(index, CCvarEnumValue::kLastExtraSlot, value);
  }
  return E_INVALIDARG;
}

HRESULT CCvarEnum::GetExtraEnumData(int index, EXTRAENUMDATA kind, VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  const ScopedLock guard(m_lock);
  if (!m_table.IsValid(index)) return E_INVALIDARG;
  const CCvarEnumValue& entry = m_table.At(index);
  const CComVariant& own = entry.m_variants[CCvarEnumValue::kValueSlot];
  const CComVariant& first = entry.m_variants[CCvarEnumValue::kFirstExtraSlot];
  switch (kind) {
    case EXTRAENUMDATA_ICONID:
      return CopyVariantOut(CComVariant(static_cast<int>(entry.m_iconId)), value);
    case EXTRAENUMDATA_OBJECT:
      return CopyVariantOut(CComVariant(entry.m_object.p), value);
    case EXTRAENUMDATA_VARIANT:
      return CopyVariantOut(own.vt != VT_EMPTY ? own : first, value);
    case EXTRAENUMDATA_EXTRA1:
      return CopyVariantOut(first, value);
    case EXTRAENUMDATA_CHILDPAGE:
      return CopyVariantOut(entry.m_variants[CCvarEnumValue::kChildPageSlot], value);
    case EXTRAENUMDATA_EXTRA3:
      return CopyVariantOut(entry.m_variants[CCvarEnumValue::kLastExtraSlot], value);
  }
  return E_INVALIDARG;
}

// Values

// Runs under the lock.
void CCvarEnum::StoreRequest(int index) {
  m_pendingText.Empty();
  if (m_requested != index) {
    m_requested = index;
    AddPending(NOTIFY_REQUESTED);
  }
  if (!HasFlag(CVARFLAG_D) || m_table.IsEnabled(index)) Adapt();
}

// Runs under the lock.
void CCvarEnum::Adapt() {
  if (m_pendingText.Length() > 0) {
    const int index = m_table.Find(m_pendingText.View());
    if (index != EnumTable::kNone) {
      m_requested = index;
      m_pendingText.Empty();
    }
  }
  const int adapted = m_table.Adapted(m_requested, HasFlag(CVARFLAG_WRAPPING));
  if (m_adapted == adapted) return;
  m_adapted = adapted;
  AddPending(NOTIFY_VALUE);
}

HRESULT CCvarEnum::UpdateAdaptedValueAndNotifyWorker() {
  {
    const ScopedLock guard(m_lock);
    Adapt();
  }
  return NotifyClients(NOTIFY_ALL_CLIENTS, false);
}

HRESULT CCvarEnum::SetRequestedValue(int index, bool force) {
  if (!force && HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
  {
    const ScopedLock guard(m_lock);
    StoreRequest(index);
  }
  return NotifyClients(NOTIFY_ALL_CLIENTS, false);
}

HRESULT CCvarEnum::SetRequestedValueFromString(const wchar_t* text, bool force) {
  {
    const ScopedLock guard(m_lock);
    const int index = m_table.Find(TextOrEmpty(text));
    if (index == EnumTable::kNone) {
      if (m_table.Count() > 0) return E_INVALIDARG;
      if (!cvars::SameTextAnyCase(TextOrEmpty(text), L"undef")) m_pendingText = text;
      return S_OK;
    }
    if (!force && HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
    StoreRequest(index);
  }
  return NotifyClients(NOTIFY_ALL_CLIENTS, false);
}

HRESULT CCvarEnum::GetAdaptedValueNorm(double* position) {
  if (position == nullptr) return E_POINTER;
  const int last = MaxValueIndex();
  *position = m_adapted / (last < 0 ? 1.0 : static_cast<double>(last));
  return S_OK;
}

HRESULT CCvarEnum::SetRequestedValueNorm(double position) {
  int index = 0;
  const HRESULT rounded = cvars::IndexAt(position, 0, MaxValueIndex(), &index);
  return FAILED(rounded) ? rounded : SetRequestedValue(index);
}

HRESULT CCvarEnum::Increment(int steps) {
  const std::int64_t count = HasFlag(CVARFLAG_REVERSEINCREMENT) ? -std::int64_t{steps} : steps;
  int index = m_requested;
  {
    const ScopedLock guard(m_lock);
    if (m_table.Count() > 0) {
      index = m_table.Stepped(m_adapted, count, HasFlag(CVARFLAG_WRAPPING));
    }
  }
  return SetRequestedValue(index);
}

HRESULT CCvarEnum::get_Value(VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  CComBSTR text;
  const HRESULT copied = CopyAdaptedSpelling(Spelling::kAutomation, &text);
  if (FAILED(copied)) return copied;
  (void)VariantClear(value);
  value->vt = VT_BSTR;
  value->bstrVal = text.Detach();
  return S_OK;
}

HRESULT CCvarEnum::put_Value(VARIANT value) {
  if (value.vt == VT_BSTR) return SetRequestedValueFromString(value.bstrVal);
  CComVariant copy;
  HRESULT result = VariantCopyInd(&copy, &value);
  if (FAILED(result)) return result;
  if (copy.vt == VT_BSTR) return SetRequestedValueFromString(copy.bstrVal);
  result = copy.ChangeType(VT_I4);
  return FAILED(result) ? result : SetRequestedValue(copy.lVal);
}
