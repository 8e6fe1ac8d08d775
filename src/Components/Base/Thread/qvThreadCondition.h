// Condition: sleeping until another thread says that something has changed.
#pragma once

#include "Base/Utility/qvUtilInterval.h"
#include "Base/qvBase.h"

namespace qvThread {

class Mutex;
struct ConditionImpl;

/// A condition and the mutex that guards what it is about. Who waits, signals or broadcasts holds the mutex,
/// through a `MutexOp` on `getMutex()`.
///
/// A wait may end for no reason, and does not tell why it ended. So each waiter asks in a loop for what it
/// waits for:
///
///     qvThread::MutexOp op(condition.getMutex(), true);
///     op.lock();
///     while (!ready) condition.wait();
class Condition {
public:
  /// Throws `qvUtil::Error` with code 1 where the system has no more of what this is made of.
  QV_BASE_API Condition();
  /// Nobody waits. Throws `qvUtil::Error` with code 1 and the system's text where the system refuses to close
  /// what it gave; nothing is lost then.
  QV_BASE_API ~Condition() noexcept(false);
  Condition(const Condition&) = delete;
  Condition& operator=(const Condition&) = delete;

  [[nodiscard]] QV_BASE_API Mutex& getMutex() noexcept;

  /// Gives up one level of the mutex and sleeps, as one step: a signal that comes once the mutex is free is
  /// not lost. A thread that holds two levels keeps the mutex while it sleeps. The level is held again on
  /// return, for which there is no limit.
  ///
  /// Sleeps until woken, or until `limit` is over; the default, zero, is no limit. A limit is cut to whole
  /// milliseconds, so that one below a millisecond only polls, and one of more than 49 days ends after 49.
  /// It runs on a clock that does not jump.
  QV_BASE_API void wait(qvUtil::Interval limit = qvUtil::Interval()) noexcept;

  /// Wakes one of the threads that wait, or none where none waits. A signal that comes while a waiter's limit
  /// runs out may wake the next one who waits instead.
  QV_BASE_API void signal() noexcept;

  /// Wakes all threads that wait now, and returns when the last of them no longer sleeps. They need the mutex
  /// to go on, which the caller may hold the while. A thread that begins to wait meanwhile sleeps on; a
  /// signal or another broadcast meanwhile has to wait.
  QV_BASE_API void broadcast() noexcept;

private:
  ConditionImpl* impl_;
};

static_assert(sizeof(Condition) == sizeof(void*));

} // namespace qvThread
