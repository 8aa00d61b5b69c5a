#include "CCvarFileName.h"

#include <gtest/gtest.h>

#include "CvarObject.h"
#include "IsolatedHome.h"
#include "LockedDrive.h"
#include "ReadProperties.h"
#include "RecordingListener.h"
#include "SafeArray.h"
#include "platform/Registry.h"

namespace {

using cvars::test::RecordingListener;
using File = CComPtr<CvarObject<CCvarFileName>>;
using Masks = std::vector<NOTIFYTYPE>;

constexpr wchar_t kKey[] = L"SOFTWARE\\Vortana\\Pelora";

class FileName : public ::testing::Test {
 protected:
  static File Make(const wchar_t* format, const wchar_t* defaultValue, const wchar_t* path,
                   int directoryOnly = 0) {
    File cvar = CvarObject<CCvarFileName>::Create();
    cvar->Initialize(L"Save File", defaultValue, L"D:\\", path, L"Traces|*.trc", format, 16,
                     directoryOnly, 0, CVARFLAGS(0), nullptr, 0,
                     REPLICATE_VALUE | REPLICATE_REQUESTED);
    return cvar;
  }
  static std::wstring Get(const File& cvar, HRESULT (IVorCvarFileName::*get)(BSTR*)) {
    CComBSTR text;
    EXPECT_EQ((static_cast<IVorCvarFileName*>(cvar.p)->*get)(&text), S_OK);
    return std::wstring(text.View());
  }
  static std::wstring Adapted(const File& cvar) {
    return std::wstring(cvar->GetAdaptedValue().View());
  }
  static void LockDrive(const std::wstring& drive) {
    ASSERT_EQ(cvars::platform::WriteRegistryText(HKEY_CURRENT_USER, kKey, L"LockedDrive", drive),
              ERROR_SUCCESS);
  }

  cvars::test::IsolatedHome m_home;
};

struct ComposeCase {
  const char* name;
  const wchar_t* format;
  const wchar_t* path;
  const wchar_t* fileName;
  const wchar_t* value;
};
constexpr ComposeCase kComposeCases[] = {
    {"FileNameAlone", L"filename", L"D:\\Data", L"a.trc", L"a.trc"},
    {"PathAlone", L"path", L"D:\\Data", L"a.trc", L"D:\\Data"},
    {"BothWithASeparator", L"fullfilename", L"D:\\Data", L"a.trc", L"D:\\Data\\a.trc"},
    {"NoSecondSeparator", L"fullfilename", L"D:\\Data\\", L"a.trc", L"D:\\Data\\a.trc"},
    {"OneCharacterPathGetsNoSeparator", L"fullfilename", L"D", L"a.trc", L"Da.trc"},
    {"EmptyPath", L"fullfilename", L"", L"a.trc", L"a.trc"},
    {"FormatIsCaseSensitive", L"FileName", L"D:\\Data", L"a.trc", L""},
    {"NoFormat", L"", L"D:\\Data", L"a.trc", L""},
};

TEST_F(FileName, ValueIsComposedByTheFormat) {
  for (const ComposeCase& row : kComposeCases) {
    SCOPED_TRACE(row.name);
    const File cvar = Make(row.format, L"", row.path);
    EXPECT_EQ(cvar->put_FileNameValue(row.fileName), S_OK);
    EXPECT_EQ(Adapted(cvar), row.value);
  }
}

struct SplitCase {
  const char* name;
  const wchar_t* format;
  const wchar_t* request;
  const wchar_t* path;
  const wchar_t* fileName;
};
constexpr SplitCase kSplitCases[] = {
    {"FolderAndFile", L"fullfilename", L"C:\\a\\b.trc", L"C:\\a", L"b.trc"},
    {"TrailingSeparatorIsAFolderAlone", L"fullfilename", L"D:\\Data\\", L"D:\\Data", L""},
    {"BareNameIsTheFile", L"fullfilename", L"b.trc", L"P", L"b.trc"},
    {"BareNameIsThePathOfAPathCvar", L"path", L"b", L"b", L""},
    {"EmptyClearsBoth", L"fullfilename", L"", L"", L""},
    {"SeparatorAloneClearsBoth", L"fullfilename", L"\\", L"", L""},
    {"SeparatorsAloneClearBoth", L"fullfilename", L"\\\\", L"", L""},
};

TEST_F(FileName, RequestIsTakenApart) {
  for (const SplitCase& row : kSplitCases) {
    SCOPED_TRACE(row.name);
    const File cvar = Make(row.format, L"", L"P");
    EXPECT_EQ(cvar->SetRequestedValue(row.request), S_OK);
    EXPECT_EQ(Get(cvar, &IVorCvarFileName::get_PathValue), row.path);
    EXPECT_EQ(Get(cvar, &IVorCvarFileName::get_FileNameValue), row.fileName);
  }
}

TEST_F(FileName, DirectoryOnlyTakesTheWholeTextAsThePath) {
  const File cvar = Make(L"path", L"", L"", 1);
  EXPECT_EQ(cvar->SetRequestedValue(L"D:\\Data\\new"), S_OK);
  EXPECT_EQ(Get(cvar, &IVorCvarFileName::get_PathValue), L"D:\\Data\\new");
  EXPECT_EQ(Get(cvar, &IVorCvarFileName::get_FileNameValue), L"");
  EXPECT_EQ(Get(cvar, &IVorCvarFileName::get_FullFileNameValue), L"D:\\Data\\new\\");
}

TEST_F(FileName, EmptyDefaultKeepsThePathGiven) {
  const File cvar = Make(L"path", L"", L"D:\\Data");
  EXPECT_EQ(Adapted(cvar), L"D:\\Data");
  const File other = Make(L"fullfilename", L"C:\\x\\y", L"D:\\Data");
  EXPECT_EQ(Adapted(other), L"C:\\x\\y");
  EXPECT_EQ(Get(other, &IVorCvarFileName::get_PathValue), L"C:\\x");
}

TEST_F(FileName, EmptyDefaultKeepsTheFileNameThatIsThere) {
  const File cvar = CvarObject<CCvarFileName>::Create();
  EXPECT_EQ(cvar->put_FileNameValue(L"a.trc"), S_OK);
  cvar->Initialize(L"File", L"", L"", L"D:\\Data", L"", L"fullfilename", 16, 0, 0, CVARFLAGS(0),
                   nullptr, 0, REPLICATE_VALUE | REPLICATE_REQUESTED);
  EXPECT_EQ(Adapted(cvar), L"D:\\Data\\a.trc");
}

TEST_F(FileName, SwitchingDirectoryOnlyOnChangesTheFormatToPath) {
  const File cvar = Make(L"fullfilename", L"D:\\Data\\a.trc", L"");
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->put_DirectoryOnly(0), S_OK);
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(cvar->put_DirectoryOnly(1), S_OK);
  EXPECT_EQ(Get(cvar, &IVorCvarFileName::get_AdaptedValueFormat), L"path");
  EXPECT_EQ(Adapted(cvar), L"D:\\Data");
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_FLAGS | NOTIFY_REQUESTED | NOTIFY_VALUE});
  EXPECT_EQ(cvar->put_DirectoryOnly(0), S_OK);
  EXPECT_EQ(listener->TakeMasks(), Masks{NOTIFY_FLAGS});
  EXPECT_EQ(Get(cvar, &IVorCvarFileName::get_AdaptedValueFormat), L"path");
}

TEST_F(FileName, FileMustExistTellsThatTheFlagsChanged) {
  const File cvar = Make(L"path", L"", L"");
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  int mustExist = 9;
  EXPECT_EQ(cvar->get_FileMustExist(&mustExist), S_OK);
  EXPECT_EQ(mustExist, 0);
  EXPECT_EQ(cvar->put_FileMustExist(1), S_OK);
  EXPECT_EQ(cvar->put_FileMustExist(1), S_OK);
  EXPECT_EQ(listener->masks, Masks{NOTIFY_FLAGS});
}

TEST_F(FileName, MaximumLengthDoesNotCut) {
  const File cvar = Make(L"fullfilename", L"", L"");
  EXPECT_EQ(cvar->SetRequestedValue(L"C:\\a folder\\a name of more than sixteen.trc"), S_OK);
  EXPECT_EQ(Adapted(cvar), L"C:\\a folder\\a name of more than sixteen.trc");
}

TEST_F(FileName, ReadOnlyRefusesRequestsAndParts) {
  const File cvar = Make(L"path", L"", L"D:\\Data");
  cvar->SetReadOnly(1);
  EXPECT_EQ(cvar->SetRequestedValue(L"X"), E_ACCESSDENIED);
  EXPECT_EQ(cvar->put_PathValue(L"X"), E_ACCESSDENIED);
  EXPECT_EQ(Adapted(cvar), L"D:\\Data");
  EXPECT_EQ(cvar->SetRequestedValue(L"X", true), S_OK);
  EXPECT_EQ(Adapted(cvar), L"X");
}

struct ExtensionCase {
  const wchar_t* value;
  const wchar_t* extension;
  HRESULT result;
};
constexpr ExtensionCase kExtensionCases[] = {
    {L"setup.lss", L"lss", S_OK},
    {L"README", L"", E_FAIL},
    {L"a.b.c", L"c", S_OK},
    {L"a.", L"", S_OK},
};

TEST_F(FileName, ExtensionIsWhatFollowsTheLastDot) {
  for (const ExtensionCase& row : kExtensionCases) {
    const File cvar = Make(L"filename", row.value, L"");
    CComBSTR extension;
    EXPECT_EQ(cvar->GetExtension(&extension), row.result);
    EXPECT_EQ(extension.View(), row.extension);
    EXPECT_NE(extension.m_str, nullptr);
  }
}

struct ScriptCase {
  const char* name;
  const wchar_t* value;
  const wchar_t* escaped;
};
constexpr ScriptCase kScriptCases[] = {
    {"Plain", L"a.trc", L"a.trc"},
    {"Quote", L"a\"b", L"a\" + chr(34) + \"b"},
    {"LineFeed", L"a\nb", L"a\" + vbcrlf + \"b"},
    {"CarriageReturnLineFeedIsOneBreak", L"a\r\nb", L"a\" + vbcrlf + \"b"},
    {"QuoteThenBreak", L"\"\n", L"\" + chr(34) + \"\" + vbcrlf + \""},
};

TEST_F(FileName, ValueStandsInsideAScriptString) {
  for (const ScriptCase& row : kScriptCases) {
    SCOPED_TRACE(row.name);
    const File cvar = Make(L"filename", row.value, L"");
    CComVariant value;
    ASSERT_EQ(cvar->get_Value(&value), S_OK);
    ASSERT_EQ(value.vt, VT_BSTR);
    EXPECT_STREQ(value.bstrVal, row.escaped);
  }
}

TEST_F(FileName, LockedDriveReplacesTheDriveOfEveryValue) {
  LockDrive(L"E:");
  const File cvar = Make(L"fullfilename", L"C:\\a\\b.trc", L"");
  EXPECT_EQ(Adapted(cvar), L"E:\\a\\b.trc");
  EXPECT_EQ(Get(cvar, &IVorCvarFileName::get_PathValue), L"E:\\a");
  EXPECT_EQ(cvar->SetRequestedValue(L"\\x\\y"), S_OK);
  EXPECT_EQ(Adapted(cvar), L"E:\\x\\y");
}

TEST_F(FileName, InitializeMakesTheRegistryKeyOfTheLockedDrive) {
  Make(L"path", L"", L"");
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyEx(HKEY_CURRENT_USER, kKey, 0, KEY_READ, &key), ERROR_SUCCESS);
  RegCloseKey(key);
  EXPECT_EQ(cvars::LockedDrive(), L"");
}

TEST(OnDrive, ReplacesALeadingLetterAndColonOnly) {
  EXPECT_EQ(cvars::OnDrive(L"C:\\x", L"D:"), L"D:\\x");
  EXPECT_EQ(cvars::OnDrive(L"c:x", L"D:"), L"D:x");
  EXPECT_EQ(cvars::OnDrive(L"x", L"D:"), L"D:x");
  EXPECT_EQ(cvars::OnDrive(L"1:x", L"D:"), L"D:1:x");
  EXPECT_EQ(cvars::OnDrive(L"", L"D:"), L"D:");
}

TEST_F(FileName, SignatureAndParts) {
  const File cvar = Make(L"filename", L"a.trc", L"D:\\Data");
  EXPECT_EQ(Get(cvar, &IVorCvarFileName::get_RootValue), L"D:\\");
  EXPECT_EQ(Get(cvar, &IVorCvarFileName::get_FiltersValue), L"Traces|*.trc");
  cvar->SetDefaultPath(CComBSTR(L"E:\\"));
  cvar->SetDefaultRoot(CComBSTR(L"F:\\"));
  CComBSTR text;
  EXPECT_EQ(cvar->get_Signature(&text), S_OK);
  EXPECT_EQ(text.View(),
            L"Type,FileName,Adapt,a.trc,Default,a.trc,Flags,-,Range,n/a,MaxLength,16,Root,F:\\,"
            L"Filters,Traces|*.trc,Path,E:\\");
}

TEST_F(FileName, PropertiesAddItsEight) {
  const File cvar = Make(L"filename", L"a.trc", L"D:\\Data");
  ASSERT_EQ(cvar->SetRequestedValue(L"E:\\b.trc"), S_OK);
  EXPECT_EQ(cvars::test::OwnPropertiesOf(*cvar),
            (cvars::test::Properties{{L"AdaptedValue", VT_BSTR, L"b.trc"},
                                     {L"AdaptedValueStringScreen", VT_BSTR, L"b.trc"},
                                     {L"Default", VT_BSTR, L"a.trc"},
                                     {L"Filters", VT_BSTR, L"Traces|*.trc"},
                                     {L"MaxLength", VT_I4, L"16"},
                                     {L"Path", VT_BSTR, L"E:"},
                                     {L"RequestedValue", VT_BSTR, L"b.trc"},
                                     {L"Root", VT_BSTR, L"D:\\"}}));
}

}  // namespace
