// ThreadedTaskQueue: runs trees of tasks, on threads or, where there are none, on the caller.
#pragma once

#include "Base/qvBase.h"

#include <atomic>

namespace qvUtil {

class Progress;
class ThreadedTask;

/// The service that runs tasks. Used in this order: `acquire`, `submit` any number of times, `wait`,
/// `release`. The library installs none: until the host does, `submit` does all work itself.
///
/// A queue belongs to one thread at a time. Virtual order is part of the interface.
class QV_BASE_API ThreadedTaskQueue {
public:
  /// Takes the queue out of the global slot if it is installed.
  virtual ~ThreadedTaskQueue();

  /// Comes first: takes hold of the threads.
  virtual void acquire() = 0;
  /// Takes a task, and owns it from then on. May run tasks, or wait while all threads have enough to do. A
  /// task that comes after a cancellation is deleted and does not run.
  virtual void submit(ThreadedTask* task) = 0;
  /// Returns when all tasks are done and deleted.
  virtual void wait() = 0;
  /// Waits, lets the threads go, and forgets the cancel object and a cancellation.
  virtual void release() = 0;
  /// How many tasks may run at once; at least 1.
  [[nodiscard]] virtual int getNumThreads() const = 0;

  /// Sets whom to ask whether to stop, any time between `acquire` and `release`; null for nobody. The object
  /// stays the caller's, and is asked in the thread that uses the queue.
  virtual void setCancelObject(Progress* progress) = 0;
  /// Whether the tasks that are left are only to be deleted. Never after a task that may not be cancelled.
  /// Asks the cancel object.
  [[nodiscard]] virtual bool cancelled() = 0;

  /// Puts `queue`, which stays the caller's, into the global slot. Null brings back the one without threads.
  static void install(ThreadedTaskQueue* queue) noexcept;
  /// The installed queue, or else the one without threads; never null.
  [[nodiscard]] static ThreadedTaskQueue* get() noexcept;
  /// The queue without threads. Like all others it belongs to one thread at a time. `submit` runs the task
  /// and its children on the stack, as deep as the tree.
  [[nodiscard]] static ThreadedTaskQueue* getSingleThreaded() noexcept;

private:
  static std::atomic<ThreadedTaskQueue*> s_taskQueue;
};

static_assert(sizeof(ThreadedTaskQueue) == sizeof(void*));

} // namespace qvUtil
