#include "platform/HostPath.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "IsolatedHome.h"
#include "platform/Home.h"
#include "platform/Registry.h"

namespace cvars::platform {
namespace {

class HostPathTest : public testing::Test {
 protected:
  test::IsolatedHome m_home;
};

struct DriveCase {
  const char* name;
  const wchar_t* path;
  const char* belowHome;
};

constexpr DriveCase kDriveCases[] = {
    {"BackslashesSeparate", L"C:\\a\\b", "drive_c/a/b"},
    {"SlashesSeparate", L"C:/a/b", "drive_c/a/b"},
    {"LetterInLowerCase", L"c:\\a", "drive_c/a"},
    {"DriveAlone", L"D:", "drive_d"},
    {"DriveRoot", L"D:\\", "drive_d"},
    {"AnyLetter", L"Z:\\x", "drive_z/x"},
    {"WithoutSeparatorAfterColon", L"C:a", "drive_c/a"},
    {"CaseOfNamesCounts", L"C:\\Logs\\logs", "drive_c/Logs/logs"},
    {"DotsUpStayInside", L"C:\\..\\..\\x", "drive_c/x"},
    {"DotsUpWithin", L"C:\\a\\..\\b", "drive_c/b"},
    {"DotsUpBySlash", L"C:/../../../etc/passwd", "drive_c/etc/passwd"},
    {"SingleDotsVanish", L"C:\\.\\a\\.", "drive_c/a"},
    {"DoubledSeparators", L"C:\\\\a\\\\b\\", "drive_c/a/b"},
    {"BlanksAndDotsInNames", L"C:\\my file...txt", "drive_c/my file...txt"},
};

TEST_F(HostPathTest, DrivesLieBelowTheHome) {
  for (const DriveCase& row : kDriveCases) {
    EXPECT_EQ(HostPath(row.path), m_home.Folder() / row.belowHome) << row.name;
  }
}

TEST_F(HostPathTest, NamesBeyondAsciiAreUtf8) {
  EXPECT_EQ(HostPath(L"C:\\\u00b5\u2126\U0001F600").native(),
            (m_home.Folder() / "drive_c").native() + "/\xC2\xB5\xE2\x84\xA6\xF0\x9F\x98\x80");
}

TEST_F(HostPathTest, RootedPathIsOfThisMachine) {
  EXPECT_EQ(HostPath(L"/tmp/a"), "/tmp/a");
  EXPECT_EQ(HostPath(L"\\tmp\\a"), "/tmp/a");
}

TEST_F(HostPathTest, OtherPathsAreRelative) {
  EXPECT_EQ(HostPath(L"a\\b"), "a/b");
  EXPECT_EQ(HostPath(L"..\\b"), "../b");
  EXPECT_EQ(HostPath(L""), "");
}

TEST_F(HostPathTest, FirstCallMakesTheStandardDrivesOnly) {
  (void)HostPath(L"E:\\x");
  EXPECT_TRUE(std::filesystem::is_directory(m_home.Folder() / "drive_c"));
  EXPECT_TRUE(std::filesystem::is_directory(m_home.Folder() / "drive_d"));
  EXPECT_FALSE(std::filesystem::exists(m_home.Folder() / "drive_e"));
}

TEST_F(HostPathTest, MappedDriveLiesElsewhere) {
  ASSERT_EQ(WriteRegistryText(HKEY_CURRENT_USER, L"SOFTWARE\\Vortana\\Drives", L"E", L"/mnt/stick"),
            0);
  EXPECT_EQ(HostPath(L"E:\\..\\a\\b"), "/mnt/stick/a/b");
  EXPECT_EQ(HostPath(L"e:"), "/mnt/stick");
  EXPECT_EQ(HostPath(L"F:"), m_home.Folder() / "drive_f");
}

TEST_F(HostPathTest, MappingThatIsNoRootedPathIsPassedOver) {
  ASSERT_EQ(WriteRegistryText(HKEY_CURRENT_USER, L"SOFTWARE\\Vortana\\Drives", L"E", L"stick"), 0);
  EXPECT_EQ(HostPath(L"E:\\a"), m_home.Folder() / "drive_e" / "a");
}

class Variable {
 public:
  Variable(const char* name, const char* value) : m_name(name) {
    if (const char* before = getenv(name)) m_before = before;
    value != nullptr ? setenv(name, value, 1) : unsetenv(name);
  }
  ~Variable() { m_before.empty() ? unsetenv(m_name) : setenv(m_name, m_before.c_str(), 1); }

 private:
  const char* m_name;
  std::string m_before;
};

TEST(HomeFolderTest, OwnVariableComesFirst) {
  const Variable own("VORTANA_HOME", "/h/own");
  const Variable state("XDG_STATE_HOME", "/h/state");
  EXPECT_EQ(HomeFolder(), "/h/own");
}

TEST(HomeFolderTest, StateFolderComesSecond) {
  const Variable own("VORTANA_HOME", nullptr);
  const Variable state("XDG_STATE_HOME", "/h/state");
  EXPECT_EQ(HomeFolder(), "/h/state/vortana");
}

TEST(HomeFolderTest, UserFolderComesLastAndEmptyCountsAsUnset) {
  const Variable own("VORTANA_HOME", "");
  const Variable state("XDG_STATE_HOME", "");
  const Variable home("HOME", "/h/user");
  EXPECT_EQ(HomeFolder(), "/h/user/.local/state/vortana");
}

}  // namespace
}  // namespace cvars::platform
