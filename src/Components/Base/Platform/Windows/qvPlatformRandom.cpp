#include "Base/Platform/qvPlatformRandom.h"

#include "Base/Platform/Windows/qvPlatformSystem.h"

#include <bcrypt.h>

#include <algorithm>

namespace qvPlatform {

int randomBytes(void* buffer, std::size_t size) noexcept {
  constexpr std::size_t mostAtOnce = std::size_t(1) << 30;
  for (std::size_t done = 0; done < size; done += mostAtOnce) {
    const auto wanted = static_cast<ULONG>(std::min(size - done, mostAtOnce));
    const int error = systemCall("random", [&] {
      const NTSTATUS status = ::BCryptGenRandom(nullptr, static_cast<UCHAR*>(buffer) + done, wanted,
                                                BCRYPT_USE_SYSTEM_PREFERRED_RNG);
      if (status < 0) ::SetLastError(ERROR_GEN_FAILURE);
      return status >= 0;
    });
    if (error) return error;
  }
  return 0;
}

} // namespace qvPlatform
