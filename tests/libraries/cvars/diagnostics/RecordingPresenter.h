#pragma once

#include <string>
#include <vector>

#include "platform/MessageBox.h"
#include "platform/MessageBoxPresenter.h"

namespace cvars::test {

/// Answers every message box with OK and remembers it; installed as long as it lives.
class RecordingPresenter final : public platform::MessageBoxPresenter {
 public:
  struct Box {
    HWND owner;
    std::wstring text;
    std::wstring caption;
    UINT type;
  };

  RecordingPresenter() : m_previous(platform::SetMessageBoxPresenter(this)) {}
  ~RecordingPresenter() { platform::SetMessageBoxPresenter(m_previous); }
  RecordingPresenter(const RecordingPresenter&) = delete;
  RecordingPresenter& operator=(const RecordingPresenter&) = delete;

  int Present(HWND owner, const wchar_t* text, const wchar_t* caption, UINT type) override {
    m_boxes.push_back({owner, text, caption, type});
    return IDOK;
  }
  const std::vector<Box>& Boxes() const { return m_boxes; }

 private:
  platform::MessageBoxPresenter* m_previous;
  std::vector<Box> m_boxes;
};

}  // namespace cvars::test
