// A copy of a file: its bytes in the cheapest way that the file system offers, then its attributes.
#include "Base/Platform/Posix/qvPlatformDescriptor.h"
#include "Base/Platform/Posix/qvPlatformLinux.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qvPlatform {

namespace {

struct CopyTarget {
  int descriptor = -1;
  bool created = false;
  FileInfo before;
};

/// The name is taken only where nothing stands. The new file has at most the source's permissions from the
/// first moment on.
int openTarget(const char* path, unsigned permissions, bool overwrite, CopyTarget* target) {
  const int error =
      openDescriptor(path, O_WRONLY | O_CREAT | O_EXCL | O_NOCTTY, permissions, &target->descriptor);
  target->created = !error;
  if (error != EEXIST || !overwrite) return error;
  return openDescriptor(path, O_WRONLY | O_CREAT | O_NOCTTY, permissions, &target->descriptor);
}

int copyThroughBuffer(int from, int to) {
  char buffer[64 * 1024];
  for (;;) {
    std::size_t count = 0;
    if (const int error = readFile(from, buffer, sizeof buffer, &count)) return error;
    if (const int error = writeFile(to, buffer, count, nullptr)) return error;
    if (count < sizeof buffer) return 0;
  }
}

/// Copies what it can inside the system. Whatever is left, for any reason, goes through the buffer, which
/// then meets the same failure or the end.
int copyBytes(int from, int to) {
  constexpr std::size_t atOnce = std::size_t(1) << 30;
  ssize_t copied = 0;
  do {
    if (retryCall(
            "copy", [&] { return copyInside(from, to, atOnce); }, copied))
      break;
  } while (copied > 0);
  return copyThroughBuffer(from, to);
}

int copyContent(int from, std::int64_t size, const CopyTarget& target) {
  const int to = target.descriptor;
  const bool ordinary = target.before.kind == FileKind::file;
  std::int64_t end = size;
  if (!ordinary || retryCall("clone", [&] { return cloneBlocks(from, to); })) {
    if (ordinary && !target.created) {
      const int error = retryCall("reserve", [&] { return reserveBlocks(to, size); });
      if (errorKind(error) == ErrorKind::noSpace || error == EFBIG) return error;
    }
    if (const int error = copyBytes(from, to)) return error;
    if (ordinary)
      if (const int error = seekFile(to, 0, SeekFrom::current, &end)) return error;
  }
  return ordinary && !target.created ? truncateFile(to, end) : 0;
}

/// Some file systems keep no such attributes, and someone else's file keeps its own.
bool isAttributeRefused(int error) {
  return errorKind(error) == ErrorKind::denied || error == EINVAL || error == ENOSYS || error == ENOTSUP;
}

int giveAttributes(int file, const FileInfo& source) {
  const timespec times[2] = {{0, UTIME_OMIT}, {source.modified, source.modifiedNanoseconds}};
  int error = retryCall("attributes", [&] { return ::fchmod(file, source.permissions); });
  if (error && !isAttributeRefused(error)) return error;
  error = retryCall("attributes", [&] { return ::futimens(file, times); });
  return isAttributeRefused(error) ? 0 : error;
}

int copyTo(int from, const FileInfo& source, CopyTarget& target) {
  if (const int error = queryHandle(target.descriptor, &target.before)) return error;
  if (target.before.kind == FileKind::directory) return EISDIR;
  if (target.before.isSameFile(source)) return EBUSY;
  if (const int error = copyContent(from, source.size, target)) return error;
  return target.before.kind == FileKind::file ? giveAttributes(target.descriptor, source) : 0;
}

} // namespace

int copyFile(const char* from, const char* to, bool overwrite) noexcept {
  FileHandle file = noFile;
  if (const int error = openFile(from, openRead, &file)) return error;
  FileInfo source;
  CopyTarget target;
  int error = queryHandle(file, &source);
  if (!error) error = openTarget(to, source.permissions, overwrite, &target);
  if (!error) {
    error = copyTo(descriptorOf(file), source, target);
    const int closed = closeFile(target.descriptor);
    if (!error) error = closed;
    if (error && target.created) (void)deleteFile(to);
  }
  closeFile(file);
  return error;
}

} // namespace qvPlatform
