// Thread: starting a thread, and waiting for its end.
#pragma once

#include "Base/Callback/qvRTBSignal.h"
#include "Base/Utility/qvImplBase.h"
#include "Base/Utility/qvUtilError.h"
#include "Base/qvBase.h"

namespace qvThread {

/// A thread that calls a function, or the slots of a signal. Not started, then running, then, after `wait`,
/// stopped. Destroying the object neither stops the thread nor waits for it: the thread then goes on alone.
///
/// A copy is a second view of the same thread: all operations act on what the two share. It owns nothing, and
/// is good only while the original lives. Virtual order is part of the interface.
///
/// An exception that leaves the function or a slot ends the process.
class QV_BASE_API Thread {
public:
  /// A thread that will call the slots of `getSignal()`.
  Thread();
  /// A thread that will call `function(arg)`.
  Thread(void (*function)(void*), void* arg);
  Thread(const Thread&) = default;
  Thread& operator=(const Thread&) = default;
  virtual ~Thread();

  /// Replaces what the function is called with. Has no effect on a thread that was started.
  void setArg(void* arg) noexcept;

  /// The signal to connect slots to before `start`, with which it goes over to the new thread. That thread
  /// calls the slots, the newest first, and then destroys the signal. Null from `start` on, and always null
  /// for a thread with a function.
  [[nodiscard]] qvRTB::SignalVoid* getSignal() const noexcept;

  /// Starts the thread. Everything done before is visible to it.
  ///
  /// A thread with a function may be started again, which forgets the one that was started before. A second
  /// start of a thread with a signal, also after a failed one, runs a thread that does nothing.
  /// @return code 1 "_beginthread() failed: " and the system's text where there can be no more threads.
  qvUtil::Error start();

  /// Waits until the thread has ended, and forgets it. Everything that it did is visible afterwards. Where
  /// several views wait at once, one waits and the others get code 2.
  /// @return code 2 "cannot wait for a stopped thread" where it was not started or was waited for, code 1
  /// "WaitForSingleObject() failed: ", the system's text and a line end where the wait failed, as it does in
  /// the thread itself on some systems.
  qvUtil::Error wait();

private:
  qv::ImplHandle impl_;
};

static_assert(sizeof(Thread) == 3 * sizeof(void*));

} // namespace qvThread

/// Starts a thread that calls `function(arg)` and that nobody waits for. @return whether it was started.
extern "C" QV_BASE_API bool qvThread_CreateThread(void (*function)(void*), void* arg);
