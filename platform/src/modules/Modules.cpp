#include "platform/Modules.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <string>
#include <tuple>

#include "ModuleTable.h"
#include "platform/HostPath.h"
#include "platform/LastError.h"
#include "platform/ResourceTable.h"
#include "platform/Utf8.h"
#include "registry/RegistryRoots.h"

namespace cvars::platform {
namespace {

bool IsNameAlone(const wchar_t* name) { return std::wcspbrk(name, L"\\/:") == nullptr; }

// The symbol of this very module; a search goes on in the modules it depends on.
const void* OwnSymbol(const Module& module, const char* name) {
  const void* const symbol = dlsym(module.library, name);
  Dl_info info{};
  void* image = nullptr;
  if (symbol == nullptr || dladdr1(symbol, &info, &image, RTLD_DL_LINKMAP) == 0) return nullptr;
  return image == module.image ? symbol : nullptr;
}

}  // namespace

HINSTANCE ModuleOf(const void* address) { return ModuleTable::Instance().FindAddress(address); }

std::span<const std::byte> FindModuleResource(HINSTANCE module, ResourceKind kind, UINT id) {
  const std::optional<Module> found = ModuleTable::Instance().Get(module);
  if (!found) return {};
  const auto* const table =
      static_cast<const ResourceTable*>(OwnSymbol(*found, "cvars_module_resources"));
  if (table == nullptr) return {};
  const ResourceEntry* const end = table->entries + table->count;
  const ResourceEntry* const entry = std::lower_bound(
      table->entries, end, std::tuple(kind, id), [](const ResourceEntry& left, const auto& right) {
        return std::tuple(left.kind, left.id) < right;
      });
  if (entry == end || entry->kind != kind || entry->id != id) return {};
  return {static_cast<const std::byte*>(entry->data), entry->size};
}

}  // namespace cvars::platform

using namespace cvars::platform;

HMODULE LoadLibrary(const wchar_t* name) {
  HMODULE loaded = nullptr;
  if (name != nullptr && *name != L'\0') {
    const std::filesystem::path file =
        IsNameAlone(name) ? SearchModule(ToUtf8(name)) : HostPath(name);
    // A relative path must not be looked for in the folders of the dynamic loader.
    std::error_code error;
    if (!file.empty())
      loaded = ModuleTable::Instance().Load(std::filesystem::absolute(file, error));
  }
  if (loaded == nullptr) SetLastError(ERROR_MOD_NOT_FOUND);
  return loaded;
}

FARPROC GetProcAddress(HMODULE module, const char* name) {
  const std::optional<Module> found = ModuleTable::Instance().Get(module);
  void* const symbol = found && name != nullptr ? dlsym(found->library, name) : nullptr;
  if (symbol == nullptr) SetLastError(found ? ERROR_PROC_NOT_FOUND : ERROR_INVALID_HANDLE);
  return reinterpret_cast<FARPROC>(symbol);
}

int FreeLibrary(HMODULE module) {
  if (ModuleTable::Instance().Free(module)) return 1;
  SetLastError(ERROR_INVALID_HANDLE);
  return 0;
}

HMODULE GetModuleHandle(const wchar_t* name) {
  ModuleTable& table = ModuleTable::Instance();
  if (name == nullptr) return table.Executable();
  HMODULE found = nullptr;
  if (!IsNameAlone(name)) {
    std::error_code error;
    found = table.Find(std::filesystem::absolute(HostPath(name), error));
  } else {
    // A name alone is that of the file, wherever it was loaded from.
    const std::string file = ToUtf8(name);
    const std::filesystem::path searched = SearchModule(file);
    if (!searched.empty()) found = table.Find(searched);
    if (found == nullptr) found = table.Find(file);
  }
  if (found == nullptr) SetLastError(ERROR_MOD_NOT_FOUND);
  return found;
}

DWORD GetModuleFileName(HMODULE module, wchar_t* path, DWORD size) {
  const std::optional<Module> found = ModuleTable::Instance().Get(module);
  if (!found || path == nullptr || size == 0) {
    SetLastError(found ? ERROR_INVALID_PARAMETER : ERROR_INVALID_HANDLE);
    return 0;
  }
  const std::wstring text = FromUtf8(found->file.native());
  const std::size_t copied = std::min<std::size_t>(text.size(), size - 1);
  std::wmemcpy(path, text.c_str(), copied);
  path[copied] = L'\0';
  if (copied == text.size()) return static_cast<DWORD>(copied);
  SetLastError(ERROR_INSUFFICIENT_BUFFER);
  return size;
}

UINT GetSystemDirectory(wchar_t* path, UINT size) {
  const std::wstring text = FromUtf8(SystemFolder().native());
  if (path == nullptr || size <= text.size()) return static_cast<UINT>(text.size() + 1);
  std::wmemcpy(path, text.c_str(), text.size() + 1);
  return static_cast<UINT>(text.size());
}

int LoadString(HINSTANCE module, UINT id, wchar_t* buffer, int size) {
  if (buffer == nullptr || size < 0) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  const std::span<const std::byte> found = FindModuleResource(module, ResourceKind::kText, id);
  if (found.data() == nullptr) SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
  const auto* const text = reinterpret_cast<const wchar_t*>(found.data());
  std::size_t length = found.size() / sizeof(wchar_t);
  if (size == 0) {
    std::memcpy(buffer, &text, sizeof(text));
    return static_cast<int>(length);
  }
  length = std::min(length, static_cast<std::size_t>(size - 1));
  if (length != 0) std::wmemcpy(buffer, text, length);
  buffer[length] = L'\0';
  return static_cast<int>(length);
}
