#include "Base/Utility/qvUtilThreadPool.h"

#include "Base/Utility/qvUtilThreadedAlg.h"

namespace qvUtil {

namespace {

class SimpleThreadPool final : public ThreadPool {
public:
  SimpleThreadPool() noexcept : ThreadPool(1) {}

  void execute(ThreadedChunkAlg& alg) override {
    alg.initialize(1);
    for (int chunk = 0; chunk < alg.getNumChunks(); ++chunk) alg.execute(chunk, 0, 1);
    alg.finalize();
  }

  void execute(ThreadedAlg& alg) override {
    alg.initialize(1);
    alg.execute(0, 1);
    alg.finalize();
  }
};

} // namespace

std::atomic<ThreadPool*> ThreadPool::s_threadPool{nullptr};

ThreadPool::~ThreadPool() {
  ThreadPool* self = this;
  s_threadPool.compare_exchange_strong(self, nullptr);
}

void ThreadPool::install(ThreadPool* pool) noexcept { s_threadPool.store(pool, std::memory_order_release); }

ThreadPool* ThreadPool::get() noexcept {
  ThreadPool* const installed = s_threadPool.load(std::memory_order_acquire);
  return installed ? installed : getSingleThreadedPool();
}

ThreadPool* ThreadPool::getSingleThreadedPool() noexcept {
  static SimpleThreadPool pool;
  return &pool;
}

} // namespace qvUtil
