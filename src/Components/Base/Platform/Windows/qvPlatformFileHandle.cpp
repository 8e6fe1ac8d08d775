// Open files, as descriptors of the C runtime.
#include "Base/Platform/Windows/qvPlatformSystem.h"
#include "Base/Platform/qvPlatformRuntime.h"

#include <fcntl.h>
#include <io.h>

namespace qvPlatform {

namespace {

constexpr int lastStandardDescriptor = 2;

DWORD accessOf(unsigned flags) {
  DWORD access = flags & openRead ? GENERIC_READ : 0;
  // Without the right to write elsewhere, every write goes to the end.
  if (flags & openWrite) access |= flags & openAppend ? FILE_GENERIC_WRITE & ~FILE_WRITE_DATA : GENERIC_WRITE;
  return access;
}

DWORD dispositionOf(unsigned flags) {
  const bool empties = flags & openTruncate;
  if (!(flags & openCreate)) return empties ? TRUNCATE_EXISTING : OPEN_EXISTING;
  if (flags & openExclusive) return CREATE_NEW;
  return empties ? CREATE_ALWAYS : OPEN_ALWAYS;
}

int descriptorFlagsOf(unsigned flags) {
  int result = _O_BINARY | _O_NOINHERIT;
  if (!(flags & openWrite)) result |= _O_RDONLY;
  if (flags & openAppend) result |= _O_APPEND;
  return result;
}

bool isDirectory(const char* path) {
  const SystemPath system(path);
  const DWORD attributes = system.isValid() ? ::GetFileAttributesW(system.get()) : INVALID_FILE_ATTRIBUTES;
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool duplicate(const Handle& handle, Handle* copy) {
  HANDLE made = INVALID_HANDLE_VALUE;
  const HANDLE self = ::GetCurrentProcess();
  if (!::DuplicateHandle(self, handle.get(), self, &made, 0, FALSE, DUPLICATE_SAME_ACCESS)) return false;
  copy->set(made);
  return true;
}

/// A descriptor above those of the standard streams, so that a program that closed one of them does not print
/// into a data file. A lower one stays taken until there is a higher one.
int attach(Handle& handle, int flags) {
  const int descriptor =
      runtimeCall([&] { return _open_osfhandle(reinterpret_cast<intptr_t>(handle.get()), flags); });
  if (descriptor < 0) return descriptor;
  Handle copy;
  const bool higher = descriptor > lastStandardDescriptor;
  const bool copied = !higher && duplicate(handle, &copy);
  (void)handle.release();
  if (higher) return descriptor;
  const int other = copied ? attach(copy, flags) : -1;
  const DWORD error = ::GetLastError();
  _close(descriptor);
  ::SetLastError(error);
  return other;
}

} // namespace

int openFile(const char* path, unsigned flags, FileHandle* file) noexcept {
  Handle handle;
  const DWORD disposition = dispositionOf(flags);
  // A link takes a name too, wherever it leads.
  const DWORD how = disposition == CREATE_NEW ? FILE_FLAG_OPEN_REPARSE_POINT : 0;
  const int error =
      openHandle("open", path, accessOf(flags), disposition, FILE_ATTRIBUTE_NORMAL | how, &handle);
  if (errorKind(error) == ErrorKind::denied && isDirectory(path)) return errorNumber(ErrorKind::isDirectory);
  if (error) return error;
  const int descriptor = attach(handle, descriptorFlagsOf(flags));
  if (descriptor < 0) return lastError();
  *file = descriptor;
  return 0;
}

int closeFile(FileHandle file) noexcept {
  const int refused = beforeCall("close");
  const int error = runtimeCall([&] { return _close(static_cast<int>(file)); }) < 0 ? lastError() : 0;
  return refused ? refused : error;
}

int seekFile(FileHandle file, std::int64_t offset, SeekFrom from, std::int64_t* position) noexcept {
  const int origin = from == SeekFrom::start ? SEEK_SET : from == SeekFrom::current ? SEEK_CUR : SEEK_END;
  std::int64_t result = 0;
  const int error = retryCall(
      "seek", [&] { return runtimeCall([&] { return _lseeki64(static_cast<int>(file), offset, origin); }); },
      result);
  if (!error && position) *position = result;
  return error;
}

int truncateFile(FileHandle file, std::int64_t size) noexcept {
  return systemCall("truncate", [&] {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = size;
    return ::SetFileInformationByHandle(handleOf(file), FileEndOfFileInfo, &end, sizeof end);
  });
}

namespace {

/// What cannot be written to has nothing to lose, and neither has a pipe.
int flush(HANDLE handle) {
  const int error = systemCall("sync", [&] { return ::FlushFileBuffers(handle); });
  return error == ERROR_ACCESS_DENIED || error == ERROR_INVALID_FUNCTION ? 0 : error;
}

int syncAt(const char* path, DWORD flags) {
  Handle handle;
  const int error = openHandle("open", path, GENERIC_WRITE, OPEN_EXISTING, flags, &handle);
  return error ? error : flush(handle.get());
}

} // namespace

int syncFile(FileHandle file) noexcept { return flush(handleOf(file)); }

int syncFileAt(const char* path) noexcept {
  const int error = syncAt(path, FILE_ATTRIBUTE_NORMAL);
  if (errorKind(error) != ErrorKind::denied) return error;
  return isDirectory(path) ? errorNumber(ErrorKind::isDirectory) : 0;
}

int syncDirectory(const char* path) noexcept {
  const int error = syncAt(path, FILE_FLAG_BACKUP_SEMANTICS);
  return errorKind(error) == ErrorKind::denied ? 0 : error;
}

} // namespace qvPlatform
