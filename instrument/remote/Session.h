#pragma once

#include <cstddef>
#include <string>
#include <string_view>

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

  /// @param table   borrowed
  /// @param device  borrowed
  Session(const CommandTable& table, const Device& device) noexcept
      : m_table(table), m_device(device) {}

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
  ScpiError RunUnitGuarded();
  ScpiError RunUnit();
  ScpiError Resolve(const Command*& command);
  ScpiError Answer(const Command& command);

  const CommandTable& m_table;
  const Device& m_device;
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
