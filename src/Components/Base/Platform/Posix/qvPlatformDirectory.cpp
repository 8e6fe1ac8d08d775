// Directory walks, and the volumes that paths lie on.
#include "Base/Platform/Posix/qvPlatformDescriptor.h"
#include "Base/Platform/Posix/qvPlatformLinux.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace qvPlatform {

namespace {

DIR* asStream(void* stream) { return static_cast<DIR*>(stream); }

FileKind kindByQuery(int directory, const char* name, int flags) {
  struct stat status;
  return ::fstatat(directory, name, &status, flags) == 0 ? infoOf(status).kind : FileKind::other;
}

FileKind kindOf(DIR* stream, const dirent& entry) {
  switch (entry.d_type) {
  case DT_REG:
    return FileKind::file;
  case DT_DIR:
    return FileKind::directory;
  case DT_LNK:
    return FileKind::link;
  case DT_UNKNOWN:
    return kindByQuery(::dirfd(stream), entry.d_name, AT_SYMLINK_NOFOLLOW);
  default:
    return FileKind::other;
  }
}

} // namespace

int Directory::open(const char* path) noexcept {
  close();
  if (const int refused = beforeCall("opendir")) return refused;
  int descriptor = -1;
  if (const int error = openDescriptor(path, O_RDONLY | O_DIRECTORY, 0, &descriptor)) return error;
  DIR* const stream = ::fdopendir(descriptor);
  if (!stream) {
    const int error = errno;
    ::close(descriptor);
    return error;
  }
  stream_ = stream;
  return 0;
}

void Directory::close() noexcept {
  if (stream_) ::closedir(asStream(stream_));
  stream_ = nullptr;
  name_ = nullptr;
}

int Directory::next(const char** name) noexcept {
  if (!stream_) return EBADF;
  if (const int refused = beforeCall("readdir")) return refused;
  errno = 0;
  const dirent* const entry = ::readdir(asStream(stream_));
  if (!entry && errno) return errno;
  name_ = entry ? entry->d_name : nullptr;
  kind_ = entry ? kindOf(asStream(stream_), *entry) : FileKind::other;
  *name = name_;
  return 0;
}

bool Directory::leadsToDirectory() const noexcept {
  if (kind_ != FileKind::link || !name_) return kind_ == FileKind::directory;
  return kindByQuery(::dirfd(asStream(stream_)), name_, 0) == FileKind::directory;
}

int queryVolumeSpace(const char* path, VolumeSpace* space) noexcept {
  struct statvfs status;
  if (const int error = retryCall("volume", [&] { return ::statvfs(path, &status); })) return error;
  const std::uint64_t unit = status.f_frsize ? status.f_frsize : status.f_bsize;
  space->total = unit * status.f_blocks;
  space->available = unit * status.f_bavail;
  return 0;
}

int queryRemote(const char* path, bool* remote) noexcept {
  int answer = 0;
  const int error = retryCall(
      "volume", [&] { return isRemoteFileSystem(path); }, answer);
  if (!error) *remote = answer != 0;
  return error;
}

} // namespace qvPlatform
