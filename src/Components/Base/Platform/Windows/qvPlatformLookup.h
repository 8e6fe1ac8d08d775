// How a look-up of this system fails: with one of its numbers. Private to the platform.
#pragma once

#include "Base/Platform/qvPlatformError.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <string>

namespace qvPlatform {

/// The result that tells of no such host.
inline constexpr int noSuchHost = WSAHOST_NOT_FOUND;

/// The result of a look-up that failed with a number of the system.
inline int failedLookup(int number) noexcept { return number; }

/// The text of the result of a look-up.
inline std::string lookupText(int result) { return systemErrorText(result); }

} // namespace qvPlatform
