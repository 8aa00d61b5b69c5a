#pragma once

#include <functional>
#include <string>

#include "instrument/remote/ProgramMessage.h"
#include "instrument/remote/ScpiError.h"
#include "instrument/remote/StatusModel.h"

namespace cvars::remote {

/// What the common commands need to know of the instrument that they speak for.
struct Device {
  std::string identity;                              ///< answer of *IDN?, four fields
  std::function<void()> reset = [] {};               ///< *RST
  std::function<int()> selfTest = [] { return 0; };  ///< *TST?, 0 when all is well
};

/// What a command finds when it is called.
struct CommandCall {
  const ProgramUnit& unit;
  StatusModel& status;  ///< of the client that sent the command
  const Device& device;
  bool messageAvailable;  ///< whether an earlier query of the line has answered
};

/// One entry of the command table. The caller reports the error that is returned.
class Command {
 public:
  virtual ~Command() = default;
  /// Runs the form without question mark.
  virtual ScpiError Set(const CommandCall& call) const;
  /// Runs the form with question mark.
  /// @param answer  is appended to; what is appended before an error is dropped by the caller.
  virtual ScpiError Query(const CommandCall& call, std::string& answer) const;
};

inline ScpiError Command::Set(const CommandCall&) const { return ScpiError::kUndefinedHeader; }
inline ScpiError Command::Query(const CommandCall&, std::string&) const {
  return ScpiError::kUndefinedHeader;
}

/// Checks the number of parameters of a call.
inline ScpiError CheckParameterCount(const CommandCall& call, std::size_t least,
                                     std::size_t most) noexcept {
  const std::size_t count = call.unit.parameters.size();
  if (count < least) return ScpiError::kMissingParameter;
  return count > most ? ScpiError::kParameterNotAllowed : ScpiError::kNone;
}

}  // namespace cvars::remote
