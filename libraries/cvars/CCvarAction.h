#pragma once

#include <atomic>

#include "CvarImpl.h"
#include "IVorCvarAction.h"

/// A command: acting it notifies its listeners, which do the work. It has no value.
///
/// Any thread may act it. While its listeners are being told it is busy, and acting it again, by
/// one of them or from another thread, is swallowed without waiting.
class CVARS_API CCvarAction : public IVorCvarImpl<CCvarAction, IVorCvarAction, char> {
  using Base = IVorCvarImpl<CCvarAction, IVorCvarAction, char>;

 public:
  static constexpr const wchar_t* kTypeName = L"Action";

  /// Names and configures the action; tells nobody.
  ///
  /// @param name      copied; "name" or "name|remote name"; null reads as empty.
  /// @param guiHints  copied; null clears the hints.
  /// @param icon      a resource of the parent's module.
  void Initialize(const wchar_t* name, CVARFLAGS flags, const wchar_t* guiHints,
                  unsigned int helpStringID, unsigned long icon,
                  CVARREPLICATIONFLAGS replicationFlags);

  /// Performs the action. Sets NOTIFY_VALUE.
  ///
  /// @param force  acts a read-only action too.
  /// @retval E_ACCESSDENIED  read-only and not forced
  /// @retval S_FALSE         it is being performed; nothing happens
  /// @return otherwise what the listeners answered
  HRESULT ActNow(bool force);
  HRESULT ActNow() override { return ActNow(false); }

  /// Sets the icon from a module, inside a probe of the monitoring tool. Sets NOTIFY_ATTRIBUTES on
  /// a change. @retval S_OK  always
  HRESULT SetAndLoadIcon(unsigned long icon, HINSTANCE module);

  // The common interface
  // ----------------------------------------------------------------------------

  /// Any text performs the action, an empty one too.
  HRESULT SetRequestedValueFromString(const wchar_t*) override { return ActNow(); }
  HRESULT SetRequestedValueFromStringScreen(const wchar_t*) override { return ActNow(); }
  HRESULT SetRequestedValueFromStringRemote(const wchar_t*) override { return ActNow(); }
  /// Hands the steps to put_Value as VT_I4, for classes that give put_Value a meaning.
  HRESULT Increment(int steps) override { return put_Value(CComVariant(steps)); }
  /// Hands the position to put_Value as VT_R8.
  HRESULT SetRequestedValueNorm(double position) override {
    return put_Value(CComVariant(position));
  }
  /// An action has no value: this one and the next five answer DISP_E_MEMBERNOTFOUND.
  HRESULT put_Value(VARIANT) override { return DISP_E_MEMBERNOTFOUND; }
  HRESULT get_Value(VARIANT* value) override { return NoValue(value); }
  HRESULT GetRequestedVariantValue(VARIANT* value) override { return NoValue(value); }
  HRESULT GetAdaptedValueNorm(double* position) override { return NoValue(position); }
  HRESULT GetAdaptedValueStringScreen(BSTR* text) override { return NoValue(text); }
  HRESULT GetAdaptedValueStringRemote(BSTR* text) override { return NoValue(text); }
  /// There is nothing to do.
  HRESULT SetToDefault() override { return S_OK; }
  HRESULT get_Signature(BSTR* text) override;
  /// A replica acts when its source acts, but not when it is connected.
  HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) override;

  HRESULT UpdateAdaptedValueAndNotify() override { return ActNow(); }

 protected:
  CCvarAction() = default;
  ~CCvarAction() = default;

 private:
  template <class Value>
  static HRESULT NoValue(const Value* out) {
    return out == nullptr ? E_POINTER : DISP_E_MEMBERNOTFOUND;
  }

  std::atomic<bool> m_busy{false};
};

extern template class IVorCvarImpl<CCvarAction, IVorCvarAction, char>;
