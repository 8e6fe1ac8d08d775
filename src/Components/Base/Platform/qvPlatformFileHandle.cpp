// Transfers of all that is asked for, made of those that take what there is.
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"
#include "Base/Platform/qvPlatformTransfer.h"

namespace qvPlatform {

namespace {

/// Moves the bytes in as many steps as it takes. `step` gets what is done so far and how much is left.
template <class Step>
int transferAll(std::size_t size, std::size_t* count, Step step) {
  std::size_t done = 0;
  int error = 0;
  while (done < size) {
    std::size_t moved = 0;
    error = step(done, size - done, &moved);
    if (error || moved == 0) break;
    done += moved;
  }
  *count = done;
  return error;
}

} // namespace

int readFile(FileHandle file, void* buffer, std::size_t size, std::size_t* count) noexcept {
  std::size_t done = 0;
  const int error = transferAll(size, &done, [&](std::size_t from, std::size_t left, std::size_t* moved) {
    return readSome(file, static_cast<char*>(buffer) + from, left, moved);
  });
  if (count) *count = done;
  return error;
}

int writeFile(FileHandle file, const void* buffer, std::size_t size, std::size_t* count) noexcept {
  std::size_t done = 0;
  const int error = transferAll(size, &done, [&](std::size_t from, std::size_t left, std::size_t* moved) {
    return writeSome(file, static_cast<const char*>(buffer) + from, left, moved);
  });
  if (count) *count = done;
  return !error && done < size ? errorNumber(ErrorKind::ioFailure) : error;
}

} // namespace qvPlatform
