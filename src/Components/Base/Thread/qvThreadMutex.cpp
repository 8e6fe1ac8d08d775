#include "Base/Thread/qvThreadMutex.h"

#include "Base/Platform/qvPlatformSchedule.h"
#include "Base/Thread/qvThreadMutexImpl.h"
#include "Base/Thread/qvThreadSystemError.h"

#include <memory>

namespace qvThread {

using qvPlatform::schedulePoint;

Mutex::Mutex(bool fast) {
  auto impl = std::make_unique<MutexImpl>(fast);
  if (!fast) throwSystemError(impl->handle.create());
  impl_ = impl.release();
}

Mutex::~Mutex() { delete impl_; }

void Mutex::lock() noexcept {
  schedulePoint("Mutex::lock");
  impl_->fast ? impl_->section.lock() : impl_->handle.lock();
}

void Mutex::unlock() noexcept {
  schedulePoint("Mutex::unlock");
  impl_->fast ? impl_->section.unlock() : impl_->handle.unlock();
}

} // namespace qvThread
