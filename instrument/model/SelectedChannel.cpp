#include "instrument/model/SelectedChannel.h"

#include <string>
#include <string_view>

namespace cvars::model {
namespace {

std::wstring InCapitals(std::wstring_view text) {
  std::wstring capitals(text);
  for (wchar_t& character : capitals) character = UpperCase(character);
  return capitals;
}

HRESULT Give(const std::wstring& name, BSTR* text) {
  if (text == nullptr) return E_POINTER;
  *text = SysAllocString(name.c_str());
  return *text == nullptr ? E_OUTOFMEMORY : S_OK;
}

}  // namespace

void SelectedChannel::Offer(std::vector<CComPtr<CCvarBag>> channels) {
  m_channels = std::move(channels);
  (void)SetToDefault();
}

HRESULT SelectedChannel::SetRequestedValueFromString(const wchar_t* text) {
  const std::wstring wanted = InCapitals(text == nullptr ? L"" : text);
  for (const CComPtr<CCvarBag>& channel : m_channels) {
    if (InCapitals(channel->Name()) == wanted) {
      return put_Value(CComVariant(static_cast<IDispatch*>(channel.p)));
    }
  }
  return E_INVALIDARG;
}

std::wstring SelectedChannel::Name() {
  CComPtr<IDispatch> selected;
  if (GetTypedInterface(&selected) != S_OK) return {};
  for (const CComPtr<CCvarBag>& channel : m_channels) {
    if (static_cast<IDispatch*>(channel.p) == selected.p) return channel->Name();
  }
  return {};
}

HRESULT SelectedChannel::GetAdaptedValueStringScreen(BSTR* text) { return Give(Name(), text); }

HRESULT SelectedChannel::GetAdaptedValueStringRemote(BSTR* text) {
  return Give(InCapitals(Name()), text);
}

HRESULT SelectedChannel::SetToDefault() {
  if (m_channels.empty()) return CCvarObject<IDispatch>::SetToDefault();
  return put_Value(CComVariant(static_cast<IDispatch*>(m_channels.front().p)));
}

}  // namespace cvars::model
