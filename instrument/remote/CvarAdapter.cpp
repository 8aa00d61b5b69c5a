#include "instrument/remote/CvarAdapter.h"

#include <string>

#include "CComBSTR.h"
#include "instrument/remote/Syntax.h"
#include "instrument/remote/WireText.h"

namespace cvars::remote {
namespace {

struct ResultRow {
  HRESULT result;
  ScpiError error;
};

/// What a text gives that holds no number, and one whose suffix is not known.
constexpr HRESULT kNoNumber = ResultCode(0x80040512);
constexpr HRESULT kUnknownSuffix = ResultCode(0x80040513);

constexpr ResultRow kResults[] = {
    {E_ACCESSDENIED, ScpiError::kCommandProtected},
    {E_INVALIDARG, ScpiError::kIllegalParameterValue},
    {kNoNumber, ScpiError::kDataTypeError},
    {kUnknownSuffix, ScpiError::kInvalidSuffix},
    {DISP_E_TYPEMISMATCH, ScpiError::kDataTypeError},
    {DISP_E_OVERFLOW, ScpiError::kDataOutOfRange},
    {DISP_E_BADINDEX, ScpiError::kIllegalParameterValue},
};

}  // namespace

ScpiError ErrorOf(HRESULT result) noexcept {
  if (result >= 0) return ScpiError::kNone;
  for (const ResultRow& row : kResults) {
    if (row.result == result) return row.error;
  }
  return ScpiError::kExecutionError;
}

ScpiError CvarAdapter::Set(IVorCvar& cvar, const CommandCall& call) const {
  if (const ScpiError error = CheckParameterCount(call, 1, 1); error != ScpiError::kNone) {
    return error;
  }
  return SetParameter(cvar, call.unit.parameters.front());
}

ScpiError CvarAdapter::SetParameter(IVorCvar& cvar, const Parameter& parameter) const {
  const bool isDefault =
      parameter.kind == Parameter::Kind::kWord && IsMnemonic("DEFault", parameter.text);
  return isDefault ? ErrorOf(cvar.SetToDefault()) : SetValue(cvar, parameter);
}

ScpiError CvarAdapter::SetValue(IVorCvar& cvar, const Parameter& parameter) const {
  const std::wstring text = parameter.kind == Parameter::Kind::kString
                                ? FromWire(Unquote(parameter.text))
                                : FromWire(parameter.text);
  return ErrorOf(cvar.SetRequestedValueFromStringRemote(text.c_str()));
}

ScpiError CvarAdapter::Query(IVorCvar& cvar, const CommandCall& call, std::string& answer) const {
  const ScpiError error = CheckParameterCount(call, 0, 0);
  return error == ScpiError::kNone ? AppendValue(cvar, answer) : error;
}

ScpiError CvarAdapter::AppendValue(IVorCvar& cvar, std::string& answer) const {
  CComBSTR text;
  const ScpiError error = ErrorOf(cvar.GetAdaptedValueStringRemoteNoUnit(&text));
  if (error == ScpiError::kNone) AppendToWire(text.View(), answer);
  return error;
}

}  // namespace cvars::remote
