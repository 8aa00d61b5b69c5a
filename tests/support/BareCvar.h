#pragma once

#include <atomic>

#include "IVorCvar.h"

namespace cvars::test {

/// A cvar that can do nothing but be referred to; counts how many of its kind live.
class BareCvar final : public IVorCvar {
 public:
  BareCvar() { s_live.fetch_add(1); }

  static int Live() { return s_live.load(); }
  ULONG References() const { return m_references.load(); }

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IDispatch && iid != IID_IVorCvar) return E_NOINTERFACE;
    *object = static_cast<IVorCvar*>(this);
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return m_references.fetch_add(1) + 1; }
  ULONG Release() override {
    const ULONG left = m_references.fetch_sub(1) - 1;
    if (left == 0) delete this;
    return left;
  }

  HRESULT GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT GetIDsOfNames(REFIID, wchar_t**, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;
  }
  HRESULT AttachCvarEventSink(IUnknown*) override { return E_NOTIMPL; }
  HRESULT DetachCvarEventSink(IUnknown*) override { return E_NOTIMPL; }
  HRESULT GetAdaptedValueNorm(double*) override { return E_NOTIMPL; }
  HRESULT GetAdaptedValueStringScreen(BSTR*) override { return E_NOTIMPL; }
  HRESULT GetAdaptedValueStringRemote(BSTR*) override { return E_NOTIMPL; }
  HRESULT GetGuiHints(BSTR*) override { return E_NOTIMPL; }
  HRESULT get_HelpString(BSTR*) override { return E_NOTIMPL; }
  HRESULT get_HelpStringID(unsigned int*) override { return E_NOTIMPL; }
  HRESULT get_NameRemote(BSTR*) override { return E_NOTIMPL; }
  HRESULT get_Name(BSTR*) override { return E_NOTIMPL; }
  HRESULT Increment(int) override { return E_NOTIMPL; }
  HRESULT IsReadOnly(int*) override { return E_NOTIMPL; }
  HRESULT SetRequestedValueFromString(const wchar_t*) override { return E_NOTIMPL; }
  HRESULT SetRequestedValueNorm(double) override { return E_NOTIMPL; }
  HRESULT SetToDefault() override { return E_NOTIMPL; }
  HRESULT get_Type(BSTR*) override { return E_NOTIMPL; }
  HRESULT IsHidden(int*) override { return E_NOTIMPL; }
  HRESULT get_Value(VARIANT*) override { return E_NOTIMPL; }
  HRESULT put_Value(VARIANT) override { return E_NOTIMPL; }
  HRESULT IsGuiOnly(int*) override { return E_NOTIMPL; }
  HRESULT get_Range(BSTR*) override { return E_NOTIMPL; }
  HRESULT IsNonvolatile(int*) override { return E_NOTIMPL; }
  HRESULT get_EventSinkCount(long*) override { return E_NOTIMPL; }
  HRESULT get_EventSink(long, IUnknown**) override { return E_NOTIMPL; }
  HRESULT ForceNotification(NOTIFYTYPE) override { return E_NOTIMPL; }
  HRESULT get_Flags(long*) override { return E_NOTIMPL; }
  HRESULT get_Parent(IUnknown**) override { return E_NOTIMPL; }
  HRESULT SetRequestedValueFromStringScreen(const wchar_t*) override { return E_NOTIMPL; }
  HRESULT SetRequestedValueFromStringRemote(const wchar_t*) override { return E_NOTIMPL; }
  HRESULT GetRequestedVariantValue(VARIANT*) override { return E_NOTIMPL; }
  HRESULT get_RangeStringScreen(BSTR*) override { return E_NOTIMPL; }
  HRESULT get_RangeStringRemote(BSTR*) override { return E_NOTIMPL; }
  HRESULT get_RangeStringAutomation(BSTR*) override { return E_NOTIMPL; }
  HRESULT get_IsValueAdapted(int*) override { return E_NOTIMPL; }
  HRESULT get_Signature(BSTR*) override { return E_NOTIMPL; }
  HRESULT GetIconInfo(unsigned long*, unsigned long*) override { return E_NOTIMPL; }
  HRESULT GetAdaptedValueStringAutomation(BSTR*) override { return E_NOTIMPL; }
  HRESULT GetAdaptedValueStringRemoteNoUnit(BSTR*) override { return E_NOTIMPL; }
  HRESULT IsDefault(int*) override { return E_NOTIMPL; }
  HRESULT Dummy4(VARIANT, VARIANT*) override { return E_NOTIMPL; }
  HRESULT GetFlagsString(BSTR*) override { return E_NOTIMPL; }
  HRESULT SetToMin() override { return E_NOTIMPL; }
  HRESULT SetToMax() override { return E_NOTIMPL; }
  HRESULT GetSignature(VARIANT*) override { return E_NOTIMPL; }

 private:
  ~BareCvar() { s_live.fetch_sub(1); }

  static inline std::atomic<int> s_live{0};
  std::atomic<ULONG> m_references{1};
};

}  // namespace cvars::test
