#pragma once

#include <string>
#include <string_view>

#include "CvarTextImpl.h"
#include "IVorCvarFileName.h"

/// A file or folder chosen by the user: where to save, what to recall.
///
/// The parts of the choice are kept apart: a root folder and filters for a file dialog, the current
/// path, and the file name. The adapted-value format says which of them make the value: "filename",
/// "path" or "fullfilename"; any other gives an empty value. The registry value "LockedDrive" below
/// SOFTWARE\Vortana\Pelora of the current user forces the drive of every value. The maximum length
/// is kept for dialogs, it does not cut.
class CVARS_API CCvarFileName : public CvarTextImpl<CCvarFileName, IVorCvarFileName> {
 public:
  static constexpr const wchar_t* kTypeName = L"FileName";

  using CvarTextImpl::SetRequestedValue;

  /// Names and configures the cvar and requests its default; tells nobody. Reads the locked drive,
  /// making its registry key when it is missing.
  ///
  /// @param defaultValue   copied; empty keeps `path` and the file name that is there.
  /// @param format         "filename", "path" or "fullfilename"; case counts.
  /// @param directoryOnly  the value names a folder.
  void Initialize(const wchar_t* name, const wchar_t* defaultValue, const wchar_t* root,
                  const wchar_t* path, const wchar_t* filters, const wchar_t* format, int maxLength,
                  int directoryOnly, int fileMustExist, CVARFLAGS flags, const wchar_t* guiHints,
                  unsigned int helpStringID, CVARREPLICATIONFLAGS replicationFlags);

  /// Takes a text apart into path and file name and requests what they make.
  /// @retval E_ACCESSDENIED  read-only and not forced
  HRESULT SetRequestedValue(const wchar_t* text, bool force) override;

  // Writing a part requests what the parts then make; a read-only cvar refuses with E_ACCESSDENIED.
  HRESULT get_RootValue(BSTR* root) override;
  HRESULT put_RootValue(const wchar_t* root) override;
  HRESULT get_PathValue(BSTR* path) override;
  HRESULT put_PathValue(const wchar_t* path) override;
  HRESULT get_FileNameValue(BSTR* fileName) override;
  HRESULT put_FileNameValue(const wchar_t* fileName) override;
  HRESULT get_FiltersValue(BSTR* filters) override;
  HRESULT put_FiltersValue(const wchar_t* filters) override;
  HRESULT get_AdaptedValueFormat(BSTR* format) override;
  HRESULT put_AdaptedValueFormat(const wchar_t* format) override;
  HRESULT get_DirectoryOnly(int* directoryOnly) override;
  /// Switching it on sets the format to "path". Sets NOTIFY_FLAGS on a change.
  HRESULT put_DirectoryOnly(int directoryOnly) override;
  HRESULT get_FileMustExist(int* mustExist) override;
  /// Sets NOTIFY_FLAGS on a change.
  HRESULT put_FileMustExist(int mustExist) override;
  /// Path, separator and file name; a folder alone has no file name.
  HRESULT get_FullFileNameValue(BSTR* fullName) override;
  /// What follows the last "." of the value. @retval E_FAIL  no "."; the answer is empty
  HRESULT GetExtension(BSTR* extension) override;

  /// Sets a part without telling anybody. @param folder  copied.
  void SetDefaultPath(CComBSTR folder);
  void SetDefaultRoot(CComBSTR folder);

  /// VT_BSTR: the value escaped to stand inside a double-quoted script string, quotes and line ends
  /// being joined in from outside it.
  HRESULT get_Value(VARIANT* value) override;
  HRESULT get_Signature(BSTR* text) override;

 protected:
  CCvarFileName() = default;
  ~CCvarFileName() = default;

  /// Composes the value of a path and a file name by the format, on the locked drive.
  CComBSTR CreateRequestedValue(CComBSTR path, CComBSTR fileName);
  /// Takes a text apart and stores the request that its parts make. @param text  null reads as
  /// empty
  void LoadNewRequestedValue(const wchar_t* text);
  /// Tells the listeners that the flags changed.
  HRESULT ForceNotifyFlagsChange();

  CComBSTR Fit(const CComBSTR& request) override { return request; }
  HRESULT FillCvarPropertiesMap(cvars::PropertiesMap& map) override;

 private:
  HRESULT PutPart(CComBSTR& part, const wchar_t* text);
  void Recompose();

  // Guarded by the object lock.
  CComBSTR m_root;
  CComBSTR m_path;
  CComBSTR m_fileName;
  CComBSTR m_filters;
  CComBSTR m_format;
  cvars::Relaxed<int> m_maxLength{16};
  cvars::Relaxed<int> m_directoryOnly{0};
  cvars::Relaxed<int> m_fileMustExist{0};
};

extern template class IVorCvarImpl<CCvarFileName, IVorCvarFileName, CComBSTR>;
extern template class CvarTextImpl<CCvarFileName, IVorCvarFileName>;
