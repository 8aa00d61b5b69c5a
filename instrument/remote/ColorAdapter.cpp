// Colours as #H numbers 0xBBGGRR. A bare 00FF00 would read as a number with a suffix.

#include <string>

#include "CComPtr.h"
#include "IVorCvarColor.h"
#include "instrument/remote/CvarAdapters.h"
#include "instrument/remote/NumericParameter.h"
#include "instrument/remote/Syntax.h"
#include "instrument/remote/WireText.h"

namespace cvars::remote {
namespace {

class HexadecimalColorAdapter final : public CvarAdapter {
 protected:
  ScpiError SetValue(IVorCvar& cvar, const Parameter& parameter) const override {
    if (parameter.kind == Parameter::Kind::kString) {
      const std::wstring text = FromWire(Unquote(parameter.text));
      return ErrorOf(cvar.SetRequestedValueFromStringRemote(text.c_str()));
    }
    if (parameter.kind == Parameter::Kind::kWord) return ScpiError::kIllegalParameterValue;
    constexpr unsigned kWhite = 0xFFFFFF;
    unsigned number = 0;
    if (const ScpiError error = ReadWholeNumber(parameter, kWhite, number);
        error != ScpiError::kNone) {
      return error;
    }
    CComPtr<IVorCvarColor> color;
    const HRESULT found = cvar.QueryInterface(IID_IVorCvarColor, reinterpret_cast<void**>(&color));
    return ErrorOf(found == S_OK ? color->SetRequestedValue(static_cast<int>(number)) : found);
  }

  ScpiError AppendValue(IVorCvar& cvar, std::string& answer) const override {
    std::string digits;
    const ScpiError error = CvarAdapter::AppendValue(cvar, digits);
    if (error != ScpiError::kNone) return error;
    answer += "#H";
    for (const char digit : digits) answer += ToUpper(digit);
    return error;
  }
};

}  // namespace

const CvarAdapter& ColorAdapter() {
  static const HexadecimalColorAdapter adapter;
  return adapter;
}

}  // namespace cvars::remote
