#include "instrument/remote/StandardCommands.h"

#include <charconv>
#include <memory>

#include "instrument/remote/NumericParameter.h"

namespace cvars::remote {
namespace {

using SetFunction = ScpiError (*)(const CommandCall&);
using QueryFunction = void (*)(const CommandCall&, std::string&);

/// A command made of plain functions. A null one is a form that does not exist.
class StandardCommand final : public Command {
 public:
  StandardCommand(SetFunction set, std::size_t parameterCount, QueryFunction query) noexcept
      : m_set(set), m_parameterCount(parameterCount), m_query(query) {}

  ScpiError Set(const CommandCall& call) const override {
    if (m_set == nullptr) return ScpiError::kUndefinedHeader;
    const ScpiError error = CheckParameterCount(call, m_parameterCount, m_parameterCount);
    return error == ScpiError::kNone ? m_set(call) : error;
  }
  ScpiError Query(const CommandCall& call, std::string& answer) const override {
    if (m_query == nullptr) return ScpiError::kUndefinedHeader;
    const ScpiError error = CheckParameterCount(call, 0, 0);
    if (error == ScpiError::kNone) m_query(call, answer);
    return error;
  }

 private:
  SetFunction m_set;
  std::size_t m_parameterCount;
  QueryFunction m_query;
};

void AppendInteger(long long value, std::string& text) {
  char buffer[24];
  text.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

/// Reads the call's number and hands it to `store`.
template <typename Store>
ScpiError StoreNumber(const CommandCall& call, unsigned most, Store store) {
  unsigned bits = 0;
  const ScpiError error = ReadWholeNumber(call.unit.parameters.front(), most, bits);
  if (error == ScpiError::kNone) store(bits);
  return error;
}

constexpr unsigned kByteMost = 255;
constexpr unsigned kRegisterMost = 65535;

template <EventRegister& (StatusModel::*kRegister)() noexcept>
ScpiError SetEnable(const CommandCall& call) {
  return StoreNumber(call, kRegisterMost,
                     [&](unsigned bits) { (call.status.*kRegister)().SetEnable(bits); });
}
template <EventRegister& (StatusModel::*kRegister)() noexcept>
void QueryEnable(const CommandCall& call, std::string& answer) {
  AppendInteger((call.status.*kRegister)().Enable(), answer);
}
template <EventRegister& (StatusModel::*kRegister)() noexcept>
void QueryCondition(const CommandCall& call, std::string& answer) {
  AppendInteger((call.status.*kRegister)().Condition(), answer);
}
template <EventRegister& (StatusModel::*kRegister)() noexcept>
void QueryEvent(const CommandCall& call, std::string& answer) {
  AppendInteger((call.status.*kRegister)().TakeEvent(), answer);
}

struct StandardRow {
  std::string_view pattern;
  SetFunction set;
  std::size_t parameterCount;
  QueryFunction query;
};

constexpr auto kOperation = &StatusModel::Operation;
constexpr auto kQuestionable = &StatusModel::Questionable;

const StandardRow kRows[] = {
    {"*CLS",
     [](const CommandCall& call) {
       call.status.Clear();
       return ScpiError::kNone;
     },
     0, nullptr},
    {"*ESE",
     [](const CommandCall& call) {
       return StoreNumber(call, kByteMost,
                          [&](unsigned bits) { call.status.SetEventStatusEnable(bits); });
     },
     1,
     [](const CommandCall& call, std::string& answer) {
       AppendInteger(call.status.EventStatusEnable(), answer);
     }},
    {"*ESR", nullptr, 0,
     [](const CommandCall& call, std::string& answer) {
       AppendInteger(call.status.TakeEventStatus(), answer);
     }},
    {"*IDN", nullptr, 0,
     [](const CommandCall& call, std::string& answer) { answer += call.device.identity; }},
    // Every command is done before the next one starts, so there is never anything to wait for.
    {"*OPC",
     [](const CommandCall& call) {
       call.status.SetOperationComplete();
       return ScpiError::kNone;
     },
     0, [](const CommandCall&, std::string& answer) { answer.push_back('1'); }},
    {"*RST",
     [](const CommandCall& call) {
       call.device.reset();
       return ScpiError::kNone;
     },
     0, nullptr},
    {"*SRE",
     [](const CommandCall& call) {
       return StoreNumber(call, kByteMost,
                          [&](unsigned bits) { call.status.SetServiceRequestEnable(bits); });
     },
     1,
     [](const CommandCall& call, std::string& answer) {
       AppendInteger(call.status.ServiceRequestEnable(), answer);
     }},
    {"*STB", nullptr, 0,
     [](const CommandCall& call, std::string& answer) {
       AppendInteger(call.status.StatusByte(call.messageAvailable), answer);
     }},
    {"*TST", nullptr, 0,
     [](const CommandCall& call, std::string& answer) {
       AppendInteger(call.device.selfTest(), answer);
     }},
    {"*WAI", [](const CommandCall&) { return ScpiError::kNone; }, 0, nullptr},
    {"SYSTem:ERRor[:NEXT]", nullptr, 0,
     [](const CommandCall& call, std::string& answer) {
       const ScpiError error = call.status.TakeError();
       AppendInteger(static_cast<int>(error), answer);
       answer += ",\"";
       answer += ErrorText(error);
       answer.push_back('"');
     }},
    {"SYSTem:ERRor:COUNt", nullptr, 0,
     [](const CommandCall& call, std::string& answer) {
       AppendInteger(static_cast<long long>(call.status.ErrorCount()), answer);
     }},
    {"SYSTem:VERSion", nullptr, 0,
     [](const CommandCall&, std::string& answer) { answer += "1999.0"; }},
    {"STATus:OPERation[:EVENt]", nullptr, 0, QueryEvent<kOperation>},
    {"STATus:OPERation:CONDition", nullptr, 0, QueryCondition<kOperation>},
    {"STATus:OPERation:ENABle", SetEnable<kOperation>, 1, QueryEnable<kOperation>},
    {"STATus:QUEStionable[:EVENt]", nullptr, 0, QueryEvent<kQuestionable>},
    {"STATus:QUEStionable:CONDition", nullptr, 0, QueryCondition<kQuestionable>},
    {"STATus:QUEStionable:ENABle", SetEnable<kQuestionable>, 1, QueryEnable<kQuestionable>},
    {"STATus:PRESet",
     [](const CommandCall& call) {
       call.status.Preset();
       return ScpiError::kNone;
     },
     0, nullptr},
};

}  // namespace

void AddStandardCommands(CommandTable& table) {
  for (const StandardRow& row : kRows) {
    table.Add(row.pattern,
              std::make_shared<StandardCommand>(row.set, row.parameterCount, row.query));
  }
}

}  // namespace cvars::remote
