#pragma once

#include <cmath>
#include <cstdint>
#include <type_traits>

#include "CComBSTR.h"
#include "CComSafeArray.h"
#include "CComVariant.h"
#include "CVorComBSTR.h"
#include "CvarCore.h"
#include "CvarText.h"
#include "IVorCvar.h"
#include "IVorCvarEventSink.h"

namespace cvars {

/// The variant that carries a value of a cvar.
inline CComVariant ToVariant(double value) { return CComVariant(value); }
inline CComVariant ToVariant(int value) { return CComVariant(value); }
inline CComVariant ToVariant(std::int64_t value) {
  CComVariant variant;
  variant.vt = VT_I8;
  variant.llVal = value;
  return variant;
}
inline CComVariant ToVariant(unsigned int value) {
  CComVariant variant;
  variant.vt = VT_UI4;
  variant.ulVal = value;
  return variant;
}
inline CComVariant ToVariant(const CComBSTR& value) { return CComVariant(value); }
CVARS_API CComVariant ToVariant(const CComSafeArray<VARIANT>& value);
/// A cvar without a value.
inline CComVariant ToVariant(char) { return CComVariant(); }

/// Says whether two values of a cvar are the same.
template <class ValueType>
bool SameValue(const ValueType& a, const ValueType& b) {
  return a == b;
}
/// Arrays are the same when their dimensions, extents and elements are; lower bounds do not count.
CVARS_API bool SameValue(const CComSafeArray<VARIANT>& a, const CComSafeArray<VARIANT>& b);

/// Getters of the three values by pointer, for an interface that has none.
///
/// They stand apart from the rest of the template base because none of them can say whether it
/// overrides an operation of the interface: that depends on the interface.
///
/// @tparam Impl  the template base on top; it copies the values out.
template <class Impl, class Interface, class ValueType>
class CVARS_API ValueGetters : public Interface {
 public:
  HRESULT GetAdaptedValue(ValueType* value) { return Values().CopyAdapted(value); }
  HRESULT GetDefaultValue(ValueType* value) { return Values().CopyDefault(value); }
  HRESULT GetRequestedValue(ValueType* value) { return Values().CopyRequested(value); }

 protected:
  ~ValueGetters() = default;

 private:
  const Impl& Values() const { return static_cast<const Impl&>(*this); }
};

/// The same for an interface with getters of its own: those for the same type are given here, those
/// for another (a BSTR where the cvar holds a CComBSTR) stay beside them.
template <class Impl, class Interface, class ValueType>
requires requires {
  &Interface::GetAdaptedValue;
  &Interface::GetDefaultValue;
  &Interface::GetRequestedValue;
}
class CVARS_API ValueGetters<Impl, Interface, ValueType> : public Interface {
 public:
  using Interface::GetAdaptedValue;
  using Interface::GetDefaultValue;
  using Interface::GetRequestedValue;
  HRESULT GetAdaptedValue(ValueType* value) { return Values().CopyAdapted(value); }
  HRESULT GetDefaultValue(ValueType* value) { return Values().CopyDefault(value); }
  HRESULT GetRequestedValue(ValueType* value) { return Values().CopyRequested(value); }

 protected:
  ~ValueGetters() = default;

 private:
  const Impl& Values() const { return static_cast<const Impl&>(*this); }
};

}  // namespace cvars

/// The template base of every cvar class.
///
/// It holds the values of the cvar and answers the common interface; the concrete class gives the
/// value its rules: its adaptation, its texts, its range and its properties.
///
/// @tparam T          the concrete class; its `kTypeName` (null for none) is the cvar's type name.
/// @tparam Interface  the typed interface that the class offers, derived from IVorCvar.
/// @tparam ValueType  type of the value: double, int, a 64-bit integer, CComBSTR, or char for a
///                    cvar without one.
///
/// The object itself, with its reference count and the ways to its interfaces, is completed by the
/// client kit's CvarObject.
template <class T, class Interface, class ValueType>
class CVARS_API IVorCvarImpl
    : public cvars::ValueGetters<IVorCvarImpl<T, Interface, ValueType>, Interface, ValueType>,
      public cvars::CvarCore,
      public IVorCvarEventSink {
  using Getters = cvars::ValueGetters<IVorCvarImpl, Interface, ValueType>;

 public:
  using Interface_t = Interface;
  using Value_t = ValueType;

  HRESULT QueryInterface(REFIID iid, void** object) override = 0;
  ULONG AddRef() override = 0;
  ULONG Release() override = 0;

  /// Finds an interface of the cvar. @return borrowed; null when it is not offered
  virtual void* FindInterface(REFIID iid) {
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == IID_IVorCvar ||
        iid == cvars::InterfaceId<Interface>::value) {
      return static_cast<Interface*>(this);
    }
    if (iid == IID_IVorCvarEventSink) return static_cast<IVorCvarEventSink*>(this);
    if (iid == IID_CvarCore) return static_cast<cvars::CvarCore*>(this);
    return nullptr;
  }

  IVorCvar* GetIVorCvar() override { return this; }

  // Common interface: identity and metadata ------------------------------------------------------

  HRESULT get_Name(BSTR* name) override { return CoreGetName(name); }
  HRESULT get_NameRemote(BSTR* name) override { return CoreGetNameRemote(name); }
  HRESULT get_Type(BSTR* name) override {
    if (name == nullptr) return E_POINTER;
    *name = nullptr;
    if constexpr (T::kTypeName != nullptr) {
      return cvars::CopyOut(T::kTypeName, name);
    } else {
      return S_OK;
    }
  }
  HRESULT get_Flags(long* flags) override { return CoreGetFlags(flags); }
  HRESULT GetFlagsString(BSTR* text) override { return CoreGetFlagsString(text); }
  using CvarCore::GetFlagsString;
  HRESULT IsReadOnly(int* readOnly) override { return CoreIsFlagSet(CVARFLAG_READONLY, readOnly); }
  HRESULT IsHidden(int* hidden) override { return CoreIsFlagSet(CVARFLAG_HIDDEN, hidden); }
  HRESULT IsGuiOnly(int* guiOnly) override { return CoreIsFlagSet(CVARFLAG_GUIONLY, guiOnly); }
  HRESULT IsNonvolatile(int* kept) override { return CoreIsFlagSet(CVARFLAG_NONVOLATILE, kept); }
  HRESULT get_HelpStringID(unsigned int* id) override { return CoreGetHelpStringID(id); }
  HRESULT get_HelpString(BSTR* text) override { return CoreGetHelpString(text); }
  HRESULT GetGuiHints(BSTR* hints) override { return CoreGetGuiHints(hints); }
  HRESULT GetIconInfo(unsigned long* id, unsigned long* module) override {
    return CoreGetIconInfo(id, module);
  }
  HRESULT get_Parent(IUnknown** parent) override { return CoreGetParent(parent); }

  // Common interface: listeners ----------------------------------------------------------------

  HRESULT AttachCvarEventSink(IUnknown* sink) override { return CoreAttach(sink); }
  HRESULT DetachCvarEventSink(IUnknown* sink) override { return CoreDetach(sink); }
  HRESULT get_EventSinkCount(long* count) override { return CoreGetEventSinkCount(count); }
  HRESULT get_EventSink(long index, IUnknown** sink) override {
    return CoreGetEventSink(index, sink);
  }
  HRESULT ForceNotification(NOTIFYTYPE what) override { return Notify(what); }
  HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) override {
    return CoreReactToSource(source, what);
  }

  // Replication ----------------------------------------------------------------------------------

  using CvarCore::StartCvarReplication;
  using CvarCore::StopCvarReplication;

  /// The same with another cvar of this class.
  virtual HRESULT StartCvarReplication(IVorCvarImpl* other,
                                       CVARREPLICATIONCONNECTIONATTRIBUTES thisListens,
                                       CVARREPLICATIONCONNECTIONATTRIBUTES otherListens,
                                       CVARREPLICATIONINITIALCOPYDIRECTION direction,
                                       NOTIFYTYPE what) {
    return StartReplication(other, other, thisListens, otherListens, direction, what);
  }
  virtual HRESULT StartCvarReplication(IVorCvarImpl* other, bool copyFromOther, int directions,
                                       NOTIFYTYPE what) {
    return StartReplication(other, other, copyFromOther, directions, what);
  }
  virtual HRESULT StopCvarReplication(IVorCvarImpl* other) {
    return CvarCore::StopCvarReplication(static_cast<IVorCvar*>(other));
  }

  // Common interface: values and texts, as a class has them that says nothing else
  // -----------------

  HRESULT IsDefault(int* isDefault) override {
    if (isDefault == nullptr) return E_POINTER;
    *isDefault = Equal(m_adapted, m_default) ? 1 : 0;
    return S_OK;
  }
  HRESULT get_IsValueAdapted(int* adapted) override {
    if (adapted == nullptr) return E_POINTER;
    *adapted = Equal(m_requested, m_adapted) ? 0 : 1;
    return S_OK;
  }
  HRESULT GetRequestedVariantValue(VARIANT* value) override { return GetRequestedValue(value); }
  HRESULT GetAdaptedValueStringRemoteNoUnit(BSTR* text) override {
    return this->GetAdaptedValueStringRemote(text);
  }
  HRESULT SetRequestedValueFromStringScreen(const wchar_t* text) override {
    return this->SetRequestedValueFromString(text);
  }
  HRESULT SetRequestedValueFromStringRemote(const wchar_t* text) override {
    return this->SetRequestedValueFromString(text);
  }
  HRESULT get_Range(BSTR* text) override { return cvars::CopyOut(L"n/a", text); }
  HRESULT get_RangeStringScreen(BSTR* text) override { return this->get_Range(text); }
  HRESULT get_RangeStringRemote(BSTR* text) override { return this->get_Range(text); }
  HRESULT get_RangeStringAutomation(BSTR* text) override { return this->get_Range(text); }
  HRESULT GetAdaptedValueStringAutomation(BSTR* text) override { return CoreAutomationText(text); }
  HRESULT SetToMin() override { return E_NOTIMPL; }
  HRESULT SetToMax() override { return E_NOTIMPL; }
  HRESULT Dummy4(VARIANT, VARIANT*) override { return E_NOTIMPL; }
  HRESULT get_Signature(BSTR* text) override { return cvars::CopyOut(L"notimpl", text); }
  HRESULT GetSignature(VARIANT* properties) override {
    if (properties == nullptr) return E_POINTER;
    (void)VariantClear(properties);
    cvars::PropertiesMap map;
    const HRESULT filled = FillCvarPropertiesMap(map);
    return FAILED(filled) ? filled : map.MoveToArray(properties);
  }

  using Interface::GetAdaptedValueNorm;

  // Native side
  // -------------------------------------------------------------------------------------

  using Getters::GetAdaptedValue;
  /// The adapted value.
  virtual ValueType GetAdaptedValue() { return ReadField(m_adapted); }
  /// A cvar reads as its value; a text as a string that also is a CComBSTR.
  using Reading_t = std::conditional_t<std::is_same_v<ValueType, CComBSTR>, CVorComBSTR, ValueType>;
  operator Reading_t() { return GetAdaptedValue(); }  // NOLINT: meant to be implicit

  /// The three values as they are kept, for the getters.
  HRESULT CopyAdapted(ValueType* value) const { return CopyField(m_adapted, value); }
  HRESULT CopyDefault(ValueType* value) const { return CopyField(m_default, value); }
  HRESULT CopyRequested(ValueType* value) const { return CopyField(m_requested, value); }

  using Getters::GetRequestedValue;
  /// @param[out] value  cleared, then the requested value; caller frees.
  HRESULT GetRequestedValue(VARIANT* value) {
    if (value == nullptr) return E_POINTER;
    (void)VariantClear(value);
    return cvars::ToVariant(ReadField(m_requested)).Detach(value);
  }

  virtual HRESULT Dummy1() { return E_NOTIMPL; }
  virtual HRESULT Dummy3(VARIANT*) { return E_NOTIMPL; }

  /// Fits the request to the range, and tells the listeners what changed. Sets NOTIFY_VALUE when
  /// the adapted value changed.
  HRESULT UpdateAdaptedValueAndNotify() override = 0;

 protected:
  IVorCvarImpl() = default;
  ~IVorCvarImpl() = default;

  /// Sends a late update when the cvar asks for it; runs before a typed read of the value.
  virtual void PerformLateUpdate() { SendLateUpdate(); }

  /// Adds the cvar's entries to the map; a typed class calls this one and adds its own.
  /// @return a failure when a value could not be made; its entry then holds the code
  virtual HRESULT FillCvarPropertiesMap(cvars::PropertiesMap& map) {
    CoreFillProperties(map, T::kTypeName);
    return S_OK;
  }

  /// Position of a value in a range: (value - min) / (max - min).
  ///
  /// A negative or undefined span counts as 1. A span of 0 is divided by as it stands, so the
  /// position then is infinite or not a number.
  HRESULT GetAdaptedValueNorm(double* position, double value, double min, double max) {
    if (position == nullptr) return E_POINTER;
    double span = max - min;
    if (!(span >= 0)) span = 1.0;
    *position = (value - min) / span;
    return S_OK;
  }
  /// A number that threads may read at any time, a text as it is.
  using Field =
      std::conditional_t<std::is_arithmetic_v<ValueType>, cvars::Relaxed<ValueType>, ValueType>;

  Field m_adapted{};
  Field m_default{};
  Field m_requested{};

  /// Reads a field; a text is copied under the object lock.
  ValueType ReadField(const Field& field) const {
    if constexpr (std::is_arithmetic_v<ValueType>) {
      return field;
    } else {
      const cvars::platform::ScopedLock guard(m_lock);
      return field;
    }
  }

 private:
  bool Equal(const Field& a, const Field& b) const {
    if constexpr (std::is_arithmetic_v<ValueType>) {
      return a.Get() == b.Get();
    } else {
      const cvars::platform::ScopedLock guard(m_lock);
      return cvars::SameValue(a, b);
    }
  }

  HRESULT CopyField(const Field& field, ValueType* value) const {
    if (value == nullptr) return E_POINTER;
    *value = ReadField(field);
    return S_OK;
  }
};
