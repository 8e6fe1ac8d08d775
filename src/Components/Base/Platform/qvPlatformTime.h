// Clocks, and the local calendar.
#pragma once

#include <cstdint>
#include <ctime>

namespace qvPlatform {

/// Seconds since 1970-01-01 UTC, as the system's clock has it; it may jump.
[[nodiscard]] std::int64_t secondsNow() noexcept;
/// Nanoseconds since 1970-01-01 UTC.
[[nodiscard]] std::int64_t nanosecondsNow() noexcept;
/// Nanoseconds of a clock that never goes back; only differences mean something.
[[nodiscard]] std::int64_t steadyNanoseconds() noexcept;
/// Waits at least that long; returns at once for 0 and below.
void sleepNanoseconds(std::int64_t nanoseconds) noexcept;
/// The local calendar's fields of a moment; false where they cannot be told.
[[nodiscard]] bool localTime(std::int64_t seconds, std::tm* fields) noexcept;
/// The same in UTC.
[[nodiscard]] bool universalTime(std::int64_t seconds, std::tm* fields) noexcept;

} // namespace qvPlatform
