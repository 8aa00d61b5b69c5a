#pragma once

// The members of NumericCvar, for the sources of the classes that instantiate it.

#include <cmath>
#include <type_traits>

#include "CComPtr.h"
#include "NumericCvar.h"
#include "ScopedSuspension.h"

namespace cvars {

// Texts -------------------------------------------------------------------------------------------

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::GetAdaptedValueStringScreen(BSTR* text) {
  return FormatAdapted(
      m_unit.Screen(),
      this->HasFlag(CVARFLAG_COMPACT) ? NumberStyle::kScreenCompact : NumberStyle::kScreen, text);
}

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::GetAdaptedValueStringRemote(BSTR* text) {
  return FormatAdapted(m_unit.Remote(), NumberStyle::kRemote, text);
}

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::GetAdaptedValueStringRemoteNoUnit(
    BSTR* text) {
  return FormatAdapted({}, NumberStyle::kRemoteNoUnit, text);
}

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::SetRequestedValueFromStringScreen(
    const wchar_t* text) {
  double value = 0;
  const HRESULT parsed = ParseScreenNumber(text, m_unit.Screen(), &value);
  return FAILED(parsed) ? parsed : RequestRead(text, value);
}

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::SetRequestedValueFromStringRemote(
    const wchar_t* text) {
  double value = 0;
  const HRESULT parsed = ParseNumber(text, m_unit.Remote(), kRemotePrefixes, &value);
  return FAILED(parsed) ? parsed : RequestRead(text, value);
}

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::get_Range(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  std::wstring range = L"From ";
  AppendPlain(range, m_min.Get());
  range += L" to ";
  AppendPlain(range, m_max.Get());
  range += L" step ";
  AppendPlain(range, m_grain.Get());
  return CopyOut(range, text);
}

template <class T, class Interface, class TypedInterface, class Number>
SignatureText NumericCvar<T, Interface, TypedInterface, Number>::BeginSignature() {
  SignatureText signature(T::kTypeName);
  signature.AddNumber(L"Request", this->m_requested.Get())
      .AddNumber(L"Adapt", this->GetAdaptedValue())
      .AddNumber(L"Default", this->m_default.Get());
  return signature;
}

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::EndSignature(SignatureText signature,
                                                                        BSTR* text) {
  signature.Add(L"Unit", GetUnitStringRemote()).Add(L"Flags", this->GetFlagsString());
  return CopyOut(signature.Text(), text);
}

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::get_Signature(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  return EndSignature(BeginSignature()
                          .AddNumber(L"Min", m_min.Get())
                          .AddNumber(L"Max", m_max.Get())
                          .AddNumber(L"Grain", m_grain.Get()),
                      text);
}

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::FillCvarPropertiesMap(
    PropertiesMap& map) {
  const HRESULT filled = Base::FillCvarPropertiesMap(map);
  if (FAILED(filled)) return filled;
  map.Set(L"RequestedValue", ToVariant(this->m_requested.Get()));
  map.Set(L"AdaptedValue", ToVariant(this->GetAdaptedValue()));
  const HRESULT screen = map.SetTextFrom(L"AdaptedValueStringScreen", [this](BSTR* text) {
    return this->GetAdaptedValueStringScreen(text);
  });
  if (FAILED(screen)) return screen;
  map.Set(L"Default", ToVariant(this->m_default.Get()));
  map.Set(L"Min", ToVariant(m_min.Get()));
  map.Set(L"Max", ToVariant(m_max.Get()));
  map.Set(L"Grain", ToVariant(m_grain.Get()));
  map.SetText(L"Unit", m_unit.Remote());
  return S_OK;
}

// Values ------------------------------------------------------------------------------------------

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::SetToDefault() {
  m_coarseGrain = 0;
  return this->SetRequestedValue(this->m_default);
}

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::SetToMin() {
  Number min{};
  const HRESULT read = this->GetMinValue(&min);
  return FAILED(read) ? read : this->SetRequestedValue(min);
}

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::SetToMax() {
  Number max{};
  const HRESULT read = this->GetMaxValue(&max);
  return FAILED(read) ? read : this->SetRequestedValue(max);
}

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::get_Value(VARIANT* value) {
  return value == nullptr ? E_POINTER : ToVariant(this->GetAdaptedValue()).Detach(value);
}

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::put_Value(VARIANT value) {
  constexpr VARTYPE kType = kNumberVariantType<Number>;
  const auto request = [this](const VARIANT& number) {
    if constexpr (kType == VT_R8) {
      return this->SetRequestedValue(number.dblVal);
    } else if constexpr (kType == VT_I8) {
      return this->SetRequestedValue(number.llVal);
    } else {
      return this->SetRequestedValue(number.lVal);
    }
  };
  if (value.vt == kType) return request(value);
  CComVariant copy;
  HRESULT result = VariantChangeType(&copy, &value, 0, kType);
  if (SUCCEEDED(result)) return request(copy);
  result = VariantChangeType(&copy, &value, 0, VT_BSTR);
  return FAILED(result) ? result : this->SetRequestedValueFromStringScreen(copy.bstrVal);
}

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::SetDefaultValue(Number value) {
  if constexpr (std::is_floating_point_v<Number>) {
    if (!std::isfinite(value)) return E_INVALIDARG;
  }
  if (value == this->m_default) return S_FALSE;
  this->m_default = value;
  return this->Notify(NOTIFY_ATTRIBUTES);
}

// Range and attributes ----------------------------------------------------------------------------

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::SetUnitRemoteString(
    const wchar_t* unit) {
  bool changed = false;
  const HRESULT set = m_unit.Set(unit, &changed);
  return changed ? this->ForceNotification(NOTIFY_UNIT) : set;
}

template <class T, class Interface, class TypedInterface, class Number>
void NumericCvar<T, Interface, TypedInterface, Number>::SetRangeAttributes(
    Number defaultValue, const wchar_t* unit, const wchar_t* guiHints, unsigned int helpStringID,
    bool setDefault) {
  if (unit != nullptr) (void)SetUnitRemoteString(unit);  // a refused unit leaves the old one
  if (guiHints != nullptr) this->SetGuiHints(guiHints);
  if (helpStringID != 0) this->StoreHelpStringID(helpStringID);
  if (setDefault && defaultValue != this->m_default) {
    this->m_default = defaultValue;
    this->AddPending(NOTIFY_ATTRIBUTES);
  }
}

template <class T, class Interface, class TypedInterface, class Number>
void NumericCvar<T, Interface, TypedInterface, Number>::FinishInitialize(
    Number defaultValue, CVARFLAGS flags, CVARREPLICATIONFLAGS replicationFlags) {
  // The cvar's own request, whatever a derived class does with the requests of clients. A default
  // that is not finite leaves it.
  (void)static_cast<T*>(this)->T::SetRequestedValue(defaultValue, false);
  this->SetReplicationFlags(replicationFlags);
  this->SetFlags(static_cast<long>(flags));
}

// Replication -------------------------------------------------------------------------------------

template <class T, class Interface, class TypedInterface, class Number>
HRESULT NumericCvar<T, Interface, TypedInterface, Number>::OnCvarNotify(IVorCvar* source,
                                                                        NOTIFYTYPE what) {
  const ScopedSuspension suspension(*this);
  CComPtr<TypedInterface> theirs;
  if (source != nullptr) {
    (void)source->QueryInterface(InterfaceId<TypedInterface>::value,
                                 reinterpret_cast<void**>(&theirs));
  }
  if (theirs != nullptr) {
    // What cannot be read or taken stays as it is; the result is that of the value's copy.
    const CVARREPLICATIONFLAGS copies = this->ReplicationFlags();
    if ((copies & REPLICATE_RANGE) != 0 && (what & NOTIFY_RANGE) != 0) CopyRange(*theirs);
    if ((copies & REPLICATE_UNIT) != 0 && (what & NOTIFY_UNIT) != 0) {
      CComBSTR unit;
      if (SUCCEEDED(theirs->GetUnitRemoteString(&unit))) (void)this->SetUnitRemoteString(unit);
    }
    if ((copies & REPLICATE_DEFAULT) != 0 && (what & NOTIFY_ATTRIBUTES) != 0) {
      Number number{};
      if (SUCCEEDED(theirs->GetDefaultValue(&number))) (void)this->SetDefaultValue(number);
    }
  }
  return Base::OnCvarNotify(source, what);
}

}  // namespace cvars
