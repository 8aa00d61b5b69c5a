#include <errno.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

#include "CComBSTR.h"
#include "CComPtr.h"
#include "IVorMessageBox.h"
#include "IsolatedHome.h"
#include "platform/Components.h"
#include "platform/MessageBox.h"
#include "platform/MessageBoxPresenter.h"
#include "platform/Utf8.h"

namespace {

class FixedAnswer final : public cvars::platform::MessageBoxPresenter {
 public:
  int Present(HWND, const wchar_t* text, const wchar_t* caption, UINT type) override {
    shown = std::wstring(caption) + L"|" + text;
    shownType = type;
    return answer;
  }
  int answer = IDOK;
  std::wstring shown;
  UINT shownType = 0;
};

class MessageBoxComponentTest : public testing::Test {
 protected:
  void SetUp() override {
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    ASSERT_EQ(cvars::platform::CreateComponent(L"Vortana.MessageBox", IID_IVorMessageBox,
                                               reinterpret_cast<void**>(&m_box)),
              S_OK);
  }
  void TearDown() override { cvars::platform::SetMessageBoxPresenter(nullptr); }

  cvars::test::IsolatedHome m_home;
  FixedAnswer m_presenter;
  CComPtr<IVorMessageBox> m_box;
};

TEST_F(MessageBoxComponentTest, RepliesWithTheNameOfTheButton) {
  cvars::platform::SetMessageBoxPresenter(&m_presenter);
  const struct {
    int button;
    const wchar_t* reply;
  } rows[] = {{IDOK, L"OK"},       {IDCANCEL, L"Cancel"}, {IDABORT, L"Abort"},
              {IDRETRY, L"Retry"}, {IDIGNORE, L"Ignore"}, {IDYES, L"Yes"},
              {IDNO, L"No"}};
  for (const auto& row : rows) {
    m_presenter.answer = row.button;
    CComBSTR reply;
    EXPECT_EQ(m_box->ShowMessage(L"text", L"caption", 0x13, 1, L"", L"", &reply), S_OK);
    EXPECT_STREQ(reply, row.reply);
    EXPECT_EQ(m_presenter.shown, L"caption|text");
    EXPECT_EQ(m_presenter.shownType, 0x13u);
  }
}

TEST_F(MessageBoxComponentTest, EmptyCaptionTakesTheApplicationsName) {
  cvars::platform::SetMessageBoxPresenter(&m_presenter);
  CComBSTR reply;
  EXPECT_EQ(m_box->ShowMessage(L"text", L"", 0, 1, L"OK", L"", &reply), S_OK);
  EXPECT_EQ(m_presenter.shown, cvars::platform::FromUtf8(program_invocation_short_name) + L"|text");
}

TEST_F(MessageBoxComponentTest, WithoutUserTheDefaultReplyAnswers) {
  CComBSTR reply;
  testing::internal::CaptureStderr();
  EXPECT_EQ(m_box->ShowMessage(L"text", L"caption", MB_YESNO, 1, L"Later", L"Asker", &reply), S_OK);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "caption: text (Asker)\n");
  EXPECT_STREQ(reply, L"Later");
}

TEST_F(MessageBoxComponentTest, NullReplyIsRefusedUnshown) {
  cvars::platform::SetMessageBoxPresenter(&m_presenter);
  EXPECT_EQ(m_box->ShowMessage(L"text", L"caption", 0, 1, L"OK", L"", nullptr), E_POINTER);
  EXPECT_EQ(m_presenter.shown, L"");
}

}  // namespace
