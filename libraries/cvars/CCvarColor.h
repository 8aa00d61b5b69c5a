#pragma once

#include "CvarImpl.h"
#include "IVorCvarColor.h"

/// A colour, 0x00BBGGRR: red in the lowest byte, the top byte zero.
class CVARS_API CCvarColor : public IVorCvarImpl<CCvarColor, IVorCvarColor, int> {
  using Base = IVorCvarImpl<CCvarColor, IVorCvarColor, int>;

 public:
  static constexpr const wchar_t* kTypeName = L"Color";

  using Base::GetAdaptedValue;
  using Base::GetAdaptedValueNorm;
  using Base::GetRequestedValue;

  /// Names and configures the cvar and requests its default; tells nobody.
  ///
  /// @param name      copied; "name" or "name|remote name"; null reads as empty.
  /// @param guiHints  copied; null keeps the hints.
  void Initialize(const wchar_t* name, int defaultValue, CVARFLAGS flags, const wchar_t* guiHints,
                  unsigned int helpStringID, CVARREPLICATIONFLAGS replicationFlags);

  // IVorCvarColor

  HRESULT GetAdaptedValue(int* value) override { return Base::GetAdaptedValue(value); }
  HRESULT GetDefaultValue(int* value) override { return Base::GetDefaultValue(value); }
  HRESULT GetRequestedValue(int* value) override { return Base::GetRequestedValue(value); }
  /// Stores a request and clamps it to the range. Sets NOTIFY_REQUESTED, and NOTIFY_VALUE when the
  /// adapted value moves.
  /// @retval E_ACCESSDENIED  read-only
  HRESULT SetRequestedValue(int value) override;
  /// "%06x..%06x" of the bounds.
  HRESULT GetRangeStringRemote(BSTR* text) override;
  HRESULT GetMin(int* value) override;
  HRESULT GetMax(int* value) override;

  // The common interface

  HRESULT GetAdaptedValueNorm(double* position) override {
    return Base::GetAdaptedValueNorm(position, m_adapted, m_lowest, m_highest);
  }
  /// @retval E_INVALIDARG  the value would not be finite
  HRESULT SetRequestedValueNorm(double position) override;
  /// Six hexadecimal digits.
  HRESULT GetAdaptedValueStringScreen(BSTR* text) override;
  HRESULT GetAdaptedValueStringRemote(BSTR* text) override;
  /// "RGB(red,green,blue)" in decimal.
  HRESULT GetAdaptedValueStringAutomation(BSTR* text) override;
  /// Reads a hexadecimal number. @retval E_INVALIDARG  the text does not begin with one
  HRESULT SetRequestedValueFromString(const wchar_t* text) override;
  /// Adds to the whole number, so that a step of 1 raises red and carries into green; that is
  /// meant. CVARFLAG_REVERSEINCREMENT turns the direction.
  HRESULT Increment(int steps) override;
  HRESULT SetToDefault() override { return SetRequestedValue(m_default); }
  /// VT_I4.
  HRESULT get_Value(VARIANT* value) override;
  HRESULT put_Value(VARIANT value) override;
  HRESULT get_Range(BSTR* text) override;
  /// Has no field for the request, other than that of other cvars.
  HRESULT get_Signature(BSTR* text) override;

  HRESULT UpdateAdaptedValueAndNotify() override;
  /// Sets NOTIFY_ATTRIBUTES. @retval S_FALSE  no change
  HRESULT SetDefaultValue(int value);

 protected:
  ~CCvarColor() = default;

  HRESULT FillCvarPropertiesMap(cvars::PropertiesMap& map) override;

  cvars::Relaxed<int> m_highest{0xFFFFFF};
  cvars::Relaxed<int> m_lowest{0};
};

extern template class IVorCvarImpl<CCvarColor, IVorCvarColor, int>;
