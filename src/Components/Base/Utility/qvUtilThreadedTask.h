// ThreadedTask: one piece of work for a task queue, with the children that come before and after it.
#pragma once

#include "Base/qvBase.h"

namespace qvUtil {

/// A task and, through its children, a tree of tasks. Made with `new`; a queue that it was given to deletes
/// it.
///
/// In order: `preExecute(0)`, `preExecute(1)` and so on, until one returns null; then, when all children
/// that came of it are done and deleted, `execute`; then `postExecute(0)`, `postExecute(1)` and so on; then,
/// when those children are done too, the task is deleted. A child is a task like any other.
///
/// Only `execute` runs in other threads. All else, deletion included, happens in the thread that uses the
/// queue, one task at a time. None of these operations may use the queue, or let an exception out. Virtual
/// order is part of the interface.
class QV_BASE_API ThreadedTask {
public:
  ThreadedTask() = default;
  virtual ~ThreadedTask();

  /// The child number `index` that has to be done before this task, or null where there are no more.
  virtual ThreadedTask* preExecute(int index);
  /// The work. `threadIndex` lies from 0 to the queue's `getNumThreads() - 1`; no two tasks that run at once
  /// have the same.
  virtual void execute(int threadIndex);
  /// The child number `index` that follows upon this task, or null where there are no more.
  virtual ThreadedTask* postExecute(int index);

  /// Without execution a task has its children only, and no `execute`. Best said before, or in, `preExecute`.
  void setNoExecute(bool noExecute) noexcept { noExecute_ = noExecute; }
  [[nodiscard]] bool getNoExecute() const noexcept { return noExecute_; }

  /// A task given to a queue that may not be cancelled keeps everything in that queue from being cancelled,
  /// until the queue is released. On a child this says nothing, unless a queue without threads runs it.
  void setNoCancel(bool noCancel) noexcept { noCancel_ = noCancel; }
  [[nodiscard]] bool isCancellable() const noexcept { return !noCancel_; }

  /// In how many threads an algorithm would run that is started here: `numThreads` of the pool that
  /// `ThreadPool::get` returns.
  [[nodiscard]] int getNumThreads() const noexcept;

private:
  bool noExecute_ = false;
  bool noCancel_ = false;
};

static_assert(sizeof(ThreadedTask) == 2 * sizeof(void*));

} // namespace qvUtil
