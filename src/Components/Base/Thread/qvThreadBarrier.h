// Barrier: where a number of threads wait for each other.
#pragma once

#include "Base/Utility/qvReferenceCount.h"
#include "Base/qvBase.h"

namespace qvThread {

/// Lets threads through in groups of `total`. Reusable at once: a thread that comes back while others of the
/// last group still leave waits until they are out, and then counts for the next group.
class Barrier {
public:
  /// `total` is at least 1; with 1 everybody passes straight through. Throws as the constructor of
  /// `Condition` does.
  QV_BASE_API explicit Barrier(int total);
  /// Threads may still be inside: what they use lives until the last one is out. No thread comes any more.
  QV_BASE_API ~Barrier();
  Barrier(const Barrier&) = delete;
  Barrier& operator=(const Barrier&) = delete;

  /// Waits without a limit until `total` threads are here. What each did before is visible to all after.
  QV_BASE_API void wait() noexcept;

private:
  class Impl;

  qv::Reference<Impl> impl_;
};

static_assert(sizeof(Barrier) == sizeof(void*));

} // namespace qvThread
