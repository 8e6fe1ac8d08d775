// The end of a wait that may be repeated: after an interruption, or because what it waited for was gone
// again.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace qvPlatform {

/// A moment of the steady clock, or never.
class Deadline {
public:
  /// So many microseconds from now. A negative number means never, and so does one that the clock cannot add.
  explicit Deadline(std::int64_t microseconds) noexcept {
    if (microseconds >= 0 && microseconds < INT64_MAX / 4000)
      moment_ = Clock::now() + std::chrono::microseconds(microseconds);
  }

  [[nodiscard]] bool isNever() const noexcept { return moment_ == Clock::time_point::max(); }
  [[nodiscard]] bool isPast() const noexcept { return !isNever() && Clock::now() >= moment_; }

  /// What is left, at least nothing and at most `most`. Rounded up, so that no wait ends before its time.
  template <class Unit>
  [[nodiscard]] Unit left(Unit most) const noexcept {
    return std::clamp(std::chrono::ceil<Unit>(moment_ - Clock::now()), Unit::zero(), most);
  }

private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point moment_ = Clock::time_point::max();
};

} // namespace qvPlatform
