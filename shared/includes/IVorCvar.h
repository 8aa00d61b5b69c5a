#pragma once

#include "IVorCvarEventSink.h"
#include "Variant.h"

/// {7205B0A0-E8E6-4D14-80F1-0D21314BE6BA}
inline constexpr IID IID_IVorCvar = {
    0x7205B0A0, 0xE8E6, 0x4D14, {0x80, 0xF1, 0x0D, 0x21, 0x31, 0x4B, 0xE6, 0xBA}};

/// What every cvar offers, whatever the type of its value.
///
/// A null out-pointer gives E_POINTER before anything else (E_INVALIDARG for GetIconInfo). Texts
/// and variants handed out are caller frees; texts and variants passed in are copied.
class CVARS_API IVorCvar : public IDispatch {
 public:
  virtual HRESULT AttachCvarEventSink(IUnknown* sink) = 0;                     // 0
  virtual HRESULT DetachCvarEventSink(IUnknown* sink) = 0;                     // 1
  virtual HRESULT GetAdaptedValueNorm(double* value) = 0;                      // 2
  virtual HRESULT GetAdaptedValueStringScreen(BSTR* text) = 0;                 // 3
  virtual HRESULT GetAdaptedValueStringRemote(BSTR* text) = 0;                 // 4
  virtual HRESULT GetGuiHints(BSTR* hints) = 0;                                // 5
  virtual HRESULT get_HelpString(BSTR* text) = 0;                              // 6
  virtual HRESULT get_HelpStringID(unsigned int* id) = 0;                      // 7
  virtual HRESULT get_NameRemote(BSTR* name) = 0;                              // 8
  virtual HRESULT get_Name(BSTR* name) = 0;                                    // 9
  virtual HRESULT Increment(int steps) = 0;                                    // 10
  virtual HRESULT IsReadOnly(int* readOnly) = 0;                               // 11
  virtual HRESULT SetRequestedValueFromString(const wchar_t* text) = 0;        // 12
  virtual HRESULT SetRequestedValueNorm(double value) = 0;                     // 13
  virtual HRESULT SetToDefault() = 0;                                          // 14
  virtual HRESULT get_Type(BSTR* name) = 0;                                    // 15
  virtual HRESULT IsHidden(int* hidden) = 0;                                   // 16
  virtual HRESULT get_Value(VARIANT* value) = 0;                               // 17
  virtual HRESULT put_Value(VARIANT value) = 0;                                // 18
  virtual HRESULT IsGuiOnly(int* guiOnly) = 0;                                 // 19
  virtual HRESULT get_Range(BSTR* text) = 0;                                   // 20
  virtual HRESULT IsNonvolatile(int* nonvolatile) = 0;                         // 21
  virtual HRESULT get_EventSinkCount(long* count) = 0;                         // 22
  virtual HRESULT get_EventSink(long index, IUnknown** sink) = 0;              // 23
  virtual HRESULT ForceNotification(NOTIFYTYPE what) = 0;                      // 24
  virtual HRESULT get_Flags(long* flags) = 0;                                  // 25
  virtual HRESULT get_Parent(IUnknown** parent) = 0;                           // 26
  virtual HRESULT SetRequestedValueFromStringScreen(const wchar_t* text) = 0;  // 27
  virtual HRESULT SetRequestedValueFromStringRemote(const wchar_t* text) = 0;  // 28
  virtual HRESULT GetRequestedVariantValue(VARIANT* value) = 0;                // 29
  virtual HRESULT get_RangeStringScreen(BSTR* text) = 0;                       // 30
  virtual HRESULT get_RangeStringRemote(BSTR* text) = 0;                       // 31
  virtual HRESULT get_RangeStringAutomation(BSTR* text) = 0;                   // 32
  virtual HRESULT get_IsValueAdapted(int* adapted) = 0;                        // 33
  virtual HRESULT get_Signature(BSTR* text) = 0;                               // 34
  virtual HRESULT GetIconInfo(unsigned long* id, unsigned long* module) = 0;   // 35
  virtual HRESULT GetAdaptedValueStringAutomation(BSTR* text) = 0;             // 36
  virtual HRESULT GetAdaptedValueStringRemoteNoUnit(BSTR* text) = 0;           // 37
  virtual HRESULT IsDefault(int* isDefault) = 0;                               // 38
  virtual HRESULT Dummy4(VARIANT argument, VARIANT* result) = 0;               // 39
  virtual HRESULT GetFlagsString(BSTR* text) = 0;                              // 40
  virtual HRESULT SetToMin() = 0;                                              // 41
  virtual HRESULT SetToMax() = 0;                                              // 42
  virtual HRESULT GetSignature(VARIANT* properties) = 0;                       // 43

 protected:
  ~IVorCvar() = default;
};

template <>
struct cvars::InterfaceId<IVorCvar> {
  static constexpr IID value = IID_IVorCvar;
};
