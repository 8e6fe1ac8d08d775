// A time limit as the system takes it.
#pragma once

#include "Base/Platform/qvPlatformThread.h"
#include "Base/Utility/qvUtilInterval.h"

#include <algorithm>
#include <cstdint>

namespace qvThread {

/// The whole milliseconds of `limit`; zero, and only that, is no limit. A negative span, which text can give
/// by its wrapping, is over at once.
[[nodiscard]] inline std::uint32_t waitTime(const qvUtil::Interval& limit) noexcept {
  if (limit.isZero()) return qvPlatform::Semaphore::noLimit;
  const std::int64_t milliseconds =
      std::int64_t{limit.seconds()} * 1000 + static_cast<std::int64_t>(limit.microseconds() * 0.001);
  return static_cast<std::uint32_t>(
      std::clamp<std::int64_t>(milliseconds, 0, qvPlatform::Semaphore::noLimit - 1));
}

} // namespace qvThread
