#include "Base/Thread/qvThreadRWLock.h"

#include "Base/Thread/qvThreadMutex.h"

namespace qvThread {

void RWLock::readLock() noexcept {
  MutexOp op(condition_.getMutex(), true);
  op.lock();
  while (hasWriter()) condition_.wait();
  readers_.fetch_add(1, std::memory_order_relaxed);
  op.unlock();
}

void RWLock::writeLock() noexcept {
  MutexOp op(condition_.getMutex(), true);
  op.lock();
  while (hasWriter() || numberOfReaders() > 0) condition_.wait();
  writer_.store(true, std::memory_order_relaxed);
  op.unlock();
}

void RWLock::readUnlock() noexcept {
  MutexOp op(condition_.getMutex(), true);
  op.lock();
  if (readers_.fetch_sub(1, std::memory_order_relaxed) == 1) condition_.signal();
  op.unlock();
}

void RWLock::writeUnlock() noexcept {
  MutexOp op(condition_.getMutex(), true);
  op.lock();
  writer_.store(false, std::memory_order_relaxed);
  condition_.broadcast();
  op.unlock();
}

void RWLockOp::unlock() noexcept {
  if (reading_) {
    reading_ = false;
    lock_.readUnlock();
  } else if (writing_) {
    writing_ = false;
    lock_.writeUnlock();
  }
}

} // namespace qvThread
