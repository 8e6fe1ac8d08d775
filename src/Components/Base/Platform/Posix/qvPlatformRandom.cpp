#include "Base/Platform/qvPlatformRandom.h"

#include "Base/Platform/qvPlatformError.h"

#include <unistd.h>

#include <algorithm>

namespace qvPlatform {

int randomBytes(void* buffer, std::size_t size) noexcept {
  constexpr std::size_t mostAtOnce = 256;
  for (std::size_t done = 0; done < size; done += mostAtOnce) {
    const std::size_t wanted = std::min(size - done, mostAtOnce);
    if (const int error =
            retryCall("random", [&] { return ::getentropy(static_cast<char*>(buffer) + done, wanted); }))
      return error;
  }
  return 0;
}

} // namespace qvPlatform
