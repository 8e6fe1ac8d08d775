// Places at which it matters which thread goes on: a test may hold a thread there, or let another one go
// first. Nothing listens in a running application.
#pragma once

#include <atomic>

namespace qvPlatform {

/// Called by a thread that comes to the place called `place`, as in "Mutex::lock".
using ScheduleHook = void (*)(const char* place) noexcept;

inline std::atomic<ScheduleHook> scheduleHook{nullptr};

inline void schedulePoint(const char* place) noexcept {
  const ScheduleHook hook = scheduleHook.load(std::memory_order_acquire);
  if (hook) [[unlikely]]
    hook(place);
}

} // namespace qvPlatform
