#include "Base/Thread/qvThreadThread.h"

#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformThread.h"

#include <atomic>
#include <memory>

namespace qvThread {

using qvRTB::SignalVoid;
using qvUtil::Error;

namespace {

/// What goes over to the new thread.
struct ThreadStart final : qvPlatform::ThreadBody {
  void (*function)(void*) = nullptr;
  void* arg = nullptr;
  std::unique_ptr<SignalVoid> signal;

  void run() override {
    if (function)
      function(arg);
    else if (signal)
      signal->emit();
  }
};

/// What a thread and its copies share.
class ThreadImpl final : public qv::ImplBase {
public:
  ~ThreadImpl() override { forget(); }

  /// Leaves a running thread to itself.
  void forget() noexcept {
    if (running.exchange(false)) qvPlatform::detachThread(handle);
  }

  void (*function)(void*) = nullptr; // null where the signal is emitted
  void* arg = nullptr;
  std::unique_ptr<SignalVoid> signal; // until the start
  std::atomic<bool> running{false};   // `handle` is held; who clears it disposes of that
  qvPlatform::ThreadHandle handle{};
};

} // namespace

Thread::Thread() : Thread(nullptr, nullptr) {
  impl_.as<ThreadImpl>().signal = std::make_unique<SignalVoid>();
}

Thread::Thread(void (*function)(void*), void* arg) : impl_(new ThreadImpl) {
  impl_.as<ThreadImpl>().function = function;
  impl_.as<ThreadImpl>().arg = arg;
}

Thread::~Thread() = default;

void Thread::setArg(void* arg) noexcept { impl_.as<ThreadImpl>().arg = arg; }

SignalVoid* Thread::getSignal() const noexcept { return impl_.as<ThreadImpl>().signal.get(); }

Error Thread::start() {
  ThreadImpl& impl = impl_.as<ThreadImpl>();
  auto start = std::make_unique<ThreadStart>();
  start->function = impl.function;
  start->arg = impl.arg;
  start->signal = std::move(impl.signal);

  qvPlatform::ThreadHandle handle{};
  std::unique_ptr<qvPlatform::ThreadBody> body = std::move(start);
  if (const int failed = qvPlatform::startThread(body, &handle))
    return Error(1, "_beginthread() failed: %s", qvPlatform::startThreadErrorText(failed).c_str());
  impl.forget(); // one that was started before
  impl.handle = handle;
  impl.running = true;
  return Error();
}

Error Thread::wait() {
  ThreadImpl& impl = impl_.as<ThreadImpl>();
  if (!impl.running.exchange(false)) return Error(2, "cannot wait for a stopped thread");
  if (const int failed = qvPlatform::joinThread(impl.handle))
    return Error(1, "WaitForSingleObject() failed: %s\n", qvPlatform::systemErrorText(failed).c_str());
  return Error();
}

} // namespace qvThread

bool qvThread_CreateThread(void (*function)(void*), void* arg) {
  return !qvThread::Thread(function, arg).start();
}
