#include "Base/Platform/qvPlatformRuntime.h"

#include "Base/Platform/Posix/qvPlatformDescriptor.h"

#include <errno.h>
#include <stdio.h>

namespace qvPlatform {

void clearRuntimeError() noexcept { errno = 0; }

void keepRuntimeError() noexcept {
  if (!errno) errno = EIO;
}

std::FILE* makeStream(FileHandle file, const char* mode) noexcept {
  return ::fdopen(descriptorOf(file), mode);
}

FileHandle fileOfStream(std::FILE* stream) noexcept { return ::fileno(stream); }

int setStreamPosition(std::FILE* stream, std::int64_t offset, int origin) noexcept {
  return ::fseeko(stream, offset, origin);
}

std::int64_t streamPosition(std::FILE* stream) noexcept { return ::ftello(stream); }

} // namespace qvPlatform
