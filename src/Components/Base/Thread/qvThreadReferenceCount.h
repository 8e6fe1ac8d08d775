// ReferenceCount: shared ownership between threads.
#pragma once

#include "Base/qvBase.h"

#include <atomic>

namespace qvThread {

/// Base of objects that holders in several threads share: the twin of `qv::ReferenceCount`, which is for one
/// thread, and held by `qv::Reference` as well. A new object has count 0. Copying an object never copies its
/// count.
///
/// Each holder may come and go in its own thread. Who adds a holder must hold the object already: a count
/// that has reached 0 is not to be raised again.
class QV_BASE_API ReferenceCount {
public:
  ReferenceCount(const ReferenceCount&) noexcept : count_(0) {}
  ReferenceCount& operator=(const ReferenceCount&) noexcept { return *this; }

  /// Adds a holder.
  void ref() const noexcept { count_.fetch_add(1, std::memory_order_relaxed); }
  /// Takes a holder away. Deletes the object where that gave exactly 0 and the count, read once more, is 0
  /// still. Everything that other holders did before they let go is visible to the destructor.
  void unref() const {
    if (count_.fetch_sub(1, std::memory_order_acq_rel) == 1 && count_.load(std::memory_order_acquire) == 0)
      delete this;
  }
  /// The number of holders at some moment of this call.
  [[nodiscard]] int refs() const noexcept { return count_.load(std::memory_order_relaxed); }

protected:
  ReferenceCount() noexcept : count_(0) {}
  virtual ~ReferenceCount();

private:
  mutable std::atomic<int> count_; // holders of a constant object count, too
};

static_assert(sizeof(ReferenceCount) == 2 * sizeof(void*));

} // namespace qvThread
