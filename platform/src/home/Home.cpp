#include "platform/Home.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace cvars::platform {
namespace {

const char* Variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : nullptr;
}

std::filesystem::path UserFolder() {
  if (const char* home = Variable("HOME")) return home;
  std::vector<char> buffer(16384);
  passwd entry{};
  passwd* found = nullptr;
  const int failed = getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
  if (failed == 0 && found != nullptr && found->pw_dir != nullptr) return found->pw_dir;
  return "/";
}

}  // namespace

std::filesystem::path HomeFolder() {
  if (const char* home = Variable("VORTANA_HOME")) return home;
  if (const char* state = Variable("XDG_STATE_HOME")) {
    return std::filesystem::path(state) / "vortana";
  }
  return UserFolder() / ".local" / "state" / "vortana";
}

}  // namespace cvars::platform
