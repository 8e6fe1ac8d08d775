#include "Base/Thread/qvThreadTaskQueue.h"

#include "Base/Thread/qvThreadPool.h"
#include "Base/Thread/qvThreadTaskQueueImpl.h"

namespace qvThread {

TaskQueue::TaskQueue() : impl_(new QueueImpl(dynamic_cast<Pool*>(qvUtil::ThreadPool::get()))) {}

TaskQueue::~TaskQueue() = default;

void TaskQueue::acquire() { impl_.as<QueueImpl>().acquire(); }
void TaskQueue::submit(qvUtil::ThreadedTask* task) { impl_.as<QueueImpl>().submit(task); }
void TaskQueue::wait() { impl_.as<QueueImpl>().wait(); }
void TaskQueue::release() { impl_.as<QueueImpl>().release(); }
int TaskQueue::getNumThreads() const { return impl_.as<QueueImpl>().getNumThreads(); }
void TaskQueue::setCancelObject(qvUtil::Progress* progress) {
  impl_.as<QueueImpl>().setCancelObject(progress);
}
bool TaskQueue::cancelled() { return impl_.as<QueueImpl>().cancelled(); }

} // namespace qvThread
