#pragma once

#include <string>
#include <string_view>

#include "CvarImpl.h"
#include "NumericText.h"
#include "NumericUnit.h"
#include "SignatureText.h"

namespace cvars {

/// The variant type that carries a number of a cvar.
template <class Number>
inline constexpr VARTYPE kNumberVariantType = VT_R8;
template <>
inline constexpr VARTYPE kNumberVariantType<int> = VT_I4;
template <>
inline constexpr VARTYPE kNumberVariantType<std::int64_t> = VT_I8;

/// What every cvar of a number shares: range fields, unit, texts, variants, signature, replication.
///
/// The value fields are not locked: callers serialise their changes of one cvar.
///
/// @tparam T               the concrete class.
/// @tparam Interface       the interface that the class offers.
/// @tparam TypedInterface  the interface of the number type; Interface or a base of it.
/// @tparam Number          double, int or std::int64_t.
template <class T, class Interface, class TypedInterface, class Number>
class CVARS_API NumericCvar : public IVorCvarImpl<T, Interface, Number> {
  using Base = IVorCvarImpl<T, Interface, Number>;

 public:
  using Base::GetAdaptedValue;
  using Base::GetRequestedValue;

  void* FindInterface(REFIID iid) override {
    if (iid == InterfaceId<TypedInterface>::value) return static_cast<TypedInterface*>(this);
    return Base::FindInterface(iid);
  }

  // The typed interface ---------------------------------------------------------------------------

  /// Runs a late update, then reads the adapted value.
  HRESULT GetAdaptedValue(Number* value) override {
    if (value == nullptr) return E_POINTER;
    this->PerformLateUpdate();
    *value = this->GetAdaptedValue();
    return S_OK;
  }
  HRESULT GetDefaultValue(Number* value) override { return Base::GetDefaultValue(value); }
  HRESULT GetRequestedValue(Number* value) override { return Base::GetRequestedValue(value); }
  HRESULT GetGrainValue(Number* value) override { return Read(GetGrain(), value); }
  HRESULT GetMaxValue(Number* value) override { return Read(GetMax(), value); }
  HRESULT GetMinValue(Number* value) override { return Read(GetMin(), value); }
  HRESULT GetUnitRemoteString(BSTR* unit) override { return CopyOut(m_unit.Remote(), unit); }
  HRESULT SetRequestedValue(Number value) override { return SetRequestedValue(value, false); }
  /// Kept for the classes that step coarsely; the plain numbers only store it.
  HRESULT get_CoarseGrain(double* grain) override { return Read(m_coarseGrain.Get(), grain); }
  HRESULT put_CoarseGrain(double grain) override {
    m_coarseGrain = grain;
    return S_OK;
  }

  // The common interface --------------------------------------------------------------------------

  HRESULT GetAdaptedValueStringScreen(BSTR* text) override;
  HRESULT GetAdaptedValueStringRemote(BSTR* text) override;
  HRESULT GetAdaptedValueStringRemoteNoUnit(BSTR* text) override;
  /// Reads a remote text.
  HRESULT SetRequestedValueFromString(const wchar_t* text) override {
    return this->SetRequestedValueFromStringRemote(text);
  }
  HRESULT SetRequestedValueFromStringScreen(const wchar_t* text) override;
  HRESULT SetRequestedValueFromStringRemote(const wchar_t* text) override;
  /// Forgets the coarse grain and requests the default.
  HRESULT SetToDefault() override;
  HRESULT SetToMin() override;
  HRESULT SetToMax() override;
  /// VT_R8, VT_I4 or VT_I8, as the number is.
  HRESULT get_Value(VARIANT* value) override;
  /// Requests a number, or what a screen text says when the variant does not convert to one.
  HRESULT put_Value(VARIANT value) override;
  /// "From <min> to <max> step <grain>".
  HRESULT get_Range(BSTR* text) override;
  HRESULT get_Signature(BSTR* text) override;
  HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) override;

  // Class side ------------------------------------------------------------------------------------

  HRESULT UpdateAdaptedValueAndNotify() override {
    // Asked of T, whose own adaptation the compiler then takes for the likely one and inlines.
    if (static_cast<T*>(this)->UpdateAdaptedValue()) this->AddPending(NOTIFY_VALUE);
    return this->NotifyClients(NOTIFY_ALL_CLIENTS, false);
  }
  /// As UpdateAdaptedValueAndNotify; sets NOTIFY_RANGE.
  virtual HRESULT UpdateAdaptedValueAndNotifyRange() {
    this->AddPending(NOTIFY_RANGE);
    return this->UpdateAdaptedValueAndNotify();
  }
  /// Fits the request to the range. @return whether the adapted value changed
  virtual bool UpdateAdaptedValue() = 0;

  /// Stores a request and adapts it. Sets NOTIFY_REQUESTED, and NOTIFY_VALUE when the adapted value
  /// moves.
  ///
  /// @param force  writes a read-only cvar too.
  /// @retval E_INVALIDARG    not finite
  /// @retval E_ACCESSDENIED  read-only and not forced
  /// @retval S_OK            also for the request that is there already, which tells nobody
  /// @return otherwise what the listeners answered
  virtual HRESULT SetRequestedValue(Number value, bool force) = 0;
  virtual Number GetRequested() { return this->m_requested; }
  virtual Number GetMax() { return m_max; }
  virtual Number GetMin() { return m_min; }
  virtual Number GetGrain() { return m_grain; }
  /// Sets NOTIFY_ATTRIBUTES. @retval E_INVALIDARG  not finite  @retval S_FALSE  no change
  virtual HRESULT SetDefaultValue(Number value);
  /// Sets NOTIFY_UNIT when the unit changes.
  /// @retval E_INVALIDARG  not a valid unit, or nobody can tell
  virtual HRESULT SetUnitRemoteString(const wchar_t* unit);
  virtual std::wstring GetUnitStringRemote() { return std::wstring(m_unit.Remote()); }
  virtual std::wstring GetUnitStringScreen() { return std::wstring(m_unit.Screen()); }

 protected:
  NumericCvar(Number min, Number max) : m_max(max), m_min(min) {}
  ~NumericCvar() = default;

  /// Requests the number that a text says. @param text  borrowed; what `value` was read from
  virtual HRESULT RequestRead(const wchar_t* text, double value) = 0;
  /// Writes the adapted value with a unit.
  virtual HRESULT FormatAdapted(std::wstring_view unit, NumberStyle style, BSTR* text) = 0;
  /// Takes over the range of a source; what cannot be read or taken stays as it is.
  virtual void CopyRange(TypedInterface& source) = 0;

  /// The steps of a range change that do not touch the range: unit, hints, help and default.
  void SetRangeAttributes(Number defaultValue, const wchar_t* unit, const wchar_t* guiHints,
                          unsigned int helpStringID, bool setDefault);
  /// The common end of Initialize, after the range: request, replication flags, flags.
  void FinishInitialize(Number defaultValue, CVARFLAGS flags,
                        CVARREPLICATIONFLAGS replicationFlags);

  HRESULT FillCvarPropertiesMap(PropertiesMap& map) override;

  /// The signature as far as it is the same whatever bounds the value: up to the default.
  SignatureText BeginSignature();
  /// Adds unit and flags to a signature and hands it out.
  HRESULT EndSignature(SignatureText signature, BSTR* text);

  template <class Field>
  static HRESULT Read(Field field, Field* value) {
    if (value == nullptr) return E_POINTER;
    *value = field;
    return S_OK;
  }

  Relaxed<Number> m_grain{Number{1}};
  Relaxed<Number> m_max;
  Relaxed<Number> m_min;
  NumericUnit m_unit;
  Relaxed<double> m_coarseGrain{0.0};
};

}  // namespace cvars
