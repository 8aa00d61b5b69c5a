#include "instrument/remote/Session.h"

#include <limits>
#include <new>

#include "instrument/remote/Syntax.h"

namespace cvars::remote {
namespace {

/// What is kept between lines; an exceptional line's memory is given back.
constexpr std::size_t kIdleResponse = 64 * 1024;
constexpr std::size_t kIdleParameters = 1024;

}  // namespace

void Session::Start(std::string_view line) {
  m_message = ProgramMessage(line);
  m_pathLength = 0;
  m_response.clear();
  if (m_response.capacity() > kIdleResponse) m_response.shrink_to_fit();
  if (m_unit.parameters.capacity() > kIdleParameters) m_unit.parameters = {};
  m_hasAnswer = false;
  m_isDeadlocked = false;
}

bool Session::Run(std::size_t& budget) {
  while (!m_message.AtEnd()) {
    if (budget == 0) return false;
    --budget;
    Report(RunUnitGuarded());
  }
  if (m_hasAnswer) m_response.push_back('\n');
  m_hasAnswer = false;
  return true;
}

const std::string& Session::Execute(std::string_view line) {
  Start(line);
  std::size_t budget = std::numeric_limits<std::size_t>::max();
  (void)Run(budget);  // the budget outlasts every line
  return m_response;
}

void Session::Report(ScpiError error) {
  m_status.Report(error);
  if (error != ScpiError::kNone && !m_unit.isQuery && m_refused) m_refused(m_unit, error);
}

ScpiError Session::RunUnitGuarded() {
  // A client that asks for too much must not end the service of the others.
  const std::size_t before = m_response.size();
  try {
    return RunUnit();
  } catch (const std::bad_alloc&) {
    m_response.resize(before);
    return ScpiError::kOutOfMemory;
  }
}

ScpiError Session::RunUnit() {
  const ScpiError error = m_message.Next(m_unit);
  if (error != ScpiError::kNone) return error;
  const Command* command = nullptr;
  if (const ScpiError unknown = Resolve(command); unknown != ScpiError::kNone) return unknown;
  if (m_unit.isQuery) return Answer(*command);
  return command->Set({m_unit, m_status, m_device, m_hasAnswer});
}

ScpiError Session::Resolve(const Command*& command) {
  const std::string_view header = m_unit.header;
  if (m_unit.isCommon) {
    // Common commands are looked up beside the path, which stays as it is.
    if (header.size() > CommandTable::kLongestHeader) return ScpiError::kProgramMnemonicTooLong;
    m_header.resize(m_pathLength);
    for (const char character : header) m_header.push_back(ToUpper(character));
    return m_table.Find(std::string_view(m_header).substr(m_pathLength), command);
  }
  if (m_unit.isAbsolute) m_pathLength = 0;
  if (m_pathLength + header.size() > CommandTable::kLongestHeader) {
    return ScpiError::kProgramMnemonicTooLong;
  }
  m_header.resize(m_pathLength);
  for (const char character : header) m_header.push_back(ToUpper(character));
  const std::size_t lastColon = m_header.rfind(':');
  m_pathLength = lastColon == std::string::npos ? 0 : lastColon + 1;
  return m_table.Find(m_header, command);
}

ScpiError Session::Answer(const Command& command) {
  if (m_isDeadlocked) return ScpiError::kNone;
  const std::size_t before = m_response.size();
  if (m_hasAnswer) m_response.push_back(';');
  const ScpiError error = command.Query({m_unit, m_status, m_device, m_hasAnswer}, m_response);
  if (error != ScpiError::kNone) {
    m_response.resize(before);
    return error;
  }
  m_hasAnswer = true;
  if (m_response.size() <= kResponseLimit) return ScpiError::kNone;
  m_response.clear();
  m_hasAnswer = false;
  m_isDeadlocked = true;
  return ScpiError::kQueryDeadlocked;
}

}  // namespace cvars::remote
