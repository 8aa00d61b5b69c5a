// cvar-log: prints the instrument's event log.

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Journal.h"
#include "LogFile.h"
#include "platform/JsonLine.h"

namespace {

using namespace cvars::components;
using cvars::platform::JsonMembers;
using cvars::platform::ReadJsonLine;

constexpr char kUsage[] =
    "usage: cvar-log [--follow] [--source NAME] [--type error|warning|information|NUMBER]\n"
    "                [--since TIME] [--until TIME] [--json]\n"
    "\n"
    "Prints the event log, the oldest entry first. TIME is written as the log does,\n"
    "2026-11-21T09:58:03Z in universal time, or the start of that: 2026-11-21.\n"
    "  --follow   goes on with new entries\n"
    "  --json     prints the entries as they are stored, one object a line\n";

struct Options {
  bool follow = false;
  bool json = false;
  std::string source;
  std::optional<int> type;
  std::string since;
  std::string until;
};

std::optional<int> TypeOf(const std::string& name) {
  if (name == "error") return 1;
  if (name == "warning") return 2;
  if (name == "information") return 4;
  int number = 0;
  const char* end = name.data() + name.size();
  return std::from_chars(name.data(), end, number).ptr == end && !name.empty()
             ? std::optional(number)
             : std::nullopt;
}

std::string TypeName(const std::string& number) {
  if (number == "1") return "error";
  if (number == "2") return "warning";
  if (number == "4") return "information";
  return "type " + number;
}

// @return nothing when the arguments cannot be understood.
std::optional<Options> ReadOptions(int count, char** arguments) {
  Options options;
  for (int index = 1; index < count; ++index) {
    const std::string name = arguments[index];
    if (name == "--follow" || name == "--json") {
      (name == "--follow" ? options.follow : options.json) = true;
      continue;
    }
    if (index + 1 >= count) return std::nullopt;
    const std::string value = arguments[++index];
    if (name == "--source") {
      options.source = value;
    } else if (name == "--since") {
      options.since = value;
    } else if (name == "--until") {
      options.until = value;
    } else if (name == "--type") {
      options.type = TypeOf(value);
      if (!options.type) return std::nullopt;
    } else {
      return std::nullopt;
    }
  }
  return options;
}

std::string Member(const JsonMembers& members, std::string_view name) {
  const auto found = members.find(name);
  return found != members.end() ? found->second : std::string();
}

bool IsWanted(const JsonMembers& entry, const Options& options) {
  const std::string time = Member(entry, "time");
  return (options.source.empty() || Member(entry, "source") == options.source) &&
         (!options.type || Member(entry, "type") == std::to_string(*options.type)) &&
         (options.since.empty() || time >= options.since) &&
         (options.until.empty() || time < options.until);
}

// A line that is no whole entry was cut by the end of its process.
void PrintLine(const std::string& line, const Options& options) {
  const auto entry = ReadJsonLine(line);
  if (!entry || !IsWanted(*entry, options)) return;
  if (options.json) {
    std::printf("%s\n", line.c_str());
  } else {
    std::printf("%s %s %s %s\n", Member(*entry, "time").c_str(),
                TypeName(Member(*entry, "type")).c_str(), Member(*entry, "source").c_str(),
                Member(*entry, "text").c_str());
  }
}

// Prints the lines of a file, or of a pipe, which may still be written.
class ReadFile {
 public:
  // @param descriptor  closed at the end.
  explicit ReadFile(int descriptor) : m_descriptor(descriptor) {
    (void)fstat(descriptor, &m_status);  // of an open file it does not fail
  }
  ~ReadFile() { close(m_descriptor); }
  ReadFile(const ReadFile&) = delete;
  ReadFile& operator=(const ReadFile&) = delete;

  // Prints what came since the last time, as far as the lines are whole.
  void PrintNew(const Options& options) {
    char block[16 * 1024];
    ssize_t count = 0;
    while ((count = read(m_descriptor, block, sizeof(block))) > 0) {
      m_pending.append(block, static_cast<std::size_t>(count));
      PrintPending(options);
      std::fflush(stdout);
    }
  }

  // Prints the rest of a file that is not written any more.
  void PrintToEnd(const Options& options) {
    PrintNew(options);
    PrintLine(m_pending, options);
    std::fflush(stdout);
    m_pending.clear();
  }

  bool IsSame(const ReadFile& other) const { return IsSame(other.m_status); }
  bool IsAt(const std::filesystem::path& path) const {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && IsSame(status);
  }

 private:
  bool IsSame(const struct stat& status) const {
    return m_status.st_ino == status.st_ino && m_status.st_dev == status.st_dev;
  }

  void PrintPending(const Options& options) {
    std::size_t start = 0;
    for (std::size_t end = m_pending.find('\n'); end != std::string::npos;
         end = m_pending.find('\n', start)) {
      PrintLine(m_pending.substr(start, end - start), options);
      start = end + 1;
    }
    m_pending.erase(0, start);
  }

  int m_descriptor;
  struct stat m_status = {};
  std::string m_pending;
};

// The oldest first.
using ReadFiles = std::vector<std::unique_ptr<ReadFile>>;

ReadFiles OpenFiles(const LogFile& log) {
  ReadFiles files;
  for (const int descriptor : log.OpenForReading()) {
    files.push_back(std::make_unique<ReadFile>(descriptor));
  }
  return files;
}

// Drops a file and all that are older; when it is not among them, all are newer.
void KeepNewer(ReadFiles& files, const ReadFile& than) {
  const auto found = std::find_if(files.begin(), files.end(),
                                  [&than](const auto& file) { return file->IsSame(than); });
  if (found != files.end()) files.erase(files.begin(), found + 1);
}

// Prints what is new. The last file stays open: it may grow, and nothing else gets its number.
void PrintNewest(const LogFile& log, std::unique_ptr<ReadFile>& last, const Options& options) {
  if (last != nullptr && last->IsAt(log.File(0))) return last->PrintNew(options);
  ReadFiles newer = OpenFiles(log);
  if (last != nullptr) KeepNewer(newer, *last);
  if (newer.empty()) {
    if (last != nullptr) last->PrintNew(options);
    return;
  }
  // The files moved up, so all but the newest are complete.
  if (last != nullptr) last->PrintToEnd(options);
  last = std::move(newer.back());
  newer.pop_back();
  for (const auto& file : newer) file->PrintToEnd(options);
  last->PrintNew(options);
}

int Follow(const LogFile& log, const Options& options) {
  std::error_code ignored;  // shows when the folder is watched
  std::filesystem::create_directories(log.Folder(), ignored);
  // Watched before the first look, so that whatever happens after a look ends the wait behind it.
  const int watch = inotify_init1(IN_CLOEXEC);
  if (watch < 0 ||
      inotify_add_watch(watch, log.Folder().c_str(), IN_MODIFY | IN_CREATE | IN_MOVED_TO) < 0) {
    std::perror("cvar-log: the log cannot be followed");
    return 1;
  }
  std::unique_ptr<ReadFile> last;
  while (true) {
    PrintNewest(log, last, options);
    char events[4096];
    if (read(watch, events, sizeof(events)) < 0 && errno != EINTR) return 1;
  }
}

int PrintFiles(const Options& options) {
  const LogFile log = HomeLogFile();
  if (options.follow) return Follow(log, options);
  for (const auto& file : OpenFiles(log)) file->PrintToEnd(options);
  return 0;
}

// Becomes the journal's own reader, which writes the stored lines of all entries to a descriptor.
[[noreturn]] void ReadJournalTo(int descriptor, bool follow) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);  // else it goes on following when its reader is killed
  dup2(descriptor, STDOUT_FILENO);
  const std::string identifier = std::string("SYSLOG_IDENTIFIER=") + kJournalIdentifier;
  const std::string field = std::string("--output-fields=") + kJournalEntryField;
  // With --follow it would otherwise begin ten entries before the end.
  const char* const arguments[] = {
      "journalctl",  "--quiet",   "--no-pager",       "--output=cat",
      field.c_str(), "--no-tail", identifier.c_str(), follow ? "--follow" : nullptr,
      nullptr};
  execvp(arguments[0], const_cast<char* const*>(arguments));
  std::perror("cvar-log: journalctl cannot be started");
  _exit(1);
}

int PrintJournal(const Options& options) {
  int lines[2];
  if (pipe2(lines, O_CLOEXEC) != 0) return 1;
  const pid_t reader = fork();
  if (reader == 0) ReadJournalTo(lines[1], options.follow);
  close(lines[1]);
  ReadFile(lines[0]).PrintToEnd(options);
  int status = 0;
  return reader > 0 && waitpid(reader, &status, 0) == reader && status == 0 ? 0 : 1;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  const auto options = ReadOptions(argumentCount, arguments);
  if (!options) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  return JournalSocket().empty() ? PrintFiles(*options) : PrintJournal(*options);
}
