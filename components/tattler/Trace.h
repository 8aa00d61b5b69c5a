#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "MonitorSocket.h"

namespace cvars::components {

/// Turns the messages of one program into lines of a trace, and exits into durations.
class Trace {
 public:
  /// @param json  lines are objects for tools instead of text.
  Trace(pid_t process, bool json) : m_process(process), m_json(json) {}

  /// @return the line, without a line feed; empty when the message shows nothing.
  std::string LineOf(const Message& message, std::string_view name);

 private:
  struct Entry {
    std::uint32_t identifier;
    std::uint64_t monotonicTimeNs;
  };

  std::string ReportLine(const Message& report);
  std::string NameOf(std::uint32_t identifier) const;

  pid_t m_process;
  bool m_json;
  std::string m_program;
  std::unordered_map<std::uint32_t, std::string> m_names;
  std::map<std::uint32_t, std::vector<Entry>> m_entered;  // by thread, the innermost last
};

}  // namespace cvars::components
