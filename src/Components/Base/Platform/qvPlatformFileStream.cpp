// C streams over open files.
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"
#include "Base/Platform/qvPlatformRuntime.h"

#include <cstdio>
#include <cstring>

namespace qvPlatform {

namespace {

struct StreamMode {
  unsigned flags = 0; ///< 0 where the text is no mode.
  char text[4] = {};  ///< The letter, the plus sign, and the form, which is all that the runtime needs.
};

StreamMode parseMode(const char* mode) {
  StreamMode result;
  const bool update = std::strchr(mode, '+');
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
  if (std::strchr(mode, 'x')) result.flags |= openExclusive;
  char* next = result.text;
  *next++ = mode[0];
  if (update) *next++ = '+';
  *next = std::strchr(mode, 't') ? 't' : 'b';
  return result;
}

bool isInterrupted(int error) { return errorKind(error) == ErrorKind::interrupted; }

/// Repeats `step`, which returns how many bytes went, until `size` are done, the end is reached, or it fails.
template <class Step>
int streamAll(const char* name, std::FILE* stream, std::size_t size, std::size_t* count, Step step) {
  if (std::ferror(stream)) std::clearerr(stream); // What an earlier call reported is not this one's failure.
  std::size_t done = 0;
  int error = 0;
  while (done < size) {
    error = beforeCall(name);
    if (!error) {
      clearRuntimeError();
      done += step(done);
      if (done == size || !std::ferror(stream)) break;
      keepRuntimeError();
      error = lastError();
    }
    if (!isInterrupted(error)) break;
    std::clearerr(stream);
    error = 0;
  }
  if (count) *count = done;
  return error;
}

int flush(std::FILE* stream) {
  return runtimeCall([&] { return std::fflush(stream) == 0 ? 0 : -1; });
}

} // namespace

int openStream(const char* path, const char* mode, std::FILE** stream) noexcept {
  const StreamMode parsed = parseMode(mode);
  if (!parsed.flags) return errorNumber(ErrorKind::invalid);
  FileHandle file = noFile;
  if (const int error = openFile(path, parsed.flags, &file)) return error;
  const int error = streamOfFile(file, parsed.text, stream);
  if (error) closeFile(file);
  return error;
}

int streamOfFile(FileHandle file, const char* mode, std::FILE** stream) noexcept {
  if (const int refused = beforeCall("stream")) return refused;
  clearRuntimeError();
  std::FILE* const opened = makeStream(file, parseMode(mode).text);
  if (!opened) {
    keepRuntimeError();
    return lastError();
  }
  *stream = opened;
  return 0;
}

int closeStream(std::FILE* stream) noexcept {
  const int refused = beforeCall("close");
  int flushed = 0;
  while (flush(stream) < 0 && isInterrupted(flushed = lastError())) {
    std::clearerr(stream);
    flushed = 0;
  }
  int closed = runtimeCall([&] { return std::fclose(stream) == 0 ? 0 : -1; }) < 0 ? lastError() : 0;
  if (isInterrupted(closed)) closed = 0; // It is closed nonetheless.
  return refused ? refused : flushed ? flushed : closed;
}

int readStream(std::FILE* stream, void* buffer, std::size_t size, std::size_t* count, bool* atEnd) noexcept {
  const int error = streamAll("read", stream, size, count, [&](std::size_t done) {
    return std::fread(static_cast<char*>(buffer) + done, 1, size - done, stream);
  });
  if (atEnd) *atEnd = std::feof(stream);
  return error;
}

int writeStream(std::FILE* stream, const void* buffer, std::size_t size, std::size_t* count) noexcept {
  std::size_t done = 0;
  const int error = streamAll("write", stream, size, &done, [&](std::size_t from) {
    return std::fwrite(static_cast<const char*>(buffer) + from, 1, size - from, stream);
  });
  if (count) *count = done;
  return !error && done < size ? errorNumber(ErrorKind::ioFailure) : error;
}

int flushStream(std::FILE* stream) noexcept {
  return retryCall("write", [&] { return flush(stream); });
}

int seekStream(std::FILE* stream, std::int64_t offset, SeekFrom from, std::int64_t* position) noexcept {
  const int origin = from == SeekFrom::start ? SEEK_SET : from == SeekFrom::current ? SEEK_CUR : SEEK_END;
  if (const int error = retryCall(
          "seek", [&] { return runtimeCall([&] { return setStreamPosition(stream, offset, origin); }); }))
    return error;
  if (!position) return 0;
  std::int64_t result = 0;
  const int error = retryCall(
      "seek", [&] { return runtimeCall([&] { return streamPosition(stream); }); }, result);
  if (!error) *position = result;
  return error;
}

int syncStream(std::FILE* stream) noexcept {
  if (const int error = flushStream(stream)) return error;
  return syncFile(fileOfStream(stream));
}

} // namespace qvPlatform
