// C streams over open files.
#include "Base/Platform/Posix/qvPlatformDescriptor.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"

#include <stdio.h>
#include <string.h>
#include <unistd.h>

namespace qvPlatform {

namespace {

struct StreamMode {
  unsigned flags = 0; ///< 0 where the text is no mode.
  char text[3] = {};  ///< The letter and the plus sign, which is all that the system needs.
};

StreamMode parseMode(const char* mode) {
  StreamMode result;
  const bool update = strchr(mode, '+');
  switch (mode[0]) {
  case 'r':
    result.flags = openRead;
    break;
  case 'w':
    result.flags = openWrite | openCreate | openTruncate;
    break;
  case 'a':
    result.flags = openWrite | openCreate | openAppend;
    break;
  default:
    return result;
  }
  if (update) result.flags |= openRead | openWrite;
  if (strchr(mode, 'x')) result.flags |= openExclusive;
  result.text[0] = mode[0];
  if (update) result.text[1] = '+';
  return result;
}

/// Repeats `step`, which returns how many bytes went, until `size` are done, the end is reached, or it fails.
template <class Step>
int streamAll(const char* name, std::FILE* stream, std::size_t size, std::size_t* count, Step step) {
  if (ferror(stream)) clearerr(stream); // What an earlier call reported is not this one's failure.
  std::size_t done = 0;
  int error = 0;
  while (done < size) {
    error = beforeCall(name);
    if (!error) {
      errno = 0;
      done += step(done);
      if (done == size || !ferror(stream)) break;
      error = errno ? errno : EIO;
    }
    if (error != EINTR) break;
    clearerr(stream);
    error = 0;
  }
  if (count) *count = done;
  return error;
}

} // namespace

int openStream(const char* path, const char* mode, std::FILE** stream) noexcept {
  const StreamMode parsed = parseMode(mode);
  if (!parsed.flags) return EINVAL;
  FileHandle file = noFile;
  if (const int error = openFile(path, parsed.flags, &file)) return error;
  const int error = streamOfFile(file, parsed.text, stream);
  if (error) closeFile(file);
  return error;
}

int streamOfFile(FileHandle file, const char* mode, std::FILE** stream) noexcept {
  if (const int refused = beforeCall("stream")) return refused;
  std::FILE* const opened = fdopen(descriptorOf(file), parseMode(mode).text);
  if (!opened) return errno;
  *stream = opened;
  return 0;
}

int closeStream(std::FILE* stream) noexcept {
  const int refused = beforeCall("close");
  int flushed = 0;
  while (fflush(stream) != 0) {
    flushed = errno;
    if (flushed != EINTR) break;
    clearerr(stream);
    flushed = 0;
  }
  const int closed = fclose(stream) == 0 || errno == EINTR ? 0 : errno;
  return refused ? refused : flushed ? flushed : closed;
}

int readStream(std::FILE* stream, void* buffer, std::size_t size, std::size_t* count, bool* atEnd) noexcept {
  const int error = streamAll("read", stream, size, count, [&](std::size_t done) {
    return fread(static_cast<char*>(buffer) + done, 1, size - done, stream);
  });
  if (atEnd) *atEnd = feof(stream);
  return error;
}

int writeStream(std::FILE* stream, const void* buffer, std::size_t size, std::size_t* count) noexcept {
  std::size_t done = 0;
  const int error = streamAll("write", stream, size, &done, [&](std::size_t from) {
    return fwrite(static_cast<const char*>(buffer) + from, 1, size - from, stream);
  });
  if (count) *count = done;
  return !error && done < size ? EIO : error;
}

int flushStream(std::FILE* stream) noexcept {
  return retryCall("write", [&] { return fflush(stream) == 0 ? 0 : -1; });
}

int seekStream(std::FILE* stream, std::int64_t offset, SeekFrom from, std::int64_t* position) noexcept {
  const int origin = from == SeekFrom::start ? SEEK_SET : from == SeekFrom::current ? SEEK_CUR : SEEK_END;
  if (const int error = retryCall("seek", [&] { return fseeko(stream, offset, origin); })) return error;
  if (!position) return 0;
  off_t result = 0;
  const int error = retryCall(
      "seek", [&] { return ftello(stream); }, result);
  if (!error) *position = result;
  return error;
}

int syncStream(std::FILE* stream) noexcept {
  if (const int error = flushStream(stream)) return error;
  return syncFile(fileno(stream));
}

} // namespace qvPlatform
