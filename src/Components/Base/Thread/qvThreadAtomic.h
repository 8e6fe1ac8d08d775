// Counting in place, safe between threads.
#pragma once

#include <atomic>

namespace qvThread {

/// Adds 1 as one step. @return the new value; it wraps at 32 bits. Every other use of `value` that another
/// thread may make at the same time goes through these functions, too.
inline int atomicIncrement(int& value) noexcept {
  return static_cast<int>(static_cast<unsigned>(std::atomic_ref<int>(value).fetch_add(1)) + 1u);
}

/// Subtracts 1 as one step. @return the new value; it wraps at 32 bits.
inline int atomicDecrement(int& value) noexcept {
  return static_cast<int>(static_cast<unsigned>(std::atomic_ref<int>(value).fetch_sub(1)) - 1u);
}

} // namespace qvThread
