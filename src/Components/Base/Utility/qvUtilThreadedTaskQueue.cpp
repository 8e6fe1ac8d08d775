#include "Base/Utility/qvUtilThreadedTaskQueue.h"

#include "Base/Utility/qvUtilProgress.h"
#include "Base/Utility/qvUtilThreadedTask.h"

#include <memory>

namespace qvUtil {

namespace {

class SimpleQueue final : public ThreadedTaskQueue {
public:
  void acquire() override { inUse_ = true; }

  void submit(ThreadedTask* task) override {
    waited_ = false;
    if (task) run(task);
  }

  void wait() override { waited_ = true; } // `submit` has done everything

  void release() override {
    inUse_ = false;
    cancellable_ = true;
    progress_ = nullptr;
  }

  int getNumThreads() const override { return 1; }
  void setCancelObject(Progress* progress) override { progress_ = progress; }
  bool cancelled() override { return progress_ && cancellable_ && progress_->cancelled(); }

private:
  using Step = ThreadedTask* (ThreadedTask::*)(int);

  /// Runs the task, children first, and deletes it. @return whether it ran.
  bool run(ThreadedTask* given) {
    const std::unique_ptr<ThreadedTask> task(given);
    if (cancelled()) return false;
    if (!task->isCancellable()) cancellable_ = false;
    runChildren(*task, &ThreadedTask::preExecute);
    if (!task->getNoExecute() && !cancelled()) task->execute(0);
    runChildren(*task, &ThreadedTask::postExecute);
    return true;
  }

  void runChildren(ThreadedTask& task, Step step) {
    for (int index = 0; ThreadedTask* const child = (task.*step)(index); ++index)
      if (!run(child)) return;
  }

  bool inUse_ = false;
  bool waited_ = true;
  bool cancellable_ = true;
  Progress* progress_ = nullptr;
};

} // namespace

std::atomic<ThreadedTaskQueue*> ThreadedTaskQueue::s_taskQueue{nullptr};

ThreadedTaskQueue::~ThreadedTaskQueue() {
  ThreadedTaskQueue* self = this;
  s_taskQueue.compare_exchange_strong(self, nullptr);
}

void ThreadedTaskQueue::install(ThreadedTaskQueue* queue) noexcept {
  s_taskQueue.store(queue, std::memory_order_release);
}

ThreadedTaskQueue* ThreadedTaskQueue::get() noexcept {
  ThreadedTaskQueue* const installed = s_taskQueue.load(std::memory_order_acquire);
  return installed ? installed : getSingleThreaded();
}

ThreadedTaskQueue* ThreadedTaskQueue::getSingleThreaded() noexcept {
  static SimpleQueue queue;
  return &queue;
}

} // namespace qvUtil
