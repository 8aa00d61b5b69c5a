// On and off, written ON or 1 and OFF or 0, and answered 1 or 0.

#include <string>

#include "CComPtr.h"
#include "IVorCvarBool.h"
#include "instrument/remote/CvarAdapters.h"
#include "instrument/remote/NumericParameter.h"
#include "instrument/remote/Syntax.h"

namespace cvars::remote {
namespace {

HRESULT AsBool(IVorCvar& cvar, CComPtr<IVorCvarBool>& state) {
  return cvar.QueryInterface(IID_IVorCvarBool, reinterpret_cast<void**>(&state));
}

ScpiError Switch(IVorCvar& cvar, int wanted) {
  CComPtr<IVorCvarBool> state;
  int enabled = 0;
  HRESULT result = AsBool(cvar, state);
  if (result == S_OK) result = state->IsEnabled(wanted, &enabled);
  if (result != S_OK) return ErrorOf(result);
  return enabled == 0 ? ScpiError::kSettingsConflict : ErrorOf(state->SetRequestedValue(wanted));
}

class SwitchAdapter final : public CvarAdapter {
 protected:
  ScpiError SetValue(IVorCvar& cvar, const Parameter& parameter) const override {
    if (parameter.kind == Parameter::Kind::kWord) {
      if (IsMnemonic("ON", parameter.text)) return Switch(cvar, 1);
      if (IsMnemonic("OFF", parameter.text)) return Switch(cvar, 0);
      return ScpiError::kIllegalParameterValue;
    }
    unsigned number = 0;
    const ScpiError error = ReadWholeNumber(parameter, 1, number);
    if (error == ScpiError::kDataOutOfRange) return ScpiError::kIllegalParameterValue;
    return error == ScpiError::kNone ? Switch(cvar, static_cast<int>(number)) : error;
  }

  ScpiError AppendValue(IVorCvar& cvar, std::string& answer) const override {
    CComPtr<IVorCvarBool> state;
    int value = 0;
    HRESULT result = AsBool(cvar, state);
    if (result == S_OK) result = state->Get(&value);
    if (result == S_OK) answer += value != 0 ? '1' : '0';
    return ErrorOf(result);
  }
};

}  // namespace

const CvarAdapter& BoolAdapter() {
  static const SwitchAdapter adapter;
  return adapter;
}

}  // namespace cvars::remote
