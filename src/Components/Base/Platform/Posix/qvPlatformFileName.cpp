// Names of files and directories: made, changed and removed.
#include "Base/Platform/Posix/qvPlatformLinux.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qvPlatform {

namespace {

bool isUnsupported(int error) { return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP; }

int replacingRename(const char* from, const char* to) {
  return retryCall("rename", [&] { return ::rename(from, to); });
}

/// Takes the name with an empty file or directory of our own, which the rename then replaces: nobody else's
/// file can stand there at that moment.
int renameByReserving(const char* from, const char* to, bool directory) {
  if (directory) {
    if (const int error = makeDirectory(to)) return error;
  } else {
    FileHandle file = noFile;
    if (const int error = openFile(to, openWrite | openCreate | openExclusive, &file)) return error;
    closeFile(file);
  }
  const int error = replacingRename(from, to);
  if (error) (void)(directory ? removeDirectory(to) : deleteFile(to));
  return error;
}

/// A second name can only be given where none is. Some file systems have no second names.
int renameByLinking(const char* from, const char* to) {
  const int linked = retryCall("link", [&] { return ::linkat(AT_FDCWD, from, AT_FDCWD, to, 0); });
  if (linked == EPERM || linked == EMLINK || isUnsupported(linked)) return renameByReserving(from, to, false);
  if (linked) return linked;
  const int error = deleteFile(from);
  if (error) (void)deleteFile(to);
  return error;
}

} // namespace

int deleteFile(const char* path) noexcept {
  return retryCall("unlink", [&] { return ::unlink(path); });
}

int renameFile(const char* from, const char* to) noexcept {
  FileInfo info;
  if (strcmp(from, to) == 0) return queryLink(from, &info);
  const int error = retryCall("rename", [&] { return renameWithoutReplacing(from, to); });
  if (!isUnsupported(error)) return error;
  if (const int missing = queryLink(from, &info)) return missing;
  return info.kind == FileKind::directory ? renameByReserving(from, to, true) : renameByLinking(from, to);
}

int copyLink(const char* from, const char* to) noexcept {
  char target[PATH_MAX + 1]; // The system makes no link longer than this.
  ssize_t length = 0;
  if (const int error = retryCall(
          "readlink", [&] { return ::readlink(from, target, PATH_MAX); }, length))
    return error;
  target[length] = '\0';
  return retryCall("symlink", [&] { return ::symlink(target, to); });
}

int makeNamedBySystem(const char*, const char*, std::string*) { return ENAMETOOLONG; }

int makeDirectory(const char* path) noexcept {
  return retryCall("mkdir", [&] { return ::mkdir(path, 0777); });
}

int removeDirectory(const char* path) noexcept {
  const int error = retryCall("rmdir", [&] { return ::rmdir(path); });
  return error == EEXIST ? ENOTEMPTY : error; // Both are told of a directory with entries.
}

} // namespace qvPlatform
