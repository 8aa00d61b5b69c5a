#include "CCvarFileName.h"

#include "CvarTextImplMembers.h"
#include "LockedDrive.h"
#include "SignatureText.h"

template class IVorCvarImpl<CCvarFileName, IVorCvarFileName, CComBSTR>;
template class CvarTextImpl<CCvarFileName, IVorCvarFileName>;

using cvars::platform::ScopedLock;

namespace {

constexpr std::wstring_view kFileNameFormat = L"filename";
constexpr std::wstring_view kPathFormat = L"path";
constexpr std::wstring_view kFullFileNameFormat = L"fullfilename";
constexpr wchar_t kSeparator = L'\\';

void ReplaceAll(std::wstring& text, std::wstring_view what, std::wstring_view with) {
  for (std::size_t at = text.find(what); at != std::wstring::npos;
       at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
}

}  // namespace

void CCvarFileName::Initialize(const wchar_t* name, const wchar_t* defaultValue,
                               const wchar_t* root, const wchar_t* path, const wchar_t* filters,
                               const wchar_t* format, int maxLength, int directoryOnly,
                               int fileMustExist, CVARFLAGS flags, const wchar_t* guiHints,
                               unsigned int helpStringID, CVARREPLICATIONFLAGS replicationFlags) {
  const cvars::SilentScope silence(*this);
  cvars::ReadLockedDrive();
  SetName(name);
  if (guiHints != nullptr) SetGuiHints(guiHints);
  if (helpStringID != 0) StoreHelpStringID(helpStringID);
  m_maxLength = maxLength;
  m_directoryOnly = directoryOnly;
  m_fileMustExist = fileMustExist;
  const CComBSTR defaultText(defaultValue);
  {
    const ScopedLock guard(m_lock);
    m_root = CComBSTR(root);
    m_path = CComBSTR(path);
    m_filters = CComBSTR(filters);
    m_format = CComBSTR(format);
  }
  (void)StoreDefault(defaultText);
  if (defaultText.Length() == 0) {
    Recompose();
  } else {
    LoadNewRequestedValue(defaultText);
  }
  (void)UpdateAdaptedValueAndNotify();  // suspended: nobody answers
  SetReplicationFlags(replicationFlags);
  SetFlags(static_cast<long>(flags));
}

// Value
// ----------------------------------------------------------------------------------------------

HRESULT CCvarFileName::SetRequestedValue(const wchar_t* text, bool force) {
  if (!force && HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
  LoadNewRequestedValue(text);
  return UpdateAdaptedValueAndNotify();
}

CComBSTR CCvarFileName::CreateRequestedValue(CComBSTR path, CComBSTR fileName) {
  const std::wstring format(ReadField(m_format).View());
  std::wstring value;
  if (format == kFileNameFormat) {
    value = fileName.View();
  } else if (format == kPathFormat) {
    value = path.View();
  } else if (format == kFullFileNameFormat) {
    value = path.View();
    if (value.size() >= 2 && value.back() != kSeparator) value += kSeparator;
    value += fileName.View();
  } else {
    return CComBSTR(L"");
  }
  const std::wstring drive = cvars::LockedDrive();
  return CComBSTR(drive.empty() ? value : cvars::OnDrive(value, drive));
}

void CCvarFileName::LoadNewRequestedValue(const wchar_t* text) {
  const std::wstring_view wanted = cvars::TextOrEmpty(text);
  const std::wstring drive = cvars::LockedDrive();
  {
    const ScopedLock guard(m_lock);
    const std::size_t separator = wanted.rfind(kSeparator);
    if (m_directoryOnly != 0) {
      m_fileName = CComBSTR();
      m_path = CComBSTR(wanted);
    } else if (wanted.find_first_not_of(kSeparator) == std::wstring_view::npos) {
      m_fileName = CComBSTR();
      m_path = CComBSTR();
    } else if (separator != std::wstring_view::npos) {
      m_fileName = CComBSTR(wanted.substr(separator + 1));
      m_path = CComBSTR(wanted.substr(0, separator));
    } else if (m_format.View() == kPathFormat) {
      m_path = CComBSTR(wanted);
    } else {
      m_fileName = CComBSTR(wanted);
    }
    if (!drive.empty()) m_path = CComBSTR(cvars::OnDrive(m_path.View(), drive));
  }
  Recompose();
}

void CCvarFileName::Recompose() {
  StoreRequested(CreateRequestedValue(ReadField(m_path), ReadField(m_fileName)));
}

HRESULT CCvarFileName::get_Value(VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  (void)VariantClear(value);
  std::wstring text(ReadField(m_adapted).View());
  ReplaceAll(text, L"\"", L"\" + chr(34) + \"");
  ReplaceAll(text, L"\r\n", L"\n");
  ReplaceAll(text, L"\n", L"\" + vbcrlf + \"");
  BSTR escaped = nullptr;
  const HRESULT copied = cvars::CopyOut(text, &escaped);
  if (FAILED(copied)) return copied;
  value->vt = VT_BSTR;
  value->bstrVal = escaped;
  return S_OK;
}

// Parts
// ----------------------------------------------------------------------------------------------

HRESULT CCvarFileName::PutPart(CComBSTR& part, const wchar_t* text) {
  if (HasFlag(CVARFLAG_READONLY)) return E_ACCESSDENIED;
  {
    const ScopedLock guard(m_lock);
    part = CComBSTR(text);
  }
  Recompose();
  return UpdateAdaptedValueAndNotify();
}

HRESULT CCvarFileName::get_RootValue(BSTR* root) { return CopyField(m_root, root); }
HRESULT CCvarFileName::put_RootValue(const wchar_t* root) { return PutPart(m_root, root); }
HRESULT CCvarFileName::get_PathValue(BSTR* path) { return CopyField(m_path, path); }
HRESULT CCvarFileName::put_PathValue(const wchar_t* path) { return PutPart(m_path, path); }
HRESULT CCvarFileName::get_FileNameValue(BSTR* fileName) { return CopyField(m_fileName, fileName); }
HRESULT CCvarFileName::put_FileNameValue(const wchar_t* fileName) {
  return PutPart(m_fileName, fileName);
}
HRESULT CCvarFileName::get_FiltersValue(BSTR* filters) { return CopyField(m_filters, filters); }
HRESULT CCvarFileName::put_FiltersValue(const wchar_t* filters) {
  return PutPart(m_filters, filters);
}
HRESULT CCvarFileName::get_AdaptedValueFormat(BSTR* format) { return CopyField(m_format, format); }
HRESULT CCvarFileName::put_AdaptedValueFormat(const wchar_t* format) {
  return PutPart(m_format, format);
}

HRESULT CCvarFileName::get_DirectoryOnly(int* directoryOnly) {
  if (directoryOnly == nullptr) return E_POINTER;
  *directoryOnly = m_directoryOnly;
  return S_OK;
}

HRESULT CCvarFileName::put_DirectoryOnly(int directoryOnly) {
  if (directoryOnly == m_directoryOnly) return S_OK;
  m_directoryOnly = directoryOnly;
  if (directoryOnly != 0) {
    {
      const ScopedLock guard(m_lock);
      m_format = CComBSTR(kPathFormat);
    }
    Recompose();
    AddPending(NOTIFY_FLAGS);  // one notification tells it all
    return UpdateAdaptedValueAndNotify();
  }
  return ForceNotifyFlagsChange();
}

HRESULT CCvarFileName::get_FileMustExist(int* mustExist) {
  if (mustExist == nullptr) return E_POINTER;
  *mustExist = m_fileMustExist;
  return S_OK;
}

HRESULT CCvarFileName::put_FileMustExist(int mustExist) {
  if (mustExist == m_fileMustExist) return S_OK;
  m_fileMustExist = mustExist;
  return ForceNotifyFlagsChange();
}

HRESULT CCvarFileName::ForceNotifyFlagsChange() { return ForceNotification(NOTIFY_FLAGS); }

HRESULT CCvarFileName::get_FullFileNameValue(BSTR* fullName) {
  if (fullName == nullptr) return E_POINTER;
  std::wstring text(ReadField(m_path).View());
  if (text.empty() || text.back() != kSeparator) text += kSeparator;
  if (m_directoryOnly == 0) text += ReadField(m_fileName).View();
  return cvars::CopyOut(text, fullName);
}

HRESULT CCvarFileName::GetExtension(BSTR* extension) {
  if (extension == nullptr) return E_POINTER;
  const CComBSTR adapted = ReadField(m_adapted);
  const std::size_t dot = adapted.View().rfind(L'.');
  if (dot == std::wstring_view::npos) {
    const HRESULT copied = cvars::CopyOut(L"", extension);
    return FAILED(copied) ? copied : E_FAIL;
  }
  return cvars::CopyOut(adapted.View().substr(dot + 1), extension);
}

void CCvarFileName::SetDefaultPath(CComBSTR folder) {
  const ScopedLock guard(m_lock);
  m_path = std::move(folder);
}

void CCvarFileName::SetDefaultRoot(CComBSTR folder) {
  const ScopedLock guard(m_lock);
  m_root = std::move(folder);
}

// Descriptions
// ------------------------------------------------------------------------------------------

HRESULT CCvarFileName::get_Signature(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  CComBSTR range;
  const HRESULT ranged = get_Range(&range);
  if (FAILED(ranged)) return ranged;
  return cvars::CopyOut(cvars::SignatureText(kTypeName)
                            .Add(L"Adapt", ReadField(m_adapted).View())
                            .Add(L"Default", ReadField(m_default).View())
                            .Add(L"Flags", GetFlagsString())
                            .Add(L"Range", range.View())
                            .AddInteger(L"MaxLength", m_maxLength)
                            .Add(L"Root", ReadField(m_root).View())
                            .Add(L"Filters", ReadField(m_filters).View())
                            .Add(L"Path", ReadField(m_path).View())
                            .Text(),
                        text);
}

HRESULT CCvarFileName::FillCvarPropertiesMap(cvars::PropertiesMap& map) {
  const HRESULT filled = CvarTextImpl::FillCvarPropertiesMap(map);
  if (FAILED(filled)) return filled;
  const HRESULT screen = map.SetTextFrom(L"AdaptedValueStringScreen", [this](BSTR* text) {
    return GetAdaptedValueStringScreen(text);
  });
  if (FAILED(screen)) return screen;
  map.Set(L"MaxLength", CComVariant(m_maxLength.Get()));
  map.SetText(L"Root", ReadField(m_root).View());
  map.SetText(L"Filters", ReadField(m_filters).View());
  map.SetText(L"Path", ReadField(m_path).View());
  return S_OK;
}
