#include "Base/TCP/qvTCPSocketImpl.h"

#include "Base/Platform/qvPlatformError.h"

#include <algorithm>
#include <cstdlib>

namespace qvTCP {

bool socketsStarted = false;
unsigned protocolFamilies = 0;

// Only the presence of a variable counts. IPv6 alone wins over IPv4 alone, and neither takes away the last
// family.
void startSockets() {
  if (socketsStarted) return;
  socketsStarted = true;
  protocolFamilies = qvPlatform::availableFamilies();
  if ((protocolFamilies & qvPlatform::familyIPv6) && std::getenv("QV_IPV6_ONLY"))
    protocolFamilies = qvPlatform::familyIPv6;
  else if ((protocolFamilies & qvPlatform::familyIPv4) && std::getenv("QV_IPV4_ONLY"))
    protocolFamilies = qvPlatform::familyIPv4;
}

qvPlatform::Deadline deadlineAfter(const qvUtil::Interval& interval) noexcept {
  if (interval.isZero()) return qvPlatform::Deadline(-1);
  const std::int64_t microseconds = std::int64_t{interval.seconds()} * 1'000'000 + interval.microseconds();
  return qvPlatform::Deadline(std::max<std::int64_t>(microseconds, 0));
}

qvUtil::Error systemError(int code, int number, const char* format) {
  return number ? qvUtil::Error(code, format, qvPlatform::systemErrorText(number).c_str()) : qvUtil::Error();
}

} // namespace qvTCP
