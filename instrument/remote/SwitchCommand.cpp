#include "instrument/remote/SwitchCommand.h"

#include <limits>
#include <utility>

#include "instrument/remote/NumericParameter.h"
#include "instrument/remote/Syntax.h"

namespace cvars::remote {
namespace {

ScpiError ReadSwitch(const Parameter& parameter, bool& on) {
  if (parameter.kind == Parameter::Kind::kWord) {
    const bool isOn = IsMnemonic("ON", parameter.text);
    if (!isOn && !IsMnemonic("OFF", parameter.text)) return ScpiError::kIllegalParameterValue;
    on = isOn;
    return ScpiError::kNone;
  }
  unsigned number = 0;
  const ScpiError error = ReadWholeNumber(parameter, std::numeric_limits<unsigned>::max(), number);
  if (error == ScpiError::kNone) on = number != 0;
  return error;
}

class SwitchCommand final : public Command {
 public:
  SwitchCommand(std::function<bool()> isOn, std::function<void(bool)> turn)
      : m_isOn(std::move(isOn)), m_turn(std::move(turn)) {}

  ScpiError Set(const CommandCall& call) const override {
    ScpiError error = CheckParameterCount(call, 1, 1);
    bool on = false;
    if (error == ScpiError::kNone) error = ReadSwitch(call.unit.parameters.front(), on);
    if (error == ScpiError::kNone) m_turn(on);
    return error;
  }
  ScpiError Query(const CommandCall& call, std::string& answer) const override {
    const ScpiError error = CheckParameterCount(call, 0, 0);
    if (error == ScpiError::kNone) answer.push_back(m_isOn() ? '1' : '0');
    return error;
  }

 private:
  const std::function<bool()> m_isOn;
  const std::function<void(bool)> m_turn;
};

}  // namespace

std::shared_ptr<const Command> MakeSwitchCommand(std::function<bool()> isOn,
                                                 std::function<void(bool on)> turn) {
  return std::make_shared<SwitchCommand>(std::move(isOn), std::move(turn));
}

}  // namespace cvars::remote
