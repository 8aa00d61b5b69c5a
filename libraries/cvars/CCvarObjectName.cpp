#include "CCvarObjectName.h"

#include <optional>
#include <string>

#include "CComPtr.h"
#include "CEnumValueString.h"
#include "CvarBoundedTextImplMembers.h"
#include "DeveloperEvents.h"
#include "IVorMessageBox.h"
#include "TextPieces.h"
#include "platform/Components.h"

template class IVorCvarImpl<CCvarObjectName, IVorCvarObjectName, CComBSTR>;
template class CvarTextImpl<CCvarObjectName, IVorCvarObjectName>;
template class CvarBoundedTextImpl<CCvarObjectName, IVorCvarObjectName>;

namespace {

constexpr std::size_t kScreen = 0;
constexpr std::size_t kAutomation = 1;
constexpr std::size_t kRemote = 2;
constexpr std::size_t kNames = 3;

// What scripts and remote commands can name: ASCII letters and digits.
std::wstring AlphanumericOnly(std::wstring_view text) {
  std::wstring kept;
  for (const wchar_t c : text) {
    if ((c >= L'0' && c <= L'9') || (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z')) {
      kept.push_back(c);
    }
  }
  return kept;
}

// The joined form of one name or three; nothing for any other number of names.
std::optional<CComBSTR> JoinedNames(std::wstring_view text) {
  const std::size_t count = cvars::SplitText(text, CEnumValueString::kSeparator).size();
  if (count != 1 && count != kNames) return std::nullopt;
  CEnumValueString names(text, false);
  names.SetAutomation(AlphanumericOnly(names.Automation().View()));
  names.SetRemote(AlphanumericOnly(names.Remote().View()));
  return CComBSTR(names.Joined());
}

}  // namespace

CCvarObjectName::CCvarObjectName() : CvarBoundedTextImpl(cvars::kUnlimitedLength) {}

HRESULT CCvarObjectName::SetRequestedValue(const wchar_t* text, bool force) {
  if (!force && HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
  const std::optional<CComBSTR> joined = JoinedNames(cvars::TextOrEmpty(text));
  if (!joined) {
    ShowRefusal(cvars::TextOrEmpty(text));
    return E_INVALIDARG;
  }
  StoreRequested(*joined);
  return UpdateAdaptedValueAndNotify();
}

HRESULT CCvarObjectName::SetDefaultValue(const wchar_t* text) {
  const std::optional<CComBSTR> joined = JoinedNames(cvars::TextOrEmpty(text));
  return joined ? CvarBoundedTextImpl::SetDefaultValue(*joined) : E_INVALIDARG;
}

// A default that is no name leaves the old one.
CComBSTR CCvarObjectName::DefaultFrom(const wchar_t* text) {
  return JoinedNames(cvars::TextOrEmpty(text)).value_or(ReadField(m_default));
}

HRESULT CCvarObjectName::SetRequestedValueStringScreen(const wchar_t* name) {
  return ReplaceName(kScreen, name);
}

HRESULT CCvarObjectName::SetRequestedValueStringAutomation(const wchar_t* name) {
  return ReplaceName(kAutomation, name);
}

HRESULT CCvarObjectName::SetRequestedValueStringRemote(const wchar_t* name) {
  return ReplaceName(kRemote, name);
}

HRESULT CCvarObjectName::ReplaceName(std::size_t position, const wchar_t* name) {
  const CComBSTR requested = ReadField(m_requested);
  std::vector<std::wstring_view> names =
      cvars::SplitText(requested.View(), CEnumValueString::kSeparator);
  names.resize(kNames);
  names[position] = cvars::TextOrEmpty(name);
  cvars::TextJoiner joined(CEnumValueString::kSeparator);
  for (const std::wstring_view piece : names) joined.Add(piece);
  return SetRequestedValue(joined.Text().c_str());
}

CComBSTR CCvarObjectName::AdaptedName(std::size_t position) const {
  const CComBSTR adapted = ReadField(m_adapted);
  const std::vector<std::wstring_view> names =
      cvars::SplitText(adapted.View(), CEnumValueString::kSeparator);
  return CComBSTR(position < names.size() ? names[position] : std::wstring_view());
}

HRESULT CCvarObjectName::GetAdaptedValueStringScreen(BSTR* name) {
  return name == nullptr ? E_POINTER : cvars::CopyOut(AdaptedName(kScreen).View(), name);
}

HRESULT CCvarObjectName::GetAdaptedValueStringRemote(BSTR* name) {
  return name == nullptr ? E_POINTER : cvars::CopyOut(AdaptedName(kRemote).View(), name);
}

CComBSTR CCvarObjectName::GetAdaptedValueStringScreen() { return AdaptedName(kScreen); }

CComBSTR CCvarObjectName::GetAdaptedValueStringRemote() { return AdaptedName(kRemote); }

CComBSTR CCvarObjectName::GetAdaptedValueStringAutomation() { return AdaptedName(kAutomation); }

void CCvarObjectName::ShowRefusal(std::wstring_view text) {
  CComPtr<IVorMessageBox> box;
  if (FAILED(cvars::platform::CreateComponent(L"Vortana.MessageBox", IID_IVorMessageBox,
                                              reinterpret_cast<void**>(&box)))) {
    return;
  }
  CComPtr<IUnknown> parent;
  (void)get_Parent(&parent);  // without a parent the bag has no name
  const std::wstring message =
      L"Invalid value specified: " + std::wstring(text) + L"\n Current BagName: " +
      cvars::BagName(parent) +
      L"\nYou must specify the screen name only, or the the three names separated by "
      L"|(screen|automation|remote)";
  CComBSTR reply;
  // The refusal stands whatever the user replies.
  (void)box->ShowMessage(message.c_str(), L"", 0, 1, L"OK", L"CvarObjectName::SetRequestedValue",
                         &reply);
}

HRESULT CCvarObjectName::FillCvarPropertiesMap(cvars::PropertiesMap& map) {
  const HRESULT filled = CvarBoundedTextImpl::FillCvarPropertiesMap(map);
  if (FAILED(filled)) return filled;
  map.SetText(L"AdaptedValueStringScreen", AdaptedName(kScreen).View());
  return S_OK;
}
