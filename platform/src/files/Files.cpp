#include "platform/Files.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "handles/HandleTable.h"
#include "platform/HostPath.h"
#include "platform/LastError.h"

namespace cvars::platform {
namespace {

class FileHandle final : public HandleObject {
 public:
  explicit FileHandle(int descriptor) : m_descriptor(descriptor) {}
  ~FileHandle() override { close(m_descriptor); }
  int Descriptor() const { return m_descriptor; }

 private:
  int m_descriptor;
};

int OpenFlags(DWORD access, DWORD disposition) {
  const bool reads = (access & GENERIC_READ) != 0;
  const bool writes = (access & GENERIC_WRITE) != 0;
  const int mode = writes ? (reads ? O_RDWR : O_WRONLY) : O_RDONLY;
  switch (disposition) {
    case CREATE_NEW:
      return mode | O_CREAT | O_EXCL;
    case CREATE_ALWAYS:
      return mode | O_CREAT | O_TRUNC;
    case OPEN_ALWAYS:
      return mode | O_CREAT;
    default:
      return mode;
  }
}

}  // namespace

int FileDescriptor(HANDLE file) {
  const auto handle = FindHandleOf<FileHandle>(file);
  return handle != nullptr ? handle->Descriptor() : -1;
}

DWORD ErrorFromErrno(int number) noexcept {
  switch (number) {
    case 0:
      return ERROR_SUCCESS;
    case ENOENT:
      return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
      return ERROR_PATH_NOT_FOUND;
    case EEXIST:
      return ERROR_ALREADY_EXISTS;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
      return ERROR_ACCESS_DENIED;
    case EINVAL:
    case ESRCH:
      return ERROR_INVALID_PARAMETER;
    default:
      return ERROR_WRITE_FAULT;
  }
}

}  // namespace cvars::platform

HANDLE CreateFile(const wchar_t* path, DWORD access, DWORD, SECURITY_ATTRIBUTES*, DWORD disposition,
                  DWORD, HANDLE) {
  using namespace cvars::platform;
  if (path == nullptr || *path == L'\0') {
    SetLastError(ERROR_PATH_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
  }
  const int descriptor =
      open(HostPath(path).c_str(), OpenFlags(access, disposition) | O_CLOEXEC, 0666);
  if (descriptor < 0) {
    SetLastError(ErrorFromErrno(errno));
    return INVALID_HANDLE_VALUE;
  }
  return AddHandle(std::make_shared<FileHandle>(descriptor));
}
