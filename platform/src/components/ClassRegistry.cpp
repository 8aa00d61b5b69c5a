#include "ClassRegistry.h"

#include <memory>

#include "registry/RegistryRoots.h"

namespace cvars::platform {
namespace {

// The tree to look in, as a shared pointer that owns nothing when it is the installed one.
std::shared_ptr<const RegistryTree> ShownClasses() {
  try {
    return RegistryRoot::Of(HKEY_CLASSES_ROOT)->View();
  } catch (const RegistryFailure&) {
    return {std::shared_ptr<void>(), &InstalledClasses().tree};
  }
}

}  // namespace

std::wstring ClassRegistryText(const std::vector<std::wstring>& path) {
  const std::shared_ptr<const RegistryTree> classes = ShownClasses();
  const RegistryTree* const key = classes->Find(path);
  if (key == nullptr) return {};
  const auto value = key->values.find(std::wstring());
  return value != key->values.end() ? TextOf(value->second) : std::wstring();
}

}  // namespace cvars::platform
