#pragma once

#include <string_view>

#include "CvarBoundedTextImpl.h"
#include "IVorCvarObjectName.h"

/// The name of an object, such as a trace or a channel, in its three spellings.
///
/// The values are always the joined text screen|automation|remote. A request gives the screen name
/// alone or all three; the automation and the remote name are reduced to ASCII letters and digits.
class CVARS_API CCvarObjectName : public CvarBoundedTextImpl<CCvarObjectName, IVorCvarObjectName> {
 public:
  static constexpr const wchar_t* kTypeName = L"ObjectName";

  using CvarBoundedTextImpl::SetRequestedValue;

  /// @param text   copied; "screen" or "screen|automation|remote"; null reads as empty.
  /// @param force  writes a read-only cvar too.
  /// @retval E_ACCESSDENIED  read-only and not forced
  /// @retval E_INVALIDARG    another number of names; a message box says so, nothing changes
  HRESULT SetRequestedValue(const wchar_t* text, bool force) override;
  /// @retval E_INVALIDARG  neither one name nor three; nothing changes
  HRESULT SetDefaultValue(const wchar_t* text) override;

  HRESULT SetRequestedValueStringScreen(const wchar_t* name) override;
  HRESULT SetRequestedValueStringAutomation(const wchar_t* name) override;
  HRESULT SetRequestedValueStringRemote(const wchar_t* name) override;
  HRESULT GetAdaptedValueNamesJoined(BSTR* names) override { return GetAdaptedValue(names); }

  /// One name of the adapted value, by its position; empty when the cut text has no such name.
  HRESULT GetAdaptedValueStringScreen(BSTR* name) override;
  HRESULT GetAdaptedValueStringRemote(BSTR* name) override;
  CComBSTR GetAdaptedValueStringScreen();
  CComBSTR GetAdaptedValueStringRemote();
  CComBSTR GetAdaptedValueStringAutomation();
  /// The joined text, as scripts read the value.
  using CvarBoundedTextImpl::GetAdaptedValueStringAutomation;

 protected:
  CCvarObjectName();
  ~CCvarObjectName() = default;

  CComBSTR DefaultFrom(const wchar_t* text) override;
  HRESULT FillCvarPropertiesMap(cvars::PropertiesMap& map) override;

 private:
  HRESULT ReplaceName(std::size_t position, const wchar_t* name);
  CComBSTR AdaptedName(std::size_t position) const;
  void ShowRefusal(std::wstring_view text);
};

extern template class IVorCvarImpl<CCvarObjectName, IVorCvarObjectName, CComBSTR>;
extern template class CvarTextImpl<CCvarObjectName, IVorCvarObjectName>;
extern template class CvarBoundedTextImpl<CCvarObjectName, IVorCvarObjectName>;
