// The names of objects: whatever is taken reads back as three clean names.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "CCvarObjectName.h"
#include "CvarObject.h"
#include "WideText.h"
#include "platform/MessageBoxPresenter.h"

namespace {

// Refusals show a box; nobody is there to see it.
class SilentPresenter final : public cvars::platform::MessageBoxPresenter {
 public:
  int Present(HWND, const wchar_t*, const wchar_t*, UINT) override { return 1; }
};

bool IsAsciiAlphanumeric(wchar_t c) {
  return (c >= L'0' && c <= L'9') || (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z');
}

bool IsClean(const CComBSTR& name) {
  const std::wstring_view text = name.View();
  return std::all_of(text.begin(), text.end(), IsAsciiAlphanumeric);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static SilentPresenter presenter;
  static const bool installed = (cvars::platform::SetMessageBoxPresenter(&presenter), true);
  (void)installed;
  const std::wstring text = cvars::fuzz::WideText(data, size);
  const auto cvar = CvarObject<CCvarObjectName>::Create();
  if (cvar->SetRequestedValue(text.c_str()) == S_OK &&
      !(IsClean(cvar->GetAdaptedValueStringAutomation()) &&
        IsClean(cvar->GetAdaptedValueStringRemote()))) {
    std::abort();
  }
  (void)cvar->SetRequestedValueStringScreen(text.c_str());
  (void)cvar->SetRequestedValueStringAutomation(text.c_str());
  (void)cvar->SetRequestedValueStringRemote(text.c_str());
  return 0;
}
