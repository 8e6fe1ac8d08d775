#include "Base/Platform/qvPlatformTime.h"

#include "Base/Platform/Windows/qvPlatformSystem.h"

#include <time.h>

namespace qvPlatform {

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

/// The calendar of the C runtime knows the years from 1970 to 3000.
bool isInCalendar(std::int64_t seconds) { return seconds >= 0 && seconds < 32'535'215'999; }

} // namespace

std::int64_t secondsNow() noexcept { return nanosecondsNow() / nanosecondsPerSecond; }

std::int64_t nanosecondsNow() noexcept {
  constexpr std::int64_t ticksTo1970 = 116'444'736'000'000'000; // From 1601, of 100 nanoseconds.
  FILETIME now;
  ::GetSystemTimePreciseAsFileTime(&now);
  return ((std::int64_t(now.dwHighDateTime) << 32 | now.dwLowDateTime) - ticksTo1970) * 100;
}

std::int64_t steadyNanoseconds() noexcept {
  LARGE_INTEGER count;
  LARGE_INTEGER perSecond;
  ::QueryPerformanceCounter(&count);
  ::QueryPerformanceFrequency(&perSecond);
  const std::int64_t seconds = count.QuadPart / perSecond.QuadPart;
  const std::int64_t rest = count.QuadPart % perSecond.QuadPart;
  return seconds * nanosecondsPerSecond + rest * nanosecondsPerSecond / perSecond.QuadPart;
}

void sleepNanoseconds(std::int64_t nanoseconds) noexcept {
  if (nanoseconds <= 0) return;
  constexpr std::int64_t perMillisecond = 1'000'000;
  constexpr std::int64_t longest = 1'000'000'000; // Milliseconds; below the number that means for ever.
  const std::int64_t start = steadyNanoseconds();
  // The system may wake a little early.
  for (std::int64_t past = 0; past < nanoseconds; past = steadyNanoseconds() - start) {
    const std::int64_t left = (nanoseconds - past - 1) / perMillisecond + 1;
    ::Sleep(static_cast<DWORD>(left < longest ? left : longest));
  }
}

bool localTime(std::int64_t seconds, std::tm* fields) noexcept {
  const __time64_t moment = seconds;
  return isInCalendar(seconds) && _localtime64_s(fields, &moment) == 0;
}

bool universalTime(std::int64_t seconds, std::tm* fields) noexcept {
  const __time64_t moment = seconds;
  return isInCalendar(seconds) && _gmtime64_s(fields, &moment) == 0;
}

} // namespace qvPlatform
