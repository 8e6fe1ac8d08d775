#include "Base/Platform/qvPlatformThread.h"

#include "Base/Platform/Posix/qvPlatformLinux.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformTime.h"

#include <atomic>
#include <errno.h>
#include <limits.h>
#include <limits>
#include <mutex>
#include <new>
#include <pthread.h>
#include <utility>

namespace qvPlatform {

namespace {

constexpr std::int64_t never = std::numeric_limits<std::int64_t>::max();

/// Sleeps while `word` is `value`, until it is woken or the steady clock shows `deadline`; may end for no
/// reason.
void sleepWhile(const std::atomic<std::uint32_t>& word, std::uint32_t value, std::int64_t deadline) noexcept {
  const int kept = errno;
  if (sleepOn(&word, value, deadline == never ? -1 : deadline) != 0 && errno == ENOSYS)
    sleepNanoseconds(100'000); // and then looks again
  errno = kept;
}

/// Wakes one of those that sleep on `word`, which may be gone: only its address is used.
void wakeOne(const std::atomic<std::uint32_t>& word) noexcept {
  const int kept = errno;
  (void)wakeOn(&word);
  errno = kept;
}

/// A count whose waiters are served in the order in which they came.
class FairCount {
public:
  explicit FairCount(std::uint32_t initial) noexcept : count_(initial) {}
  /// Whoever has posted to the last waiter may not be out yet.
  ~FairCount() { const std::lock_guard guard(lock_); }
  FairCount(const FairCount&) = delete;
  FairCount& operator=(const FairCount&) = delete;

  /// Comes into the queue before it unlocks `mutex`, which may be null.
  bool wait(CriticalSection* mutex, std::uint32_t milliseconds) noexcept {
    Sleeper self;
    const bool ready = takeOrAppend(self);
    if (mutex) mutex->unlock();
    if (ready) return true;
    const std::int64_t deadline = milliseconds == Semaphore::noLimit
                                      ? never
                                      : steadyNanoseconds() + milliseconds * std::int64_t{1'000'000};
    while (!self.woken.load(std::memory_order_acquire)) {
      if (deadline != never && steadyNanoseconds() >= deadline) return !removeSleeping(self);
      sleepWhile(self.woken, 0, deadline);
    }
    return true;
  }

  void post(std::uint32_t count) noexcept {
    const std::lock_guard guard(lock_);
    for (; count > 0 && first_; --count) {
      std::atomic<std::uint32_t>& woken = first_->woken;
      remove(*first_);
      woken.store(1, std::memory_order_release); // from here on the sleeper may be gone
      wakeOne(woken);
    }
    if (count <= Semaphore::maxValue - count_) count_ += count;
  }

private:
  struct Sleeper {
    Sleeper* next = nullptr;
    Sleeper* prev = nullptr;
    std::atomic<std::uint32_t> woken{0}; // once it left the queue with a share of what was posted
  };

  bool takeOrAppend(Sleeper& sleeper) noexcept {
    const std::lock_guard guard(lock_);
    if (count_ > 0) {
      --count_;
      return true;
    }
    sleeper.prev = last_;
    (last_ ? last_->next : first_) = &sleeper;
    last_ = &sleeper;
    return false;
  }
  /// False where it has been woken meanwhile.
  bool removeSleeping(Sleeper& sleeper) noexcept {
    const std::lock_guard guard(lock_);
    if (sleeper.woken.load(std::memory_order_relaxed)) return false;
    remove(sleeper);
    return true;
  }
  void remove(Sleeper& sleeper) noexcept {
    (sleeper.prev ? sleeper.prev->next : first_) = sleeper.next;
    (sleeper.next ? sleeper.next->prev : last_) = sleeper.prev;
  }

  std::mutex lock_;
  std::uint32_t count_; // above 0 only where nobody sleeps
  Sleeper* first_ = nullptr;
  Sleeper* last_ = nullptr;
};

template <class T, class... Args>
int make(const char* name, void*& handle, Args... args) noexcept {
  if (const int refused = beforeCall(name)) return refused;
  handle = new (std::nothrow) T(args...);
  return handle ? 0 : ENOMEM;
}

template <class T>
int destroy(const char* name, void*& handle) noexcept {
  const int refused = handle ? beforeCall(name) : 0;
  delete static_cast<T*>(std::exchange(handle, nullptr));
  return refused;
}

CriticalSection& lockOf(void* handle) { return *static_cast<CriticalSection*>(handle); }
FairCount& countOf(void* handle) { return *static_cast<FairCount*>(handle); }

void* runBody(void* argument) {
  const std::unique_ptr<ThreadBody> body(static_cast<ThreadBody*>(argument));
  body->run();
  return nullptr;
}

pthread_t nativeThread(ThreadHandle thread) { return reinterpret_cast<pthread_t>(thread); }

} // namespace

void CriticalSection::lockContended(std::uintptr_t self) noexcept {
  while (word_.exchange(contended, std::memory_order_acquire) != free) sleepWhile(word_, contended, never);
  take(self);
}
void CriticalSection::wakeOne() noexcept { qvPlatform::wakeOne(word_); }

KernelMutex::~KernelMutex() { delete static_cast<CriticalSection*>(handle_); }
int KernelMutex::create() noexcept { return make<CriticalSection>("createMutex", handle_); }
void KernelMutex::lock() noexcept { lockOf(handle_).lock(); }
void KernelMutex::unlock() noexcept { lockOf(handle_).unlock(); }

Semaphore::~Semaphore() { (void)close(); }
int Semaphore::create(std::uint32_t initial) noexcept {
  return initial > maxValue ? EINVAL : make<FairCount>("createSemaphore", handle_, initial);
}
int Semaphore::close() noexcept { return destroy<FairCount>("closeSemaphore", handle_); }
bool Semaphore::wait(std::uint32_t milliseconds) noexcept {
  return countOf(handle_).wait(nullptr, milliseconds);
}
bool Semaphore::unlockAndWait(KernelMutex& mutex, std::uint32_t milliseconds) noexcept {
  return countOf(handle_).wait(&lockOf(mutex.handle_), milliseconds);
}
void Semaphore::post(std::uint32_t count) noexcept { countOf(handle_).post(count); }

Event::~Event() { (void)close(); }
int Event::create() noexcept { return make<FairCount>("createEvent", handle_, 0); }
int Event::close() noexcept { return destroy<FairCount>("closeEvent", handle_); }
void Event::wait() noexcept { countOf(handle_).wait(nullptr, Semaphore::noLimit); }
void Event::setAndLock(KernelMutex& mutex) noexcept {
  countOf(handle_).post(1);
  mutex.lock();
}

int startThread(std::unique_ptr<ThreadBody>& body, ThreadHandle* thread) noexcept {
  pthread_t started{};
  int error = beforeCall("createThread");
  if (!error) error = pthread_create(&started, nullptr, runBody, body.get());
  if (error) return error;
  (void)body.release(); // the new thread's
  *thread = reinterpret_cast<ThreadHandle>(started);
  return 0;
}

std::string startThreadErrorText(int number) { return systemErrorText(number); }

int joinThread(ThreadHandle thread) noexcept {
  int error = beforeCall("joinThread");
  if (!error && pthread_equal(nativeThread(thread), pthread_self())) error = EDEADLK;
  if (!error) error = pthread_join(nativeThread(thread), nullptr);
  if (error) detachThread(thread);
  return error;
}

void detachThread(ThreadHandle thread) noexcept { pthread_detach(nativeThread(thread)); }

std::uint32_t createThreadKey() noexcept {
  pthread_key_t key{};
  return pthread_key_create(&key, nullptr) == 0 ? static_cast<std::uint32_t>(key) : noThreadKey;
}

bool freeThreadKey(std::uint32_t key) noexcept {
  return key < PTHREAD_KEYS_MAX && pthread_key_delete(key) == 0;
}

void* threadValue(std::uint32_t key) noexcept {
  return key < PTHREAD_KEYS_MAX ? pthread_getspecific(key) : nullptr;
}

bool setThreadValue(std::uint32_t key, void* value) noexcept {
  return key < PTHREAD_KEYS_MAX && pthread_setspecific(key, value) == 0;
}

} // namespace qvPlatform
