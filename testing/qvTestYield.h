// Schedules: what threads do at the places where it matters which of them goes on. For white-box tests only,
// since it reaches a hidden variable of the library.
#pragma once

#include "Base/Platform/qvPlatformSchedule.h"
#include "testing/qvTestSeed.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string_view>
#include <thread>
#include <utility>

namespace qvTest {

/// While it lives, every thread that comes to a place calls `listener` there with the place's name. One at a
/// time; the threads of the test end before it does.
class ScheduleListener {
public:
  using Listener = std::function<void(std::string_view place)>;

  explicit ScheduleListener(Listener listener) : listener_(std::move(listener)) {
    current_ = this;
    qvPlatform::scheduleHook = &hook;
  }
  ~ScheduleListener() { qvPlatform::scheduleHook = nullptr; }
  ScheduleListener(const ScheduleListener&) = delete;
  ScheduleListener& operator=(const ScheduleListener&) = delete;

private:
  static void hook(const char* place) noexcept { current_->listener_(place); }

  static inline ScheduleListener* current_ = nullptr;
  Listener listener_;
};

/// Lets threads give way at places that a seeded sequence chooses, so that repeated runs and the thread
/// sanitizer see many schedules. A failing test tells the seed, with which the same choices are made again.
class Yields : Random, ScheduleListener {
public:
  explicit Yields(std::uint64_t seed)
      : Random(seed), ScheduleListener([this](std::string_view) { giveWay(); }), sequence_(bits()) {}

private:
  void giveWay() noexcept;

  std::atomic<std::uint64_t> sequence_;
};

/// Waits until `isTrue()`, for at most ten seconds. @return whether it became true.
template <class Condition>
[[nodiscard]] bool eventually(Condition isTrue) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!isTrue()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::microseconds(20));
  }
  return true;
}

} // namespace qvTest
