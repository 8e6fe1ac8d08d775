// Pool: the thread pool with threads.
#pragma once

#include "Base/Utility/qvUtilThreadPool.h"
#include "Base/qvBase.h"

#include <cstdint>
#include <memory>

namespace qvThread {

class PoolImpl;

/// Workers that live as long as the pool and sleep between algorithms. An algorithm runs in the caller, which
/// is thread 0, and in the workers 1 to `numThreads() - 1`; the tasks of a `TaskQueue` run in all workers,
/// while the caller deals them out.
///
/// While it works, a pool takes itself out of the global slot, and puts itself in afterwards; so a pool that
/// was never installed is the installed one after its first use. It does one job at a time, for one thread.
class QV_BASE_API Pool final : public qvUtil::ThreadPool {
public:
  /// Starts `n` workers. `numThreads()` is `n`, so that one worker is never part of an algorithm; a pool
  /// without workers, or with one, runs algorithms in the caller alone. A number below 0 is none.
  ///
  /// Throws `qvUtil::Error` where a thread could not be started, with the error of the first that was not;
  /// there are none then.
  explicit Pool(int n);
  /// Ends the workers and waits for them. The pool does no work, and no queue holds it.
  ~Pool() override;

  /// Returns when all threads are done. Each launch wakes all workers, and waits until all are through,
  /// whatever the algorithm needs of them.
  void execute(qvUtil::ThreadedChunkAlg& alg) override;
  void execute(qvUtil::ThreadedAlg& alg) override;

  /// Empties the global slot. For whoever makes the workers do something else, as a `TaskQueue` does;
  /// `release` comes afterwards. Algorithms come and go by themselves.
  void acquire() noexcept;
  /// Installs this pool in the global slot.
  void release() noexcept;

  /// The workers, for a `TaskQueue`.
  [[nodiscard]] PoolImpl* getPoolImpl() const noexcept { return impl_.get(); }

private:
  struct Acquired;

  static void threadFunc(void* context, int index, int numThreads);
  void threadExecute(int index, int numThreads);
  template <class Alg>
  void run(Alg& alg, Alg*& slot);

  std::unique_ptr<PoolImpl> impl_;
  qvUtil::ThreadedAlg* alg_ = nullptr;
  qvUtil::ThreadedChunkAlg* chunkAlg_ = nullptr;
  std::int32_t nextChunk_ = -1; // the last one that was dealt
  bool acquired_ = false;
};

static_assert(sizeof(Pool) == 6 * sizeof(void*));

} // namespace qvThread
