// Locks, what threads sleep on, threads, and the values that each has of its own. What an operation announces
// to `beforeCall` stands in square brackets; the others cannot be made to fail.
#pragma once

// `CriticalSection`, a recursive lock inside this process with `lock` and `unlock`, asks the system only
// where somebody must wait. No effect has an unlock by a thread that does not hold it.
#if defined(_WIN32)
#include "Base/Platform/Windows/qvPlatformLock.h"
#else
#include "Base/Platform/Posix/qvPlatformLock.h"
#endif

#include <cstdint>
#include <memory>
#include <string>

namespace qvPlatform {

/// What the system knows by a handle, null until it is created.
class KernelObject {
public:
  KernelObject(const KernelObject&) = delete;
  KernelObject& operator=(const KernelObject&) = delete;

protected:
  KernelObject() noexcept = default;
  ~KernelObject() = default;

  void* handle_ = nullptr;
};

/// A recursive lock that a thread can give up and start to sleep in one step.
class KernelMutex : KernelObject {
public:
  ~KernelMutex();

  /// Comes before anything else. [createMutex]
  [[nodiscard]] int create() noexcept;
  void lock() noexcept;
  /// Gives up one level. No effect has an unlock by a thread that does not hold it.
  void unlock() noexcept;

private:
  friend class Semaphore;
  friend class Event;
};

/// A count to take from. What is posted goes to threads that wait already before any later one.
class Semaphore : KernelObject {
public:
  static constexpr std::uint32_t maxValue = 0x7fffffff;
  /// A wait of so many milliseconds has no limit.
  static constexpr std::uint32_t noLimit = 0xffffffff;

  ~Semaphore();

  /// Comes before anything else. [createSemaphore]
  [[nodiscard]] int create(std::uint32_t initial) noexcept;
  /// What it held is free even where this fails. [closeSemaphore]
  [[nodiscard]] int close() noexcept;

  /// Takes one, as soon as there is one. @return false where the time, on a clock that does not jump, was
  /// over before.
  bool wait(std::uint32_t milliseconds) noexcept;
  /// The same, and gives up one level of `mutex` once this thread waits. Nothing that happens after that can
  /// be missed, or be served before this thread.
  bool unlockAndWait(KernelMutex& mutex, std::uint32_t milliseconds) noexcept;
  /// Adds `count`, or nothing where that would be more than `maxValue`.
  void post(std::uint32_t count) noexcept;
};

/// Lets one waiting thread through each time it is set.
class Event : KernelObject {
public:
  ~Event();

  /// Comes before anything else. [createEvent]
  [[nodiscard]] int create() noexcept;
  /// What it held is free even where this fails. [closeEvent]
  [[nodiscard]] int close() noexcept;

  void wait() noexcept;
  /// Sets it, and then waits for `mutex`. The event is not touched once that thread goes on which it lets
  /// through.
  void setAndLock(KernelMutex& mutex) noexcept;
};

/// What a new thread does. It is destroyed there when that is done.
class ThreadBody {
public:
  virtual ~ThreadBody() = default;
  virtual void run() = 0;
};

using ThreadHandle = std::uintptr_t;

/// Starts a thread, which then owns `body`. Where this fails, `body` stays the caller's. Each thread that was
/// started is joined or detached, once. [createThread]
/// @return 0, or a number of the C runtime, for `startThreadErrorText`.
[[nodiscard]] int startThread(std::unique_ptr<ThreadBody>& body, ThreadHandle* thread) noexcept;
[[nodiscard]] std::string startThreadErrorText(int number);
/// Waits for the end of the thread. Where this fails, the thread is detached. [joinThread]
[[nodiscard]] int joinThread(ThreadHandle thread) noexcept;
/// Leaves the thread to itself.
void detachThread(ThreadHandle thread) noexcept;

/// No key: what the system answers that has no more.
inline constexpr std::uint32_t noThreadKey = 0xffffffff;

/// A key, under which each thread has a pointer of its own, null at first; or `noThreadKey`.
[[nodiscard]] std::uint32_t createThreadKey() noexcept;
/// False where there is no such key.
bool freeThreadKey(std::uint32_t key) noexcept;
/// Null where there is no such key.
[[nodiscard]] void* threadValue(std::uint32_t key) noexcept;
/// False where there is no such key or no memory.
bool setThreadValue(std::uint32_t key, void* value) noexcept;

} // namespace qvPlatform
