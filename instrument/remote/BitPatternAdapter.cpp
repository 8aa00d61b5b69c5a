// Bit patterns: texts in quotes and numbers. What is no plain number is answered in quotes.

#include <string>
#include <string_view>

#include "CComPtr.h"
#include "IVorCvarBitPattern.h"
#include "instrument/remote/CvarAdapters.h"
#include "instrument/remote/NumericParameter.h"
#include "instrument/remote/Syntax.h"
#include "instrument/remote/WireText.h"

namespace cvars::remote {
namespace {

constexpr unsigned kAllBits = 0xFFFFFFFF;

class PatternAdapter final : public CvarAdapter {
 protected:
  ScpiError SetValue(IVorCvar& cvar, const Parameter& parameter) const override {
    switch (parameter.kind) {
      case Parameter::Kind::kString:
        return SetText(cvar, Unquote(parameter.text));
      case Parameter::Kind::kNonDecimal:
        return SetNonDecimal(cvar, parameter);
      case Parameter::Kind::kNumber:
        return SetNumber(cvar, parameter);
      default:
        return ScpiError::kDataTypeError;
    }
  }

  ScpiError AppendValue(IVorCvar& cvar, std::string& answer) const override {
    std::string bits;
    const ScpiError error = CvarAdapter::AppendValue(cvar, bits);
    if (error != ScpiError::kNone) return error;
    const bool isNumber = !bits.empty() && bits.find_first_not_of("01") == bits.npos;
    answer += isNumber ? "#B" + bits : '"' + bits + '"';
    return error;
  }

 private:
  static ScpiError SetText(IVorCvar& cvar, std::string_view text) {
    return ErrorOf(cvar.SetRequestedValueFromStringRemote(FromWire(text).c_str()));
  }

  // The digits of #B and #H say how long the pattern is, and may be more than a number holds.
  static ScpiError SetNonDecimal(IVorCvar& cvar, const Parameter& parameter) {
    const char base = parameter.text.size() < 2 ? '\0' : ToUpper(parameter.text[1]);
    const std::string_view digits = parameter.text.substr(base == '\0' ? 1 : 2);
    if (digits.empty()) return ScpiError::kDataTypeError;
    if (base == 'B') return SetText(cvar, digits);
    if (base != 'H') return SetNumber(cvar, parameter);
    CComPtr<IVorCvarBitPattern> pattern;
    HRESULT result =
        cvar.QueryInterface(IID_IVorCvarBitPattern, reinterpret_cast<void**>(&pattern));
    if (result == S_OK) result = pattern->put_HexadecimalValue(FromWire(digits).c_str());
    return ErrorOf(result);
  }

  static ScpiError SetNumber(IVorCvar& cvar, const Parameter& parameter) {
    unsigned number = 0;
    const ScpiError error = ReadWholeNumber(parameter, kAllBits, number);
    if (error != ScpiError::kNone) return error;
    CComPtr<IVorCvarBitPattern> pattern;
    HRESULT result =
        cvar.QueryInterface(IID_IVorCvarBitPattern, reinterpret_cast<void**>(&pattern));
    if (result == S_OK) result = pattern->put_DecimalValue(static_cast<int>(number));
    return ErrorOf(result);
  }
};

}  // namespace

const CvarAdapter& BitPatternAdapter() {
  static const PatternAdapter adapter;
  return adapter;
}

}  // namespace cvars::remote
