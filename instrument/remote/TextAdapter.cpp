// Texts in quotes, and DEFault.

#include <string>

#include "CComBSTR.h"
#include "instrument/remote/CvarAdapters.h"
#include "instrument/remote/Syntax.h"
#include "instrument/remote/WireText.h"

namespace cvars::remote {
namespace {

class QuotedTextAdapter final : public CvarAdapter {
 public:
  ScpiError Set(IVorCvar& cvar, const CommandCall& call) const override {
    if (const ScpiError error = CheckParameterCount(call, 1, 1); error != ScpiError::kNone) {
      return error;
    }
    const Parameter& parameter = call.unit.parameters.front();
    if (parameter.kind == Parameter::Kind::kWord && IsMnemonic("DEFault", parameter.text)) {
      return ErrorOf(cvar.SetToDefault());
    }
    if (parameter.kind != Parameter::Kind::kString) return ScpiError::kDataTypeError;
    const std::wstring text = FromWire(Unquote(parameter.text));
    return ErrorOf(cvar.SetRequestedValueFromStringRemote(text.c_str()));
  }

  ScpiError Query(IVorCvar& cvar, const CommandCall& call, std::string& answer) const override {
    std::string text;
    ScpiError error = CheckParameterCount(call, 0, 0);
    if (error == ScpiError::kNone) error = AppendValue(cvar, text);
    if (error == ScpiError::kNone) AppendQuoted(text, answer);
    return error;
  }
};

}  // namespace

const CvarAdapter& TextAdapter() {
  static const QuotedTextAdapter adapter;
  return adapter;
}

}  // namespace cvars::remote
