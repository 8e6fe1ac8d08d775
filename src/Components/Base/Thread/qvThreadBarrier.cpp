#include "Base/Thread/qvThreadBarrier.h"

#include "Base/Platform/qvPlatformSchedule.h"
#include "Base/Thread/qvThreadCondition.h"
#include "Base/Thread/qvThreadMutex.h"
#include "Base/Thread/qvThreadReferenceCount.h"

#include <cstdint>

namespace qvThread {

/// Works in two phases: threads enter until all are here, and then leave until all are out.
class Barrier::Impl : public ReferenceCount {
public:
  explicit Impl(int total) : total_(total) {}

  void wait();

private:
  // A condition that the system refuses to close ends the process here: nobody is left to tell.
  ~Impl() noexcept override = default;

  Condition condition_;
  const std::int32_t total_;
  std::int32_t count_ = 0; // threads inside
  bool entering_ = true;
};

void Barrier::Impl::wait() {
  MutexOp op(condition_.getMutex(), true);
  op.lock();
  while (!entering_) condition_.wait();
  if (++count_ == total_) {
    entering_ = false;
    condition_.broadcast();
  } else {
    while (entering_ && count_ != total_) condition_.wait();
  }
  if (--count_ == 0) {
    entering_ = true;
    condition_.broadcast();
  }
  op.unlock();
}

Barrier::Barrier(int total) : impl_(new Impl(total)) {}

Barrier::~Barrier() = default;

void Barrier::wait() {
  const qv::Reference<Impl> impl = impl_; // the barrier may go while threads are inside
  qvPlatform::schedulePoint("Barrier::wait");
  impl->wait();
}

} // namespace qvThread
