// ThreadPool: runs one data-parallel algorithm at a time, on threads or, where there are none, on the caller.
#pragma once

#include "Base/qvBase.h"

#include <atomic>
#include <cstdint>

namespace qvUtil {

class ThreadedAlg;
class ThreadedChunkAlg;

/// The service that runs algorithms. Code that has parallel work takes what `get` returns and need not know
/// whether that has threads. The library installs none: until the host does, the caller does all work.
///
/// One algorithm at a time: a pool belongs to one thread at a time. Virtual order is part of the interface.
class QV_BASE_API ThreadPool {
public:
  ThreadPool(const ThreadPool&) = delete;
  ThreadPool& operator=(const ThreadPool&) = delete;
  /// Takes the pool out of the global slot if it is installed.
  virtual ~ThreadPool();

  /// Calls `initialize(numThreads())` and, at the end, `finalize()` in the calling thread, and between them
  /// `execute(chunk, thread, numThreads())` once for each chunk from 0 to `getNumChunks() - 1`, at once in
  /// several threads. Each thread has an index of its own, from 0, the caller, to `numThreads() - 1`.
  virtual void execute(ThreadedChunkAlg& alg) = 0;
  /// The same, with `execute(thread, numThreads())` called once in each thread.
  virtual void execute(ThreadedAlg& alg) = 0;

  /// In how many threads an algorithm runs, the caller included; at least 1.
  [[nodiscard]] int numThreads() const noexcept { return numThreads_; }

  /// Puts `pool`, which stays the caller's, into the global slot. Null brings back the pool without threads.
  static void install(ThreadPool* pool) noexcept;
  /// The installed pool, or else the one without threads; never null. Inside an algorithm or a task that a
  /// threaded pool runs this is the one without threads, so that parallel work within parallel work simply
  /// runs where it is.
  [[nodiscard]] static ThreadPool* get() noexcept;
  /// The pool without threads: it runs everything in the calling thread, and any number of callers may use
  /// it at once.
  [[nodiscard]] static ThreadPool* getSingleThreadedPool() noexcept;

protected:
  explicit ThreadPool(int numThreads) noexcept : numThreads_(numThreads) {}

private:
  std::int32_t numThreads_;

  static std::atomic<ThreadPool*> s_threadPool;
};

static_assert(sizeof(ThreadPool) == 2 * sizeof(void*));

} // namespace qvUtil
