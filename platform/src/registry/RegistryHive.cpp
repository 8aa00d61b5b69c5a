#include "RegistryHive.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

#include "RegistryText.h"
#include "platform/Home.h"

namespace cvars::platform {
namespace {

[[noreturn]] void FailFile(DWORD code, const std::filesystem::path& file, const char* what) {
  throw RegistryFailure(code, file.string() + ": " + what + ": " + std::strerror(errno));
}

bool IsSameState(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
         a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

std::string ReadAll(const std::filesystem::path& file, int descriptor) {
  std::string content;
  char block[16384];
  for (;;) {
    const ssize_t count = read(descriptor, block, sizeof(block));
    if (count == 0) return content;
    if (count > 0) {
      content.append(block, static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      FailFile(ERROR_BADDB, file, "cannot be read");
    }
  }
}

bool WriteAll(int descriptor, const std::string& content) {
  std::size_t written = 0;
  while (written < content.size()) {
    const ssize_t count = write(descriptor, content.data() + written, content.size() - written);
    if (count >= 0) {
      written += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      return false;
    }
  }
  return fsync(descriptor) == 0;
}

// Takes the lock that all writers of a file share; it ends with the descriptor.
FileDescriptor Lock(const std::filesystem::path& file) {
  std::error_code error;
  std::filesystem::create_directories(file.parent_path(), error);
  const std::filesystem::path lockFile = file.string() + ".lock";
  FileDescriptor lock(open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
  if (!lock) FailFile(ERROR_WRITE_FAULT, lockFile, "cannot be made");
  while (flock(lock.Get(), LOCK_EX) != 0) {
    if (errno != EINTR) FailFile(ERROR_WRITE_FAULT, lockFile, "cannot be locked");
  }
  return lock;
}

}  // namespace

RegistryTree ReadRegistryFile(const std::filesystem::path& file, int descriptor,
                              const wchar_t* rootName) {
  try {
    return ReadRegistryFileText(ReadAll(file, descriptor), rootName);
  } catch (const RegistryTextError& error) {
    throw RegistryFailure(ERROR_BADDB,
                          file.string() + ":" + std::to_string(error.Line()) + ": " + error.what());
  }
}

std::filesystem::path RegistryHive::File() const { return HomeFolder() / "registry" / m_fileName; }

std::shared_ptr<const RegistryTree> RegistryHive::Read() {
  const std::filesystem::path file = File();
  const std::lock_guard guard(m_lock);
  struct stat status {};
  if (m_state.tree != nullptr && m_state.file == file && stat(file.c_str(), &status) == 0 &&
      IsSameState(status, m_state.status)) {
    return m_state.tree;
  }
  FileDescriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descriptor) {
    if (errno == ENOENT || errno == ENOTDIR) return std::make_shared<const RegistryTree>();
    FailFile(errno == EACCES ? ERROR_ACCESS_DENIED : ERROR_BADDB, file, "cannot be opened");
  }
  if (fstat(descriptor.Get(), &status) != 0) FailFile(ERROR_BADDB, file, "cannot be read");
  auto tree =
      std::make_shared<const RegistryTree>(ReadRegistryFile(file, descriptor.Get(), m_rootName));
  m_state = State{file, std::move(descriptor), status, tree};
  return tree;
}

LSTATUS RegistryHive::Change(const std::function<LSTATUS(RegistryTree&)>& change) {
  const std::filesystem::path file = File();
  const FileDescriptor lock = Lock(file);
  RegistryTree tree = *Read();
  const LSTATUS result = change(tree);
  if (result == static_cast<LSTATUS>(ERROR_SUCCESS)) Store(file, tree);
  return result;
}

void RegistryHive::Store(const std::filesystem::path& file, const RegistryTree& tree) const {
  const std::filesystem::path fresh = file.string() + ".new";
  FileDescriptor descriptor(open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  if (!descriptor) FailFile(ERROR_WRITE_FAULT, fresh, "cannot be made");
  if (!WriteAll(descriptor.Get(), WriteRegistryFileText(tree, m_rootName)) ||
      std::rename(fresh.c_str(), file.c_str()) != 0) {
    const int error = errno;
    unlink(fresh.c_str());
    errno = error;
    FailFile(ERROR_WRITE_FAULT, file, "cannot be stored");
  }
  // The new name itself must survive a loss of power too.
  const FileDescriptor folder(open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder) fsync(folder.Get());
}

}  // namespace cvars::platform
