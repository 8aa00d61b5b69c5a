#include <errno.h>  // program_invocation_short_name

#include <string>

#include "Bstr.h"
#include "IVorMessageBox.h"
#include "platform/ComponentModule.h"
#include "platform/MessageBox.h"
#include "platform/Utf8.h"

namespace {

using cvars::platform::Component;
using cvars::platform::Offers;

std::wstring TextOf(const wchar_t* text) { return text != nullptr ? text : L""; }

class MessageBoxComponent final : public Component<Offers<IVorMessageBox, IID_IVorMessageBox>> {
 public:
  HRESULT ShowMessage(const wchar_t* message, const wchar_t* caption, long style, long,
                      const wchar_t* defaultReply, const wchar_t* source, BSTR* reply) override {
    using namespace cvars::platform;
    if (reply == nullptr) return E_POINTER;
    *reply = nullptr;
    std::wstring text = TextOf(message);
    std::wstring title = TextOf(caption);
    if (title.empty()) title = FromUtf8(program_invocation_short_name);
    const int button = AskUser(nullptr, text.c_str(), title.c_str(), static_cast<UINT>(style));
    if (button != 0) {
      *reply = SysAllocString(ButtonName(button));
    } else {
      if (const std::wstring asker = TextOf(source); !asker.empty()) text += L" (" + asker + L")";
      TellStandardError(text.c_str(), title.c_str());
      *reply = SysAllocString(TextOf(defaultReply).c_str());
    }
    return *reply != nullptr ? S_OK : E_OUTOFMEMORY;
  }
};

}  // namespace

HRESULT DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  return cvars::platform::ClassObject<MessageBoxComponent>(CLSID_MessageBox, clsid, iid, object);
}
