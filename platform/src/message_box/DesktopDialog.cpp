#include "DesktopDialog.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

#include "MessageBoxButtons.h"
#include "files/FileDescriptor.h"
#include "platform/MessageBox.h"
#include "platform/Utf8.h"

namespace cvars::platform {
namespace {

bool IsSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

// The dialog program reads backslash escapes in its text.
std::string Escaped(const std::string& text) {
  std::string out;
  for (const char character : text) {
    if (character == '\\') out += '\\';
    out += character;
  }
  return out;
}

const char* KindOption(UINT type) {
  switch (type & MB_ICONMASK) {
    case MB_ICONERROR:
      return "--error";
    case MB_ICONWARNING:
      return "--warning";
    default:
      return "--info";
  }
}

std::vector<std::string> Arguments(const std::string& text, const std::string& caption, UINT type) {
  std::vector<std::string> arguments = {"zenity", "--no-markup", "--title=" + caption,
                                        "--text=" + Escaped(text)};
  const std::span<const int> buttons = ButtonsOf(type);
  if (buttons.size() == 1) {
    arguments.push_back(KindOption(type));
    return arguments;
  }
  // Buttons of our own tell their name, so that a refusal is told from a closed window.
  arguments.push_back("--question");
  arguments.push_back("--switch");
  for (const int button : buttons) {
    arguments.push_back("--extra-button=" + ToUtf8(ButtonName(button)));
  }
  return arguments;
}

struct Answer {
  bool isGiven = false;  // the program ended with success
  std::string name;      // what it wrote: the name of the button
};

Answer Run(std::vector<std::string> arguments) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return {};
  const FileDescriptor output(ends[0]);
  FileDescriptor input(ends[1]);

  posix_spawn_file_actions_t actions;
  if (posix_spawn_file_actions_init(&actions) != 0) return {};
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, input.Get(), STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  pid_t child = 0;
  const int failed =
      posix_spawnp(&child, pointers.front(), &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) return {};
  input.Close();

  Answer answer;
  char block[256];
  for (;;) {
    const ssize_t count = read(output.Get(), block, sizeof(block));
    if (count > 0) {
      answer.name.append(block, static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      break;
    }
  }
  int status = 0;
  pid_t ended = 0;
  do {
    ended = waitpid(child, &status, 0);
  } while (ended < 0 && errno == EINTR);
  answer.isGiven = ended == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  while (answer.name.ends_with('\n')) answer.name.pop_back();
  return answer;
}

}  // namespace

int ShowDesktopDialog(const std::string& text, const std::string& caption, UINT type) {
  if (!IsSet("DISPLAY") && !IsSet("WAYLAND_DISPLAY")) return 0;
  const Answer answer = Run(Arguments(text, caption, type));
  const std::span<const int> buttons = ButtonsOf(type);
  if (buttons.size() == 1) return answer.isGiven ? buttons.front() : 0;
  for (const int button : buttons) {
    if (answer.name == ToUtf8(ButtonName(button))) return button;
  }
  return 0;
}

}  // namespace cvars::platform
