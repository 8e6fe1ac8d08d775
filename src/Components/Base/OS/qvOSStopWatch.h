// A running count of seconds.
#pragma once

#include "Base/qvBase.h"

#include <cstdint>

namespace qvOS {

/// Counts the time between `start` and `stop`, over as many stretches as there are, by a clock that never
/// goes back. Not thread-safe, but for reading.
class StopWatch {
public:
  /// Stopped, at 0.
  StopWatch() = default;

  /// Goes on counting; nothing changes where it counts already.
  QV_BASE_API void start();
  /// Keeps what was counted; nothing changes where it is stopped.
  QV_BASE_API void stop();
  /// Back to 0. It keeps running, or stays stopped.
  QV_BASE_API void reset();

  [[nodiscard]] bool isRunning() const noexcept { return running_; }
  /// Seconds counted so far.
  [[nodiscard]] QV_BASE_API double getElapsed() const;

private:
  [[nodiscard]] std::int64_t sinceStart() const;

  std::int64_t counted_ = 0; // nanoseconds of the stretches that are over
  std::int64_t started_ = 0; // when the present one began
  bool running_ = false;
};

} // namespace qvOS
