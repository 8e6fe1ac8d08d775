#include "Base/Platform/qvPlatformThread.h"

#include "Base/Platform/Windows/qvPlatformSystem.h"

#include <errno.h>
#include <process.h>
#include <string.h>

#include <new>
#include <utility>

namespace qvPlatform {

namespace {

CRITICAL_SECTION* sectionIn(std::byte* state) {
  return std::launder(reinterpret_cast<CRITICAL_SECTION*>(state));
}

/// The section keeps the number of its owner in place of a handle.
bool isHeldByThisThread(const CRITICAL_SECTION* section) {
  return reinterpret_cast<std::uintptr_t>(section->OwningThread) == ::GetCurrentThreadId();
}

int closeHandle(const char* name, void*& handle) noexcept {
  if (!handle) return 0;
  const int refused = beforeCall(name);
  const bool closed = ::CloseHandle(std::exchange(handle, nullptr));
  return refused || closed ? refused : lastError();
}

HANDLE nativeThread(ThreadHandle thread) { return reinterpret_cast<HANDLE>(thread); }

unsigned __stdcall runBody(void* argument) {
  const std::unique_ptr<ThreadBody> body(static_cast<ThreadBody*>(argument));
  body->run();
  return 0;
}

int waitForEnd(HANDLE thread) noexcept {
  if (const int refused = beforeCall("joinThread")) return refused;
  if (::GetThreadId(thread) == ::GetCurrentThreadId()) return ERROR_POSSIBLE_DEADLOCK;
  return ::WaitForSingleObject(thread, INFINITE) == WAIT_OBJECT_0 ? 0 : lastError();
}

} // namespace

CriticalSection::CriticalSection() noexcept {
  static_assert(sizeof(CRITICAL_SECTION) <= sizeof state_ && alignof(CRITICAL_SECTION) <= alignof(void*));
  ::InitializeCriticalSection(new (state_) CRITICAL_SECTION);
}
CriticalSection::~CriticalSection() { ::DeleteCriticalSection(sectionIn(state_)); }
void CriticalSection::lock() noexcept { ::EnterCriticalSection(sectionIn(state_)); }
void CriticalSection::unlock() noexcept {
  CRITICAL_SECTION* const section = sectionIn(state_);
  if (isHeldByThisThread(section)) ::LeaveCriticalSection(section);
}

KernelMutex::~KernelMutex() {
  if (handle_) ::CloseHandle(handle_);
}
int KernelMutex::create() noexcept {
  return systemCall("createMutex",
                    [&] { return (handle_ = ::CreateMutexA(nullptr, FALSE, nullptr)) != nullptr; });
}
void KernelMutex::lock() noexcept { ::WaitForSingleObject(handle_, INFINITE); }
void KernelMutex::unlock() noexcept { ::ReleaseMutex(handle_); }

static_assert(Semaphore::noLimit == INFINITE);

Semaphore::~Semaphore() { (void)close(); }
int Semaphore::create(std::uint32_t initial) noexcept {
  return systemCall("createSemaphore", [&] {
    handle_ = ::CreateSemaphoreA(nullptr, static_cast<LONG>(initial), maxValue, nullptr);
    return handle_ != nullptr;
  });
}
int Semaphore::close() noexcept { return closeHandle("closeSemaphore", handle_); }
bool Semaphore::wait(std::uint32_t milliseconds) noexcept {
  return ::WaitForSingleObject(handle_, milliseconds) == WAIT_OBJECT_0;
}
bool Semaphore::unlockAndWait(KernelMutex& mutex, std::uint32_t milliseconds) noexcept {
  return ::SignalObjectAndWait(mutex.handle_, handle_, milliseconds, FALSE) == WAIT_OBJECT_0;
}
void Semaphore::post(std::uint32_t count) noexcept {
  ::ReleaseSemaphore(handle_, static_cast<LONG>(count), nullptr);
}

Event::~Event() { (void)close(); }
int Event::create() noexcept {
  constexpr BOOL manualReset = FALSE;
  constexpr BOOL isSet = FALSE;
  return systemCall("createEvent", [&] {
    return (handle_ = ::CreateEventA(nullptr, manualReset, isSet, nullptr)) != nullptr;
  });
}
int Event::close() noexcept { return closeHandle("closeEvent", handle_); }
void Event::wait() noexcept { ::WaitForSingleObject(handle_, INFINITE); }
void Event::setAndLock(KernelMutex& mutex) noexcept {
  ::SignalObjectAndWait(handle_, mutex.handle_, INFINITE, FALSE);
}

int startThread(std::unique_ptr<ThreadBody>& body, ThreadHandle* thread) noexcept {
  if (const int refused = beforeCall("createThread")) return refused;
  errno = 0;
  const std::uintptr_t started = ::_beginthreadex(nullptr, 0, runBody, body.get(), 0, nullptr);
  if (!started) return errno ? errno : EAGAIN;
  (void)body.release(); // the new thread's
  *thread = started;
  return 0;
}

std::string startThreadErrorText(int number) {
  char text[256] = "";
  ::strerror_s(text, sizeof text, number);
  return text;
}

int joinThread(ThreadHandle thread) noexcept {
  const int failed = waitForEnd(nativeThread(thread));
  detachThread(thread);
  return failed;
}

void detachThread(ThreadHandle thread) noexcept { ::CloseHandle(nativeThread(thread)); }

static_assert(noThreadKey == TLS_OUT_OF_INDEXES);

std::uint32_t createThreadKey() noexcept { return ::TlsAlloc(); }

bool freeThreadKey(std::uint32_t key) noexcept { return ::TlsFree(key); }

void* threadValue(std::uint32_t key) noexcept { return ::TlsGetValue(key); }

bool setThreadValue(std::uint32_t key, void* value) noexcept { return ::TlsSetValue(key, value); }

} // namespace qvPlatform
