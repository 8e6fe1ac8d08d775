#include "Base/Platform/qvPlatformTransfer.h"

#include "Base/Platform/Posix/qvPlatformDescriptor.h"
#include "Base/Platform/qvPlatformError.h"

#include <errno.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>

namespace qvPlatform {
namespace {

/// The system moves at most 2 GiB less a page in one call.
constexpr std::size_t largestTransfer = std::size_t(1) << 30;

/// Repeats `transfer` as long as the descriptor has nothing for it.
template <class Transfer>
int transferSome(const char* name, int descriptor, short event, Transfer transfer,
                 std::size_t* count) noexcept {
  for (;;) {
    ssize_t done = 0;
    const int error = retryCall(name, transfer, done);
    *count = error ? 0 : static_cast<std::size_t>(done);
    if (error != EAGAIN && error != EWOULDBLOCK) return error;
    pollfd wait{descriptor, event, 0};
    (void)poll(&wait, 1, -1);
  }
}

} // namespace

FileHandle fileOfDescriptor(int descriptor) noexcept { return descriptor; }

int readSome(FileHandle file, void* buffer, std::size_t size, std::size_t* count) noexcept {
  const int descriptor = descriptorOf(file);
  return transferSome(
      "read", descriptor, POLLIN, [=] { return read(descriptor, buffer, std::min(size, largestTransfer)); },
      count);
}

int writeSome(FileHandle file, const void* buffer, std::size_t size, std::size_t* count) noexcept {
  const int descriptor = descriptorOf(file);
  return transferSome(
      "write", descriptor, POLLOUT,
      [=] { return write(descriptor, buffer, std::min(size, largestTransfer)); }, count);
}

} // namespace qvPlatform
