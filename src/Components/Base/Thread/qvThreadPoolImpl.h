// The workers of a pool. They meet the caller at a barrier twice for each job: when it is launched, and when
// all are done.
#pragma once

#include "Base/Callback/qvRTBSignal.h"
#include "Base/Containers/qvVector.h"
#include "Base/Thread/qvThreadBarrier.h"
#include "Base/Thread/qvThreadMutex.h"
#include "Base/Thread/qvThreadThread.h"

#include <cstdint>
#include <memory>

namespace qvThread {

class PoolImpl : private qvRTB::SignalClient {
public:
  /// What a worker does in a job: `context`, its index from 1 to the number of workers, and that number.
  using Function = void (*)(void* context, int index, int numThreads);

  explicit PoolImpl(int workers);
  ~PoolImpl();
  PoolImpl(const PoolImpl&) = delete;
  PoolImpl& operator=(const PoolImpl&) = delete;

  /// The workers that were started.
  [[nodiscard]] int numThreads() const noexcept { return numThreads_; }

  /// Has the workers call `function`; with `skipExtra` all but the last one. `finish` comes next.
  void launch(Function function, void* context, bool skipExtra);
  /// Waits until all workers have returned from it.
  void finish();

private:
  class Worker;

  PoolImpl() = default;

  void start(int workers);
  void work(int index);

  // What a worker reads of all this was written before the barrier let it go.
  qv::vector<Thread*> threads_; // owned
  Mutex mutex_;                 // held until all are started; guards `nextIndex_` and the client's list
  std::unique_ptr<Barrier> barrier_;
  std::int32_t nextIndex_ = 1;
  std::int32_t numThreads_ = 0;
  Function function_ = nullptr;
  void* context_ = nullptr;
  bool skipExtra_ = false;
  bool running_ = false;
  bool stop_ = false;
};

} // namespace qvThread
