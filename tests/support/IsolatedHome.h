#pragma once

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace cvars::test {

/// Gives the process a fresh, empty home of the platform, and takes it away again at the end.
class IsolatedHome {
 public:
  IsolatedHome() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vortana-home-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    m_folder = pattern;
    if (const char* before = getenv(kVariable)) {
      m_before = before;
      m_wasSet = true;
    }
    setenv(kVariable, m_folder.c_str(), 1);
  }
  ~IsolatedHome() {
    if (m_wasSet) {
      setenv(kVariable, m_before.c_str(), 1);
    } else {
      unsetenv(kVariable);
    }
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
  }
  IsolatedHome(const IsolatedHome&) = delete;
  IsolatedHome& operator=(const IsolatedHome&) = delete;

  const std::filesystem::path& Folder() const { return m_folder; }

 private:
  static constexpr const char* kVariable = "VORTANA_HOME";
  std::filesystem::path m_folder;
  std::string m_before;
  bool m_wasSet = false;
};

}  // namespace cvars::test
