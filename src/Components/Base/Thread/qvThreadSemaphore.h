// Semaphore: a count that threads take from and wait for.
#pragma once

#include "Base/qvBase.h"

namespace qvThread {

struct SemaphoreImpl;

/// A count from 0 to `maxValue()`. Any thread may wait and post.
class Semaphore {
public:
  /// Throws `qvUtil::Error` with code 1 and the system's text where `initial` is above `maxValue()`, and
  /// where the system has no more of them.
  QV_BASE_API explicit Semaphore(unsigned initial = 0);
  /// Nobody waits. Threads whose posts have been taken need not be out of `post` yet. Throws `qvUtil::Error`
  /// with code 1 and the system's text where the system refuses to close what it gave; nothing is lost then.
  QV_BASE_API ~Semaphore() noexcept(false);
  Semaphore(const Semaphore&) = delete;
  Semaphore& operator=(const Semaphore&) = delete;

  /// Waits without a limit until the count is above 0, and takes one.
  QV_BASE_API void wait() noexcept;
  /// Takes one where the count is above 0. @return whether it did.
  [[nodiscard]] QV_BASE_API bool tryWait() noexcept;
  /// Adds one, with which a thread that waits goes on. At `maxValue()` nothing is added.
  QV_BASE_API void post() noexcept;

  /// The highest count.
  [[nodiscard]] static constexpr unsigned maxValue() noexcept { return 0x7fffffff; }

private:
  SemaphoreImpl* impl_;
};

static_assert(sizeof(Semaphore) == sizeof(void*));

} // namespace qvThread
