#include "platform/Registry.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "IsolatedHome.h"

namespace cvars::platform {
namespace {

constexpr LSTATUS kSuccess = 0;
constexpr LSTATUS kNotFound = 2;
constexpr LSTATUS kAccessDenied = 5;
constexpr LSTATUS kInvalidHandle = 6;
constexpr LSTATUS kInvalidParameter = 87;
constexpr LSTATUS kBadPath = 161;
constexpr LSTATUS kMoreData = 234;
constexpr LSTATUS kNoMoreItems = 259;
constexpr LSTATUS kDamaged = 1009;
constexpr LSTATUS kKeyDeleted = 1018;

class RegistryTest : public testing::Test {
 protected:
  std::filesystem::path File() const { return m_home.Folder() / "registry" / "current_user.reg"; }

  std::string Content() const {
    std::ifstream file(File(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  void Put(const std::string& content) const {
    std::filesystem::create_directories(File().parent_path());
    std::ofstream(File(), std::ios::binary) << content;
  }

  HKEY Made(const wchar_t* path, REGSAM access = KEY_READ | KEY_WRITE) const {
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyEx(HKEY_CURRENT_USER, path, 0, nullptr, REG_OPTION_NON_VOLATILE, access,
                             nullptr, &key, nullptr),
              kSuccess);
    return key;
  }

  test::IsolatedHome m_home;
};

LSTATUS SetNumber(HKEY key, const wchar_t* name, DWORD number) {
  return RegSetValueEx(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), 4);
}

DWORD Number(HKEY key, const wchar_t* name) {
  DWORD number = 0;
  DWORD type = 0;
  DWORD size = sizeof(number);
  EXPECT_EQ(RegQueryValueEx(key, name, nullptr, &type, reinterpret_cast<BYTE*>(&number), &size),
            kSuccess);
  EXPECT_EQ(type, REG_DWORD);
  EXPECT_EQ(size, 4u);
  return number;
}

TEST_F(RegistryTest, NumberIsReadBack) {
  const HKEY key = Made(L"SOFTWARE\\Vortana\\Quillon");
  EXPECT_EQ(SetNumber(key, L"EnableCvarDevLogging", 4000000000u), kSuccess);
  EXPECT_EQ(Number(key, L"EnableCvarDevLogging"), 4000000000u);
  EXPECT_EQ(RegCloseKey(key), kSuccess);
}

TEST_F(RegistryTest, FileIsReadableText) {
  const HKEY key = Made(L"SOFTWARE\\Vortana\\Quillon");
  ASSERT_EQ(SetNumber(key, L"EnableCvarDevLogging", 1), kSuccess);
  RegCloseKey(key);
  ASSERT_EQ(WriteRegistryText(HKEY_CURRENT_USER, L"SOFTWARE\\Vortana\\Pelora", L"LockedDrive",
                              L"D:\\\"\u00b5\""),
            kSuccess);
  EXPECT_EQ(Content(),
            "Windows Registry Editor Version 5.00\n"
            "\n[HKEY_CURRENT_USER\\SOFTWARE\\Vortana\\Pelora]\n"
            "\"LockedDrive\"=\"D:\\\\\\\"\xC2\xB5\\\"\"\n"
            "\n[HKEY_CURRENT_USER\\SOFTWARE\\Vortana\\Quillon]\n"
            "\"EnableCvarDevLogging\"=dword:00000001\n");
}

TEST_F(RegistryTest, FileWrittenByHandIsRead) {
  Put("\xEF\xBB\xBFWindows Registry Editor Version 5.00\r\n"
      "; a remark\r\n\r\n"
      "[HKEY_CURRENT_USER\\Software\\Vortana]\r\n"
      "@=\"default\"\r\n"
      "\"Number\" = dword:0000000A\r\n"
      "\"Bytes\"=hex:01,02,\\\r\n  ff\r\n"
      "\"None\"=hex(0):\r\n");
  EXPECT_EQ(ReadRegistryText(HKEY_CURRENT_USER, L"software\\VORTANA", L""), L"default");
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyEx(HKEY_CURRENT_USER, L"SOFTWARE\\Vortana", 0, KEY_READ, &key), kSuccess);
  EXPECT_EQ(Number(key, L"number"), 10u);
  BYTE bytes[4] = {9, 9, 9, 9};
  DWORD size = sizeof(bytes);
  DWORD type = 0;
  EXPECT_EQ(RegQueryValueEx(key, L"Bytes", nullptr, &type, bytes, &size), kSuccess);
  EXPECT_EQ(type, REG_BINARY);
  EXPECT_EQ(std::vector<BYTE>(bytes, bytes + size), (std::vector<BYTE>{1, 2, 255}));
  size = sizeof(bytes);
  EXPECT_EQ(RegQueryValueEx(key, L"None", nullptr, &type, bytes, &size), kSuccess);
  EXPECT_EQ(type, REG_NONE);
  EXPECT_EQ(size, 0u);
  RegCloseKey(key);
}

struct ValueCase {
  const char* name;
  DWORD type;
  std::vector<BYTE> data;
};

std::vector<BYTE> Bytes(const std::wstring& text) {
  const auto* const first = reinterpret_cast<const BYTE*>(text.data());
  return {first, first + text.size() * sizeof(wchar_t)};
}

TEST_F(RegistryTest, EveryKindOfValueSurvivesTheFile) {
  std::vector<BYTE> many(1000);
  for (std::size_t i = 0; i < many.size(); ++i) many[i] = static_cast<BYTE>(i);
  const ValueCase rows[] = {
      {"Text", REG_SZ, Bytes(std::wstring(L"a b\0", 4))},
      {"TextOfBackslashes", REG_SZ, Bytes(std::wstring(L"\\\"\\\\\0", 5))},
      {"TextWithLineFeed", REG_SZ, Bytes(std::wstring(L"a\r\nb\0", 5))},
      {"TextWithoutTerminator", REG_SZ, Bytes(L"abc")},
      {"TextWithInnerTerminator", REG_SZ, Bytes(std::wstring(L"a\0b\0", 4))},
      {"TextOfOddSize", REG_SZ, {1, 2, 3}},
      {"TextOfNoCharacter", REG_SZ, Bytes(std::wstring(L"\xD800\0", 2))},
      {"EmptyText", REG_SZ, Bytes(std::wstring(1, L'\0'))},
      {"NoBytesOfText", REG_SZ, {}},
      {"Expandable", REG_EXPAND_SZ, Bytes(std::wstring(L"%LOGS%\0", 7))},
      {"Texts", REG_MULTI_SZ, Bytes(std::wstring(L"a\0b\0\0", 5))},
      {"Number", REG_DWORD, {1, 2, 3, 4}},
      {"NumberOfOddSize", REG_DWORD, {1, 2, 3}},
      {"LongNumber", REG_QWORD, {1, 2, 3, 4, 5, 6, 7, 8}},
      {"ManyBytes", REG_BINARY, many},
      {"NoBytes", REG_BINARY, {}},
      {"UnknownType", 0xFFFF0001, {5}},
  };
  const HKEY key = Made(L"Values");
  for (const ValueCase& row : rows) {
    const std::wstring name(row.name, row.name + std::strlen(row.name));
    ASSERT_EQ(RegSetValueEx(key, name.c_str(), 0, row.type, row.data.data(),
                            static_cast<DWORD>(row.data.size())),
              kSuccess)
        << row.name;
  }
  Put(Content());  // the file alone must tell
  for (const ValueCase& row : rows) {
    const std::wstring name(row.name, row.name + std::strlen(row.name));
    std::vector<BYTE> data(2000);
    DWORD size = 2000;
    DWORD type = 0;
    ASSERT_EQ(RegQueryValueEx(key, name.c_str(), nullptr, &type, data.data(), &size), kSuccess)
        << row.name;
    data.resize(size);
    EXPECT_EQ(type, row.type) << row.name;
    EXPECT_EQ(data, row.data) << row.name;
  }
  RegCloseKey(key);
}

TEST_F(RegistryTest, NamesAreFoundInAnyCaseAndKeepTheirSpelling) {
  const HKEY key = Made(L"Mixed\\Case");
  ASSERT_EQ(SetNumber(key, L"Volt \u00e4", 1), kSuccess);
  ASSERT_EQ(SetNumber(key, L"VOLT \u00c4", 2), kSuccess);
  EXPECT_EQ(Number(key, L"volt \u00c4"), 2u);
  RegCloseKey(key);
  EXPECT_NE(Content().find("[HKEY_CURRENT_USER\\Mixed\\Case]\n\"Volt \xC3\xA4\"=dword:00000002"),
            std::string::npos);
  HKEY again = nullptr;
  EXPECT_EQ(RegOpenKeyEx(HKEY_CURRENT_USER, L"MIXED\\case\\", 0, KEY_READ, &again), kSuccess);
  RegCloseKey(again);
}

TEST_F(RegistryTest, CreationTellsWhetherTheKeyWasThere) {
  HKEY key = nullptr;
  DWORD disposition = 0;
  EXPECT_EQ(RegCreateKeyEx(HKEY_CURRENT_USER, L"a\\b", 0, nullptr, 0, KEY_READ, nullptr, &key,
                           &disposition),
            kSuccess);
  EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
  RegCloseKey(key);
  EXPECT_EQ(RegCreateKeyEx(HKEY_CURRENT_USER, L"A\\B", 0, nullptr, 0, KEY_READ, nullptr, &key,
                           &disposition),
            kSuccess);
  EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
  RegCloseKey(key);
}

TEST_F(RegistryTest, SizesAreAskedForFirst) {
  const HKEY key = Made(L"a");
  const std::vector<BYTE> text = Bytes(std::wstring(L"abc\0", 4));
  ASSERT_EQ(RegSetValueEx(key, L"v", 0, REG_SZ, text.data(), 16), kSuccess);
  DWORD size = 77;
  EXPECT_EQ(RegQueryValueEx(key, L"v", nullptr, nullptr, nullptr, &size), kSuccess);
  EXPECT_EQ(size, 16u);
  BYTE buffer[16] = {99};
  size = 15;
  EXPECT_EQ(RegQueryValueEx(key, L"v", nullptr, nullptr, buffer, &size), kMoreData);
  EXPECT_EQ(size, 16u);
  EXPECT_EQ(buffer[0], 99);
  EXPECT_EQ(RegQueryValueEx(key, L"v", nullptr, nullptr, buffer, nullptr), kInvalidParameter);
  EXPECT_EQ(RegQueryValueEx(key, L"v", nullptr, nullptr, nullptr, nullptr), kSuccess);
  RegCloseKey(key);
}

TEST_F(RegistryTest, MissingKeysAndValues) {
  HKEY key = reinterpret_cast<HKEY>(this);
  EXPECT_EQ(RegOpenKeyEx(HKEY_CURRENT_USER, L"none", 0, KEY_READ, &key), kNotFound);
  EXPECT_EQ(key, nullptr);
  key = Made(L"a");
  EXPECT_EQ(RegQueryValueEx(key, L"none", nullptr, nullptr, nullptr, nullptr), kNotFound);
  EXPECT_EQ(RegDeleteValue(key, L"none"), kNotFound);
  EXPECT_EQ(RegDeleteKey(key, L"none"), kNotFound);
  RegCloseKey(key);
  EXPECT_FALSE(std::filesystem::exists(m_home.Folder() / "registry" / "classes_root.reg"));
}

TEST_F(RegistryTest, NamesThatAreNotAllowed) {
  HKEY key = nullptr;
  EXPECT_EQ(RegOpenKeyEx(HKEY_CURRENT_USER, L"\\a", 0, KEY_READ, &key), kBadPath);
  for (const std::wstring& name : {std::wstring(256, L'k'), std::wstring(L"a\nb")}) {
    EXPECT_EQ(RegCreateKeyEx(HKEY_CURRENT_USER, name.c_str(), 0, nullptr, 0, KEY_READ, nullptr,
                             &key, nullptr),
              kInvalidParameter);
  }
  EXPECT_EQ(SetNumber(HKEY_CURRENT_USER, L"a\rb", 1), kInvalidParameter);
  EXPECT_FALSE(std::filesystem::exists(File()));
}

TEST_F(RegistryTest, AccessOfTheHandleCounts) {
  const HKEY writing = Made(L"a", KEY_WRITE);
  EXPECT_EQ(SetNumber(writing, L"v", 1), kSuccess);
  EXPECT_EQ(RegQueryValueEx(writing, L"v", nullptr, nullptr, nullptr, nullptr), kAccessDenied);
  const HKEY reading = Made(L"a", KEY_READ);
  EXPECT_EQ(Number(reading, L"v"), 1u);
  EXPECT_EQ(SetNumber(reading, L"v", 2), kAccessDenied);
  EXPECT_EQ(RegDeleteValue(reading, L"v"), kAccessDenied);
  HKEY below = nullptr;
  EXPECT_EQ(RegCreateKeyEx(reading, L"b", 0, nullptr, 0, KEY_READ, nullptr, &below, nullptr),
            kAccessDenied);
  RegCloseKey(writing);
  RegCloseKey(reading);
}

TEST_F(RegistryTest, ClosedHandleIsOver) {
  const HKEY key = Made(L"a");
  EXPECT_EQ(RegCloseKey(key), kSuccess);
  EXPECT_EQ(RegCloseKey(key), kInvalidHandle);
  EXPECT_EQ(SetNumber(key, L"v", 1), kInvalidHandle);
  EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), kSuccess);
  EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), kSuccess);
}

TEST_F(RegistryTest, DeletedKeyAndItsHandles) {
  const HKEY key = Made(L"a\\b");
  EXPECT_EQ(RegDeleteKey(HKEY_CURRENT_USER, L"a"), kAccessDenied);
  EXPECT_EQ(RegDeleteKey(HKEY_CURRENT_USER, L"A\\B"), kSuccess);
  EXPECT_EQ(SetNumber(key, L"v", 1), kKeyDeleted);
  EXPECT_EQ(RegQueryValueEx(key, L"v", nullptr, nullptr, nullptr, nullptr), kKeyDeleted);
  HKEY above = nullptr;
  EXPECT_EQ(RegOpenKeyEx(HKEY_CURRENT_USER, L"a", 0, KEY_READ, &above), kSuccess);
  RegCloseKey(above);
  RegCloseKey(key);
}

TEST_F(RegistryTest, EnumerationGivesAllNames) {
  const HKEY key = Made(L"top");
  for (const wchar_t* name : {L"top\\one", L"top\\Two"}) RegCloseKey(Made(name));
  ASSERT_EQ(SetNumber(key, L"value", 7), kSuccess);
  wchar_t name[4];
  DWORD size = 4;
  EXPECT_EQ(RegEnumKeyEx(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr), kSuccess);
  EXPECT_STREQ(name, L"one");
  EXPECT_EQ(size, 3u);
  size = 4;
  EXPECT_EQ(RegEnumKeyEx(key, 1, name, &size, nullptr, nullptr, nullptr, nullptr), kSuccess);
  EXPECT_STREQ(name, L"Two");
  size = 4;
  EXPECT_EQ(RegEnumKeyEx(key, 2, name, &size, nullptr, nullptr, nullptr, nullptr), kNoMoreItems);
  size = 3;
  EXPECT_EQ(RegEnumKeyEx(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr), kMoreData);

  wchar_t valueName[16];
  DWORD number = 0;
  DWORD type = 0;
  DWORD bytes = 4;
  size = 16;
  EXPECT_EQ(RegEnumValue(key, 0, valueName, &size, nullptr, &type, reinterpret_cast<BYTE*>(&number),
                         &bytes),
            kSuccess);
  EXPECT_STREQ(valueName, L"value");
  EXPECT_EQ(type, REG_DWORD);
  EXPECT_EQ(number, 7u);
  size = 16;
  EXPECT_EQ(RegEnumValue(key, 1, valueName, &size, nullptr, nullptr, nullptr, nullptr),
            kNoMoreItems);
  RegCloseKey(key);
}

struct DamageCase {
  const char* name;
  const char* content;
  int line;
};

constexpr DamageCase kDamageCases[] = {
    {"Empty", "", 1},
    {"OtherFile", "{\"a\": 1}\n", 1},
    {"ValueOutsideKeys", "Windows Registry Editor Version 5.00\n\"a\"=\"b\"\n", 2},
    {"OtherRoot", "Windows Registry Editor Version 5.00\n\n[HKEY_USERS\\a]\n", 3},
    {"OpenKey", "Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER\\a\n", 2},
    {"OpenText", "Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER]\n\"a\"=\"b\n", 3},
    {"NoEquals", "Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER]\n\"a\"\n", 3},
    {"BadNumber", "Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER]\n@=dword:xyz\n", 3},
    {"LargeNumber", "Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER]\n@=dword:100000000",
     3},
    {"BadByte", "Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER]\n@=hex:01,100\n", 3},
    {"CutBytes", "Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER]\n@=hex:01,\\\n", 3},
    {"TwiceTheSame",
     "Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER]\n\"a\"=\"\"\n\"A\"=\"\"", 4},
    {"BrokenUtf8", "Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER]\n@=\"\xFF\"\n", 3},
};

TEST_F(RegistryTest, DamagedFileIsToldAndNeverReplaced) {
  for (const DamageCase& row : kDamageCases) {
    Put(row.content);
    EXPECT_EQ(SetNumber(HKEY_CURRENT_USER, L"v", 1), kDamaged) << row.name;
    HKEY key = nullptr;
    EXPECT_EQ(
        RegCreateKeyEx(HKEY_CURRENT_USER, L"k", 0, nullptr, 0, KEY_READ, nullptr, &key, nullptr),
        kDamaged)
        << row.name;
    EXPECT_EQ(Content(), row.content) << row.name;
    const std::string place = File().string() + ":" + std::to_string(row.line) + ": ";
    EXPECT_EQ(RegistryDamage(HKEY_CURRENT_USER).substr(0, place.size()), place) << row.name;
  }
}

TEST_F(RegistryTest, RepairedFileIsReadAgain) {
  Put("damaged");
  EXPECT_EQ(SetNumber(HKEY_CURRENT_USER, L"v", 1), kDamaged);
  Put("Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER]\n\"v\"=dword:00000005\n");
  EXPECT_EQ(Number(HKEY_CURRENT_USER, L"v"), 5u);
  EXPECT_EQ(RegistryDamage(HKEY_CURRENT_USER), "");
}

TEST_F(RegistryTest, PlaceThatCannotBeWritten) {
  std::ofstream(m_home.Folder() / "registry") << "a file where the folder would be";
  EXPECT_EQ(SetNumber(HKEY_CURRENT_USER, L"v", 1), static_cast<LSTATUS>(ERROR_WRITE_FAULT));
}

TEST_F(RegistryTest, HomesDoNotSeeEachOther) {
  ASSERT_EQ(SetNumber(HKEY_CURRENT_USER, L"v", 1), kSuccess);
  {
    const test::IsolatedHome other;
    EXPECT_EQ(RegQueryValueEx(HKEY_CURRENT_USER, L"v", nullptr, nullptr, nullptr, nullptr),
              kNotFound);
  }
  EXPECT_EQ(Number(HKEY_CURRENT_USER, L"v"), 1u);
}

int WaitFor(pid_t child) {
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return status;
}

TEST_F(RegistryTest, ChangeOfAnotherProcessIsSeen) {
  ASSERT_EQ(SetNumber(HKEY_CURRENT_USER, L"v", 1), kSuccess);
  for (DWORD round = 2; round < 12; ++round) {
    const pid_t child = fork();
    if (child == 0) _exit(SetNumber(HKEY_CURRENT_USER, L"v", round) == kSuccess ? 0 : 1);
    ASSERT_EQ(WaitFor(child), 0);
    EXPECT_EQ(Number(HKEY_CURRENT_USER, L"v"), round);
  }
}

TEST_F(RegistryTest, ProcessesWritingAtTheSameTimeLoseNothing) {
  constexpr int kWriters = 3;
  constexpr int kValues = 15;
  std::vector<pid_t> children;
  for (int writer = 0; writer < kWriters; ++writer) {
    const pid_t child = fork();
    if (child == 0) {
      for (int i = 0; i < kValues; ++i) {
        const std::wstring name = std::to_wstring(writer) + L"-" + std::to_wstring(i);
        if (SetNumber(HKEY_CURRENT_USER, name.c_str(), static_cast<DWORD>(i)) != kSuccess) _exit(1);
      }
      _exit(0);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) EXPECT_EQ(WaitFor(child), 0);
  for (int writer = 0; writer < kWriters; ++writer) {
    for (int i = 0; i < kValues; ++i) {
      const std::wstring name = std::to_wstring(writer) + L"-" + std::to_wstring(i);
      EXPECT_EQ(Number(HKEY_CURRENT_USER, name.c_str()), static_cast<DWORD>(i));
    }
  }
}

// The child tells each number after its call returned; whatever the moment of the kill, the file
// then has that number or the one the child was at.
TEST_F(RegistryTest, KilledWriterLeavesAWholeFile) {
  ASSERT_EQ(WriteRegistryText(HKEY_CURRENT_USER, L"kept", L"text", std::wstring(5000, L'x')),
            kSuccess);
  for (int round = 0; round < 20; ++round) {
    ASSERT_EQ(SetNumber(HKEY_CURRENT_USER, L"v", 0), kSuccess);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
      for (DWORD number = 1;; ++number) {
        if (SetNumber(HKEY_CURRENT_USER, L"v", number) != kSuccess) _exit(1);
        if (write(ends[1], &number, sizeof(number)) != sizeof(number)) _exit(1);
      }
    }
    close(ends[1]);
    DWORD told = 0;
    for (int i = 0; i <= round % 5; ++i) {
      ASSERT_EQ(read(ends[0], &told, sizeof(told)), static_cast<ssize_t>(sizeof(told)));
    }
    usleep(static_cast<useconds_t>(round * 137));  // moves the moment of the kill
    kill(child, SIGKILL);
    EXPECT_TRUE(WIFSIGNALED(WaitFor(child)));
    DWORD later = 0;
    while (read(ends[0], &later, sizeof(later)) == static_cast<ssize_t>(sizeof(later)))
      told = later;
    close(ends[0]);
    const DWORD stored = Number(HKEY_CURRENT_USER, L"v");
    EXPECT_TRUE(stored == told || stored == told + 1) << stored << " after " << told;
    EXPECT_EQ(ReadRegistryText(HKEY_CURRENT_USER, L"kept", L"text").size(), 5000u);
  }
}

TEST_F(RegistryTest, MachinesClassesAreShownAndNotChanged) {
  const wchar_t kKey[] = L"VBScript.RegExp\\CLSID";
  const std::wstring installed = ReadRegistryText(HKEY_CLASSES_ROOT, kKey, L"");
  EXPECT_EQ(installed, L"{E27BA3E9-A748-441A-BC55-1094A25F1589}");
  EXPECT_EQ(RegDeleteKey(HKEY_CLASSES_ROOT, kKey), kAccessDenied);
  ASSERT_EQ(WriteRegistryText(HKEY_CLASSES_ROOT, kKey, L"", L"mine"), kSuccess);
  EXPECT_EQ(ReadRegistryText(HKEY_CLASSES_ROOT, kKey, L""), L"mine");
  EXPECT_EQ(RegDeleteKey(HKEY_CLASSES_ROOT, kKey), kSuccess);
  EXPECT_EQ(ReadRegistryText(HKEY_CLASSES_ROOT, kKey, L""), installed);
}

}  // namespace
}  // namespace cvars::platform
