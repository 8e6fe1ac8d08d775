#include "Base/Thread/qvThreadPoolImpl.h"

#include "Base/Utility/qvUtilError.h"

namespace qvThread {

/// A thread and what its signal calls.
class PoolImpl::Worker final : public Thread {
public:
  explicit Worker(PoolImpl& pool) : pool_(pool), signal_(*getSignal()) {
    signal_.connect(this, &Worker::run, static_cast<qvRTB::SignalClient&>(pool));
  }

private:
  void run() {
    MutexOp op(pool_.mutex_, true);
    op.lock();
    // The signal dies with this thread, and the client's list is for one thread at a time: cut them apart
    // here.
    signal_.disconnectInstance(this);
    if (!pool_.barrier_) return; // not all could be started
    const int index = pool_.nextIndex_++;
    op.unlock();
    pool_.work(index);
  }

  PoolImpl& pool_;
  qvRTB::SignalVoid& signal_;
};

// Once the other constructor is through, whatever `start` throws runs the destructor.
PoolImpl::PoolImpl(int workers) : PoolImpl() { start(workers); }

PoolImpl::~PoolImpl() {
  if (barrier_) {
    stop_ = true;
    skipExtra_ = false;
    barrier_->wait();
  }
  for (Thread* const thread : threads_) {
    (void)thread->wait(); // nobody is left to tell of a failure
    delete thread;
  }
}

void PoolImpl::start(int workers) {
  MutexOp op(mutex_, true);
  op.lock(); // no worker goes to a barrier that is not there yet
  for (int i = 0; i < workers; ++i) {
    auto worker = std::make_unique<Worker>(*this);
    if (const qvUtil::Error error = worker->start()) throw error;
    threads_.push_back(worker.release());
  }
  numThreads_ = threads_.size();
  barrier_ = std::make_unique<Barrier>(numThreads_ + 1);
  op.unlock();
}

void PoolImpl::work(int index) {
  barrier_->wait(); // the launch
  while (!stop_) {
    if (!skipExtra_ || index < numThreads_) function_(context_, index, numThreads_);
    barrier_->wait(); // the finish
    barrier_->wait(); // the next launch
  }
}

void PoolImpl::launch(Function function, void* context, bool skipExtra) {
  function_ = function;
  context_ = context;
  skipExtra_ = skipExtra;
  running_ = true;
  barrier_->wait();
}

void PoolImpl::finish() {
  running_ = false;
  barrier_->wait();
}

} // namespace qvThread
