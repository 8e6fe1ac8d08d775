#include "Base/Thread/qvThreadBarrier.h"

#include "Base/Platform/qvPlatformSchedule.h"
#include "Base/Thread/qvThreadCondition.h"
#include "Base/Thread/qvThreadMutex.h"
#include "Base/Thread/qvThreadReferenceCount.h"
#include "Base/Thread/qvThreadYield.h"

#include <atomic>
#include <cstdint>

namespace qvThread {

/// Works in two phases: threads enter until all are here, and then leave until all are out.
class Barrier::Impl : public ReferenceCount {
public:
  explicit Impl(int total) : total_(total) {}

  void wait() noexcept;

private:
  void awaitPhase(bool entering, MutexOp& op) noexcept;

  // A condition that the system refuses to close ends the process here: nobody is left to tell.
  ~Impl() noexcept override = default;

  Condition condition_;
  const std::int32_t total_;
  std::int32_t count_ = 0;           // threads inside
  std::atomic<bool> entering_{true}; // written under the mutex, and looked at without it
};

void Barrier::Impl::wait() noexcept {
  MutexOp op(condition_.getMutex(), true);
  op.lock();
  awaitPhase(true, op);
  if (++count_ == total_) {
    entering_ = false;
    condition_.broadcast();
  } else {
    awaitPhase(false, op);
  }
  if (--count_ == 0) {
    entering_ = true;
    condition_.broadcast();
  }
  op.unlock();
}

void Barrier::Impl::awaitPhase(bool entering, MutexOp& op) noexcept {
  if (entering_ == entering) return;
  op.unlock();
  yieldUntil([&] { return entering_.load(std::memory_order_relaxed) == entering; });
  op.lock();
  while (entering_ != entering) condition_.wait();
}

Barrier::Barrier(int total) : impl_(new Impl(total)) {}

Barrier::~Barrier() = default;

void Barrier::wait() noexcept {
  const qv::Reference<Impl> impl = impl_; // the barrier may go while threads are inside
  qvPlatform::schedulePoint("Barrier::wait");
  impl->wait();
}

} // namespace qvThread
