// Mutex and MutexOp: mutual exclusion, and the object that takes and gives it back.
#pragma once

#include "Base/qvBase.h"

namespace qvThread {

struct MutexImpl;

/// One thread at a time. Recursive: the thread that holds it may lock it again, and gives it up with as many
/// unlocks. There is no order among the threads that wait for it. Locked through a `MutexOp`.
///
/// Not promised: what happens to a mutex whose thread ends while it holds it.
class Mutex {
public:
  /// A fast mutex is free of the system as long as nobody must wait. One that is not fast is an object of
  /// the system's kernel where the system has such a thing, and else the same as a fast one. Throws
  /// `qvUtil::Error` with code 1 and the system's text where the system has no more of them.
  QV_BASE_API explicit Mutex(bool fast = true);
  /// Nobody holds it or waits for it.
  QV_BASE_API ~Mutex();
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

private:
  friend class MutexOp;
  friend class Condition;

  QV_BASE_API void lock() noexcept;
  QV_BASE_API void unlock() noexcept;

  MutexImpl* impl_;
};

static_assert(sizeof(Mutex) == sizeof(void*));

/// What one function does with a mutex. Belongs to one thread. The usual way:
///
///     qvThread::MutexOp op(mutex, true);
///     op.lock();
///     ...
///     op.unlock();
class MutexOp {
public:
  /// Takes no lock. With `autoUnlock` the destructor unlocks what is still locked; without it, a mutex that
  /// is left locked stays so.
  MutexOp(Mutex& mutex, bool autoUnlock) noexcept : mutex_(mutex), autoUnlock_(autoUnlock) {}
  ~MutexOp() {
    if (autoUnlock_ && locked_) unlock();
  }
  MutexOp(const MutexOp&) = delete;
  MutexOp& operator=(const MutexOp&) = delete;

  /// Waits without a limit until this thread holds the mutex. A second call takes a second level, of which
  /// the destructor knows nothing.
  void lock() noexcept {
    mutex_.lock();
    locked_ = true;
  }
  /// Gives up one level. A mutex that this thread does not hold stays as it is.
  void unlock() noexcept {
    mutex_.unlock();
    locked_ = false;
  }

private:
  Mutex& mutex_;
  bool locked_ = false;
  bool autoUnlock_;
};

static_assert(sizeof(MutexOp) == 2 * sizeof(void*));

} // namespace qvThread
