#pragma once

#include "CComPtr.h"
#include "CvarImpl.h"
#include "IStream.h"
#include "IVorProbe.h"
#include "IVorResult.h"
#include "IVorResultProcessorOutputPin.h"

/// A cvar whose value is a reference to another object, through an interface.
///
/// Exists for IUnknown, IDispatch, IStream, IVorCvar, IVorProbe, IVorResult and
/// IVorResultProcessorOutputPin. Any thread may use it; the object's own operations are never
/// called under the lock, but for its reference count.
///
/// @tparam I  the interface that the object is asked for.
template <class I>
class CVARS_API CCvarObject : public IVorCvarImpl<CCvarObject<I>, IVorCvar, char> {
 public:
  static constexpr const wchar_t* kTypeName = L"Object";

  /// Names and configures the cvar. Does not suspend notifications: NOTIFY_FLAGS is sent when the
  /// flags change.
  ///
  /// @param name            copied; "name" or "name|remote name"; null reads as empty.
  /// @param holdsReference  whether the object is held by reference; else it is *weak*, and its
  ///                        owner must take it out before it goes. An object that is there already
  ///                        is counted accordingly.
  void Initialize(const wchar_t* name, CVARFLAGS flags, bool holdsReference,
                  CVARREPLICATIONFLAGS replicationFlags);

  /// Replaces the object. Sets NOTIFY_VALUE and NOTIFY_REQUESTED when it is another one.
  ///
  /// @param value  an object, or the integer 0 or a null object for none.
  /// @retval E_ACCESSDENIED  read-only
  /// @retval E_INVALIDARG    another integer
  /// @return otherwise the failure to convert the variant or to find the interface, which changes
  ///         nothing, else S_OK whatever listeners answer
  HRESULT put_Value(VARIANT value) override;
  /// VT_DISPATCH when the object offers IDispatch, else VT_UNKNOWN; caller frees. Runs a late
  /// update first.
  HRESULT get_Value(VARIANT* value) override;
  /// @param object  receives the object with one reference, null when there is none. Runs a late
  ///                update first.
  HRESULT GetTypedInterface(I** object);

  HRESULT GetRequestedVariantValue(VARIANT* value) override { return get_Value(value); }
  /// Takes the object out.
  HRESULT SetToDefault() override { return put_Value(CComVariant(0)); }
  /// Whether there is no object.
  HRESULT IsDefault(int* isDefault) override;

  /// An object has no text and no position: E_NOTIMPL.
  HRESULT GetAdaptedValueStringScreen(BSTR* text) override { return NotThere(text); }
  HRESULT GetAdaptedValueStringRemote(BSTR* text) override { return NotThere(text); }
  HRESULT SetRequestedValueFromString(const wchar_t*) override { return E_NOTIMPL; }
  HRESULT GetAdaptedValueNorm(double* position) override { return NotThere(position); }
  HRESULT SetRequestedValueNorm(double) override { return E_NOTIMPL; }
  HRESULT Increment(int) override { return E_NOTIMPL; }

  HRESULT UpdateAdaptedValueAndNotify() override {
    return this->NotifyClients(NOTIFY_ALL_CLIENTS, false);
  }

 protected:
  CCvarObject() = default;
  ~CCvarObject();

 private:
  template <class Value>
  static HRESULT NotThere(const Value* out) {
    return out == nullptr ? E_POINTER : E_NOTIMPL;
  }
  CComPtr<I> Object() const;

  I* m_object = nullptr;  // guarded by the object lock; counted when m_holdsReference
  bool m_holdsReference = true;
};

extern template class IVorCvarImpl<CCvarObject<IUnknown>, IVorCvar, char>;
extern template class IVorCvarImpl<CCvarObject<IDispatch>, IVorCvar, char>;
extern template class IVorCvarImpl<CCvarObject<IStream>, IVorCvar, char>;
extern template class IVorCvarImpl<CCvarObject<IVorCvar>, IVorCvar, char>;
extern template class IVorCvarImpl<CCvarObject<IVorProbe>, IVorCvar, char>;
extern template class IVorCvarImpl<CCvarObject<IVorResult>, IVorCvar, char>;
extern template class IVorCvarImpl<CCvarObject<IVorResultProcessorOutputPin>, IVorCvar, char>;
extern template class CCvarObject<IUnknown>;
extern template class CCvarObject<IDispatch>;
extern template class CCvarObject<IStream>;
extern template class CCvarObject<IVorCvar>;
extern template class CCvarObject<IVorProbe>;
extern template class CCvarObject<IVorResult>;
extern template class CCvarObject<IVorResultProcessorOutputPin>;
