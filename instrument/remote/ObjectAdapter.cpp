// Objects, by whatever text their cvar has for them, and DEFault.

#include "instrument/remote/CvarAdapters.h"
#include "instrument/remote/Syntax.h"

namespace cvars::remote {
namespace {

class NamedObjectAdapter final : public CvarAdapter {
 public:
  ScpiError Set(IVorCvar& cvar, const CommandCall& call) const override {
    const auto& parameters = call.unit.parameters;
    if (parameters.size() == 1 && parameters.front().kind == Parameter::Kind::kWord &&
        IsMnemonic("DEFault", parameters.front().text)) {
      return ErrorOf(cvar.SetToDefault());
    }
    return CvarAdapter::Set(cvar, call);
  }
};

}  // namespace

const CvarAdapter& ObjectAdapter() {
  static const NamedObjectAdapter adapter;
  return adapter;
}

}  // namespace cvars::remote
