// A span of time: the value that every timed wait takes. Zero stands for no limit, not for a poll.
#pragma once

#include "Base/qvBase.h"

#include <cstdint>

namespace qvUtil {

/// Whole seconds and microseconds. A plain value; converts implicitly so that waits take `2.5` and `"250ms"`.
class Interval {
public:
  /// Zero: no limit.
  Interval() = default;

  /// The absolute value of `seconds`, cut to whole microseconds. What 32 bits of seconds cannot hold gives
  /// the longest span, 2147483647 seconds and 999999 microseconds; not-a-number gives zero.
  QV_BASE_API Interval(double seconds) noexcept;

  /// Decimal digits followed directly by a unit, "us", "ms", "s", "min" or "h", and nothing else. The number
  /// and its products wrap at 32 bits. Throws `qvUtil::Error` with code 1, "Bad time string", on any other
  /// text and on null.
  QV_BASE_API Interval(const char* text);

  [[nodiscard]] std::int32_t seconds() const noexcept { return seconds_; }
  [[nodiscard]] std::int32_t microseconds() const noexcept { return microseconds_; }

  /// The whole span in seconds.
  [[nodiscard]] double dseconds() const noexcept { return microseconds_ / 1e6 + seconds_; }

  [[nodiscard]] bool isZero() const noexcept { return seconds_ == 0 && microseconds_ == 0; }

  [[nodiscard]] bool operator==(const Interval& other) const noexcept = default;

  /// By seconds, then by microseconds.
  [[nodiscard]] bool operator<(const Interval& other) const noexcept {
    return seconds_ != other.seconds_ ? seconds_ < other.seconds_ : microseconds_ < other.microseconds_;
  }

private:
  std::int32_t seconds_ = 0;
  std::int32_t microseconds_ = 0;
};

static_assert(sizeof(Interval) == 8);

} // namespace qvUtil
