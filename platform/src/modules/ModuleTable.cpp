#include "ModuleTable.h"

#include <dlfcn.h>
#include <link.h>

#include <cstdlib>
#include <string_view>
#include <system_error>
#include <vector>

#include "registry/RegistryRoots.h"

namespace cvars::platform {
namespace {

const std::filesystem::path& ExecutableFile() {
  static const auto* const file = [] {
    std::error_code error;
    return new std::filesystem::path(std::filesystem::read_symlink("/proc/self/exe", error));
  }();
  return *file;
}

const link_map* ImageOf(void* library) {
  link_map* image = nullptr;
  return dlinfo(library, RTLD_DI_LINKMAP, &image) == 0 ? image : nullptr;
}

std::vector<std::filesystem::path> SearchFolders() {
  std::vector<std::filesystem::path> folders = {ExecutableFile().parent_path(), SystemFolder()};
  const char* const path = std::getenv("PATH");
  std::string_view rest = path != nullptr ? path : "";
  while (!rest.empty()) {
    const std::size_t end = rest.find(':');
    if (end != 0) folders.emplace_back(rest.substr(0, end));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return folders;
}

}  // namespace

std::filesystem::path SearchModule(const std::filesystem::path& name) {
  std::error_code error;
  for (const std::filesystem::path& folder : SearchFolders()) {
    std::filesystem::path file = folder / name;
    if (std::filesystem::is_regular_file(file, error)) return file;
  }
  return {};
}

ModuleTable& ModuleTable::Instance() {
  static auto* const table = new ModuleTable;
  return *table;
}

HMODULE ModuleTable::Enter(void* library, ULONG uses) {
  if (library == nullptr) return nullptr;
  const link_map* const image = ImageOf(library);
  const std::lock_guard guard(m_lock);
  for (auto& [number, module] : m_modules) {
    if (module.image != image) continue;
    // The table holds one reference of the dynamic loader, whatever the number of uses.
    dlclose(library);
    module.uses += uses;
    return reinterpret_cast<HMODULE>(number);
  }
  Module module{library, image, image != nullptr ? image->l_name : "", uses};
  if (module.file.empty()) module.file = ExecutableFile();
  m_modules.emplace(++m_last, std::move(module));
  return reinterpret_cast<HMODULE>(m_last);
}

HMODULE ModuleTable::Load(const std::filesystem::path& file) {
  return Enter(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL), 1);
}

HMODULE ModuleTable::Find(const std::filesystem::path& file) {
  return Enter(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD), 0);
}

HMODULE ModuleTable::Executable() { return Enter(dlopen(nullptr, RTLD_NOW), 0); }

HMODULE ModuleTable::FindAddress(const void* address) {
  Dl_info info{};
  link_map* image = nullptr;
  void* extra = nullptr;
  if (dladdr1(address, &info, &extra, RTLD_DL_LINKMAP) == 0) return nullptr;
  image = static_cast<link_map*>(extra);
  if (image == nullptr) return nullptr;
  return *image->l_name == '\0' ? Executable() : Find(image->l_name);
}

bool ModuleTable::Free(HMODULE handle) {
  void* library = nullptr;
  {
    const std::lock_guard guard(m_lock);
    const auto found = m_modules.find(reinterpret_cast<std::uintptr_t>(handle));
    if (found == m_modules.end() || found->second.uses == 0) return false;
    if (--found->second.uses != 0) return true;
    library = found->second.library;
    m_modules.erase(found);
  }
  dlclose(library);
  return true;
}

std::optional<Module> ModuleTable::Get(HMODULE handle) {
  if (handle == nullptr) handle = Executable();
  const std::lock_guard guard(m_lock);
  const auto found = m_modules.find(reinterpret_cast<std::uintptr_t>(handle));
  if (found == m_modules.end()) return std::nullopt;
  return found->second;
}

}  // namespace cvars::platform
