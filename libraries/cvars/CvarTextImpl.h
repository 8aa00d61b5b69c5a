#pragma once

#include <string>
#include <string_view>

#include "CvarImpl.h"

/// What the cvars of a text share: values kept under the object lock, requests compared by their
/// characters, and texts as they are for every audience.
///
/// @tparam T          CCvarString, CCvarObjectName or CCvarFileName.
/// @tparam Interface  the typed interface, which has the getters of the three values.
template <class T, class Interface>
class CVARS_API CvarTextImpl : public IVorCvarImpl<T, Interface, CComBSTR> {
  using Base = IVorCvarImpl<T, Interface, CComBSTR>;

 public:
  using Base::GetAdaptedValue;
  using Base::GetAdaptedValueNorm;
  using Base::GetDefaultValue;
  using Base::GetRequestedValue;

  HRESULT GetAdaptedValue(BSTR* text) override { return CopyField(this->m_adapted, text); }
  HRESULT GetDefaultValue(BSTR* text) override { return CopyField(this->m_default, text); }
  HRESULT GetRequestedValue(BSTR* text) override { return CopyField(this->m_requested, text); }
  HRESULT SetRequestedValue(const wchar_t* text) override { return SetRequestedValue(text, false); }
  /// Stores a request and adapts it. Sets NOTIFY_REQUESTED when the request is another one, and
  /// NOTIFY_VALUE when the adapted value moves; listeners of what is pending are told in every
  /// case.
  ///
  /// @param text   copied; null gives a null text.
  /// @param force  writes a read-only cvar too.
  /// @retval E_ACCESSDENIED  read-only and not forced
  /// @return otherwise what the listeners answered
  virtual HRESULT SetRequestedValue(const wchar_t* text, bool force);
  /// Sets NOTIFY_ATTRIBUTES. @param text  copied.  @retval S_FALSE  no change
  virtual HRESULT SetDefaultValue(const wchar_t* text);

  HRESULT SetToDefault() override;
  HRESULT SetRequestedValueFromString(const wchar_t* text) override {
    return this->SetRequestedValue(text);
  }
  HRESULT GetAdaptedValueStringScreen(BSTR* text) override { return this->GetAdaptedValue(text); }
  HRESULT GetAdaptedValueStringRemote(BSTR* text) override { return this->GetAdaptedValue(text); }
  /// VT_BSTR.
  HRESULT get_Value(VARIANT* value) override;
  /// @retval E_INVALIDARG  not a VT_BSTR
  HRESULT put_Value(VARIANT value) override;
  HRESULT GetAdaptedValueNorm(double* position) override;
  HRESULT SetRequestedValueNorm(double) override { return E_NOTIMPL; }
  HRESULT Increment(int) override { return E_NOTIMPL; }

  HRESULT UpdateAdaptedValueAndNotify() override;

 protected:
  CvarTextImpl() = default;
  ~CvarTextImpl() = default;

  /// The adapted text of a request; called under the object lock.
  virtual CComBSTR Fit(const CComBSTR& request) = 0;

  /// Stores a request and marks NOTIFY_REQUESTED when it is another one.
  void StoreRequested(const CComBSTR& text);
  /// Stores a default and marks NOTIFY_ATTRIBUTES when it is another one.
  /// @return whether it is another one
  bool StoreDefault(const CComBSTR& text);

  HRESULT CopyField(const CComBSTR& field, BSTR* text) const;

  HRESULT FillCvarPropertiesMap(cvars::PropertiesMap& map) override;
};
