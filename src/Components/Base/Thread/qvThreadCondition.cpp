// Waiters sleep on a semaphore, which keeps what was posted until somebody takes it. Since they are counted
// before the mutex is free, a signal that sees the mutex free sees them, too.
#include "Base/Thread/qvThreadCondition.h"

#include "Base/Platform/qvPlatformSchedule.h"
#include "Base/Platform/qvPlatformThread.h"
#include "Base/Thread/qvThreadMutex.h"
#include "Base/Thread/qvThreadMutexImpl.h"
#include "Base/Thread/qvThreadSystemError.h"
#include "Base/Thread/qvThreadWaitTime.h"

#include <memory>
#include <mutex>
#include <utility>

namespace qvThread {

using qvPlatform::CriticalSection;
using qvPlatform::schedulePoint;
using Guard = std::lock_guard<CriticalSection>;

/// Locks are taken in the order `mutex` (by the caller), `signalLock`, `countLock`.
struct ConditionImpl {
  std::int32_t waiters = 0;          // those that wait and that no broadcast has released
  std::int32_t broadcastWaiters = 0; // those that the broadcast in progress has released and that still sleep
  CriticalSection countLock;         // guards the numbers
  CriticalSection signalLock;        // one signal or broadcast at a time
  qvPlatform::Semaphore semaphore;   // what waiters sleep on
  qvPlatform::Event waitersDone;     // set by the last one out of a broadcast
  /// How many broadcasts released somebody. A waiter that finds another number than when it was counted is
  /// one of those released; a flag would not tell it from one that came during the broadcast.
  std::uint64_t broadcasts = 0;
  Mutex mutex{false};

  void create();
};

void ConditionImpl::create() {
  throwSystemError(semaphore.create(0),
                   "Cannot initialize condition: Unable to create                     semaphore: %s");
  throwSystemError(
      waitersDone.create(),
      "Cannot initialize condition: Unable to create                     an generic NT synchro event: %s");
}

Condition::Condition() {
  auto impl = std::make_unique<ConditionImpl>();
  impl->create();
  impl_ = impl.release();
}

Condition::~Condition() noexcept(false) {
  const std::unique_ptr<ConditionImpl> impl(impl_);
  throwSystemError(impl->semaphore.close());
  throwSystemError(impl->waitersDone.close());
}

Mutex& Condition::getMutex() noexcept { return impl_->mutex; }

void Condition::wait(qvUtil::Interval limit) noexcept {
  ConditionImpl& impl = *impl_;
  qvPlatform::KernelMutex& mutex = impl.mutex.impl_->handle;
  std::uint64_t broadcastsBefore = 0;
  {
    const Guard guard(impl.countLock);
    ++impl.waiters;
    broadcastsBefore = impl.broadcasts;
  }
  schedulePoint("Condition::wait counted");
  impl.semaphore.unlockAndWait(mutex, waitTime(limit));
  schedulePoint("Condition::wait awake");
  bool last = false;
  {
    const Guard guard(impl.countLock);
    if (impl.broadcasts == broadcastsBefore)
      --impl.waiters;
    else
      last = --impl.broadcastWaiters == 0;
  }
  schedulePoint("Condition::wait passed");
  if (last)
    impl.waitersDone.setAndLock(mutex);
  else
    mutex.lock();
}

void Condition::signal() noexcept {
  ConditionImpl& impl = *impl_;
  const Guard signalGuard(impl.signalLock);
  bool anybody = false;
  {
    const Guard countGuard(impl.countLock);
    anybody = impl.waiters > 0;
  }
  schedulePoint("Condition::signal");
  if (anybody) impl.semaphore.post(1);
}

void Condition::broadcast() noexcept {
  ConditionImpl& impl = *impl_;
  const Guard signalGuard(impl.signalLock);
  {
    const Guard countGuard(impl.countLock);
    if (impl.waiters < 1) return;
    ++impl.broadcasts;
    impl.broadcastWaiters = std::exchange(impl.waiters, 0);
    impl.semaphore.post(static_cast<std::uint32_t>(impl.broadcastWaiters));
  }
  schedulePoint("Condition::broadcast");
  impl.waitersDone.wait();
}

} // namespace qvThread
