#include "platform/Volumes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "IsolatedHome.h"
#include "platform/LastError.h"
#include "platform/Registry.h"

namespace cvars::platform {
namespace {

class VolumesTest : public testing::Test {
 protected:
  static std::wstring Label(const wchar_t* root) {
    wchar_t label[64] = L"untouched";
    EXPECT_EQ(GetVolumeInformation(root, label, 64, nullptr, nullptr, nullptr, nullptr, 0), 1);
    return label;
  }

  test::IsolatedHome m_home;
};

TEST_F(VolumesTest, NewDrivesHaveNoLabel) {
  EXPECT_EQ(Label(L"C:\\"), L"");
  EXPECT_EQ(Label(L"D:\\"), L"");
}

TEST_F(VolumesTest, LabelBelongsToItsDrive) {
  ASSERT_EQ(SetVolumeLabel(L"D:\\", L"USERDATA"), 1);
  EXPECT_EQ(Label(L"D:\\"), L"USERDATA");
  EXPECT_EQ(Label(L"d:"), L"USERDATA");
  EXPECT_EQ(Label(L"C:\\"), L"");
  const test::IsolatedHome other;
  EXPECT_EQ(Label(L"D:\\"), L"");
}

TEST_F(VolumesTest, NullOrEmptyTakesTheLabelAway) {
  for (const wchar_t* none : {static_cast<const wchar_t*>(nullptr), L""}) {
    ASSERT_EQ(SetVolumeLabel(L"D:\\", L"USERDATA"), 1);
    ASSERT_EQ(SetVolumeLabel(L"D:\\", none), 1);
    EXPECT_EQ(Label(L"D:\\"), L"");
  }
}

TEST_F(VolumesTest, NullRootIsDriveC) {
  ASSERT_EQ(SetVolumeLabel(nullptr, L"system"), 1);
  EXPECT_EQ(Label(L"C:\\"), L"system");
}

TEST_F(VolumesTest, DriveThatDoesNotExist) {
  for (const wchar_t* root : {L"E:\\", L"folder", L""}) {
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(SetVolumeLabel(root, L"x"), 0);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(GetVolumeInformation(root, nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0), 0);
  }
}

TEST_F(VolumesTest, OtherDriveExistsWithItsFolder) {
  std::filesystem::create_directory(m_home.Folder() / "drive_e");
  ASSERT_EQ(SetVolumeLabel(L"E:\\", L"stick"), 1);
  EXPECT_EQ(Label(L"E:\\"), L"stick");
}

TEST_F(VolumesTest, LabelThatDoesNotFitWritesNothing) {
  ASSERT_EQ(SetVolumeLabel(L"D:\\", L"USERDATA"), 1);
  wchar_t label[8] = L"before";
  EXPECT_EQ(GetVolumeInformation(L"D:\\", label, 8, nullptr, nullptr, nullptr, nullptr, 0), 0);
  EXPECT_EQ(GetLastError(), ERROR_MORE_DATA);
  EXPECT_STREQ(label, L"before");
}

TEST_F(VolumesTest, LabelThatIsTooLong) {
  EXPECT_EQ(SetVolumeLabel(L"D:\\", std::wstring(33, L'x').c_str()), 0);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(SetVolumeLabel(L"D:\\", std::wstring(32, L'x').c_str()), 1);
}

TEST_F(VolumesTest, PropertiesOfADrive) {
  DWORD longest = 0;
  DWORD flags = 0;
  wchar_t fileSystem[16];
  EXPECT_EQ(GetVolumeInformation(L"C:\\", nullptr, 0, nullptr, &longest, &flags, fileSystem, 16),
            1);
  EXPECT_EQ(longest, 255u);
  EXPECT_EQ(flags, 3u);
  EXPECT_STREQ(fileSystem, L"vortana");
}

}  // namespace
}  // namespace cvars::platform
