#pragma once

#include "IVorCvar.h"

/// {47D5B0E3-6A92-4C37-A5F8-13E9C04B7D33}
inline constexpr IID IID_IVorCvarFileName = {
    0x47D5B0E3, 0x6A92, 0x4C37, {0xA5, 0xF8, 0x13, 0xE9, 0xC0, 0x4B, 0x7D, 0x33}};

/// A setting that names a file or folder and keeps the parts of the choice apart.
class CVARS_API IVorCvarFileName : public IVorCvar {
 public:
  virtual HRESULT GetAdaptedValue(BSTR* text) = 0;                    // 44
  virtual HRESULT GetDefaultValue(BSTR* text) = 0;                    // 45
  virtual HRESULT GetRequestedValue(BSTR* text) = 0;                  // 46
  virtual HRESULT SetRequestedValue(const wchar_t* text) = 0;         // 47
  virtual HRESULT get_RootValue(BSTR* root) = 0;                      // 48
  virtual HRESULT put_RootValue(const wchar_t* root) = 0;             // 49
  virtual HRESULT get_PathValue(BSTR* path) = 0;                      // 50
  virtual HRESULT put_PathValue(const wchar_t* path) = 0;             // 51
  virtual HRESULT get_FileNameValue(BSTR* fileName) = 0;              // 52
  virtual HRESULT put_FileNameValue(const wchar_t* fileName) = 0;     // 53
  virtual HRESULT get_FiltersValue(BSTR* filters) = 0;                // 54
  virtual HRESULT put_FiltersValue(const wchar_t* filters) = 0;       // 55
  virtual HRESULT get_AdaptedValueFormat(BSTR* format) = 0;           // 56
  virtual HRESULT put_AdaptedValueFormat(const wchar_t* format) = 0;  // 57
  virtual HRESULT get_DirectoryOnly(int* directoryOnly) = 0;          // 58
  virtual HRESULT put_DirectoryOnly(int directoryOnly) = 0;           // 59
  virtual HRESULT get_FileMustExist(int* mustExist) = 0;              // 60
  virtual HRESULT put_FileMustExist(int mustExist) = 0;               // 61
  virtual HRESULT get_FullFileNameValue(BSTR* fullName) = 0;          // 62
  virtual HRESULT GetExtension(BSTR* extension) = 0;                  // 63

 protected:
  ~IVorCvarFileName() = default;
};

template <>
struct cvars::InterfaceId<IVorCvarFileName> {
  static constexpr IID value = IID_IVorCvarFileName;
};
