// Tables as texts in quotes or as definite-length blocks.

#include <string>

#include "instrument/remote/CvarAdapters.h"
#include "instrument/remote/Syntax.h"
#include "instrument/remote/WireText.h"

namespace cvars::remote {
namespace {

class TableAdapter final : public CvarAdapter {
 public:
  // "MASK:POINTS? BLOCK" answers with a block.
  ScpiError Query(IVorCvar& cvar, const CommandCall& call, std::string& answer) const override {
    ScpiError error = CheckParameterCount(call, 0, 1);
    if (error != ScpiError::kNone) return error;
    const bool asBlock = !call.unit.parameters.empty();
    if (asBlock) {
      const Parameter& form = call.unit.parameters.front();
      if (form.kind != Parameter::Kind::kWord) return ScpiError::kDataTypeError;
      if (!IsMnemonic("BLOCk", form.text)) return ScpiError::kIllegalParameterValue;
    }
    std::string text;
    error = AppendValue(cvar, text);
    if (error != ScpiError::kNone) return error;
    if (asBlock) {
      AppendBlock(text, answer);
    } else {
      AppendQuoted(text, answer);
    }
    return error;
  }

 protected:
  ScpiError SetValue(IVorCvar& cvar, const Parameter& parameter) const override {
    std::wstring text;
    if (parameter.kind == Parameter::Kind::kString) {
      text = FromWire(Unquote(parameter.text));
    } else if (parameter.kind == Parameter::Kind::kBlock) {
      text = FromWire(parameter.text);
    } else {
      return ScpiError::kDataTypeError;
    }
    return ErrorOf(cvar.SetRequestedValueFromStringRemote(text.c_str()));
  }
};

}  // namespace

const CvarAdapter& ArrayAdapter() {
  static const TableAdapter adapter;
  return adapter;
}

}  // namespace cvars::remote
