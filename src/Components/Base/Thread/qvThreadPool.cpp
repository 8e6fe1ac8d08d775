#include "Base/Thread/qvThreadPool.h"

#include "Base/Thread/qvThreadAtomic.h"
#include "Base/Thread/qvThreadPoolImpl.h"
#include "Base/Utility/qvUtilThreadedAlg.h"

#include <algorithm>

namespace qvThread {

using qvUtil::ThreadedAlg;
using qvUtil::ThreadedChunkAlg;

namespace {

/// The workers run a job as long as this lives, even if the caller's own part of it throws.
class Launch {
public:
  Launch(PoolImpl& workers, PoolImpl::Function function, void* context) : workers_(workers) {
    workers_.launch(function, context, true);
  }
  ~Launch() { workers_.finish(); }
  Launch(const Launch&) = delete;
  Launch& operator=(const Launch&) = delete;

private:
  PoolImpl& workers_;
};

} // namespace

/// The pool is out of the global slot, and has an algorithm, as long as this lives.
struct Pool::Acquired {
  explicit Acquired(Pool& owner) : pool(owner) { pool.acquire(); }
  ~Acquired() {
    pool.alg_ = nullptr;
    pool.chunkAlg_ = nullptr;
    pool.release();
  }
  Acquired(const Acquired&) = delete;
  Acquired& operator=(const Acquired&) = delete;

  Pool& pool;
};

Pool::Pool(int n) : ThreadPool(std::max(n, 1)), impl_(new PoolImpl(n)) {}

Pool::~Pool() = default;

void Pool::acquire() noexcept {
  install(nullptr);
  acquired_ = true;
}

void Pool::release() noexcept {
  install(this);
  acquired_ = false;
}

void Pool::execute(ThreadedChunkAlg& alg) {
  nextChunk_ = -1;
  run(alg, chunkAlg_);
}

void Pool::execute(ThreadedAlg& alg) { run(alg, alg_); }

template <class Alg>
void Pool::run(Alg& alg, Alg*& slot) {
  const Acquired acquired(*this);
  slot = &alg;
  alg.initialize(numThreads());
  {
    const Launch launch(*impl_, threadFunc, this);
    threadExecute(0, numThreads());
  }
  alg.finalize();
}

void Pool::threadFunc(void* context, int index, int numThreads) {
  static_cast<Pool*>(context)->threadExecute(index, numThreads);
}

void Pool::threadExecute(int index, int numThreads) {
  if (alg_) return alg_->execute(index, numThreads);
  // Each thread takes one number too many, which wraps after the highest number of chunks.
  for (int chunk = atomicIncrement(nextChunk_); chunk >= 0 && chunk < chunkAlg_->getNumChunks();
       chunk = atomicIncrement(nextChunk_))
    chunkAlg_->execute(chunk, index, numThreads);
}

} // namespace qvThread
