#include "platform/Registry.h"

#include <cstring>
#include <cwchar>
#include <optional>
#include <unordered_map>

#include "RegistryRoots.h"

namespace cvars::platform {
namespace {

constexpr std::size_t kLongestKeyName = 255;
constexpr std::size_t kLongestValueName = 16383;

constexpr LSTATUS Status(DWORD code) { return static_cast<LSTATUS>(code); }

struct OpenKey {
  RegistryRoot* root = nullptr;
  std::vector<std::wstring> path;
  REGSAM access = 0;
};

// The keys that are open in this process, by their handles.
class OpenKeys {
 public:
  static OpenKeys& Instance() {
    static auto* const keys = new OpenKeys;
    return *keys;
  }

  std::optional<OpenKey> Find(HKEY handle) {
    if (RegistryRoot* const root = RegistryRoot::Of(handle)) {
      return OpenKey{root, {}, KEY_ALL_ACCESS};
    }
    const std::lock_guard guard(m_lock);
    const auto found = m_keys.find(handle);
    if (found == m_keys.end()) return std::nullopt;
    return found->second;
  }

  HKEY Add(OpenKey key) {
    const std::lock_guard guard(m_lock);
    m_last += 4;
    const HKEY handle = reinterpret_cast<HKEY>(m_last);
    m_keys.emplace(handle, std::move(key));
    return handle;
  }

  bool Remove(HKEY handle) {
    if (RegistryRoot::Of(handle) != nullptr) return true;
    const std::lock_guard guard(m_lock);
    return m_keys.erase(handle) != 0;
  }

 private:
  std::mutex m_lock;
  std::unordered_map<HKEY, OpenKey> m_keys;  // guarded by m_lock
  std::uintptr_t m_last = 0x100;             // guarded by m_lock
};

// Runs a registry operation on an open key; what the files refuse becomes the result.
template <typename Operation>
LSTATUS WithKey(HKEY handle, REGSAM access, Operation operation) {
  const std::optional<OpenKey> key = OpenKeys::Instance().Find(handle);
  if (!key) return Status(ERROR_INVALID_HANDLE);
  if ((key->access & access) != access) return Status(ERROR_ACCESS_DENIED);
  try {
    return operation(*key);
  } catch (const RegistryFailure& failure) {
    return failure.Code();
  }
}

// As above, for operations that read: they get the key's tree too.
template <typename Operation>
LSTATUS WithTree(HKEY handle, REGSAM access, Operation operation) {
  return WithKey(handle, access, [&](const OpenKey& key) {
    const std::shared_ptr<const RegistryTree> view = key.root->View();
    const RegistryTree* const tree = view->Find(key.path);
    return tree != nullptr ? operation(*tree) : Status(ERROR_KEY_DELETED);
  });
}

// Puts the path of a key below `key` together.
LSTATUS Below(const OpenKey& key, const wchar_t* subKey, std::vector<std::wstring>& path) {
  path = key.path;
  if (subKey == nullptr) return Status(ERROR_SUCCESS);
  if (*subKey == L'\\') return Status(ERROR_BAD_PATHNAME);
  for (std::wstring& step : SplitKeyPath(subKey)) {
    if (step.size() > kLongestKeyName || !IsAllowedName(step)) {
      return Status(ERROR_INVALID_PARAMETER);
    }
    path.push_back(std::move(step));
  }
  return path.size() < kDeepestKey ? Status(ERROR_SUCCESS) : Status(ERROR_INVALID_PARAMETER);
}

LSTATUS CopyOut(const std::vector<BYTE>& data, BYTE* buffer, DWORD* size) {
  if (size == nullptr) return Status(ERROR_SUCCESS);
  const DWORD room = *size;
  *size = static_cast<DWORD>(data.size());
  if (buffer == nullptr) return Status(ERROR_SUCCESS);
  if (room < data.size()) return Status(ERROR_MORE_DATA);
  if (!data.empty()) std::memcpy(buffer, data.data(), data.size());
  return Status(ERROR_SUCCESS);
}

LSTATUS CopyOut(const std::wstring& name, wchar_t* buffer, DWORD* size) {
  if (*size <= name.size()) return Status(ERROR_MORE_DATA);
  std::wmemcpy(buffer, name.c_str(), name.size() + 1);
  *size = static_cast<DWORD>(name.size());
  return Status(ERROR_SUCCESS);
}

template <typename Map>
const typename Map::mapped_type* Nth(const Map& map, DWORD index) {
  return index < map.size() ? &std::next(map.begin(), index)->second : nullptr;
}

}  // namespace

std::wstring ReadRegistryText(HKEY root, const wchar_t* subKey, const wchar_t* name) {
  std::wstring text;
  (void)WithKey(root, KEY_QUERY_VALUE, [&](const OpenKey& key) {  // no value reads as empty
    std::vector<std::wstring> path;
    if (const LSTATUS failure = Below(key, subKey, path)) return failure;
    const std::shared_ptr<const RegistryTree> view = key.root->View();
    const RegistryTree* const tree = view->Find(path);
    if (tree == nullptr) return Status(ERROR_FILE_NOT_FOUND);
    const auto found = tree->values.find(FoldName(name));
    if (found != tree->values.end()) text = TextOf(found->second);
    return Status(ERROR_SUCCESS);
  });
  return text;
}

LSTATUS WriteRegistryText(HKEY root, const wchar_t* subKey, const wchar_t* name,
                          const std::wstring& text) {
  HKEY key = nullptr;
  if (const LSTATUS failure =
          RegCreateKeyEx(root, subKey, 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr)) {
    return failure;
  }
  const LSTATUS result =
      RegSetValueEx(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                    static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
  RegCloseKey(key);
  return result;
}

std::string RegistryDamage(HKEY root) {
  RegistryRoot* const found = RegistryRoot::Of(root);
  if (found == nullptr) return {};
  std::string damage = root == HKEY_CLASSES_ROOT ? InstalledClasses().damage : std::string();
  try {
    (void)found->View();  // asked for its failure only
  } catch (const RegistryFailure& failure) {
    if (!damage.empty()) damage += '\n';
    damage += failure.what();
  }
  return damage;
}

}  // namespace cvars::platform

using namespace cvars::platform;

LSTATUS RegOpenKeyEx(HKEY key, const wchar_t* subKey, DWORD, REGSAM access, HKEY* result) {
  if (result == nullptr) return Status(ERROR_INVALID_PARAMETER);
  *result = nullptr;
  return WithKey(key, 0, [&](const OpenKey& parent) {
    OpenKey opened{parent.root, {}, access};
    if (const LSTATUS failure = Below(parent, subKey, opened.path)) return failure;
    if (parent.root->View()->Find(opened.path) == nullptr) return Status(ERROR_FILE_NOT_FOUND);
    *result = OpenKeys::Instance().Add(std::move(opened));
    return Status(ERROR_SUCCESS);
  });
}

LSTATUS RegCreateKeyEx(HKEY key, const wchar_t* subKey, DWORD, const wchar_t*, DWORD, REGSAM access,
                       const SECURITY_ATTRIBUTES*, HKEY* result, DWORD* disposition) {
  if (result == nullptr) return Status(ERROR_INVALID_PARAMETER);
  *result = nullptr;
  if (subKey == nullptr) return Status(ERROR_INVALID_PARAMETER);
  return WithKey(key, 0, [&](const OpenKey& parent) {
    OpenKey opened{parent.root, {}, access};
    if (const LSTATUS failure = Below(parent, subKey, opened.path)) return failure;
    DWORD done = REG_OPENED_EXISTING_KEY;
    const std::shared_ptr<const RegistryTree> view = parent.root->View();
    if (view->Find(opened.path) == nullptr) {
      if (view->Find(parent.path) == nullptr) return Status(ERROR_KEY_DELETED);
      if ((parent.access & KEY_CREATE_SUB_KEY) == 0) return Status(ERROR_ACCESS_DENIED);
      const LSTATUS stored = parent.root->Hive().Change([&](RegistryTree& tree) {
        tree.Make(opened.path);
        return Status(ERROR_SUCCESS);
      });
      if (stored != Status(ERROR_SUCCESS)) return stored;
      done = REG_CREATED_NEW_KEY;
    }
    if (disposition != nullptr) *disposition = done;
    *result = OpenKeys::Instance().Add(std::move(opened));
    return Status(ERROR_SUCCESS);
  });
}

LSTATUS RegCloseKey(HKEY key) {
  return Status(OpenKeys::Instance().Remove(key) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);
}

LSTATUS RegQueryValueEx(HKEY key, const wchar_t* name, DWORD*, DWORD* type, BYTE* data,
                        DWORD* dataSize) {
  if (data != nullptr && dataSize == nullptr) return Status(ERROR_INVALID_PARAMETER);
  return WithTree(key, KEY_QUERY_VALUE, [&](const RegistryTree& tree) {
    const auto found = tree.values.find(FoldName(name != nullptr ? name : L""));
    if (found == tree.values.end()) return Status(ERROR_FILE_NOT_FOUND);
    if (type != nullptr) *type = found->second.type;
    return CopyOut(found->second.data, data, dataSize);
  });
}

LSTATUS RegSetValueEx(HKEY key, const wchar_t* name, DWORD, DWORD type, const BYTE* data,
                      DWORD dataSize) {
  RegistryValue value;
  if (name != nullptr) value.name = name;
  value.type = type;
  if (value.name.size() > kLongestValueName || !IsAllowedName(value.name) ||
      (data == nullptr && dataSize != 0)) {
    return Status(ERROR_INVALID_PARAMETER);
  }
  if (dataSize != 0) value.data.assign(data, data + dataSize);
  return WithKey(key, KEY_SET_VALUE, [&](const OpenKey& opened) {
    if (opened.root->View()->Find(opened.path) == nullptr) return Status(ERROR_KEY_DELETED);
    return opened.root->Hive().Change([&](RegistryTree& tree) {
      tree.Make(opened.path).Set(std::move(value));
      return Status(ERROR_SUCCESS);
    });
  });
}

LSTATUS RegDeleteValue(HKEY key, const wchar_t* name) {
  return WithKey(key, KEY_SET_VALUE, [&](const OpenKey& opened) {
    const std::wstring folded = FoldName(name != nullptr ? name : L"");
    const std::shared_ptr<const RegistryTree> view = opened.root->View();
    const RegistryTree* const shown = view->Find(opened.path);
    if (shown == nullptr) return Status(ERROR_KEY_DELETED);
    if (!shown->values.contains(folded)) return Status(ERROR_FILE_NOT_FOUND);
    return opened.root->Hive().Change([&](RegistryTree& tree) {
      RegistryTree* const own = tree.Find(opened.path);
      // A value that is shown and is not the user's belongs to the machine.
      return Status(own != nullptr && own->values.erase(folded) != 0 ? ERROR_SUCCESS
                                                                     : ERROR_ACCESS_DENIED);
    });
  });
}

LSTATUS RegDeleteKey(HKEY key, const wchar_t* subKey) {
  if (subKey == nullptr) return Status(ERROR_INVALID_PARAMETER);
  return WithKey(key, 0, [&](const OpenKey& parent) {
    std::vector<std::wstring> path;
    if (const LSTATUS failure = Below(parent, subKey, path)) return failure;
    if (path.empty()) return Status(ERROR_ACCESS_DENIED);
    if (parent.root->View()->Find(path) == nullptr) return Status(ERROR_FILE_NOT_FOUND);
    return parent.root->Hive().Change([&](RegistryTree& tree) {
      const std::wstring name = FoldName(path.back());
      path.pop_back();
      RegistryTree* const above = tree.Find(path);
      if (above == nullptr) return Status(ERROR_ACCESS_DENIED);
      const auto found = above->keys.find(name);
      if (found == above->keys.end() || !found->second.keys.empty()) {
        return Status(ERROR_ACCESS_DENIED);
      }
      above->keys.erase(found);
      return Status(ERROR_SUCCESS);
    });
  });
}

LSTATUS RegEnumKeyEx(HKEY key, DWORD index, wchar_t* name, DWORD* nameSize, DWORD*, wchar_t*,
                     DWORD* classSize, FILETIME*) {
  if (name == nullptr || nameSize == nullptr) return Status(ERROR_INVALID_PARAMETER);
  return WithTree(key, KEY_ENUMERATE_SUB_KEYS, [&](const RegistryTree& tree) {
    const RegistryTree* const below = Nth(tree.keys, index);
    if (below == nullptr) return Status(ERROR_NO_MORE_ITEMS);
    if (classSize != nullptr) *classSize = 0;
    return CopyOut(below->name, name, nameSize);
  });
}

LSTATUS RegEnumValue(HKEY key, DWORD index, wchar_t* name, DWORD* nameSize, DWORD*, DWORD* type,
                     BYTE* data, DWORD* dataSize) {
  if (name == nullptr || nameSize == nullptr || (data != nullptr && dataSize == nullptr)) {
    return Status(ERROR_INVALID_PARAMETER);
  }
  return WithTree(key, KEY_QUERY_VALUE, [&](const RegistryTree& tree) {
    const RegistryValue* const value = Nth(tree.values, index);
    if (value == nullptr) return Status(ERROR_NO_MORE_ITEMS);
    if (const LSTATUS failure = CopyOut(value->name, name, nameSize)) return failure;
    if (type != nullptr) *type = value->type;
    return CopyOut(value->data, data, dataSize);
  });
}
