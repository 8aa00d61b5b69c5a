#include "RegistryRoots.h"

#include <dlfcn.h>
#include <fcntl.h>

#include <algorithm>
#include <system_error>
#include <vector>

namespace cvars::platform {
namespace {

constexpr wchar_t kClassesRoot[] = L"HKEY_CLASSES_ROOT";
constexpr wchar_t kCurrentUser[] = L"HKEY_CURRENT_USER";

class CurrentUserRoot final : public RegistryRoot {
 public:
  CurrentUserRoot() : RegistryRoot(kCurrentUser, "current_user.reg") {}
  std::shared_ptr<const RegistryTree> View() override { return Hive().Read(); }
};

// Shows the user's classes on top of the installed ones.
class ClassesRoot final : public RegistryRoot {
 public:
  ClassesRoot() : RegistryRoot(kClassesRoot, "classes_root.reg") {}

  std::shared_ptr<const RegistryTree> View() override {
    std::shared_ptr<const RegistryTree> user = Hive().Read();
    const std::lock_guard guard(m_lock);
    if (m_view == nullptr || m_user != user) {
      auto view = std::make_shared<RegistryTree>(InstalledClasses().tree);
      view->Overlay(*user);
      m_user = std::move(user);
      m_view = std::move(view);
    }
    return m_view;
  }

 private:
  std::mutex m_lock;
  std::shared_ptr<const RegistryTree> m_user;  // guarded by m_lock; what m_view was made from
  std::shared_ptr<const RegistryTree> m_view;  // guarded by m_lock
};

MachineClasses ReadInstalledClasses() {
  std::vector<std::filesystem::path> files;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(ComponentFolder(), error), end;
       !error && entry != end; entry.increment(error)) {
    if (entry->path().extension() == ".reg") files.push_back(entry->path());
  }
  std::sort(files.begin(), files.end());
  MachineClasses classes;
  for (const std::filesystem::path& file : files) {
    try {
      const FileDescriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC));
      if (!descriptor) throw RegistryFailure(ERROR_BADDB, file.string() + ": cannot be opened");
      classes.tree.Overlay(ReadRegistryFile(file, descriptor.Get(), kClassesRoot));
    } catch (const RegistryFailure& failure) {
      if (!classes.damage.empty()) classes.damage += '\n';
      classes.damage += failure.what();
    }
  }
  return classes;
}

}  // namespace

const std::filesystem::path& SystemFolder() {
  // Leaked on purpose, as all that calls from other libraries' destructors may still reach.
  static const auto* const folder = [] {
    Dl_info info{};
    std::error_code error;
    std::filesystem::path library;
    if (dladdr(reinterpret_cast<const void*>(&SystemFolder), &info) != 0) {
      library = std::filesystem::absolute(info.dli_fname, error);
    }
    return new std::filesystem::path(library.parent_path());
  }();
  return *folder;
}

const std::filesystem::path& ComponentFolder() {
  static const auto* const folder =
      new std::filesystem::path(SystemFolder() / "cvars" / "components");
  return *folder;
}

const MachineClasses& InstalledClasses() {
  static const auto* const classes = new MachineClasses(ReadInstalledClasses());
  return *classes;
}

RegistryRoot* RegistryRoot::Of(HKEY key) {
  if (key == HKEY_CURRENT_USER) {
    static auto* const root = new CurrentUserRoot;
    return root;
  }
  if (key == HKEY_CLASSES_ROOT) {
    static auto* const root = new ClassesRoot;
    return root;
  }
  return nullptr;
}

}  // namespace cvars::platform
