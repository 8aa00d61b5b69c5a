#include "Trace.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <ctime>
#include <iterator>
#include <optional>

#include "IVorTattlerClient.h"
#include "platform/JsonLine.h"

namespace cvars::components {
namespace {

// "2026-11-21T09:58:03.123456Z"
std::string TimeText(std::uint64_t realTimeNs) {
  const auto seconds = static_cast<time_t>(realTimeNs / 1'000'000'000u);
  tm parts = {};
  gmtime_r(&seconds, &parts);
  char date[32];
  std::strftime(date, sizeof(date), "%Y-%m-%dT%H:%M:%S", &parts);
  char text[64];
  std::snprintf(text, sizeof(text), "%s.%06luZ", date, realTimeNs / 1000 % 1'000'000);
  return text;
}

}  // namespace

std::string Trace::NameOf(std::uint32_t identifier) const {
  const auto found = m_names.find(identifier);
  return found != m_names.end() ? found->second : "(unknown probe)";
}

std::string Trace::LineOf(const Message& message, std::string_view name) {
  switch (message.kind) {
    case MessageKind::kProgram:
      m_program = name;
      return {};
    case MessageKind::kName:
      m_names[message.identifier] = name;
      return {};
    case MessageKind::kReport:
      return ReportLine(message);
    case MessageKind::kLost:
      if (m_json) {
        platform::JsonLine line;
        line.Text("time", TimeText(message.realTimeNs))
            .Text("program", m_program)
            .Number("process", std::int64_t{m_process})
            .Number("lost", std::uint64_t{message.firstValue});
        return line.Line();
      }
      return TimeText(message.realTimeNs) + ' ' + m_program + '[' + std::to_string(m_process) +
             "] lost " + std::to_string(message.firstValue) + " reports";
  }
  return {};
}

std::string Trace::ReportLine(const Message& report) {
  std::vector<Entry>& entered = m_entered[report.thread];
  const bool isExit = report.entryOrExit == kProbeExit;
  std::optional<double> durationUs;
  if (isExit) {
    const auto entry = std::find_if(
        entered.rbegin(), entered.rend(),
        [&report](const Entry& candidate) { return candidate.identifier == report.identifier; });
    if (entry != entered.rend()) {
      durationUs = static_cast<double>(report.monotonicTimeNs - entry->monotonicTimeNs) / 1000;
      // What was entered behind it and never left has gone with it.
      entered.erase(std::prev(entry.base()), entered.end());
    }
  }
  const std::size_t depth = entered.size();
  if (!isExit) entered.push_back({report.identifier, report.monotonicTimeNs});

  if (m_json) {
    platform::JsonLine line;
    line.Text("time", TimeText(report.realTimeNs))
        .Text("program", m_program)
        .Number("process", std::int64_t{m_process})
        .Number("thread", std::uint64_t{report.thread})
        .Text("probe", NameOf(report.identifier))
        .Text("kind", std::string_view(isExit ? "exit" : "entry"))
        .Number("first", std::uint64_t{report.firstValue})
        .Number("second", std::uint64_t{report.secondValue});
    if (durationUs) line.Number("duration_us", *durationUs);
    return line.Line();
  }
  std::string text = TimeText(report.realTimeNs) + ' ' + m_program + '[' +
                     std::to_string(m_process) + "] " + std::to_string(report.thread) + ' ' +
                     std::string(2 * depth, ' ') + (isExit ? "< " : "> ") +
                     NameOf(report.identifier) + " (" + std::to_string(report.firstValue) + ", " +
                     std::to_string(report.secondValue) + ')';
  if (durationUs) {
    // Whatever the locale: programs read these lines.
    char duration[32];
    const std::to_chars_result written =
        std::to_chars(duration, std::end(duration), *durationUs, std::chars_format::fixed, 1);
    text.append(" ").append(duration, written.ptr).append(" us");
  }
  return text;
}

}  // namespace cvars::components
