// Actions: a command without value, done when the next command starts.

#include "CComPtr.h"
#include "IVorCvarAction.h"
#include "instrument/remote/CvarAdapters.h"

namespace cvars::remote {
namespace {

class CommandAdapter final : public CvarAdapter {
 public:
  ScpiError Set(IVorCvar& cvar, const CommandCall& call) const override {
    if (const ScpiError error = CheckParameterCount(call, 0, 0); error != ScpiError::kNone) {
      return error;
    }
    CComPtr<IVorCvarAction> action;
    HRESULT result = cvar.QueryInterface(IID_IVorCvarAction, reinterpret_cast<void**>(&action));
    if (result == S_OK) result = action->ActNow();
    return ErrorOf(result);
  }

  ScpiError Query(IVorCvar&, const CommandCall&, std::string&) const override {
    return ScpiError::kUndefinedHeader;
  }
};

}  // namespace

const CvarAdapter& ActionAdapter() {
  static const CommandAdapter adapter;
  return adapter;
}

}  // namespace cvars::remote
