#pragma once

#include "CvarImpl.h"
#include "CvarObject.h"

namespace cvars::test {

/// A cvar that says no more than a class has to: it has no value, no range and no type name.
class PlainCvar : public IVorCvarImpl<PlainCvar, IVorCvar, char> {
  using Base = IVorCvarImpl<PlainCvar, IVorCvar, char>;

 public:
  static constexpr const wchar_t* kTypeName = nullptr;

  using Base::GetAdaptedValueNorm;
  HRESULT GetAdaptedValueNorm(double*) override { return E_NOTIMPL; }
  HRESULT GetAdaptedValueStringScreen(BSTR*) override { return E_NOTIMPL; }
  HRESULT GetAdaptedValueStringRemote(BSTR*) override { return E_NOTIMPL; }
  HRESULT Increment(int) override { return E_NOTIMPL; }
  HRESULT SetRequestedValueFromString(const wchar_t*) override { return E_NOTIMPL; }
  HRESULT SetRequestedValueNorm(double) override { return E_NOTIMPL; }
  HRESULT SetToDefault() override { return E_NOTIMPL; }
  HRESULT get_Value(VARIANT*) override { return E_NOTIMPL; }
  HRESULT put_Value(VARIANT) override { return E_NOTIMPL; }
  HRESULT UpdateAdaptedValueAndNotify() override {
    return NotifyClients(NOTIFY_ALL_CLIENTS, false);
  }

 protected:
  PlainCvar() = default;
  ~PlainCvar() = default;
};

/// A cvar of an integer whose state a test sets as it likes.
class SampleCvar : public IVorCvarImpl<SampleCvar, IVorCvar, int> {
  using Base = IVorCvarImpl<SampleCvar, IVorCvar, int>;

 public:
  static constexpr const wchar_t* kTypeName = L"Sample";

  using Base::GetAdaptedValueNorm;
  using Base::PerformLateUpdate;
  HRESULT GetAdaptedValueNorm(double*) override { return E_NOTIMPL; }
  HRESULT GetAdaptedValueStringScreen(BSTR* text) override { return CopyOut(L"screen", text); }
  HRESULT GetAdaptedValueStringRemote(BSTR* text) override { return CopyOut(L"REMOTE", text); }
  HRESULT Increment(int) override { return E_NOTIMPL; }
  HRESULT SetRequestedValueFromString(const wchar_t* text) override {
    lastText = TextOrEmpty(text);
    return S_FALSE;
  }
  HRESULT SetRequestedValueNorm(double) override { return E_NOTIMPL; }
  HRESULT SetToDefault() override { return E_NOTIMPL; }
  HRESULT get_Value(VARIANT* value) override {
    if (value == nullptr) return E_POINTER;
    if (FAILED(valueResult)) return valueResult;
    return VariantCopy(value, &valueToGive);
  }
  HRESULT put_Value(VARIANT) override { return E_NOTIMPL; }
  HRESULT UpdateAdaptedValueAndNotify() override {
    return NotifyClients(NOTIFY_ALL_CLIENTS, false);
  }
  HRESULT FillCvarPropertiesMap(PropertiesMap& map) override {
    (void)Base::FillCvarPropertiesMap(map);
    map.Set(L"Added", CComVariant(7));
    if (FAILED(propertyResult)) {
      return map.SetTextFrom(L"Broken", [this](BSTR*) { return propertyResult; });
    }
    return S_OK;
  }

  void SetValues(int adapted, int defaultValue, int requested) {
    m_adapted = adapted;
    m_default = defaultValue;
    m_requested = requested;
  }

  /// What get_Value gives, and its answer when that is a failure.
  CComVariant valueToGive{0};
  HRESULT valueResult = S_OK;
  /// What a property that is read last answers.
  HRESULT propertyResult = S_OK;
  /// The last text that was to be parsed.
  std::wstring lastText;

 protected:
  SampleCvar() = default;
  ~SampleCvar() = default;
};

}  // namespace cvars::test
