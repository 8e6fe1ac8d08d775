#include "Base/Platform/qvPlatformTransfer.h"

#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformRuntime.h"

#include <fcntl.h>
#include <io.h>

#include <algorithm>

namespace qvPlatform {

namespace {

/// The runtime counts in an `int`.
unsigned atOnce(std::size_t size) { return static_cast<unsigned>(std::min(size, std::size_t(1) << 30)); }

template <class Transfer>
int transferSome(const char* name, std::size_t* count, Transfer transfer) noexcept {
  int done = 0;
  const int error = retryCall(
      name, [&] { return runtimeCall(transfer); }, done);
  *count = error ? 0 : static_cast<std::size_t>(done);
  return error;
}

} // namespace

// The standard streams would else turn line ends on the way.
FileHandle fileOfDescriptor(int descriptor) noexcept {
  _setmode(descriptor, _O_BINARY);
  return descriptor;
}

int readSome(FileHandle file, void* buffer, std::size_t size, std::size_t* count) noexcept {
  return transferSome("read", count, [=] { return _read(static_cast<int>(file), buffer, atOnce(size)); });
}

int writeSome(FileHandle file, const void* buffer, std::size_t size, std::size_t* count) noexcept {
  return transferSome("write", count, [=] { return _write(static_cast<int>(file), buffer, atOnce(size)); });
}

} // namespace qvPlatform
