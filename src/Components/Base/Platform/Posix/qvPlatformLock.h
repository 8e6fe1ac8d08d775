// The recursive lock of this process. Taking it costs one atomic step, and so does giving it back; they stand
// here so that they cost no call besides.
#pragma once

#include <atomic>
#include <cstdint>
#include <pthread.h>

namespace qvPlatform {

class CriticalSection {
public:
  CriticalSection() noexcept = default;
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;

  void lock() noexcept {
    const std::uintptr_t self = currentThread();
    if (owner_.load(std::memory_order_relaxed) == self) {
      ++depth_;
      return;
    }
    std::uint32_t expected = free;
    if (!word_.compare_exchange_strong(expected, held, std::memory_order_acquire, std::memory_order_relaxed))
        [[unlikely]]
      return lockContended(self);
    take(self);
  }

  void unlock() noexcept {
    if (owner_.load(std::memory_order_relaxed) != currentThread() || --depth_ > 0) return;
    owner_.store(nobody, std::memory_order_relaxed);
    if (word_.exchange(free, std::memory_order_release) == contended) [[unlikely]]
      wakeOne();
  }

private:
  enum : std::uint32_t { free, held, contended }; // contended: held, and somebody may sleep
  static constexpr std::uintptr_t nobody = 0;

  /// A number that no other living thread has.
  static std::uintptr_t currentThread() noexcept {
#if __has_builtin(__builtin_thread_pointer)
    return reinterpret_cast<std::uintptr_t>(__builtin_thread_pointer());
#else
    return reinterpret_cast<std::uintptr_t>(pthread_self());
#endif
  }
  void take(std::uintptr_t self) noexcept {
    owner_.store(self, std::memory_order_relaxed);
    depth_ = 1;
  }
  void lockContended(std::uintptr_t self) noexcept;
  void wakeOne() noexcept;

  std::atomic<std::uint32_t> word_{free};
  std::uint32_t depth_ = 0; // the owner's
  std::atomic<std::uintptr_t> owner_{nobody};
};

} // namespace qvPlatform
