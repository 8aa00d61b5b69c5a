#pragma once

#include "IVorCvar.h"

/// {3E99DE60-5B42-4EA4-B519-333DCA61BE1B}
inline constexpr IID IID_IVorCvarEnum = {
    0x3E99DE60, 0x5B42, 0x4EA4, {0xB5, 0x19, 0x33, 0x3D, 0xCA, 0x61, 0xBE, 0x1B}};

/// What belongs to an entry of an enum beside its spellings and its state.
enum EXTRAENUMDATA : std::uint32_t {
  EXTRAENUMDATA_ICONID = 1,     ///< Identifier of the icon, a 32-bit integer.
  EXTRAENUMDATA_OBJECT = 2,     ///< The entry's object.
  EXTRAENUMDATA_VARIANT = 3,    ///< The entry's variant; read as the first extra item when empty.
  EXTRAENUMDATA_EXTRA1 = 4,     ///< First extra item.
  EXTRAENUMDATA_CHILDPAGE = 5,  ///< Second extra item: text of a child page.
  EXTRAENUMDATA_EXTRA3 = 6,     ///< Third extra item.
};

/// A setting whose value is one entry of an ordered list of named choices.
///
/// An entry is addressed by its index, counted from 0, or by a variant: an integer is the index, a
/// text is matched as GetIndexOfStringName does, anything else is no entry. An index without entry
/// gives E_INVALIDARG. The value -1 means no entry.
class CVARS_API IVorCvarEnum : public IVorCvar {
 public:
  using IVorCvar::SetRequestedValueFromString;

  virtual HRESULT GetAdaptedValue(int* index) = 0;                                   // 44
  virtual HRESULT GetDefaultValue(int* index) = 0;                                   // 45
  virtual HRESULT GetRequestedValue(int* index) = 0;                                 // 46
  virtual HRESULT SetRequestedValue(int index) = 0;                                  // 47
  virtual HRESULT SetRequestedValue(int index, bool force) = 0;                      // 48
  virtual HRESULT SetRequestedValueFromString(const wchar_t* text, bool force) = 0;  // 49
  virtual HRESULT GetNumberOfValueStates(int* count) = 0;                            // 50
  virtual int GetNumberOfEnabledValueStates() = 0;                                   // 51
  virtual HRESULT GetMin(int* index) = 0;                                            // 52
  virtual HRESULT GetMax(int* index) = 0;                                            // 53
  virtual HRESULT GetValueStringScreen(int index, BSTR* text) = 0;                   // 54
  virtual HRESULT GetValueStringAutomation(int index, BSTR* text) = 0;               // 55
  virtual HRESULT GetValueStringRemote(int index, BSTR* text) = 0;                   // 56
  virtual HRESULT GetIndexOfStringName(const wchar_t* text, int* index) = 0;         // 57
  virtual HRESULT Enable(int index, int enable) = 0;                                 // 58
  virtual HRESULT Enable(VARIANT entry) = 0;                                         // 59
  virtual HRESULT Enable(VARIANT entry, int enable) = 0;                             // 60
  virtual HRESULT Disable(int index) = 0;                                            // 61
  virtual HRESULT Disable(VARIANT entry) = 0;                                        // 62
  virtual HRESULT IsEnabled(int index, int* enabled) = 0;                            // 63
  virtual HRESULT IsEnabled(VARIANT entry, int* enabled) = 0;                        // 64
  virtual HRESULT GetVariant(int index, VARIANT* value) = 0;                         // 65
  virtual HRESULT SetVariant(int index, VARIANT value) = 0;                          // 66
  virtual HRESULT GetEnumIUnknown(int index, IUnknown** object) = 0;                 // 67
  virtual HRESULT SetEnumValueIconInfo(int index, unsigned long iconId,
                                       HINSTANCE module) = 0;  // 68
  virtual HRESULT GetEnumValueIconInfo(int index, unsigned long* iconId,
                                       unsigned long* module) = 0;                      // 69
  virtual HRESULT SetExtraEnumData(int index, EXTRAENUMDATA kind, VARIANT value) = 0;   // 70
  virtual HRESULT GetExtraEnumData(int index, EXTRAENUMDATA kind, VARIANT* value) = 0;  // 71
  virtual HRESULT IsWrapModeOn(int* on) = 0;                                            // 72
  virtual HRESULT GetRangeStringScreen(BSTR* text) = 0;                                 // 73
  virtual HRESULT GetRangeStringRemote(BSTR* text) = 0;                                 // 74
  virtual HRESULT GetFullRangeString(int includeDisabled, BSTR* text) = 0;              // 75

 protected:
  ~IVorCvarEnum() = default;
};

template <>
struct cvars::InterfaceId<IVorCvarEnum> {
  static constexpr IID value = IID_IVorCvarEnum;
};
