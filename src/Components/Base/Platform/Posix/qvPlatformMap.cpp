// Mapped files. One descriptor serves as both handles.
#include "Base/Platform/qvPlatformMap.h"

#include "Base/Platform/Posix/qvPlatformDescriptor.h"
#include "Base/Platform/qvPlatformError.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <unistd.h>

#include <limits>
#include <utility>

namespace qvPlatform {

namespace {

/// The answer for what somebody else has, or what is no ordinary file.
constexpr int untouchable = EWOULDBLOCK;

/// Locks the file. It is ours only if the name still leads to it with the lock there; a link is not what is
/// to be deleted. @return 0, `untouchable`, or why a file that is ours could not be locked.
int claim(const char* path, FileHandle file, bool deleteOnClose) {
  const int error = retryCall("lock", [&] { return ::flock(descriptorOf(file), LOCK_EX | LOCK_NB); });
  FileInfo opened, named;
  const bool known =
      !queryHandle(file, &opened) && !(deleteOnClose ? queryLink(path, &named) : queryFile(path, &named));
  const bool ours = known && opened.kind == FileKind::file && opened.isSameFile(named);
  return ours ? error : untouchable;
}

/// Gives the file this size and all its blocks, or no bytes at all.
int fill(FileHandle file, std::int64_t size) {
  if (const int error = truncateFile(file, 0)) return error;
  const int error = retryCall("reserve", [&] {
    errno = ::posix_fallocate(descriptorOf(file), 0, size);
    return errno ? -1 : 0;
  });
  if (error) (void)truncateFile(file, 0);
  return error;
}

} // namespace

int createMapFile(const char* path, std::uint64_t size, bool deleteOnClose, MapFile* made) noexcept {
  if (size == 0 || size > std::numeric_limits<off_t>::max()) return EINVAL;
  FileHandle file = noFile;
  if (const int error = openFile(path, openRead | openWrite | openCreate | openPrivate, &file)) return error;
  int error = claim(path, file, deleteOnClose);
  if (deleteOnClose && error != untouchable) {
    const int failed = deleteFile(path);
    if (!error) error = failed;
  }
  if (!error) error = fill(file, static_cast<std::int64_t>(size));
  if (error)
    closeFile(file);
  else
    *made = {file, file};
  return error;
}

void closeMapFile(MapFile* file) noexcept {
  const MapFile closed = std::exchange(*file, MapFile());
  if (closed.fileHandle != noMapHandle) closeFile(closed.fileHandle);
}

int mapWindow(const MapFile& file, std::int64_t offset, std::uint64_t size, void** address) noexcept {
  void* mapped = nullptr;
  const int error = retryCall("map", [&] {
    mapped =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptorOf(file.mappingHandle), offset);
    return mapped == MAP_FAILED ? -1 : 0;
  });
  if (!error) *address = mapped;
  return error;
}

void unmapWindow(void* address, std::uint64_t size) noexcept {
  (void)beforeCall("unmap");
  ::munmap(address, size);
}

int flushWindow(void* address, std::uint64_t begin, std::uint64_t end) noexcept {
  const std::uint64_t first = begin & ~(mapGranularity() - 1); // the call takes only the start of a page
  return retryCall("flush",
                   [&] { return ::msync(static_cast<char*>(address) + first, end - first, MS_SYNC); });
}

std::uint64_t mapGranularity() noexcept { return static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)); }

} // namespace qvPlatform
