// What a thread does before it goes to sleep. What it waits for is often a microsecond away, while going to
// sleep and being woken take ten.
#pragma once

#include <thread>

namespace qvThread {

/// Lets other threads run a few times, until `done()` is true. @return whether it is.
template <class Done>
bool yieldUntil(Done done) {
  constexpr int turns = 20;
  for (int turn = 0; turn < turns; ++turn) {
    if (done()) return true;
    std::this_thread::yield();
  }
  return done();
}

} // namespace qvThread
