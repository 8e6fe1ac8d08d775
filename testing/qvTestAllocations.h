// Counts what a test takes from `operator new`. A program that uses it has every `operator new` counted.
#pragma once

namespace qvTest {

/// The number of calls of `operator new` in this thread so far.
[[nodiscard]] long allocations() noexcept;

/// The number of calls of `operator new` that `action` makes in this thread.
template <class Action>
[[nodiscard]] long allocationsOf(Action action) {
  const long before = allocations();
  action();
  return allocations() - before;
}

} // namespace qvTest
