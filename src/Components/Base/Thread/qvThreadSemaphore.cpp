#include "Base/Thread/qvThreadSemaphore.h"

#include "Base/Platform/qvPlatformSchedule.h"
#include "Base/Platform/qvPlatformThread.h"
#include "Base/Thread/qvThreadSystemError.h"

#include <memory>

namespace qvThread {

using qvPlatform::schedulePoint;

struct SemaphoreImpl {
  qvPlatform::Semaphore handle;
};

static_assert(Semaphore::maxValue() == qvPlatform::Semaphore::maxValue);

Semaphore::Semaphore(unsigned initial) {
  auto impl = std::make_unique<SemaphoreImpl>();
  throwSystemError(impl->handle.create(initial));
  impl_ = impl.release();
}

Semaphore::~Semaphore() noexcept(false) {
  const std::unique_ptr<SemaphoreImpl> impl(impl_);
  throwSystemError(impl->handle.close());
}

void Semaphore::wait() noexcept {
  schedulePoint("Semaphore::wait");
  impl_->handle.wait(qvPlatform::Semaphore::noLimit);
}

bool Semaphore::tryWait() noexcept {
  schedulePoint("Semaphore::tryWait");
  return impl_->handle.wait(0);
}

void Semaphore::post() noexcept {
  schedulePoint("Semaphore::post");
  impl_->handle.post(1);
}

} // namespace qvThread
