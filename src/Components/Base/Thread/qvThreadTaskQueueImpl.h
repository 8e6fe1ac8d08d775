// What a task queue keeps of its tasks, and who may touch it: the thread that uses the queue deals tasks out
// and collects them, and only `WorkerQueue` is shared with the workers.
#pragma once

#include "Base/Containers/qvBlockAllocator.h"
#include "Base/Thread/qvThreadCondition.h"
#include "Base/Thread/qvThreadSemaphore.h"
#include "Base/Utility/qvImplBase.h"
#include "Base/Utility/qvUtilThreadedTask.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

namespace qvUtil {
class Progress;
}

namespace qvThread {

class MutexOp;
class Pool;

enum TaskState : std::int32_t {
  TaskPre,      ///< Is asked for children.
  TaskWaitPre,  ///< Has had all children before it, of which some are live.
  TaskReady,    ///< May go to a worker, or is there.
  TaskPost,     ///< Was executed, or is not to be; is asked for children.
  TaskWaitPost, ///< Has had all children after it, of which some are live.
  TaskFinished,
};

/// A task that is not yet done. It belongs to the dispatcher but while a worker executes it.
struct TaskNode {
  std::unique_ptr<qvUtil::ThreadedTask> task;
  std::int32_t pendingChildren = 0;
  std::int32_t nextChild = 0; // what the next question for a child is asked with
  TaskState state = TaskPre;
  TaskNode* parent = nullptr; // null for a task given to `submit`
  TaskNode* next = nullptr;   // on the list that the node is on
  bool skip = false;          // nothing of the task is called any more
};

static_assert(sizeof(TaskNode) == 48 || sizeof(void*) != 8);

/// Nodes in a row. It owns nothing.
class TaskList {
public:
  [[nodiscard]] TaskNode* head() const noexcept { return head_; }
  /// Any thread may ask; the answer counts where the list is the thread's own, and else is a hint.
  [[nodiscard]] std::int32_t count() const noexcept { return count_.load(std::memory_order_relaxed); }

  void pushFront(TaskNode& node) noexcept {
    node.next = std::exchange(head_, &node);
    if (!tail_) tail_ = &node;
    changeCount(1);
  }
  void append(TaskNode& node) noexcept {
    node.next = nullptr;
    (tail_ ? tail_->next : head_) = &node;
    tail_ = &node;
    changeCount(1);
  }
  /// Null where there is none.
  TaskNode* popFront() noexcept {
    TaskNode* const node = head_;
    if (!node) return nullptr;
    head_ = node->next;
    if (!head_) tail_ = nullptr;
    changeCount(-1);
    return node;
  }
  /// Takes all nodes of `other`; this list is empty.
  void takeAll(TaskList& other) noexcept {
    head_ = std::exchange(other.head_, nullptr);
    tail_ = std::exchange(other.tail_, nullptr);
    changeCount(other.count());
    other.changeCount(-other.count());
  }

private:
  void changeCount(std::int32_t by) noexcept { count_.store(count() + by, std::memory_order_relaxed); }

  TaskNode* head_ = nullptr;
  TaskNode* tail_ = nullptr;
  std::atomic<std::int32_t> count_{0};
};

/// The mutex of the condition guards all but the semaphore and `expectCompletion`, which is the dispatcher's.
struct WorkerQueue {
  Semaphore completionSemaphore;
  Condition condition; // there is something to do, or `stop`
  bool expectCompletion = false;
  std::int32_t outstanding = 0; // nodes handed over and not yet collected; the dispatcher alone changes it
  TaskList todo;
  TaskList done;
  std::atomic<bool> stop{false};

  [[nodiscard]] bool hasNews() const noexcept {
    return todo.count() > 0 || stop.load(std::memory_order_relaxed);
  }
};

class QueueImpl final : public qv::ImplBase {
public:
  /// Null, or a pool without workers: the caller does all work.
  explicit QueueImpl(Pool* pool);
  // What the system refuses to close ends the process here: nobody is left to tell.
  ~QueueImpl() noexcept override;

  virtual void acquire();
  virtual void submit(qvUtil::ThreadedTask* task);
  virtual void wait();
  virtual void release();
  [[nodiscard]] virtual int getNumThreads() const;
  virtual void setCancelObject(qvUtil::Progress* progress);
  [[nodiscard]] virtual bool cancelled();

private:
  friend struct QueueProbe;

  // On the workers.
  static void workerFunc(void* context, int index, int numThreads);
  void work(int index);
  void awaitNews(MutexOp& op);
  static void execute(TaskNode& node, int index);

  // Between the dispatcher and the workers.
  void handToWorkers(TaskNode& node);
  void collect();
  void waitForCompletion();
  [[nodiscard]] bool hasCapacity() const noexcept;

  // On the dispatcher.
  void dispatch();
  void pump();
  void add(qvUtil::ThreadedTask* task, TaskNode* parent);
  qvUtil::ThreadedTask* preStep(TaskNode& node);
  qvUtil::ThreadedTask* postStep(TaskNode& node);
  void goOn(TaskNode& node);
  void finish(TaskNode* node);

  bool inUse_ = false;
  [[maybe_unused]] bool unused_ = true;
  bool cancellable_ = true;
  bool isCancelled_ = false;
  std::int32_t numThreads_;
  std::int32_t numActive_ = 0; // nodes that live
  qv::BlockAllocator nodeAllocator_{sizeof(TaskNode), 20};
  TaskList readyList_;
  WorkerQueue shared_;
  Pool* pool_; // null where the caller does all work
  qvUtil::Progress* progress_ = nullptr;
};

} // namespace qvThread
