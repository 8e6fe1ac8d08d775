// Open files.
#include "Base/Platform/Posix/qvPlatformDescriptor.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qvPlatform {

namespace {

constexpr mode_t newFilePermissions = 0666;
constexpr mode_t privateFilePermissions = 0600;

int systemFlags(unsigned flags) {
  int result = O_CLOEXEC | O_NOCTTY;
  result |= !(flags & openWrite) ? O_RDONLY : flags & openRead ? O_RDWR : O_WRONLY;
  if (flags & openAppend) result |= O_APPEND;
  if (flags & openCreate) result |= O_CREAT;
  if (flags & openExclusive) result |= O_EXCL;
  if (flags & openTruncate) result |= O_TRUNC;
  return result;
}

bool isDirectory(int descriptor) {
  struct stat status;
  return fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

int systemOrigin(SeekFrom from) {
  return from == SeekFrom::start ? SEEK_SET : from == SeekFrom::current ? SEEK_CUR : SEEK_END;
}

} // namespace

int openDescriptor(const char* path, int flags, unsigned permissions, int* descriptor) noexcept {
  int opened = -1;
  if (const int error = retryCall(
          "open", [&] { return ::open(path, flags | O_CLOEXEC, static_cast<mode_t>(permissions)); }, opened))
    return error;
  if (opened <= STDERR_FILENO) {
    const int moved = ::fcntl(opened, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    ::close(opened);
    if (moved < 0) return error;
    opened = moved;
  }
  *descriptor = opened;
  return 0;
}

int openFile(const char* path, unsigned flags, FileHandle* file) noexcept {
  const unsigned permissions = flags & openPrivate ? privateFilePermissions : newFilePermissions;
  int descriptor = -1;
  if (const int error = openDescriptor(path, systemFlags(flags), permissions, &descriptor)) return error;
  if (isDirectory(descriptor)) {
    ::close(descriptor);
    return EISDIR;
  }
  *file = descriptor;
  return 0;
}

int closeFile(FileHandle file) noexcept {
  const int refused = beforeCall("close");
  const int error = ::close(descriptorOf(file)) < 0 ? errno : 0;
  if (refused) return refused;
  // An interrupted close has closed nonetheless; a second one could hit a descriptor that another thread
  // opened.
  return error == EINTR ? 0 : error;
}

int seekFile(FileHandle file, std::int64_t offset, SeekFrom from, std::int64_t* position) noexcept {
  off_t result = 0;
  const int error = retryCall(
      "seek", [&] { return ::lseek(descriptorOf(file), offset, systemOrigin(from)); }, result);
  if (!error && position) *position = result;
  return error;
}

int truncateFile(FileHandle file, std::int64_t size) noexcept {
  return retryCall("truncate", [&] { return ::ftruncate(descriptorOf(file), size); });
}

int syncFile(FileHandle file) noexcept {
  const int error = retryCall("sync", [&] { return ::fsync(descriptorOf(file)); });
  return error == EINVAL || error == ENOTSUP ? 0 : error; // Not a file that could be lost, as a pipe.
}

int syncFileAt(const char* path) noexcept {
  FileHandle file = noFile;
  if (const int error = openFile(path, openRead, &file)) return error;
  const int error = syncFile(file);
  const int closed = closeFile(file);
  return error ? error : closed;
}

int syncDirectory(const char* path) noexcept {
  int descriptor = -1;
  if (const int error = openDescriptor(path, O_RDONLY | O_DIRECTORY, 0, &descriptor)) return error;
  const int error = syncFile(descriptor);
  ::close(descriptor);
  return error;
}

} // namespace qvPlatform
