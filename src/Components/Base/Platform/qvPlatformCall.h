// One place where every platform operation announces itself before it calls the system. Nothing listens in a
// running application; a test may listen, to make the n-th call fail or to stop the process before it.
#pragma once

#include <atomic>

namespace qvPlatform {

/// Asked before each call of the operating system. `name` is the operation's name, as in "rename".
/// @return 0 to go on, or the system's error number with which the operation is to fail instead.
using CallHook = int (*)(const char* name) noexcept;

extern std::atomic<CallHook> callHook;

/// The answer of the hook; 0 where there is none.
[[nodiscard]] inline int beforeCall(const char* name) noexcept {
  const CallHook hook = callHook.load(std::memory_order_relaxed);
  return hook ? hook(name) : 0;
}

} // namespace qvPlatform
