// The containers' way to the C heap. They report no failure: exhausted memory, and a count that no `int`
// holds, end the process here, before anything is written where it does not belong.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace qv::detail {

/// `size` bytes of the C heap; `size` is not 0.
[[nodiscard]] inline void* heapAllocate(std::size_t size) noexcept {
  void* const block = std::malloc(size);
  if (!block) std::abort();
  return block;
}

/// The block, moved to a size that is not 0. `block` may be null.
[[nodiscard]] inline void* heapReallocate(void* block, std::size_t size) noexcept {
  void* const moved = std::realloc(block, size);
  if (!moved) std::abort();
  return moved;
}

/// `count + added`, both at least 0, as the count of a container.
[[nodiscard]] inline int countSum(int count, int added) noexcept {
  if (added > INT32_MAX - count) std::abort();
  return count + added;
}

/// A length of a range as the count of a container.
[[nodiscard]] inline int toCount(std::int64_t length) noexcept {
  if (length < 0 || length > INT32_MAX) std::abort();
  return static_cast<int>(length);
}

} // namespace qv::detail
