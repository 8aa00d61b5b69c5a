// Numbers with units, and the words that stand for numbers: MINimum, MAXimum, DEFault, UP, DOWN.

#include <algorithm>
#include <string>
#include <string_view>
#include <type_traits>

#include "CComBSTR.h"
#include "CComPtr.h"
#include "IVorCvarDouble.h"
#include "IVorCvarInt.h"
#include "IVorCvarLongInt.h"
#include "instrument/remote/CvarAdapters.h"
#include "instrument/remote/NumericParameter.h"
#include "instrument/remote/Syntax.h"
#include "instrument/remote/WireText.h"

namespace cvars::remote {
namespace {

/// A number that a word stands for in a query.
enum class Limit { kNone, kMin, kMax, kDefault };

struct WordRow {
  std::string_view mnemonic;
  HRESULT (*set)(IVorCvar& cvar);
  Limit limit;
};

const WordRow kWords[] = {
    {"MINimum", [](IVorCvar& cvar) { return cvar.SetToMin(); }, Limit::kMin},
    {"MAXimum", [](IVorCvar& cvar) { return cvar.SetToMax(); }, Limit::kMax},
    {"DEFault", [](IVorCvar& cvar) { return cvar.SetToDefault(); }, Limit::kDefault},
    {"UP", [](IVorCvar& cvar) { return cvar.Increment(1); }, Limit::kNone},
    {"DOWN", [](IVorCvar& cvar) { return cvar.Increment(-1); }, Limit::kNone},
    {"INFinity", [](IVorCvar& cvar) { return cvar.SetRequestedValueFromStringRemote(L"INF"); },
     Limit::kNone},
    {"NINFinity", [](IVorCvar& cvar) { return cvar.SetRequestedValueFromStringRemote(L"-INF"); },
     Limit::kNone},
    {"NAN", [](IVorCvar& cvar) { return cvar.SetRequestedValueFromStringRemote(L"NAN"); },
     Limit::kNone},
};

/// Calls `visit` with the cvar's interface and a number of its type.
template <class Interface, class Number, class Visit>
bool VisitAs(IVorCvar& cvar, const Visit& visit, HRESULT& result) {
  CComPtr<Interface> number;
  const IID iid = InterfaceId<Interface>::value;
  if (cvar.QueryInterface(iid, reinterpret_cast<void**>(&number)) != S_OK) return false;
  result = visit(*number, Number{});
  return true;
}
template <class Visit>
HRESULT VisitNumber(IVorCvar& cvar, const Visit& visit) {
  HRESULT result = E_NOINTERFACE;
  (void)(VisitAs<IVorCvarDouble, double>(cvar, visit, result) ||
         VisitAs<IVorCvarInt, int>(cvar, visit, result) ||
         VisitAs<IVorCvarLongInt, std::int64_t>(cvar, visit, result));
  return result;
}

const WordRow* FindWord(std::string_view text) noexcept {
  const auto* row = std::find_if(std::begin(kWords), std::end(kWords), [&](const WordRow& word) {
    return IsMnemonic(word.mnemonic, text);
  });
  return row == std::end(kWords) ? nullptr : row;
}

/// The cvar's unit in its remote spelling, as clients write it.
std::string UnitOf(IVorCvar& cvar) {
  std::string unit;
  CComBSTR text;
  const auto read = [&text](auto& number, auto) { return number.GetUnitRemoteString(&text); };
  if (VisitNumber(cvar, read) == S_OK) AppendToWire(text.View(), unit);
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
  if (word == nullptr || word->limit == Limit::kNone) return ScpiError::kIllegalParameterValue;
  return ErrorOf(VisitNumber(cvar, [&](auto& number, auto value) {
    const HRESULT read = word->limit == Limit::kMin   ? number.GetMinValue(&value)
                         : word->limit == Limit::kMax ? number.GetMaxValue(&value)
                                                      : number.GetDefaultValue(&value);
    if (FAILED(read)) return read;
    if constexpr (std::is_same_v<decltype(value), double>) {
      AppendNumber(value, answer);
    } else {
      answer += std::to_string(value);
    }
    return S_OK;
  }));
}

class NumericAdapter final : public CvarAdapter {
 public:
  ScpiError Query(IVorCvar& cvar, const CommandCall& call, std::string& answer) const override {
    if (call.unit.parameters.empty()) return AppendValue(cvar, answer);
    const ScpiError error = CheckParameterCount(call, 0, 1);
    return error == ScpiError::kNone ? AppendLimit(cvar, call.unit.parameters.front(), answer)
                                     : error;
  }

 protected:
  ScpiError SetParameter(IVorCvar& cvar, const Parameter& parameter) const override {
    if (parameter.kind == Parameter::Kind::kNumber) return SetNumber(cvar, parameter.text);
    if (parameter.kind == Parameter::Kind::kNonDecimal) return SetNonDecimal(cvar, parameter);
    if (parameter.kind != Parameter::Kind::kWord) return ScpiError::kDataTypeError;
    const WordRow* const word = FindWord(parameter.text);
    return word == nullptr ? ScpiError::kDataTypeError : ErrorOf(word->set(cvar));
  }

 private:
  static ScpiError SetNonDecimal(IVorCvar& cvar, const Parameter& parameter) {
    unsigned value = 0;
    const ScpiError error = ReadWholeNumber(parameter, 0xFFFFFFFF, value);
    return error == ScpiError::kNone ? SetNumber(cvar, std::to_string(value)) : error;
  }
};

}  // namespace

const CvarAdapter& NumberAdapter() {
  static const NumericAdapter adapter;
  return adapter;
}

}  // namespace cvars::remote
