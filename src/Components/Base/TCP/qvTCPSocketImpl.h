// The hidden state of a socket, shared by connecting, listening and waiting, and the families that the
// process uses. Not installed.
#pragma once

#include "Base/Platform/qvPlatformSocket.h"
#include "Base/String/qvStringCString.h"
#include "Base/TCP/qvTCPAddress.h"
#include "Base/Utility/qvUtilError.h"
#include "Base/Utility/qvUtilInterval.h"

#include <cstdint>
#include <cstdio>
#include <memory>

namespace qvTCP {

/// What a socket remembers. A handle that was closed is `noSocket` here.
class SocketImpl {
public:
  qvPlatform::SocketHandle handle = qvPlatform::noSocket;
  std::unique_ptr<Address> localAddress;  // made on demand
  std::unique_ptr<Address> remoteAddress; // made on demand
  bool isConnected = false;               // an accepted socket only
  bool throwMode = false;
  qvUtil::Interval timeout;
  std::int32_t closedSides = 0; // bit 1 reading, bit 2 writing
  std::int32_t descriptor = -1; // the stream's duplicate
  std::FILE* stream = nullptr;  // owns `descriptor`
  qvString::CString frame;      // room for the next one, 64 KB at most; its content means nothing

  [[nodiscard]] bool isOpen() const noexcept { return handle != qvPlatform::noSocket; }
  /// Whether adding `how` leaves no side open.
  [[nodiscard]] bool closesWholly(int how) const noexcept { return ((closedSides | how) & 3) == 3; }
};

/// How long a close waits for data that is not yet sent.
inline constexpr int lingerSeconds = 2;

/// Looks for the families once, with what the environment says about them. The first call must not race
/// another.
void startSockets();
extern bool socketsStarted;
extern unsigned protocolFamilies;
[[nodiscard]] inline bool hasFamily(unsigned family) {
  startSockets();
  return (protocolFamilies & family) != 0;
}

/// When a wait that begins now ends: never where the interval is zero, at once where it is negative.
[[nodiscard]] qvPlatform::Deadline deadlineAfter(const qvUtil::Interval& interval) noexcept;

/// Success for 0; otherwise a failure with `code`. A format has one "%s" for the system's text.
[[nodiscard]] qvUtil::Error systemError(int code, int number, const char* format = "%s");

} // namespace qvTCP
