// How a look-up of this system fails. Private to the platform.
#pragma once

#include "Base/Platform/qvPlatformError.h"

#include <errno.h>
#include <netdb.h>
#include <sys/socket.h>

#include <string>

namespace qvPlatform {

/// The result that tells of no such host.
inline constexpr int noSuchHost = EAI_NONAME;

/// The result of a look-up that failed with a number of the system.
inline int failedLookup(int number) noexcept {
  errno = number;
  return EAI_SYSTEM;
}

/// The text of the result of the look-up that was made last.
inline std::string lookupText(int result) {
  return result == EAI_SYSTEM ? systemErrorText(errno) : gai_strerror(result);
}

} // namespace qvPlatform
