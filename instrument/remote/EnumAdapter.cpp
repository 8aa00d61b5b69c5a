// Choices by any of their spellings, answered by the remote one; UP, DOWN and DEFault.

#include <algorithm>
#include <string>
#include <string_view>

#include "CComBSTR.h"
#include "CComPtr.h"
#include "IVorCvarEnum.h"
#include "instrument/remote/CvarAdapters.h"
#include "instrument/remote/Syntax.h"
#include "instrument/remote/WireText.h"

namespace cvars::remote {
namespace {

/// What stands for no choice at all.
constexpr std::string_view kNoChoice = "NONE";

/// Says whether clients can read a text without quotes: a letter, then letters, digits and "_".
bool IsWord(std::string_view text) noexcept {
  return !text.empty() && IsLetter(text.front()) &&
         std::all_of(text.begin(), text.end(), [](char character) {
           return IsLetter(character) || IsDigit(character) || character == '_';
         });
}

void AppendSpelling(std::wstring_view spelling, std::string& answer) {
  std::string text;
  AppendToWire(spelling, text);
  if (text.empty()) {
    answer += kNoChoice;
  } else if (IsWord(text)) {
    answer += text;
  } else {
    AppendQuoted(text, answer);
  }
}

/// Requests a choice, unless it is disabled: clients learn that it cannot be had.
ScpiError Choose(IVorCvarEnum& choice, int index) {
  int enabled = 0;
  const HRESULT read = choice.IsEnabled(index, &enabled);
  if (read != S_OK) return ErrorOf(read);
  if (enabled == 0) return ScpiError::kSettingsConflict;
  return ErrorOf(choice.SetRequestedValue(index));
}

class ChoiceAdapter final : public CvarAdapter {
 protected:
  // What a choice is called goes before what the word means elsewhere.
  ScpiError SetParameter(IVorCvar& cvar, const Parameter& parameter) const override {
    std::string text;
    if (parameter.kind == Parameter::Kind::kString) {
      text = Unquote(parameter.text);
    } else if (parameter.kind == Parameter::Kind::kWord ||
               parameter.kind == Parameter::Kind::kNumber) {
      text = parameter.text;  // 20MHZ is a choice too
    } else {
      return ScpiError::kDataTypeError;
    }
    CComPtr<IVorCvarEnum> choice;
    int index = -1;
    HRESULT result = cvar.QueryInterface(IID_IVorCvarEnum, reinterpret_cast<void**>(&choice));
    if (result == S_OK) result = choice->GetIndexOfStringName(FromWire(text).c_str(), &index);
    if (result != S_OK) return ErrorOf(result);
    if (index >= 0) return Choose(*choice, index);
    return CvarAdapter::SetParameter(cvar, parameter);
  }

  ScpiError SetValue(IVorCvar& cvar, const Parameter& parameter) const override {
    if (parameter.kind != Parameter::Kind::kWord) return ScpiError::kIllegalParameterValue;
    if (IsMnemonic("UP", parameter.text)) return ErrorOf(cvar.Increment(1));
    if (IsMnemonic("DOWN", parameter.text)) return ErrorOf(cvar.Increment(-1));
    return ScpiError::kIllegalParameterValue;
  }

  ScpiError AppendValue(IVorCvar& cvar, std::string& answer) const override {
    CComBSTR text;
    const ScpiError error = ErrorOf(cvar.GetAdaptedValueStringRemote(&text));
    if (error == ScpiError::kNone) AppendSpelling(text.View(), answer);
    return error;
  }
};

}  // namespace

const CvarAdapter& EnumAdapter() {
  static const ChoiceAdapter adapter;
  return adapter;
}

}  // namespace cvars::remote
