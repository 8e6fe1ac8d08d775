// RWLock and RWLockOp: many readers, or one writer.
#pragma once

#include "Base/Thread/qvThreadCondition.h"
#include "Base/qvBase.h"

#include <atomic>
#include <cstdint>

namespace qvThread {

/// Held by any number of readers, or by one writer. Not recursive for a writer, and no reader can become a
/// writer: a thread that waits for itself waits for ever. Readers have precedence: as long as any reader
/// holds it, others get it at once, and a writer waits. Locked through an `RWLockOp`.
class RWLock {
public:
  /// Throws as the constructor of `Condition` does; so may its destructor.
  RWLock() = default;
  RWLock(const RWLock&) = delete;
  RWLock& operator=(const RWLock&) = delete;

  /// How many readers hold it at some moment of this call.
  [[nodiscard]] int numberOfReaders() const noexcept { return readers_.load(std::memory_order_relaxed); }
  /// Whether a writer holds it at some moment of this call.
  [[nodiscard]] bool hasWriter() const noexcept { return writer_.load(std::memory_order_relaxed); }

private:
  friend class RWLockOp;

  QV_BASE_API void readLock() noexcept;
  QV_BASE_API void writeLock() noexcept;
  QV_BASE_API void readUnlock() noexcept;
  QV_BASE_API void writeUnlock() noexcept;

  Condition condition_; // its mutex guards the writing of both
  std::atomic<std::int32_t> readers_{0};
  std::atomic<bool> writer_{false};
};

static_assert(sizeof(RWLock) == 2 * sizeof(void*));

/// What one function does with an `RWLock`. Belongs to one thread, and holds one thing at a time. Unlike a
/// `MutexOp`, its destructor releases what it holds in every case.
class RWLockOp {
public:
  /// Takes no lock. `autoUnlock` is kept for the sake of the caller's habit; nothing depends on it.
  explicit RWLockOp(RWLock& lock, bool autoUnlock = true) noexcept : lock_(lock), autoUnlock_(autoUnlock) {}
  ~RWLockOp() { unlock(); }
  RWLockOp(const RWLockOp&) = delete;
  RWLockOp& operator=(const RWLockOp&) = delete;

  /// Waits without a limit until no writer holds the lock, and holds it as a reader.
  void read() noexcept {
    reading_ = true;
    lock_.readLock();
  }
  /// Waits without a limit until nobody holds the lock, and holds it as the writer.
  void write() noexcept {
    writing_ = true;
    lock_.writeLock();
  }
  /// Releases what it holds; nothing where it holds nothing.
  QV_BASE_API void unlock() noexcept;

private:
  RWLock& lock_;
  bool reading_ = false;
  bool writing_ = false;
  [[maybe_unused]] bool autoUnlock_;
};

static_assert(sizeof(RWLockOp) == 2 * sizeof(void*));

} // namespace qvThread
