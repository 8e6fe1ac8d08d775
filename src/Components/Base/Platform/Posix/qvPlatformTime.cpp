#include "Base/Platform/qvPlatformTime.h"

#include <errno.h>
#include <time.h>

namespace qvPlatform {

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

std::int64_t nanosecondsOf(clockid_t clock) {
  timespec now{};
  ::clock_gettime(clock, &now);
  return std::int64_t(now.tv_sec) * nanosecondsPerSecond + now.tv_nsec;
}

} // namespace

std::int64_t secondsNow() noexcept { return ::time(nullptr); }

std::int64_t nanosecondsNow() noexcept { return nanosecondsOf(CLOCK_REALTIME); }

std::int64_t steadyNanoseconds() noexcept { return nanosecondsOf(CLOCK_MONOTONIC); }

void sleepNanoseconds(std::int64_t nanoseconds) noexcept {
  if (nanoseconds <= 0) return;
  timespec left{nanoseconds / nanosecondsPerSecond, static_cast<long>(nanoseconds % nanosecondsPerSecond)};
  while (::nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

bool localTime(std::int64_t seconds, std::tm* fields) noexcept {
  const time_t moment = seconds;
  return ::localtime_r(&moment, fields) != nullptr;
}

bool universalTime(std::int64_t seconds, std::tm* fields) noexcept {
  const time_t moment = seconds;
  return ::gmtime_r(&moment, fields) != nullptr;
}

} // namespace qvPlatform
