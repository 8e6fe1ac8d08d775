#include "Base/Thread/qvThreadTaskQueueImpl.h"

#include "Base/Thread/qvThreadMutex.h"
#include "Base/Thread/qvThreadPool.h"
#include "Base/Thread/qvThreadPoolImpl.h"
#include "Base/Thread/qvThreadYield.h"
#include "Base/Utility/qvUtilProgress.h"

#include <new>

namespace qvThread {

using qvUtil::ThreadedTask;

namespace {

int workersOf(const Pool* pool) { return pool ? pool->getPoolImpl()->numThreads() : 0; }

/// Where a node goes on whose children are done, or that has none.
TaskState afterPreChildren(const TaskNode& node) { return node.task->getNoExecute() ? TaskPost : TaskReady; }

void childCompleted(TaskNode& parent) {
  if (--parent.pendingChildren > 0) return;
  if (parent.state == TaskWaitPre) parent.state = afterPreChildren(parent);
  if (parent.state == TaskWaitPost) parent.state = TaskFinished;
}

} // namespace

QueueImpl::QueueImpl(Pool* pool)
    : numThreads_(workersOf(pool) > 0 ? workersOf(pool) : 1), pool_(workersOf(pool) > 0 ? pool : nullptr) {}

QueueImpl::~QueueImpl() noexcept { QueueImpl::release(); }

void QueueImpl::acquire() {
  if (inUse_) return;
  inUse_ = true;
  if (!pool_) return;
  pool_->acquire();
  pool_->getPoolImpl()->launch(workerFunc, this, false);
}

void QueueImpl::submit(ThreadedTask* task) {
  std::unique_ptr<ThreadedTask> owned(task);
  if (owned && !cancelled()) {
    if (!owned->isCancellable()) cancellable_ = false;
    add(owned.release(), nullptr);
  }
  owned.reset();
  dispatch();
}

void QueueImpl::wait() {
  while (numActive_ != 0) {
    dispatch();
    waitForCompletion();
  }
}

void QueueImpl::release() {
  if (!inUse_) return;
  wait();
  if (pool_) {
    {
      MutexOp op(shared_.condition.getMutex(), true);
      op.lock();
      shared_.stop = true;
      shared_.condition.broadcast();
    }
    pool_->getPoolImpl()->finish();
    pool_->release();
  }
  shared_.stop = false;
  inUse_ = false;
  cancellable_ = true;
  isCancelled_ = false;
  progress_ = nullptr;
}

int QueueImpl::getNumThreads() const { return numThreads_; }

void QueueImpl::setCancelObject(qvUtil::Progress* progress) { progress_ = progress; }

bool QueueImpl::cancelled() {
  if (!progress_ || !cancellable_) return false;
  if (!isCancelled_ && progress_->cancelled()) {
    MutexOp op(shared_.condition.getMutex(), true);
    op.lock();
    for (TaskNode* node = shared_.done.head(); node; node = node->next) node->skip = true;
    isCancelled_ = true;
  }
  return isCancelled_;
}

// ---- on the workers ----

void QueueImpl::workerFunc(void* context, int index, int) {
  static_cast<QueueImpl*>(context)->work(index - 1);
}

void QueueImpl::work(int index) {
  MutexOp op(shared_.condition.getMutex(), true);
  op.lock();
  while (!shared_.stop) {
    TaskNode* const node = shared_.todo.popFront();
    if (!node) {
      awaitNews(op);
      continue;
    }
    op.unlock();
    execute(*node, index);
    op.lock();
    shared_.done.append(*node);
    // The dispatcher is woken once, when half of what it waits for is done, and not for each task.
    const std::int32_t twice = 2 * shared_.done.count();
    if (twice == shared_.outstanding || twice == shared_.outstanding + 1) shared_.completionSemaphore.post();
  }
}

void QueueImpl::awaitNews(MutexOp& op) {
  op.unlock();
  yieldUntil([this] { return shared_.hasNews(); });
  op.lock();
  if (!shared_.hasNews()) shared_.condition.wait();
}

void QueueImpl::execute(TaskNode& node, int index) {
  if (!node.skip) node.task->execute(index);
  node.state = TaskPost;
}

// ---- between the dispatcher and the workers ----

void QueueImpl::handToWorkers(TaskNode& node) {
  if (!pool_ || !inUse_) {
    execute(node, 0);
    readyList_.pushFront(node);
    return;
  }
  MutexOp op(shared_.condition.getMutex(), true);
  op.lock();
  ++shared_.outstanding;
  shared_.todo.append(node);
  shared_.condition.signal();
  op.unlock();
  shared_.expectCompletion = true;
}

bool QueueImpl::hasCapacity() const noexcept { return shared_.outstanding < 2 * numThreads_; }

void QueueImpl::collect() {
  if (shared_.outstanding == 0) return;
  TaskList collected;
  if (shared_.done.count() > 0) { // what comes in after this look is collected another time
    MutexOp op(shared_.condition.getMutex(), true);
    op.lock();
    collected.takeAll(shared_.done);
    shared_.outstanding -= collected.count();
    // A post that is left told of what is collected now. What remains will post anew.
    while (shared_.completionSemaphore.tryWait()) {
    }
  }
  shared_.expectCompletion = shared_.outstanding > 0;
  while (TaskNode* const node = collected.popFront()) {
    if (cancelled()) node->skip = true;
    readyList_.pushFront(*node);
  }
}

void QueueImpl::waitForCompletion() {
  if (!std::exchange(shared_.expectCompletion, false)) return;
  if (!yieldUntil([this] { return shared_.completionSemaphore.tryWait(); }))
    shared_.completionSemaphore.wait();
}

// ---- on the dispatcher ----

void QueueImpl::dispatch() {
  collect();
  pump();
  while (!hasCapacity()) {
    waitForCompletion();
    collect();
    pump();
  }
}

void QueueImpl::pump() {
  while (hasCapacity() && readyList_.head()) {
    TaskNode& head = *readyList_.head();
    if (cancelled()) head.skip = true;
    if (ThreadedTask* const child = head.state == TaskPre ? preStep(head) : postStep(head)) {
      ++head.pendingChildren;
      add(child, &head);
      continue;
    }
    if (head.state == TaskPost) continue; // now it is asked for the children after it
    readyList_.popFront();
    goOn(head);
  }
}

void QueueImpl::add(ThreadedTask* task, TaskNode* parent) {
  TaskNode* const node = new (nodeAllocator_.alloc()) TaskNode;
  node->task.reset(task);
  node->parent = parent;
  readyList_.pushFront(*node);
  ++numActive_;
}

ThreadedTask* QueueImpl::preStep(TaskNode& node) {
  if (!node.skip)
    if (ThreadedTask* const child = node.task->preExecute(node.nextChild++)) return child;
  node.nextChild = 0;
  node.state = node.pendingChildren > 0 ? TaskWaitPre : afterPreChildren(node);
  return nullptr;
}

ThreadedTask* QueueImpl::postStep(TaskNode& node) {
  if (!node.skip)
    if (ThreadedTask* const child = node.task->postExecute(node.nextChild++)) return child;
  node.state = node.pendingChildren > 0 ? TaskWaitPost : TaskFinished;
  return nullptr;
}

void QueueImpl::goOn(TaskNode& node) {
  switch (node.state) { // read once: a worker that has the node changes it
  case TaskReady:
    return handToWorkers(node);
  case TaskPost:
    return readyList_.pushFront(node);
  case TaskFinished:
    return finish(&node);
  default:
    return; // it waits for its children
  }
}

void QueueImpl::finish(TaskNode* node) {
  for (;;) {
    TaskNode* const parent = node->parent;
    const bool waiting = parent && (parent->state == TaskWaitPre || parent->state == TaskWaitPost);
    if (parent) childCompleted(*parent);
    std::destroy_at(node);
    nodeAllocator_.free(node);
    --numActive_;
    if (!waiting) return;
    node = parent;
    if (node->state == TaskFinished) continue;
    if (cancelled()) node->skip = true; // its children were perhaps not executed
    return goOn(*node);
  }
}

} // namespace qvThread
