// TaskQueue: the task queue with threads.
#pragma once

#include "Base/Utility/qvImplBase.h"
#include "Base/Utility/qvUtilThreadedTaskQueue.h"
#include "Base/qvBase.h"

namespace qvThread {

/// Deals tasks to the workers of a `Pool`. The thread that uses the queue does all but `execute`: it asks for
/// children, and deletes what is done, each time it calls `submit`, `wait` or `release`. It keeps at most
/// twice as many tasks with the workers as there are workers; children go before what was submitted earlier.
///
/// A queue made while no `Pool` with workers is installed runs all tasks in the thread that uses it, as the
/// queue without threads does; `getNumThreads` is 1 then.
///
/// On a cancellation, tasks that workers already have are still executed, all others are not, and none is
/// asked for children any more; all are deleted.
///
/// A copy is a second view of the same queue. It owns nothing, and is good only while the original lives.
class QV_BASE_API TaskQueue final : public qvUtil::ThreadedTaskQueue {
public:
  /// A queue for the installed pool, which outlives it.
  TaskQueue();
  TaskQueue(const TaskQueue&) = default;
  TaskQueue& operator=(const TaskQueue&) = default;
  /// Releases the queue if it is acquired, which waits for all tasks.
  ~TaskQueue() override;

  /// Has no effect on a queue that is acquired. No algorithm and no other queue uses the pool meanwhile.
  void acquire() override;
  void submit(qvUtil::ThreadedTask* task) override;
  void wait() override;
  /// Has no effect on a queue that is not acquired.
  void release() override;
  [[nodiscard]] int getNumThreads() const override;
  void setCancelObject(qvUtil::Progress* progress) override;
  [[nodiscard]] bool cancelled() override;

private:
  qv::ImplHandle impl_;
};

static_assert(sizeof(TaskQueue) == 3 * sizeof(void*));

} // namespace qvThread
