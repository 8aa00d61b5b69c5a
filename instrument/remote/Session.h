#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "instrument/remote/Command.h"
#include "instrument/remote/CommandTable.h"
#include "instrument/remote/ProgramMessage.h"
#include "instrument/remote/StatusModel.h"

namespace cvars::remote {

/// Runs the lines of one client against the command table.
///
/// A long line can be run in steps, so that a server can serve others in between. Not thread-safe.
class Session {
 public:
  /// Longest response in bytes; a line that answers more is a deadlocked query and answers nothing.
  static constexpr std::size_t kResponseLimit = std::size_t{16} << 20;

  /// Told of a command without question mark that ended in an error.
  using Refused = std::function<void(const ProgramUnit& unit, ScpiError error)>;

  /// @param table    borrowed
  /// @param device   borrowed
  /// @param refused  empty when nobody wants to know.
  Session(const CommandTable& table, const Device& device, Refused refused = {}) noexcept
      : m_table(table), m_device(device), m_refused(std::move(refused)) {}

  /// Starts a line and drops the response of the one before.
  /// @param line  borrowed until Run has returned true; without line feed.
  void Start(std::string_view line);
  /// Runs commands of the line.
  /// @param[in,out] budget  how many commands may run; what is left of it afterwards.
  /// @return true when the line is done.
  bool Run(std::size_t& budget);
  /// The answers of the line joined by semicolons and ended by a line feed; empty without a query.
  const std::string& Response() const noexcept { return m_response; }

  /// Runs a whole line. @return its response, borrowed until the next line.
  const std::string& Execute(std::string_view line);

  StatusModel& Status() noexcept { return m_status; }

 private:
  void Report(ScpiError error);
  ScpiError RunUnitGuarded();
  ScpiError RunUnit();
  ScpiError Resolve(const Command*& command);
  ScpiError Answer(const Command& command);

  const CommandTable& m_table;
  const Device& m_device;
  Refused m_refused;
  StatusModel m_status;
  ProgramMessage m_message;
  ProgramUnit m_unit;
  /// The header last looked up, in upper case; its first m_pathLength characters are the path.
  std::string m_header;
  std::size_t m_pathLength = 0;
  std::string m_response;
  bool m_hasAnswer = false;
  bool m_isDeadlocked = false;
};

}  // namespace cvars::remote
