// ThreadedAlg and ThreadedChunkAlg: what a data-parallel algorithm derives from, to run on a thread pool.
#pragma once

#include "Base/qvBase.h"

#include <atomic>
#include <cstdint>

namespace qvUtil {

class Progress;

/// What both kinds of algorithm share: the even split, progress and cancellation. Nothing here is locked; an
/// algorithm keeps what it computes apart by the index of the thread.
///
/// Only thread 0, the caller of the pool, talks to the progress object. What it hears is told to the other
/// threads through a relaxed atomic flag, which they see at one of their next questions.
class QV_BASE_API ThreadedAlgBase {
public:
  virtual ~ThreadedAlgBase();

  /// @{ The items, of `total`, that part `part` of `parts` begins with and ends before. All parts have the
  /// same number of items, but for the first `total % parts` ones, which have one more. `part` lies from 0 to
  /// `parts - 1`. With no parts, which is the caller's mistake, the answer is 0.
  [[nodiscard]] static int getBeginIndex(int part, int parts, int total) noexcept;
  [[nodiscard]] static int getEndIndex(int part, int parts, int total) noexcept;
  /// @}

  /// Sets whom to ask and to tell; null for nobody. Not while the algorithm runs. The object stays the
  /// caller's.
  void setProgress(Progress* progress) noexcept { progress_ = progress; }
  /// Whether to stop. Asks the progress object in thread 0, and remembers a yes for all threads and for good.
  [[nodiscard]] bool cancelled(int threadIndex);
  /// Reports `value`, if thread 0 calls and there is a progress object.
  void updateProgress(int threadIndex, double value);
  /// The progress object for thread 0, null for all others.
  [[nodiscard]] Progress* getProgress(int threadIndex) const noexcept {
    return threadIndex == 0 ? progress_ : nullptr;
  }

protected:
  ThreadedAlgBase() = default;
  /// @{ Copies both fields.
  ThreadedAlgBase(const ThreadedAlgBase& other) noexcept;
  ThreadedAlgBase& operator=(const ThreadedAlgBase& other) noexcept;
  /// @}

private:
  Progress* progress_ = nullptr;
  std::atomic<bool> wasCancelled_{false};
};

static_assert(sizeof(ThreadedAlgBase) == 3 * sizeof(void*));

/// An algorithm that runs once in each thread of a pool. Virtual order is part of the interface.
///
/// An exception that leaves `execute` in another thread than the caller's ends the process; any other one
/// passes through the pool to the caller, once all threads are done.
class QV_BASE_API ThreadedAlg : public ThreadedAlgBase {
public:
  ~ThreadedAlg() override;

  /// Called first, in the calling thread. Does nothing unless overridden.
  virtual void initialize(int numThreads);
  /// The work of thread `threadIndex`, from 0 to `numThreads - 1`.
  virtual void execute(int threadIndex, int numThreads) = 0;
  /// Called last, in the calling thread, when all threads are done. Does nothing unless overridden.
  virtual void finalize();
};

/// An algorithm in chunks, which the threads of a pool take in rising order, each the next one as soon as it
/// is free. For chunks that take unequal time. For the rest it is like a `ThreadedAlg`.
class QV_BASE_API ThreadedChunkAlg : public ThreadedAlgBase {
public:
  ~ThreadedChunkAlg() override;

  virtual void initialize(int numThreads);
  /// The work of one chunk, from 0 to `getNumChunks() - 1`, in thread `threadIndex`.
  virtual void execute(int chunk, int threadIndex, int numThreads) = 0;
  virtual void finalize();

  [[nodiscard]] int getNumChunks() const noexcept { return numChunks_; }
  /// Before the chunks are dealt: not from `execute`. With 0 or less there is no `execute`.
  void setNumChunks(int numChunks) noexcept { numChunks_ = numChunks; }

private:
  std::int32_t numChunks_ = 100;
};

} // namespace qvUtil
