// Numbers with units, and the words that stand for numbers: MINimum, MAXimum, DEFault, UP, DOWN.

#include <algorithm>
#include <string>
#include <string_view>

#include "CComBSTR.h"
#include "CComPtr.h"
#include "IVorCvarDouble.h"
#include "instrument/remote/CvarAdapters.h"
#include "instrument/remote/NumericParameter.h"
#include "instrument/remote/Syntax.h"
#include "instrument/remote/WireText.h"

namespace cvars::remote {
namespace {

struct WordRow {
  std::string_view mnemonic;
  HRESULT (*set)(IVorCvar& cvar);
  /// The number that the word stands for in a query; null when it stands for none.
  HRESULT (IVorCvarDouble::*get)(double* value);
};

const WordRow kWords[] = {
    {"MINimum", [](IVorCvar& cvar) { return cvar.SetToMin(); }, &IVorCvarDouble::GetMinValue},
    {"MAXimum", [](IVorCvar& cvar) { return cvar.SetToMax(); }, &IVorCvarDouble::GetMaxValue},
    {"DEFault", [](IVorCvar& cvar) { return cvar.SetToDefault(); },
     &IVorCvarDouble::GetDefaultValue},
    {"UP", [](IVorCvar& cvar) { return cvar.Increment(1); }, nullptr},
    {"DOWN", [](IVorCvar& cvar) { return cvar.Increment(-1); }, nullptr},
    {"INFinity", [](IVorCvar& cvar) { return cvar.SetRequestedValueFromStringRemote(L"INF"); },
     nullptr},
    {"NINFinity", [](IVorCvar& cvar) { return cvar.SetRequestedValueFromStringRemote(L"-INF"); },
     nullptr},
    {"NAN", [](IVorCvar& cvar) { return cvar.SetRequestedValueFromStringRemote(L"NAN"); }, nullptr},
};

const WordRow* FindWord(std::string_view text) noexcept {
  const auto* row = std::find_if(std::begin(kWords), std::end(kWords), [&](const WordRow& word) {
    return IsMnemonic(word.mnemonic, text);
  });
  return row == std::end(kWords) ? nullptr : row;
}

/// The cvar's unit in its remote spelling, as clients write it.
std::string UnitOf(IVorCvar& cvar) {
  std::string unit;
  CComPtr<IVorCvarDouble> number;
  CComBSTR text;
  if (cvar.QueryInterface(IID_IVorCvarDouble, reinterpret_cast<void**>(&number)) == S_OK &&
      number->GetUnitRemoteString(&text) == S_OK) {
    AppendToWire(text.View(), unit);
  }
  return unit;
}

/// Respells a suffix, which is in upper case, the way the cvar reads it.
std::string Respell(std::string_view suffix, std::string_view unit) {
  if (suffix.size() < unit.size()) return std::string(suffix);
  const std::string_view end = suffix.substr(suffix.size() - unit.size());
  const bool isUnit = std::equal(end.begin(), end.end(), unit.begin(),
                                 [](char left, char right) { return left == ToUpper(right); });
  if (!isUnit) return std::string(suffix);
  std::string text(suffix.substr(0, suffix.size() - unit.size()));
  // An M is milli, but a megohm is written MOHM like a megahertz is written MHZ.
  if (text == "M" && end == "OHM") text = "MA";
  text += unit;
  return text;
}

ScpiError SetNumber(IVorCvar& cvar, std::string_view parameter) {
  std::string number;
  std::string suffix;
  if (const ScpiError error = SplitDecimal(parameter, number, suffix); error != ScpiError::kNone) {
    return error;
  }
  if (!suffix.empty()) number.append(" ").append(Respell(suffix, UnitOf(cvar)));
  return ErrorOf(cvar.SetRequestedValueFromStringRemote(FromWire(number).c_str()));
}

/// Numbers of the cvar's range as words, for example "CHANNEL1:SCALE? MAX".
ScpiError AppendLimit(IVorCvar& cvar, const Parameter& parameter, std::string& answer) {
  if (parameter.kind != Parameter::Kind::kWord) return ScpiError::kDataTypeError;
  const WordRow* const word = FindWord(parameter.text);
  if (word == nullptr || word->get == nullptr) return ScpiError::kIllegalParameterValue;
  CComPtr<IVorCvarDouble> number;
  HRESULT result = cvar.QueryInterface(IID_IVorCvarDouble, reinterpret_cast<void**>(&number));
  double value = 0;
  if (result == S_OK) result = (number->*word->get)(&value);
  if (result == S_OK) AppendNumber(value, answer);
  return ErrorOf(result);
}

class NumberAdapter final : public CvarAdapter {
 public:
  ScpiError Set(IVorCvar& cvar, const CommandCall& call) const override {
    if (const ScpiError error = CheckParameterCount(call, 1, 1); error != ScpiError::kNone) {
      return error;
    }
    const Parameter& parameter = call.unit.parameters.front();
    if (parameter.kind == Parameter::Kind::kNumber) return SetNumber(cvar, parameter.text);
    if (parameter.kind == Parameter::Kind::kNonDecimal) return SetNonDecimal(cvar, parameter);
    if (parameter.kind != Parameter::Kind::kWord) return ScpiError::kDataTypeError;
    const WordRow* const word = FindWord(parameter.text);
    return word == nullptr ? ScpiError::kDataTypeError : ErrorOf(word->set(cvar));
  }

  ScpiError Query(IVorCvar& cvar, const CommandCall& call, std::string& answer) const override {
    if (call.unit.parameters.empty()) return AppendValue(cvar, answer);
    const ScpiError error = CheckParameterCount(call, 0, 1);
    return error == ScpiError::kNone ? AppendLimit(cvar, call.unit.parameters.front(), answer)
                                     : error;
  }

 private:
  static ScpiError SetNonDecimal(IVorCvar& cvar, const Parameter& parameter) {
    unsigned value = 0;
    const ScpiError error = ReadWholeNumber(parameter, 0xFFFFFFFF, value);
    return error == ScpiError::kNone ? SetNumber(cvar, std::to_string(value)) : error;
  }
};

}  // namespace

const CvarAdapter& DoubleAdapter() {
  static const NumberAdapter adapter;
  return adapter;
}

}  // namespace cvars::remote
