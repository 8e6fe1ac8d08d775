// The places at which this machine listens. Private to the platform: what includes this has included its
// system's socket headers.
#pragma once

#include "Base/Platform/qvPlatformSocket.h"

#include <cstdint>

namespace qvPlatform {

inline int familyNumber(unsigned family) noexcept { return family == familyIPv6 ? AF_INET6 : AF_INET; }

struct ListenAddress {
  union {
    sockaddr any;
    sockaddr_in four;
    sockaddr_in6 six;
  };
  socklen_t size;
};

/// The loopback, or every address of this machine. `port` has 16 bits.
inline ListenAddress listenAddress(unsigned family, bool loopbackOnly, int port) noexcept {
  ListenAddress address{};
  const std::uint16_t networkPort = htons(static_cast<std::uint16_t>(port));
  if (family == familyIPv6) {
    address.six = sockaddr_in6{};
    address.six.sin6_family = AF_INET6;
    address.six.sin6_port = networkPort;
    address.six.sin6_addr = loopbackOnly ? in6addr_loopback : in6addr_any;
    address.size = sizeof address.six;
  } else {
    address.four = sockaddr_in{};
    address.four.sin_family = AF_INET;
    address.four.sin_port = networkPort;
    address.four.sin_addr.s_addr = htonl(loopbackOnly ? INADDR_LOOPBACK : INADDR_ANY);
    address.size = sizeof address.four;
  }
  return address;
}

inline constexpr int largestPort = 65535;

} // namespace qvPlatform
