// Texts in quotes.

#include <string>

#include "instrument/remote/CvarAdapters.h"
#include "instrument/remote/WireText.h"

namespace cvars::remote {
namespace {

class QuotedTextAdapter final : public CvarAdapter {
 protected:
  ScpiError SetValue(IVorCvar& cvar, const Parameter& parameter) const override {
    if (parameter.kind != Parameter::Kind::kString) return ScpiError::kDataTypeError;
    const std::wstring text = FromWire(Unquote(parameter.text));
    return ErrorOf(cvar.SetRequestedValueFromStringRemote(text.c_str()));
  }

  ScpiError AppendValue(IVorCvar& cvar, std::string& answer) const override {
    std::string text;
    const ScpiError error = CvarAdapter::AppendValue(cvar, text);
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
