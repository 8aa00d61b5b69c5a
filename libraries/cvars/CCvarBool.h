#pragma once

#include <string>
#include <vector>

#include "CvarImpl.h"
#include "IVorCvarBool.h"

/// A switch with two states, 0 for false and 1 for true, each with a screen and a remote text.
///
/// A state may be disabled, which narrows the range to the other one. Texts, range and value are
/// not locked: callers serialise their changes of one cvar.
class CVARS_API CCvarBool : public IVorCvarImpl<CCvarBool, IVorCvarBool, int> {
  using Base = IVorCvarImpl<CCvarBool, IVorCvarBool, int>;

 public:
  static constexpr const wchar_t* kTypeName = L"Bool";

  using Base::GetAdaptedValue;
  using Base::GetAdaptedValueNorm;
  using Base::GetRequestedValue;

  /// Names and configures the cvar and requests its default; tells nobody.
  ///
  /// @param name      copied; "name" or "name|remote name"; null reads as empty.
  /// @param values    copied; "false text,true text", upper-cased for remote commands; null reads
  /// as
  ///                  empty.
  /// @param guiHints  copied; null keeps the hints.
  void Initialize(const wchar_t* name, const wchar_t* values, int defaultValue, CVARFLAGS flags,
                  const wchar_t* guiHints, unsigned int helpStringID,
                  CVARREPLICATIONFLAGS replicationFlags);

  /// Enables a state, or disables it and so enables the other one only. Sets NOTIFY_RANGE, and
  /// NOTIFY_VALUE when the adapted value moves.
  /// @retval E_INVALIDARG  neither 0 nor 1
  /// @retval S_FALSE       no change
  HRESULT Enable(int state, bool enable);
  /// Sets NOTIFY_ATTRIBUTES. @retval S_FALSE  no change
  HRESULT SetDefaultValue(int value);
  /// The state after another one. Behind the highest comes 0 even when that is disabled; that is
  /// meant, and the adaptation brings it back into the range.
  int NextValue(int value) const { return value < m_highest ? value + 1 : 0; }
  int PrevValue(int value) const { return value > m_lowest ? value - 1 : m_highest.Get(); }

  // IVorCvarBool

  HRESULT GetAdaptedValue(int* value) override { return Get(value); }
  HRESULT GetDefaultValue(int* value) override { return Base::GetDefaultValue(value); }
  HRESULT GetRequestedValue(int* value) override { return Base::GetRequestedValue(value); }
  /// Stores a request, 1 for every number but 0, and clamps it to the enabled states. Sets
  /// NOTIFY_REQUESTED, and NOTIFY_VALUE when the adapted value moves.
  /// @retval E_ACCESSDENIED  read-only
  HRESULT SetRequestedValue(int value) override;
  HRESULT Set() override { return SetRequestedValue(1); }
  HRESULT Clear() override { return SetRequestedValue(0); }
  HRESULT Get(int* value) override;
  HRESULT Enable(VARIANT state) override { return Enable(StateOf(state), true); }
  HRESULT Disable(VARIANT state) override { return Enable(StateOf(state), false); }
  HRESULT IsEnabled(VARIANT state, int* enabled) override;
  /// @retval E_INVALIDARG  neither 0 nor 1, or `enabled` is null
  HRESULT IsEnabled(int state, int* enabled) override;

  // The common interface

  /// 0.0 or 1.0.
  HRESULT GetAdaptedValueNorm(double* position) override;
  /// @retval E_INVALIDARG  the value would not be finite
  HRESULT SetRequestedValueNorm(double position) override;
  HRESULT GetAdaptedValueStringScreen(BSTR* text) override;
  HRESULT GetAdaptedValueStringRemote(BSTR* text) override;
  /// "True" or "False".
  HRESULT GetAdaptedValueStringAutomation(BSTR* text) override;
  /// Requests every state up to the highest enabled one that has the text, in any case. A text that
  /// no state has changes nothing.
  /// @retval S_OK  in every case
  HRESULT SetRequestedValueFromString(const wchar_t* text) override;
  /// Every number of steps but 0 requests the other state.
  HRESULT Increment(int steps) override;
  HRESULT SetToDefault() override { return SetRequestedValue(m_default); }
  HRESULT IsDefault(int* isDefault) override;
  HRESULT get_IsValueAdapted(int* adapted) override;
  /// VT_I4, 0 or 1.
  HRESULT get_Value(VARIANT* value) override;
  /// Requests the state that has a text, or what the variant is as a boolean.
  HRESULT put_Value(VARIANT value) override;
  /// The same text whatever the states are called.
  HRESULT get_Range(BSTR* text) override;
  HRESULT get_Signature(BSTR* text) override;

  HRESULT UpdateAdaptedValueAndNotify() override;

 protected:
  ~CCvarBool() = default;

  HRESULT FillCvarPropertiesMap(cvars::PropertiesMap& map) override;

 private:
  using Texts = std::vector<std::wstring>;

  static std::wstring_view TextOf(const Texts& texts, int state) noexcept;
  bool HasText(int state, std::wstring_view text) const noexcept;
  int StateOf(const VARIANT& state) const;

  Texts m_screenTexts;
  Texts m_remoteTexts;
  cvars::Relaxed<int> m_lowest{0};
  cvars::Relaxed<int> m_highest{1};
};

extern template class IVorCvarImpl<CCvarBool, IVorCvarBool, int>;
