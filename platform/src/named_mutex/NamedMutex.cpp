#include "platform/NamedMutex.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "SharedMutex.h"
#include "handles/HandleTable.h"
#include "platform/Home.h"
#include "platform/LastError.h"
#include "platform/Utf8.h"

namespace cvars::platform {
namespace {

namespace fs = std::filesystem;

class Descriptor {
 public:
  Descriptor() = default;
  Descriptor(const fs::path& file, int flags)
      : m_value(open(file.c_str(), flags | O_RDWR | O_CLOEXEC, 0600)) {}
  Descriptor(Descriptor&& other) noexcept : m_value(std::exchange(other.m_value, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(m_value, other.m_value);
    return *this;
  }
  ~Descriptor() {
    if (m_value >= 0) close(m_value);
  }
  explicit operator bool() const { return m_value >= 0; }
  int Value() const { return m_value; }

  bool LockShared() const { return Lock(LOCK_SH); }
  bool LockExclusive() const { return Lock(LOCK_EX); }
  bool TryLockExclusive() const { return Lock(LOCK_EX | LOCK_NB); }

 private:
  bool Lock(int operation) const {
    int result = 0;
    do {
      result = flock(m_value, operation);
    } while (result != 0 && errno == EINTR);
    return result == 0;
  }
  int m_value = -1;
};

// A mutex that this process has handles of. The shared lock on its file tells other processes that
// the name exists; the kernel takes it away with the process.
struct OpenedMutex {
  fs::path folder;
  Descriptor file;
  std::unique_ptr<MutexMapping> mapping;
  int handleCount = 0;
};

struct OpenedMutexes {
  std::mutex lock;
  std::map<fs::path, OpenedMutex> byFile;
  pid_t process = getpid();

  // A forked process opens its mutexes anew: those of its parent are the parent's. Under the lock.
  std::map<fs::path, OpenedMutex>& OfThisProcess() {
    if (process != getpid()) {
      new std::map<fs::path, OpenedMutex>(std::move(byFile));  // mapped as long as the process
      byFile.clear();
      process = getpid();
    }
    return byFile;
  }
};

// Never destroyed, so that handles can be closed while the process ends.
OpenedMutexes& Opened() {
  static OpenedMutexes& opened = *new OpenedMutexes;
  return opened;
}

// Held while a name is made, found or given up.
Descriptor LockFolder(const fs::path& folder) {
  Descriptor lock(folder / ".lock", O_CREAT);
  if (lock && !lock.LockExclusive()) return {};
  return lock;
}

bool IsPlain(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') || character == ' ' || character == '-';
}

// File of a name: what is not a letter, digit, blank or hyphen is written in hexadecimal; a long
// name goes on in a folder.
fs::path FileOf(const fs::path& folder, std::wstring_view name) {
  constexpr std::size_t kLongestPart = 200;
  constexpr char kDigits[] = "0123456789ABCDEF";
  fs::path path = folder;
  std::string part;
  for (const char character : ToUtf8(name)) {
    if (part.size() >= kLongestPart) path /= std::exchange(part, {});
    if (IsPlain(character)) {
      part += character;
    } else {
      const auto byte = static_cast<unsigned char>(character);
      part += {'%', kDigits[byte >> 4], kDigits[byte & 0xF]};
    }
  }
  return path / (part + ".mutex");
}

// Opens the file of a mutex, with the shared lock of a user. Nothing when the name does not exist,
// which leaves no file behind.
Descriptor OpenExisting(const fs::path& path) {
  Descriptor file(path, 0);
  if (!file) return {};
  if (file.TryLockExclusive()) {
    unlink(path.c_str());  // its users have died
    return {};
  }
  struct stat status = {};
  const bool whole = fstat(file.Value(), &status) == 0 &&
                     status.st_size >= static_cast<off_t>(sizeof(SharedMutex));
  return whole && file.LockShared() ? std::move(file) : Descriptor();
}

Descriptor MakeNew(const fs::path& path) {
  Descriptor file(path, O_CREAT | O_EXCL);
  return file && file.LockShared() ? std::move(file) : Descriptor();
}

class MutexHandle : public HandleObject {
 public:
  explicit MutexHandle(SharedMutex& mutex) : m_mutex(mutex) {}
  DWORD Wait(DWORD timeoutMs) override { return m_mutex.Acquire(timeoutMs); }
  bool Release() { return m_mutex.Release(); }

 private:
  SharedMutex& m_mutex;
};

class UnnamedMutexHandle final : public MutexHandle {
 public:
  explicit UnnamedMutexHandle(std::unique_ptr<MutexMapping> mapping)
      : MutexHandle(mapping->Mutex()), m_mapping(std::move(mapping)) {}

 private:
  std::unique_ptr<MutexMapping> m_mapping;
};

class NamedMutexHandle final : public MutexHandle {
 public:
  // Under the lock of the opened mutexes.
  NamedMutexHandle(fs::path file, OpenedMutex& opened)
      : MutexHandle(opened.mapping->Mutex()), m_file(std::move(file)) {
    ++opened.handleCount;
  }

  ~NamedMutexHandle() override {
    OpenedMutexes& opened = Opened();
    const std::lock_guard lock(opened.lock);
    auto& byFile = opened.OfThisProcess();
    const auto found = byFile.find(m_file);
    if (found == byFile.end() || --found->second.handleCount > 0) return;
    const Descriptor folderLock = LockFolder(found->second.folder);
    if (folderLock && found->second.file.TryLockExclusive()) unlink(m_file.c_str());
    byFile.erase(found);
  }

 private:
  fs::path m_file;
};

struct OpenResult {
  std::shared_ptr<MutexHandle> handle;  // null on failure
  bool existed = false;
};

enum class WhenMissing { kNothing, kMake, kMakeOwned };

OpenResult OpenByName(std::wstring_view name, WhenMissing whenMissing) {
  const bool make = whenMissing != WhenMissing::kNothing;
  const fs::path folder = HomeFolder() / "objects";
  const fs::path path = FileOf(folder, name);
  OpenedMutexes& opened = Opened();
  const std::lock_guard lock(opened.lock);
  auto& byFile = opened.OfThisProcess();
  if (const auto found = byFile.find(path); found != byFile.end()) {
    return {std::make_shared<NamedMutexHandle>(path, found->second), true};
  }
  std::error_code ignored;  // a folder that cannot be made shows when the file is opened
  if (make) fs::create_directories(path.parent_path(), ignored);
  const Descriptor folderLock = LockFolder(folder);
  if (!folderLock) return {};
  OpenResult result;
  OpenedMutex mutex;
  mutex.folder = folder;
  mutex.file = OpenExisting(path);
  result.existed = static_cast<bool>(mutex.file);
  if (!mutex.file && make) mutex.file = MakeNew(path);
  if (!mutex.file) return {};
  mutex.mapping = MutexMapping::OfFile(mutex.file.Value(), !result.existed);
  if (mutex.mapping == nullptr) return {};
  OpenedMutex& kept = byFile.emplace(path, std::move(mutex)).first->second;
  result.handle = std::make_shared<NamedMutexHandle>(path, kept);
  if (!result.existed && whenMissing == WhenMissing::kMakeOwned) (void)result.handle->Wait(0);
  return result;
}

}  // namespace
}  // namespace cvars::platform

HANDLE CreateMutex(SECURITY_ATTRIBUTES*, int owned, const wchar_t* name) {
  using namespace cvars::platform;
  OpenResult result;
  if (name != nullptr && *name != L'\0') {
    result = OpenByName(name, owned != 0 ? WhenMissing::kMakeOwned : WhenMissing::kMake);
  } else if (auto mapping = MutexMapping::Private()) {
    result.handle = std::make_shared<UnnamedMutexHandle>(std::move(mapping));
    if (owned != 0) (void)result.handle->Wait(0);
  }
  if (result.handle == nullptr) {
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
  }
  SetLastError(result.existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
  return AddHandle(std::move(result.handle));
}

HANDLE OpenMutex(DWORD, int, const wchar_t* name) {
  using namespace cvars::platform;
  OpenResult result;
  if (name != nullptr) result = OpenByName(name, WhenMissing::kNothing);
  if (result.handle == nullptr) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return nullptr;
  }
  return AddHandle(std::move(result.handle));
}

int ReleaseMutex(HANDLE mutex) {
  using namespace cvars::platform;
  const auto handle = FindHandleOf<MutexHandle>(mutex);
  if (handle == nullptr) return 0;
  if (handle->Release()) return 1;
  SetLastError(ERROR_NOT_OWNER);
  return 0;
}
