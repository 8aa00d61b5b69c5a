#include "RegistryTree.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <utility>

#include "Bstr.h"
#include "platform/Registry.h"

namespace cvars::platform {

std::wstring FoldName(std::wstring_view name) {
  std::wstring folded(name);
  std::transform(folded.begin(), folded.end(), folded.begin(), cvars::UpperCase);
  return folded;
}

std::wstring TextOf(const RegistryValue& value) {
  if (value.type != REG_SZ) return {};
  std::wstring text(value.data.size() / sizeof(wchar_t), L'\0');
  std::memcpy(text.data(), value.data.data(), text.size() * sizeof(wchar_t));
  text.resize(std::wcslen(text.c_str()));
  return text;
}

const RegistryTree* RegistryTree::Find(const std::vector<std::wstring>& path) const {
  const RegistryTree* key = this;
  for (const std::wstring& step : path) {
    const auto found = key->keys.find(FoldName(step));
    if (found == key->keys.end()) return nullptr;
    key = &found->second;
  }
  return key;
}

RegistryTree* RegistryTree::Find(const std::vector<std::wstring>& path) {
  return const_cast<RegistryTree*>(std::as_const(*this).Find(path));
}

RegistryTree& RegistryTree::Make(const std::vector<std::wstring>& path) {
  RegistryTree* key = this;
  for (const std::wstring& step : path) {
    RegistryTree& next = key->keys[FoldName(step)];
    if (next.name.empty()) next.name = step;
    key = &next;
  }
  return *key;
}

void RegistryTree::Set(RegistryValue value) {
  const auto [place, isNew] = values.try_emplace(FoldName(value.name), value);
  if (isNew) return;
  place->second.type = value.type;
  place->second.data = std::move(value.data);
}

void RegistryTree::Overlay(const RegistryTree& upper) {
  for (const auto& [folded, value] : upper.values) values[folded] = value;
  for (const auto& [folded, key] : upper.keys) {
    RegistryTree& below = keys[folded];
    below.name = key.name;
    below.Overlay(key);
  }
}

std::vector<std::wstring> SplitKeyPath(std::wstring_view path) {
  std::vector<std::wstring> steps;
  while (!path.empty()) {
    const std::size_t end = path.find(L'\\');
    if (end != 0) steps.emplace_back(path.substr(0, end));
    path.remove_prefix(end == std::wstring_view::npos ? path.size() : end + 1);
  }
  return steps;
}

bool IsAllowedName(std::wstring_view name) {
  return std::all_of(name.begin(), name.end(), [](wchar_t character) {
    const auto code = static_cast<std::uint32_t>(character);
    return code >= 0x20 && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
  });
}

}  // namespace cvars::platform
