#include "platform/MessageBox.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "IsolatedHome.h"
#include "platform/MessageBoxPresenter.h"

namespace cvars::platform {
namespace {

// Remembers the box it was asked to show and gives the answer it was told to.
class RecordingPresenter final : public MessageBoxPresenter {
 public:
  explicit RecordingPresenter(int answer) : m_answer(answer) {}

  int Present(HWND ownerOfBox, const wchar_t* shown, const wchar_t* title, UINT flags) override {
    ++count;
    owner = ownerOfBox;
    text = shown;
    caption = title;
    type = flags;
    return m_answer;
  }

  int count = 0;
  HWND owner = nullptr;
  std::wstring text;
  std::wstring caption;
  UINT type = 0;

 private:
  int m_answer;
};

class MessageBoxTest : public testing::Test {
 protected:
  void SetUp() override {
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
  }
  void TearDown() override { SetMessageBoxPresenter(nullptr); }

  // Puts a dialog program in front of the search path: it keeps its arguments, one a line, and ends
  // as the script says.
  void InstallDialog(const std::string& ending) {
    const std::filesystem::path folder = m_home.Folder() / "bin";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "zenity") << "#!/bin/sh\nprintf '%s\\n' \"$@\" > " << Arguments() << "\n"
                                     << ending << "\n";
    std::filesystem::permissions(folder / "zenity", std::filesystem::perms::owner_all);
    setenv("PATH", (folder.string() + ":/usr/bin:/bin").c_str(), 1);
    setenv("DISPLAY", ":7", 1);
  }

  std::filesystem::path Arguments() const { return m_home.Folder() / "arguments"; }

  std::string GivenArguments() const {
    std::ifstream file(Arguments());
    return {std::istreambuf_iterator<char>(file), {}};
  }

  test::IsolatedHome m_home;
};

TEST_F(MessageBoxTest, PresenterIsAskedFirst) {
  RecordingPresenter presenter(IDNO);
  EXPECT_EQ(SetMessageBoxPresenter(&presenter), nullptr);
  const HWND owner = reinterpret_cast<HWND>(&presenter);
  EXPECT_EQ(MessageBox(owner, L"Overload at \u2126", L"Input", MB_YESNO | MB_ICONWARNING), IDNO);
  EXPECT_EQ(presenter.count, 1);
  EXPECT_EQ(presenter.owner, owner);
  EXPECT_EQ(presenter.text, L"Overload at \u2126");
  EXPECT_EQ(presenter.caption, L"Input");
  EXPECT_EQ(presenter.type, MB_YESNO | MB_ICONWARNING);
}

TEST_F(MessageBoxTest, InstallingGivesThePresenterBefore) {
  RecordingPresenter first(IDOK);
  RecordingPresenter second(IDOK);
  EXPECT_EQ(SetMessageBoxPresenter(&first), nullptr);
  EXPECT_EQ(SetMessageBoxPresenter(&second), &first);
  EXPECT_EQ(SetMessageBoxPresenter(nullptr), &second);
}

TEST_F(MessageBoxTest, PresenterThatPassesLeavesTheBoxToTheNextWay) {
  RecordingPresenter presenter(0);
  SetMessageBoxPresenter(&presenter);
  testing::internal::CaptureStderr();
  EXPECT_EQ(MessageBox(nullptr, L"text", L"caption", MB_OK), IDOK);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "caption: text\n");
  EXPECT_EQ(presenter.count, 1);
}

struct DefaultCase {
  const char* name;
  UINT type;
  int button;
};

constexpr DefaultCase kDefaultCases[] = {
    {"Ok", MB_OK, IDOK},
    {"OkWithIcon", MB_ICONERROR, IDOK},
    {"FirstOfOkCancel", MB_OKCANCEL, IDOK},
    {"SecondOfOkCancel", MB_OKCANCEL | MB_DEFBUTTON2, IDCANCEL},
    {"SecondOfAbortRetryIgnore", MB_ABORTRETRYIGNORE | MB_DEFBUTTON2, IDRETRY},
    {"ThirdOfYesNoCancel", MB_YESNOCANCEL | MB_DEFBUTTON3, IDCANCEL},
    {"SecondOfYesNo", MB_YESNO | MB_DEFBUTTON2 | MB_ICONQUESTION, IDNO},
    {"FirstOfRetryCancel", MB_RETRYCANCEL, IDRETRY},
    {"ThirdOfTwoIsTheFirst", MB_YESNO | MB_DEFBUTTON3, IDYES},
};

TEST_F(MessageBoxTest, WithoutUserTheDefaultButtonAnswersAtOnce) {
  for (const DefaultCase& row : kDefaultCases) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(MessageBox(nullptr, L"a\nb", L"c", row.type), row.button) << row.name;
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "c: a\nb\n") << row.name;
  }
}

TEST_F(MessageBoxTest, NullTexts) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(MessageBox(nullptr, nullptr, nullptr, MB_OK), IDOK);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: \n");
}

TEST_F(MessageBoxTest, DesktopShowsTextsAsTheyStand) {
  InstallDialog("exit 0");
  testing::internal::CaptureStderr();
  EXPECT_EQ(MessageBox(nullptr, L"$(reboot) 'a' C:\\b <i>", L"--c", MB_ICONERROR), IDOK);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(GivenArguments(),
            "--no-markup\n--title=--c\n--text=$(reboot) 'a' C:\\\\b <i>\n--error\n");
}

TEST_F(MessageBoxTest, DesktopTellsTheButtonByName) {
  InstallDialog("echo No; exit 1");
  EXPECT_EQ(MessageBox(nullptr, L"t", L"c", MB_YESNOCANCEL), IDNO);
  EXPECT_EQ(GivenArguments(),
            "--no-markup\n--title=c\n--text=t\n--question\n--switch\n--extra-button=Yes\n"
            "--extra-button=No\n--extra-button=Cancel\n");
}

TEST_F(MessageBoxTest, DesktopThatCannotBeReachedFallsBackToStandardError) {
  InstallDialog("exit 1");
  testing::internal::CaptureStderr();
  EXPECT_EQ(MessageBox(nullptr, L"t", L"c", MB_YESNO | MB_DEFBUTTON2), IDNO);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "c: t\n");
}

TEST_F(MessageBoxTest, MissingDialogProgramFallsBackToStandardError) {
  setenv("DISPLAY", ":7", 1);
  setenv("PATH", m_home.Folder().c_str(), 1);
  testing::internal::CaptureStderr();
  EXPECT_EQ(MessageBox(nullptr, L"t", L"c", MB_OK), IDOK);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "c: t\n");
}

TEST_F(MessageBoxTest, WithoutDisplayTheDialogProgramIsNotStarted) {
  InstallDialog("exit 0");
  unsetenv("DISPLAY");
  testing::internal::CaptureStderr();
  EXPECT_EQ(MessageBox(nullptr, L"t", L"c", MB_OK), IDOK);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "c: t\n");
  EXPECT_FALSE(std::filesystem::exists(Arguments()));
}

}  // namespace
}  // namespace cvars::platform
