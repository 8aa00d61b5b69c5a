#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "BasicTypes.h"

namespace cvars::platform {

/// Gives the form of a name that is equal for names that differ in case only.
std::wstring FoldName(std::wstring_view name);

struct RegistryValue {
  std::wstring name;  ///< As it was spelled; empty for the default value.
  DWORD type = 0;
  std::vector<BYTE> data;
};

/// Gives the text of a REG_SZ value up to its terminator; empty for other values.
std::wstring TextOf(const RegistryValue& value);

/// One key with everything below it; the maps are by folded name.
struct RegistryTree {
  std::wstring name;  ///< As it was spelled; empty for a root.
  std::map<std::wstring, RegistryValue> values;
  std::map<std::wstring, RegistryTree> keys;

  /// Gives a key below this one, null when there is none.
  const RegistryTree* Find(const std::vector<std::wstring>& path) const;
  RegistryTree* Find(const std::vector<std::wstring>& path);
  /// Gives a key below this one, made when it is missing.
  RegistryTree& Make(const std::vector<std::wstring>& path);
  void Set(RegistryValue value);
  /// Lays another tree over this one: its values replace those of the same name.
  void Overlay(const RegistryTree& upper);
};

/// Most keys above and including one key, its root counted.
inline constexpr std::size_t kDeepestKey = 512;

/// Cuts a path at "\"; empty pieces are dropped.
std::vector<std::wstring> SplitKeyPath(std::wstring_view path);

/// Says whether a key or value may have this name: no control characters, code points only.
bool IsAllowedName(std::wstring_view name);

}  // namespace cvars::platform
