#include "Base/Platform/qvPlatformRuntime.h"

#include "Base/Platform/Windows/qvPlatformSystem.h"

#include <errno.h>
#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

namespace qvPlatform {

namespace {

/// The system's number for what the runtime found out by itself.
DWORD numberOf(int runtimeError) {
  switch (runtimeError) {
  case EBADF:
    return ERROR_INVALID_HANDLE;
  case EACCES:
    return ERROR_ACCESS_DENIED;
  case EINVAL:
    return ERROR_INVALID_PARAMETER;
  case EMFILE:
    return ERROR_TOO_MANY_OPEN_FILES;
  case ENOMEM:
    return ERROR_NOT_ENOUGH_MEMORY;
  case ENOSPC:
    return ERROR_DISK_FULL;
  case EPIPE:
    return ERROR_BROKEN_PIPE;
  case EILSEQ:
    return ERROR_NO_UNICODE_TRANSLATION;
  default:
    return ERROR_IO_DEVICE;
  }
}

} // namespace

void clearRuntimeError() noexcept {
  errno = 0;
  _doserrno = 0;
}

void keepRuntimeError() noexcept { ::SetLastError(_doserrno ? _doserrno : numberOf(errno)); }

std::FILE* makeStream(FileHandle file, const char* mode) noexcept {
  const int descriptor = static_cast<int>(file);
  if (_setmode(descriptor, strchr(mode, 't') ? _O_TEXT : _O_BINARY) < 0) return nullptr;
  return _fdopen(descriptor, mode);
}

FileHandle fileOfStream(std::FILE* stream) noexcept { return _fileno(stream); }

int setStreamPosition(std::FILE* stream, std::int64_t offset, int origin) noexcept {
  return _fseeki64(stream, offset, origin);
}

std::int64_t streamPosition(std::FILE* stream) noexcept { return _ftelli64(stream); }

} // namespace qvPlatform
