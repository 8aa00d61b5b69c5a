// Registers: #H, #Q, #B, decimal and &h numbers; answered as #H1F.

#include <charconv>
#include <string>

#include "CComPtr.h"
#include "CComVariant.h"
#include "IVorCvarRegister.h"
#include "instrument/remote/CvarAdapters.h"
#include "instrument/remote/NumericParameter.h"
#include "instrument/remote/Syntax.h"
#include "instrument/remote/WireText.h"

namespace cvars::remote {
namespace {

constexpr unsigned kAllBits = 0xFFFFFFFF;
constexpr int kHexadecimal = 16;

class HexadecimalRegisterAdapter final : public CvarAdapter {
 protected:
  ScpiError SetParameter(IVorCvar& cvar, const Parameter& parameter) const override {
    // A read-only register passes over what is written, which would leave the client in the dark.
    int isReadOnly = 0;
    if (cvar.IsReadOnly(&isReadOnly) == S_OK && isReadOnly != 0) {
      return ScpiError::kCommandProtected;
    }
    return CvarAdapter::SetParameter(cvar, parameter);
  }

  ScpiError SetValue(IVorCvar& cvar, const Parameter& parameter) const override {
    unsigned number = 0;
    const ScpiError error = Read(parameter, number);
    return error == ScpiError::kNone ? ErrorOf(cvar.put_Value(CComVariant(number))) : error;
  }

  ScpiError AppendValue(IVorCvar& cvar, std::string& answer) const override {
    CComPtr<IVorCvarRegister> offered;
    unsigned number = 0;
    HRESULT result = cvar.QueryInterface(IID_IVorCvarRegister, reinterpret_cast<void**>(&offered));
    if (result == S_OK) result = offered->GetAdaptedValue(&number);
    if (result != S_OK) return ErrorOf(result);
    char digits[8];
    char* const end = std::to_chars(std::begin(digits), std::end(digits), number, kHexadecimal).ptr;
    answer += "#H";
    for (const char* digit = digits; digit != end; ++digit) answer += ToUpper(*digit);
    return ScpiError::kNone;
  }

 private:
  static ScpiError Read(const Parameter& parameter, unsigned& number) {
    // A register reads a text that it does not understand as 0; a client hears of it instead.
    const bool isText = parameter.kind == Parameter::Kind::kString;
    if (!isText && parameter.kind != Parameter::Kind::kAutomationNumber) {
      return ReadWholeNumber(parameter, kAllBits, number);
    }
    const std::wstring text =
        FromWire(isText ? Unquote(parameter.text) : std::string(parameter.text));
    CComVariant value(text.c_str());
    const HRESULT converted = value.ChangeType(VT_UI4);
    if (converted == S_OK) number = value.ulVal;
    return ErrorOf(converted);
  }
};

}  // namespace

const CvarAdapter& RegisterAdapter() {
  static const HexadecimalRegisterAdapter adapter;
  return adapter;
}

}  // namespace cvars::remote
