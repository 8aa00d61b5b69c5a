#include "platform/Modules.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "IsolatedHome.h"
#include "platform/LastError.h"
#include "platform/Utf8.h"

namespace cvars::platform {
namespace {

const std::filesystem::path kProbe = CVARS_PROBE_MODULE;
const std::filesystem::path kBareProbe = CVARS_BARE_PROBE_MODULE;

std::wstring Wide(const std::filesystem::path& path) { return FromUtf8(path.native()); }

std::wstring Text(HINSTANCE module, UINT id) {
  wchar_t buffer[100] = L"untouched";
  const int length = LoadString(module, id, buffer, 100);
  EXPECT_EQ(buffer[length], L'\0');
  return std::wstring(buffer, static_cast<std::size_t>(length));
}

std::string Content(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string Content(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

class ModulesTest : public testing::Test {
 protected:
  void SetUp() override {
    m_probe = LoadLibrary(Wide(kProbe).c_str());
    ASSERT_NE(m_probe, nullptr);
  }
  void TearDown() override { EXPECT_EQ(FreeLibrary(m_probe), 1); }

  test::IsolatedHome m_home;
  HMODULE m_probe = nullptr;
};

TEST_F(ModulesTest, HandlesAreSmallPositiveNumbers) {
  const auto number = reinterpret_cast<std::intptr_t>(m_probe);
  EXPECT_GT(number, 0);
  EXPECT_LT(number, 1000);
}

TEST_F(ModulesTest, LoadingTwiceGivesTheSameHandleAndCounts) {
  EXPECT_EQ(LoadLibrary(Wide(kProbe).c_str()), m_probe);
  EXPECT_EQ(FreeLibrary(m_probe), 1);
  EXPECT_NE(GetProcAddress(m_probe, "AnswerOfProbe"), nullptr);
}

TEST_F(ModulesTest, ExportedFunctionIsCalled) {
  const FARPROC found = GetProcAddress(m_probe, "AnswerOfProbe");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(reinterpret_cast<int (*)()>(found)(), 42);
}

TEST_F(ModulesTest, MissingFunction) {
  SetLastError(ERROR_SUCCESS);
  EXPECT_EQ(GetProcAddress(m_probe, "NoSuchFunction"), nullptr);
  EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);
}

TEST_F(ModulesTest, MissingModule) {
  for (const wchar_t* name : {L"NoSuchModule.dll", L"/nowhere/module.so", L"C:\\module.dll", L""}) {
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(LoadLibrary(name), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
  }
}

TEST_F(ModulesTest, FileThatIsNoModule) {
  std::ofstream(m_home.Folder() / "text.dll") << "no module";
  EXPECT_EQ(LoadLibrary(Wide(m_home.Folder() / "text.dll").c_str()), nullptr);
}

TEST_F(ModulesTest, NameAloneIsFoundInTheSearchPath) {
  std::filesystem::copy_file(kProbe, m_home.Folder() / "copied.dll");
  setenv("PATH", ("/nowhere::" + m_home.Folder().string()).c_str(), 1);
  const HMODULE copied = LoadLibrary(L"copied.dll");
  ASSERT_NE(copied, nullptr);
  EXPECT_NE(copied, m_probe);
  EXPECT_EQ(LoadLibrary(L"Copied.dll"), nullptr);
  EXPECT_EQ(FreeLibrary(copied), 1);
}

TEST_F(ModulesTest, SystemFolderIsThatOfThePlatformLibrary) {
  wchar_t folder[512];
  const UINT length = GetSystemDirectory(folder, 512);
  ASSERT_LT(length, 512u);
  EXPECT_EQ(GetSystemDirectory(folder, 3), length + 1);
  EXPECT_TRUE(std::filesystem::equivalent(ToUtf8(folder), CVARS_BINARY_DIR "/lib"));
}

TEST_F(ModulesTest, FreedHandleIsOver) {
  std::filesystem::copy_file(kProbe, m_home.Folder() / "copied.so");
  const HMODULE copied = LoadLibrary(Wide(m_home.Folder() / "copied.so").c_str());
  ASSERT_NE(copied, nullptr);
  EXPECT_EQ(FreeLibrary(copied), 1);
  SetLastError(ERROR_SUCCESS);
  EXPECT_EQ(FreeLibrary(copied), 0);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
  EXPECT_EQ(GetProcAddress(copied, "AnswerOfProbe"), nullptr);
  EXPECT_EQ(Text(copied, 1), L"");
}

TEST_F(ModulesTest, ExecutableIsAModule) {
  const HMODULE executable = GetModuleHandle(nullptr);
  EXPECT_NE(executable, nullptr);
  EXPECT_NE(executable, m_probe);
  EXPECT_EQ(ModuleOf(reinterpret_cast<const void*>(&Wide)), executable);
  EXPECT_EQ(FreeLibrary(executable), 0);
  wchar_t path[512];
  const DWORD length = GetModuleFileName(nullptr, path, 512);
  EXPECT_EQ(ToUtf8({path, length}), std::filesystem::read_symlink("/proc/self/exe").native());
}

TEST_F(ModulesTest, PathOfModuleIsCutToTheRoom) {
  wchar_t path[5];
  EXPECT_EQ(GetModuleFileName(m_probe, path, 5), 5u);
  EXPECT_EQ(std::wstring(path), Wide(kProbe).substr(0, 4));
  EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
}

TEST_F(ModulesTest, LoadedModuleIsFoundByPathAndByAddress) {
  EXPECT_EQ(GetModuleHandle(Wide(kProbe).c_str()), m_probe);
  EXPECT_EQ(ModuleOf(reinterpret_cast<const void*>(GetProcAddress(m_probe, "AnswerOfProbe"))),
            m_probe);
  EXPECT_EQ(GetModuleHandle(L"NoSuchModule.dll"), nullptr);
  EXPECT_EQ(ModuleOf(nullptr), nullptr);
}

struct TextCase {
  const char* name;
  UINT id;
  const wchar_t* text;
};

constexpr TextCase kTextCases[] = {
    {"Plain", 1, L"of the module"},
    {"HexadecimalNumber", 16, L"hexadecimal number"},
    {"Escapes", 20, L"line\none\ttab \"quoted\" back\\slash"},
    {"CodePoints", 21, L"\u2126 \u00b5 A 5 \u00b5\u03a9 \U0001F600"},
    {"Empty", 22, L""},
    {"SecondTable", 23, L"a second table"},
    {"LargeNumber", 4000000000u, L"large number"},
    {"Missing", 2, L""},
};

TEST_F(ModulesTest, TextsOfTheModule) {
  for (const TextCase& row : kTextCases) EXPECT_EQ(Text(m_probe, row.id), row.text) << row.name;
}

TEST_F(ModulesTest, TextsOfTheExecutable) {
  EXPECT_EQ(Text(nullptr, 1), L"of the executable");
  EXPECT_EQ(Text(GetModuleHandle(nullptr), 1), L"of the executable");
}

TEST_F(ModulesTest, ModuleWithoutResourcesHasNoneOfAnother) {
  const HMODULE bare = LoadLibrary(Wide(kBareProbe).c_str());
  ASSERT_NE(bare, nullptr);
  EXPECT_EQ(Text(bare, 1), L"");
  EXPECT_EQ(FreeLibrary(bare), 1);
}

TEST_F(ModulesTest, TextIsCutToTheRoom) {
  wchar_t buffer[7] = L"??????";
  EXPECT_EQ(LoadString(m_probe, 1, buffer, 7), 6);
  EXPECT_STREQ(buffer, L"of the");
  EXPECT_EQ(LoadString(m_probe, 1, buffer, 1), 0);
  EXPECT_STREQ(buffer, L"");
}

TEST_F(ModulesTest, RoomOfZeroGivesTheTextItself) {
  const wchar_t* text = nullptr;
  EXPECT_EQ(LoadString(m_probe, 1, reinterpret_cast<wchar_t*>(&text), 0), 13);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(std::wstring(text, 13), L"of the module");
}

TEST_F(ModulesTest, BitmapsAndIconsAreTheFilesAsTheyStand) {
  EXPECT_EQ(Content(FindModuleResource(m_probe, ResourceKind::kBitmap, 7)),
            Content(CVARS_SOURCE_DIR "/tests/platform/modules/knob.bmp"));
  EXPECT_EQ(Content(FindModuleResource(m_probe, ResourceKind::kIcon, 7)),
            Content(CVARS_SOURCE_DIR "/tests/platform/modules/knob.ico"));
  EXPECT_TRUE(FindModuleResource(m_probe, ResourceKind::kBitmap, 8).empty());
  EXPECT_TRUE(FindModuleResource(nullptr, ResourceKind::kBitmap, 7).empty());
}

}  // namespace
}  // namespace cvars::platform
