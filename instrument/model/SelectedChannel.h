#pragma once

#include <vector>

#include "Cvars.h"

namespace cvars::model {

/// The channel that the front panel's knobs turn: an object cvar that holds the channel's bag and
/// has the bag's name as its text.
class SelectedChannel : public CCvarObject<IDispatch> {
 public:
  /// @param channels  the bags to choose from; the first is the default and is selected.
  void Offer(std::vector<CComPtr<CCvarBag>> channels);

  /// Selects the channel whose bag has the name, in any case.
  /// @retval E_INVALIDARG  no channel has it
  HRESULT SetRequestedValueFromString(const wchar_t* text) override;
  HRESULT GetAdaptedValueStringScreen(BSTR* text) override;
  HRESULT GetAdaptedValueStringRemote(BSTR* text) override;
  HRESULT SetToDefault() override;

 protected:
  SelectedChannel() = default;
  ~SelectedChannel() = default;

 private:
  /// Name of the selected channel, empty when another object or none is held.
  std::wstring Name();

  std::vector<CComPtr<CCvarBag>> m_channels;
};

}  // namespace cvars::model
